// Times of signals and lines. All numbers are worked out by hand, in ticks of 8 ns.

#include "support/station_board.h"

#include <limits>

namespace station {
namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

using StationTiming = StationTest;

TEST(StationExSync, PeriodsAreOnTheGridAndCounted) {
    struct Case {
        double period, exposure;
        Tick time;
        double pulses, measured;
    };
    const Case cases[] = {
        {200, 19, 100'000, 5, 200},             // 25,000 ticks: 0, 25,000, ... 100,000
        {200, 19, 99'999, 4, 200},              //
        {0.512, 0.512, 640, 1, 0},              // exposure of a whole period: high without a break
        {0.516, 0.512, 650, 11, 0.52},          // 64.5 ticks: halves up
        {0.1, 0, 640, 1, 0},                    // both at their minimum of 64
        {notANumber, notANumber, 640, 1, 0},    //
        {1e300, 1e300, 1'048'572, 5, 2097.144}, // 262,143 and 131,071 ticks
        {200, 300, 100'000, 1, 0},              //
    };
    for (const Case& row : cases) {
        Trial run({{P::exsyncPeriod, row.period}, {P::exsyncExposure, row.exposure}});
        run.station.advance(row.time);
        EXPECT_EQ(run.value(P::analyzer0Pulses), row.pulses) << row.period << ' ' << row.time;
        for (const P measured : {P::analyzer0Current, P::analyzer0Maximum, P::analyzer0Minimum})
            EXPECT_EQ(run.value(measured), row.measured) << row.period << ' ' << row.time;
    }
}

TEST(StationSimulator, LinesStartAtTheRateOfTheCounters) {
    struct Case {
        Values values;
        const char* starts;
        Tick to;
    };
    const Case cases[] = {
        {"SequenceLength_ImageWidth=100", "0 99 199 298 398", 400},                  // 99.5
        {"SequenceLength_ImageWidth=10", "0 32 64 96", 100},                         // no faster than a line
        {"SequenceLength_ImageWidth=0", "0 32 64 96", 100},                          //
        {"SequenceLength_ImageWidth=32", "0 32 64 96", 100},                         //
        {"SequenceLength_ImageWidth=33", "0 32 65 97 130", 150},                     //
        {"ControlPixelClock_Mode=0 ActivePixel_Number=2000", "0 32 64 96 128", 150}, // 32.008
        {"ControlPixelClock_Mode=0 ActivePixel_Number=1", "0 128000 256000", 260'000},
        {"ControlPixelClock_Mode=7 ActivePixel_Number=0", "0 128000", 130'000},
        {"Size_ImageWidth=0 SequenceLength_ImageWidth=2", "0 1 3 4 6", 6}, // a cycle at least
        // Frames of four lines, three of them active.
        {"SequenceLength_ImageWidth=101 Size_ImageHeight=4 FrameGap_Number=3", "0 100 201 402 502 603 804",
         804},
        {"SequenceLength_ImageWidth=101 FrameGap_Number=0", "", 804},
        {"Enable_SelectSource=0", "", 100'000},
        {"Enable_SelectSource=2", "", 100'000},
    };
    for (const Case& row : cases) {
        Trial run(row.values);
        run.station.advance(row.to);
        EXPECT_EQ(run.starts(lineValid, row.to), row.starts) << row.values;
    }
}

TEST_F(StationTiming, RatesComeOutOverASecond) {
    station.advance(ticksPerSecond); // at 10,240.44 lines a second, and frames of 8
    EXPECT_EQ(station.lines(), 10241U);
    EXPECT_EQ(board.raised(Event::lineStart), 10241U);
    EXPECT_EQ(board.raised(Event::lineEnd), 10241U);
    EXPECT_EQ(board.raised(Event::frameStart), 1281U);
    EXPECT_EQ(value(P::analyzer1Pulses), 10241);
    EXPECT_EQ(value(P::analyzer0Pulses), 5001);                        // ExSync at 5000 a second
    EXPECT_EQ(value(P::analyzerDifference), 0x1'ffff'ffff + 1 - 5240); // 33 bits of -5240
    EXPECT_EQ(board.raised(Event::customSignal0), 5001U);
    // 2000 multiples of a fraction of ticks: 128,000 / 1999 each.
    board.set("ControlPixelClock_Mode=0 ActivePixel_Number=1000");
    const Tick from = station.trace(lineValid, station.now() - 13000, station.now()).edges.front().tick;
    station.advance(20'000);
    const Tick first = station.trace(lineValid, station.now() - 20'000, station.now()).edges.front().tick;
    EXPECT_EQ(first - from, 12206U); // the line that was due still came at the old rate
    station.advance(128'000 - 20'000 + first - (ticksPerSecond + 0));
    EXPECT_EQ(station.lines(), 10241U + 1999U + 1U);
}

TEST_F(StationTiming, LineAndFrameValidFollowTheCounters) {
    board.set("SequenceLength_ImageWidth=101 Size_ImageHeight=4 FrameGap_Number=3 LineGap_Number=20");
    station.advance(450);
    EXPECT_EQ(trace(lineValid, 0, 450), "0 +0 -20 +100 -120 +201 -221 +402 -422");
    EXPECT_EQ(trace(frameValid, 0, 450), "0 +0 -221 +402");
    EXPECT_EQ(trace(lineStart, 90, 450), "0 +100 -101 +201 -202 +402 -403");
    EXPECT_EQ(trace(lineEnd, 121, 300), "1 -121 +221 -222");
    EXPECT_EQ(trace(lineEnd, 120, 120), "0 +120");
    EXPECT_EQ(trace(frameEnd, 222, 300), "1 -222");
    EXPECT_EQ(station.cameraStatus(), 0b1101U); // a source, FVAL, ExSync
    // Off: the line in transfer comes to its end, and the frame with it.
    station.advance(55);
    board.set("Enable_SelectSource=0");
    station.advance(1000);
    EXPECT_EQ(trace(lineValid, 500, 1505), "0 +502 -522");
    EXPECT_EQ(trace(frameValid, 500, 1505), "1 -522");
    board.set("Enable_SelectSource=1");
    station.advance(50);
    EXPECT_EQ(trace(frameValid, 1400, 1555), "0 +1506");
}

TEST_F(StationTiming, ExSync2IsTheSameLater) {
    board.set("ExsyncPeriod=0.8 ExsyncExposure=0.512 Exsync2Delay=2");
    station.advance(420);
    EXPECT_EQ(trace(exsync, 0, 420), "0 +0 -64 +100 -164 +200 -264 +300 -364 +400");
    EXPECT_EQ(trace(exsync2, 0, 420), "0 +250 -314 +350 -414");
    // Another delay holds for the edges from now on, another period from the next edge on, a polarity at once.
    board.set("Exsync2Delay=0 ExsyncPeriod=1.6 ExsyncPolarity=1");
    station.advance(500);
    EXPECT_EQ(trace(exsync, 420, 920), "1 -421 +464 -500 +564 -700 +764 -900");
    EXPECT_EQ(trace(exsync2, 420, 920), "0 +464 -500 +564 -700 +764 -900");
    board.set("ExsyncEnable=0");
    station.advance(500);
    EXPECT_EQ(trace(exsync, 920, 1420), "0 +921");
}

TEST_F(StationTiming, TheCameraTriggerStartsLinesOfTheSimulator) {
    // A line takes 100 ticks, so every second trigger is lost: 11 pulses, 6 lines.
    board.set(
        "FreeRun_Select=0 TriggerValve_Mode=1 Size_ImageWidth=100 ExsyncPeriod=0.52 ExsyncExposure=0.512");
    station.advance(650);
    EXPECT_EQ(starts(lineValid, 650), "0 130 260 390 520 650");
    EXPECT_EQ(value(P::analyzerDifference), 5);
    EXPECT_EQ(station.losses().cameraTriggers, 5U);
    EXPECT_EQ(trace(lineValid, 0, 200), "0 +0 -32 +130 -162");
}

TEST_F(StationTiming, TheCameraTriggerStartsFramesOfTheSimulator) {
    // Frames of 4 lines of 100.5 ticks, three of them active: busy for 402 ticks. Triggers every 200.
    board.set("FreeRun_Select=0 TriggerValve_Mode=2 SequenceLength_ImageWidth=101 Size_ImageHeight=4 "
              "FrameGap_Number=3 ExsyncPeriod=1.6 ExsyncExposure=0.512");
    station.advance(999);
    EXPECT_EQ(starts(lineValid, 999), "0 100 201 600 700 801");
    EXPECT_EQ(starts(frameStart, 999), "0 600");
    EXPECT_EQ(station.losses().cameraTriggers, 3U); // at 200, 400, 800
}

TEST_F(StationTiming, ATriggerFromTheEndOfALineStartsTheNext) {
    // LVAL inverted as camera trigger: the level before the first line is no edge, so nothing comes until one does.
    board.set("FreeRun_Select=0 TriggerValve_Mode=1 SelectTrigger_SelectSignal_Select=4 "
              "SelectTrigger_Polarity_Invert=1");
    station.advance(100);
    EXPECT_EQ(starts(lineValid, 100), "");
    board.set("SelectTrigger_Polarity_Invert=0");
    station.advance(100);
    board.set("SelectTrigger_Polarity_Invert=1"); // an edge of the crossbar itself, at 201
    station.advance(100);
    EXPECT_EQ(starts(lineValid, 300), "201 233 265 297");
}

TEST_F(StationTiming, CrossbarAnalyzersAndCustomEventsSeeTheSame) {
    struct Case {
        double select, invert, edges;
    };
    // Over 1000 ticks, after a clear at 100: ExSync every 100 with 64 high, delayed by 250; lines of 20 every 99.5.
    const Case cases[] = {
        {exsync, 0, 9},    {exsync, 1, 9},     {exsync2, 0, 8},    {exsync2, 1, 7},
        {lineValid, 0, 9}, {lineValid, 1, 9},  {lineStart, 0, 9},  {lineStart, 1, 9},
        {lineEnd, 0, 9},   {frameValid, 0, 1}, {frameStart, 0, 1}, {0, 0, 0},
        {0, 1, 0},         {99, 0, 0},         {1e12, 1, 0},       {7, 0, 0},
    };
    for (const Case& row : cases) {
        Trial run("ExsyncPeriod=0.8 ExsyncExposure=0.512 Exsync2Delay=2 SequenceLength_ImageWidth=100 "
                  "LineGap_Number=20");
        for (const auto& [select, invert] :
             {std::pair{P::analyzer0Select, P::analyzer0Invert}, {P::custom1Select, P::custom1Invert}})
            run.board.set({{select, row.select}, {invert, row.invert}});
        run.station.advance(100);
        const auto before = run.board.raised(Event::customSignal1);
        run.write(P::analyzerClear, 1);
        EXPECT_EQ(run.value(P::analyzer0Pulses), 0);
        run.write(P::analyzerClear, 0);
        run.station.advance(900);
        EXPECT_EQ(run.value(P::analyzer0Pulses), row.edges) << row.select << ' ' << row.invert;
        EXPECT_EQ(run.board.raised(Event::customSignal1) - before, row.edges)
            << row.select << ' ' << row.invert;
    }
}

TEST_F(StationTiming, NothingCountsWhileTheClearIsHeld) {
    board.set("ExsyncPeriod=0.8 ExsyncExposure=0.512");
    station.advance(350);
    write(P::analyzerClear, 1);
    station.advance(400);
    EXPECT_EQ(value(P::analyzer0Pulses), 0);
    write(P::analyzerClear, 0);
    station.advance(150); // 800, 900
    EXPECT_EQ(value(P::analyzer0Pulses), 2);
    EXPECT_EQ(value(P::analyzer0Current), 0.8);
}

TEST_F(StationTiming, OldEdgesAreForgottenAndEventsDropped) {
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

TEST_F(StationTiming, TimeEndsAndCostsNothingWhenNothingHappens) {
    board.set("Enable_SelectSource=0 LineTriggerMode=1");
    EXPECT_EQ(station.advance(never), lastTick);
    EXPECT_EQ(station.advance(1), lastTick);
    board.set("LineTriggerMode=0 Enable_SelectSource=1 ExsyncPolarity=1");
    EXPECT_EQ(station.advance(never), lastTick);
}

TEST_F(StationTiming, AHotBoardRaisesItsAlarmOnce) {
    station.advance(10);
    board.set("FpgaTemperature=85.5");
    station.advance(10);
    station.advance(10);
    EXPECT_EQ(board.raised(Event::temperatureAlarm), 1U);
}

TEST(StationNames, AreThoseOfTheDesign) {
    EXPECT_STREQ(nameOf(Parameter::xLength), "Device1_Process0_Buffer_0_XLength");
    EXPECT_STREQ(nameOf(pinEvent(3, false)),
                 "Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_NotPin3");
    EXPECT_STREQ(nameOf(pinEvent(11, true)),
                 "Device1_Process1_Trigger_Inputs_InputEvents_InputFrontEvents_FrontPin3");
}

} // namespace
} // namespace station
