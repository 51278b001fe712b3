// What the station costs: a simulated second by the events in it, and a picture beside a plain loop that only
// looks up each component of it.

#include "station/Station.h"
#include "station/picture/Packing.h"

#include <benchmark/benchmark.h>

#include <array>
#include <initializer_list>
#include <utility>

namespace {

using station::Parameter;

/** A board of nothing but values. */
class Values final : public station::Board {
public:
    void set(std::initializer_list<std::pair<Parameter, double>> values) {
        for (const auto& [parameter, value] : values)
            m_values[static_cast<std::size_t>(parameter)] = value;
        ++m_revision;
    }
    std::uint64_t revision() const override { return m_revision; }
    std::uint64_t tableRevision() const override { return 1; }
    double value(Parameter parameter) const override { return m_values[static_cast<std::size_t>(parameter)]; }
    std::span<const std::uint32_t> table(station::Colour) const override { return {}; }
    void publish(Parameter parameter, double value) override {
        m_values[static_cast<std::size_t>(parameter)] = value;
    }
    void raise(station::Event, std::uint64_t times) override { m_events += times; }
    std::uint64_t events() const { return m_events; }

private:
    std::array<double, station::parameterCount> m_values{};
    std::uint64_t m_revision = 1;
    std::uint64_t m_events = 0;
};

/** 70,000 lines a second, each asked for by an encoder, with both analyzers and all events. */
void simulatedSeconds(benchmark::State& state) {
    const auto seconds = static_cast<station::Tick>(state.range(0));
    const auto resolution =
        static_cast<double>(state.range(1)); // 3: each quarter step is a line; 1: one of four
    const std::int32_t speed = resolution == 3 ? 70'000 : 280'000;
    std::uint64_t lines = 0;
    std::uint64_t events = 0;
    for ([[maybe_unused]] const auto round : state) {
        Values board;
        board.set({{Parameter::lineTriggerMode, 1},
                   {Parameter::encoderMode, resolution},
                   {Parameter::encoderCompensation, 1},
                   {Parameter::debouncePrescale, 6},
                   {Parameter::lineInputA, 1},
                   {Parameter::lineInputB, 2},
                   {Parameter::lineSourceB, 1},
                   {Parameter::lineDownscale, 1},
                   {Parameter::exsyncExposure, 2},
                   {Parameter::exsync2Delay, 5},
                   {Parameter::exsyncEnable, 1},
                   {Parameter::cameraTriggerSelect, station::exsync},
                   {Parameter::simulatorSource, 1},
                   {Parameter::simulatorTriggerMode, 1},
                   {Parameter::simulatorImageWidth, 32},
                   {Parameter::simulatorLineGap, 32},
                   {Parameter::simulatorImageHeight, 1},
                   {Parameter::simulatorFrameGap, 1},
                   {Parameter::yLength, 1024},
                   {Parameter::imageHeight, 1024},
                   {Parameter::sensorWidth, 1024},
                   {Parameter::xLength, 1024},
                   {Parameter::ramAddressWidth, 20},
                   {Parameter::ramDataWidth, 512},
                   {Parameter::linkSpeed, 3.725},
                   {Parameter::selectPeriod, 1},
                   {Parameter::analyzer0Select, station::exsync},
                   {Parameter::analyzer1Select, station::lineStart},
                   {Parameter::custom0Select, station::exsync2},
                   {Parameter::custom1Select, station::flash},
                   {Parameter::flashEnable, 1}});
        station::Station station(board);
        station.connect(1, station::Wave::encoder(0, {{1, speed, speed}}), 2);
        station.start(std::make_shared<station::HostMemory>(4, 1U << 22, station::HostMemory::Kind::ring), 0);
        station.advance(seconds * station::ticksPerSecond);
        lines = station.lines();
        events = board.events();
    }
    state.counters["lines"] = static_cast<double>(lines);
    state.counters["events"] = static_cast<double>(events);
}
BENCHMARK(simulatedSeconds)
    ->ArgNames({"seconds", "encoder"})
    ->ArgsProduct({{1, 10, 100}, {3}})
    ->Args({1, 1})
    ->Unit(benchmark::kMillisecond);

constexpr std::uint32_t width = 4096;
constexpr std::uint32_t height = 512;

station::Record record(std::uint32_t bits, bool isRaster) {
    const auto settings = std::make_shared<station::PictureSettings>();
    settings->sensorWidth = settings->xLength = width;
    settings->colours.outBits = bits;
    settings->colours.shift = 16 - bits;
    settings->colours.isTableEnabled = true;
    const auto tables = std::make_shared<station::Tables>();
    for (auto& table : tables->entries)
        for (std::size_t i = 0; i < table.size(); ++i)
            table[i] = static_cast<std::uint16_t>(4 * i);
    station::Record record;
    record.settings = settings;
    record.tables = tables;
    record.lines = height;
    record.layout.bytesPerLine = station::packedSize(std::uint64_t{3} * width, bits);
    record.runs.push_back({station::SourceLine{.height = height, .cycles = width / 32}, height});
    if (!isRaster) return record;
    const auto raster = std::make_shared<station::Raster>();
    raster->width = width;
    raster->height = height;
    for (std::size_t i = 0; i < std::size_t{3} * width * height; ++i)
        raster->components.push_back(static_cast<std::uint16_t>(77 * i));
    record.raster = raster;
    return record;
}

void countPixels(benchmark::State& state) {
    state.counters["Mpixel/s"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * width * height / 1e6, benchmark::Counter::kIsRate);
}

/** The whole path: region, gain, table, shift, format. Each thread has a renderer of its own. */
void render(benchmark::State& state) {
    const station::Record picture = record(static_cast<std::uint32_t>(state.range(0)), state.range(1) == 1);
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
    const auto bits = static_cast<std::uint32_t>(state.range(0));
    std::vector<std::uint16_t> table(256);
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = static_cast<std::uint16_t>(i << 8 >> (16 - bits));
    std::vector<std::uint16_t> components(std::size_t{3} * width * height);
    for (std::size_t i = 0; i < components.size(); ++i)
        components[i] = static_cast<std::uint16_t>((i * 3) & 0xff);
    std::vector<std::uint8_t> bytes(station::packedSize(components.size(), bits));
    for ([[maybe_unused]] const auto round : state) {
        station::packInto(bytes.data(), bits, [&](auto packed) {
            for (const std::uint16_t component : components)
                packed.put(table[component]);
            packed.finish();
        });
        benchmark::DoNotOptimize(bytes.data());
        benchmark::ClobberMemory();
    }
    countPixels(state);
}
BENCHMARK(renderFloor)
    ->ArgName("bits")
    ->Arg(8)
    ->Arg(16)
    ->Arg(10)
    ->Arg(12)
    ->Arg(14)
    ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
