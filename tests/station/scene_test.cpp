// Belt, encoder and scene together: cases that do not fit into a table.

#include "support/station_board.h"

namespace station {
namespace {

TEST(StationScene, EncoderFollowsThePositionOfTheBelt) {
    // Edges of the inputs: forward, standing, backward, and so on. A quarter step is 7 um, the first one half of it.
    const std::vector<SpeedPiece> profile{{50'000, 0, 900'000},
                                          {30'000, 900'000, 900'000},
                                          {40'000, 900'000, -700'000},
                                          {70'000, -700'000, -700'000},
                                          {10'000, -700'000, 1'234'567}};
    constexpr std::int64_t step = 7'000;
    Trial run("Enable_SelectSource=0 Prescale_Period=0");
    run.advanceTo(1000);
    BeltSetup belt{.pieces = profile, .encoderA = 4, .encoderB = 5, .step = step};
    ASSERT_TRUE(run.station.setBelt(belt));
    const Belt reference(run.station.from(), profile);
    run.advanceTo(400'000);
    std::vector<Tick> edges;
    for (const std::uint8_t track : {std::uint8_t{25}, std::uint8_t{26}})
        for (const Edge& edge : run.station.trace(track, 0, 400'000).edges)
            edges.push_back(edge.tick);
    ASSERT_GT(edges.size(), 200U);
    const auto stepAt = [&](Tick tick) {
        const std::int64_t half = reference.position(tick) + step / 2;
        return half >= 0 ? half / step : -((step - 1 - half) / step);
    };
    std::size_t crossings = 0;
    for (Tick tick = 1002; tick <= 400'000; ++tick)
        crossings += stepAt(tick) != stepAt(tick - 1) ? 1 : 0;
    EXPECT_EQ(edges.size(), crossings);
    for (const Tick tick : edges)
        EXPECT_NE(stepAt(tick), stepAt(tick - 1)) << tick;
    // Ten million quarter steps a second are 70 m/s.
    belt.pieces = {{1, 70'000'000, 70'000'000}};
    EXPECT_TRUE(run.station.setBelt(belt));
    belt.pieces = {{1, 0, -70'000'001}};
    EXPECT_FALSE(run.station.setBelt(belt));
}

TEST(StationScene, SameStationGivesTheSameBytes) {
    const auto pictureOf = [](const char* scene, Tick pause) {
        Trial run(
            "Enable_SelectSource=0 ExsyncPeriod=8 ExsyncExposure=2 YLength=32 ImageHeight_ImageHeight=32");
        run.act(scene);
        run.act("camera 1024 exposure=100 drop=7");
        run.act("belt 12500000");
        run.acquire();
        for (Tick tick = pause; tick <= 40'000; tick += pause)
            run.advanceTo(tick);
        return run.bytes(1);
    };
    const auto first = pictureOf("scene noise=500/1", 40'000);
    ASSERT_EQ(first.size(), 3U * 1024 * 32);
    EXPECT_EQ(pictureOf("scene noise=500/1", 99), first);
    EXPECT_NE(pictureOf("scene noise=500/2", 99), first);
    const auto clean = pictureOf("scene", 99);
    int largest = 0; // of 500 in 16 bits: two levels of 8
    for (std::size_t i = 0; i < clean.size(); ++i)
        largest = std::max(largest, std::abs(clean[i] - first[i]));
    EXPECT_EQ(largest, 2);
}

} // namespace
} // namespace station
