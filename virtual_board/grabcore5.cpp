// libgrabcore5.so: the grabber runtime.
//
// Every entry is an indirect function: its resolver answers null while the entry is hidden, and dlsym with
// it.

#include "board.h"
#include "hidden_entries.h"

#include <cstring>
#include <string_view>

using namespace vboard;

/** An inner handle: one board with one design. */
struct Fg_Struct_s {
    LOOMdevice* board;
    fpga_design* design;
};

namespace {

Fg_Struct* initHandle(const char*, LOOMdevice* device, fpga_design* design) {
    {
        DesignState& state = DesignState::instance();
        const std::lock_guard guard(state.mutex);
        if (state.failInit) return nullptr;
        if (device == nullptr || design == nullptr) {
            state.initError = badHandle;
            return nullptr;
        }
    }
    ++LiveCounts::instance().handles;
    return new Fg_Struct_s{device, design};
}

Fg_Struct* initHandleSlaveAware(const char* tslName, LOOMdevice* device, fpga_design* design, int) {
    return initHandle(tslName, device, design);
}

int freeGrabber(Fg_Struct* fg) {
    if (fg == nullptr) return badHandle;
    std::int64_t answer = accepted;
    fg->board->call("Fg_FreeGrabber", answer);
    delete fg;
    --LiveCounts::instance().handles;
    return static_cast<int>(answer);
}

int getLastErrorNumber(Fg_Struct* fg) {
    if (fg == nullptr) {
        DesignState& state = DesignState::instance();
        const std::lock_guard guard(state.mutex);
        return state.initError;
    }
    const std::lock_guard guard(fg->board->mutex);
    return fg->board->lastError;
}

int getParameterIdByName(Fg_Struct* fg, const char* name) {
    return fg != nullptr ? fg->board->resolve(name) : 0;
}

int setParameterWithType(Fg_Struct* fg, int id, const void* value, int dma, int type) {
    if (fg == nullptr) return badHandle;
    return dma == 0 ? fg->board->setParameter(id, value, type) : badArgument;
}

int getParameterWithType(Fg_Struct* fg, int id, void* value, int dma, int type) {
    if (fg == nullptr) return badHandle;
    return dma == 0 ? fg->board->getParameter(id, value, type) : badArgument;
}

int freeParameterStringWithType(Fg_Struct* fg, int, void* value, int, int) {
    return fg != nullptr ? fg->board->freeString(value) : badHandle;
}

int setParameter(Fg_Struct* fg, int id, const void* value, int dma) {
    return setParameterWithType(fg, id, value, dma, FG_PARAM_UINT32);
}

int getParameter(Fg_Struct* fg, int id, void* value, int dma) {
    return getParameterWithType(fg, id, value, dma, FG_PARAM_UINT32);
}

RegisterInfo* getParameterInfo(Fg_Struct* fg, int index) {
    return fg != nullptr && index == 0 ? fg->board->tree() : nullptr;
}

/** A call that a control function or a fault may answer, else `work`. */
template <typename Work> std::int64_t answered(Fg_Struct* fg, const char* function, Work work) {
    if (fg == nullptr) return badHandle;
    std::int64_t answer = accepted;
    if (fg->board->call(function, answer)) return answer;
    const std::lock_guard guard(fg->board->mutex);
    return work(*fg->board);
}

int saveConfig(Fg_Struct* fg, const char*) {
    return static_cast<int>(answered(fg, "Fg_saveConfig", [](LOOMdevice&) { return FG_ERR_NOT_SUPPORTED; }));
}

int loadConfig(Fg_Struct* fg, const char*) {
    return static_cast<int>(answered(fg, "Fg_loadConfig", [](LOOMdevice&) { return FG_ERR_NOT_SUPPORTED; }));
}

int getAppletId(Fg_Struct* fg, std::uintptr_t) {
    return static_cast<int>(answered(fg, "Fg_getAppletId", [](LOOMdevice&) { return 0x2201; }));
}

int acquireEx(Fg_Struct* fg, int, std::intptr_t, int, void*) {
    return static_cast<int>(answered(fg, "Fg_AcquireEx", [](LOOMdevice& board) {
        board.acquiring = true;
        board.pictures = 0;
        return accepted;
    }));
}

int stopAcquireEx(Fg_Struct* fg, int, void*, int) {
    return static_cast<int>(answered(fg, "Fg_stopAcquireEx", [](LOOMdevice& board) {
        board.acquiring = false;
        return accepted;
    }));
}

std::int64_t getStatusEx(Fg_Struct* fg, int, std::intptr_t, int, void*) {
    return answered(fg, "Fg_getStatusEx", [](LOOMdevice& board) { return std::int64_t{board.acquiring}; });
}

/** While an acquisition runs, every question finds one picture more. */
std::int64_t nextPicture(LOOMdevice& board) { return board.acquiring ? ++board.pictures : board.pictures; }

std::int64_t getLastPicNumberEx(Fg_Struct* fg, int, void*) {
    return answered(fg, "Fg_getLastPicNumberEx", nextPicture);
}

std::int64_t getLastPicNumberBlockingEx(Fg_Struct* fg, std::intptr_t picture, int, int, void*) {
    return answered(fg, "Fg_getLastPicNumberBlockingEx", [&](LOOMdevice& board) {
        if (board.acquiring && board.pictures < picture) board.pictures = picture;
        return board.pictures;
    });
}

/** Position of an entry in the list of hidden ones. */
consteval int entryNamed(std::string_view name) {
    int position = 0;
    while (entryNames[position] != name)
        ++position;
    return position;
}

} // namespace

// A resolver runs inside dlsym, before sanitizers are ready for it.
#define ENTRY(name, function)                                                                                \
    extern "C" __attribute__((no_sanitize("address", "undefined", "thread"),                                 \
                              no_stack_protector)) decltype(&function) resolve_##name() {                    \
        const bool hidden = vboard_hidden_entries[entryNamed(#name)].load(std::memory_order_relaxed);        \
        return hidden ? nullptr : &function;                                                                 \
    }                                                                                                        \
    extern "C" __attribute__((visibility("default"), ifunc("resolve_" #name))) decltype(function) name;

ENTRY(Fg_InitHandleSlaveAware, initHandleSlaveAware)
ENTRY(Fg_InitHandle, initHandle)
ENTRY(Fg_FreeGrabber, freeGrabber)
ENTRY(Fg_getLastErrorNumber, getLastErrorNumber)
ENTRY(Fg_getParameterIdByName, getParameterIdByName)
ENTRY(Fg_setParameterWithType, setParameterWithType)
ENTRY(Fg_getParameterWithType, getParameterWithType)
ENTRY(Fg_freeParameterStringWithType, freeParameterStringWithType)
ENTRY(Fg_setParameter, setParameter)
ENTRY(Fg_getParameter, getParameter)
ENTRY(Fg_getParameterInfo, getParameterInfo)
ENTRY(Fg_saveConfig, saveConfig)
ENTRY(Fg_loadConfig, loadConfig)
ENTRY(Fg_getAppletId, getAppletId)
ENTRY(Fg_AcquireEx, acquireEx)
ENTRY(Fg_stopAcquireEx, stopAcquireEx)
ENTRY(Fg_getStatusEx, getStatusEx)
ENTRY(Fg_getLastPicNumberEx, getLastPicNumberEx)
ENTRY(Fg_getLastPicNumberBlockingEx, getLastPicNumberBlockingEx)
