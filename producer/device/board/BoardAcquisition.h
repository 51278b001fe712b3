/** The acquisition of a board in this process: its thread advances the time, and delivers pictures and events. */
#ifndef PRODUCER_DEVICE_BOARD_BOARDACQUISITION_H
#define PRODUCER_DEVICE_BOARD_BOARDACQUISITION_H

#include "device/Acquisition.h"
#include "device/board/BoardStation.h"
#include "device/board/Clock.h"

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

namespace producer {

/** The queued buffers are the memory of the DMA, which waits while there are none. */
class BoardAcquisition final : public Acquisition {
public:
    using EventHandler = std::function<void(const EventKind&, std::uint64_t nanoseconds)>;

    BoardAcquisition(BoardStation& station, Clock::Kind clock, EventHandler onEvent);
    ~BoardAcquisition() override;

    void attach(PictureSink* sink) override;
    void wake() override;
    void start(std::uint64_t pictures) override;
    void stop() override;
    bool isRunning() override;
    void finish() override;

private:
    struct FreeMemory {
        const BoardStation* station;
        void operator()(vboard_frames* memory) const { station->board().memory_free(memory); }
    };

    void run();
    void giveEvents();
    bool deliverOne(std::unique_lock<std::mutex>& lock);
    Picture make(std::int64_t number, std::span<std::uint8_t> destination);
    void fitMemory();
    bool isWanted();
    bool isDone() const { return m_memory == nullptr || (m_wanted != 0 && m_delivered >= m_wanted); }

    BoardStation& m_station;
    Clock m_clock;
    const EventHandler m_onEvent;

    std::mutex m_mutex; // guards the members below
    std::condition_variable m_changed;
    PictureSink* m_sink = nullptr;
    std::unique_ptr<vboard_frames, FreeMemory> m_memory; // of the running acquisition
    Geometry m_geometry;                                 // of the running acquisition
    std::uint64_t m_wanted = 0;                          // pictures; 0: no end
    std::uint64_t m_delivered = 0;
    std::vector<std::uint8_t> m_made; // a rendered picture that must be converted to its buffer
    bool m_isMaking = false;          // a picture is being rendered, without the mutex
    bool m_isWoken = false;
    bool m_isEnding = false;
    std::thread m_thread;
};

} // namespace producer

#endif
