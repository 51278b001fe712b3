// Times of signals and lines. All numbers are computed by hand, in ticks of 8 ns.

#include "support/station_board.h"

namespace station {
namespace {

using StationTiming = StationTest;

TEST_F(StationTiming, RatesAreExactOverASecond) {
    station.advance(ticksPerSecond); // at 10,240.44 lines a second, and frames of 8
    EXPECT_EQ(station.lines(), 10241U);
    EXPECT_EQ(board.raised(Event::lineStart), 10241U);
    EXPECT_EQ(board.raised(Event::lineEnd), 10241U);
    EXPECT_EQ(board.raised(Event::frameStart), 1281U);
    EXPECT_EQ(value(P::analyzer1Pulses), 10241);
    EXPECT_EQ(value(P::analyzer0Pulses), 5001);                        // ExSync at 5000 a second
    EXPECT_EQ(value(P::analyzerDifference), 0x1'ffff'ffff + 1 - 5240); // 33 bits of -5240
    EXPECT_EQ(board.raised(Event::customSignal0), 5001U);
    // 2000 periods that are not whole ticks: 128,000 / 1999 each.
    board.set("ControlPixelClock_Mode=0 ActivePixel_Number=1000");
    const Tick from = station.trace(lineValid, station.now() - 13000, station.now()).edges.front().tick;
    station.advance(20'000);
    const Tick first = station.trace(lineValid, station.now() - 20'000, station.now()).edges.front().tick;
    EXPECT_EQ(first - from, 12206U); // the line in progress still had the old rate
    station.advance(128'000 - 20'000 + first - (ticksPerSecond + 0));
    EXPECT_EQ(station.lines(), 10241U + 1999U + 1U);
}

TEST_F(StationTiming, OldEdgesAndEventsAreDropped) {
    board.set("ExsyncPeriod=0.8 ExsyncExposure=0.512");
    station.advance(10'000'000); // 100,001 pulses
    EXPECT_FALSE(station.trace(exsync, 0, 100).complete);
    const Trace last = station.trace(exsync, 9'999'900, 10'000'000);
    EXPECT_TRUE(last.complete);
    EXPECT_EQ(text(last), "0 +9999900 -9999964 +10000000");
    const std::uint64_t dropped = station.losses().events;
    std::uint64_t taken = 0;
    while (station.nextEvent())
        ++taken;
    EXPECT_EQ(taken, Events::capacity);
    EXPECT_EQ(dropped + taken, board.raised(Event::customSignal0) + board.raised(Event::lineStart) +
                                   board.raised(Event::lineEnd) + board.raised(Event::frameStart) +
                                   board.raised(Event::frameEnd));
}

TEST_F(StationTiming, IdleTimeIsSkippedUntilTheEndOfTime) {
    board.set("Enable_SelectSource=0 LineTriggerMode=1");
    EXPECT_EQ(station.advance(never), lastTick);
    EXPECT_EQ(station.advance(1), lastTick);
    board.set("LineTriggerMode=0 Enable_SelectSource=1 ExsyncPolarity=1");
    EXPECT_EQ(station.advance(never), lastTick);
}

TEST_F(StationTiming, CameraStatusShowsTheSignals) {
    board.set("SequenceLength_ImageWidth=101 Size_ImageHeight=4 FrameGap_Number=3 LineGap_Number=20");
    station.advance(450); // a line from 402 to 422, in a frame that has not ended; ExSync from 0 on
    EXPECT_EQ(station.cameraStatus(), 0b1101U);
}

TEST_F(StationTiming, HotBoardRaisesTheAlarmOnce) {
    station.advance(10);
    board.set("FpgaTemperature=85.5");
    station.advance(10);
    station.advance(10);
    EXPECT_EQ(board.raised(Event::temperatureAlarm), 1U);
}

TEST(StationNames, MatchTheDesign) {
    EXPECT_STREQ(nameOf(Parameter::xLength), "Device1_Process0_Buffer_0_XLength");
    EXPECT_STREQ(nameOf(pinEvent(3, false)),
                 "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin3");
    EXPECT_STREQ(nameOf(pinEvent(11, true)),
                 "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontPin3");
}

} // namespace
} // namespace station
