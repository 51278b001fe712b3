// Lookup tables beside the minimum cost of each operation, in one run: compare the pairs of rows.

#include "baseline_work.h"

#include <cmath>
#include <memory>

namespace {

using Table = std::array<std::uint32_t, lutEntries>;

/** A separate handle, and its LUT file. */
class TableBench {
public:
    TableBench() { setText(FG_LUT_SAVE_FILE, file().c_str()); }

    std::string file() const { return m_folder.file("tables.lut"); }
    template <typename T> int set(int id, T value, int tag) {
        return applet().set(m_handle.fg(), id, &value, 0, tag);
    }
    int setText(int id, const char* text) { return applet().set(m_handle.fg(), id, text, 0, FG_PARAM_TEXT); }
    int setRecord(int id, const void* record, int tag) {
        return applet().set(m_handle.fg(), id, record, 0, tag);
    }

private:
    StubHandle m_handle;
    BenchFolder m_folder;
};

// ---- The formula

void processing_linear_baseline(benchmark::State& state) {
    const auto tables = std::make_unique<BaselineTables>();
    volatile double offset = 0.0, gain = 1.0;
    for (auto _ : state)
        tables->compute(offset, gain);
}

void processing(benchmark::State& state, double gamma) {
    TableBench bench;
    bench.set(FG_PROCESSING_GAMMA, gamma, FG_PARAM_DOUBLE);
    for (auto _ : state)
        benchmark::DoNotOptimize(bench.set(FG_PROCESSING_GAIN, 1.0, FG_PARAM_DOUBLE));
}

void processing_linear(benchmark::State& state) { processing(state, 1.0); }

void processing_gamma_baseline(benchmark::State& state) {
    volatile double givenExponent = 1.0 / 2.2;
    const double exponent = givenExponent;
    for (auto _ : state)
        for (std::size_t i = 0; i < lutEntries; ++i)
            benchmark::DoNotOptimize(std::pow(static_cast<double>(i) / (lutEntries - 1), exponent));
}

void processing_gamma(benchmark::State& state) { processing(state, 2.2); }

// ---- Elements. The minimum for one element is a routed set of a number.

void lut_element_baseline(benchmark::State& state) {
    TableBench bench;
    for (auto _ : state)
        benchmark::DoNotOptimize(bench.set(FG_IMG_SELECT, std::uint32_t{0}, FG_PARAM_UINT32));
}

void lut_element(benchmark::State& state) {
    TableBench bench;
    const FieldParameterInt_s record{7, 100};
    for (auto _ : state)
        benchmark::DoNotOptimize(bench.setRecord(FG_LUT_VALUE_RED, &record, FG_PARAM_FIELD_INT));
}

void lut_run_baseline(benchmark::State& state) {
    const auto source = std::make_unique<Table>(), cache = std::make_unique<Table>(),
               backup = std::make_unique<Table>();
    for (auto _ : state) {
        *backup = *cache;
        benchmark::ClobberMemory();
        *cache = *source;
        benchmark::ClobberMemory();
    }
}

void lut_run(benchmark::State& state) {
    TableBench bench;
    const auto source = std::make_unique<Table>();
    const FieldParameterAccess record{FG_PARAM_UINT32, 0, lutEntries, source->data()};
    for (auto _ : state)
        benchmark::DoNotOptimize(bench.setRecord(FG_LUT_VALUE_RED, &record, FG_PARAM_FIELD_ACCESS));
}

// ---- Files

void lut_save_baseline(benchmark::State& state) {
    TableBench bench;
    const std::vector<std::string> lines = linesOf(contentOf(bench.file()));
    for (auto _ : state)
        if (!writeByLine(bench.file(), lines)) return state.SkipWithError("write");
}

void lut_save(benchmark::State& state) {
    TableBench bench;
    const std::string file = bench.file();
    for (auto _ : state)
        benchmark::DoNotOptimize(bench.setText(FG_LUT_SAVE_FILE, file.c_str()));
}

void lut_load_baseline(benchmark::State& state) {
    TableBench bench;
    const std::string text = contentOf(bench.file());
    for (auto _ : state) {
        std::uint32_t number = 0;
        for (const char character : text) {
            const auto digit = static_cast<unsigned char>(character - '0');
            number = digit < 10 ? number * 10 + digit : 0;
            benchmark::DoNotOptimize(number);
        }
    }
}

void lut_load(benchmark::State& state) {
    TableBench bench;
    bench.set(FG_LUT_TYPE, std::uint32_t{LUT_TYPE_CUSTOM}, FG_PARAM_UINT32);
    const std::string file = bench.file();
    for (auto _ : state)
        if (bench.setText(FG_LUT_CUSTOM_FILE, file.c_str()) != FG_OK)
            return state.SkipWithError("not loaded");
}

BENCHMARK(processing_linear_baseline)->Unit(benchmark::kMicrosecond);
BENCHMARK(processing_linear)->Unit(benchmark::kMicrosecond);
BENCHMARK(processing_gamma_baseline)->Unit(benchmark::kMicrosecond);
BENCHMARK(processing_gamma)->Unit(benchmark::kMicrosecond);
BENCHMARK(lut_element_baseline);
BENCHMARK(lut_element);
BENCHMARK(lut_run_baseline);
BENCHMARK(lut_run);
BENCHMARK(lut_save_baseline)->Unit(benchmark::kMicrosecond);
BENCHMARK(lut_save)->Unit(benchmark::kMicrosecond);
BENCHMARK(lut_load_baseline)->Unit(benchmark::kMicrosecond);
BENCHMARK(lut_load)->Unit(benchmark::kMicrosecond);

} // namespace
