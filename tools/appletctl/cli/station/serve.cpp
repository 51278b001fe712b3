// A persistent station: one process keeps the applet and the board and executes the commands of its clients.

#include "applet_tools/base/Interruption.h"
#include "applet_tools/base/Stopwatch.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "appletctl/cli/execute.h"
#include "appletctl/cli/shell/LineSession.h"
#include "appletctl/cli/station/ClientTerminal.h"
#include "appletctl/cli/station/detached_station.h"
#include "appletctl/cli/station/http_options.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/shared_options.h"
#include "appletctl/commands/signals/wave_option.h"
#include "serve/CommandClient.h"
#include "serve/CommandSocket.h"
#include "serve/http/StationHttp.h"
#include "serve/http/routes/page_files.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <iostream>
#include <optional>

namespace appletctl {
namespace {

struct ServeOptions {
    bool isDetached = false;    /**< --detach */
    std::string clock = "wall"; /**< --clock */
    double factor = 1;          /**< --factor */
    bool isDemo = false;        /**< --demo */
};

void addServeOptions(CLI::App& command, Options& options) {
    auto& own = options.own<ServeOptions>();
    command.add_flag("--detach", own.isDetached, "Return when the station runs, and leave it running");
    command
        .add_option("--clock", own.clock,
                    "wall: the time of a virtual board follows the machine's clock; stepped: it moves only "
                    "while a command waits for it")
        ->check(CLI::IsMember({"wall", "stepped"}));
    constexpr double slowest = 0.001, fastest = 1000;
    command
        .add_option("--factor", own.factor, "How many times as fast as the machine's clock, 1 if not given")
        ->type_name("NUMBER")
        ->check(CLI::Range(slowest, fastest));
    addStation(command, options);
    command
        .add_flag(
            "--demo", own.isDemo,
            "A camera above a belt with a chart, to look at: as --station-file with docs/examples/demo.json")
        ->excludes("--station-file");
    addHttpOptions(command, options);
}

/** The station file that is asked for, or the embedded one of --demo. */
std::optional<StationFile> askedStation(const Options& options) {
    if (!options.of<ServeOptions>().isDemo) return stationOf(options);
    StationFile demo = parseStation(std::string(serve::findPageFile("demo.json")->content), ".");
    demo.name = "demo.json";
    return demo;
}

/** The arguments: a name, then assignments. */
bool isNamed(const Words& words) { return !words.empty() && !isAssignment(words.front()); }

std::string stationNameOf(const Words& words) {
    return isNamed(words) ? words.front() : serve::defaultStationName;
}

Words assignmentsOf(const Words& words) { return isNamed(words) ? behindFirst(words) : words; }

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
    Station(Context& context, const serve::StationPlace& place, const std::optional<StationFile>& station)
        : m_context(context)
        , m_shown(context.options())
        , m_session(context)
        , m_socket(place, {{"board", boardText(m_shown)}, {"clock", clockText(m_shown)}}) {
        static_cast<BoardOptions&>(m_options) = m_shown;
        context.setPause([this] { lookMeanwhile(); });
        if (!m_shown.of<HttpOptions>().isOff) openHttp(place.name, station);
        m_socket.setReady(m_http ? m_http->address(false) : "", address());
    }
    ~Station() { m_context.setPause({}); }
    Station(const Station&) = delete;
    Station& operator=(const Station&) = delete;

    /** The address of the page with its token; empty without HTTP. */
    std::string address() const { return m_http ? m_http->address(true) : ""; }

    /** Runs until a client or a signal ends it. */
    void run() {
        while (!m_socket.isStopAsked() && waitForWork()) {
            const std::optional<serve::ClientCommand> command =
                m_socket.begin([](const serve::ClientCommand&) { return true; });
            if (m_http) m_http->carryOut(false);
            if (!command) continue;
            const bool acquires = mayAcquire(*command);
            if (m_http) m_http->beginCommand(m_socket.runningCommand(), acquires);
            const bool isInterruptedByClient =
                m_socket.end(carryOut(*command, [&] { return runFor(*command); }));
            followClock();
            if (m_http) m_http->endCommand(acquires);
            if (m_interruption.isAsked() && !isInterruptedByClient) return;
            m_interruption.rearm();
        }
    }

private:
    void openHttp(const std::string& name, const std::optional<StationFile>& station) {
        const auto& own = m_shown.of<HttpOptions>();
        const auto& clock = m_shown.of<ServeOptions>();
        const serve::StationAccess access{
            .name = name,
            .version = APPLETCTL_VERSION,
            .board = boardText(m_shown),
            .isWallClock = clock.clock == "wall",
            .factor = clock.factor,
            .maySet = own.maySet,
            .station = station,
            .wake = [this] { m_socket.wake(); },
            .live = &m_context,
            .change = [this](const std::string& text,
                             const std::function<void()>& work) { change(text, work); }};
        try {
            m_http.emplace(access, httpPlace(own), httpToken(own));
        } catch (const Unavailable& error) {
            if (own.isAsked()) throw;
            std::cerr << "appletctl: the station has no page: " << error.what() << '\n';
        }
    }

    /** Waits for something to do, or for the next moment at which time should pass. False when the station should
     *  end. */
    bool waitForWork() {
        using Clock = Interruption::Clock;
        constexpr std::chrono::milliseconds period(
            100); // at most so much time is made up by the next command
        Instance* const clocked = clockedInstance();
        if (clocked == nullptr) return m_interruption.waitReadable(m_socket.readable());
        clocked->board().now(clocked->device()); // lets time pass
        if (m_http) m_http->watchSource();
        return m_interruption.waitReadable(m_socket.readable(), Clock::now() + period);
    }

