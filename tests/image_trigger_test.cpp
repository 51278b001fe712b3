// Image trigger and flash: what is accepted, the trigger range that each mode writes, what is published.

#include "support/applet_fixture.h"

#include <cmath>

namespace {

using namespace support;

const std::string trigger = "Trigger_Trigger_";

/** A mode, what the design gets for it, and what the input and the height of its frames publish. */
struct Mode {
    std::uint32_t value, designValue, gated, length, inputAccess, heightAccess;
};
// With 512 lines in the region and frames of 4096 lines for a trigger of several buffers.
constexpr Mode modes[] = {
    {0, 0, 0, 512, 1, 1}, {2, 1, 0, 512, 7, 1},     {8, 1, 0, 4096, 7, 7},
    {5, 2, 0, 512, 7, 1}, {6, 2, 1, 1398101, 7, 1},
};

class ImageTriggerTest : public ParameterTest {
protected:
    ImageTriggerTest() {
        EXPECT_EQ(set(FG_HEIGHT, 512u), 0);
        EXPECT_EQ(set(FG_YOFFSET, 8u), 0);
        EXPECT_EQ(set(FG_IMGTRIGGER_ASYNC_HEIGHT, 4096u), 0);
    }
    Lines range(std::uint32_t length) {
        return {written(trigger + "YOffset", 0), written(trigger + "YLength", length),
                written(trigger + "YOffset", 8)};
    }
    Lines writesOf(const Mode& mode, std::uint32_t length) {
        Lines lines = range(length);
        lines.insert(lines.begin(), {written(trigger + "ImgTriggerMode", mode.designValue),
                                     written(trigger + "MaxGatedHeight", mode.gated)});
        lines.push_back(written("ImageHeight_ImageHeight", 512));
        return lines;
    }
    void expectAccessOf(const Mode& mode) {
        expectAccess(
            {FG_IMGTRIGGERINSRC, FG_IMGTRIGGERINPOLARITY, FG_IMGTRIGGERGATEDELAY, FG_IMGTRIGGERDEBOUNCING},
            mode.inputAccess);
        expectAccess({FG_IMGTRIGGER_ASYNC_HEIGHT}, mode.heightAccess);
    }
};

TEST_F(ImageTriggerTest, EveryModeWritesItsRange) {
    std::vector<Choice> choices;
    for (const Mode& mode : modes)
        choices.push_back({mode.value, writesOf(mode, mode.length)});
    expectChoices(FG_IMGTRIGGERMODE, choices);
    for (const Mode& from : modes) {
        for (const Mode& to : modes) {
            SCOPED_TRACE(testing::Message() << from.value << " to " << to.value);
            ASSERT_EQ(set(FG_IMGTRIGGERMODE, from.value), 0);
            ASSERT_EQ(set(FG_IMGTRIGGERMODE, to.value), 0);
            expectAccessOf(to);
        }
    }
    for (const Mode& mode : modes) {
        SCOPED_TRACE(mode.value);
        ASSERT_EQ(set(FG_IMGTRIGGERMODE, mode.value), 0);
        // The region's own setters write the range of the present mode.
        for (const auto& [id, same] : {std::pair{FG_HEIGHT, 512u}, {FG_YOFFSET, 8u}}) {
            clearLog();
            EXPECT_EQ(set(id, same), 0);
            const Lines lines = logToLastWrite(), expected = writesOf(mode, mode.length);
            ASSERT_GE(lines.size(), 4u);
            EXPECT_EQ(Lines(lines.end() - 4, lines.end()), Lines(expected.begin() + 2, expected.end())) << id;
        }
        // The height of an asynchronous frame is written in its own mode only.
        for (const std::uint32_t height : {1u, 16777216u, 4096u})
            expectAccepted(FG_IMGTRIGGER_ASYNC_HEIGHT, height, mode.value == 8 ? range(height) : Lines{});
        for (const std::uint32_t height : {0u, 16777217u, ~0u})
            expectRefused(FG_IMGTRIGGER_ASYNC_HEIGHT, height);
    }
    ASSERT_EQ(set(FG_IMGTRIGGER_ASYNC_HEIGHT, 33u), 0);
    expectAccepted(FG_IMGTRIGGERMODE, 8u, writesOf(modes[2], 33));
    // A failure midway: the new mode stands in the design, and what is published too.
    ASSERT_EQ(set(FG_IMGTRIGGERMODE, 0u), 0);
    grabber.fail("Device1_Process0_Trigger_Trigger_YLength", -4711);
    EXPECT_EQ(set(FG_IMGTRIGGERMODE, 8u), -4711);
    EXPECT_EQ(get<std::uint32_t>(FG_IMGTRIGGERMODE), 0u);
    expectAccessOf(modes[2]);
}

TEST_F(ImageTriggerTest, InputFlashAndSoftwareTrigger) {
    std::vector<Choice> inputs = inputChoices("ImgTrgInSource", 2);
    inputs.push_back({~0u,
                      {written(trigger + "ImgTrgInSource", 4),
                       written("Trigger_InputSignal_ImgTrgInSource_Input_Select", 0)}});
    for (const Choice& input : inputs)
        expectAccepted(FG_IMGTRIGGERINSRC, input.value, input.writes);
    for (const std::uint32_t value : {8u, 15u, 20u, 0xfffffffeu, 0x7fffffffu})
        expectRefused(FG_IMGTRIGGERINSRC, value);

    expectEntries(FG_IMGTRIGGERON, trigger + "ImgTriggerEnable", {{0, 0}, {1, 1}});
    expectEntries(FG_FLASHON, trigger + "FlashEnable", {{0, 0}, {1, 1}});
    expectEntries(FG_IMGTRIGGERINPOLARITY, trigger + "ImgTrgInPolarity", {{0, 0}, {1, 1}});
    expectEntries(FG_SETSOFTWARETRIGGER, trigger + "SoftwareTrgInput", {{0, 0}, {1, 1}});
    expectEntries(FG_FLASH_POLARITY, trigger + "FlashPolarity", {{0, 1}, {1, 0}});
    expectEntries(FG_SENDSOFTWARETRIGGER, trigger + "SoftwareTrgPulse", {{1, 1}, {1, 1}}); // each time
    expectNumbers(FG_IMGTRIGGERGATEDELAY, trigger + "ImgTrgDelay", {65535u, 0u, 1u}, {65536u, ~0u});
    expectNumbers(FG_STROBEPULSEDELAY, trigger + "FlashDelay", {65535u, 0u, 1u}, {65536u, ~0u});
    expectNumbers(FG_IMGTRIGGERDEBOUNCING, trigger + "ImgTrgDebouncingTime", {0.008, 65.0, 0.0237},
                  {std::nextafter(0.008, 0.0), std::nextafter(65.0, 66.0), -0.112, HUGE_VAL});

    for (const std::uint32_t value : {1u, 0u, 2u}) { // the design's own
        poke("Trigger_Trigger_ImgTrgIsBusy", value);
        EXPECT_EQ(get<std::uint32_t>(FG_IMGTRIGGER_IS_BUSY), value);
    }
}

} // namespace
