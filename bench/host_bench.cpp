// Reads and sets through libvexo beside the applet's exported functions, and pictures beside the board's own, measured
// in the same run.

#include "applet_host/AppletHost.h"
#include "host/vexo.hpp"

#include "vexo/fg_parameters.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

vexo::Station& station() {
    static vexo::Station shared = vexo::Station::virtualBoard();
    return shared;
}

applet_host::Session& session() {
    static const applet_host::AppletHost host;
    static applet_host::Session shared(host);
    return shared;
}

void get_exported(benchmark::State& state) {
    const auto get = session().host.applet().Fg_getParameterWithType;
    std::uint32_t value = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(get(session().fg(), FG_WIDTH, &value, 0, FG_PARAM_UINT32));
}

void get_vexo(benchmark::State& state) {
    vexo_station* const handle = station().handle();
    std::int64_t value = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(vexo_get_int(handle, FG_WIDTH, &value));
}

void set_exported(benchmark::State& state) {
    const auto set = session().host.applet().Fg_setParameterWithType;
    std::uint32_t value = 1024;
    for (auto _ : state)
        benchmark::DoNotOptimize(set(session().fg(), FG_WIDTH, &(value ^= 1024 ^ 2048), 0, FG_PARAM_UINT32));
}

void set_vexo(benchmark::State& state) {
    vexo_station* const handle = station().handle();
    std::int64_t value = 1024;
    for (auto _ : state)
        benchmark::DoNotOptimize(vexo_set_int(handle, FG_WIDTH, value ^= 1024 ^ 2048));
}

/** The settings of the pictures of both; the sets above leave one of two widths. */
constexpr std::uint32_t pictureSource = FG_CAMERASIMULATOR, pictureWidth = 1024;

/** For the pictures of both: the pages of two blocks may differ in speed. */
std::vector<std::uint8_t>& pictureBytes() {
    static std::vector<std::uint8_t> bytes(1 << 26);
    return bytes;
}

void render_board(benchmark::State& state) {
    const auto& host = session().host;
    const auto set = [&](int id, std::uint32_t value) {
        host.applet().Fg_setParameterWithType(session().fg(), id, &value, 0, FG_PARAM_UINT32);
    };
    set(FG_CAMERASIMULATOR_ENABLE, pictureSource);
    set(FG_WIDTH, pictureWidth);
    vboard_frames* const memory = host.board().memory(session().device, 1, 1 << 26, VBOARD_BLOCKING);
    host.applet().Fg_AcquireEx(session().fg(), 0, 0, 0, memory);
    host.board().wait(session().device, 1, VEXO_TICKS_PER_SECOND);
    std::vector<std::uint8_t>& bytes = pictureBytes();
    vboard_record record{};
    for (auto _ : state)
        benchmark::DoNotOptimize(host.board().frame_into(memory, 1, bytes.data(), bytes.size(), &record));
    host.board().memory_free(memory);
}

void render_vexo(benchmark::State& state) {
    vexo_station* const handle = station().handle();
    station().set("FG_CAMERASIMULATOR_ENABLE", pictureSource);
    station().set("FG_WIDTH", pictureWidth);
    vexo_picture picture{};
    vexo_start(handle, 1, VEXO_KEEP);
    vexo_wait_picture(handle, 1, 1, -1, &picture);
    std::vector<std::uint8_t>& bytes = pictureBytes();
    for (auto _ : state)
        benchmark::DoNotOptimize(vexo_render(handle, 1, bytes.data(), bytes.size()));
    vexo_stop(handle);
}

BENCHMARK(get_exported);
BENCHMARK(get_vexo);
BENCHMARK(set_exported);
BENCHMARK(set_vexo);
BENCHMARK(render_board);
BENCHMARK(render_vexo);

} // namespace

BENCHMARK_MAIN();
