// A persistent station: one process keeps the applet and the board and executes the commands of its clients.

#include "applet_tools/base/Interruption.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "appletctl/cli/LineSession.h"
#include "appletctl/cli/execute.h"
#include "appletctl/cli/station/ClientTerminal.h"
#include "appletctl/cli/station/detached_station.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/shared_options.h"
#include "appletctl/commands/signals/wave_option.h"
#include "serve/CommandSocket.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <filesystem>
#include <iostream>

namespace appletctl {
namespace {

struct ServeOptions {
    bool isDetached = false;    /**< --detach */
    std::string clock = "wall"; /**< --clock */
    double factor = 1;          /**< --factor */
};

void addServeOptions(CLI::App& command, Options& options) {
    auto& own = options.own<ServeOptions>();
    command.add_flag("--detach", own.isDetached, "Return when the station runs, and leave it running");
    CLI::Option* const clock = command
                                   .add_option("--clock", own.clock,
                                               "wall: the time of a virtual board follows the machine's "
                                               "clock; stepped: it moves only while a "
                                               "command waits for it")
                                   ->check(CLI::IsMember({"wall", "stepped"}));
    constexpr double slowest = 0.001, fastest = 1000;
    command
        .add_option("--factor", own.factor, "How many times as fast as the machine's clock, 1 if not given")
        ->type_name("NUMBER")
        ->check(CLI::Range(slowest, fastest))
        ->needs(clock);
    addStation(command, options);
}

/** The arguments: a name, then assignments. */
std::string stationNameOf(const Words& words) {
    const bool isNamed = !words.empty() && words.front().find('=') == std::string::npos;
    return isNamed ? words.front() : serve::defaultStationName;
}

Words assignmentsOf(const Words& words) {
    const bool isNamed = !words.empty() && words.front().find('=') == std::string::npos;
    return isNamed ? behindFirst(words) : words;
}

/** Makes the paths of the libraries absolute, since clients have folders of their own. */
Options withWholePaths(Options options) {
    for (std::string* file : {&options.applet, &options.bridge})
        if (!file->empty()) *file = std::filesystem::absolute(*file);
    return options;
}

std::string clockText(const Options& options) {
    const auto& own = options.of<ServeOptions>();
    if (options.offline || options.board == BoardKind::system) return "-";
    return own.clock == "wall" && own.factor != 1 ? "wall, " + numberText(own.factor) + " times" : own.clock;
}

std::string boardText(const Options& options) {
    if (options.offline) return "none";
    return options.board == BoardKind::system ? "system" : "virtual";
}

/** Executes the commands of clients one at a time. */
class Station {
public:
    Station(Context& context, const serve::StationPlace& place)
        : m_context(context)
        , m_shown(context.options())
        , m_session(context)
        , m_socket(place, {{"board", boardText(m_shown)}, {"clock", clockText(m_shown)}}) {
        static_cast<BoardOptions&>(m_options) = m_shown;
        context.setPause([this] { lookMeanwhile(); });
    }
    ~Station() { m_context.setPause({}); }
    Station(const Station&) = delete;
    Station& operator=(const Station&) = delete;

    /** Runs until a client or a signal ends it. */
    void run() {
        while (!m_socket.isStopAsked() && m_interruption.waitReadable(m_socket.readable())) {
            const std::optional<serve::ClientCommand> command =
                m_socket.begin([](const serve::ClientCommand&) { return true; });
            if (!command) continue;
            const bool isInterruptedByClient =
                m_socket.end(carryOut(*command, [&] { return runFor(*command); }));
            if (m_interruption.isAsked() && !isInterruptedByClient) return;
            m_interruption.rearm();
        }
    }

private:
    /** Runs during a pause of the current command: executes commands that only read and are quick. */
    void lookMeanwhile() {
        if (m_isPaused || m_interruption.isAsked() || m_context.isCopy()) return;
        m_isPaused = true;
        Request request;
        const auto isQuickLook = [&](const serve::ClientCommand& command) {
            if (command.kind != serve::ClientCommand::Kind::commandLine) return false;
            request = parseForStation(command.words, m_options);
            return request.command != nullptr && request.command->kind == Command::Kind::plain &&
                   request.command->sets == Command::Sets::nothing &&
                   request.command->file == Command::File::none && !request.command->takesLong &&
                   !request.options.of<WithOption>().isGiven();
        };
        while (const std::optional<serve::ClientCommand> command = m_socket.begin(isQuickLook)) {
            const auto look = [&] { return serve::CommandEnd{m_session.runInPause(request), false}; };
            if (m_socket.end(carryOut(*command, look))) m_interruption.rearm();
        }
        m_isPaused = false;
    }

