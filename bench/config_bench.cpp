// Configuration files beside the minimum cost of each operation, in one run: compare the pairs of rows.

#include "baseline_work.h"

#include <memory>

namespace {

/** A handle, and a file with its state. */
struct FileBench {
    StubHandle handle;
    BenchFolder folder;
    std::string file = folder.file("state.mcf");

    FileBench() { applet().save(handle.fg(), file.c_str()); }
};

void config_save_baseline(benchmark::State& state) {
    const FileBench bench;
    const std::vector<std::string> lines = linesOf(contentOf(bench.file));
    for (auto _ : state)
        if (!writeByLine(bench.file, lines)) return state.SkipWithError("write");
}

void config_save(benchmark::State& state) {
    FileBench bench;
    for (auto _ : state)
        benchmark::DoNotOptimize(applet().save(bench.handle.fg(), bench.file.c_str()));
}

void config_load_baseline(benchmark::State& state) {
    constexpr int writes = 208; // and three of tables
    const FileBench bench;
    const auto tables = std::make_unique<BaselineTables>();
    volatile double offset = 0.0, gain = 1.0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(contentOf(bench.file));
        designWrites(writes);
        tables->compute(offset, gain);
    }
}

void config_load(benchmark::State& state) {
    FileBench bench;
    for (auto _ : state)
        if (applet().load(bench.handle.fg(), bench.file.c_str()) != FG_OK)
            return state.SkipWithError("not loaded");
}

/** With `range` lines of other keys before its own: the time must grow linearly with them. */
void config_load_behind(benchmark::State& state) {
    FileBench bench;
    std::string text = contentOf(bench.file);
    std::string others;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        others += "A key of somebody else=" + std::to_string(i) + ";\n";
    text.insert(text.find("[Port A]\n") + 9, others);
    std::ofstream(bench.file) << text;
    for (auto _ : state)
        if (applet().load(bench.handle.fg(), bench.file.c_str()) != FG_OK)
            return state.SkipWithError("not loaded");
}

BENCHMARK(config_save_baseline)->Unit(benchmark::kMicrosecond);
BENCHMARK(config_save)->Unit(benchmark::kMicrosecond);
BENCHMARK(config_load_baseline)->Unit(benchmark::kMicrosecond);
BENCHMARK(config_load)->Unit(benchmark::kMicrosecond);
BENCHMARK(config_load_behind)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

} // namespace
