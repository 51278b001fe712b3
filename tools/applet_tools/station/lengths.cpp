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

UsageError outside(std::string_view word, std::int64_t most, const std::string& unit) {
    const std::string end = numberText(most) + unit;
    return UsageError(inQuotedWord(word) + " is outside of -" + end + " to " + end);
}

} // namespace

std::int64_t nanometresFrom(std::string_view word) {
    constexpr std::int64_t farthest = 1'000'000; // metres
    const auto length = lengthIn(word);
    if (!length)
        throw UsageError(inQuotedWord(word) +
                         " is not a length: write a number and a unit, such as 25um, 51.2mm or 1.5m");
    if (std::abs(*length) > 1e9 * static_cast<double>(farthest)) throw outside(word, farthest, "m");
    return static_cast<std::int64_t>(std::round(*length));
}

std::int32_t beltSpeedFrom(std::string_view word) {
    constexpr std::int64_t fastest = 100; // metres per second
    const bool isSpeed = word.ends_with("/s");
    const auto length = isSpeed ? lengthIn(word.substr(0, word.size() - 2)) : std::nullopt;
    if (!length)
        throw UsageError(inQuotedWord(word) +
                         " is not a speed: write a number and a unit, such as 500mm/s or 1.5m/s");
    const double speed = std::round(*length / 1e3);
    if (std::abs(speed) > 1e6 * static_cast<double>(fastest)) throw outside(word, fastest, "m/s");
    return static_cast<std::int32_t>(speed);
}

} // namespace applet_tools
