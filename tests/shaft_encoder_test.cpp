// Shaft encoder: what is accepted, what reaches the design, what the dependents publish.

#include "support/applet_fixture.h"

namespace {

using namespace support;

constexpr const char* mode = "Trigger_Trigger_EncoderABMode";
const std::string count = "Trigger_Trigger_EncoderCompensationCount";

class ShaftEncoderTest : public ParameterTest {
protected:
    using Accesses = std::vector<std::uint32_t>;

    /** Mode, source B, leading signal, compensation and, last, its count. */
    Accesses access() {
        return accessOf({FG_SHAFTENCODERMODE, FG_SHAFTENCODERINSRC, FG_SHAFTENCODERLEADING,
                         FG_SHAFTENCODER_COMPENSATION_ENABLE, FG_SHAFTENCODER_COMPENSATION_COUNT});
    }
    const Accesses locked{1, 1, 1, 1, 1}, open{7, 7, 7, 7, 7};
};

TEST_F(ShaftEncoderTest, EnumerationsTakeTheirEntriesOnly) {
    expectChoices(FG_SHAFTENCODERON, {{1, {written(mode, 1)}}, {0, {written(mode, 0)}}});
    expectChoices(FG_SHAFTENCODERLEADING, {{0, {written("Trigger_Trigger_EncoderABLead", 0)}},
                                           {1, {written("Trigger_Trigger_EncoderABLead", 1)}}});
    expectChoices(FG_SHAFTENCODER_COMPENSATION_ENABLE,
                  {{0, {written("Trigger_Trigger_EncoderCompensation", 0)}},
                   {1, {written("Trigger_Trigger_EncoderCompensation", 1)}}});
    std::vector<Choice> inputs;
    for (const std::uint32_t first : {0u, 8u}) // the front inputs are numbered from 16
        for (std::uint32_t i = first; i < (first == 0 ? 8u : 12u); ++i)
            inputs.push_back({i < 8 ? i : i + 8,
                              {written("Trigger_Trigger_LineTrgInSourceB", 1),
                               written("Trigger_InputSignal_LineTrgInSourceB_Input_Select", i)}});
    expectChoices(FG_SHAFTENCODERINSRC, inputs);
}

TEST_F(ShaftEncoderTest, ModeWaitsForTheEncoder) {
    expectChoices(FG_SHAFTENCODERMODE, {{1, {}}, {3, {}}, {2, {}}});
    expectAccepted(FG_SHAFTENCODERON, 1u, {written(mode, 2)});
    expectChoices(FG_SHAFTENCODERMODE,
                  {{2, {written(mode, 2)}}, {1, {written(mode, 1)}}, {3, {written(mode, 3)}}});
    expectAccepted(FG_SHAFTENCODERON, 0u, {written(mode, 0)});
    EXPECT_EQ(get<std::uint32_t>(FG_SHAFTENCODERMODE), 3u);
}

TEST_F(ShaftEncoderTest, CountIsTheDesigns) {
    for (const std::uint32_t value : {1048575u, 0u, 100u})
        expectAccepted(FG_SHAFTENCODER_COMPENSATION_COUNT, value, {written(count, value)});
    for (const std::uint32_t value : {1048576u, ~0u})
        expectRefused(FG_SHAFTENCODER_COMPENSATION_COUNT, value);

    const std::string name = "Device1_Process0_" + count;
    for (const std::uint32_t running : {77u, 5u, 0u}) {
        ASSERT_EQ(board.poke_int(grabber.device, name.c_str(), running), VBOARD_OK);
        EXPECT_EQ(get<std::uint32_t>(FG_SHAFTENCODER_COMPENSATION_COUNT), running);
    }
    grabber.fail(name, -4711);
    std::uint32_t out = 9;
    EXPECT_EQ(grabber.get(FG_SHAFTENCODER_COMPENSATION_COUNT, &out), -4711);
    EXPECT_EQ(set(FG_SHAFTENCODER_COMPENSATION_COUNT, 3u), -4711);
    EXPECT_EQ(lastError(), -4711);
}

TEST_F(ShaftEncoderTest, DependentsFollowTheEncoderAndTheLineTrigger) {
    EXPECT_EQ(access(), locked) << "off after the start";
    for (const auto& [lineMode, expected] : {std::pair{2u, open}, {6u, locked}, {5u, open}, {1u, locked}}) {
        SCOPED_TRACE(lineMode);
        ASSERT_EQ(set(FG_LINETRIGGERMODE, lineMode), 0);
        ASSERT_EQ(set(FG_SHAFTENCODERON, 1u), 0);
        EXPECT_EQ(access(), expected);
        ASSERT_EQ(set(FG_SHAFTENCODERON, 0u), 0);
        EXPECT_EQ(access(), locked);
    }
    // While the encoder is on, the line trigger's mode reaches all but the count.
    ASSERT_EQ(set(FG_SHAFTENCODERON, 1u), 0);
    ASSERT_EQ(set(FG_LINETRIGGERMODE, 2u), 0);
    EXPECT_EQ(access(), (Accesses{7, 7, 7, 7, 1}));
    ASSERT_EQ(set(FG_SHAFTENCODERON, 1u), 0);
    EXPECT_EQ(access(), open);
    ASSERT_EQ(set(FG_LINETRIGGERMODE, 1u), 0);
    EXPECT_EQ(access(), (Accesses{1, 1, 1, 1, 7}));

    // The access changes behind the write only.
    grabber.fail(std::string("Device1_Process0_") + mode, -4711);
    EXPECT_EQ(set(FG_SHAFTENCODERON, 0u), -4711);
    EXPECT_EQ(get<std::uint32_t>(FG_SHAFTENCODERON), 1u);
    EXPECT_EQ(access(), (Accesses{1, 1, 1, 1, 7}));
}

} // namespace
