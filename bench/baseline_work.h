/** Minimum work of several operations, of which the baselines are composed. */
#ifndef BENCH_BASELINE_WORK_H
#define BENCH_BASELINE_WORK_H

#include "stub_applet.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

constexpr std::size_t lutEntries = 16384;

/** Three tables: the first is computed and the others are copies. */
struct BaselineTables {
    std::array<std::uint32_t, lutEntries> red, green, blue;

    /** One pass of the formula without a power, two copies, three writes. */
    void compute(double offset, double gain) {
        for (std::size_t i = 0; i < lutEntries; ++i) {
            const double y = (static_cast<double>(i) / (lutEntries - 1) + offset) * gain;
            // The cheapest rounding. NOLINTNEXTLINE(bugprone-incorrect-roundings)
            const auto entry = static_cast<std::int32_t>(0.5 + y * 65535);
            red[i] = static_cast<std::uint32_t>(entry < 0 ? 0 : entry > 65535 ? 65535 : entry);
        }
        benchmark::DoNotOptimize(red.data());
        green = red;
        blue = red;
        benchmark::ClobberMemory();
        for (int color = 1; color <= 3; ++color)
            benchmark::DoNotOptimize(
                StubApplet::instance().runtimeSet(nullptr, color, &blue, 0, FG_PARAM_FIELD_ACCESS));
    }
};

inline void designWrites(int count) {
    std::uint32_t value = 1;
    for (int i = 0; i < count; ++i)
        benchmark::DoNotOptimize(StubApplet::instance().runtimeSet(nullptr, i, &value, 0, FG_PARAM_UINT32));
}

inline std::string contentOf(const std::string& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

/** Writes a text to a file, one call for each line. False if that fails. */
bool writeByLine(const std::string& file, const std::vector<std::string>& lines);
std::vector<std::string> linesOf(const std::string& text);

/** A folder for files, emptied in the destructor. */
class BenchFolder {
public:
    BenchFolder();
    ~BenchFolder();
    BenchFolder(const BenchFolder&) = delete;
    BenchFolder& operator=(const BenchFolder&) = delete;

    std::string file(std::string_view name) const { return m_path + "/" + std::string(name); }

private:
    std::string m_path;
};

#endif
