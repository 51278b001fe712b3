#include "serve/http/routes/station_api.h"

#include "applet_tools/station/signals.h"
#include "serve/http/protocol/Query.h"
#include "serve/http/state/station_documents.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace serve {
namespace {

using namespace std::chrono_literals;
using applet_tools::StationSignal;
using applet_tools::Ticks;
using applet_tools::Waveform;

constexpr std::size_t mostStreams = 64;
constexpr auto samplePeriod = 250ms;
constexpr auto keepAlivePeriod = 15s;

/** The query of a timeline. */
struct TimelineRequest {
    std::optional<std::int64_t> from, to;
    std::vector<StationSignal> signals;
    std::size_t most; /**< limit of the edges of a signal, and of the events */
};

TimelineRequest timelineRequestFrom(const Query& query) {
    constexpr std::int64_t usualEdges = 4000, mostEdges = 32768;
    constexpr std::int64_t anyTick = std::numeric_limits<std::int64_t>::max();
    TimelineRequest asked{.from = query.number("from", 0, anyTick),
                          .to = query.number("to", 0, anyTick),
                          .signals = {},
                          .most = 0};
    if (asked.from && asked.to && *asked.from > *asked.to)
        throw HttpError(status::badRequest, "invalid",
                        "from=" + query.text("from") + " is after to=" + query.text("to") +
                            ": a span ends where it begins, or later");
    asked.most = static_cast<std::size_t>(query.number("most", 1, mostEdges).value_or(usualEdges));
    for (const std::string& name : query.list("names"))
        asked.signals.push_back(applet_tools::signalFrom(name));
    if (asked.signals.empty()) asked.signals = applet_tools::stationSignals();
    return asked;
}

struct TickSpan {
    Ticks from = 0, to = 0;
};

/** Returns the part of the span that has passed; without a start, the last second. */
TickSpan spanOf(const TimelineRequest& asked, Ticks now) {
    const Ticks to = asked.to ? std::min(now, static_cast<Ticks>(*asked.to)) : now;
    const Ticks from = asked.from ? std::min(to, static_cast<Ticks>(*asked.from))
                                  : to - std::min(to, applet_tools::ticksPerSecond);
    return {from, to};
}

Json signalAsJson(SharedStation& station, const StationSignal& signal, const TickSpan& span,
                  std::size_t most) {
    const Waveform waveform = waveformOf(station.instance(), signal.select, span.from, span.to);
    const bool isCut = !waveform.isComplete || waveform.edges.size() > most;
    const auto first = waveform.edges.size() > most ? waveform.edges.end() - static_cast<std::ptrdiff_t>(most)
                                                    : waveform.edges.begin();
    Json edges = Json::array();
    for (auto edge = first; edge != waveform.edges.end(); ++edge)
        edges.push_back({edge->tick, edge->level ? 1 : 0});
    const bool isHigh = first == waveform.edges.begin() ? waveform.startsHigh : !first->level;
    return {{"name", signal.name},
            {"kind", signal.isPulse() ? "pulse" : "level"},
            {"startsHigh", isHigh},
            {"edges", std::move(edges)},
            {"isCut", isCut}};
}

/** Returns the kept pictures that have lines within the span. */
Json imagesAsJson(const SharedStation& station, const TickSpan& span) {
    Json images = Json::array();
    if (!station.pictures) return images;
    for (const LivePictures::Picture& picture : station.pictures->allKept()) {
        const auto& record = picture->record();
        if (record.first_line > span.to || record.last_line < span.from) continue;
        images.push_back({{"number", picture->number()},
                          {"from", record.first_line},
                          {"to", record.last_line},
                          {"arrival", record.arrival}});
    }
    return images;
}

void addEvents(Json& document, const SharedStation::EventSpan& span) {
    Json& events = document["events"] = Json::array();
    for (const SharedStation::StationEvent& event : span.events)
        events.push_back({{"tick", event.tick}, {"name", event.name}});
    document["areEventsCut"] = span.isCut;
}

/** The state of a client's stream. */
struct StreamState {
    std::uint64_t next;
    EventHub::Listener listener;
    EventHub::Clock::time_point lastSent = EventHub::Clock::now();
    bool isFirst = true;

    explicit StreamState(EventHub& hub) : next(hub.end()), listener(hub) {}
};

/** One step of a stream. */
bool sendMessages(SharedStation& station, StreamState& state, const HttpSend& send) {
    const auto now = EventHub::Clock::now();
    if (state.isFirst) {
        state.isFirst = false;
        if (!send("retry: 1000\n\n")) return false;
    }
    station.sampleIfDue(samplePeriod);
    const auto messages = station.hub.wait(state.next, now + samplePeriod);
    for (const auto& message : messages)
        if (!send(*message)) return false;
    if (!messages.empty()) state.lastSent = now;
    if (now - state.lastSent >= keepAlivePeriod) {
        state.lastSent = now;
        if (!send(": \n\n")) return false;
    }
    return send("") && !station.hub.isClosed();
}

} // namespace

HttpAnswer showStation(SharedStation& station, const HttpRequest&, const std::string&) {
    return jsonAnswer(station.commands.run(Work::reads, [&] { return stationAsJson(station); }));
}

HttpAnswer showLosses(SharedStation& station, const HttpRequest&, const std::string&) {
    station.requireVirtual();
    return jsonAnswer(station.commands.run(
        Work::reads, [&] { return lossesAsJson(applet_tools::lossesOf(station.instance())); }));
}

HttpAnswer showTimeline(SharedStation& station, const HttpRequest& request, const std::string&) {
    station.requireVirtual();
    const TimelineRequest asked = timelineRequestFrom(Query(request));
    Json document;
    TickSpan span;
    station.commands.run(Work::reads, [&] {
        // Events are taken after the time is read, so that all events up to it are included.
        const Ticks now = station.instance().board().now(station.instance().device());
        station.live.takeEvents();
        span = spanOf(asked, now);
        document["from"] = span.from;
        document["to"] = span.to;
        document["now"] = now;
        document["tickNs"] = 1e9 / static_cast<double>(applet_tools::ticksPerSecond);
        for (const StationSignal& signal : asked.signals)
            document["signals"].push_back(signalAsJson(station, signal, span, asked.most));
    });
    document["images"] = imagesAsJson(station, span);
    addEvents(document, station.eventsBetween(span.from, span.to, asked.most));
    return jsonAnswer(document);
}

HttpAnswer streamEvents(SharedStation& station, const HttpRequest&, const std::string&) {
    if (station.hub.listeners() >= mostStreams)
        throw HttpError(status::unavailable, "busy",
                        "there are " + std::to_string(mostStreams) +
                            " streams already, and no more are served");
    const auto state = std::make_shared<StreamState>(station.hub);
    return {
        .type = "text/event-stream",
        .headers = {{"Cache-Control", "no-store"}},
        .stream = [&station, state](const HttpSend& send) { return sendMessages(station, *state, send); }};
}

HttpAnswer sendMetrics(SharedStation& station, const HttpRequest&, const std::string&) {
    return {.type = "text/plain; version=0.0.4; charset=utf-8",
            .body = std::make_shared<const std::string>(
                station.commands.run(Work::reads, [&] { return metricsOf(station); })),
            .headers = {{"Cache-Control", "no-store"}}};
}

} // namespace serve
