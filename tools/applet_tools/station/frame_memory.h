/** Memory for the pictures of the virtual board's station, and acquisitions into it. */
#ifndef APPLET_TOOLS_STATION_FRAME_MEMORY_H
#define APPLET_TOOLS_STATION_FRAME_MEMORY_H

#include "applet_tools/applet/Instance.h"
#include "applet_tools/base/errors.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace applet_tools {

struct FreeFrames {
    const applet_host::BoardFunctions* board;
    void operator()(vboard_frames* memory) const { board->memory_free(memory); }
};

/** What a caller may ask for. */
inline constexpr std::size_t mostFrames = 65536;

/** Must be freed before its Instance ends. */
using FrameMemory = std::unique_ptr<vboard_frames, FreeFrames>;

/** Memory with this many frames for pictures of any size; a frame uses no memory before its picture is rendered. `kind`:
 *  VBOARD_RING or VBOARD_BLOCKING. Null for no frames. */
FrameMemory frameMemory(Instance& instance, std::size_t frames, int kind);

/** Fills in the record of a picture without making its bytes: `data` is null. VBOARD_GONE: the picture does not exist;
 *  VBOARD_NO_MEMORY: there is no memory for its layout. */
int readRecord(const FrameMemory& memory, std::int64_t picture, vboard_record& record);

/** The applet refused to start an acquisition. */
struct AcquisitionRefused : Failure {
    explicit AcquisitionRefused(int number)
        : Failure("the acquisition was not started: " + codeInWords(number))
        , code(number) {}

    int code;
};

/** Starts an acquisition without end. Throws AcquisitionRefused, and std::bad_alloc if there is no memory. */
void startAcquisition(Instance& instance, const FrameMemory& memory);
/** Stops it; waits for its pictures end. */
void stopAcquisition(Instance& instance, const FrameMemory& memory);

} // namespace applet_tools

#endif
