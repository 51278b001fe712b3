// The functions of the runtime, libgrabcore5.so; runtime_entries.cpp exports them.

#include "virtual_board/libraries/runtime.h"

#include "vexo/fg_errors.h"
#include "virtual_board/board/Board.h"
#include "virtual_board/libraries/RuntimeTree.h"
#include "virtual_board/tables/design_tables.h"
#include "virtual_board/tables/runtime_entries.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <vector>

using namespace vboard;

/** The runtime's handle: a board with a loaded design. */
struct Fg_Struct_s {
    Fg_Struct_s(Board& itsBoard, std::shared_ptr<const Design> itsDesign)
        : board(itsBoard)
        , design(std::move(itsDesign)) {
        board.hold();
    }
    ~Fg_Struct_s() {
        Live::add(Live::strings, -static_cast<int>(texts.size()));
        board.release();
    }

    Live live{Live::handles};
    Board& board;
    const std::shared_ptr<const Design> design;

    std::vector<std::unique_ptr<char[]>> texts GUARDED_BY(board.mutex());
    std::unique_ptr<RuntimeTree> tree GUARDED_BY(board.mutex());
};

namespace vboard::runtime {
namespace {

/** The error of the last init of the process. */
std::atomic<int> initError{FG_OK};

int call(Fg_Struct* fg, int function, const std::function<std::int64_t()>& perform) {
    if (fg == nullptr) return FG_ERR_INVALID_HANDLE;
    return static_cast<int>(fg->board.call(function, perform));
}

std::int64_t callWide(Fg_Struct* fg, int function, const std::function<std::int64_t()>& perform) {
    if (fg == nullptr) return FG_ERR_INVALID_HANDLE;
    return fg->board.call(function, perform);
}

std::int64_t nothing() { return FG_OK; }

} // namespace

Fg_Struct* initHandleSlaveAware(const char* tslName, LOOMdevice* device, fpga_design* design, int) {
    return initHandle(tslName, device, design);
}

Fg_Struct* initHandle(const char*, LOOMdevice* device, fpga_design* design) {
    int code = FG_OK;
    if (device == nullptr || design == nullptr) {
        initError = FG_ERR_INVALID_HANDLE;
        return nullptr;
    }
    if (isInitFailing(code)) {
        initError = code;
        return nullptr;
    }
    initError = FG_OK;
    return new Fg_Struct(*device, design->design);
}

int freeGrabber(Fg_Struct* fg) {
    // Freed in any case: callers do not retry.
    const std::unique_ptr<Fg_Struct> freed(fg);
    return call(fg, entry("Fg_FreeGrabber"), nothing);
}

int getLastErrorNumber(Fg_Struct* fg) { return fg != nullptr ? fg->board.lastError() : initError.load(); }

int getParameterIdByName(Fg_Struct* fg, const char* name) {
    return fg != nullptr ? fg->board.resolve(*fg->design, name) : FG_ERR_INVALID_HANDLE;
}

int setParameterWithType(Fg_Struct* fg, int id, const void* value, int dma, int type) {
    return fg != nullptr ? fg->board.set(*fg->design, id, value, dma, type) : FG_ERR_INVALID_HANDLE;
}

int getParameterWithType(Fg_Struct* fg, int id, void* value, int dma, int type) {
    if (fg == nullptr) return FG_ERR_INVALID_HANDLE;
    const int result = fg->board.get(*fg->design, id, value, dma, type);
    if (result == FG_OK && type == FG_PARAM_ALLOCATED_STRING) {
        char* text = nullptr;
        std::memcpy(&text, value, sizeof text);
        const MutexLock lock(fg->board.mutex());
        fg->texts.push_back(std::unique_ptr<char[]>(text)); // freed if this throws
        Live::add(Live::strings, 1);
    }
    return result;
}

int freeParameterStringWithType(Fg_Struct* fg, int, void* value, int, int type) {
    return call(fg, entry("Fg_freeParameterStringWithType"), [&]() REQUIRES(fg->board.mutex()) {
        if (type != FG_PARAM_ALLOCATED_STRING) return FG_ERR_STRING_TAG;
        const auto found = std::find_if(fg->texts.begin(), fg->texts.end(),
                                        [value](const auto& text) { return text.get() == value; });
        if (found == fg->texts.end()) return FG_ERR_INVALID_ARGUMENT;
        fg->texts.erase(found);
        Live::add(Live::strings, -1);
        return FG_OK;
    });
}

int setParameter(Fg_Struct* fg, int id, const void* value, int dma) {
    return setParameterWithType(fg, id, value, dma, 0);
}

int getParameter(Fg_Struct* fg, int id, void* value, int dma) {
    return getParameterWithType(fg, id, value, dma, 0);
}

RegisterInfo* getParameterInfo(Fg_Struct* fg, int index) {
    const int result = call(fg, entry("Fg_getParameterInfo"), nothing);
    if (result != FG_OK || index != 0) return nullptr;
    const MutexLock lock(fg->board.mutex());
    if (fg->tree == nullptr) fg->tree = std::make_unique<RuntimeTree>(fg->board, *fg->design);
    return fg->tree->root();
}

int saveConfig(Fg_Struct* fg, const char* file) {
    if (fg == nullptr) return FG_ERR_INVALID_HANDLE;
    return fg->board.configure(entry("Fg_saveConfig"), &AttachedApplet::save, file);
}

int loadConfig(Fg_Struct* fg, const char* file) {
    if (fg == nullptr) return FG_ERR_INVALID_HANDLE;
    return fg->board.configure(entry("Fg_loadConfig"), &AttachedApplet::load, file);
}

int getAppletId(Fg_Struct* fg, uintptr_t) {
    constexpr int appletId = 0x2a31;
    return call(fg, entry("Fg_getAppletId"), [] { return appletId; });
}

int acquireEx(Fg_Struct* fg, int dma, intptr_t frames, int, void* memory) {
    return call(fg, entry("Fg_AcquireEx"), [&]() REQUIRES(fg->board.mutex()) {
        return fg->board.startAcquisition(dma, frames, memory);
    });
}

int stopAcquireEx(Fg_Struct* fg, int dma, void*, int) {
    return call(fg, entry("Fg_stopAcquireEx"),
                [&]() REQUIRES(fg->board.mutex()) { return fg->board.stopAcquisition(dma); });
}

int64_t getStatusEx(Fg_Struct* fg, int what, intptr_t mask, int, void*) {
    return callWide(fg, entry("Fg_getStatusEx"), [=]() REQUIRES(fg->board.mutex()) {
        if (what == VBOARD_STATUS_EVENTS)
            return fg->board.events().take(*fg->design, static_cast<std::uint64_t>(mask));
        const bool isOfStation = what >= VBOARD_STATUS_TICK && what <= VBOARD_STATUS_DROPPED_CAMERA_TRIGGERS;
        return isOfStation ? fg->board.stationStatus(what) : fg->board.picture();
    });
}

int64_t getLastPicNumberEx(Fg_Struct* fg, int, void*) {
    return callWide(fg, entry("Fg_getLastPicNumberEx"),
                    [fg]() REQUIRES(fg->board.mutex()) { return fg->board.nextPicture(); });
}

int64_t getLastPicNumberBlockingEx(Fg_Struct* fg, intptr_t picture, int, int timeoutSeconds, void*) {
    return callWide(fg, entry("Fg_getLastPicNumberBlockingEx"), [&]() REQUIRES(fg->board.mutex()) {
        return fg->board.waitForPicture(picture, timeoutSeconds);
    });
}

} // namespace vboard::runtime
