#include "applet_tools/answers/loading/rates.h"

#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/base/numbers.h"

#include <cmath>

namespace applet_tools {
namespace {

double numberIn(const ConfigurationFile& file, const char* key) {
    return floatingNumber(file.value(key).value_or("")).value_or(0);
}

constexpr const char *lineRate = "FG_CAMERASIMULATOR_LINERATE", *frameRate = "FG_CAMERASIMULATOR_FRAMERATE";

} // namespace

bool isNextCycle(const ParameterList& parameters, std::string_view key, const ConfigurationFile& before,
                 const ConfigurationFile& after) {
    if (key != lineRate && key != frameRate) return false;
    const double was = numberIn(before, lineRate), is = numberIn(after, lineRate);
    if (!areNeighbours(parameters.find(lineRate), was, is)) return false;
    if (key == lineRate) return true;
    constexpr double tolerance = 1e-10; // a file holds 12 digits
    const double expected = numberIn(before, frameRate) / was * is;
    return std::fabs(numberIn(after, frameRate) - expected) <= tolerance * expected;
}

} // namespace applet_tools
