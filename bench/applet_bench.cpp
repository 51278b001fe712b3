// Each operation of the applet beside its minimum cost, measured in the same run: compare the pairs of rows.

#include "baseline.h"
#include "baseline_work.h"
#include "stub_applet.h"
#include "vexo/register_info.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <dlfcn.h>
#include <memory>
#include <memory_resource>
#include <string>
#include <unordered_map>

namespace {

StubHandle& sharedHandle() {
    static StubHandle handle;
    return handle;
}

BaselineWrapper& sharedBaseline() {
    static const std::unique_ptr<BaselineWrapper> baseline(
        makeBaselineWrapper(applet().runtimeSet, applet().runtimeGet));
    return *baseline;
}

// ---- Reads

void get_number_baseline(benchmark::State& state) {
    BaselineWrapper& baseline = sharedBaseline();
    std::uint32_t value = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(baseline.get(FG_WIDTH, &value));
}

void get_number(benchmark::State& state) {
    Fg_Struct* fg = sharedHandle().fg();
    std::uint32_t value = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(applet().get(fg, FG_WIDTH, &value, 0, FG_PARAM_UINT32));
}

constexpr int alternatingIds[] = {FG_WIDTH, FG_LINEPERIODE, FG_EXSYNCON, FG_HEIGHT};

void get_alternating_baseline(benchmark::State& state) {
    BaselineWrapper& baseline = sharedBaseline();
    std::uint64_t value = 0;
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(baseline.get(alternatingIds[i++ % 4], &value));
}

void get_alternating(benchmark::State& state) {
    Fg_Struct* fg = sharedHandle().fg();
    std::uint64_t value = 0;
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(applet().get(fg, alternatingIds[i++ % 4], &value, 0, FG_PARAM_UINT32));
}

void get_own_handle_baseline(benchmark::State& state) {
    const std::unique_ptr<BaselineWrapper> baseline(
        makeBaselineWrapper(applet().runtimeSet, applet().runtimeGet));
    std::uint32_t value = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(baseline->get(FG_WIDTH, &value));
}

void get_own_handle(benchmark::State& state) {
    StubHandle handle;
    std::uint32_t value = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(applet().get(handle.fg(), FG_WIDTH, &value, 0, FG_PARAM_UINT32));
}

// ---- Writes

void set_baseline(benchmark::State& state, int id, std::uint32_t value) {
    BaselineWrapper& baseline = sharedBaseline();
    for (auto _ : state)
        benchmark::DoNotOptimize(baseline.set(id, &value));
}

void set_routed(benchmark::State& state, int id, std::uint32_t value) {
    Fg_Struct* fg = sharedHandle().fg();
    for (auto _ : state)
        benchmark::DoNotOptimize(applet().set(fg, id, &value, 0, FG_PARAM_UINT32));
}

void set_flag_baseline(benchmark::State& state) { set_baseline(state, FG_EXSYNCON, 1); }
void set_flag(benchmark::State& state) { set_routed(state, FG_EXSYNCON, 1); }
void set_width_baseline(benchmark::State& state) { set_baseline(state, FG_WIDTH, 512); }
void set_width(benchmark::State& state) { set_routed(state, FG_WIDTH, 512); }
void refused_set_baseline(benchmark::State& state) { set_baseline(state, FG_LINE_DOWNSCALE, 0); }
void refused_set(benchmark::State& state) { set_routed(state, FG_LINE_DOWNSCALE, 0); }

void set_output_baseline(benchmark::State& state) {
    set_baseline(state, FG_TRIGGEROUT_GPO_0_SOURCE, FG_SIGNAL_FRONT_GPI_3);
}
void set_output(benchmark::State& state) {
    set_routed(state, FG_TRIGGEROUT_GPO_0_SOURCE, FG_SIGNAL_FRONT_GPI_3);
}

constexpr double lineRate = 1000.0;

void set_simulator_rate_baseline(benchmark::State& state) {
    BaselineWrapper& baseline = sharedBaseline();
    for (auto _ : state)
        benchmark::DoNotOptimize(baseline.set(FG_CAMERASIMULATOR_LINERATE, &lineRate));
}

void set_simulator_rate(benchmark::State& state) {
    Fg_Struct* fg = sharedHandle().fg();
    for (auto _ : state)
        benchmark::DoNotOptimize(
            applet().set(fg, FG_CAMERASIMULATOR_LINERATE, &lineRate, 0, FG_PARAM_DOUBLE));
}

// ---- The camera's status: a word made of six

void get_status_baseline(benchmark::State& state) {
    BaselineWrapper& baseline = sharedBaseline();
    std::uint32_t value = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(baseline.get(FG_CAMSTATUS_EXTENDED, &value));
}

void get_status(benchmark::State& state) {
    Fg_Struct* fg = sharedHandle().fg();
    std::uint32_t value = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(applet().get(fg, FG_CAMSTATUS_EXTENDED, &value, 0, FG_PARAM_UINT32));
}

// ---- Names

constexpr const char* lookedUpNames[] = {"FG_WIDTH", "FG_SHAFTENCODER_COMPENSATION_COUNT", "FG_LINEPERIODE",
                                         "FG_TRIGGEROUT_FRONT_GPO_1_POLARITY"};

void name_lookup_baseline(benchmark::State& state) {
    std::unordered_map<std::string, int> ids;
    for (int i = 0; i < 160; ++i)
        ids["FG_PARAMETER_" + std::to_string(i)] = i;
    for (const char* name : lookedUpNames)
        ids[name] = 1;
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(ids.find(lookedUpNames[i++ % 4]));
}

void name_lookup(benchmark::State& state) {
    Fg_Struct* fg = sharedHandle().fg();
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(applet().idByName(fg, lookedUpNames[i++ % 4]));
}

void enumerate_baseline(benchmark::State& state) {
    BaselineWrapper& baseline = sharedBaseline();
    for (auto _ : state)
        for (int i = 0; i < BaselineWrapper::parameters; ++i)
            benchmark::DoNotOptimize(baseline.idAt(i));
}

void enumerate(benchmark::State& state) {
    Fg_Struct* fg = sharedHandle().fg();
    for (auto _ : state)
        for (int i = 0; i < BaselineWrapper::parameters; ++i)
            benchmark::DoNotOptimize(applet().idAt(fg, i));
}

// ---- Bring-up

/** The records of the tree with their texts, in one block. */
void makeRecords() {
    constexpr int records = 157 + 31;
    constexpr int entries = 340;
    std::pmr::monotonic_buffer_resource memory(std::size_t{128} * 1024);
    const auto text = [&](const char* source) {
        const std::size_t size = std::strlen(source) + 1;
        benchmark::DoNotOptimize(std::memcpy(memory.allocate(size, 1), source, size));
    };
    for (int i = 0; i < records; ++i) {
        benchmark::DoNotOptimize(std::pmr::polymorphic_allocator<>(&memory).new_object<RegisterInfo>());
        text("Label of a parameter");
        text("FG_NAME_OF_A_PARAMETER");
        text("Parent group");
        text("");
    }
    for (int i = 0; i < entries; ++i) {
        text("Label of an entry");
        text("SYMBOLIC_NAME");
    }
}

/** The minimum of every bring-up: the ids of the design's parameters, and the tree. */
void resolveAndMakeRecords() {
    for (int i = 0; i < 138; ++i)
        benchmark::DoNotOptimize(applet().runtimeIdByName(nullptr, "Device1_Process0_Buffer_0_XLength"));
    makeRecords();
}

void bring_up_baseline(benchmark::State& state) {
    constexpr int writes = 208; // and three of tables
    const auto tables = std::make_unique<BaselineTables>();
    volatile double offset = 0.0, gain = 1.0;
    for (auto _ : state) {
        resolveAndMakeRecords();
        designWrites(writes);
        tables->compute(offset, gain);
    }
}

void bring_up(benchmark::State& state) {
    for (auto _ : state)
        StubHandle handle;
}

void bring_up_slave_baseline(benchmark::State& state) {
    for (auto _ : state)
        resolveAndMakeRecords();
}

void bring_up_slave(benchmark::State& state) {
    constexpr int noDefaults = 1;
    for (auto _ : state)
        StubHandle handle(noDefaults);
}

// ---- Loading

void load(benchmark::State& state, const char* library) {
    applet(); // loads the platform libraries
    const std::string path = libraryFolder() / library;
    for (auto _ : state) {
        void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (handle == nullptr) return state.SkipWithError(dlerror());
        dlclose(handle);
    }
}

// A copy, since the applet itself is already loaded.
void load_library_baseline(benchmark::State& state) { load(state, "stub/libblock.so"); }
void load_library(benchmark::State& state) { load(state, "stub/libapplet_copy.so"); }

BENCHMARK(get_number_baseline);
BENCHMARK(get_number);
BENCHMARK(get_alternating_baseline);
BENCHMARK(get_alternating);
BENCHMARK(get_number_baseline)->Name("get_one_handle_baseline")->Threads(2)->UseRealTime();
BENCHMARK(get_number)->Name("get_one_handle")->Threads(2)->UseRealTime();
BENCHMARK(get_own_handle_baseline)->Threads(2)->UseRealTime();
BENCHMARK(get_own_handle)->Threads(2)->UseRealTime();
BENCHMARK(set_flag_baseline);
BENCHMARK(set_flag);
BENCHMARK(set_width_baseline);
BENCHMARK(set_width);
BENCHMARK(refused_set_baseline);
BENCHMARK(refused_set);
BENCHMARK(set_output_baseline);
BENCHMARK(set_output);
BENCHMARK(set_simulator_rate_baseline);
BENCHMARK(set_simulator_rate);
BENCHMARK(get_status_baseline);
BENCHMARK(get_status);
BENCHMARK(name_lookup_baseline);
BENCHMARK(name_lookup);
BENCHMARK(enumerate_baseline);
BENCHMARK(enumerate);
BENCHMARK(bring_up_baseline);
BENCHMARK(bring_up);
BENCHMARK(bring_up_slave_baseline);
BENCHMARK(bring_up_slave);
BENCHMARK(load_library_baseline);
BENCHMARK(load_library);

} // namespace

BENCHMARK_MAIN();
