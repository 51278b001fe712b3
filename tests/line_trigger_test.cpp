// Line trigger and ExSync: what is accepted, what reaches the design, what the dependents publish.

#include "support/applet_fixture.h"

#include <cmath>
#include <limits>
#include <numeric>

namespace {

using namespace support;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr std::uint32_t modes[] = {1, 2, 6, 5};

double below(double value) { return std::nextafter(value, -infinity); }
double above(double value) { return std::nextafter(value, infinity); }

Lines trigger(const std::string& name, const std::string& value) {
    return {"set Device1_Process0_Trigger_" + name + " " + value};
}

class LineTriggerTest : public ParameterTest {
protected:
    const std::vector<int> dependents = {FG_LINETRIGGERINSRC, FG_LINETRIGGERINPOLARITY, FG_LINE_DOWNSCALE,
                                         FG_LINE_DOWNSCALEINIT, FG_SHAFTENCODERON};
    const std::vector<int> encoder = {FG_SHAFTENCODERMODE, FG_SHAFTENCODERINSRC, FG_SHAFTENCODERLEADING,
                                      FG_SHAFTENCODER_COMPENSATION_ENABLE,
                                      FG_SHAFTENCODER_COMPENSATION_COUNT};
};

TEST_F(LineTriggerTest, EnumerationsTakeTheirEntriesOnly) {
    struct {
        int id;
        std::vector<std::uint32_t> accepted;
        const char* name;
        std::vector<std::uint32_t> designValues;
    } const rows[] = {
        {FG_LINETRIGGERMODE, {1, 2, 6, 5}, "Trigger_LineTriggerMode", {0, 1, 2, 3}},
        {FG_EXSYNCON, {0, 1}, "Trigger_ExsyncEnable", {0, 1}},
        {FG_LINETRIGGERINPOLARITY, {1, 0}, "Trigger_LineTrgInPolarity", {1, 0}},
        {FG_EXSYNCPOLARITY, {0, 1}, "Trigger_ExsyncPolarity", {1, 0}}, // the design's is inverted
        {FG_LINETRIGGERINSRC,
         {0, 1, 2, 3, 4, 5, 6, 7, 16, 17, 18, 19},
         "InputSignal_LineTrgInSourceA_Input_Select",
         {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}},
    };
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < row.accepted.size(); ++i) {
            Lines writes = trigger(row.name, "u32 " + std::to_string(row.designValues[i]));
            if (row.id == FG_LINETRIGGERINSRC)
                writes.insert(writes.begin(), trigger("Trigger_LineTrgInSourceA", "u32 0")[0]);
            expectAccepted(row.id, row.accepted[i], writes);
        }
        for (std::uint32_t value = 0; value < 32; ++value)
            if (std::count(row.accepted.begin(), row.accepted.end(), value) == 0)
                expectRefused(row.id, value);
        expectRefused(row.id, ~0u);
        expectRefused(row.id, 0x10000u + row.accepted[0]);
    }
}

TEST_F(LineTriggerTest, DownscalePhaseAndPeriodBounds) {
    for (const auto& [id, name] : {std::pair{FG_LINE_DOWNSCALE, "Trigger_LineTrgDownscaler"},
                                   {FG_LINE_DOWNSCALEINIT, "Trigger_LineTrgPhase"}}) {
        for (const std::uint32_t value : {1u, 255u, 2u}) // a phase above the factor among them
            expectAccepted(id, value, trigger(name, "u32 " + std::to_string(value)));
        for (const std::uint32_t value : {0u, 256u, ~0u})
            expectRefused(id, value);
    }
    // The last one lies off the grid of 8 ns: stored and written as it came.
    for (const auto& [value, text] :
         {std::pair{0.512, "0.512"}, {2097.144, "2097.144"}, {100.0013, "100.0013"}})
        expectAccepted(FG_LINEPERIODE, value, trigger("Trigger_ExsyncPeriod", std::string("f64 ") + text));
    for (const double value : {below(0.512), 0.0, -1.0, above(2097.144), infinity, -infinity})
        expectRefused(FG_LINEPERIODE, value);
}

TEST_F(LineTriggerTest, ExposureFollowsThePeriodInTheGrabberControlledModes) {
    for (const std::uint32_t mode : modes) {
        const bool periodic = mode == 1 || mode == 6;
        for (const double period : {0.512, 200.0, 1048.568, 2000.0}) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << " period " << period);
            ASSERT_EQ(set(FG_LINETRIGGERMODE, mode), 0);
            ASSERT_EQ(set(FG_LINEPERIODE, period), 0);
            const double most = periodic ? std::min(period, 1048.568) : 1048.568;
            EXPECT_EQ(doubleMaximum(FG_LINEEXPOSURE), most);
            EXPECT_EQ(record(FG_LINEEXPOSURE)->value.f64.minimum, 0.512);
            EXPECT_EQ(set(FG_LINEEXPOSURE, most), 0);
            EXPECT_EQ(set(FG_LINEEXPOSURE, 0.512), 0);
            for (const double value : {above(most), below(0.512), -0.0, infinity, -infinity})
                expectRefused(FG_LINEEXPOSURE, value);

            // The delay heeds the period alone, beyond its catalogue maximum too.
            EXPECT_EQ(doubleMaximum(FG_LINETRIGGERDELAY), period);
            EXPECT_EQ(set(FG_LINETRIGGERDELAY, period), 0);
            for (const double value : {above(period), -0.008, below(0.0), infinity, -infinity})
                expectRefused(FG_LINETRIGGERDELAY, value);
        }
        // The published limit follows a change of the mode as well.
        ASSERT_EQ(set(FG_LINEPERIODE, 300.0), 0);
        for (const std::uint32_t other : modes) {
            ASSERT_EQ(set(FG_LINETRIGGERMODE, other), 0);
            EXPECT_EQ(doubleMaximum(FG_LINEEXPOSURE), other == 1 || other == 6 ? 300.0 : 1048.568) << other;
            EXPECT_EQ(doubleMaximum(FG_LINETRIGGERDELAY), 300.0);
        }
    }
    ASSERT_EQ(set(FG_LINETRIGGERMODE, 1u), 0);
    expectAccepted(FG_LINEEXPOSURE, 19.25, trigger("Trigger_ExsyncExposure", "f64 19.25"));
    expectAccepted(FG_LINETRIGGERDELAY, 0.0, trigger("Trigger_Exsync2Delay", "f64 0"));
    expectAccepted(FG_LINETRIGGERDELAY, 7.123, trigger("Trigger_Exsync2Delay", "f64 7.123"));
}

