// Image trigger and flash: what is accepted, the trigger range that each mode writes, what is published.

#include "support/applet_fixture.h"

#include <cmath>
#include <limits>

namespace {

using namespace support;

std::string trigger(const std::string& name, std::uint32_t value) {
    return written("Trigger_Trigger_" + name, value);
}

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
        return {trigger("YOffset", 0), trigger("YLength", length), trigger("YOffset", 8)};
    }
    Lines geometry(std::uint32_t length) {
        Lines lines = range(length);
        lines.push_back(written("ImageHeight_ImageHeight", 512));
        return lines;
    }
    Lines writesOf(const Mode& mode) {
        Lines lines{trigger("ImgTriggerMode", mode.designValue), trigger("MaxGatedHeight", mode.gated)};
        for (const std::string& line : geometry(mode.length))
            lines.push_back(line);
        return lines;
    }
    void expectAccess(const Mode& mode) {
        EXPECT_EQ(accessOf({FG_IMGTRIGGERINSRC, FG_IMGTRIGGERINPOLARITY, FG_IMGTRIGGERGATEDELAY,
                            FG_IMGTRIGGERDEBOUNCING}),
                  std::vector<std::uint32_t>(4, mode.inputAccess));
        EXPECT_EQ(record(FG_IMGTRIGGER_ASYNC_HEIGHT)->access, mode.heightAccess);
    }
};

TEST_F(ImageTriggerTest, EveryModeWritesItsRange) {
    std::vector<Choice> choices;
    for (const Mode& mode : modes)
        choices.push_back({mode.value, writesOf(mode)});
    expectChoices(FG_IMGTRIGGERMODE, choices);
    for (const Mode& from : modes) {
        for (const Mode& to : modes) {
            SCOPED_TRACE(testing::Message() << from.value << " to " << to.value);
            ASSERT_EQ(set(FG_IMGTRIGGERMODE, from.value), 0);
            ASSERT_EQ(set(FG_IMGTRIGGERMODE, to.value), 0);
            expectAccess(to);
            EXPECT_EQ(get<std::uint32_t>(FG_HEIGHT), 512u);
        }
        // The region's own setters write the range of the present mode.
        ASSERT_EQ(set(FG_IMGTRIGGERMODE, from.value), 0);
        for (const int id : {FG_HEIGHT, FG_YOFFSET}) {
            clearLog();
            EXPECT_EQ(set(id, id == FG_HEIGHT ? 512u : 8u), 0);
            const Lines lines = logToLastWrite();
            ASSERT_GE(lines.size(), 4u);
            EXPECT_EQ(Lines(lines.end() - 4, lines.end()), geometry(from.length)) << id;
        }
    }
    // A failure midway: the new mode stands in the design, and what is published too.
    ASSERT_EQ(set(FG_IMGTRIGGERMODE, 0u), 0);
    grabber.fail("Device1_Process0_Trigger_Trigger_YLength", -4711);
    EXPECT_EQ(set(FG_IMGTRIGGERMODE, 8u), -4711);
    EXPECT_EQ(get<std::uint32_t>(FG_IMGTRIGGERMODE), 0u);
    expectAccess(modes[2]);
}

TEST_F(ImageTriggerTest, AsyncHeightIsWrittenInItsModeOnly) {
    for (const Mode& mode : modes) {
        SCOPED_TRACE(mode.value);
        ASSERT_EQ(set(FG_IMGTRIGGERMODE, mode.value), 0);
        for (const std::uint32_t height : {1u, 16777216u, 4096u})
            expectAccepted(FG_IMGTRIGGER_ASYNC_HEIGHT, height, mode.value == 8 ? range(height) : Lines{});
        for (const std::uint32_t height : {0u, 16777217u, ~0u})
            expectRefused(FG_IMGTRIGGER_ASYNC_HEIGHT, height);
    }
    ASSERT_EQ(set(FG_IMGTRIGGERMODE, 2u), 0);
    ASSERT_EQ(set(FG_IMGTRIGGER_ASYNC_HEIGHT, 33u), 0);
    Mode multi = modes[2];
    multi.length = 33;
    expectAccepted(FG_IMGTRIGGERMODE, 8u, writesOf(multi));
}

