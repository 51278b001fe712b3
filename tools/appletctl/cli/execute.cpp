#include "appletctl/cli/execute.h"

#include "applet_tools/answers/loading/loading.h"
#include "applet_tools/applet/assignments.h"
#include "applet_tools/base/Stopwatch.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/probe/refusal.h"
#include "appletctl/base/Progress.h"
#include "appletctl/base/confirm.h"
#include "appletctl/base/report_text.h"
#include "appletctl/cli/station_client.h"
#include "appletctl/commands/assignment_report.h"
#include "appletctl/commands/jobs.h"
#include "appletctl/commands/shared_options.h"
#include "appletctl/commands/signals/trace.h"

#include "vexo/fg_errors.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <functional>
#include <iterator>
#include <optional>
#include <system_error>

namespace appletctl {

Report withFailuresAsReports(const std::function<Report()>& work) {
    try {
        return work();
    } catch (const UsageError& error) {
        return failureReport("usage", error.what(), exitUsage);
    } catch (const Unavailable& error) {
        return failureReport("unavailable", error.what(), exitUnavailable);
    } catch (const applet_host::HostError& error) {
        return failureReport("unavailable", error.what(), exitUnavailable);
    } catch (const Failure& error) {
        return failureReport("failure", error.what(), exitRefused);
    } catch (const std::system_error& error) { // from files and folders
        return failureReport("failure", error.what(), exitRefused);
    } catch (const std::exception& error) {
        return failureReport("internal", internalError(error), exitUnavailable);
    }
}

Report withNotes(Context& context, const std::string& name, const std::function<Report()>& work) {
    const Stopwatch watch;
    Report report = withFailuresAsReports(work);
    std::ranges::move(context.takeNotes(), std::back_inserter(report.notes));
    report.notes.push_back("'" + name + "' took " + watch.text());
    return report;
}

namespace {

/** True for a board that is shared with others or that the user does not want to be written to. */
bool isProtected(const Options& options) { return options.look || options.isOnSystem(); }

bool setsSomething(const Request& request) {
    const bool hasFile =
        request.command->file == Command::File::read || request.command->file == Command::File::write;
    const auto begin = request.words.begin() + (hasFile && !request.words.empty() ? 1 : 0);
    switch (request.command->sets) {
    case Command::Sets::nothing:
        return false;
    case Command::Sets::assignments:
        return std::any_of(begin, request.words.end(), isAssignment);
    default:
        return true;
    }
}

/** Refuses forbidden writes to the board, and asks for the user's consent if it is required. */
void requireAllowed(const Request& request) {
    const Options& options = request.options;
    if (options.board == BoardKind::virtualBoard && !options.bridge.empty())
        throw UsageError(
            "--bridge opens a board of the system, and this is a virtual one: give --board system as well");
    if (options.board == BoardKind::system && options.offline)
        throw UsageError(
            "--board system opens the board and --offline does without one: leave one of them out");
    if (options.look && options.offline)
        throw UsageError(
            "--look opens a board to look at it and --offline does without one: leave one of them out");
    if (options.bridge.find('/') != std::string::npos && access(options.bridge.c_str(), R_OK) != 0)
        throw UsageError("--bridge: " + shownFile(options.bridge) +
                         " is not a library that can be opened: " + std::strerror(errno));
    if (request.command->sets == Command::Sets::afterOwnQuestion && !options.look) return;
    if (setsSomething(request)) requireAgreement(options, nameOf(request));
}

} // namespace

void requireAgreement(const Options& options, const std::string& name) {
    if (!isProtected(options)) return;
    const std::string quoted = "'" + name + "'";
    if (options.look)
        throw UsageError(quoted + " would write to the board, which --look prevents: leave --look out");
    if (options.of<YesOption>().isGiven) return;
    if (isatty(STDIN_FILENO) == 0)
        throw UsageError(
            quoted + " writes to the board of the system, and there is no terminal to ask on: give --yes");
    if (!isConfirmed(quoted + " writes to the board of the system. Go on?")) throw Failure("nothing was set");
}

namespace {

/** `isAssignmentWanted`: an assignment is accepted instead of the file. */
void requireReadable(const std::string& file, Context& context, bool isAssignmentWanted) {
    const std::string reason = whyUnreadable(file);
    if (reason.empty()) return;
    for (const Parameter& parameter : context.parameters().all())
        if (lowerCase(parameter.name) == lowerCase(file) ||
            lowerCase(parameter.name) == "fg_" + lowerCase(file))
            throw UsageError(inQuotedWord(file) +
                             (isAssignmentWanted
                                  ? " is a parameter, but a file or an assignment is expected, such as " +
                                        parameter.name + "=VALUE"
                                  : " is a parameter, but a file is expected"));
    refuseUnreadable(file, reason);
}

/** Checks that the files in the first words exist before anything is done. */
void requireFiles(const Request& request, Context& context) {
    const bool mayBeAssignment = request.command->file == Command::File::readUnlessAssignment;
    const bool isFile =
        request.command->file == Command::File::read ||
        (mayBeAssignment && request.words.size() == 1 && !isAssignment(request.words.front()));
    if (!isFile) return;
    const bool isConfiguration = std::string_view(request.command->fileSuffix) == ".mcf";
    const auto require = [&](const std::string& file, bool isAssignmentWanted) {
        requireReadable(file, context, isAssignmentWanted);
        if (isConfiguration) requireConfigurationName(file);
    };
    if (!request.words.front().empty()) require(request.words.front(), mayBeAssignment);
    const auto most = static_cast<std::size_t>(request.command->mostFiles);
    for (std::size_t i = 1; i < std::min(most, request.words.size()); ++i)
        if (!isAssignment(request.words[i])) require(request.words[i], true);
}

/** Establishes the state of --from and --with during its lifetime: on the live applet if it serves only this
 *  command, else on a copy. */
class AskedState {
public:
    AskedState(Context& context, const Options& options, bool isOnlyCommand) : m_context(context) {
        const auto& with = options.of<WithOption>();
        if (!with.isGiven()) return;
        if (isProtected(options))
            throw UsageError("--with and --from set values on a virtual board: leave --board and --look out");
        if (!with.file.empty()) {
            requireBoard(options, "--from");
            requireReadable(with.file, context, false);
            requireConfigurationName(with.file);
        }
        m_copy.emplace(context, !isOnlyCommand);
        applyWith(with);
        Options rest = options;
        rest.own<WithOption>() = {}; // already applied
        context.setOptions(rest);
    }

private:
    /** Why the load of the file failed, in the words of `check`. */
    std::string failedLoad(const std::string& file, int code) {
        std::vector<std::string> reasons;
        for (const Finding& finding : askCheck(m_context.bareScratch(), file).findings) {
            if (finding.kind == FindingKind::file) return shownFile(file) + ": " + finding.message;
            if (finding.kind == FindingKind::missing) reasons.push_back(finding.key);
        }
        return shownFile(file) + " was not loaded as a whole: " + codeInWords(code) +
               (reasons.empty() ? "" : "; it lacks " + join(reasons, ", "));
    }

