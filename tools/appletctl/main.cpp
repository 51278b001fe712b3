/** appletctl: shows and sets the parameters of the applet. */
#include "appletctl/command_line.h"
#include "appletctl/trace.h"

#include <exception>

namespace {

using namespace appletctl;

/** The report of the command; all failures as reports too. */
Report run(const Request& request) {
    if (request.command == nullptr) return request.outcome;
    try {
        Context context(request.options, request.command->scratch);
        const auto runCommand = [&] { return request.command->run(context, request.words); };
        if (!request.options.trace) return runCommand();
        return traceRun(context, request.command->run == setParameters, runCommand);
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

} // namespace

int main(int argc, char** argv) {
    const Request request = parseCommandLine(Words(argv + 1, argv + argc));
    setOutputMode(request.options);
    const std::string trace = request.options.trace ? "trace " : "";
    const std::string name = request.command != nullptr ? trace + fullName(*request.command) : "";
    return print(run(request), name, request.options);
}
