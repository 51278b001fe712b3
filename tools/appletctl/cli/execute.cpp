#include "appletctl/cli/execute.h"

#include "appletctl/commands/jobs.h"
#include "appletctl/commands/signals/trace.h"

#include <exception>

namespace appletctl {
namespace {

template <typename CommandRun> Report withFailuresAsReports(CommandRun work) {
    try {
        return work();
    } catch (const UsageError& error) {
        return failureReport("usage", error.what(), exitUsage);
    } catch (const Unavailable& error) {
        return failureReport("unavailable", error.what(), exitUnavailable);
    } catch (const applet_host::HostError& error) {
        return failureReport("unavailable", error.what(), exitUnavailable);
    } catch (const std::exception& error) { // Failure, out of memory
        return failureReport("failure", error.what(), exitRefused);
    }
}

Report runCommand(const Request& request, Context& context) {
    const auto command = [&] { return request.command->run(context, request.words); };
    if (!request.options.trace) return command();
    return traceRun(context, request.command->showsWrites, command);
}

bool isSameBoard(const Options& a, const Options& b) {
    return a.board == b.board && a.bridge == b.bridge && a.applet == b.applet && a.offline == b.offline;
}

} // namespace

Request parseLine(const Words& words, const Options& options) {
    Request request = parseCommandLine(words, options);
    if (request.command == nullptr) return request;
    const std::string name = nameOf(request);
    std::string refusal;
    if (!isSameBoard(request.options, options))
        refusal =
            "the board is chosen before: give --board, --bridge, --applet and --offline to the first command";
    else if (request.command->kind == Command::Kind::session)
        refusal = "'" + name + "' does not work within another command";
    if (refusal.empty()) return request;
    request.command = nullptr;
    request.outcome = failureReport("usage", refusal, exitUsage);
    return request;
}

Report execute(const Request& request, Context& context) {
    if (request.command == nullptr) return request.outcome;
    context.setOptions(request.options);
    return withFailuresAsReports([&] { return runCommand(request, context); });
}

Report execute(const Request& request) {
    if (request.command == nullptr) return request.outcome;
    return withFailuresAsReports([&] {
        Context context(request.options, request.command->scratch, {allJobs(), allCommands(), helpOf});
        return runCommand(request, context);
    });
}

} // namespace appletctl
