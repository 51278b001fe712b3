// Camera simulator: sizes on their grid, rates as counters, and how each limits the others.

#include "support/applet_fixture.h"
#include "support/temporary_folder.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using namespace support;

constexpr double maxPixelRate = 3999999999.9999995;
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
Lines sequenceRead(std::uint32_t sequence) {
    return {"get Device1_Process0_CameraSimulator_PixelFrequency_SequenceLength_ImageWidth u32 " +
            std::to_string(sequence)};
}
std::uint32_t rounded(std::uint32_t value) { return (value + 31) / 32 * 32; }
/** Cycles of a line at a rate of lines, or of frames of this height. */
std::uint32_t sequenceOf(double rate, std::uint32_t height = 1) {
    return static_cast<std::uint32_t>(0.5 + 1.0 / (rate * 8e-9) / height);
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
    int rateId() const {
        return mode == lineRateMode ? FG_CAMERASIMULATOR_LINERATE : FG_CAMERASIMULATOR_FRAMERATE;
    }
    /** A rate in the middle of those that give the sequence. */
    double request() const { return 1.0 / (8e-9 * sequence * (mode == lineRateMode ? 1.0 : height)); }

private:
    double pixelsPerLine() const {
        return maxPixelRate / (mode == lineRateMode ? lineRate() : height * frameRate());
    }
    static std::uint32_t least(std::uint32_t most, double other) {
        return std::min(most, static_cast<std::uint32_t>(static_cast<std::int64_t>(other)));
    }
};
const State states[] = {{lineRateMode, 1024, 1024, 12207}, {lineRateMode, 64, 7, 40},
                        {lineRateMode, 4096, 33, 1250},    {lineRateMode, 294912, 65536, 833333333},
                        {frameRateMode, 1024, 1024, 9000}, {frameRateMode, 32, 1, 833333},
                        {frameRateMode, 4096, 600, 1250}};

class CameraSimulator : public ParameterTest {
protected:
    void arrange(const State& wanted) {
        // Without a gap that a change of the mode remembers, at one slow line, every size fits and every mode
        // can be reached.
        setAll({{FG_CAMERASIMULATOR_LINE_GAP, 0},
                {FG_CAMERASIMULATOR_SELECT_MODE, lineRateMode},
                {FG_CAMERASIMULATOR_HEIGHT, 1}});
        EXPECT_EQ(set(FG_CAMERASIMULATOR_LINERATE, 0.2), 0);
        setAll({{FG_CAMERASIMULATOR_SELECT_MODE, wanted.mode},
                {FG_CAMERASIMULATOR_WIDTH, wanted.width},
                {FG_CAMERASIMULATOR_HEIGHT, wanted.height}});
        EXPECT_EQ(set(wanted.rateId(), wanted.request()), 0);
    }
    void expectState(const State& state) {
        for (const auto& [id, value] : {std::pair{FG_CAMERASIMULATOR_SELECT_MODE, state.mode},
                                        {FG_CAMERASIMULATOR_WIDTH, state.width},
                                        {FG_CAMERASIMULATOR_HEIGHT, state.height},
                                        {FG_CAMERASIMULATOR_LINE_GAP, 0u},
                                        {FG_CAMERASIMULATOR_FRAME_GAP, 0u}})
            EXPECT_EQ(get<std::uint32_t>(id), value) << id;
        EXPECT_EQ(get<double>(FG_CAMERASIMULATOR_PIXEL_FREQUENCY), 3999.9999999999995);
        EXPECT_EQ(get<double>(FG_CAMERASIMULATOR_LINERATE), state.lineRate());
        EXPECT_EQ(get<double>(FG_CAMERASIMULATOR_FRAMERATE), state.frameRate());
    }
};

TEST_F(CameraSimulator, PatternOffset) {
    for (const std::uint32_t offset : {0u, 1u, 255u})
        expectAccepted(FG_CAMERASIMULATOR_PATTERN_OFFSET, offset, {simulator("Offset_Value", offset)});
    expectAllRefused(FG_CAMERASIMULATOR_PATTERN_OFFSET, {256u, 0x10000u, ~0u});
}

