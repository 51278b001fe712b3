// What the virtual board promises to its hosts, through its libraries as a host opens them.
// VIRTUAL_BOARD_DIR is their folder.

#include "vexo/fg_errors.h"
#include "vexo/grabber_runtime.h"
#include "virtual_board.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

void* library(const char* name) {
    void* handle = dlopen((std::string(VIRTUAL_BOARD_DIR "/") + name).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) ADD_FAILURE() << dlerror();
    return handle;
}

template <typename Function> Function* find(void* from, const char* name) {
    return reinterpret_cast<Function*>(dlsym(from, name));
}

void* const hardware = library("libvexo_hw.so");
void* const loader = library("libtslrt.so");
void* const runtime = library("libgrabcore5.so");

#define BOARD(name) find<decltype(name)>(hardware, #name)
#define LOADER(name) find<decltype(name)>(loader, #name)
#define RUNTIME(name) find<grabcore_##name>(runtime, "Fg_" #name)

const std::string width = "Device1_Process0_Buffer_0_XLength";
const std::string height = "Device1_Process0_ImageHeight_ImageHeight";
const std::string period = "Device1_Process0_Trigger_Trigger_ExsyncPeriod";
const std::string temperature = "Device1_Process0_BoardStatus_FpgaTemperature";
const std::string red = "Device1_Process0_LookupTable_R_LUTcontent";

/** A board with a design on it, all freed again; the settings of the process go back to normal. */
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

TEST_F(VirtualBoard, NumbersGoThroughEveryTagAndIntoTheLog) {
    EXPECT_EQ(set(width, FG_PARAM_INT64, std::int64_t{2048}), 0);
    EXPECT_EQ(set(period, FG_PARAM_UINT32, 150u), 0);
    EXPECT_EQ(set(period, FG_PARAM_DOUBLE, 0.1 + 0.2), 0);
    EXPECT_EQ(set("Device2_LinkMonitor_Skew", FG_PARAM_DOUBLE, -1e300), 0);
    std::array<std::uint32_t, 2> guarded{0, 77};
    EXPECT_EQ(get(width, FG_PARAM_UINT32, guarded), 0);
    EXPECT_EQ(guarded, (std::array<std::uint32_t, 2>{2048, 77}));
    double asDouble = 0;
    EXPECT_EQ(get(width, FG_PARAM_DOUBLE, asDouble), 0);
    EXPECT_EQ(asDouble, 2048.0);
    std::int64_t skew = 0;
    EXPECT_EQ(get("Device2_LinkMonitor_Skew", FG_PARAM_INT64, skew), 0);
    EXPECT_EQ(skew, INT64_MIN);
    EXPECT_EQ(log(),
              (Lines{"set " + width + " i64 2048", "set " + period + " u32 150",
                     "set " + period + " f64 0.30000000000000004", "set Device2_LinkMonitor_Skew f64 -1e+300",
                     "get " + width + " u32 2048", "get " + width + " f64 2048",
                     "get Device2_LinkMonitor_Skew i64 -9223372036854775808"}));
}

