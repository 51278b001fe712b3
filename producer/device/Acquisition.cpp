#include "device/Acquisition.h"

#include "base/Error.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <limits>
#include <new>

namespace producer {
namespace {

/** Starts a thread with all signals blocked: they are for the client's own threads. */
template <typename Function> std::thread quietThread(Function function) {
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    std::thread thread(function);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return thread;
}

/** Runs a function that needs memory; if there is none, an event or a picture is lost, and the thread
 *  continues. */
template <typename Work> void withMemory(Work work) {
    try {
        work();
    } catch (const std::bad_alloc&) {
    }
}

} // namespace

Acquisition::Acquisition(Station& station, Clock::Kind clock, EventHandler onEvent)
    : m_station(station)
    , m_clock(station, clock)
    , m_onEvent(std::move(onEvent))
    , m_format(pixelFormatOfOutput(station.integer("FG_FORMAT")))
    , m_thread(quietThread([this] { run(); })) {}

Acquisition::~Acquisition() { finish(); }

void Acquisition::finish() {
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
        m_changed.notify_all();
    }
    if (m_thread.joinable()) m_thread.join();
}

void Acquisition::attach(PictureSink* sink) {
    std::unique_lock lock(m_mutex);
    m_sink = sink;
    m_changed.wait(lock, [this] { return !m_isMaking; });
}

void Acquisition::wake() {
    const std::lock_guard lock(m_mutex);
    m_isWoken = true;
    m_changed.notify_all();
}

void Acquisition::start(std::uint64_t pictures) {
    std::unique_lock lock(m_mutex);
    if (!isDone()) throw Error(GC_ERR_RESOURCE_IN_USE, "the acquisition runs already");
    const Geometry its = geometry();
    FreeMemory free{&m_station};
    std::unique_ptr<vboard_frames, FreeMemory> memory(
        m_station.board().memory(m_station.device(), 1, std::numeric_limits<std::uint64_t>::max(),
                                 VBOARD_BLOCKING),
        free);
    m_memory = std::move(memory);
    m_geometry = its;
    m_wanted = pictures;
    m_delivered = 0;
    fitMemory();
    const int code = m_station.applet().Fg_AcquireEx(m_station.fg(), 0, static_cast<std::intptr_t>(pictures),
                                                     0, m_memory.get());
    if (code != FG_OK) {
        m_memory.reset();
        throw Error(GC_ERR_IO, "the DMA does not start: " + std::to_string(code));
    }
    m_isWoken = true;
    m_changed.notify_all();
}

void Acquisition::stop() {
    std::unique_lock lock(m_mutex);
    if (m_memory == nullptr) return;
    m_station.applet().Fg_stopAcquireEx(m_station.fg(), 0, m_memory.get(), 0);
    m_wanted = m_delivered = 1; // existing pictures are not delivered
    m_changed.wait(lock, [this] { return !m_isMaking; });
    m_memory.reset();
}

bool Acquisition::isRunning() {
    const std::lock_guard lock(m_mutex);
    return !isDone();
}

const PixelFormat& Acquisition::format() {
    const std::int64_t output = m_station.integer("FG_FORMAT");
    const PixelFormat* format = m_format;
    if (format == nullptr || format->outputFormat != output) m_format = format = pixelFormatOfOutput(output);
    if (format == nullptr) throw Error(GC_ERR_NOT_AVAILABLE, "the output format has no pixel format");
    return *format;
}

Geometry Acquisition::geometry() {
    const auto number = [this](const char* name) {
        return static_cast<std::uint32_t>(m_station.integer(name));
    };
    return {number("FG_WIDTH"), number("FG_HEIGHT"), number("FG_XOFFSET"), number("FG_YOFFSET"), &format()};
}

/** The DMA's memory consists of the queued buffers. */
void Acquisition::fitMemory() {
    if (m_memory != nullptr)
        m_station.board().memory_frames(m_memory.get(), m_sink != nullptr ? m_sink->room() : 0);
}