TEST_F(CameraSimulator, SizesAndRatesGoUpToWhatTheOthersAllow) {
    for (const State& from : states) {
        SCOPED_TRACE(testing::Message() << "mode " << from.mode << ", " << from.width << " x " << from.height
                                        << ", " << from.sequence << " cycles");
        // What is asked of a size is limited before it is rounded up, and again afterwards.
        const auto most = from.maxWidth();
        for (const std::uint32_t width : {1u, 32u, 33u, most / 2, most}) {
            arrange(from);
            expectState(from);
            if (rounded(width) > 294920)
                expectRefused(FG_CAMERASIMULATOR_WIDTH, width);
            else
                expectAccepted(FG_CAMERASIMULATOR_WIDTH, width,
                               sequenceRead(from.sequence) + applied(rounded(width)), rounded(width));
        }
        const auto tallest = from.maxHeight();
        for (const std::uint32_t height : {1u, std::min(33u, tallest), tallest}) {
            arrange(from);
            if (from.mode == lineRateMode) {
                expectAccepted(FG_CAMERASIMULATOR_HEIGHT, height, appliedHeight(height));
                continue;
            }
            // The rate that was asked for is programmed anew.
            const Lines before = sequenceRead(from.sequence) + appliedHeight(height);
            const Lines anew = counters(sequenceOf(from.request(), height)) + applied(from.width);
            if (from.request() <= maxPixelRate / (height * (from.width + 32)))
                expectAccepted(FG_CAMERASIMULATOR_HEIGHT, height, before + anew + appliedHeight(height));
            else
                expectRefused(FG_CAMERASIMULATOR_HEIGHT, height, FG_ERR_OUT_OF_RANGE, before);
        }
        arrange(from);
        expectAllRefused(FG_CAMERASIMULATOR_WIDTH, {0u, most + 1, 294921u, 0x80000000u, ~0u});
        expectAllRefused(FG_CAMERASIMULATOR_HEIGHT, {0u, tallest + 1, 65537u, 0x80000000u, ~0u});

        const Lines rateRead = from.mode == lineRateMode ? sequenceRead(from.sequence) : Lines{};
        for (const std::uint32_t gap : {0u, from.maxLineGap() / 2, from.maxLineGap()}) {
            if (from.width + rounded(gap) > 294920)
                expectRefused(FG_CAMERASIMULATOR_LINE_GAP, gap);
            else // it reads 0 in both modes
                expectAccepted(FG_CAMERASIMULATOR_LINE_GAP, gap, rateRead + applied(from.width, rounded(gap)),
                               0u);
        }
        expectAllRefused(FG_CAMERASIMULATOR_LINE_GAP, {from.maxLineGap() + 1, 294921u, ~0u});
        expectAccepted(FG_CAMERASIMULATOR_FRAME_GAP, 0u, appliedHeight(from.height));
        expectAllRefused(FG_CAMERASIMULATOR_FRAME_GAP, {1u, 65536u, ~0u});

        for (const auto& [id, fastest, height] :
             {std::tuple{FG_CAMERASIMULATOR_LINERATE, from.maxLineRate(), 1u},
              {FG_CAMERASIMULATOR_FRAMERATE, from.maxFrameRate(), from.height}}) {
            const bool isLines = id == FG_CAMERASIMULATOR_LINERATE;
            for (const double rate : {0.15, 1.0, fastest}) {
                State to = from;
                to.sequence = sequenceOf(rate, height);
                expectAccepted(id, rate,
                               counters(to.sequence) + applied(from.width) +
                                   (isLines ? Lines{} : appliedHeight(height)),
                               isLines ? to.lineRate() : to.frameRate());
            }
            expectAllRefused(
                id, {0.1, 0.0, -1.0, std::nextafter(0.15, 0), std::nextafter(fastest, infinity), infinity});
        }
    }
}

