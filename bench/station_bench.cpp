// Cost of the station: a simulated second, by the events in it, and a picture beside a plain loop that only
// looks up each component of it. station_ratios checks the guaranteed ratios.

#include "station_work.h"

#include <benchmark/benchmark.h>

namespace {

/** 70,000 lines a second. */
void simulatedSeconds(benchmark::State& state) {
    Simulated simulated{};
    for ([[maybe_unused]] const auto round : state)
        simulated =
            simulate(static_cast<station::Tick>(state.range(0)), 70'000, static_cast<double>(state.range(1)));
    state.counters["lines"] = static_cast<double>(simulated.lines);
    state.counters["events"] = static_cast<double>(simulated.events);
}
BENCHMARK(simulatedSeconds)
    ->ArgNames({"seconds", "encoder"})
    ->ArgsProduct({{1, 10, 100}, {3}})
    ->Args({1, 1})
    ->Unit(benchmark::kMillisecond);

void countPixels(benchmark::State& state) {
    state.counters["Mpixel/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * pictureWidth * pictureHeight / 1e6,
                           benchmark::Counter::kIsRate);
}

/** The whole path: region, gain, table, shift, format. Each thread has a separate renderer. */
void render(benchmark::State& state) {
    const station::Record picture =
        pictureRecord(static_cast<std::uint32_t>(state.range(0)), state.range(1) == 1);
    std::vector<std::uint8_t> bytes(picture.bytes());
    station::Renderer renderer;
    for ([[maybe_unused]] const auto round : state) {
        renderer.render(picture, bytes);
        benchmark::DoNotOptimize(bytes.data());
        benchmark::ClobberMemory();
    }
    countPixels(state);
}
BENCHMARK(render)
    ->ArgNames({"bits", "raster"})
    ->ArgsProduct({{8, 16, 10, 12, 14}, {0, 1}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(render)
    ->ArgNames({"bits", "raster"})
    ->Args({8, 1})
    ->Threads(2)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

/** Its floor: one look-up of each component, and the format. */
void renderFloor(benchmark::State& state) {
    LookUps floor(static_cast<std::uint32_t>(state.range(0)), state.range(1) == 1);
    for ([[maybe_unused]] const auto round : state) {
        floor.run();
        benchmark::DoNotOptimize(floor.bytes().data());
        benchmark::ClobberMemory();
    }
    countPixels(state);
}
BENCHMARK(renderFloor)
    ->ArgNames({"bits", "raster"})
    ->ArgsProduct({{8, 16, 10, 12, 14}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
