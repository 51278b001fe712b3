#include "applet_tools/station/lengths.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

#include <cmath>
#include <optional>

namespace applet_tools {
namespace {

struct LengthUnit {
    std::string_view name;
    double nanometres;
};

// Longer names before their suffixes.
constexpr LengthUnit lengthUnits[] = {{"nm", 1},   {"um", 1e3}, {"µm", 1e3},
                                      {"mm", 1e6}, {"cm", 1e7}, {"m", 1e9}};

std::optional<double> lengthIn(std::string_view word) {
    for (const LengthUnit& unit : lengthUnits) {
        if (!word.ends_with(unit.name)) continue;
        const auto number = floatingNumber(word.substr(0, word.size() - unit.name.size()));
        if (!number) return std::nullopt;
        return *number * unit.nanometres;
    }
    return std::nullopt;
}

} // namespace

std::int64_t nanometresFrom(std::string_view word) {
    constexpr double farthest = 1e15;
    const auto length = lengthIn(word);
    if (!length)
        throw UsageError(inQuotedWord(word) +
                         " is not a length: write a number and a unit, such as 25um, 51.2mm or 1.5m");
    if (std::abs(*length) > farthest)
        throw UsageError(inQuotedWord(word) + " is outside of -1000000m to 1000000m");
    return static_cast<std::int64_t>(std::round(*length));
}

std::int32_t beltSpeedFrom(std::string_view word) {
    constexpr double fastest = 1e8; // micrometres per second
    const bool isSpeed = word.ends_with("/s");
    const auto length = isSpeed ? lengthIn(word.substr(0, word.size() - 2)) : std::nullopt;
    if (!length)
        throw UsageError(inQuotedWord(word) +
                         " is not a speed: write a number and a unit, such as 500mm/s or 1.5m/s");
    const double speed = std::round(*length / 1e3);
    if (std::abs(speed) > fastest) throw UsageError(inQuotedWord(word) + " is outside of -100m/s to 100m/s");
    return static_cast<std::int32_t>(speed);
}

} // namespace applet_tools