TEST_F(VirtualBoard, RefusesWhatCannotBe) {
    double number = 1;
    EXPECT_EQ(set(temperature, FG_PARAM_DOUBLE, number), FG_ERR_NOT_AVAILABLE);
    EXPECT_EQ(set(width, 77, number), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(get(red, FG_PARAM_UINT32, number), FG_ERR_INVALID_ARGUMENT);
    const auto setTyped = RUNTIME(setParameterWithType);
    const auto getTyped = RUNTIME(getParameterWithType);
    EXPECT_EQ(setTyped(fg, id(width), nullptr, 0, FG_PARAM_UINT32), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(getTyped(fg, id(width), &number, 1, FG_PARAM_UINT32), FG_ERR_INVALID_ARGUMENT);
    for (const int unknown : {0, -1, 10000, 20000, INT32_MIN, INT32_MAX})
        EXPECT_EQ(getTyped(fg, unknown, &number, 0, FG_PARAM_DOUBLE), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(setTyped(nullptr, id(width), &number, 0, FG_PARAM_UINT32), FG_ERR_INVALID_HANDLE);
    EXPECT_EQ(number, 1.0);
    EXPECT_EQ(id("Device1_Process0_Nothing"), 0);
    EXPECT_EQ(id("FG_NR_OF_DMAS"), 0);
    EXPECT_EQ(log().front(), "set " + temperature + " f64 1 = -12");
    EXPECT_EQ(log().back(), "get #2147483647 f64 = -2070");
    EXPECT_EQ(RUNTIME(getLastErrorNumber)(fg), FG_ERR_INVALID_ARGUMENT);
}

TEST_F(VirtualBoard, TellsAWatcherOfEachAccessBeforeItHappens) {
    static LOOMdevice* watched;
    watched = device;
    std::vector<std::size_t> sizes;
    const auto watch = [](void* seen) { // the board is free meanwhile
        static_cast<std::vector<std::size_t>*>(seen)->push_back(BOARD(vboard_log_size)(watched));
    };
    BOARD(vboard_on_access)(device, watch, &sizes);
    std::uint64_t word = 0;
    const auto accessAll = [&] {
        set(width, FG_PARAM_UINT32, 7u);
        get(width, FG_PARAM_UINT64, word);
        find<decltype(VexoRegisterWrite)>(hardware, "VexoRegisterWrite")(device, 0, 1);
        find<decltype(VexoRegisterRead)>(hardware, "VexoRegisterRead")(device, 0, &word);
    };
    accessAll();
    EXPECT_EQ(sizes, (std::vector<std::size_t>{0, 1, 2, 3})); // resolving a name is not logged
    BOARD(vboard_on_access)(device, nullptr, nullptr);
    accessAll();
    BOARD(vboard_on_access)(device, watch, &sizes);
    BOARD(vboard_reset)(device);
    accessAll();
    EXPECT_EQ(sizes.size(), 4u);
}

TEST_F(VirtualBoard, KeepsFieldsAndHandsOutTexts) {
    std::uint32_t run[] = {7, 8, 9};
    const FieldParameterAccess some{FG_PARAM_UINT32, 16381, 3, run};
    EXPECT_EQ(set(red, FG_PARAM_FIELD_ACCESS, some), 0);
    EXPECT_EQ(set(red, FG_PARAM_FIELD_ACCESS, FieldParameterAccess{FG_PARAM_UINT32, 16382, 3, run}),
              FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(set(red, FG_PARAM_FIELD_ACCESS, FieldParameterAccess{FG_PARAM_UINT32, ~0u, 2, run}),
              FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(set(red, FG_PARAM_FIELD_INT, FieldParameterInt_s{5, 16380}), 0);
    double wide[4] = {};
    FieldParameterAccess all{FG_PARAM_DOUBLE, 16380, 4, wide};
    EXPECT_EQ(get(red, FG_PARAM_FIELD_ACCESS, all), 0);
    EXPECT_EQ((std::vector<double>(wide, wide + 4)), (std::vector<double>{5, 7, 8, 9}));
    FieldParameterInt_s element{0, 16382};
    EXPECT_EQ(get(red, FG_PARAM_FIELD_INT, element), 0);
    EXPECT_EQ(element.value, 8u);
    EXPECT_EQ(log()[0], "set " + red + " field 16381+3");
    EXPECT_EQ(log()[3], "set " + red + " field 16380+1");

    const std::string uid = "Device1_Process0_AppletProperties_AppletUid";
    BOARD(vboard_poke_text)(device, uid.c_str(), "ABC");
    std::array<char, 6> buffer{'x', 'x', 'x', 'x', 'x', 'x'};
    EXPECT_EQ(get(uid, FG_PARAM_TEXT, buffer), 0);
    EXPECT_EQ(std::string(buffer.data(), 6), std::string("ABC\0xx", 6));
    char* text = nullptr;
    EXPECT_EQ(get(uid, FG_PARAM_ALLOCATED_STRING, text), 0);
    EXPECT_STREQ(text, "ABC");
    EXPECT_EQ(BOARD(vboard_live)("strings"), 1);
    EXPECT_EQ(log().back(), "get " + uid + " text ABC");
    const auto freeText = RUNTIME(freeParameterStringWithType);
    EXPECT_EQ(freeText(fg, id(uid), text, 0, FG_PARAM_TEXT), FG_ERR_STRING_TAG);
    EXPECT_EQ(freeText(fg, id(uid), text, 0, FG_PARAM_ALLOCATED_STRING), 0);
    EXPECT_EQ(freeText(fg, id(uid), text, 0, FG_PARAM_ALLOCATED_STRING), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(get(uid, FG_PARAM_ALLOCATED_STRING, text), 0); // goes with the handle
}

TEST_F(VirtualBoard, TakesBackWhatItWasTold) {
    std::uint32_t value = 99;
    BOARD(vboard_fail_access)(device, 1, -7, VBOARD_FROM_THEN_ON);
    EXPECT_EQ(get(width, FG_PARAM_UINT32, value), -7);
    EXPECT_EQ(value, 99u);
    EXPECT_EQ(BOARD(VexoRegisterWrite)(device, LOADER(TslGetRegisterByName)(design, "Control"), 1), -7);
    EXPECT_EQ(BOARD(vboard_access_count)(device), 2u);
    char tight[8];
    EXPECT_EQ(BOARD(vboard_log_line)(device, 0, tight, sizeof tight), VBOARD_TOO_SMALL);
    EXPECT_EQ(BOARD(vboard_log_line)(device, 2, tight, sizeof tight), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_fail_name)(device, "Nothing", -8), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_hide_entry)("Fg_Nothing", true), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_answer)(device, "Fg_InitHandle", 1), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_lack_parameter)("Nothing", true), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_alias_parameter)("Nothing", "Nothing"), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_alias_parameter)(width.c_str(), width.c_str()), VBOARD_UNKNOWN) << "taken";

    BOARD(vboard_log_kinds)(device, VBOARD_RESOLVE | VBOARD_CALL);
    BOARD(vboard_reset)(device);
    const int found = id(width);
    EXPECT_EQ(get(width, FG_PARAM_UINT32, value), 0);
    EXPECT_EQ(value, 1024u);
    EXPECT_EQ(RUNTIME(saveConfig)(fg, "file"), FG_ERR_NOT_SUPPORTED);
    const std::string resolved = "resolve " + width + " = " + std::to_string(found);
    EXPECT_EQ(log(), (Lines{resolved, resolved, "call Fg_saveConfig = -2130"}));
}

