/** An acquisition into a memory of the virtual board. */
#ifndef HOST_ACQUISITION_H
#define HOST_ACQUISITION_H

#include "applet_tools/applet/Instance.h"
#include "applet_tools/station/frame_memory.h"
#include "applet_tools/station/missing_picture.h"
#include "host/Deadline.h"
#include "host/vexo.h"

#include <atomic>
#include <memory>
#include <optional>

namespace host {

/** Thread-safe. The memory lives as long as the object, so a thread that uses it holds a shared pointer. */
class Acquisition {
public:
    /** Throws Error if the applet refuses. */
    Acquisition(applet_tools::Instance& instance, std::uint32_t frames, vexo_memory kind);
    ~Acquisition();
    Acquisition(const Acquisition&) = delete;
    Acquisition& operator=(const Acquisition&) = delete;

    /** Ends the acquisition and the waits of other threads. */
    void stop();

    /** Waits for a picture; 0: the oldest one in the memory that no wait has returned. Each thread gets a different
     *  picture. Returns false after the time-out. Throws Error. */
    bool wait(std::int64_t number, const Deadline& deadline, vexo_picture& picture);
    /** Throws Error. */
    void render(std::int64_t number, void* destination, std::uint64_t size) const;
    void release(std::int64_t number);

    /** True if no frame is free for another picture until one is released. */
    bool isFull() const;
    std::uint32_t frames() const { return m_frames; }
    /** The state of the station at the start. */
    applet_tools::WaitStart start() const { return m_start; }

private:
    /** Waits until the picture has arrived; it may be overwritten already. Returns the last number; empty after the
     *  time-out. */
    std::optional<std::int64_t> waitFor(std::int64_t number, const Deadline& deadline);
    bool waitForNext(const Deadline& deadline, vexo_picture& picture);
    /** Empty if the picture is not in the memory. */
    std::optional<vboard_record> recordOf(std::int64_t number) const;

    applet_tools::Instance& m_instance;
    const std::uint32_t m_frames;
    const vexo_memory m_kind;
    applet_tools::FrameMemory m_memory;
    applet_tools::WaitStart m_start;
    std::atomic<std::int64_t> m_last = 0;     // the highest number that a wait returned; never decreases
    std::atomic<std::int64_t> m_released = 0; // number of released pictures
};

} // namespace host

#endif
