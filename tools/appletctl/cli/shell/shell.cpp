// Commands line by line, on one board.

#include "applet_tools/base/Interruption.h"
#include "applet_tools/base/text.h"
#include "applet_tools/base/words.h"
#include "applet_tools/scratch/History.h"
#include "appletctl/cli/execute.h"
#include "appletctl/cli/help.h"
#include "appletctl/cli/shell/line_input.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/lines.h"
#include "appletctl/commands/shared_options.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <string_view>

namespace appletctl {
namespace {

Report reportOf(const Undone& undone) {
    Report report;
    const std::string line = toUtf8(undone.line.c_str());
    report.document["undone"] = line;
    report.text = forPerson("Undone: " + printable(line) + "\n");
    auto& rows = report.document["parameters"] = nlohmann::ordered_json::array();
    for (const auto& [target, now, isNextCycle] : undone.settings) {
        rows.push_back(readingAsJson(target, now));
        if (!isNextCycle) report.text += valueLine(target, now.value);
    }
    for (const auto& [name, before, after] : undone.design)
        report.text += name + ": " + before + " -> " + after + '\n';
    if (!undone.otherLimits.empty()) {
        report.document["otherLimits"] = undone.otherLimits;
        if (isPlainOutput())
            for (const std::string& name : undone.otherLimits)
                report.text += "otherLimits\t" + name + '\n';
        report.text += forPerson("Other published limits than before: " + join(undone.otherLimits, ", ") +
                                 "; only a set computes them\n");
    }
    if (undone.notAsBefore.empty()) return report;
    report.problems.push_back("not as before: " + join(undone.notAsBefore, ", "));
    report.exitCode = exitRefused;
    return report;
}

/** What works in the shell alone. */
constexpr std::string_view ownWords[] = {"undo", "help", "exit", "quit"};

class Shell {
public:
    explicit Shell(Context& context) : m_context(context), m_options(context.options()), m_history(context) {}

    bool isOver() const { return m_isOver; }

    /** Carries a line out and prints its report; `place` precedes its problems. */
    ExitCode runLine(const std::string& text, const std::string& place) {
        const WordLine line = splitLine(text);
        if (line.words.empty()) return exitDone;
        const std::string& first = line.words.front();
        m_isOver = line.words.size() == 1 && (first == "exit" || first == "quit");
        if (m_isOver) return exitDone;
        if (line.isOpen)
            return show(failureReport("usage", "a quote is not closed", exitUsage), "", m_options, place);
        if (line.words.size() > 1 && first != "help" && !shellWordHelp(first).empty())
            return show(failureReport("usage", "'" + first + "' takes no words", exitUsage), first, m_options,
                        place);
        if (first == "undo")
            return show(withFailuresAsReports([this] { return undo(); }), "undo", m_options, place);
        if (first != "help") return runLine(parseLine(line.words, m_options), place, text);
        if (line.words.size() == 1) return show(helpReport(shellHelp()), "help", m_options, place);
        Words words(line.words.begin() + 1, line.words.end());
        const std::string own = words.size() == 1 ? shellWordHelp(words.front()) : "";
        if (!own.empty()) return show(helpReport(own), "help", m_options, place);
        words.emplace_back("--help");
        return runLine(parseLine(words, m_options), place);
    }

    std::vector<Candidate> complete(const std::string& text) {
        WordLine line = splitLine(text);
        if (line.words.empty() || line.end != text.size()) line.words.emplace_back();
        const auto parameters = [this]() -> const ParameterList& { return m_context.parameters(); };
        try {
            std::vector<Candidate> candidates = candidatesFor(line.words, parameters);
            if (line.words.size() == 1)
                for (const std::string_view own : ownWords)
                    if (own.starts_with(line.words.front())) candidates.push_back({std::string(own)});
            return candidates;
        } catch (const std::exception&) { // without an applet there is nothing to choose from
            return {};
        }
    }

private:
    ExitCode runLine(const Request& request, const std::string& place, const std::string& line = "") {
        const Interruption interruption;
        setOutputMode(request.options);
        if (request.command != nullptr) m_history.begin(line);
        Report report = execute(request, m_context);
        if (interruption.isAsked()) report.exitCode = exitInterrupted;
        const ExitCode code = show(std::move(report), nameOf(request), request.options, place);
        m_context.setOptions(m_options);
        setOutputMode(m_options);
        m_history.end();
        return code;
    }

    static ExitCode show(Report report, const std::string& command, const Options& options,
                         const std::string& place) {
        for (std::string& problem : report.problems)
            problem.insert(0, place);
        return static_cast<ExitCode>(print(report, command, options));
    }

    Report undo() {
        if (m_history.hasSteps()) requireAgreement(m_options, "undo");
        const std::optional<Undone> undone = m_history.undo();
        return undone ? reportOf(*undone) : failureReport("usage", "there is nothing to undo", exitUsage);
    }

    static Report helpReport(const std::string& text) {
        Report report;
        report.text = text;
        report.document["text"] = report.text;
        return report;
    }

    Context& m_context;
    const Options m_options;
    History m_history;
    bool m_isOver = false;
};

std::string historyFile() {
    if (const char* state = std::getenv("XDG_STATE_HOME"); state != nullptr && *state != '\0')
        return std::string(state) + "/appletctl/history";
    const char* home = std::getenv("HOME");
    return home == nullptr ? "" : std::string(home) + "/.local/state/appletctl/history";
}

void talk(Shell& shell) {
    LineInput input(historyFile(), [&](const std::string& text) { return shell.complete(text); });
    while (!shell.isOver()) {
        std::optional<std::string> line;
        {
            const Interruption interruption;
            line = input.read("appletctl> ");
            if (!line) writeOut("\n");
            if (!line && interruption.isAsked()) continue;
        }
        if (!line) return;
        if (shell.runLine(*line, "") == exitInterrupted) writeOut("\n");
    }
}

/** Gives the exit code of the first line that failed. */
ExitCode follow(Shell& shell, bool goesOn) {
    ExitCode first = exitDone;
    std::string line;
    for (std::size_t number = 1; !shell.isOver() && std::getline(std::cin, line); ++number) {
        const ExitCode code = shell.runLine(line, "line " + numberText(number) + ": ");
        if (first == exitDone) first = code;
        if (code == exitInterrupted || (code != exitDone && !goesOn)) break;
    }
    return first;
}

struct ShellOptions {
    bool keepGoing = false; /**< -k */
};

void addShellOptions(CLI::App& command, Options& options) {
    command.add_flag("-k,--keep-going", options.own<ShellOptions>().keepGoing,
                     "Go on after a line that fails");
    addYes(command, options); // for all lines
}

Report runShell(Context& context, const Words&) {
    Report report;
    report.isPrinted = true;
    const bool goesOn = context.options().of<ShellOptions>().keepGoing;
    Shell shell(context);
    if (isatty(STDIN_FILENO) == 1)
        talk(shell);
    else
        report.exitCode = follow(shell, goesOn);
    return report;
}

} // namespace

extern const Command shellCommand;
const Command shellCommand = {
    .name = "shell",
    .help = "Carry out commands line by line on one board, with undo",
    .examples = {{"shell", "interactive; undo, help and exit work there"},
                 {"shell -k < lines.txt", "lines of a file, going on after failures"}},
    .run = runShell,
    .scratch = Context::Scratch::wanted,
    .addOptions = addShellOptions,
    .kind = Command::Kind::session,
};

} // namespace appletctl
