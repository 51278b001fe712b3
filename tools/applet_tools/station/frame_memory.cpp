#include "applet_tools/station/frame_memory.h"

#include <cstdint>
#include <new>

namespace applet_tools {

FrameMemory frameMemory(Instance& instance, std::size_t frames, int kind) {
    constexpr std::uint64_t frameBytes = std::uint64_t{1} << 40; // more than any picture has
    const applet_host::BoardFunctions& board = instance.board();
    return {board.memory(instance.device(), frames, frameBytes, kind), FreeFrames{&board}};
}

int readRecord(const FrameMemory& memory, std::int64_t picture, vboard_record& record) {
    std::uint8_t noRoom = 0; // for the bytes
    const int code = memory.get_deleter().board->frame_into(memory.get(), picture, &noRoom, 0, &record);
    record.data = nullptr;
    return code == VBOARD_TOO_SMALL ? int{VBOARD_OK} : code;
}

void startAcquisition(Instance& instance, const FrameMemory& memory) {
    if (memory == nullptr) throw std::bad_alloc();
    constexpr std::intptr_t withoutEnd = 0;
    const int code = instance.applet().Fg_AcquireEx(instance.fg(), 0, withoutEnd, 0, memory.get());
    if (code != FG_OK) throw AcquisitionRefused(code);
}

void stopAcquisition(Instance& instance, const FrameMemory& memory) {
    instance.applet().Fg_stopAcquireEx(instance.fg(), 0, memory.get(), 0);
}

} // namespace applet_tools