TEST_F(VirtualBoard, RegistersHaveTheirWidthAndDirection) {
    const int count = LOADER(TslGetNrOfRegister)(design);
    for (int i = 1; i <= count; ++i) {
        const int reg = LOADER(TslGetRegisterByName)(design, LOADER(TslGetRegisterName)(design, i));
        const bool writable = LOADER(TslGetRegisterDirection)(design, reg) != 0;
        std::uint64_t before = 0, after = 0;
        EXPECT_EQ(BOARD(VexoRegisterRead)(device, reg, &before), 0);
        EXPECT_EQ(BOARD(VexoRegisterWrite)(device, reg, ~before), writable ? 0 : FG_ERR_NOT_AVAILABLE);
        EXPECT_EQ(BOARD(VexoRegisterRead)(device, reg, &after), 0);
        const std::uint64_t all = ~std::uint64_t{0} >> (64 - LOADER(TslGetRegisterBitRange)(design, reg));
        EXPECT_EQ(after, writable ? ~before & all : before) << i;
    }
    EXPECT_EQ(LOADER(TslGetRegisterName)(design, 0), nullptr);
    EXPECT_EQ(LOADER(TslGetRegisterName)(design, count + 1), nullptr);
}

TEST_F(VirtualBoard, ADesignKeepsTheSettingsItWasLoadedWith) {
    const int known = id(width), other = id(height);
    EXPECT_EQ(BOARD(vboard_lack_parameter)(width.c_str(), true), VBOARD_OK);
    EXPECT_EQ(BOARD(vboard_alias_parameter)("Second name", height.c_str()), VBOARD_OK);
    EXPECT_EQ(BOARD(vboard_alias_parameter)("Second name of what is not there", width.c_str()), VBOARD_OK);
    EXPECT_EQ(id(width), known); // loaded before
    EXPECT_LE(id("Second name"), 0);
    fpga_design* poorer = load();
    Fg_Struct* poor = RUNTIME(InitHandle)("any.tsl", device, poorer);
    EXPECT_EQ(LOADER(TslUnloadTslFile)(poorer), 0); // the handle keeps what it needs
    EXPECT_LE(RUNTIME(getParameterIdByName)(poor, width.c_str()), 0);
    EXPECT_LE(RUNTIME(getParameterIdByName)(poor, "Second name of what is not there"), 0);
    for (const char* name : {height.c_str(), "Second name"})
        EXPECT_EQ(RUNTIME(getParameterIdByName)(poor, name), other);
    std::uint32_t value = 0;
    EXPECT_EQ(RUNTIME(getParameterWithType)(poor, known, &value, 0, FG_PARAM_UINT32),
              FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(RUNTIME(FreeGrabber)(poor), 0);
    EXPECT_EQ(RUNTIME(InitHandle)("any.tsl", nullptr, design), nullptr);
    EXPECT_EQ(RUNTIME(getLastErrorNumber)(nullptr), FG_ERR_INVALID_HANDLE);
    EXPECT_EQ(LOADER(TslLoadTslFileWithType)("/proc/self/exe", 1, 1), nullptr);
}

TEST_F(VirtualBoard, KnowsWhetherAnAcquisitionRuns) {
    const auto isRunning = [&] {
        std::uint32_t running = 7;
        EXPECT_EQ(RUNTIME(getParameterWithType)(fg, 24092, &running, 0, FG_PARAM_UINT32), 0);
        return running == 1;
    };
    EXPECT_FALSE(isRunning());
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 3, 0, nullptr), 0);
    EXPECT_TRUE(isRunning());
    EXPECT_EQ(RUNTIME(getLastPicNumberBlockingEx)(fg, 4, 0, 1, nullptr), FG_ERR_NOT_AVAILABLE);
    EXPECT_EQ(RUNTIME(stopAcquireEx)(fg, 0, nullptr, 0), 0);
    EXPECT_FALSE(isRunning());
}

TEST_F(VirtualBoard, CountsRaisedEventsByMask) {
    BOARD(vboard_extra_events)(40); // one of them past the masks
    BOARD(vboard_lack_event)("Device1_Process0_Camera_LinkLost", true);
    fpga_design* other = load();
    Fg_Struct* moved = RUNTIME(InitHandle)("any.tsl", device, other);
    LOADER(TslUnloadTslFile)(other);
    const auto raised = [&](Fg_Struct* handle, std::uint64_t mask) {
        return RUNTIME(getStatusEx)(handle, VBOARD_STATUS_EVENTS, static_cast<intptr_t>(mask), 0, nullptr);
    };
    const auto raise = [&](const char* name) { return BOARD(vboard_raise_event)(device, name); };
    const char* overflow = "Device1_Process0_Overflow_Overflow"; // number 5, and 4 where one is lacking

    for (const char* name : {overflow, overflow, "Device1_Process0_Camera_LinkLost", "Extra30", "Extra31"})
        EXPECT_EQ(raise(name), VBOARD_OK) << name;
    for (const char* name : {"Extra40", "Extra", "", "FG_OVERFLOW_CAM0"})
        EXPECT_EQ(raise(name), VBOARD_UNKNOWN) << name;
    EXPECT_EQ(raised(fg, ~(std::uint64_t{1} << 5 | std::uint64_t{1} << 4)), 0);
    EXPECT_EQ(raised(fg, 1 << 5), 2);
    EXPECT_EQ(raised(fg, 1 << 5), 0) << "reported once";
    EXPECT_EQ(raised(moved, std::uint64_t{1} << 63), 1) << "Extra30";
    EXPECT_EQ(raised(moved, ~std::uint64_t{0}), 0) << "no other has a mask there";
    EXPECT_EQ(raised(fg, 1 << 4), 1);
    EXPECT_EQ(raise(overflow), VBOARD_OK);
    EXPECT_EQ(raised(moved, 1 << 4), 1);
    EXPECT_EQ(raise(overflow), VBOARD_OK);
    BOARD(vboard_reset)(device);
    EXPECT_EQ(raised(fg, ~std::uint64_t{0}), 0);
    RUNTIME(FreeGrabber)(moved);
}