bool Acquisition::isWanted() { return !isDone() && m_sink != nullptr && m_sink->room() > 0; }

void Acquisition::run() {
    std::unique_lock lock(m_mutex);
    while (!m_isEnding) {
        m_isWoken = false;
        fitMemory();
        const bool wanted = isWanted();
        lock.unlock();
        m_clock.move(wanted);
        giveEvents();
        lock.lock();
        while (!m_isEnding && deliverOne(lock)) {
        }
        const auto pause = m_clock.pause(!isDone(), isWanted());
        m_changed.wait_for(lock, pause, [this] { return m_isEnding || m_isWoken; });
    }
}

void Acquisition::giveEvents() {
    vboard_event event{};
    while (m_station.board().next_event(m_station.device(), &event) == VBOARD_OK)
        withMemory([&] {
            if (const EventKind* kind = m_station.eventOfDesign(event.name))
                m_onEvent(*kind, event.tick * Station::nanosecondsPerTick);
        });
}

bool Acquisition::deliverOne(std::unique_lock<std::mutex>& lock) {
    if (isDone() || m_sink == nullptr) return false;
    const std::int64_t last = m_station.applet().Fg_getStatusEx(m_station.fg(), 0, 0, 0, m_memory.get());
    const auto number = static_cast<std::int64_t>(m_delivered) + 1;
    if (number > last) return false;
    PictureSink& sink = *m_sink;
    const auto place = sink.begin();
    if (!place) return false;
    m_isMaking = true;
    lock.unlock();
    const Picture picture = make(number, *place);
    lock.lock();
    // A client that has the last picture finds the acquisition ended.
    withMemory([&] { sink.end(picture); });
    m_isMaking = false;
    m_changed.notify_all();
    if (isDone()) return false; // stopped in the meantime
    ++m_delivered;
    fitMemory();
    m_station.board().release(m_memory.get(), number);
    return true;
}

Picture Acquisition::make(std::int64_t number, std::span<std::uint8_t> place) {
    Picture picture{.number = static_cast<std::uint64_t>(number), .geometry = m_geometry};
    const PixelFormat& format = *m_geometry.format;
    vboard_record record{};
    const auto makeIn = [&](std::span<std::uint8_t> room) {
        return m_station.board().frame_into(m_memory.get(), number, room.data(), room.size(), &record);
    };
    const bool isAsMade = format.bits == format.appletBits;
    int result = isAsMade ? makeIn(place) : VBOARD_TOO_SMALL;
    const bool isAside = result == VBOARD_TOO_SMALL;
    if (isAside) {
        withMemory([&] {
            if (m_made.size() < m_geometry.bytes()) m_made.resize(m_geometry.bytes());
            result = makeIn(m_made);
        });
    }
    picture.nanoseconds = record.first_line * Station::nanosecondsPerTick;
    picture.lostBefore = record.lost_before;
    picture.lines = record.lines;
    picture.size = m_geometry.bytesPerLine() * record.lines;
    picture.isCut = result != VBOARD_OK || picture.size > place.size();
    picture.written = std::min<std::uint64_t>(picture.size, result == VBOARD_OK ? place.size() : 0);
    const std::uint64_t pixels = std::uint64_t{record.width} * record.lines;
    if (!picture.isCut) {
        convert(format, pixels, isAside ? m_made.data() : place.data(), place.data());
        const std::uint64_t end = std::min<std::uint64_t>(m_geometry.bytes(), place.size());
        if (picture.size < end) std::memset(place.data() + picture.size, 0, end - picture.size);
    } else if (isAsMade) {
        if (format.isSwapped) convert(format, pixels, m_made.data(), m_made.data());
        std::memcpy(place.data(), m_made.data(), picture.written);
    } else {
        picture.written = 0; // unpacking needs the whole buffer
    }
    return picture;
}

} // namespace producer