TEST_F(LineTriggerTest, LoweringThePeriodLeavesExposureAndDelay) {
    ASSERT_EQ(set(FG_LINEEXPOSURE, 19.0), 0);
    ASSERT_EQ(set(FG_LINETRIGGERDELAY, 150.0), 0);
    expectAccepted(FG_LINEPERIODE, 10.0, trigger("Trigger_ExsyncPeriod", "f64 10"));
    EXPECT_EQ(get<double>(FG_LINEEXPOSURE), 19.0);
    EXPECT_EQ(get<double>(FG_LINETRIGGERDELAY), 150.0);
    EXPECT_EQ(doubleMaximum(FG_LINEEXPOSURE), 10.0);
    EXPECT_EQ(doubleMaximum(FG_LINETRIGGERDELAY), 10.0);
    expectRefused(FG_LINEEXPOSURE, 19.0);
    expectRefused(FG_LINETRIGGERDELAY, 150.0);
}

TEST_F(LineTriggerTest, DebouncingWritesTimeAndPrescaler) {
    const std::string prescaler = "set Device1_Process1_Trigger_Inputs_Debounce8_Prescale_Period u32 ";
    struct {
        double value;
        const char* text;
        const char* periods;
    } const rows[] = {{0.008, "0.008", "1"},
                      {0.016, "0.016", "2"},
                      {1.0, "1", "43"},
                      {65.0, "65", "2709"},
                      {0.0237, "0.0237", "2"}};
    for (const auto& row : rows) {
        Lines writes = trigger("Trigger_LineTrgDebouncingTime", std::string("f64 ") + row.text);
        writes.push_back(prescaler + row.periods);
        expectAccepted(FG_LINETRIGGERDEBOUNCING, row.value, writes);
    }
    for (const double value : {below(0.008), 0.0, -0.112, above(65.0), infinity, -infinity})
        expectRefused(FG_LINETRIGGERDEBOUNCING, value);
}

TEST_F(LineTriggerTest, NotANumberPassesEveryRange) {
    for (const auto& [id, name] : {std::pair{FG_LINEEXPOSURE, "ExsyncExposure"},
                                   {FG_LINETRIGGERDELAY, "Exsync2Delay"},
                                   {FG_LINETRIGGERDEBOUNCING, "LineTrgDebouncingTime"},
                                   {FG_LINEPERIODE, "ExsyncPeriod"}}) {
        clearLog();
        EXPECT_EQ(set(id, nan), 0) << name;
        EXPECT_TRUE(std::isnan(get<double>(id))) << name;
        EXPECT_EQ(log().at(0), trigger(std::string("Trigger_") + name, "f64 nan")[0]);
    }
}

TEST_F(LineTriggerTest, InputParametersAreReadOnlyInTheGrabberControlledModes) {
    // From every mode to every other: the access follows the new one.
    for (const std::uint32_t from : modes) {
        for (const std::uint32_t to : modes) {
            ASSERT_EQ(set(FG_LINETRIGGERMODE, from), 0);
            ASSERT_EQ(set(FG_LINETRIGGERMODE, to), 0);
            const std::uint32_t access = to == 1 || to == 6 ? 1 : 7;
            EXPECT_EQ(accessOf(dependents), std::vector<std::uint32_t>(dependents.size(), access)) << to;
            EXPECT_EQ(accessOf({FG_LINETRIGGERDEBOUNCING, FG_LINEPERIODE}), (std::vector{7u, 7u})) << to;
            // With the shaft encoder off, its own parameters stay as they are.
            EXPECT_EQ(accessOf(encoder), std::vector<std::uint32_t>(encoder.size(), 1)) << to;
            expectRefused(FG_LINETRIGGERMODE, 3u);
            EXPECT_EQ(accessOf(dependents), std::vector<std::uint32_t>(dependents.size(), access)) << to;
        }
    }
}

TEST_F(LineTriggerTest, AFailedModeKeepsTheNewAccess) {
    ASSERT_EQ(set(FG_LINETRIGGERMODE, 1u), 0);
    grabber.fail("Device1_Process0_Trigger_Trigger_LineTriggerMode", -4711);
    EXPECT_EQ(set(FG_LINETRIGGERMODE, 2u), -4711);
    EXPECT_EQ(get<std::uint32_t>(FG_LINETRIGGERMODE), 1u);
    EXPECT_EQ(accessOf(dependents), std::vector<std::uint32_t>(dependents.size(), 7));
    EXPECT_EQ(doubleMaximum(FG_LINEEXPOSURE), 200.0); // the mode is still the old one
    expectRefused(FG_LINEEXPOSURE, 200.008);
}

} // namespace
