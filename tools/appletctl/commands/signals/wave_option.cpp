#include "appletctl/commands/signals/wave_option.h"

#include <CLI/CLI.hpp>

namespace appletctl {
namespace {

struct WaveOptions {
    Words waves;
};

} // namespace

void addWaves(CLI::App& command, Options& options) {
    command
        .add_option("--wave", options.own<WaveOptions>().waves,
                    "Signal at an input, such as GPI_1=square:100us; may be given more than once")
        ->type_name("INPUT=WAVE")
        ->allow_extra_args(false);
}

std::vector<WaveRequest> wavesOf(const Options& options) {
    std::vector<WaveRequest> waves;
    for (const std::string& word : options.of<WaveOptions>().waves)
        waves.push_back(parseWave(word));
    return waves;
}

} // namespace appletctl
