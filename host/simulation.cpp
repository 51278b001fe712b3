// The simulated station: time, waves, station files, events.

#include "applet_tools/applet/assignments.h"
#include "applet_tools/applet/events.h"
#include "applet_tools/applet/timing/ticks.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "applet_tools/station/EventLog.h"
#include "applet_tools/station/waves.h"
#include "host/Deadline.h"
#include "host/Station.h"
#include "host/refusal.h"
#include "host/set_up.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <bit>
#include <filesystem>
#include <thread>

using namespace host;

namespace {

using applet_tools::numberText;
using applet_tools::Ticks;

static_assert(VEXO_TICKS_PER_SECOND == applet_tools::ticksPerSecond);

/** Executes the work with the virtual board, without the station's lock: the board has its own. */
template <typename Work> int onBoard(vexo_station* station, const Work& work) noexcept {
    return onStation(station, [&](vexo_station& own) {
        requireVirtual(own);
        work(own, own.instance.board(), own.instance.device());
    });
}

/** The applet's name of an event. Null for an event without a mask. */
const char* nameOf(vexo_station& station, std::uint64_t mask) {
    return mask != 0 ? station.instance.applet().Fg_getEventName(station.fg, mask) : nullptr;
}

/** Takes events from the queue until one is wanted; false if there is none. */
bool takeEvent(vexo_station& station, std::uint64_t mask, vexo_event& event) {
    vboard_event taken{};
    while (station.instance.board().next_event(station.instance.device(), &taken) == VBOARD_OK) {
        const std::uint64_t eventMask = station.instance.applet().Fg_getEventMask(station.fg, taken.name);
        if (mask != 0 && (eventMask & mask) == 0) continue;
        const char* const name = nameOf(station, eventMask);
        event = {.tick = taken.tick, .mask = eventMask, .name = name != nullptr ? name : taken.name};
        return true;
    }
    return false;
}

/** Advances time by a short step, at most to `end`, so that events are taken before their queue is full. */
void passTime(vexo_station& station, Ticks now, Ticks end) {
    using namespace std::chrono_literals;
    const auto& board = station.instance.board();
    if (board.advance(station.instance.device(), std::min(applet_tools::EventLog::longestPause, end - now)) ==
        VBOARD_NOT_STEPPED)
        std::this_thread::sleep_for(200us);
}

} // namespace

namespace host {

applet_tools::StationFile readStation(const std::string& file) {
    std::string text;
    try {
        text = applet_tools::requiredTextOfFile(file);
    } catch (const applet_tools::UsageError& error) {
        throw Error(VEXO_ERR_FILE, error.what());
    }
    return about(applet_tools::shownFile(file), [&] {
        applet_tools::StationFile station =
            applet_tools::parseStation(text, std::filesystem::path(file).parent_path().string());
        station.name = file;
        return station;
    });
}

void setUp(vexo_station& station, const applet_tools::StationFile& file) {
    if (!file.parameters.empty()) requireWritable(station, "a station file with parameters");
    about(file.name.empty() ? "" : applet_tools::shownFile(file.name), [&] {
        const applet_tools::ParameterList& parameters = station.live.parameters();
        parseAssignments(parameters, file.parameters); // a misspelt one changes nothing
        connectStation(station.instance.board(), station.instance.device(), file);
        for (const applet_tools::Assignment& assignment : parseAssignments(parameters, file.parameters))
            set(station, assignment);
    });
}

} // namespace host

int vexo_clock(vexo_station* station, double factor) {
    return onBoard(station, [&](vexo_station&, const applet_host::BoardFunctions& board, LOOMdevice* device) {
        if (board.clock(device, factor) != VBOARD_OK)
            throw Error(VEXO_ERR_ARGUMENT, "the factor of the clock is " + numberText(factor) +
                                               "; 0 (stepped) or " + numberText(VBOARD_SLOWEST_CLOCK) +
                                               " to " + numberText(VBOARD_FASTEST_CLOCK) + " is accepted");
    });
}

int vexo_now(vexo_station* station, uint64_t* tick) {
    if (tick == nullptr) return failNull("the pointer for the time");
    return onBoard(station, [&](vexo_station&, const applet_host::BoardFunctions& board, LOOMdevice* device) {
        *tick = board.now(device);
    });
}

int vexo_advance(vexo_station* station, uint64_t ticks) {
    return onBoard(station, [&](vexo_station&, const applet_host::BoardFunctions& board, LOOMdevice* device) {
        const Ticks start = board.now(device);
        if (ticks > VBOARD_NOT_STEPPED - 1 - start)
            throw Error(VEXO_ERR_ARGUMENT, "the time ends before " + std::to_string(ticks) + " more ticks");
        for (Ticks now = start; now < start + ticks;) {
            now = board.advance(device, start + ticks - now);
            if (now == VBOARD_NOT_STEPPED)
                throw Error(VEXO_ERR_STATE,
                            "the time of this station follows the clock and cannot be advanced; "
                            "vexo_clock with the factor 0 makes it stepped");
        }
    });
}

int vexo_wave(vexo_station* station, const char* wave) {
    if (wave == nullptr) return failNull("the wave");
    return onLocked(station, [&](vexo_station& own) {
        requireVirtual(own);
        connectWave(own.instance, applet_tools::parseWave(wave));
    });
}

int vexo_set_up(vexo_station* station, const char* file) {
    if (file == nullptr) return failNull("the name of the file");
    return onLocked(station, [&](vexo_station& own) {
        requireVirtual(own);
        setUp(own, readStation(file));
    });
}

int vexo_set_up_text(vexo_station* station, const char* json, const char* folder) {
    if (json == nullptr) return failNull("the text");
    return onLocked(station, [&](vexo_station& own) {
        requireVirtual(own);
        setUp(own, applet_tools::parseStation(json, folder != nullptr ? folder : ""));
    });
}

int vexo_event_mask(vexo_station* station, const char* name, uint64_t* mask) {
    if (name == nullptr) return failNull("the name");
    if (mask == nullptr) return failNull("the pointer for the mask");
    return onStation(station,
                     [&](vexo_station& own) { *mask = applet_tools::eventMask(own.instance, name); });
}

int vexo_event_at(vexo_station* station, uint32_t index, const char** name, uint64_t* mask) {
    if (name == nullptr || mask == nullptr) return failNull("the pointer for the name or the mask");
    return onStation(station, [&](vexo_station& own) {
        const auto events = applet_tools::eventsOf(own.instance);
        if (index >= events.size()) throw Error(VEXO_ERR_NAME, "there is no event " + std::to_string(index));
        *mask = events[index].mask;
        *name = nameOf(own, *mask);
    });
}

int vexo_wait_event(vexo_station* station, uint64_t mask, double seconds, double wall, vexo_event* event,
                    uint64_t* lost) {
    if (event == nullptr) return failNull("the pointer for the event");
    return onBoard(station, [&](vexo_station& own, const applet_host::BoardFunctions& board,
                                LOOMdevice* device) {
        const Deadline deadline(board.now(device), seconds, wall);
        for (bool isTaken = takeEvent(own, mask, *event); !isTaken; isTaken = takeEvent(own, mask, *event)) {
            const Ticks now = board.now(device);
            if (deadline.isOver(now)) throw Error(VEXO_TIMEOUT, "no such event happened within the time-out");
            passTime(own, now, deadline.tick());
        }
        if (lost != nullptr)
            *lost = static_cast<std::uint64_t>(
                own.instance.applet().Fg_getStatusEx(own.fg, VBOARD_STATUS_DROPPED_EVENTS, 0, 0, nullptr));
    });
}
