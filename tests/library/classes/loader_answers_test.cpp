// Answers of the design loader that the virtual one never gives: the program's own functions replace those of
// the loader.

#include "entry/FgLoomWrapperImpl.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <dlfcn.h>
#include <optional>

namespace {

constexpr TslEvent eventsWithoutDesign[] = {{0, "hidden"}, {1, "shown"}};
std::optional<int> registerWidth; // the loader's own answer if empty

template <typename Function> Function* ofTheLoader(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

const TslEvent* TslGetEvent(fpga_design* design, int index) {
    if (design != nullptr) return ofTheLoader<decltype(TslGetEvent)>("TslGetEvent")(design, index);
    return index < static_cast<int>(std::size(eventsWithoutDesign)) ? &eventsWithoutDesign[index] : nullptr;
}

int TslGetRegisterBitRange(fpga_design* design, int reg) {
    return registerWidth
               ? *registerWidth
               : ofTheLoader<decltype(TslGetRegisterBitRange)>("TslGetRegisterBitRange")(design, reg);
}

namespace {

TEST(LoaderAnswers, EventsWithoutADesign) {
    setenv("__VEXO_FORCE_EXTERNAL_TSL", "", 1); // the file does not exist
    FgLoomWrapperImpl wrapper(1, true);
    unsetenv("__VEXO_FORCE_EXTERNAL_TSL");
    ASSERT_EQ(wrapper.designHandle(), nullptr);
    EXPECT_EQ(wrapper.Fg_getEventMask("shown"), 2u);
    EXPECT_STREQ(wrapper.Fg_getEventName(2), "shown");
}

TEST(LoaderAnswers, RegistersOfAnyWidth) {
    setenv("VEXO_ENABLE_DRA", "1", 1);
    constexpr std::uint64_t all32 = UINT32_MAX, all64 = UINT64_MAX;
    for (const auto& [width, maximum] : {std::pair{-1, all32},
                                         {INT_MIN, all32},
                                         {0, std::uint64_t{0}},
                                         {31, all32 >> 1},
                                         {32, all32},
                                         {63, all64 >> 1},
                                         {64, all64},
                                         {INT_MAX, all64}}) {
        registerWidth = width;
        FgLoomWrapperImpl wrapper(1, false);
        wrapper.initHandles(nullptr, TslLoadDesignFromBuffer("design", 6, 1));
        wrapper.buildParameterInfo();
        const RegisterInfo* group = wrapper.Fg_getParameterInfo(0);
        while (group->next != nullptr)
            group = group->next;
        ASSERT_GT(group->value.group.childCount, 0);
        const RegisterInfo& reg = *group->value.group.children[0];
        EXPECT_EQ(width > 32 ? reg.value.u64.maximum : reg.value.u32.maximum, maximum) << width;
    }
    registerWidth.reset();
    unsetenv("VEXO_ENABLE_DRA");
}

} // namespace
