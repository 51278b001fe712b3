/** Takes pictures from the virtual board's station, one by one. */
#ifndef APPLET_TOOLS_STATION_GRABBER_H
#define APPLET_TOOLS_STATION_GRABBER_H

#include "applet_tools/applet/Instance.h"
#include "applet_tools/applet/timing/ticks.h"
#include "applet_tools/pictures/PictureView.h"
#include "applet_tools/station/frame_memory.h"

#include <functional>

namespace applet_tools {

/** An acquisition into a memory that keeps a picture until the next one is requested, so that none is
 *  overwritten. It is started and stopped by the applet's own functions. */
class Grabber {
public:
    /** Starts the acquisition with this many frames of memory. Throws Failure if the applet refuses. */
    Grabber(Instance& instance, std::size_t frames);
    ~Grabber();
    Grabber(const Grabber&) = delete;
    Grabber& operator=(const Grabber&) = delete;

    enum class Outcome { arrived, timeout, interrupted };
    /** The longest simulated time between two polls of `goesOn` in next(); a twentieth of a second at first. */
    void setPiece(Ticks ticks) { m_piece = ticks; }
    /** Releases the last picture, and advances to the arrival of the next one, by `timeout` at most. Polls
     *  `goesOn`. Throws Failure when the acquisition has ended, or there is no room for the picture. */
    Outcome next(Ticks timeout, const std::function<bool()>& goesOn);

    /** The record of the last picture. It has no bytes before they are rendered. */
    const vboard_record& record() const { return m_record; }
    /** Renders this picture; the bytes are valid until the next picture is requested. Throws Failure. */
    PictureView draw();

private:
    Instance& m_instance;
    FrameMemory m_memory;
    Ticks m_piece = ticksPerSecond / 20;
    std::int64_t m_picture = 0;
    vboard_record m_record{};
};

/** A view of a record's picture; does not copy the bytes. */
PictureView viewOf(const vboard_record& record);

} // namespace applet_tools

#endif