/** Collects the leaves below a group and checks the links on the way. */
void collect(const RegisterInfo* group, std::vector<const RegisterInfo*>& leaves) {
    for (int i = 0; i < group->value.group.childCount; ++i) {
        const RegisterInfo* child = group->value.group.children[i];
        EXPECT_TRUE(child->index == i && child->depth == group->depth + 1);
        EXPECT_STREQ(child->parentName, group->displayName);
        child->kind == REGISTER_KIND_GROUP ? collect(child, leaves) : leaves.push_back(child);
    }
}

TEST_F(VirtualBoard, TheTreeLeadsToEveryParameter) {
    BOARD(vboard_poke_int)(device, width.c_str(), 640);
    EXPECT_EQ(RUNTIME(getParameterInfo)(fg, 1), nullptr);
    std::vector<const RegisterInfo*> leaves;
    Lines topLevel;
    for (const RegisterInfo* top = RUNTIME(getParameterInfo)(fg, 0); top != nullptr; top = top->next) {
        topLevel.emplace_back(top->displayName);
        collect(top, leaves);
    }
    EXPECT_EQ(topLevel, (Lines{"Device1", "Device2", "Runtime"}));
    std::set<int> ids, kinds;
    int named = 0;
    for (const RegisterInfo* leaf : leaves) {
        EXPECT_TRUE(ids.insert(leaf->id).second);
        kinds.insert(leaf->kind);
        if (std::strncmp(leaf->name, "Device", 6) != 0) continue;
        ++named;
        EXPECT_EQ(id(leaf->name), leaf->id) << leaf->name;
        EXPECT_TRUE(leaf->name != width || leaf->value.u32.value == 640);
    }
    EXPECT_GE(named, 138);
    EXPECT_EQ(kinds, (std::set<int>{1, 3, 5, 6, 7, 9, 11, 12}));
}

TEST_F(VirtualBoard, ChangesAValueWhenItIsReadAndOutlivesItsClose) {
    const std::string overflow = "Device1_Process0_OverflowOccurred_Status"; // reading clears it
    LOOMdevice* closed = BOARD(vboard_open)();
    Fg_Struct* last = RUNTIME(InitHandleSlaveAware)("any.tsl", closed, design, 0);
    BOARD(vboard_poke_int)(closed, overflow.c_str(), 1);
    EXPECT_EQ(BOARD(vboard_poke_after_read)(closed, overflow.c_str(), 3), VBOARD_OK);
    EXPECT_EQ(BOARD(vboard_poke_after_read)(closed, red.c_str(), 3), VBOARD_UNKNOWN);
    BOARD(vboard_close)(closed);
    EXPECT_EQ(BOARD(vboard_live)("boards"), 2);
    for (const std::uint32_t expected : {1u, 3u, 0u}) {
        std::uint32_t value = 9;
        RUNTIME(getParameterWithType)(last, id(overflow), &value, 0, FG_PARAM_UINT32);
        EXPECT_EQ(value, expected);
    }
    RUNTIME(FreeGrabber)(last);
    EXPECT_EQ(BOARD(vboard_live)("boards"), 1);
}

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

