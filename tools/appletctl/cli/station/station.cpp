// Lists running stations, shows their logs, stops them.

#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/report_text.h"
#include "appletctl/base/terminal.h"
#include "appletctl/commands/Command.h"
#include "serve/CommandClient.h"

#include <unistd.h>

#include <array>
#include <cmath>
#include <ctime>
#include <optional>

namespace appletctl {
namespace {

constexpr CommandGroup stationGroup = {"station", "Stations that 'serve' keeps running"};

std::string nameFrom(const Words& words) { return words.empty() ? serve::defaultStationName : words.front(); }

/** "12 s", "3 min", "5 h". */
std::string ageText(double seconds) {
    constexpr double minute = 60, hour = 3600;
    if (seconds < 2 * minute) return numberText(std::floor(seconds)) + " s";
    if (seconds < 2 * hour) return numberText(std::floor(seconds / minute)) + " min";
    return numberText(std::floor(seconds / hour)) + " h";
}

/** Nothing for one that was killed, also when that happens meanwhile; the next station of that name replaces it. */
std::optional<nlohmann::json> statusOf(const serve::StationLocation& location) {
    if (!serve::isRunning(location)) return std::nullopt;
    try {
        return serve::CommandClient(location).ask("status");
    } catch (const Failure&) { // it has ended, or is starting
        return std::nullopt;
    }
}

Report listStations(Context&, const Words&) {
    Report report;
    auto& rows = report.document["stations"] = nlohmann::ordered_json::array();
    Table table;
    table.setTitles({"STATION", "PROCESS", "BOARD", "CLOCK", "RUNS FOR", "COMMANDS", "PAGE", "NOW"});
    table.setDispensable({"COMMANDS", "RUNS FOR", "CLOCK", "PROCESS", "PAGE"});
    for (const std::string& name : serve::stationNames()) {
        std::optional<nlohmann::json> status = statusOf(serve::locationOf(name));
        if (!status) continue;
        status->emplace("address", nullptr); // of an older program it has none
        const nlohmann::json& command = status->at("command");
        table.addRow({name, numberText(status->at("process").get<int>()),
                      status->at("board").get<std::string>(), status->at("clock").get<std::string>(),
                      ageText(status->at("seconds").get<double>()),
                      numberText(status->at("commands").get<std::uint64_t>()),
                      status->at("address").is_null() ? "-" : status->at("address").get<std::string>(),
                      command.is_null() ? "-" : printable(command.get<std::string>())});
        rows.emplace_back(*status);
    }
    report.text = rows.empty() && !isPlainOutput() ? "No station runs. 'appletctl serve' starts one.\n"
                                                   : table.render(Style::forStream(STDOUT_FILENO));
    return report;
}

Report showAddress(Context&, const Words& words) {
    const std::string name = nameFrom(words);
    const nlohmann::json address = serve::CommandClient(serve::locationOf(name)).ask("address");
    if (address.is_null())
        throw Failure("the station '" + name + "' has no page: it was started without HTTP");
    Report report;
    report.document["station"] = name;
    report.document["address"] = address;
    report.text = address.get<std::string>() + '\n';
    return report;
}

Report stopStation(Context&, const Words& words) {
    const std::string name = nameFrom(words);
    const serve::StationLocation location = serve::locationOf(name);
    serve::CommandClient(location).stop();
    Report report;
    report.document["station"] = name;
    report.text = lineOf({"stopped", name}, "The station '" + name + "' has ended.");
    return report;
}

std::string timeText(double secondsSinceEpoch) {
    const auto seconds = static_cast<std::time_t>(secondsSinceEpoch);
    std::tm local{};
    localtime_r(&seconds, &local);
    std::array<char, 32> text{};
    const std::size_t size = std::strftime(text.data(), text.size(), "%F %T", &local);
    return {text.data(), size};
}

Report showLog(Context&, const Words& words) {
    const std::string name = nameFrom(words);
    const nlohmann::json log = serve::CommandClient(serve::locationOf(name)).ask("log");
    Report report;
    report.document["station"] = name;
    report.document["commands"] = log;
    Table table;
    table.setTitles({"TIME", "PROCESS", "EXIT", "TOOK", "COMMAND"});
    table.setDispensable({"PROCESS", "TOOK"});
    for (const nlohmann::json& entry : log)
        table.addRow({timeText(entry.at("time").get<double>()),
                      numberText(entry.at("process").get<std::int64_t>()),
                      numberText(entry.at("exitCode").get<int>()),
                      numberText(std::round(entry.at("seconds").get<double>() * 1e4) / 10) + " ms",
                      printable(entry.at("command").get<std::string>())});
    report.text = log.empty() && !isPlainOutput()
                      ? "The station '" + name + "' has not executed a command yet.\n"
                      : table.render(Style::forStream(STDOUT_FILENO));
    return report;
}

} // namespace

extern const Command stationListCommand, stationStopCommand, stationLogCommand, stationAddressCommand;

const Command stationListCommand = {
    .group = &stationGroup,
    .name = "list",
    .help = "Show the running stations of this user",
    .examples = {{"station list", "names, boards, and the command at work"}},
    .run = listStations,
    .kind = Command::Kind::local,
    .managesStations = true,
    .withoutBoard = "",
};

const Command stationAddressCommand = {
    .group = &stationGroup,
    .name = "address",
    .help = "Print the address of a station's page, with the token that it needs",
    .argument = "NAME",
    .argumentHelp = "Name of the station, main if not given",
    .examples = {{"station address line2", "to open in a browser"}},
    .most = 1,
    .run = showAddress,
    .kind = Command::Kind::local,
    .managesStations = true,
    .withoutBoard = "",
};

const Command stationStopCommand = {
    .group = &stationGroup,
    .name = "stop",
    .help = "End a station; a running command is interrupted",
    .argument = "NAME",
    .argumentHelp = "Name of the station, main if not given",
    .examples = {{"station stop", "the station 'main'"}},
    .most = 1,
    .run = stopStation,
    .kind = Command::Kind::local,
    .managesStations = true,
    .withoutBoard = "",
};

const Command stationLogCommand = {
    .group = &stationGroup,
    .name = "log",
    .help = "Show the last thousand commands of a station: when, by whom, how they ended",
    .argument = "NAME",
    .argumentHelp = "Name of the station, main if not given",
    .examples = {{"station log line2", "the commands of the station 'line2'"}},
    .most = 1,
    .run = showLog,
    .kind = Command::Kind::local,
    .managesStations = true,
    .withoutBoard = "",
};

} // namespace appletctl