TEST_F(ImageTriggerTest, InputFlashAndSoftwareTrigger) {
    const std::string select = "Trigger_InputSignal_ImgTrgInSource_Input_Select";
    std::vector<Choice> inputs{{~0u, {trigger("ImgTrgInSource", 4), written(select, 0)}}};
    for (std::uint32_t i = 0; i < 12; ++i) // the front inputs are numbered from 16
        inputs.push_back({i < 8 ? i : i + 8, {trigger("ImgTrgInSource", 2), written(select, i)}});
    for (const Choice& input : inputs)
        expectAccepted(FG_IMGTRIGGERINSRC, input.value, input.writes);
    for (const std::uint32_t value : {8u, 15u, 20u, 0xfffffffeu, 0x7fffffffu})
        expectRefused(FG_IMGTRIGGERINSRC, value);

    for (const auto& [id, name] : {std::pair{FG_IMGTRIGGERON, "ImgTriggerEnable"},
                                   {FG_FLASHON, "FlashEnable"},
                                   {FG_IMGTRIGGERINPOLARITY, "ImgTrgInPolarity"},
                                   {FG_SETSOFTWARETRIGGER, "SoftwareTrgInput"}})
        expectChoices(id, {{0, {trigger(name, 0)}}, {1, {trigger(name, 1)}}});
    expectChoices(FG_FLASH_POLARITY,
                  {{0, {trigger("FlashPolarity", 1)}}, {1, {trigger("FlashPolarity", 0)}}});
    for (int pulse = 0; pulse < 2; ++pulse)
        expectChoices(FG_SENDSOFTWARETRIGGER, {{1, {trigger("SoftwareTrgPulse", 1)}}});

    for (const auto& [id, name] :
         {std::pair{FG_IMGTRIGGERGATEDELAY, "ImgTrgDelay"}, {FG_STROBEPULSEDELAY, "FlashDelay"}}) {
        for (const std::uint32_t lines : {65535u, 0u, 1u})
            expectAccepted(id, lines, {trigger(name, lines)});
        for (const std::uint32_t lines : {65536u, ~0u})
            expectRefused(id, lines);
    }
    const std::string debouncing = "Trigger_Trigger_ImgTrgDebouncingTime";
    for (const double time : {0.008, 65.0, 0.0237})
        expectAccepted(FG_IMGTRIGGERDEBOUNCING, time, {written(debouncing, time)});
    for (const double time : {std::nextafter(0.008, 0.0), std::nextafter(65.0, 66.0), -0.112, HUGE_VAL})
        expectRefused(FG_IMGTRIGGERDEBOUNCING, time);
    clearLog();
    EXPECT_EQ(set(FG_IMGTRIGGERDEBOUNCING, std::nan("")), 0) << "lies outside of nothing";
    EXPECT_TRUE(std::isnan(get<double>(FG_IMGTRIGGERDEBOUNCING)));
    EXPECT_EQ(log(), Lines{"set Device1_Process0_" + debouncing + " f64 nan"});
}

TEST_F(ImageTriggerTest, BusyIsTheDesigns) {
    const char* busy = "Device1_Process0_Trigger_Trigger_ImgTrgIsBusy";
    for (const std::uint32_t value : {1u, 0u, 2u}) {
        ASSERT_EQ(board.poke_int(grabber.device, busy, value), VBOARD_OK);
        EXPECT_EQ(get<std::uint32_t>(FG_IMGTRIGGER_IS_BUSY), value);
    }
    EXPECT_EQ(set(FG_IMGTRIGGER_IS_BUSY, 1u), FG_ERR_NOT_AVAILABLE);
}

} // namespace
