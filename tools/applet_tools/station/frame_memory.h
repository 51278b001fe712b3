/** Memory for the pictures of the virtual board's station. */
#ifndef APPLET_TOOLS_STATION_FRAME_MEMORY_H
#define APPLET_TOOLS_STATION_FRAME_MEMORY_H

#include "applet_tools/applet/Instance.h"

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

/** Memory with this many frames for pictures of any size; a frame uses no memory before its picture is drawn. `kind`:
 *  VBOARD_RING or VBOARD_BLOCKING. Null for no frames. */
inline FrameMemory frameMemory(Instance& instance, std::size_t frames, int kind) {
    constexpr std::uint64_t frameBytes = std::uint64_t{1} << 40; // more than any picture has
    const applet_host::BoardFunctions& board = instance.board();
    return {board.memory(instance.device(), frames, frameBytes, kind), FreeFrames{&board}};
}

} // namespace applet_tools

#endif