    template <typename Work>
    serve::CommandEnd carryOut(const serve::ClientCommand& command, const Work& work) {
        try {
            const ClientTerminal terminal(command);
            return work();
        } catch (const std::exception& error) { // from the terminal; failures of commands are reports
            std::cerr << "appletctl: " << internalError(error) << '\n';
            return {exitUnavailable, false};
        }
    }

    serve::CommandEnd runFor(const serve::ClientCommand& command) {
        if (command.kind == serve::ClientCommand::Kind::commandLine) {
            const Request request = parseForStation(command.words, m_options);
            return {m_session.run(request, m_options, joinWords(command.words)), false};
        }
        const Options options = parseCommandLine(command.words, m_options).options;
        const ExitCode code = m_session.runLine(command.line, options, command.place);
        return {code, m_session.isOver()};
    }

    Context& m_context;
    const Options m_shown; // for the station's own output
    Options m_options;     // defaults for a client's command line
    LineSession m_session;
    Interruption m_interruption;
    bool m_isPaused = false;
    serve::CommandSocket m_socket;
};

std::string usageText(const std::string& name) {
    return "Use it with 'appletctl --station " + name + " COMMAND', or set APPLETCTL_STATION=" + name +
           "; end it with 'appletctl station stop " + name + "'";
}

Report serveStation(Context& context, const Words& words) {
    const serve::StationPlace place = serve::placeOf(stationNameOf(words));
    const ServeOptions own = context.options().of<ServeOptions>(); // which change below
    Report report;
    report.document["station"] = place.name;
    if (own.isDetached) {
        report.document["process"] = startDetached(place);
        report.text = lineOf({"station", place.name}, "The station '" + place.name + "' runs.") +
                      forPerson(usageText(place.name) + ".\n");
        return report;
    }
    context.setOptions(withWholePaths(context.options()));
    if (const std::optional<StationFile> file = stationOf(context.options()))
        setUpStation(context.instance(), context.parameters(), *file);
    CommandRun work(context, assignmentsOf(words));
    if (work.isRefused()) return std::move(work.report);
    const bool hasClock = work.instance.host()->isVirtual() && work.instance.device() != nullptr;
    if (hasClock && own.clock == "wall") work.instance.board().clock(work.instance.device(), own.factor);
    Station station(context, place);
    report.document["process"] = getpid();
    report.isPrinted = true;
    report.text = lineOf({"station", place.name}, "The station '" + place.name + "' runs until Ctrl-C.") +
                  forPerson(usageText(place.name) + ".\n");
    const Options& options = context.options();
    if (options.json)
        writeOut(documentText(report, "serve", 2));
    else if (!options.quiet)
        writeOut(laidOut(report));
    station.run();
    return report;
}

} // namespace

extern const Command serveCommand;
const Command serveCommand = {
    .name = "serve",
    .help = "Keep the applet and its board running, for commands with --station",
    .argument = "NAME|NAME=VALUE",
    .argumentHelp = "Name of the station, main if not given, then assignments to carry out at its start",
    .form = "[NAME] [NAME=VALUE...]",
    .examples = {{"serve", "a station 'main' with a virtual board, until Ctrl-C"},
                 {"serve --detach line2 --from line.mcf",
                  "one in the background, with the settings of a file"},
                 {"--station line2 set FG_WIDTH=2048", "a command on it; the next one finds the width set"},
                 {"station stop line2", "its end"}},
    .most = -1,
    .run = serveStation,
    .scratch = Context::Scratch::wanted,
    .addOptions = addServeOptions,
    .kind = Command::Kind::local,
    .sets = Command::Sets::assignments,
    .showsValues = true,
};

} // namespace appletctl
