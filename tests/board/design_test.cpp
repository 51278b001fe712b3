// A loaded design: its settings, its acquisition, its events, its tree of records.

#include "support/board_session.h"
#include "vexo/fg_errors.h"

#include <cstdint>
#include <cstring>
#include <set>
#include <string>
#include <vector>

namespace {

using board_session::Lines;
using board_session::VirtualBoard;
using board_session::width;

const std::string height = "Device1_Process0_ImageHeight_ImageHeight";

TEST_F(VirtualBoard, DesignKeepsTheSettingsOfItsLoad) {
    const int known = id(width), other = id(height);
    EXPECT_EQ(BOARD(vboard_lack_parameter)(width.c_str(), true), VBOARD_OK);
    EXPECT_EQ(BOARD(vboard_alias_parameter)("Second name", height.c_str()), VBOARD_OK);
    EXPECT_EQ(BOARD(vboard_alias_parameter)("Second name of what is not there", width.c_str()), VBOARD_OK);
    EXPECT_EQ(id(width), known); // loaded before
    EXPECT_LE(id("Second name"), 0);
    fpga_design* poorer = load();
    Fg_Struct* poor = RUNTIME(InitHandle)("any.tsl", device, poorer);
    EXPECT_EQ(LOADER(TslUnloadTslFile)(poorer), 0); // the handle keeps its data
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

/** Collects the leaves below a group and checks the links. */
void collect(const RegisterInfo* group, std::vector<const RegisterInfo*>& leaves) {
    for (int i = 0; i < group->value.group.childCount; ++i) {
        const RegisterInfo* child = group->value.group.children[i];
        EXPECT_TRUE(child->index == i && child->depth == group->depth + 1);
        EXPECT_STREQ(child->parentName, group->displayName);
        child->kind == REGISTER_KIND_GROUP ? collect(child, leaves) : leaves.push_back(child);
    }
}

TEST_F(VirtualBoard, TreeContainsEveryParameter) {
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

} // namespace
