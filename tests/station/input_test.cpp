// The inputs and their effects: waves, debouncing, encoder, line trigger. Times in ticks of 8 ns.

#include "support/station_board.h"

#include <limits>

namespace station {
namespace {

constexpr std::uint8_t input0 = firstInput;

class StationInputs : public StationTest {
protected:
    /** The simulator and the generator of ExSync are off. Levels take effect after 18 ticks. */
    StationInputs() : StationTest("Enable_SelectSource=0 LineTriggerMode=1") {}
};

/** The levels of the first track, as "0 +10 -20". */
std::string track(Wave wave, unsigned bit, Tick end) {
    std::string text = (wave.levels() >> bit & 1) != 0 ? "1" : "0";
    while (wave.next() <= end) {
        const Tick tick = wave.next();
        const unsigned before = wave.levels();
        wave.step();
        if (((wave.levels() ^ before) >> bit & 1) == 0) continue;
        text += ((wave.levels() >> bit & 1) != 0 ? " +" : " -") + std::to_string(tick);
    }
    return text;
}

TEST(StationWaves, HaveTheRequestedEdges) {
    constexpr Tick ramp = 2000;
    constexpr std::int32_t step = 1'250'000; // quarter steps a second: one in 100 ticks
    const auto begun = [](Wave wave, Tick from) {
        wave.begin(from);
        return wave;
    };
    const struct {
        const char* what;
        Wave wave;
        unsigned bit;
        const char* trace;
    } cases[] = {
        {"level", Wave::constant(true), 0, "1"},
        {"square", Wave::square(10, 100, 30), 0, "0 +10 -40 +110 -140 +210 -240"},
        {"square from later on", begun(Wave::square(10, 100, 30), 125), 0, "1 -140 +210 -240"},
        {"square of nothing", Wave::square(10, 0, 30), 0, "0"},
        {"square without a pause", Wave::square(10, 100, 100), 0, "1"},
        {"edges", Wave::edges(false, {{5, true}, {5, false}, {9, true}, {8, true}, {20, false}}), 0,
         "0 +8 -20"},
        {"edges from later on", begun(Wave::edges(true, {{5, false}, {9, true}, {30, false}}), 10), 0,
         "1 -30"},
        // It starts between two edges: half a step to the next one.
        {"encoder, A", Wave::encoder(0, {{250, step, step}}), 0, "0 +50 -250"},
        {"encoder, B", Wave::encoder(0, {{250, step, step}}), 1, "0 +150"},
        {"encoder backwards, A", Wave::encoder(0, {{250, -step, -step}}), 0, "0 +150"},
        {"encoder backwards, B", Wave::encoder(0, {{250, -step, -step}}), 1, "0 +50 -250"},
        {"encoder at rest", Wave::encoder(0, {{250, 0, 0}}), 0, "0"},
        {"encoder of nothing", Wave::encoder(0, {}), 0, "0"},
        // 1.2 steps forward, then back over the same edges: position 1.7 at 120, 1 again at 190, 0 at 290.
        {"encoder that turns, A", Wave::encoder(0, {{120, step, step}, {300, -step, -step}}), 0,
         "0 +50 -190"},
        {"encoder that turns, B", Wave::encoder(0, {{120, step, step}, {300, -step, -step}}), 1, "0 +290"},
        // From rest, evenly accelerated to 4 steps in 100 ticks within 2000 ticks: position 0.5 + t^2 / 100,000.
        {"encoder that speeds up, A", Wave::encoder(0, {{ramp, 0, 4 * step}}), 0, "0 +224"},
        {"encoder that speeds up, later", begun(Wave::encoder(0, {{ramp, 0, 4 * step}}), 1000), 0, "0"},
        // From 1 step in 100 ticks forwards to the same backwards: halfway, at 100, the position is 0.5 + 0.5: an edge.
        {"encoder that swings, A", Wave::encoder(0, {{200, step, -step}, {1, 0, 0}}), 0, "0 +100 -101"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(track(row.wave, row.bit, 299), row.trace) << row.what;
    Wave late = Wave::encoder(0, {{1000, step, step}});
    late.begin(1000);
    EXPECT_EQ(late.next(), 1050U);
    for (Wave wave : {Wave::square(lastTick, never, never / 2), Wave::encoder(never, {{never, step, -step}}),
                      Wave::encoder(0, {{never, std::numeric_limits<std::int32_t>::min(), 1}}),
                      Wave::square(0, 2, 1), Wave::edges(true, {{never, false}})}) {
        wave.begin(lastTick - 5);
        for (int i = 0; i < 100; ++i)
            wave.step();
    }
}

TEST_F(StationInputs, StatusAndEventsFollowTheDebouncedLevels) {
    EXPECT_TRUE(station.connect(0, Wave::constant(true))); // as if it had always been constant: no event
    EXPECT_FALSE(station.connect(12, Wave::constant(true)));
    station.advance(10);
    EXPECT_EQ(value(P::inputStatus), 1);
    EXPECT_TRUE(station.connect(11, Wave::constant(true)));
    station.connect(0, Wave::constant(false));
    station.advance(18); // a level from 11 on takes effect at 29
    EXPECT_EQ(value(P::inputStatus), 1);
    station.advance(1);
    EXPECT_EQ(value(P::inputStatus), 0x800);
    EXPECT_EQ(board.raised(pinEvent(11, true)), 1U);
    EXPECT_EQ(board.raised(pinEvent(0, false)), 1U);
    EXPECT_EQ(board.raised(pinEvent(0, true)), 0U);
    auto first = station.nextEvent();
    while (first && first->event != pinEvent(0, false))
        first = station.nextEvent();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->tick, 29U);
    // A shorter debouncing time applies to a level that is already waiting.
    station.connect(5, Wave::constant(true));
    station.advance(5);
    board.set("Prescale_Period=1");
    station.advance(1);
    EXPECT_EQ(trace(input0 + 5, 0, 40), "0 +35");
}

TEST_F(StationInputs, CompensationCountIsLiveAndWritable) {
    // A step every 100 ticks: ten forward until 1000, six back, six forward, and so on.
    constexpr std::int32_t speed = 1'250'000;
    board.set("EncoderABMode=3 ExsyncExposure=0.512 Prescale_Period=0");
    station.connect(1, Wave::encoder(0, {{1000, speed, speed}, {600, -speed, -speed}, {800, speed, speed}}),
                    2);
    station.advance(1000);
    EXPECT_EQ(value(P::analyzer0Pulses), 10);
    for (const auto& [tick, count, pulses] :
         {std::tuple{1300, 3, 10}, {1600, 6, 10}, {1900, 3, 10}, {2200, 0, 10}, {2400, 0, 12}}) {
        advanceTo(static_cast<Tick>(tick));
        EXPECT_EQ(value(P::encoderCount), count) << tick;
        EXPECT_EQ(value(P::analyzer0Pulses), pulses) << tick;
    }
    write(P::encoderCount, 0x30'0002); // 20 bits of it
    station.advance(400);
    EXPECT_EQ(value(P::encoderCount), 0);
    EXPECT_EQ(value(P::analyzer0Pulses), 14);
    write(P::encoderCount, 5);
    board.set("EncoderCompensation=0");
    station.advance(1);
    EXPECT_EQ(value(P::encoderCount), 0);
    Trial other("EncoderCompensationCount=7"); // a count from before the first tick
    other.station.advance(1);
    EXPECT_EQ(other.value(P::encoderCount), 7);
}

TEST_F(StationInputs, PulsesAreCountedFromTheOpeningOfTheGate) {
    // Pulses every 100 ticks from 50 on. Gates that open at 1000 and 2000 take three lines each.
    board.set("LineTriggerMode=3 Prescale_Period=0 ExsyncExposure=0.512 LineTrgDownscaler=2 LineTrgPhase=3 "
              "ImgTriggerMode=1 ImgTrgInSource=4 YLength=3");
    station.connect(1, Wave::square(50, 100, 10));
    acquire();
    station.advance(999);
    write(P::softwarePulse, 1);
    station.advance(1500);
    EXPECT_EQ(trace(exsync, 0, 2499), "0 +1250 -1314 +1450 -1514 +1650 -1714");
    board.set("ImgTriggerMode=0"); // always open: the phase applies once, then every second pulse counts
    station.advance(700);
    EXPECT_EQ(trace(exsync, 2500, 3199), "0 +2750 -2814 +2950 -3014 +3150");
}

} // namespace
} // namespace station
