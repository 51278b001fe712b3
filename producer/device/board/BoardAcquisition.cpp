#include "device/board/BoardAcquisition.h"

#include "applet_host/events.h"
#include "base/Error.h"
#include "device/thread.h"

#include <limits>
#include <utility>

namespace producer {

BoardAcquisition::BoardAcquisition(BoardStation& station, Clock::Kind clock, EventHandler onEvent)
    : Acquisition(station)
    , m_station(station)
    , m_clock(station, clock)
    , m_onEvent(std::move(onEvent))
    , m_thread(startThread([this] { run(); })) {}

BoardAcquisition::~BoardAcquisition() { finish(); }

void BoardAcquisition::finish() {
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
        m_changed.notify_all();
    }
    if (m_thread.joinable()) m_thread.join();
}

void BoardAcquisition::attach(PictureSink* sink) {
    std::unique_lock lock(m_mutex);
    m_sink = sink;
    m_changed.wait(lock, [this] { return !m_isMaking; });
}

void BoardAcquisition::wake() {
    const std::lock_guard lock(m_mutex);
    m_isWoken = true;
    m_changed.notify_all();
}

void BoardAcquisition::start(std::uint64_t pictures) {
    std::unique_lock lock(m_mutex);
    if (!isDone()) throw Error(GC_ERR_RESOURCE_IN_USE, "the acquisition runs already");
    const Geometry atStart = geometry();
    FreeMemory free{&m_station};
    std::unique_ptr<vboard_frames, FreeMemory> memory(
        m_station.board().memory(m_station.device(), 1, std::numeric_limits<std::uint64_t>::max(),
                                 VBOARD_BLOCKING),
        free);
    m_memory = std::move(memory);
    m_geometry = atStart;
    m_wanted = pictures;
    m_delivered = 0;
    fitMemory();
    const int code = m_station.applet().Fg_AcquireEx(m_station.fg(), 0, static_cast<std::intptr_t>(pictures),
                                                     0, m_memory.get());
    if (code != FG_OK) {
        m_memory.reset();
        throw Error(GC_ERR_IO, "the DMA cannot be started: " + std::to_string(code));
    }
    m_isWoken = true;
    m_changed.notify_all();
}

void BoardAcquisition::stop() {
    std::unique_lock lock(m_mutex);
    if (m_memory == nullptr) return;
    m_station.applet().Fg_stopAcquireEx(m_station.fg(), 0, m_memory.get(), 0);
    m_wanted = m_delivered = 1; // existing pictures are not delivered
    m_changed.wait(lock, [this] { return !m_isMaking; });
    m_memory.reset();
}

bool BoardAcquisition::isRunning() {
    const std::lock_guard lock(m_mutex);
    return !isDone();
}

/** The DMA's memory consists of the queued buffers. */
void BoardAcquisition::fitMemory() {
    if (m_memory != nullptr)
        m_station.board().memory_frames(m_memory.get(), m_sink != nullptr ? m_sink->room() : 0);
}

bool BoardAcquisition::isWanted() { return !isDone() && m_sink != nullptr && m_sink->room() > 0; }

void BoardAcquisition::run() {
    std::unique_lock lock(m_mutex);
    while (!m_isEnding) {
        m_isWoken = false;
        fitMemory();
        const std::int64_t wanted = isWanted() ? static_cast<std::int64_t>(m_delivered) + 1 : 0;
        lock.unlock();
        m_clock.move(wanted);
        giveEvents();
        lock.lock();
        while (!m_isEnding && deliverOne(lock)) {
        }
        const auto pause = m_clock.pause(!isDone(), isWanted());
        // Even a wait without a delay sleeps for some 50 microseconds.
        if (pause.count() > 0) m_changed.wait_for(lock, pause, [this] { return m_isEnding || m_isWoken; });
    }
}

void BoardAcquisition::giveEvents() {
    applet_host::takeEvents(m_station.board(), m_station.device(), [this](const vboard_event& event) {
        unlessOutOfMemory([&] {
            if (const EventKind* kind = m_station.eventOfDesign(event.name))
                m_onEvent(*kind, event.tick * DeviceStation::nanosecondsPerTick);
        });
    });
}

bool BoardAcquisition::deliverOne(std::unique_lock<std::mutex>& lock) {
    if (isDone() || m_sink == nullptr) return false;
    const std::int64_t last = m_station.applet().Fg_getStatusEx(m_station.fg(), 0, 0, 0, m_memory.get());
    const auto number = static_cast<std::int64_t>(m_delivered) + 1;
    if (number > last) return false;
    PictureSink& sink = *m_sink;
    const auto destination = sink.begin();
    if (!destination) return false;
    m_isMaking = true;
    lock.unlock();
    const Picture picture = make(number, *destination);
    lock.lock();
    // The mutex is held, so that a client that has the last picture finds the acquisition ended.
    unlessOutOfMemory([&] { sink.end(picture); });
    m_isMaking = false;
    m_changed.notify_all();
    if (isDone()) return false; // stopped in the meantime
    ++m_delivered;
    fitMemory();
    m_station.board().release(m_memory.get(), number);
    return true;
}

Picture BoardAcquisition::make(std::int64_t number, std::span<std::uint8_t> destination) {
    Picture picture{.number = static_cast<std::uint64_t>(number), .geometry = m_geometry};
    const PixelFormat& format = *m_geometry.format;
    vboard_record record{};
    const auto makeIn = [&](std::span<std::uint8_t> room) {
        return m_station.board().frame_into(m_memory.get(), number, room.data(), room.size(), &record);
    };
    const std::uint8_t* made = destination.data();
    int result = format.bits == format.appletBits ? makeIn(destination) : VBOARD_TOO_SMALL;
    if (result == VBOARD_TOO_SMALL) {
        unlessOutOfMemory([&] {
            if (m_made.size() < m_geometry.bytes()) m_made.resize(m_geometry.bytes());
            result = makeIn(m_made);
            made = m_made.data();
        });
    }
    picture.nanoseconds = record.first_line * DeviceStation::nanosecondsPerTick;
    picture.lostBefore = record.lost_before;
    picture.lines = record.lines;
    put(picture, result == VBOARD_OK ? made : nullptr, destination);
    return picture;
}

} // namespace producer
