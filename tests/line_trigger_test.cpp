// Line trigger and ExSync: what is accepted, what reaches the design, what the dependents publish.

#include "support/applet_fixture.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using namespace support;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double longestPulse = 1048.568;
constexpr std::uint32_t modes[] = {1, 2, 6, 5};
const std::string trigger = "Trigger_Trigger_";

double below(double value) { return std::nextafter(value, -infinity); }
double above(double value) { return std::nextafter(value, infinity); }
bool isPeriodic(std::uint32_t mode) { return mode == 1 || mode == 6; }

class LineTriggerTest : public ParameterTest {
protected:
    /** What is published for exposure and delay holds. */
    void expectLimits(double exposure, double delay) {
        EXPECT_EQ(doubleMaximum(FG_LINEEXPOSURE), exposure);
        EXPECT_EQ(doubleMaximum(FG_LINETRIGGERDELAY), delay);
        EXPECT_EQ(set(FG_LINEEXPOSURE, exposure), 0);
        EXPECT_EQ(set(FG_LINETRIGGERDELAY, delay), 0);
        expectRefused(FG_LINEEXPOSURE, above(exposure));
        expectRefused(FG_LINETRIGGERDELAY, above(delay));
    }

    const std::vector<int> dependents = {FG_LINETRIGGERINSRC, FG_LINETRIGGERINPOLARITY, FG_LINE_DOWNSCALE,
                                         FG_LINE_DOWNSCALEINIT, FG_SHAFTENCODERON};
    const std::vector<int> encoder = {FG_SHAFTENCODERMODE, FG_SHAFTENCODERINSRC, FG_SHAFTENCODERLEADING,
                                      FG_SHAFTENCODER_COMPENSATION_ENABLE,
                                      FG_SHAFTENCODER_COMPENSATION_COUNT};
};

TEST_F(LineTriggerTest, WritesWhatItTakes) {
    expectEntries(FG_LINETRIGGERMODE, trigger + "LineTriggerMode", {{5, 3}, {2, 1}, {6, 2}, {1, 0}});
    expectEntries(FG_EXSYNCON, trigger + "ExsyncEnable", {{0, 0}, {1, 1}});
    expectEntries(FG_LINETRIGGERINPOLARITY, trigger + "LineTrgInPolarity", {{1, 1}, {0, 0}});
    expectEntries(FG_EXSYNCPOLARITY, trigger + "ExsyncPolarity", {{0, 1}, {1, 0}}); // inverted
    expectChoices(FG_LINETRIGGERINSRC, inputChoices("LineTrgInSourceA", 0));
    expectNumbers(FG_LINE_DOWNSCALE, trigger + "LineTrgDownscaler", {1u, 255u, 2u}, {0u, 256u, ~0u});
    // A phase above the factor among them; times off the grid of 8 ns go as they came.
    expectNumbers(FG_LINE_DOWNSCALEINIT, trigger + "LineTrgPhase", {1u, 255u, 2u}, {0u, 256u, ~0u});
    expectNumbers(FG_LINEPERIODE, trigger + "ExsyncPeriod", {0.512, 2097.144, 100.0013},
                  {below(0.512), 0.0, -1.0, above(2097.144), infinity, -infinity});
    expectNumbers(FG_LINEEXPOSURE, trigger + "ExsyncExposure", {0.512, 19.2501},
                  {below(0.512), -0.0, infinity, -infinity});
    expectNumbers(FG_LINETRIGGERDELAY, trigger + "Exsync2Delay", {0.0, 7.123},
                  {-0.008, below(0.0), infinity, -infinity});
    EXPECT_EQ(record(FG_LINEEXPOSURE)->value.f64.minimum, 0.512);

    const std::string prescaler = "set Device1_Process1_Trigger_Inputs_Debounce8_Prescale_Period u32 ";
    for (const auto& [time, periods] :
         {std::pair{0.008, "1"}, {0.016, "2"}, {1.0, "43"}, {65.0, "2709"}, {0.0237, "2"}})
        expectAccepted(FG_LINETRIGGERDEBOUNCING, time,
                       {written(trigger + "LineTrgDebouncingTime", time), prescaler + periods});
    for (const double time : {below(0.008), 0.0, -0.112, above(65.0), infinity, -infinity})
        expectRefused(FG_LINETRIGGERDEBOUNCING, time);
}

TEST_F(LineTriggerTest, NotANumberPassesEveryRange) {
    for (const auto& [id, name] : {std::pair{FG_LINEEXPOSURE, "ExsyncExposure"},
                                   {FG_LINETRIGGERDELAY, "Exsync2Delay"},
                                   {FG_LINETRIGGERDEBOUNCING, "LineTrgDebouncingTime"},
                                   {FG_IMGTRIGGERDEBOUNCING, "ImgTrgDebouncingTime"},
                                   {FG_LINEPERIODE, "ExsyncPeriod"}}) {
        clearLog();
        EXPECT_EQ(set(id, std::nan("")), 0) << name;
        EXPECT_TRUE(std::isnan(get<double>(id))) << name;
        EXPECT_EQ(log().at(0), written(trigger + name, std::nan("")));
    }
}

TEST_F(LineTriggerTest, ExposureAndDelayFollowThePeriod) {
    for (const std::uint32_t mode : modes) {
        for (const double period : {0.512, 200.0, longestPulse, 2000.0}) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << " period " << period);
            const auto exposureLimit = [&](double of) {
                return isPeriodic(mode) ? std::min(of, longestPulse) : longestPulse;
            };
            ASSERT_EQ(set(FG_LINEPERIODE, 300.0), 0);
            ASSERT_EQ(set(FG_LINETRIGGERMODE, mode), 0);
            expectLimits(exposureLimit(300.0), 300.0);
            // What is now too long stays until it is set itself.
            expectAccepted(FG_LINEPERIODE, period, {written(trigger + "ExsyncPeriod", period)});
            EXPECT_EQ(get<double>(FG_LINEEXPOSURE), exposureLimit(300.0));
            EXPECT_EQ(get<double>(FG_LINETRIGGERDELAY), 300.0);
            expectLimits(exposureLimit(period), period);
        }
    }
}

TEST_F(LineTriggerTest, InputParametersAreReadOnlyInTheGrabberControlledModes) {
    for (const std::uint32_t from : modes) {
        for (const std::uint32_t to : modes) {
            SCOPED_TRACE(testing::Message() << from << " to " << to);
            ASSERT_EQ(set(FG_LINETRIGGERMODE, from), 0);
            ASSERT_EQ(set(FG_LINETRIGGERMODE, to), 0);
            expectAccess(dependents, isPeriodic(to) ? 1 : 7);
            expectAccess({FG_LINETRIGGERDEBOUNCING, FG_LINEPERIODE}, 7);
            expectAccess(encoder, 1); // off: its own parameters stay as they are
        }
    }
    ASSERT_EQ(set(FG_LINETRIGGERMODE, 1u), 0);
    expectRefused(FG_LINETRIGGERMODE, 3u);
    expectAccess(dependents, 1);
    // A failed write keeps the new access beside the old mode.
    grabber.fail("Device1_Process0_Trigger_Trigger_LineTriggerMode", -4711);
    EXPECT_EQ(set(FG_LINETRIGGERMODE, 2u), -4711);
    EXPECT_EQ(get<std::uint32_t>(FG_LINETRIGGERMODE), 1u);
    expectAccess(dependents, 7);
    expectLimits(200.0, 200.0);
}

} // namespace
