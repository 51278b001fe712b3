#include "serve/http/state/SharedStation.h"

#include "applet_tools/station/missing_picture.h"
#include "applet_tools/station/signals.h"
#include "serve/http/state/station_documents.h"

#include <algorithm>
#include <map>

namespace serve {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t mostEventsOfName = 5000; // kept for each name

} // namespace

SharedStation::SharedStation(LiveStation& liveStation)
    : live(liveStation)
    , access(live.access)
    , commands(live.commands)
    , pictures(access.clock != 0 ? live.pictures.get() : nullptr)
    , parameters(*access.live)
    , setup(access.station.value_or(applet_tools::StationFile()))
    , ownImage(setup.scene ? setup.scene->image : "") {
    live.onChange.emplace_back([this] { noteChanges(); });
    live.onEvents.emplace_back([this](const LiveStation::EventTicks& taken) { keepEvents(taken); });
    if (pictures == nullptr) return;
    pictures->setOnPicture([this](const SharedPicture& picture) {
        hub.publish("picture", {{"number", picture.number()}, {"tick", picture.record().arrival}});
    });
}

SharedStation::~SharedStation() {
    if (pictures != nullptr) pictures->setOnPicture({});
}

void SharedStation::requireVirtual() const {
    if (access.board != "virtual")
        throw HttpError(status::notFound, "none",
                        "this station has no virtual board, which simulates signals and pictures");
}

std::optional<HttpError> SharedStation::pictureRefusal() const {
    if (pictures) return std::nullopt;
    const auto refusal = [](const char* reason, const char* advice) {
        return HttpError(status::unavailable, "none", reason, {{"advice", advice}});
    };
    if (access.board == "none")
        return refusal("this station has no board, and so no pictures", "start it without --offline");
    if (access.board == "system")
        return refusal(
            "a station shows the pictures of a virtual board only; those of the machine's board go "
            "to the program that acquires them",
            "look at them in that program; the parameters and lookup tables are set here as usual");
    return refusal("the time of this station is stepped: it moves only while a command waits for it",
                   "start the station with --clock wall");
}

LivePictures& SharedStation::requirePictures() const {
    if (pictures) return *pictures;
    throw *pictureRefusal();
}

applet_tools::MissingPicture SharedStation::whyNoPicture() const {
    const LivePictures::State state = pictures->state();
    if (state.isPaused) return {"the acquisition is paused", {}};
    if (!state.suspendedBy.empty())
        return {"'" + state.suspendedBy + "' takes the pictures now; they continue afterwards", {}};
    if (!state.isRunning) return {"no acquisition runs", {}};
    const applet_tools::WaitStart atPicture =
        m_samples.empty() || !state.hasPicture ? state.start : m_atPicture;
    applet_tools::WaitStart start = atPicture;
    // The signals may have changed since the last picture: only the last second is considered.
    if (!m_samples.empty() && m_samples.front().counts.tick > start.tick) start = m_samples.front().counts;
    start.losses[applet_tools::imageLoss] = atPicture.losses[applet_tools::imageLoss];
    return applet_tools::whyNoPicture(instance(), access.live->parameters(),
                                      {.start = start,
                                       .longer = "wait longer",
                                       .wave = "a wave",
                                       .belt = setup.belt ? &*setup.belt : nullptr,
                                       .camera = setup.camera ? &*setup.camera : nullptr,
                                       .linesAtPicture = atPicture.lines});
}

void SharedStation::watchSource() {
    constexpr auto distance = 100ms, longest = 1000ms;
    if (!pictures) return;
    const LivePictures::State state = pictures->state();
    if (!state.isRunning) return m_samples.clear();
    const Clock::time_point now = Clock::now();
    if (!m_samples.empty() && now - m_samples.back().time < distance) return;
    m_samples.push_back({now, applet_tools::waitStart(instance())});
    while (m_samples.size() > 1 && now - m_samples[1].time >= longest)
        m_samples.pop_front();
    if (m_samples.size() > 1 && state.pictures == m_sampledPictures) return;
    m_sampledPictures = state.pictures;
    m_atPicture = m_samples.back().counts;
}

void SharedStation::noteChanges() {
    if (hub.listeners() == 0) {
        m_states.clear();
        return;
    }
    if (m_states.empty()) {
        m_states = parameters.states();
        return;
    }
    ParameterDocuments::Changes changes = parameters.changesSince(m_states, true);
    if (!changes.values.empty()) hub.publish("parameter", {{"changes", changes.values}});
    if (!changes.limits.empty()) hub.publish("limits", {{"names", changes.limits}});
    m_states = std::move(changes.now);
}

void SharedStation::requireSettable() const {
    if (!access.maySet)
        throw HttpError(status::forbidden, "forbidden",
                        "this station is read-only: start it with --allow-set to change settings");
}

void SharedStation::sampleIfDue(std::chrono::milliseconds period) {
    const std::unique_lock lock(m_sampling, std::try_to_lock);
    if (!lock || EventHub::Clock::now() - m_sampled < period) return;
    m_sampled = EventHub::Clock::now();
    try {
        commands.run(Work::reads, [this] { sample(); });
    } catch (const std::exception&) { // the station is busy, or ends: the next one is soon
    }
}

void SharedStation::sample() {
    noteChanges();
    if (access.board != "virtual") return;
    hub.publish("station", activityOf(*this));
    std::vector<std::int64_t> losses = applet_tools::lossesOf(instance());
    if (losses != m_losses) hub.publish("losses", lossesAsJson(losses));
    m_losses = std::move(losses);
    live.takeEvents();
}

void SharedStation::keepEvents(const LiveStation::EventTicks& taken) {
    for (const auto& [name, ticks] : taken) {
        hub.publish("event", {{"name", name}, {"tick", ticks.back()}, {"count", ticks.size()}});
        const std::lock_guard guard(m_mutex);
        auto& kept = m_events[name];
        kept.insert(kept.end(), ticks.begin(), ticks.end());
        if (kept.size() > mostEventsOfName)
            kept.erase(kept.begin(), kept.end() - static_cast<std::ptrdiff_t>(mostEventsOfName));
    }
}

SharedStation::EventSpan SharedStation::eventsBetween(std::uint64_t from, std::uint64_t to,
                                                      std::size_t most) const {
    const std::lock_guard guard(m_mutex);
    EventSpan span;
    for (const auto& [name, ticks] : m_events) {
        const auto first = std::ranges::lower_bound(ticks, from);
        for (auto tick = first; tick != ticks.end() && *tick <= to; ++tick)
            span.events.push_back({*tick, name});
        span.isCut = span.isCut || (ticks.size() == mostEventsOfName && ticks.front() > from);
    }
    std::ranges::stable_sort(span.events, {}, &StationEvent::tick);
    if (span.events.size() > most) {
        span.events.erase(span.events.begin(), span.events.end() - static_cast<std::ptrdiff_t>(most));
        span.isCut = true;
    }
    return span;
}

} // namespace serve