TEST_F(VirtualStation, GivesPicturesThroughTheRuntime) {
    // Without a memory pictures are counted and no time passes.
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, nullptr), 0);
    EXPECT_EQ(wait(5), 5);
    EXPECT_EQ(BOARD(vboard_now)(device), 0U);
    EXPECT_EQ(own<std::uint32_t>(5210), 3145728U);

    vboard_frames* memory = BOARD(vboard_memory)(device, 2, 768, VBOARD_RING);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 3, 0, memory), 0);
    EXPECT_EQ(own<std::uint32_t>(24092), 1U);
    EXPECT_EQ(own<std::uint32_t>(5210), 768U);
    EXPECT_EQ(BOARD(vboard_wait)(device, 2, 708), VBOARD_TIMEOUT); // it arrives at tick 709
    EXPECT_EQ(BOARD(vboard_now)(device), 708U);
    EXPECT_EQ(BOARD(vboard_wait)(device, 2, 100), 2);
    EXPECT_EQ(RUNTIME(getLastPicNumberEx)(fg, 0, memory), 2); // asking takes none
    EXPECT_EQ(status(0), 2);
    vboard_record record{};
    ASSERT_EQ(BOARD(vboard_frame)(memory, 2, &record), VBOARD_OK);
    EXPECT_EQ(record.size, 768U);
    EXPECT_TRUE(record.width == 64 && record.lines == 4 && record.bits == 8 && record.bytes_per_line == 192);
    EXPECT_TRUE(record.first_line == 400 && record.last_line == 700 && record.trigger == 2);
    // The default pattern: x, without y. The end of line 700 and 6.0005 ticks for 192 bytes.
    EXPECT_TRUE(record.data[0] == 0 && record.data[3 * 63] == 63 && record.data[192 + 2] == 0);
    EXPECT_EQ(record.arrival, 709U);
    std::vector<std::uint8_t> place(768);
    vboard_record apart{};
    EXPECT_EQ(BOARD(vboard_frame_into)(memory, 2, place.data(), 767, &apart), VBOARD_TOO_SMALL);
    EXPECT_EQ(apart.size, 768U);
    EXPECT_EQ(BOARD(vboard_frame_into)(memory, 2, place.data(), 768, &apart), VBOARD_OK);
    EXPECT_TRUE(std::equal(place.begin(), place.end(), record.data) && apart.data == place.data());
    EXPECT_EQ(BOARD(vboard_frame_into)(memory, 3, place.data(), 768, &apart), VBOARD_GONE);
    EXPECT_EQ(status(VBOARD_STATUS_TICK), 709);
    EXPECT_EQ(status(VBOARD_STATUS_LINES), 8);
    EXPECT_EQ(BOARD(vboard_advance)(device, 1000), 1709U);
    EXPECT_EQ(own<std::uint32_t>(24092), 0U); // three were asked for
    EXPECT_EQ(BOARD(vboard_frame)(memory, 1, &record), VBOARD_GONE);
    EXPECT_EQ(wait(4), FG_ERR_NOT_AVAILABLE);
    EXPECT_EQ(BOARD(vboard_wait)(device, 4, 1), FG_ERR_NOT_AVAILABLE);

    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), 0);
    EXPECT_EQ(setInt("CameraSimulator_Enable_SelectSource", 0), 0);
    EXPECT_EQ(wait(1, 2), VBOARD_TIMEOUT);
    EXPECT_EQ(BOARD(vboard_now)(device), 1709U + 250'000'000);
    EXPECT_EQ(RUNTIME(stopAcquireEx)(fg, 0, memory, 0), 0);
    EXPECT_EQ(own<std::uint32_t>(24092), 0U);
    BOARD(vboard_memory_free)(memory);
}

TEST_F(VirtualStation, RefusesMemoriesThatDoNotFit) {
    int foreign = 0;
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 3, 0, &foreign), FG_ERR_INVALID_ARGUMENT);
    LOOMdevice* other = BOARD(vboard_open)();
    vboard_frames* others = BOARD(vboard_memory)(other, 2, 768, VBOARD_RING);
    BOARD(vboard_close)(other); // the memory keeps it
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 3, 0, others), FG_ERR_INVALID_ARGUMENT);
    BOARD(vboard_memory_free)(others);
    vboard_frames* small = BOARD(vboard_memory)(device, 2, 767, VBOARD_RING);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 3, 0, small), FG_ERR_BUFFER);
    BOARD(vboard_memory_free)(small);
    EXPECT_EQ(own<std::uint32_t>(24092), 0U);
    EXPECT_EQ(BOARD(vboard_memory)(device, 0, 767, VBOARD_RING), nullptr);
    vboard_frames* memory = BOARD(vboard_memory)(device, 1, 768, VBOARD_BLOCKING);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), 0);
    EXPECT_EQ(BOARD(vboard_advance)(device, 1500), 1500U);
    EXPECT_EQ(RUNTIME(getLastPicNumberEx)(fg, 0, memory), 1); // no room for another
    EXPECT_EQ(BOARD(vboard_release)(memory, 1), VBOARD_OK);
    EXPECT_EQ(BOARD(vboard_release)(memory, 1), VBOARD_GONE);
    EXPECT_EQ(wait(2), 2);
    EXPECT_EQ(BOARD(vboard_memory_frames)(memory, 2), VBOARD_OK);
    EXPECT_EQ(wait(3), 3);
    EXPECT_EQ(BOARD(vboard_memory_frames)(memory, 0), VBOARD_OK);
    EXPECT_TRUE(BOARD(vboard_release)(memory, 2) == VBOARD_OK &&
                BOARD(vboard_release)(memory, 3) == VBOARD_OK);
    EXPECT_EQ(wait(4, 1), VBOARD_TIMEOUT);
    EXPECT_EQ(BOARD(vboard_memory_frames)(memory, 1), VBOARD_OK);
    vboard_record record{};
    EXPECT_EQ(BOARD(vboard_frame)(nullptr, 2, &record), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_frame)(memory, 2, nullptr), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_release)(nullptr, 2), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_frame)(memory, 1, &record), VBOARD_GONE);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), 0);
    EXPECT_EQ(setInt("Buffer_0_XLength", 128), 0);
    EXPECT_EQ(wait(1), 1);
    EXPECT_EQ(BOARD(vboard_frame)(memory, 1, &record), VBOARD_TOO_SMALL);
    EXPECT_EQ(record.data, nullptr);
    BOARD(vboard_memory_free)(memory); // ends the acquisition
    EXPECT_EQ(own<std::uint32_t>(24092), 0U);
    EXPECT_EQ(wait(4), FG_ERR_NOT_AVAILABLE);
    BOARD(vboard_reset)(device);
    EXPECT_EQ(BOARD(vboard_now)(device), 0U);
}

