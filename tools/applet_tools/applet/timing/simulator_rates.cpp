#include "applet_tools/applet/timing/simulator_rates.h"

#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/base/numbers.h"

#include <cmath>

namespace applet_tools {

SimulatorRates ratesIn(const ConfigurationFile& file) {
    const auto rate = [&](const char* name) {
        return floatingNumber(file.value(name).value_or("")).value_or(0);
    };
    return {rate(SimulatorRates::lineName), rate(SimulatorRates::frameName)};
}

bool isNextCycle(const ParameterList& parameters, std::string_view name, const SimulatorRates& before,
                 const SimulatorRates& after) {
    if (!SimulatorRates::isOne(name)) return false;
    if (!areNeighbours(parameters.find(SimulatorRates::lineName), before.line, after.line)) return false;
    if (name == SimulatorRates::lineName) return true;
    constexpr double tolerance = 1e-10; // a file holds 12 digits
    const double expected = before.frame / before.line * after.line;
    return std::fabs(after.frame - expected) <= tolerance * expected;
}

} // namespace applet_tools