    /** Work of a client by HTTP. */
    void change(const std::string& text, const std::function<void()>& work) {
        const Stopwatch watch;
        try {
            m_session.change(text, work);
        } catch (...) {
            m_socket.addToLog(text, exitRefused, watch.milliseconds() / 1000);
            throw;
        }
        m_socket.addToLog(text, exitDone, watch.milliseconds() / 1000);
    }

    /** True for a command that may start an acquisition, or replace the board. */
    static bool mayAcquire(const serve::ClientCommand& command) {
        const Words words = command.kind == serve::ClientCommand::Kind::commandLine
                                ? command.words
                                : splitLine(command.line).words;
        const auto acquires = [&](const Command* row) {
            return row->acquires && std::ranges::find(words, row->name) != words.end();
        };
        return std::ranges::any_of(allCommands(), acquires);
    }

    /** A command may have replaced the board. */
    void followClock() {
        if (Instance* const clocked = clockedInstance())
            clocked->board().clock(clocked->device(), m_shown.of<ServeOptions>().factor);
    }

    /** The instance, if its time follows the clock; else null. */
    Instance* clockedInstance() {
        if (!m_context.isUp() || m_shown.of<ServeOptions>().clock != "wall") return nullptr;
        Instance& instance = m_context.instance();
        return instance.host()->isVirtual() && instance.device() != nullptr ? &instance : nullptr;
    }

    /** Runs during a pause of the current command: executes commands that only read and are quick. */
    void lookMeanwhile() {
        if (m_isPaused || m_interruption.isAsked() || m_context.isCopy()) return;
        m_isPaused = true;
        if (m_http) m_http->carryOut(true);
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
    std::optional<serve::StationHttp> m_http; // last: its threads use the other members
};

std::string usageText(const std::string& name) {
    return "Use it with 'appletctl --station " + name + " COMMAND', or set APPLETCTL_STATION=" + name +
           "; end it with 'appletctl station stop " + name + "'";
}

/** For a person: how other machines reach the page, if it listens for them. */
std::string remoteNote(const std::string& address, const HttpOptions& options) {
    if (!options.isRemote()) return "";
    std::string text = "What is sent can be read on the way, its token too: it is not encrypted.\n";
    if (!options.isAnyAddress()) return text;
    const std::string port = address.substr(address.find(':', address.find("://") + 3));
    std::array<char, 256> name{};
    if (gethostname(name.data(), name.size() - 1) != 0) return text;
    return "From other machines: http://" + std::string(name.data()) + port + '\n' + text;
}

/** The address of the page. */
std::string pageText(const std::string& address, const Options& options) {
    return lineOf({"page", address}, "Its page: " + address) +
           forPerson(remoteNote(address, options.of<HttpOptions>()));
}

Report serveStation(Context& context, const Words& words) {
    const serve::StationPlace place = serve::placeOf(stationNameOf(words));
    const ServeOptions own = context.options().of<ServeOptions>(); // which change below
    if (own.clock == "stepped" && own.factor != 1)
        throw UsageError(
            "--factor " + numberText(own.factor) +
            ": it is the speed of a clock, and with --clock stepped time follows none; leave one of "
            "them out");
    Report report;
    report.document["station"] = place.name;
    if (own.isDetached) {
        report.document["process"] = startDetached(place);
        const nlohmann::json address = serve::CommandClient(place).ask("address");
        report.document["address"] = address;
        report.text = lineOf({"station", place.name}, "The station '" + place.name + "' runs.") +
                      (address.is_null() ? "" : pageText(address.get<std::string>(), context.options())) +
                      forPerson(usageText(place.name) + ".\n");
        return report;
    }
    context.setOptions(withWholePaths(context.options()));
    const std::optional<StationFile> file = askedStation(context.options());
    if (file) setUpStation(context.instance(), context.parameters(), *file);
    CommandRun work(context, assignmentsOf(words));
    if (work.isRefused()) return std::move(work.report);
    const bool hasClock = work.instance.host()->isVirtual() && work.instance.device() != nullptr;
    if (hasClock && own.clock == "wall") work.instance.board().clock(work.instance.device(), own.factor);
    Station station(context, place, file);
    report.document["process"] = getpid();
    report.document["address"] = nullptr;
    if (!station.address().empty()) report.document["address"] = station.address();
    report.isPrinted = true;
    report.text = lineOf({"station", place.name}, "The station '" + place.name + "' runs until Ctrl-C.") +
                  (station.address().empty() ? "" : pageText(station.address(), context.options())) +
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
    .argumentHelp = "Name of the station, main if not given, then assignments to execute at its start",
    .form = "[NAME] [NAME=VALUE...]",
    .examples = {{"serve", "a station 'main' with a virtual board, until Ctrl-C"},
                 {"serve --detach line2 --from line.mcf",
                  "one in the background, with the settings of a file"},
                 {"--station line2 set FG_WIDTH=2048", "a command on it; the next one finds the width set"},
                 {"serve --allow-set --demo", "a moving picture: open the address that it prints"}},
    .most = -1,
    .run = serveStation,
    .scratch = Context::Scratch::wanted,
    .addOptions = addServeOptions,
    .kind = Command::Kind::local,
    .sets = Command::Sets::assignments,
    .showsValues = true,
    .managesStations = true,
};

} // namespace appletctl
