/** Opens the virtual board's libraries as a host does. VIRTUAL_BOARD_DIR is their folder. */
#ifndef TESTS_SUPPORT_BOARD_SESSION_H
#define TESTS_SUPPORT_BOARD_SESSION_H

#include "vexo/grabber_runtime.h"
#include "virtual_board/virtual_board.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace board_session {

using Lines = std::vector<std::string>;

inline void* library(const char* name) {
    void* handle = dlopen((std::string(VIRTUAL_BOARD_DIR "/") + name).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) ADD_FAILURE() << dlerror();
    return handle;
}

template <typename Function> Function* find(void* from, const char* name) {
    return reinterpret_cast<Function*>(dlsym(from, name));
}

inline void* const hardware = library("libvexo_hw.so");
inline void* const loader = library("libtslrt.so");
inline void* const runtime = library("libgrabcore5.so");

#define BOARD(name) board_session::find<decltype(name)>(board_session::hardware, #name)
#define LOADER(name) board_session::find<decltype(name)>(board_session::loader, #name)
#define RUNTIME(name) board_session::find<grabcore_##name>(board_session::runtime, "Fg_" #name)

inline const std::string width = "Device1_Process0_Buffer_0_XLength";
inline const std::string red = "Device1_Process0_LookupTable_R_LUTcontent";

/** A board with a design, freed in the destructor; restores the settings of the process. */
class VirtualBoard : public testing::Test {
protected:
    ~VirtualBoard() override {
        if (fg != nullptr) RUNTIME(FreeGrabber)(fg);
        LOADER(TslUnloadTslFile)(design);
        BOARD(vboard_close)(device);
        BOARD(vboard_restore_design)();
        for (const char* what : {"boards", "designs", "handles", "strings"})
            EXPECT_EQ(BOARD(vboard_live)(what), 0) << what;
    }

    static fpga_design* load() { return LOADER(TslLoadDesignFromBuffer)("image", 5, 1); }
    Fg_Struct* init() const { return RUNTIME(InitHandle)("any.tsl", device, design); }
    int id(const std::string& name) const { return RUNTIME(getParameterIdByName)(fg, name.c_str()); }
    template <typename Value> int set(const std::string& name, int tag, Value value) const {
        return RUNTIME(setParameterWithType)(fg, id(name), &value, 0, tag);
    }
    template <typename Value> int get(const std::string& name, int tag, Value& value) const {
        return RUNTIME(getParameterWithType)(fg, id(name), &value, 0, tag);
    }
    Lines log() const {
        Lines lines;
        char text[400];
        for (std::size_t i = 0; i < BOARD(vboard_log_size)(device); ++i) {
            EXPECT_GT(BOARD(vboard_log_line)(device, i, text, sizeof text), 0);
            lines.emplace_back(text);
        }
        return lines;
    }

    LOOMdevice* device = BOARD(vboard_open)();
    fpga_design* design = load();
    Fg_Struct* fg = init();
};

/** A board with lines of 64 pixels, one every 100 ticks, and images of four. */
class VirtualStation : public VirtualBoard {
protected:
    VirtualStation() {
        const std::pair<const char*, int> values[] = {
            {"CameraSimulator_Enable_SelectSource", 1},
            {"CameraSimulator_Size_ImageWidth", 100},
            {"CameraSimulator_LineGap_Number", 2},
            {"CameraSimulator_PixelFrequency_SequenceLength_ImageWidth", 1},
            {"Buffer_0_SensorWidth", 64},
            {"Buffer_0_XLength", 64},
            {"ImageHeight_ImageHeight", 4},
            {"Trigger_Trigger_YLength", 4},
            {"OutputFormat_DynamicShift_Shift_Value", 8},
            {"OutputFormat_Convert0_VirtualTrash_EnableTrash_Value", 0}};
        for (const auto& [name, value] : values)
            EXPECT_EQ(setInt(name, value), 0) << name;
    }
    int setInt(const std::string& name, int value) const {
        return set("Device1_Process0_" + name, FG_PARAM_INT32, value);
    }
    template <typename Value> Value own(int number) const {
        Value value{};
        EXPECT_EQ(RUNTIME(getParameterWithType)(fg, number, &value, 0, FG_PARAM_UINT32), 0);
        return value;
    }
    std::int64_t wait(std::intptr_t picture, int seconds = 1) const {
        return RUNTIME(getLastPicNumberBlockingEx)(fg, picture, 0, seconds, nullptr);
    }
    std::int64_t status(int what) const { return RUNTIME(getStatusEx)(fg, what, 0, 0, nullptr); }
};

} // namespace board_session

#endif