TEST_F(CameraSimulator, EachSetterRefreshesItsNeighboursOnly) {
    constexpr int ids[] = {FG_CAMERASIMULATOR_WIDTH,    FG_CAMERASIMULATOR_LINE_GAP,
                           FG_CAMERASIMULATOR_HEIGHT,   FG_CAMERASIMULATOR_FRAME_GAP,
                           FG_CAMERASIMULATOR_LINERATE, FG_CAMERASIMULATOR_FRAMERATE};
    const auto isRate = [&](int id) { return id == ids[4] || id == ids[5]; };
    const std::pair<int, std::string> rows[] = {
        // which of the ids, in their order
        {FG_CAMERASIMULATOR_WIDTH, "011011"},      {FG_CAMERASIMULATOR_LINE_GAP, "100000"},
        {FG_CAMERASIMULATOR_HEIGHT, "100101"},     {FG_CAMERASIMULATOR_FRAME_GAP, "001000"},
        {FG_CAMERASIMULATOR_LINERATE, "110000"},   {FG_CAMERASIMULATOR_FRAMERATE, "101000"},
        {FG_CAMERASIMULATOR_SELECT_MODE, "111100"}};
    for (const State& state : states) {
        const double limits[] = {double(state.maxWidth()),  double(state.maxLineGap()),
                                 double(state.maxHeight()), 0,
                                 state.maxLineRate(),       state.maxFrameRate()};
        for (auto [id, refreshed] : rows) {
            SCOPED_TRACE(testing::Message() << id << " in mode " << state.mode << " width " << state.width);
            // The other rate and the frame rate's mode would change the state; its height sets the rate.
            if (isRate(id) && id != state.rateId()) continue;
            if (id == FG_CAMERASIMULATOR_SELECT_MODE && state.mode == frameRateMode) continue;
            if (id == FG_CAMERASIMULATOR_HEIGHT && state.mode == frameRateMode) refreshed[2] = '1';
            arrange(state);
            for (const int each : ids) {
                if (isRate(each))
                    record(each)->value.f64.maximum = 7777;
                else
                    record(each)->value.u32.maximum = 7777;
            }
            const auto expectRefreshed = [&](const std::string& which) {
                for (std::size_t i = 0; i < 6; ++i)
                    EXPECT_EQ(isRate(ids[i]) ? doubleMaximum(ids[i]) : maximum(ids[i]),
                              which[i] == '1' ? limits[i] : 7777)
                        << ids[i];
            };
            EXPECT_EQ(isRate(id) ? set(id, -1.0) : set(id, ~0u), FG_ERR_OUT_OF_RANGE);
            expectRefreshed("000000");
            EXPECT_EQ(isRate(id) ? set(id, state.request()) : set(id, get<std::uint32_t>(id)), 0);
            expectRefreshed(refreshed);
        }
    }
    // The product of the frame rate's limit is cut to 32 bits, here to nothing.
    arrange({lineRateMode, 65504, 1, 12207});
    setAll({{FG_CAMERASIMULATOR_HEIGHT, 65536}});
    EXPECT_EQ(doubleMaximum(FG_CAMERASIMULATOR_FRAMERATE), infinity);
}

TEST_F(CameraSimulator, LinesOfAFrameAreCountedIn32Bits) {
    arrange({frameRateMode, 1024, 1024, 9000});
    grabber.poke("Device1_Process0_CameraSimulator_PixelFrequency_SequenceLength_ImageWidth", 0x80400002);
    EXPECT_EQ(get<double>(FG_CAMERASIMULATOR_FRAMERATE), 1.0 / (8e-9 * 2048));

    // Only a file leads to the mode of the pixel frequency, here with a frame of 2^32 pixels.
    const TemporaryFolder folder;
    const std::string path = folder / "state.mcf", mode = "FG_CAMERASIMULATOR_SELECT_MODE=";
    arrange({lineRateMode, 65536, 65536, 833333333});
    ASSERT_EQ(applet.Fg_saveConfig(grabber.fg(), path.c_str()), FG_OK);
    std::string state = fileBytes(path);
    state.replace(state.find(mode + '1'), mode.size() + 1, mode + '0');
    writeFile(path, state);
    ASSERT_EQ(applet.Fg_loadConfig(grabber.fg(), path.c_str()), FG_OK);
    EXPECT_EQ(get<double>(FG_CAMERASIMULATOR_FRAMERATE), infinity);
}

