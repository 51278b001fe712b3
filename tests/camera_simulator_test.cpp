// Camera simulator: sizes on their grid, rates as counters, and how each limits the others.

#include "support/applet_fixture.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <set>

namespace {

using namespace support;

constexpr double maxPixelRate = 3999999999.9999995;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr std::uint32_t lineRateMode = 1, frameRateMode = 2;

std::string simulator(const std::string& name, std::uint32_t value) {
    return written("CameraSimulator_" + name, value);
}
Lines applied(std::uint32_t width, std::uint32_t gap = 0) {
    return {simulator("Size_ImageWidth", (width + gap) / 32), simulator("LineGap_Number", width / 32)};
}
Lines appliedHeight(std::uint32_t height) {
    return {simulator("Size_ImageHeight", height), simulator("FrameGap_Number", height)};
}
Lines counters(std::uint32_t sequence) {
    return {simulator("PixelFrequency_SequenceLength_ImageWidth", sequence),
            simulator("PixelFrequency_ActivePixel_Number", 1)};
}
std::string sequenceRead(std::uint32_t sequence) {
    return "get Device1_Process0_CameraSimulator_PixelFrequency_SequenceLength_ImageWidth u32 " +
           std::to_string(sequence);
}
Lines operator+(Lines lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

std::uint32_t sequenceOf(double lineRate) {
    return static_cast<std::uint32_t>(0.5 + 1.0 / (lineRate * 8e-9));
}
std::uint32_t sequenceOf(double frameRate, std::uint32_t height) {
    return static_cast<std::uint32_t>(0.5 + 1.0 / (frameRate * 8e-9) / height);
}

/** What the simulator is set to, and what follows from it. In the two modes that can be reached both gaps
 *  read 0. */
struct State {
    std::uint32_t mode = lineRateMode, width = 1024, height = 1024, sequence = 12207;

    double lineRate() const {
        return mode == lineRateMode ? 1.0 / ((sequence - 0.5) * 8e-9) : 32.0 / (8e-9 * width);
    }
    double frameRate() const {
        return mode == lineRateMode ? lineRate() / height : 1.0 / (8e-9 * (sequence * height));
    }
    double maxLineRate() const { return maxPixelRate / (width + 32.0); }
    double maxFrameRate() const { return maxPixelRate / (height * (width + 32)); }
    std::uint32_t maxWidth() const { return least(294920, pixelsPerLine() - 32.0); }
    std::uint32_t maxLineGap() const {
        return mode == frameRateMode ? 0 : least(294920 - width, pixelsPerLine() - width - 32.0);
    }
    std::uint32_t maxHeight() const {
        return mode == frameRateMode ? least(65536, maxPixelRate / (frameRate() * (32.0 + width))) : 65536;
    }

private:
    double pixelsPerLine() const {
        return maxPixelRate / (mode == lineRateMode ? lineRate() : height * frameRate());
    }
    static std::uint32_t least(std::uint32_t most, double other) {
        return std::min(most, static_cast<std::uint32_t>(static_cast<std::int64_t>(other)));
    }
};

class CameraSimulator : public ParameterTest {
protected:
    void arrange(const State& wanted) {
        // Without a gap that a change of the mode remembers, at one slow line, every size fits and every mode
        // can be reached.
        ASSERT_EQ(set(FG_CAMERASIMULATOR_LINE_GAP, 0u), 0);
        ASSERT_EQ(set(FG_CAMERASIMULATOR_SELECT_MODE, lineRateMode), 0);
        ASSERT_EQ(set(FG_CAMERASIMULATOR_HEIGHT, 1u), 0);
        ASSERT_EQ(set(FG_CAMERASIMULATOR_LINERATE, 0.2), 0);
        ASSERT_EQ(set(FG_CAMERASIMULATOR_SELECT_MODE, wanted.mode), 0);
        ASSERT_EQ(set(FG_CAMERASIMULATOR_WIDTH, wanted.width), 0);
        ASSERT_EQ(set(FG_CAMERASIMULATOR_HEIGHT, wanted.height), 0);
        ASSERT_EQ(set(rateOf(wanted.mode), requestOf(wanted)), 0);
        clearLog();
    }
    static int rateOf(std::uint32_t mode) {
        return mode == lineRateMode ? FG_CAMERASIMULATOR_LINERATE : FG_CAMERASIMULATOR_FRAMERATE;
    }
    /** A rate in the middle of those that give the sequence. */
    static double requestOf(const State& wanted) {
        return 1.0 / (8e-9 * wanted.sequence * (wanted.mode == lineRateMode ? 1.0 : wanted.height));
    }
    void expectState(const State& state) {
        EXPECT_EQ(get<std::uint32_t>(FG_CAMERASIMULATOR_SELECT_MODE), state.mode);
        EXPECT_EQ(get<std::uint32_t>(FG_CAMERASIMULATOR_WIDTH), state.width);
        EXPECT_EQ(get<std::uint32_t>(FG_CAMERASIMULATOR_HEIGHT), state.height);
        EXPECT_EQ(get<std::uint32_t>(FG_CAMERASIMULATOR_LINE_GAP), 0u);
        EXPECT_EQ(get<std::uint32_t>(FG_CAMERASIMULATOR_FRAME_GAP), 0u);
        EXPECT_EQ(get<double>(FG_CAMERASIMULATOR_PIXEL_FREQUENCY), 3999.9999999999995);
        EXPECT_EQ(get<double>(FG_CAMERASIMULATOR_LINERATE), state.lineRate());
        EXPECT_EQ(get<double>(FG_CAMERASIMULATOR_FRAMERATE), state.frameRate());
    }

    const std::vector<int> sizes = {FG_CAMERASIMULATOR_WIDTH, FG_CAMERASIMULATOR_LINE_GAP,
                                    FG_CAMERASIMULATOR_HEIGHT, FG_CAMERASIMULATOR_FRAME_GAP};
    const std::vector<int> rates = {FG_CAMERASIMULATOR_LINERATE, FG_CAMERASIMULATOR_FRAMERATE};
    const std::vector<State> states = {
        {lineRateMode, 1024, 1024, 12207}, {lineRateMode, 64, 7, 40},
        {lineRateMode, 4096, 33, 1250},    {lineRateMode, 294912, 65536, 833333333},
        {frameRateMode, 1024, 1024, 9000}, {frameRateMode, 32, 1, 833333},
        {frameRateMode, 4096, 600, 1250}};
};

TEST_F(CameraSimulator, PatternAndTrigger) {
    expectChoices(FG_CAMERASIMULATOR_ENABLE,
                  {{0, {simulator("Enable_SelectSource", 0)}}, {1, {simulator("Enable_SelectSource", 1)}}});
    const auto pattern = [](std::uint32_t enableX, std::uint32_t divisor) -> Lines {
        return {simulator("EnableX_Enable_Value", enableX), simulator("Y_Divisor", divisor)};
    };
    expectChoices(FG_CAMERASIMULATOR_PATTERN,
                  {{1, pattern(1, 1)}, {2, pattern(0, 256)}, {3, pattern(1, 256)}});
    for (const std::uint32_t offset : {0u, 1u, 255u})
        expectAccepted(FG_CAMERASIMULATOR_PATTERN_OFFSET, offset, {simulator("Offset_Value", offset)});
    for (const std::uint32_t offset : {256u, 0x100u << 8, ~0u})
        expectRefused(FG_CAMERASIMULATOR_PATTERN_OFFSET, offset);
    expectChoices(FG_CAMERASIMULATOR_ROLL,
                  {{1, {simulator("Frame_Divisor", 256)}}, {0, {simulator("Frame_Divisor", 1)}}});
    const auto trigger = [](std::uint32_t freeRun, std::uint32_t valve) -> Lines {
        return {simulator("TriggerValve_FreeRun_Select", freeRun),
                simulator("TriggerValve_TriggerValve_Mode", valve)};
    };
    expectChoices(FG_CAMERASIMULATOR_TRIGGER_MODE,
                  {{0, trigger(1, 2)}, {8, trigger(0, 1)}, {9, trigger(0, 2)}});
}

TEST_F(CameraSimulator, SizesAndRatesGoUpToWhatTheOthersAllow) {
    for (const State& from : states) {
        SCOPED_TRACE(testing::Message() << "mode " << from.mode << ", " << from.width << " x " << from.height
                                        << ", " << from.sequence << " cycles");
        ASSERT_NO_FATAL_FAILURE(arrange(from));
        expectState(from);
        // What is asked of a size is limited before it is rounded up, and again afterwards.
        const auto most = from.maxWidth();
        const auto rounded = [](std::uint32_t value) { return (value + 31) / 32 * 32; };
        for (const std::uint32_t width : {1u, 32u, 33u, most / 2, most}) {
            ASSERT_NO_FATAL_FAILURE(arrange(from));
            if (rounded(width) > 294920)
                expectRefused(FG_CAMERASIMULATOR_WIDTH, width, FG_ERR_OUT_OF_RANGE);
            else
                expectAccepted(FG_CAMERASIMULATOR_WIDTH, width,
                               Lines{sequenceRead(from.sequence)} + applied(rounded(width)), rounded(width));
        }
        ASSERT_NO_FATAL_FAILURE(arrange(from));
        for (const std::uint32_t width : {0u, most + 1, 294921u, 0x80000000u, ~0u})
            expectRefused(FG_CAMERASIMULATOR_WIDTH, width);

        const auto tallest = from.maxHeight();
        for (const std::uint32_t height : {1u, std::min(33u, tallest), tallest}) {
            ASSERT_NO_FATAL_FAILURE(arrange(from));
            if (from.mode == lineRateMode) {
                expectAccepted(FG_CAMERASIMULATOR_HEIGHT, height, appliedHeight(height));
            } else { // the rate that was asked for is programmed anew
                const auto sequence = sequenceOf(requestOf(from), height);
                const bool fits = requestOf(from) <= maxPixelRate / (height * (from.width + 32));
                const Lines before = Lines{sequenceRead(from.sequence)} + appliedHeight(height);
                if (!fits)
                    expectRefused(FG_CAMERASIMULATOR_HEIGHT, height, FG_ERR_OUT_OF_RANGE, before);
                else
                    expectAccepted(FG_CAMERASIMULATOR_HEIGHT, height,
                                   before + counters(sequence) + applied(from.width) + appliedHeight(height));
            }
        }
        ASSERT_NO_FATAL_FAILURE(arrange(from));
        for (const std::uint32_t height : {0u, tallest + 1, 65537u, 0x80000000u, ~0u})
            expectRefused(FG_CAMERASIMULATOR_HEIGHT, height);

        const Lines rateRead = from.mode == lineRateMode ? Lines{sequenceRead(from.sequence)} : Lines{};
        for (const std::uint32_t gap : {0u, from.maxLineGap() / 2, from.maxLineGap()}) {
            if (from.width + rounded(gap) > 294920)
                expectRefused(FG_CAMERASIMULATOR_LINE_GAP, gap);
            else // it reads 0 in both modes
                expectAccepted(FG_CAMERASIMULATOR_LINE_GAP, gap, rateRead + applied(from.width, rounded(gap)),
                               0u);
        }
        for (const std::uint32_t gap : {from.maxLineGap() + 1, 294921u, ~0u})
            expectRefused(FG_CAMERASIMULATOR_LINE_GAP, gap);
        for (const std::uint32_t gap : {1u, 65536u, ~0u})
            expectRefused(FG_CAMERASIMULATOR_FRAME_GAP, gap);
        expectAccepted(FG_CAMERASIMULATOR_FRAME_GAP, 0u, appliedHeight(from.height));

        for (const double rate : {0.15, 1.0, from.maxLineRate()}) {
            SCOPED_TRACE(rate);
            State state = from;
            state.sequence = sequenceOf(rate);
            expectAccepted(FG_CAMERASIMULATOR_LINERATE, rate, counters(state.sequence) + applied(from.width),
                           state.lineRate());
        }
        for (const double rate : {0.1, 0.0, -1.0, std::nextafter(0.15, 0),
                                  std::nextafter(from.maxLineRate(), infinity), infinity})
            expectRefused(FG_CAMERASIMULATOR_LINERATE, rate);
        for (const double rate : {0.15, 1.0, from.maxFrameRate()}) {
            SCOPED_TRACE(rate);
            State state = from;
            state.sequence = sequenceOf(rate, from.height);
            expectAccepted(FG_CAMERASIMULATOR_FRAMERATE, rate,
                           counters(state.sequence) + applied(from.width) + appliedHeight(from.height),
                           state.frameRate());
        }
        for (const double rate :
             {0.1, -0.2, std::nextafter(0.15, 0), std::nextafter(from.maxFrameRate(), infinity), infinity})
            expectRefused(FG_CAMERASIMULATOR_FRAMERATE, rate);
    }
}

TEST_F(CameraSimulator, EachSetterRefreshesItsNeighboursOnly) {
    const std::set<int> all(sizes.begin(), sizes.end());
    const std::map<int, std::set<int>> refreshed = {
        {FG_CAMERASIMULATOR_WIDTH,
         {FG_CAMERASIMULATOR_LINE_GAP, FG_CAMERASIMULATOR_HEIGHT, FG_CAMERASIMULATOR_LINERATE,
          FG_CAMERASIMULATOR_FRAMERATE}},
        {FG_CAMERASIMULATOR_LINE_GAP, {FG_CAMERASIMULATOR_WIDTH}},
        {FG_CAMERASIMULATOR_HEIGHT,
         {FG_CAMERASIMULATOR_WIDTH, FG_CAMERASIMULATOR_FRAME_GAP, FG_CAMERASIMULATOR_FRAMERATE}},
        {FG_CAMERASIMULATOR_FRAME_GAP, {FG_CAMERASIMULATOR_HEIGHT}},
        {FG_CAMERASIMULATOR_LINERATE, {FG_CAMERASIMULATOR_WIDTH, FG_CAMERASIMULATOR_LINE_GAP}},
        {FG_CAMERASIMULATOR_FRAMERATE, {FG_CAMERASIMULATOR_WIDTH, FG_CAMERASIMULATOR_HEIGHT}},
        {FG_CAMERASIMULATOR_SELECT_MODE, all}};
    using Maxima = std::map<int, double>;
    const auto published = [&] {
        Maxima maxima;
        for (const int id : sizes)
            maxima[id] = maximum(id);
        for (const int id : rates)
            maxima[id] = doubleMaximum(id);
        return maxima;
    };
    const auto markAll = [&] {
        for (const int id : sizes)
            record(id)->value.u32.maximum = 7777;
        for (const int id : rates)
            record(id)->value.f64.maximum = 7777;
        return published();
    };
    for (const State& state : states) {
        for (const auto& [id, ids] : refreshed) {
            SCOPED_TRACE(testing::Message() << id << " in mode " << state.mode << " width " << state.width);
            ASSERT_NO_FATAL_FAILURE(arrange(state));
            const Maxima limits = {{FG_CAMERASIMULATOR_WIDTH, state.maxWidth()},
                                   {FG_CAMERASIMULATOR_LINE_GAP, state.maxLineGap()},
                                   {FG_CAMERASIMULATOR_HEIGHT, state.maxHeight()},
                                   {FG_CAMERASIMULATOR_FRAME_GAP, 0},
                                   {FG_CAMERASIMULATOR_LINERATE, state.maxLineRate()},
                                   {FG_CAMERASIMULATOR_FRAMERATE, state.maxFrameRate()}};
            const bool foreignRate =
                std::count(rates.begin(), rates.end(), id) > 0 && id != rateOf(state.mode);
            if (foreignRate) continue;
            Maxima expected = markAll();
            for (const int each : ids)
                expected[each] = limits.at(each);
            if (id == FG_CAMERASIMULATOR_HEIGHT && state.mode == frameRateMode)
                expected[id] = limits.at(id); // through the frame rate
            // The value that is there already.
            if (id == rateOf(state.mode))
                ASSERT_EQ(set(id, requestOf(state)), 0);
            else if (id == FG_CAMERASIMULATOR_SELECT_MODE && state.mode == frameRateMode)
                continue; // takes the rate that reads back, see below
            else
                ASSERT_EQ(set(id, get<std::uint32_t>(id)), 0);
            EXPECT_EQ(published(), expected);
            const Maxima before = markAll();
            if (id == rateOf(state.mode))
                EXPECT_EQ(set(id, -1.0), FG_ERR_OUT_OF_RANGE);
            else
                EXPECT_EQ(set(id, ~0u), FG_ERR_OUT_OF_RANGE);
            EXPECT_EQ(published(), before);
        }
    }
    // The product of the frame rate's limit is cut to 32 bits, here to nothing.
    ASSERT_NO_FATAL_FAILURE(arrange({lineRateMode, 65504, 1, 12207}));
    ASSERT_EQ(set(FG_CAMERASIMULATOR_HEIGHT, 65536u), 0);
    EXPECT_EQ(doubleMaximum(FG_CAMERASIMULATOR_FRAMERATE), infinity);
}

TEST_F(CameraSimulator, ModesChangeAccessAndReapplyTheRate) {
    const std::vector<int> ids = {FG_CAMERASIMULATOR_PIXEL_FREQUENCY, FG_CAMERASIMULATOR_LINERATE,
                                  FG_CAMERASIMULATOR_FRAMERATE, FG_CAMERASIMULATOR_LINE_GAP,
                                  FG_CAMERASIMULATOR_FRAME_GAP};
    using Access = std::vector<std::uint32_t>;
    const auto sizesOfMode = [](std::uint32_t clock, std::uint32_t gap) {
        return Lines{simulator("ControlPixelClock_Mode", clock)} + applied(1024, gap) + appliedHeight(1024);
    };
    State state;
    EXPECT_EQ(accessOf(ids), (Access{1, 7, 1, 1, 7}));

    // To the frame rate that the line rate gives, and from there the rates go their own ways.
    state.sequence = sequenceOf(state.frameRate(), 1024);
    state.mode = frameRateMode;
    expectAccepted(FG_CAMERASIMULATOR_SELECT_MODE, frameRateMode,
                   sizesOfMode(1, 0) + counters(state.sequence) + applied(1024) + appliedHeight(1024));
    EXPECT_EQ(accessOf(ids), (Access{1, 1, 7, 1, 1}));
    expectState(state);
    EXPECT_EQ(maximum(FG_CAMERASIMULATOR_WIDTH), state.maxWidth());
    EXPECT_EQ(maximum(FG_CAMERASIMULATOR_LINE_GAP), 0u);
    EXPECT_EQ(maximum(FG_CAMERASIMULATOR_HEIGHT), state.maxHeight());
    expectAccepted(FG_CAMERASIMULATOR_FRAMERATE, 50.0,
                   counters(sequenceOf(50.0, 1024)) + applied(1024) + appliedHeight(1024),
                   State{frameRateMode, 1024, 1024, sequenceOf(50.0, 1024)}.frameRate());
    expectAccepted(FG_CAMERASIMULATOR_SELECT_MODE, lineRateMode,
                   sizesOfMode(1, 0) + counters(12207) + applied(1024));
    expectState({});

    // The gap that was asked for is kept, and programmed for a moment at each change of the mode.
    expectAccepted(FG_CAMERASIMULATOR_LINE_GAP, 100u, Lines{sequenceRead(12207)} + applied(1024, 128), 0u);
    expectAccepted(FG_CAMERASIMULATOR_SELECT_MODE, lineRateMode,
                   sizesOfMode(1, 128) + counters(12207) + applied(1024));

    // The pixel frequency can never be programmed, so that its mode fails at the end.
    expectRefused(FG_CAMERASIMULATOR_SELECT_MODE, 0u, FG_ERR_OUT_OF_RANGE, sizesOfMode(0, 128));
    EXPECT_EQ(accessOf(ids), (Access{7, 1, 1, 7, 7}));
    expectState({});
    for (const std::uint32_t mode : {3u, 4u, 257u, ~0u})
        expectRefused(FG_CAMERASIMULATOR_SELECT_MODE, mode);
    EXPECT_EQ(accessOf(ids), (Access{7, 1, 1, 7, 7}));
    for (const double frequency : {100.0, 0.5, 1.0, 39.375, 3999.0, 0.9999999999999998, -1.0, -2.0, infinity})
        expectRefused(FG_CAMERASIMULATOR_PIXEL_FREQUENCY, frequency);
    for (const int id : {FG_CAMERASIMULATOR_ACTIVE, FG_CAMERASIMULATOR_PASSIVE}) {
        std::uint32_t value = 12345;
        EXPECT_EQ(grabber.get(id, &value), FG_OK);
        EXPECT_EQ(value, 12345u) << "only the mode of the pixel frequency has a value";
        EXPECT_EQ(set(id, 1u), FG_ERR_NOT_AVAILABLE);
    }
}

TEST_F(CameraSimulator, ALineRateTooFastForTheWidthIsCapped) {
    ASSERT_EQ(set(FG_CAMERASIMULATOR_LINERATE, 3000000.0), 0);
    ASSERT_EQ(set(FG_CAMERASIMULATOR_HEIGHT, 1u), 0);
    ASSERT_EQ(set(FG_CAMERASIMULATOR_SELECT_MODE, frameRateMode), 0);
    ASSERT_EQ(set(FG_CAMERASIMULATOR_FRAMERATE, 10.0), 0);
    ASSERT_EQ(set(FG_CAMERASIMULATOR_WIDTH, 100000u), 0);
    ASSERT_EQ(set(FG_CAMERASIMULATOR_SELECT_MODE, lineRateMode), 0);
    expectState({lineRateMode, 100000, 1, sequenceOf(maxPixelRate / 100032.0)});
}

TEST_F(CameraSimulator, AFailedRateIsForgotten) {
    // The rates read back from the counters; the request shows when the mode is set again.
    for (const auto& [mode, writes] : {std::pair{lineRateMode, 4u}, {frameRateMode, 6u}}) {
        for (unsigned k = 1; k <= writes; ++k) {
            SCOPED_TRACE(testing::Message() << "mode " << mode << " access " << k);
            ASSERT_EQ(set(FG_CAMERASIMULATOR_SELECT_MODE, mode), 0);
            ASSERT_EQ(set(rateOf(mode), 200.0), 0);
            board.fail_access(grabber.device, k, -4711, VBOARD_ONCE);
            EXPECT_EQ(set(rateOf(mode), 400.0), -4711);
            EXPECT_EQ(lastError(), -4711);
            board.fail_access(grabber.device, 0, 0, VBOARD_ONCE);
            if (mode == lineRateMode) {
                ASSERT_EQ(set(FG_CAMERASIMULATOR_SELECT_MODE, mode), 0);
                expectState({mode, 1024, 1024, sequenceOf(200.0)});
            } else {
                ASSERT_EQ(set(FG_CAMERASIMULATOR_HEIGHT, 1024u), 0);
                expectState({mode, 1024, 1024, sequenceOf(200.0, 1024)});
            }
        }
    }
}

TEST_F(CameraSimulator, AFailedWidthReadsAsItWasRounded) {
    // What reads back is what was about to be applied; the request behind it is the old one.
    for (unsigned k = 1; k <= 3; ++k) {
        SCOPED_TRACE(k);
        ASSERT_EQ(set(FG_CAMERASIMULATOR_WIDTH, 1024u), 0);
        board.fail_access(grabber.device, k, -4711, VBOARD_ONCE);
        EXPECT_EQ(set(FG_CAMERASIMULATOR_WIDTH, 500u), -4711);
        board.fail_access(grabber.device, 0, 0, VBOARD_ONCE);
        // The first access reads the rate.
        EXPECT_EQ(get<std::uint32_t>(FG_CAMERASIMULATOR_WIDTH), k == 1 ? 1024u : 512u);
    }
}

TEST_F(CameraSimulator, NotANumberHarmsNobody) {
    for (const int id :
         {FG_CAMERASIMULATOR_PIXEL_FREQUENCY, FG_CAMERASIMULATOR_LINERATE, FG_CAMERASIMULATOR_FRAMERATE})
        set(id, nan);
    ASSERT_EQ(set(FG_CAMERASIMULATOR_LINERATE, 10240.0), 0);
    expectState({});
}

TEST_F(CameraSimulator, ASlaveTakesTheRatesFromTheBoard) {
    Grabber slave(1);
    EXPECT_EQ(slave.value<double>(FG_CAMERASIMULATOR_LINERATE), State{}.lineRate());
    EXPECT_EQ(slave.value<std::uint32_t>(FG_CAMERASIMULATOR_WIDTH), 1024u);
    slave.clearLog();
    EXPECT_EQ(slave.set(FG_CAMERASIMULATOR_LINERATE, State{}.maxLineRate()), 0);
    EXPECT_EQ(slave.log()[0], counters(33)[0]);
}

} // namespace
