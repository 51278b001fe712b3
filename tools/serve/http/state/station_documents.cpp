#include "serve/http/state/station_documents.h"

#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "applet_tools/station/missing_picture.h"
#include "applet_tools/station/signals.h"
#include "serve/http/state/SharedStation.h"

#include <unistd.h>

namespace serve {
namespace {

using namespace applet_tools;

std::int64_t statusOf(SharedStation& station, int status) {
    return station.instance().applet().Fg_getStatusEx(station.instance().fg(), status, 0, 0, nullptr);
}

/** Text lines of metrics. */
class Metrics {
public:
    void add(const char* name, const char* type, const char* help) {
        m_text += std::string("# HELP ") + name + ' ' + help + "\n# TYPE " + name + ' ' + type + '\n';
        m_name = name;
    }
    template <typename Number> void value(Number number, const std::string& labels = "") {
        m_text += m_name + (labels.empty() ? "" : "{" + labels + "}") + ' ' + exactText(number) + '\n';
    }
    template <typename Number> void one(const char* name, const char* type, const char* help, Number number) {
        add(name, type, help);
        value(number);
    }
    const std::string& text() const { return m_text; }

private:
    std::string m_text, m_name;
};

constexpr const char *counter = "counter", *gauge = "gauge";

void addBoard(SharedStation& station, Metrics& metrics) {
    Instance& instance = station.instance();
    const auto& board = instance.board();
    metrics.one("appletctl_simulated_seconds_total", counter, "Simulated time since the board was opened",
                static_cast<double>(board.now(instance.device())) / static_cast<double>(ticksPerSecond));
    metrics.one("appletctl_lines_total", counter, "Lines of the source", sourceLines(instance));
    metrics.add("appletctl_losses_total", counter, "What was lost, by kind");
    const std::vector<std::int64_t> losses = lossesOf(instance);
    for (std::size_t i = 0; i < losses.size(); ++i)
        metrics.value(losses[i], std::string("kind=\"") + lossKinds()[i].name + '"');
    metrics.one("appletctl_buffer_fill_ratio", gauge, "Fill level of the image buffer, 0 to 1",
                static_cast<double>(statusOf(station, VBOARD_STATUS_FILL_LEVEL)) / 100);
    metrics.one("appletctl_board_accesses_total", counter, "Accesses of the board's parameters and registers",
                board.access_count(instance.device()));
    if (!station.pictures) return;
    const LivePictures::State state = station.pictures->state();
    metrics.one("appletctl_pictures_total", counter, "Pictures of the acquisition for viewers",
                state.pictures);
    metrics.one("appletctl_rendered_pictures_total", counter, "Pictures that were rendered for viewers",
                state.rendered);
    metrics.one("appletctl_kept_picture_bytes", gauge, "Memory of the pictures that are kept",
                state.keptBytes);
}

} // namespace

Json stationAsJson(SharedStation& station) {
    const StationAccess& access = station.access;
    const char* applet = nullptr;
    station.instance().applet().Info(FG_INFO_NAME, 0, 0, nullptr, &applet);
    Json document;
    document["name"] = access.name;
    document["process"] = getpid();
    document["version"] = access.version;
    document["applet"] = toUtf8(applet);
    document["board"] = access.board;
    document["clock"] = Json();
    if (access.board == "virtual")
        document["clock"] = {{"kind", access.clock == 0 ? "stepped" : "wall"}, {"factor", access.clock}};
    document["maySet"] = access.maySet;
    document["tickNs"] = 1e9 / static_cast<double>(ticksPerSecond);
    const std::optional<HttpError> refusal = station.pictureRefusal();
    document["hasPictures"] = !refusal;
    document["noPictures"] = Json();
    if (refusal)
        document["noPictures"] = {{"reason", refusal->what()}, {"advice", refusal->members.at("advice")}};
    document["hasBelt"] = access.board == "virtual";
    document["activity"] = access.board == "virtual" ? activityOf(station) : Json();
    return document;
}

Json activityOf(SharedStation& station) {
    Json document;
    document["tick"] = station.instance().board().now(station.instance().device());
    document["lines"] = sourceLines(station.instance());
    document["fillLevel"] = statusOf(station, VBOARD_STATUS_FILL_LEVEL);
    const LivePictures::State state = station.pictures ? station.pictures->state() : LivePictures::State();
    document["isRunning"] = state.isRunning;
    document["pictures"] = state.pictures;
    document["rate"] = state.rate;
    document["command"] = station.commands.command().empty() ? Json() : Json(station.commands.command());
    return document;
}

Json lossesAsJson(const std::vector<std::int64_t>& losses) {
    Json rows = Json::array();
    for (std::size_t i = 0; i < losses.size(); ++i) {
        const LossKind& kind = lossKinds()[i];
        rows.push_back(
            {{"name", kind.name}, {"count", losses[i]}, {"message", kind.what}, {"advice", kind.advice}});
    }
    return {{"losses", std::move(rows)}};
}

std::string metricsOf(SharedStation& station) {
    Metrics metrics;
    metrics.add("appletctl_station_info", gauge, "Always 1; the labels describe the station");
    metrics.value(1, "station=\"" + station.access.name + "\",board=\"" + station.access.board + '"');
    if (station.access.board == "virtual") addBoard(station, metrics);
    const Target temperature{&station.access.live->parameters().find("FG_SYSTEMMONITOR_FPGA_TEMPERATURE")};
    const ReadResult reading = station.access.live->read(temperature);
    if (reading.error == FG_OK && reading.isMeasured)
        metrics.one("appletctl_fpga_temperature_celsius", gauge, "Temperature of the FPGA",
                    asDouble(reading.value));
    metrics.one("appletctl_sets_total", counter, "Requests that set something", station.sets.load());
    metrics.one("appletctl_refused_sets_total", counter, "Those that were refused",
                station.refusedSets.load());
    metrics.one("appletctl_http_requests_total", counter, "Requests with a valid token",
                station.requests.load());
    metrics.one("appletctl_http_refused_requests_total", counter,
                "Requests without a valid token, or of other sites", station.refusedRequests.load());
    metrics.one("appletctl_streams", gauge, "Open streams of events", station.hub.listeners());
    return metrics.text();
}

} // namespace serve
