// The shell: command lines on one board.

#include "applet_tools/base/Interruption.h"
#include "applet_tools/base/numbers.h"
#include "appletctl/base/print.h"
#include "appletctl/cli/shell/LineSession.h"
#include "appletctl/cli/shell/line_input.h"
#include "appletctl/cli/station_client.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/shared_options.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>

namespace appletctl {
namespace {

/** Executes the lines. */
class Shell {
public:
    virtual ~Shell() = default;
    virtual ExitCode runLine(const std::string& text, const std::string& prefix) = 0;
    virtual std::vector<Candidate> complete(const std::string& text) = 0;
    virtual bool isOver() const = 0;
};

/** Executes them in this process, on a board of its own. */
class OwnShell : public Shell {
public:
    explicit OwnShell(Context& context) : m_options(context.options()), m_session(context) {}

    ExitCode runLine(const std::string& text, const std::string& prefix) override {
        return m_session.runLine(text, m_options, prefix);
    }
    std::vector<Candidate> complete(const std::string& text) override { return m_session.complete(text); }
    bool isOver() const override { return m_session.isOver(); }

private:
    const Options m_options;
    LineSession m_session;
};

/** Sends each line to a station, which is shared with others. */
class StationShell : public Shell {
public:
    explicit StationShell(const Options& options) : m_options(options), m_client(options.station) {}

    ExitCode runLine(const std::string& text, const std::string& prefix) override {
        const serve::CommandEnd end = m_client.runLine(text, m_options, prefix);
        m_isOver = end.isOver;
        return static_cast<ExitCode>(end.exitCode);
    }
    /** Uses the tree of an applet in this process, since it is the same as that of the station. */
    std::vector<Candidate> complete(const std::string& text) override {
        if (!m_offline) {
            Options options = m_options;
            options.offline = true;
            m_offline.emplace(options);
        }
        return LineSession(*m_offline).complete(text);
    }
    bool isOver() const override { return m_isOver; }

private:
    const Options m_options;
    StationClient m_client;
    std::optional<Context> m_offline; // made for the first completion
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

/** Returns the exit code of the first line that failed. */
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
    const Options& options = context.options();
    const std::unique_ptr<Shell> shell = options.station.empty()
                                             ? std::unique_ptr<Shell>(std::make_unique<OwnShell>(context))
                                             : std::make_unique<StationShell>(options);
    if (isatty(STDIN_FILENO) == 1)
        talk(*shell);
    else
        report.exitCode = follow(*shell, goesOn);
    return report;
}

} // namespace

extern const Command shellCommand;
const Command shellCommand = {
    .name = "shell",
    .help = "Execute commands line by line on one board, with undo",
    .examples = {{"shell", "interactive; undo, help and exit work there"},
                 {"shell -k < lines.txt", "run the lines of a file; continue after failures"}},
    .run = runShell,
    .scratch = Context::Scratch::wanted,
    .addOptions = addShellOptions,
    .kind = Command::Kind::local,
};

} // namespace appletctl
