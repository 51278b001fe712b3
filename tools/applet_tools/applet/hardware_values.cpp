#include "applet_tools/applet/hardware_values.h"

#include "applet_tools/applet/published_limits.h"
#include "applet_tools/applet/timing/ticks.h"

#include <algorithm>
#include <cmath>

namespace applet_tools {
namespace {

enum class Counting {
    steps,      // the design rounds the number; the parameter keeps the exact one
    readBack,   // the parameter reads back the rounded number
    lineCycles, // like readBack, in whole cycles of a line
};

struct Rule {
    const char* parameter;
    Counting counting;
    double step; // for `steps`
    const char* words;
};

constexpr double tick = microsecondsPerTick;
constexpr double cycle = 1.0 / ticksPerSecond; // s, of the camera simulator
constexpr const char* triggerWords = "the trigger counts in steps of 0.008 µs";
constexpr const char* gainWords = "gains have steps of 1/1024";
constexpr const char* pixelWords = "the simulator makes 32 pixels at a time";
constexpr const char* gapWords =
    "the simulator makes gaps in the mode FG_PIXEL_FREQUENCY only, of 32 pixels at a time";
constexpr const char* rateWords = "the simulator counts whole cycles of 8 ns for a line";

constexpr Rule rules[] = {
    {"FG_LINEPERIODE", Counting::steps, tick, triggerWords},
    {"FG_LINEEXPOSURE", Counting::steps, tick, triggerWords},
    {"FG_LINETRIGGERDELAY", Counting::steps, tick, triggerWords},
    {"FG_LINETRIGGERDEBOUNCING", Counting::steps, tick, triggerWords},
    {"FG_IMGTRIGGERDEBOUNCING", Counting::steps, tick, triggerWords},
    {"FG_SCALINGFACTOR_RED", Counting::steps, 1.0 / 1024, gainWords},
    {"FG_SCALINGFACTOR_GREEN", Counting::steps, 1.0 / 1024, gainWords},
    {"FG_SCALINGFACTOR_BLUE", Counting::steps, 1.0 / 1024, gainWords},
    {"FG_CAMERASIMULATOR_WIDTH", Counting::readBack, 0, pixelWords},
    {"FG_CAMERASIMULATOR_LINE_GAP", Counting::readBack, 0, gapWords},
    {"FG_CAMERASIMULATOR_LINERATE", Counting::lineCycles, 0, rateWords},
    {"FG_CAMERASIMULATOR_FRAMERATE", Counting::readBack, 0, rateWords},
};

const Rule* ruleOf(const Parameter& parameter) {
    const auto* found = std::ranges::find(rules, parameter.name, &Rule::parameter);
    return found != std::end(rules) ? found : nullptr;
}

/** Cycles of a line with this rate; a whole number for a rate that was read. */
double cyclesOf(double rate) { return 1.0 / (rate * cycle) + 0.5; }

bool isReading(double rate) {
    constexpr double tolerance = 1e-3; // a file holds 12 digits
    const double cycles = cyclesOf(rate);
    return std::fabs(cycles - std::round(cycles)) < tolerance;
}

} // namespace

std::string countingOf(const Parameter& parameter) {
    const Rule* rule = ruleOf(parameter);
    return rule != nullptr ? rule->words : "";
}

std::optional<double> nearestStep(const Parameter& parameter, const Value& held) {
    const Rule* rule = ruleOf(parameter);
    const auto* number = std::get_if<double>(&held);
    if (rule == nullptr || rule->counting != Counting::steps || number == nullptr || !std::isfinite(*number))
        return std::nullopt;
    const double steps = *number / rule->step;
    constexpr double tolerance = 1e-6; // 0.112 is 14 steps, apart from the division's rounding error
    if (std::fabs(steps - std::round(steps)) <= tolerance) return std::nullopt;
    constexpr double decimals = 1e10; // more digits than any step has
    return std::round(std::round(steps) * rule->step * decimals) / decimals;
}

Value requestFor(const Parameter& parameter, const Value& reading) {
    const Rule* rule = ruleOf(parameter);
    const auto* rate = std::get_if<double>(&reading);
    const bool isRate = rule != nullptr && rule->counting == Counting::lineCycles && rate != nullptr;
    if (!isRate || !(*rate > 0)) return reading;
    return 1.0 / (std::round(cyclesOf(*rate)) * cycle);
}

bool areNeighbours(const Parameter& parameter, const Value& saved, const Value& loaded) {
    const Rule* rule = ruleOf(parameter);
    const auto *first = std::get_if<double>(&saved), *second = std::get_if<double>(&loaded);
    if (rule == nullptr || rule->counting != Counting::lineCycles || first == nullptr || second == nullptr)
        return false;
    if (!(*first > 0) || !(*second > 0) || !isReading(*first)) return false;
    return std::fabs(std::round(cyclesOf(*first)) - std::round(cyclesOf(*second))) <= 1;
}

bool isComputedNow(const Parameter& parameter) {
    return parameter.kind() == REGISTER_KIND_DOUBLE && accessWord(parameter) == "ro";
}

bool isComputedRate(const Parameter& parameter) {
    return isComputedNow(parameter) && parameter.name.starts_with("FG_CAMERASIMULATOR_");
}

std::string requestedAndActual(const Parameter& parameter, const Value& requested, const Value& held) {
    const std::string wanted = valueText(parameter, requested);
    const std::string why = countingOf(parameter);
    if (wanted != valueText(parameter, held))
        return " (requested " + wanted + (why.empty() ? ")" : "; " + why + ")");
    if (const auto actual = nearestStep(parameter, held))
        return " (" + why + ": actual " + valueWithUnit(parameter, *actual) + ")";
    return "";
}

} // namespace applet_tools