TEST_F(VirtualStation, ActsOnWritesWavesAndInjection) {
    EXPECT_EQ(setInt("Trigger_Trigger_ImgTriggerMode", 1), 0);
    EXPECT_EQ(setInt("Trigger_Trigger_ImgTriggerEnable", 1), 0);
    EXPECT_EQ(setInt("Trigger_Trigger_ImgTrgInSource", 4), 0);
    vboard_frames* memory = BOARD(vboard_memory)(device, 4, 768, VBOARD_RING);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), 0);
    EXPECT_EQ(BOARD(vboard_wave_square)(device, 3, 100, 1000, 50), VBOARD_OK);
    EXPECT_EQ(BOARD(vboard_wave_level)(device, 12, true), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_advance)(device, 120), 120U);
    EXPECT_EQ(setInt("Trigger_Trigger_SoftwareTrgPulse", 1), 0);
    EXPECT_EQ(wait(1), 1);
    vboard_record record{};
    EXPECT_EQ(BOARD(vboard_frame)(memory, 1, &record), VBOARD_OK);
    EXPECT_EQ(record.first_line, 200U);

    vboard_edge edges[2]{};
    bool level = true;
    EXPECT_EQ(BOARD(vboard_signals)(device, 24, 0, 200, edges, 2, &level), 2); // debounced for 3 ticks
    EXPECT_TRUE(!level && edges[0].tick == 103 && edges[0].level && edges[1].tick == 153);
    std::int64_t inputs = -1;
    BOARD(vboard_peek_int)(device, "Device1_Process1_Trigger_Inputs_InputStatus_Status", &inputs);
    EXPECT_EQ(inputs, 0);
    vboard_event event{};
    std::map<std::string, int> count;
    while (BOARD(vboard_next_event)(device, &event) == VBOARD_OK)
        ++count[event.name];
    EXPECT_EQ(count["Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin3"], 1);
    EXPECT_EQ(count["Device1_Process1_Trigger_Events_Events_LVAL_FVAL_Cam0LineStart"], 6);
    EXPECT_EQ(RUNTIME(getStatusEx)(fg, VBOARD_STATUS_EVENTS, 1 << 2, 0, nullptr), 6); // by mask too

    const std::uint16_t pixels[] = {0x1100, 0x2200, 0x3300};
    EXPECT_EQ(BOARD(vboard_inject)(device, VBOARD_OUTPUT, 1, 1, pixels), VBOARD_UNKNOWN); // the input is off
    EXPECT_EQ(setInt("OutputFormat_Debug_OperationMode", 1), 0);
    EXPECT_EQ(BOARD(vboard_inject)(device, VBOARD_OUTPUT, 1, 1, pixels), VBOARD_OK);
    EXPECT_EQ(wait(2), 2);
    EXPECT_EQ(BOARD(vboard_frame)(memory, 2, &record), VBOARD_OK);
    EXPECT_TRUE(record.data[0] == 0x33 && record.data[1] == 0x22 && record.data[2] == 0x11 &&
                record.data[3] == 0);

    const vboard_speed speed[] = {{1000, 1'250'000, 1'250'000}}; // ten quarter steps, and on
    EXPECT_EQ(BOARD(vboard_wave_encoder)(device, 1, 2, speed, 1), VBOARD_OK);
    EXPECT_EQ(BOARD(vboard_wave_encoder)(device, 1, 1, speed, 1), VBOARD_UNKNOWN);
    const std::uint64_t now = BOARD(vboard_now)(device);
    BOARD(vboard_advance)(device, 1000);
    EXPECT_EQ(BOARD(vboard_signals)(device, 22, now, now + 1000, nullptr, 0, nullptr), 5);
    BOARD(vboard_memory_free)(memory);
}

