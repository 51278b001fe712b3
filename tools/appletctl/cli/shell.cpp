// Commands line by line, on one board.

#include "appletctl/applet/published_limits.h"
#include "appletctl/base/Interruption.h"
#include "appletctl/base/text.h"
#include "appletctl/base/words.h"
#include "appletctl/cli/execute.h"
#include "appletctl/cli/line_input.h"
#include "appletctl/commands/Command.h"
#include "appletctl/scratch/BoardState.h"

#include <unistd.h>

#include <cstdlib>
#include <iostream>

namespace appletctl {
namespace {

/** The values that are not as they were, as they were. Measured ones move by themselves and are left out. */
json changedValues(const json& before, const json& now, const ParameterList& parameters) {
    json changed = json::object();
    for (const auto& [name, value] : before.items())
        if (now.contains(name) && now[name] != value && accessWord(parameters.find(name)) != "ro")
            changed[name] = value;
    return changed;
}

class Shell {
public:
    explicit Shell(Context& context) : m_context(context), m_options(context.options()) {}

    bool isOver() const { return m_isOver; }

    /** Carries a line out and prints its report; `place` stands before its problems. */
    ExitCode applyAssignments(const std::string& text, const std::string& place) {
        const WordLine line = splitLine(text);
        if (line.words.empty()) return exitDone;
        const std::string& first = line.words.front();
        m_isOver = line.words.size() == 1 && (first == "exit" || first == "quit");
        if (m_isOver) return exitDone;
        if (line.isOpen)
            return show(failureReport("usage", "a quote is not closed", exitUsage), "", m_options, place);
        if (line.words.size() == 1 && first == "undo") return show(undo(), "undo", m_options, place);
        const bool asksForHelp = first == "help";
        Words words(line.words.begin() + (asksForHelp ? 1 : 0), line.words.end());
        if (asksForHelp) words.emplace_back("--help");
        return applyAssignments(parseLine(words, m_options), place);
    }

    std::vector<Candidate> complete(const std::string& text) {
        WordLine line = splitLine(text);
        if (line.words.empty() || line.end != text.size()) line.words.emplace_back();
        const auto parameters = [this]() -> const ParameterList& { return m_context.parameters(); };
        try {
            std::vector<Candidate> candidates = candidatesFor(line.words, parameters);
            if (line.words.size() == 1)
                for (const char* own : {"undo", "help", "exit", "quit"})
                    if (std::string_view(own).starts_with(line.words.front())) candidates.push_back({own});
            return candidates;
        } catch (const std::exception&) { // without an applet there is nothing to choose from
            return {};
        }
    }

private:
    ExitCode applyAssignments(const Request& request, const std::string& place) {
        const Interruption interruption;
        setOutputMode(request.options);
        const json before = request.command != nullptr ? values() : json();
        Report report = execute(request, m_context);
        if (interruption.isAsked()) report.exitCode = exitInterrupted;
        const ExitCode code = show(std::move(report), nameOf(request), request.options, place);
        m_context.setOptions(m_options);
        setOutputMode(m_options);
        if (before.empty()) return code;
        if (json changed = changedValues(before, values(), m_context.parameters()); !changed.empty())
            m_before.push_back(std::move(changed));
        return code;
    }

    static ExitCode show(Report report, const std::string& command, const Options& options,
                         const std::string& place) {
        for (std::string& problem : report.problems)
            problem.insert(0, place);
        return static_cast<ExitCode>(print(report, command, options));
    }

    /** The present values; none if there is no applet, which the command then says. */
    json values() {
        try {
            return valuesOf(m_context.instance(), m_context.parameters());
        } catch (const std::runtime_error&) {
            return json::object();
        }
    }

    Report undo() {
        if (m_before.empty()) return failureReport("usage", "there is nothing to undo", exitUsage);
        const json wanted = std::move(m_before.back());
        m_before.pop_back();
        Report report;
        const Wanted values = wantedFrom(m_context.parameters(), wanted);
        bringAbout(m_context.instance(), values);
        Words others;
        for (const auto& [parameter, value] : values)
            if (!holds(m_context.instance(), *parameter, *value)) others.push_back(parameter->name);
        auto& rows = report.document["parameters"] = nlohmann::ordered_json::array();
        for (const auto& [name, value] : wanted.items()) {
            const Target target = {&m_context.parameters().find(name)};
            const ReadResult reading = readValue(m_context.instance(), target);
            rows.push_back(readingAsJson(target, reading));
            report.text += name + " = " + valueWithUnit(*target.parameter, reading.value) + '\n';
        }
        if (others.empty()) return report;
        report.problems.push_back("not as before: " + join(others, ", "));
        report.exitCode = exitRefused;
        return report;
    }

    Context& m_context;
    const Options m_options;
    std::vector<json>
        m_before; // what each command that changed something has changed, the last one at the end
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
        if (shell.applyAssignments(*line, "") == exitInterrupted) writeOut("\n");
    }
}

/** Gives the exit code of the first line that failed. */
ExitCode follow(Shell& shell, bool goesOn) {
    ExitCode first = exitDone;
    std::string line;
    for (std::size_t number = 1; !shell.isOver() && std::getline(std::cin, line); ++number) {
        const ExitCode code = shell.applyAssignments(line, "line " + numberText(number) + ": ");
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
    .run = runShell,
    .scratch = Context::Scratch::wanted,
    .addOptions = addShellOptions,
    .kind = Command::Kind::session,
};

} // namespace appletctl
