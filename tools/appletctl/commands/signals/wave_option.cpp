#include "appletctl/commands/signals/wave_option.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "appletctl/commands/Context.h"

#include <CLI/CLI.hpp>

#include <optional>
#include <set>

namespace appletctl {
namespace {

struct WaveOptions {
    Words waves;
};

struct StationOptions {
    std::optional<std::string> file;
};

} // namespace

void addWaves(CLI::App& command, Options& options) {
    command
        .add_option("--wave", options.own<WaveOptions>().waves,
                    "Signal at an input, such as GPI_1=square:100us; may be given more than once")
        ->type_name("INPUT=WAVE")
        ->allow_extra_args(false);
}

void addStation(CLI::App& command, Options& options) {
    command
        .add_option("--station-file", options.own<StationOptions>().file,
                    "Station file to set up before: camera, belt, scene, inputs and settings")
        ->type_name("FILE");
}

void requireSetUpAllowed(const Options& options, const std::string& option) {
    requireVirtualBoard(options, option);
    if (options.look) throw UsageError(option + " sets parameters, which --look prevents: leave --look out");
}

std::optional<StationFile> stationOf(const Options& options) {
    const auto& file = options.of<StationOptions>().file;
    if (!file) return std::nullopt;
    requireSetUpAllowed(options, "--station-file");
    return readStationFile(*file);
}

std::vector<WaveRequest> wavesOf(const Options& options) {
    std::vector<WaveRequest> waves;
    std::set<unsigned> inputs;
    const auto take = [&](unsigned input, const std::string& word) {
        if (!inputs.insert(input).second)
            throw UsageError("--wave " + inQuotedWord(word) + ": an input of it has a wave already");
    };
    for (const std::string& word : options.of<WaveOptions>().waves) {
        waves.push_back(parseWave(word));
        take(waves.back().input, word);
        if (const auto* encoder = std::get_if<EncoderWave>(&waves.back().wave)) take(encoder->second, word);
    }
    return waves;
}

} // namespace appletctl