TEST_F(CameraSimulator, ModesChangeAccessAndReapplyTheRate) {
    const auto expectAccess = [&](const std::vector<std::uint32_t>& access) {
        EXPECT_EQ(accessOf({FG_CAMERASIMULATOR_PIXEL_FREQUENCY, FG_CAMERASIMULATOR_LINERATE,
                            FG_CAMERASIMULATOR_FRAMERATE, FG_CAMERASIMULATOR_LINE_GAP,
                            FG_CAMERASIMULATOR_FRAME_GAP}),
                  access);
    };
    const auto sizesOfMode = [](std::uint32_t clock, std::uint32_t gap) {
        return Lines{simulator("ControlPixelClock_Mode", clock)} + applied(1024, gap) + appliedHeight(1024);
    };
    const auto framed = [](std::uint32_t sequence) {
        return counters(sequence) + applied(1024) + appliedHeight(1024);
    };
    expectAccess({1, 7, 1, 1, 7});

    // To the frame rate that the line rate gives, and from there the rates go their own ways.
    const State byFrame{frameRateMode, 1024, 1024, sequenceOf(State{}.frameRate(), 1024)};
    expectAccepted(FG_CAMERASIMULATOR_SELECT_MODE, frameRateMode,
                   sizesOfMode(1, 0) + framed(byFrame.sequence));
    expectAccess({1, 1, 7, 1, 1});
    expectState(byFrame);
    EXPECT_EQ(maximum(FG_CAMERASIMULATOR_WIDTH), byFrame.maxWidth());
    EXPECT_EQ(maximum(FG_CAMERASIMULATOR_LINE_GAP), 0u);
    EXPECT_EQ(maximum(FG_CAMERASIMULATOR_HEIGHT), byFrame.maxHeight());
    const State faster{frameRateMode, 1024, 1024, sequenceOf(50.0, 1024)};
    expectAccepted(FG_CAMERASIMULATOR_FRAMERATE, 50.0, framed(faster.sequence), faster.frameRate());
    const Lines back = counters(12207) + applied(1024);
    expectAccepted(FG_CAMERASIMULATOR_SELECT_MODE, lineRateMode, sizesOfMode(1, 0) + back);
    expectState({});

    // The gap that was asked for is kept, and programmed for a moment at each change of the mode.
    expectAccepted(FG_CAMERASIMULATOR_LINE_GAP, 100u, sequenceRead(12207) + applied(1024, 128), 0u);
    expectAccepted(FG_CAMERASIMULATOR_SELECT_MODE, lineRateMode, sizesOfMode(1, 128) + back);

    // The pixel frequency can never be programmed, so that its mode fails at the end.
    expectRefused(FG_CAMERASIMULATOR_SELECT_MODE, 0u, FG_ERR_OUT_OF_RANGE, sizesOfMode(0, 128));
    expectAllRefused(FG_CAMERASIMULATOR_SELECT_MODE, {3u, 4u, 257u, ~0u});
    expectAccess({7, 1, 1, 7, 7});
    expectState({});
    expectAllRefused(FG_CAMERASIMULATOR_PIXEL_FREQUENCY,
                     {100.0, 0.5, 1.0, 39.375, 3999.0, 0.9999999999999998, -1.0, -2.0, infinity});
    for (const int id : {FG_CAMERASIMULATOR_ACTIVE, FG_CAMERASIMULATOR_PASSIVE}) {
        std::uint32_t value = 12345;
        EXPECT_EQ(grabber.get(id, &value), FG_OK);
        EXPECT_EQ(value, 12345u) << "only the mode of the pixel frequency has a value";
    }
}

TEST_F(CameraSimulator, ALineRateTooFastForTheWidthIsCapped) {
    for (const int id :
         {FG_CAMERASIMULATOR_PIXEL_FREQUENCY, FG_CAMERASIMULATOR_LINERATE, FG_CAMERASIMULATOR_FRAMERATE})
        set(id, std::numeric_limits<double>::quiet_NaN()); // harms nobody
    ASSERT_EQ(set(FG_CAMERASIMULATOR_LINERATE, 3000000.0), 0);
    setAll({{FG_CAMERASIMULATOR_HEIGHT, 1}, {FG_CAMERASIMULATOR_SELECT_MODE, frameRateMode}});
    ASSERT_EQ(set(FG_CAMERASIMULATOR_FRAMERATE, 10.0), 0);
    setAll({{FG_CAMERASIMULATOR_WIDTH, 100000}, {FG_CAMERASIMULATOR_SELECT_MODE, lineRateMode}});
    expectState({lineRateMode, 100000, 1, sequenceOf(maxPixelRate / 100032.0)});
}

TEST_F(CameraSimulator, AFailedRateIsForgottenAndAFailedWidthReadsAsItWasRounded) {
    const auto setFailing = [&](unsigned access, int id, auto value) {
        SCOPED_TRACE(testing::Message() << id << " access " << access);
        board.fail_access(grabber.device, access, -4711, VBOARD_ONCE);
        EXPECT_EQ(set(id, value), -4711);
        EXPECT_EQ(lastError(), -4711);
        board.fail_access(grabber.device, 0, 0, VBOARD_ONCE);
    };
    // Of what reads back the counters tell, or what was about to be applied; the request behind it is the
    // old one.
    for (unsigned access = 1; access <= 3; ++access) { // the first reads the rate
        setFailing(access, FG_CAMERASIMULATOR_WIDTH, 500u);
        EXPECT_EQ(get<std::uint32_t>(FG_CAMERASIMULATOR_WIDTH), access == 1 ? 1024u : 512u);
        setAll({{FG_CAMERASIMULATOR_WIDTH, 1024}});
    }
    for (const auto& [mode, again, height, accesses] :
         {std::tuple{lineRateMode, FG_CAMERASIMULATOR_SELECT_MODE, 1u, 4u},
          {frameRateMode, FG_CAMERASIMULATOR_HEIGHT, 1024u, 6u}}) {
        const State state{mode, 1024, 1024, sequenceOf(200.0, height)};
        for (unsigned access = 1; access <= accesses; ++access) {
            setAll({{FG_CAMERASIMULATOR_SELECT_MODE, mode}});
            ASSERT_EQ(set(state.rateId(), 200.0), 0);
            setFailing(access, state.rateId(), 400.0);
            setAll({{again, get<std::uint32_t>(again)}}); // programs the request anew
            expectState(state);
        }
    }
}

} // namespace
