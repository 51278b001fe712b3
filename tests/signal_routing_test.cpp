// Signal routing, analyzers and events: fifteen pairs of source and polarity, and what hangs on them.

#include "support/applet_fixture.h"

namespace {

using namespace support;

const std::string process = "Device1_Process1_Trigger_";

std::string wrote(const std::string& name, std::uint32_t value) {
    return "set " + process + name + " u32 " + std::to_string(value);
}

struct Pair {
    int source, polarity;
    const char* name;
    std::uint32_t startSource;
    bool extended = false; // hears the transfer of lines and frames too
};
const Pair pairs[] = {
    {200338, 200354, "OutputMapping_CamTrigger0_SelectTrigger", 2000},
    {200384, 200410, "OutputMapping_SelectGPO_Select0", 2002},
    {200385, 200411, "OutputMapping_SelectGPO_Select1", 2001},
    {200386, 200412, "OutputMapping_SelectGPO_Select2", 2000},
    {200387, 200413, "OutputMapping_SelectGPO_Select3", 5},
    {200388, 200414, "OutputMapping_SelectGPO_Select4", 5},
    {200389, 200415, "OutputMapping_SelectGPO_Select5", 5},
    {200390, 200416, "OutputMapping_SelectGPO_Select6", 5},
    {200391, 200417, "OutputMapping_SelectGPO_Select7", 5},
    {200392, 200418, "OutputMapping_SelectFrontGPO_Select0", 2002},
    {200393, 200419, "OutputMapping_SelectFrontGPO_Select1", 2001},
    {200420, 200421, "Analyzer_Analyzer0_Select", 2000, true},
    {200430, 200431, "Analyzer_Analyzer1_Select", 2100, true},
    {200440, 200441, "Events_SelectCustomSignalEvent0", 2000, true},
    {200442, 200443, "Events_SelectCustomSignalEvent1", 2002, true},
};

struct Source {
    std::uint32_t value, select;
};
constexpr Source sources[] = {
    {4, 0},     {5, 0},     {2000, 1},  {2001, 2},  {2002, 3},  {2007, 4},  {2008, 5},  {1001, 21},
    {1011, 22}, {1021, 23}, {1031, 24}, {1041, 25}, {1051, 26}, {1061, 27}, {1071, 28}, {1081, 29},
    {1091, 30}, {1101, 31}, {1111, 32}, {2100, 33}, {2101, 34}, {2102, 35}, {2103, 36},
};

Lines route(const Pair& pair, const Source& source, std::uint32_t polarity) {
    // The static levels have no polarity: 4 is the zero, 5 the zero inverted.
    const std::uint32_t invert = source.value <= 5 ? source.value - 4 : 1 - polarity;
    const std::string name = pair.name;
    return {wrote(name + "_SelectSignal_Select", source.select), wrote(name + "_Polarity_Invert", invert)};
}

using SignalRoutingTest = ParameterTest;

TEST_F(SignalRoutingTest, EveryPairResolvesEverySource) {
    for (const Pair& pair : pairs) {
        SCOPED_TRACE(pair.name);
        EXPECT_EQ(get<std::uint32_t>(pair.source), pair.startSource);
        for (const Source& source : sources) {
            if (source.value >= 2100 && !pair.extended) {
                expectRefused(pair.source, source.value);
                continue;
            }
            for (const std::uint32_t polarity : {0u, 1u}) { // 1 before and behind
                expectAccepted(pair.source, source.value, route(pair, source, 1));
                expectAccepted(pair.polarity, polarity, route(pair, source, polarity));
                expectAccepted(pair.source, source.value, route(pair, source, polarity));
                expectAccepted(pair.polarity, 1u, route(pair, source, 1));
            }
        }
        for (const std::uint32_t value : {0u, 3u, 6u, 1000u, 1002u, 1112u, 2003u, 2104u, 0x107d0u, ~0u})
            expectRefused(pair.source, value);
        for (const std::uint32_t value : {2u, ~0u})
            expectRefused(pair.polarity, value);
    }
}

TEST_F(SignalRoutingTest, LegacyOutputIsAViewOfTwoOutputs) {
    const Pair &gpo3 = pairs[4], &gpo7 = pairs[8];
    EXPECT_EQ(get<std::int32_t>(FG_DIGIO_OUTPUT), 3);
    for (const std::int32_t value : {2, 1, 0, 3}) {
        Lines writes = route(gpo3, {(value & 1) != 0 ? 5u : 4u, 0}, 1);
        for (const std::string& line : route(gpo7, {(value & 2) != 0 ? 5u : 4u, 0}, 1))
            writes.push_back(line);
        expectAccepted(FG_DIGIO_OUTPUT, value, writes);
        expectAccepted(FG_DIGIO_OUTPUT, -1, Lines{}, value); // nothing changes, the view stays
        EXPECT_EQ(get<std::uint32_t>(gpo3.source), (value & 1) != 0 ? 5u : 4u);
    }
    for (const std::int32_t value : {4, -2, INT32_MIN, INT32_MAX})
        expectRefused(FG_DIGIO_OUTPUT, value);
    for (const auto& [output, view] : {std::pair{gpo3, 2}, {gpo7, 1}}) {
        ASSERT_EQ(set(FG_DIGIO_OUTPUT, 3), 0);
        ASSERT_EQ(set(output.source, 2000u), 0);
        EXPECT_EQ(get<std::int32_t>(FG_DIGIO_OUTPUT), -1);
        ASSERT_EQ(set(output.source, 4u), 0);
        EXPECT_EQ(get<std::int32_t>(FG_DIGIO_OUTPUT), view);
    }
}

TEST_F(SignalRoutingTest, PulsesAreWrittenAndCountersReadAtEachAsking) {
    const std::string pulse = "OutputMapping_CamTrigger0_CLHSTrigger_EnablePulseWidth_Value";
    expectChoices(FG_CLHS_TRIGGER_PULSE_MESSAGE, {{1, {wrote(pulse, 0)}}, {23, {wrote(pulse, 1)}}});
    const Lines clearing{wrote("Analyzer_Clear_Value", 1), wrote("Analyzer_Clear_Value", 0)};
    expectChoices(FG_SIGNAL_ANALYZER_CLEAR, {{1, clearing}, {1, clearing}});

    for (const auto& [id, name] : {std::pair{FG_SIGNAL_ANALYZER_0_PERIOD_CURRENT, "Analyzer0_PeriodCurrent"},
                                   {FG_SIGNAL_ANALYZER_0_PERIOD_MAX, "Analyzer0_PeriodMax"},
                                   {FG_SIGNAL_ANALYZER_0_PERIOD_MIN, "Analyzer0_PeriodMin"},
                                   {FG_SIGNAL_ANALYZER_1_PERIOD_CURRENT, "Analyzer1_PeriodCurrent"},
                                   {FG_SIGNAL_ANALYZER_1_PERIOD_MAX, "Analyzer1_PeriodMax"},
                                   {FG_SIGNAL_ANALYZER_1_PERIOD_MIN, "Analyzer1_PeriodMin"}}) {
        const std::string full = process + "Analyzer_" + name;
        for (const double value : {34359738.36, -1.0, 0.008}) {
            ASSERT_EQ(board.poke_double(grabber.device, full.c_str(), value), VBOARD_OK);
            EXPECT_EQ(get<double>(id), value) << name;
        }
    }
    for (const auto& [id, name] :
         {std::pair{FG_DIGIO_INPUT, "Inputs_InputStatus_Status"},
          {FG_SIGNAL_ANALYZER_0_PULSE_COUNT, "Analyzer_Analyzer0_PulseCountSignal_Status"},
          {FG_SIGNAL_ANALYZER_1_PULSE_COUNT, "Analyzer_Analyzer1_PulseCountSignal_Status"}}) {
        for (const std::uint32_t word : {0xfffu, 0x801u, 0u, ~0u}) {
            grabber.poke(process + name, word);
            EXPECT_EQ(get<std::uint32_t>(id), word) << name;
        }
    }
    // 33 bits with a sign; without it the upper bits stay as they came.
    for (const auto& [raw, difference] : {std::pair{INT64_C(0x1ffffffff), INT64_C(-1)},
                                          {0xffffffff, 4294967295},
                                          {0x7fffffff'00000005, -4294967291},
                                          {0x200000005, 0x200000005},
                                          {-2, -2}}) {
        grabber.poke(process + "Analyzer_Difference_Status", raw);
        EXPECT_EQ(get<std::int64_t>(FG_SIGNAL_ANALYZER_PULSE_COUNT_DIFFERENCE), difference) << raw;
    }
}

} // namespace