TEST_F(VirtualStation, RefusesACameraABeltAndASceneThatCannotBe) {
    EXPECT_EQ(setInt("CameraSimulator_Enable_SelectSource", 0), 0);
    const vboard_camera camera{.width = 64, .line_rate = 1000, .exposure = 10, .full_exposure = 0};
    const vboard_camera_faults sound{{2, 1, 0}, 0, 2, 64, 0, 0};
    vboard_camera none = camera, wide = camera;
    none.width = 0;
    wide.width = 16385;
    vboard_camera_faults twice = sound, longer = sound;
    twice.order[0] = 1;
    longer.short_width = 65;
    EXPECT_EQ(status(VBOARD_STATUS_CAMERA), VBOARD_CAMERA_NONE);
    for (const auto& [one, faults] :
         {std::pair<const vboard_camera*, const vboard_camera_faults*>{&none, &sound},
          {&wide, &sound},
          {&camera, &twice},
          {&camera, &longer}})
        EXPECT_EQ(BOARD(vboard_camera_attach)(device, one, faults), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_camera_attach)(device, nullptr, nullptr), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_camera_attach)(nullptr, &camera, nullptr), VBOARD_UNKNOWN);
    EXPECT_EQ(status(VBOARD_STATUS_CAMERA), VBOARD_CAMERA_NONE);
    EXPECT_EQ(BOARD(vboard_camera_attach)(device, &camera, &sound), VBOARD_OK);
    EXPECT_EQ(status(VBOARD_STATUS_CAMERA), VBOARD_CAMERA_FREE_RUNNING);
    BOARD(vboard_advance)(device, 125'000'000);
    EXPECT_EQ(status(VBOARD_STATUS_LINES), 1000);

    const vboard_speed speed{1, 1'000'000, 1'000'000};
    const vboard_belt_setup belt{&speed, 1, 1, 2, 100, VBOARD_NO_INPUT, 0};
    EXPECT_EQ(BOARD(vboard_belt)(device, &belt), VBOARD_OK);
    const auto isTaken = [this](vboard_belt_setup setup) {
        return BOARD(vboard_belt)(device, &setup) == VBOARD_OK;
    };
    EXPECT_FALSE(isTaken({&speed, 1, 1, 2, 99, VBOARD_NO_INPUT, 0})); // more than ten million steps
    EXPECT_FALSE(isTaken({&speed, 1, 1, 1, 100, VBOARD_NO_INPUT, 0}));
    EXPECT_FALSE(isTaken({&speed, 1, 1, VBOARD_NO_INPUT, 100, 0, 0}));
    EXPECT_FALSE(isTaken({&speed, 1, 1, 2, 100, 12, 0}));
    EXPECT_FALSE(isTaken({nullptr, 1, 1, 2, 100, 0, 0}));
    EXPECT_FALSE(isTaken({&speed, 1, 1, 2, 100, 0, INT64_MIN}));

    const std::uint16_t pixels[3] = {1, 2, 3};
    const vboard_object object{-5, 10}, nothing{5, 0};
    const auto isScene = [this](vboard_scene_setup setup) {
        return BOARD(vboard_scene)(device, &setup) == VBOARD_OK;
    };
    EXPECT_TRUE(isScene({1, 1, 1, pixels, &object, 1, 65535, 0}));
    EXPECT_FALSE(isScene({0, 1, 1, pixels, &object, 1, 0, 0}));
    EXPECT_FALSE(isScene({1, 1, 0, pixels, &object, 1, 0, 0}));
    EXPECT_FALSE(isScene({1, 16384, 1025, pixels, &object, 1, 0, 0}));
    EXPECT_FALSE(isScene({1, 0, 0, nullptr, &nothing, 1, 0, 0}));
    EXPECT_FALSE(isScene({1, 0, 0, nullptr, nullptr, 1, 0, 0}));
    EXPECT_FALSE(isScene({1, 0, 0, nullptr, &object, 1, 65536, 0}));
    EXPECT_EQ(BOARD(vboard_camera_detach)(device), VBOARD_OK);
    EXPECT_EQ(status(VBOARD_STATUS_CAMERA), VBOARD_CAMERA_NONE);
}

TEST_F(VirtualStation, FollowsTheMachinesClockAndLetsOthersInWhileItWaits) {
    using Clock = std::chrono::steady_clock;
    for (const double wrong : {-1.0, 1e-9, 1e9, std::nan("")})
        EXPECT_EQ(BOARD(vboard_clock)(device, wrong), VBOARD_UNKNOWN) << wrong;
    EXPECT_EQ(BOARD(vboard_clock)(nullptr, 1), VBOARD_UNKNOWN);
    for (const char* name : {"ImgTriggerMode", "ImgTriggerEnable"})
        EXPECT_EQ(setInt(std::string("Trigger_Trigger_") + name, 1), 0);
    EXPECT_EQ(setInt("Trigger_Trigger_ImgTrgInSource", 4), 0);
    vboard_frames* memory = BOARD(vboard_memory)(device, 2, 768, VBOARD_BLOCKING);
    const auto start = Clock::now();
    EXPECT_EQ(BOARD(vboard_clock)(device, 10), VBOARD_OK);
    EXPECT_EQ(BOARD(vboard_advance)(device, 1000), VBOARD_NOT_STEPPED);
    // A wait that would last for ten seconds ends by what others do. Each may come before it or after.
    const std::pair<std::function<void()>, std::int64_t> ends[] = {
        {[&] { EXPECT_EQ(setInt("Trigger_Trigger_SoftwareTrgPulse", 1), 0); }, 1},
        {[&] {
             BOARD(vboard_clock)
             (device, setInt("CameraSimulator_Enable_SelectSource", 0));
         },
         VBOARD_TIMEOUT},
        {[&] {
             RUNTIME(stopAcquireEx)
             (fg, 0, nullptr, 0);
         },
         FG_ERR_NOT_AVAILABLE},
        {[&] {
             RUNTIME(AcquireEx)
             (fg, 0, 0, 0, nullptr);
         },
         1},
        {[&] {
             BOARD(vboard_reset)
             (device);
         },
         FG_ERR_NOT_AVAILABLE}};
    for (const auto& [end, answer] : ends) {
        BOARD(vboard_clock)(device, 1);
        EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), 0);
        std::int64_t result = 0;
        std::thread waiting([&] { result = wait(1, 10); });
        std::this_thread::sleep_for(std::chrono::milliseconds(3)); // in most cases it waits by now
        end();
        waiting.join();
        // Another acquisition either ends the wait or answers it.
        EXPECT_TRUE(result == answer || (answer == 1 && result == FG_ERR_NOT_AVAILABLE)) << result;
    }
    EXPECT_EQ(BOARD(vboard_advance)(device, 5), 5U); // the reset made it stepped
    // A second goes by in a hundredth, and not faster.
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), FG_ERR_BUFFER); // as the parameters are now
    setInt("Buffer_0_XLength", 0);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), 0);
    const auto before = Clock::now();
    EXPECT_EQ(BOARD(vboard_clock)(device, 100), VBOARD_OK);
    EXPECT_EQ(wait(1, 1), VBOARD_TIMEOUT);
    EXPECT_GE(Clock::now() - before, std::chrono::milliseconds(10));
    const std::uint64_t now = BOARD(vboard_now)(device);
    const double most = std::chrono::duration<double>(Clock::now() - start).count() * 125e6 * 100;
    EXPECT_TRUE(now >= 125'000'000 && static_cast<double>(now) <= most + 5) << now;
    EXPECT_EQ(BOARD(vboard_clock)(device, 0), VBOARD_OK);
    EXPECT_GE(BOARD(vboard_advance)(device, 7), now + 7);
    BOARD(vboard_memory_free)(memory);
}

