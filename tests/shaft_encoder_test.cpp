// Shaft encoder: what is accepted, what reaches the design, what the dependents publish.

#include "support/applet_fixture.h"

namespace {

using namespace support;

const std::string trigger = "Trigger_Trigger_";

class ShaftEncoderTest : public ParameterTest {
protected:
    /** Of mode, source B, leading signal and compensation; and of its count. */
    void expectAccessOf(std::uint32_t settings, std::uint32_t count) {
        expectAccess({FG_SHAFTENCODERMODE, FG_SHAFTENCODERINSRC, FG_SHAFTENCODERLEADING,
                      FG_SHAFTENCODER_COMPENSATION_ENABLE},
                     settings);
        expectAccess({FG_SHAFTENCODER_COMPENSATION_COUNT}, count);
    }
};

TEST_F(ShaftEncoderTest, WritesWhatItTakes) {
    const std::string mode = trigger + "EncoderABMode";
    expectEntries(FG_SHAFTENCODERON, mode, {{1, 1}, {0, 0}});
    expectEntries(FG_SHAFTENCODERLEADING, trigger + "EncoderABLead", {{0, 0}, {1, 1}});
    expectEntries(FG_SHAFTENCODER_COMPENSATION_ENABLE, trigger + "EncoderCompensation", {{0, 0}, {1, 1}});
    expectChoices(FG_SHAFTENCODERINSRC, inputChoices("LineTrgInSourceB", 1));
    // The mode waits for the encoder.
    expectChoices(FG_SHAFTENCODERMODE, {{1, {}}, {3, {}}, {2, {}}});
    expectAccepted(FG_SHAFTENCODERON, 1u, {written(mode, 2)});
    expectEntries(FG_SHAFTENCODERMODE, mode, {{2, 2}, {1, 1}, {3, 3}});
    expectAccepted(FG_SHAFTENCODERON, 0u, {written(mode, 0)});
    EXPECT_EQ(get<std::uint32_t>(FG_SHAFTENCODERMODE), 3u);

    // The count is the design's, which counts on.
    const std::string count = trigger + "EncoderCompensationCount";
    expectNumbers(FG_SHAFTENCODER_COMPENSATION_COUNT, count, {1048575u, 0u, 100u}, {1048576u, ~0u});
    for (const std::uint32_t running : {77u, 5u, 0u}) {
        poke(count, running);
        EXPECT_EQ(get<std::uint32_t>(FG_SHAFTENCODER_COMPENSATION_COUNT), running);
    }
}

TEST_F(ShaftEncoderTest, DependentsFollowTheEncoderAndTheLineTrigger) {
    expectAccessOf(1, 1);
    for (const auto& [lineMode, expected] : {std::pair{2u, 7u}, {6u, 1u}, {5u, 7u}, {1u, 1u}}) {
        SCOPED_TRACE(lineMode);
        ASSERT_EQ(set(FG_LINETRIGGERMODE, lineMode), 0);
        ASSERT_EQ(set(FG_SHAFTENCODERON, 1u), 0);
        expectAccessOf(expected, expected);
        ASSERT_EQ(set(FG_SHAFTENCODERON, 0u), 0);
        expectAccessOf(1, 1);
    }
    // While the encoder is on, the line trigger's mode reaches all but the count.
    ASSERT_EQ(set(FG_SHAFTENCODERON, 1u), 0);
    ASSERT_EQ(set(FG_LINETRIGGERMODE, 2u), 0);
    expectAccessOf(7, 1);
    ASSERT_EQ(set(FG_SHAFTENCODERON, 1u), 0);
    ASSERT_EQ(set(FG_LINETRIGGERMODE, 1u), 0);
    expectAccessOf(1, 7);
    // The access changes behind the write only.
    grabber.fail("Device1_Process0_Trigger_Trigger_EncoderABMode", -4711);
    EXPECT_EQ(set(FG_SHAFTENCODERON, 0u), -4711);
    expectAccessOf(1, 7);
}

} // namespace
