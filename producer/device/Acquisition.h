/** The thread of an open device: it advances the time, and delivers pictures and events. */
#ifndef PRODUCER_DEVICE_ACQUISITION_H
#define PRODUCER_DEVICE_ACQUISITION_H

#include "device/Clock.h"
#include "device/PixelFormat.h"
#include "device/Station.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <vector>

namespace producer {

/** The layout of an acquisition's pictures in a buffer. */
struct Geometry {
    std::uint32_t width = 0, height = 0; // pixels, lines of a full picture
    std::uint32_t x = 0, y = 0;          // offsets
    const PixelFormat* format = nullptr;

    std::uint64_t bytesPerLine() const { return std::uint64_t{width} * format->bits / 8; }
    std::uint64_t bytes() const { return bytesPerLine() * height; }
};

/** A delivered picture. */
struct Picture {
    std::uint64_t number = 0;
    std::uint64_t nanoseconds = 0; /**< of its first line */
    std::uint64_t lostBefore = 0;  /**< images that the board lost before it */
    std::uint32_t lines = 0;
    std::uint64_t size = 0;    /**< bytes of these lines */
    std::uint64_t written = 0; /**< bytes of them in the buffer */
    bool isCut = false;        /**< it did not fit */
    Geometry geometry{};
};

/** The destination of pictures. Its functions are called by the acquisition's thread. */
class PictureSink {
public:
    /** How many pictures it could accept now. */
    virtual std::size_t room() = 0;
    /** Memory for a picture, reserved until `end`; null if there is none. */
    virtual std::optional<std::span<std::uint8_t>> begin() = 0;
    virtual void end(const Picture& picture) = 0;

protected:
    ~PictureSink() = default;
};

/** Thread-safe. */
class Acquisition {
public:
    using EventHandler = std::function<void(const EventKind&, std::uint64_t nanoseconds)>;

    Acquisition(Station& station, Clock::Kind clock, EventHandler onEvent);
    /** Ends the thread. */
    ~Acquisition();
    Acquisition(const Acquisition&) = delete;
    Acquisition& operator=(const Acquisition&) = delete;

    /** Null: pictures are not delivered, and the DMA waits. Returns when the previous sink is no longer used. */
    void attach(PictureSink* sink);
    /** Call it when there may be room again. */
    void wake();

    /** Starts the DMA; it ends after this many pictures, 0: never. Throws RESOURCE_IN_USE, or IO. */
    void start(std::uint64_t pictures);
    /** Does nothing if none runs. Returns when no picture is being drawn. */
    void stop();
    bool isRunning();

    /** The geometry from the present parameters. */
    Geometry geometry();
    void setFormat(const PixelFormat& format) { m_format = &format; }
    /** The format; differs from the last one set if the applet's output format has changed. */
    const PixelFormat& format();

    /** Ends the thread; no other function may be called afterwards. */
    void finish();

private:
    struct FreeMemory {
        const Station* station;
        void operator()(vboard_frames* memory) const { station->board().memory_free(memory); }
    };

    void run();
    void giveEvents();
    bool deliverOne(std::unique_lock<std::mutex>& lock);
    Picture make(std::int64_t number, std::span<std::uint8_t> place);
    void fitMemory();
    bool isWanted();
    bool isDone() const { return m_memory == nullptr || (m_wanted != 0 && m_delivered >= m_wanted); }

    Station& m_station;
    Clock m_clock;
    const EventHandler m_onEvent;
    std::atomic<const PixelFormat*> m_format;

    std::mutex m_mutex; // guards the members below
    std::condition_variable m_changed;
    PictureSink* m_sink = nullptr;
    std::unique_ptr<vboard_frames, FreeMemory> m_memory; // of the running acquisition
    Geometry m_geometry;                                 // of the running acquisition
    std::uint64_t m_wanted = 0;                          // pictures; 0: no end
    std::uint64_t m_delivered = 0;
    std::vector<std::uint8_t> m_made; // a picture that must be converted before it goes to its buffer
    bool m_isMaking = false;          // a picture is being drawn, without the mutex
    bool m_isWoken = false;
    bool m_isEnding = false;
    std::thread m_thread;
};

} // namespace producer

#endif