TEST_F(VirtualStation, DrawsOnManyThreadsWhileTheBoardIsUsed) {
    // 16 million pixels each, so that there is time for an access while one is drawn.
    for (const char* name : {"Buffer_0_SensorWidth", "Buffer_0_XLength"})
        setInt(name, 16384);
    for (const char* name : {"ImageHeight_ImageHeight", "Trigger_Trigger_YLength"})
        setInt(name, 1024);
    constexpr int pictures = 3;
    vboard_frames* memory = BOARD(vboard_memory)(device, pictures, 3 * 16384 * 1024, VBOARD_RING);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, pictures, 0, memory), 0);
    EXPECT_EQ(wait(pictures, 60), pictures);
    std::atomic<bool> isDrawing{true};
    std::vector<std::uint8_t> seen[2];
    const auto draw = [&](std::vector<std::uint8_t>& bytes) {
        for (int picture = 1; picture <= pictures; ++picture) {
            vboard_record record{};
            EXPECT_EQ(BOARD(vboard_frame)(memory, picture, &record), VBOARD_OK);
            bytes.push_back(record.data[3 * 63 + 1]); // beyond is no line
            bytes.push_back(record.data[record.size - 3 * 16384]);
        }
        isDrawing = false;
    };
    std::thread first(draw, std::ref(seen[0])), second(draw, std::ref(seen[1]));
    int accesses = 0;
    for (std::uint32_t value = 0; isDrawing; ++accesses)
        EXPECT_EQ(get(width, FG_PARAM_UINT32, value), 0);
    first.join();
    second.join();
    EXPECT_EQ(seen[0], seen[1]);
    EXPECT_EQ(seen[0][0], 63);
    EXPECT_GT(accesses, 50) << "an access waits for a picture";
    vboard_record record{};
    EXPECT_EQ(BOARD(vboard_frame)(memory, 1, &record), VBOARD_OK);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, pictures, 0, memory), 0);
    EXPECT_EQ(BOARD(vboard_frame)(memory, 1, &record), VBOARD_GONE);
    BOARD(vboard_memory_free)(memory);
}

TEST_F(VirtualStation, InsertsTheImageOfAFile) {
    const std::string path = testing::TempDir() + "inserted.ppm", point = "OutputFormat_Debug_";
    vboard_frames* memory = BOARD(vboard_memory)(device, 9, 768, VBOARD_RING);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), 0);
    const auto name = "Device1_Process0_" + point + "DebugFile";
    EXPECT_EQ(RUNTIME(setParameterWithType)(fg, id(name), path.c_str(), 0, FG_PARAM_TEXT), 0);
    EXPECT_EQ(setInt(point + "Insert", 1), 0); // the input is off
    EXPECT_EQ(setInt(point + "OperationMode", 3), 0);
    const struct {
        const char* what;
        std::string content;
        int code;
        std::vector<int> pixels; // blue, green, red of the first two
    } cases[] = {
        {"colour",
         "P6 # a comment\n2 1\n255\n\x11\x22\x33\x44\x55\x66",
         0,
         {0x33, 0x22, 0x11, 0x66, 0x55, 0x44}},
        {"grey of 16 bits", std::string("P5\n1 1\n65535\n\x12\x34", 15), 0, {0x12, 0x12, 0x12, 0, 0, 0}},
        {"grey of 12 bits", std::string("P5\n1 1\n4095\n\x01\x23", 14), 0, {0x12, 0x12, 0x12, 0, 0, 0}},
        {"one byte is lacking", "P6\n2 1\n255\n12345", FG_ERR_FILE_TYPE, {}},
        {"other format", "P3\n1 1\n255\n1 2 3", FG_ERR_FILE_TYPE, {}},
        {"too large", "P6\n16385 1\n255\n", FG_ERR_FILE_TYPE, {}},
        {"no number", "P6\nx", FG_ERR_FILE_TYPE, {}},
        {"empty", "", FG_ERR_FILE_TYPE, {}},
    };
    std::intptr_t picture = 0;
    for (const auto& row : cases) {
        std::ofstream(path, std::ios::binary) << row.content;
        EXPECT_EQ(setInt(point + "Insert", 1), row.code) << row.what;
        if (row.code != 0) continue;
        EXPECT_EQ(wait(++picture), picture) << row.what;
        vboard_record record{};
        ASSERT_EQ(BOARD(vboard_frame)(memory, picture, &record), VBOARD_OK);
        EXPECT_EQ(std::vector<int>(record.data, record.data + 6), row.pixels) << row.what;
    }
    BOARD(vboard_memory_free)(memory);
    EXPECT_EQ(setInt(point + "Insert", 1), FG_ERR_FILE_TYPE);
    std::ofstream(path) << "P5\n1 1\n255\nx";
    EXPECT_EQ(setInt(point + "Insert", 1), FG_ERR_NOT_AVAILABLE); // no acquisition
    std::remove(path.c_str());
    EXPECT_EQ(setInt(point + "Insert", 1), FG_ERR_FILE_TYPE);
}

} // namespace
