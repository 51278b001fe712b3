/** Pictures of the virtual board's station, one after the other. */
#ifndef APPLET_TOOLS_STATION_GRABBER_H
#define APPLET_TOOLS_STATION_GRABBER_H

#include "applet_tools/applet/Instance.h"
#include "applet_tools/pictures/PictureView.h"
#include "applet_tools/station/ticks.h"

#include <functional>
#include <memory>

namespace applet_tools {

/** An acquisition into a memory in which pictures stay until the next one is asked for, so that none is overwritten: it
 *  is started and stopped by the applet's own functions. */
class Grabber {
public:
    /** Starts it, with that many frames in the memory. Throws Failure when the applet refuses. */
    Grabber(Instance& instance, std::size_t frames);
    ~Grabber();
    Grabber(const Grabber&) = delete;
    Grabber& operator=(const Grabber&) = delete;

    enum class Outcome { arrived, timeout, interrupted };
    /** How much time passes at most between two questions of next() whether to go on; a twentieth of a second at first. */
    void setPiece(Ticks ticks) { m_piece = ticks; }
    /** Gives the last picture back, and lets time move to the arrival of the next one, by `timeout` at most. Asks
     *  `goesOn` now and then. Throws Failure when the acquisition has ended, or there is no room for the picture. */
    Outcome next(Ticks timeout, const std::function<bool()>& goesOn);

    /** Of the last picture that arrived. It has no bytes before they are drawn. */
    const vboard_record& record() const { return m_record; }
    /** Makes the bytes of that picture, which are there until the next one is asked for. Throws Failure. */
    PictureView draw();

private:
    struct FreeMemory {
        const applet_host::BoardFunctions* board;
        void operator()(vboard_frames* memory) const { board->memory_free(memory); }
    };

    Instance& m_instance;
    std::unique_ptr<vboard_frames, FreeMemory> m_memory;
    Ticks m_piece = ticksPerSecond / 20;
    std::int64_t m_picture = 0;
    vboard_record m_record{};
};

/** The picture of a record, without its bytes being copied. */
PictureView viewOf(const vboard_record& record);

} // namespace applet_tools

#endif
