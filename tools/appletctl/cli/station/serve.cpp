// A persistent station: one process keeps the applet and the board and executes the commands of its clients.

#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/print.h"
#include "appletctl/base/report_text.h"
#include "appletctl/cli/station/CommandServer.h"
#include "appletctl/cli/station/detached_station.h"
#include "appletctl/cli/station/http_options.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/shared_options.h"
#include "appletctl/commands/signals/wave_option.h"
#include "serve/CommandClient.h"
#include "serve/http/routes/page_files.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <optional>

namespace appletctl {
namespace {

struct ServeOptions {
    bool isDetached = false;          /**< --detach */
    std::optional<std::string> clock; /**< --clock */
    std::optional<double> factor;     /**< --factor */
    bool isDemo = false;              /**< --demo */
};

void addServeOptions(CLI::App& command, Options& options) {
    auto& own = options.own<ServeOptions>();
    command.add_flag("--detach", own.isDetached, "Return when the station runs, and leave it running");
    command
        .add_option("--clock", own.clock,
                    "wall: the time of a virtual board follows the machine's clock; stepped: it moves only "
                    "while a command waits for it. As the station file says if not given, else wall")
        ->check(CLI::IsMember({"wall", "stepped"}));
    command
        .add_option("--factor", own.factor, "How many times as fast as the machine's clock, 1 if not given")
        ->type_name("NUMBER")
        ->check(CLI::Range(VBOARD_SLOWEST_CLOCK, VBOARD_FASTEST_CLOCK))
        ->check([](const std::string& text) { // which the range does not refuse
            return std::isnan(std::strtod(text.c_str(), nullptr)) ? inQuotedWord(text) + " is not a number"
                                                                  : "";
        });
    addStation(command, options);
    command
        .add_flag(
            "--demo", own.isDemo,
            "A camera above a belt with a chart, to look at: as --station-file with docs/examples/demo.json")
        ->excludes("--station-file");
    addHttpOptions(command, options);
}

/** The station file that is asked for, or the embedded one of --demo. Throws UsageError. */
std::optional<StationFile> askedStation(const Options& options) {
    if (!options.of<ServeOptions>().isDemo) return stationOf(options);
    requireSetUpAllowed(options, "--demo");
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

/** Throws UsageError for options of the clock that have no effect. */
void requireClock(const Options& options) {
    const auto& own = options.of<ServeOptions>();
    if (own.clock) requireVirtualBoard(options, "--clock");
    if (own.factor) requireVirtualBoard(options, "--factor");
    if (own.clock == "stepped" && own.factor)
        throw UsageError(
            "--factor " + numberText(*own.factor) +
            ": it is the speed of a clock, and with --clock stepped time follows none; leave one of "
            "them out");
}

/** How many times as fast as the machine's clock time passes; 0: it is stepped. The options come before the file. */
double clockOf(const ServeOptions& own, const std::optional<StationFile>& station) {
    if (own.factor) return *own.factor;
    if (own.clock) return *own.clock == "wall" ? 1 : 0;
    return station ? station->clock.value_or(1) : 1;
}

std::string usageText(const std::string& name) {
    return "Use it with 'appletctl --station " + name + " COMMAND', or set APPLETCTL_STATION=" + name +
           "; end it with 'appletctl station stop " + name + "'";
}

/** For a person: how other machines reach the page, if it listens for them. */
std::string remoteNote(const std::string& address, const HttpOptions& options) {
    if (!options.isRemote()) return "";
    std::string text = "The connection is not encrypted; others can read the token.\n";
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

/** The names of the station and of its page. */
std::string readyText(const Options& options, const std::string& name, const std::string& address,
                      const char* howLong) {
    return lineOf({"station", name}, "The station '" + name + "' runs" + howLong + ".") +
           (address.empty() ? "" : pageText(address, options)) + forPerson(usageText(name) + ".\n");
}

/** Starts a process that keeps the station, and reports it when it is ready. */
Report serveDetached(const Context& context, const serve::StationLocation& location) {
    Report report;
    report.document["station"] = location.name;
    report.document["process"] = startDetached(location);
    const nlohmann::json address = serve::CommandClient(location).ask("address");
    report.document["address"] = address;
    report.text =
        readyText(context.options(), location.name, address.is_null() ? "" : address.get<std::string>(), "");
    return report;
}

/** Prints the report at once, since the command ends with the station. */
Report announce(const Context& context, const serve::StationLocation& location, const std::string& address) {
    const Options& options = context.options();
    Report report;
    report.document["station"] = location.name;
    report.document["process"] = getpid();
    report.document["address"] = nullptr;
    if (!address.empty()) report.document["address"] = address;
    report.isPrinted = true;
    report.text = readyText(options, location.name, address, " until Ctrl-C");
    if (options.json)
        writeOut(documentText(report, "serve", 2));
    else if (!options.quiet)
        writeOut(laidOut(report));
    return report;
}

/** Sets up the camera and the scene of the file, if one is asked for. The result is what the board has. */
std::optional<StationFile> setUpBoard(Context& context, std::optional<StationFile> file) {
    if (file)
        setUpStation(context.instance(), context.parameters(), *file);
    else if (context.options().isVirtual())
        file = stationOfEnvironment(); // the board has set itself up with it
    return file;
}

Report serveStation(Context& context, const Words& words) {
    const serve::StationLocation location = serve::locationOf(stationNameOf(words));
    const ServeOptions own = context.options().of<ServeOptions>(); // which change below
    requireClock(context.options());
    std::optional<StationFile> file = askedStation(context.options());
    if (own.isDetached) return serveDetached(context, location);
    context.setOptions(withWholePaths(context.options()));
    file = setUpBoard(context, std::move(file));
    CommandRun run(context, assignmentsOf(words));
    if (run.isRefused()) return std::move(run.report);
    CommandServer server(context, location, file, clockOf(own, file));
    Report report = announce(context, location, server.address());
    server.run();
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