    void applyWith(const WithOption& with) {
        Instance& instance = m_context.instance();
        if (!with.file.empty()) {
            int code = FG_OK;
            withProgress("loading " + shownFile(with.file),
                         [&] { code = loadConfiguration(instance, with.file); });
            if (code < 0) throw Failure("--from: " + failedLoad(with.file, code));
        }
        const Report done = m_context.hasScratch() ? applyLive(m_context, with.assignments)
                                                   : reportAssignments(m_context, with.assignments);
        if (done.exitCode != exitDone) throw Failure("--with: " + join(done.problems, "; "));
    }

    Context& m_context;
    std::optional<CopyInUse> m_copy;
};

Report runCommand(const Request& request, Context& context, bool isOnlyCommand) {
    requireAllowed(request);
    requireFiles(request, context);
    const bool isAnsweredByScratch = isProtected(request.options) && request.command->takesWithToScratch &&
                                     request.options.of<WithOption>().file.empty();
    std::optional<AskedState> state;
    if (!isAnsweredByScratch) state.emplace(context, request.options, isOnlyCommand);
    const auto command = [&] { return request.command->run(context, request.words); };
    if (!request.options.trace) return command();
    return traceRun(context, request.command->showsWrites, command);
}

/** Offline, a scratch board finds the values that would come from a board, and explains refusals. */
Context::Scratch scratchFor(const Request& request) {
    if (request.command->scratch != Context::Scratch::none) return request.command->scratch;
    if (request.options.of<WithOption>().isGiven()) return Context::Scratch::wanted;
    return request.options.offline ? Context::Scratch::withoutDesign : Context::Scratch::none;
}

/** `isOnlyCommand`: the applet on its board serves this command only. */
Report executeOn(Context& context, const Request& request, bool isOnlyCommand) {
    if (request.command == nullptr) return request.outcome;
    context.setOptions(request.options);
    Report report =
        withNotes(context, nameOf(request), [&] { return runCommand(request, context, isOnlyCommand); });
    if (request.options.look && request.command->showsValues) {
        report.document["look"] = true;
        if (!report.text.empty() && !report.isVerbatim)
            report.text +=
                forPerson("With --look, settings are those of a starting applet, not the board's.\n");
    }
    return report;
}

/** True if --station is given. The environment variable is for all command lines, so it does not count. */
bool namesStation(const Words& words) {
    return std::ranges::any_of(
        words, [](const std::string& word) { return word == "--station" || word.starts_with("--station="); });
}

Request refused(Request request, const std::string& why) {
    request.misused = nameOf(request);
    request.command = nullptr;
    request.outcome = failureReport("usage", why, exitUsage);
    return request;
}

/** `board` says how the board was chosen. */
Request onSameBoard(Request request, const Options& options, const char* board, bool mayBeSession) {
    if (request.command == nullptr) return request;
    const std::string name = nameOf(request);
    if (static_cast<const BoardOptions&>(request.options) != options)
        return refused(std::move(request),
                       std::string("the board cannot be changed here: give --board, --bridge, --applet, "
                                   "--offline and --look to ") +
                           board);
    if (!isForLines(*request.command) && !(mayBeSession && request.command->kind == Command::Kind::session))
        return refused(std::move(request), "'" + name + "' does not work within another command");
    return request;
}

/** A line of a shell or a scenario is for the board and the station of the first command. */
Request onSameStation(Request request, const Words& words, const Options& options) {
    if (request.command != nullptr && namesStation(words))
        return refused(std::move(request),
                       "the station cannot be changed here: give --station to the first command");
    return onSameBoard(std::move(request), options, "the first command", false);
}

} // namespace

Request parseLine(const Words& words, const Options& options) {
    return onSameStation(parseCommandLine(words, options), words, options);
}

Request parseShellLine(const Words& words, const Options& options) {
    return onSameStation(parseCommandLine(words, options, shellCommands()), words, options);
}

Request parseForStation(const Words& words, const Options& options) {
    return onSameBoard(parseCommandLine(words, options), options, "'serve', which has started the station",
                       true);
}

Report execute(const Request& request, Context& context) { return executeOn(context, request, false); }

namespace {

/** Refuses --station with the commands that start, list or end stations: it would have no effect. */
void requireNoStation(const Command& command, const Words& words) {
    if (!command.managesStations || !namesStation(words)) return;
    const std::string name = fullName(command);
    throw UsageError(
        "'" + name + "' is not executed by a station: leave --station out" +
        (command.argument != nullptr ? "; the name is a word, as in 'appletctl " + name + " NAME'" : ""));
}

} // namespace

Report execute(const Request& request, const Words& words) {
    if (request.command == nullptr) return request.outcome;
    return withFailuresAsReports([&] {
        requireNoStation(*request.command, words);
        if (isForStation(request)) {
            Report report;
            report.isPrinted = true;
            report.exitCode =
                static_cast<ExitCode>(StationClient(request.options.station).runCommandLine(words).exitCode);
            return report;
        }
        Context context(request.options, scratchFor(request), {allJobs(), allCommands(), helpOf});
        return executeOn(context, request, true);
    });
}

} // namespace appletctl
