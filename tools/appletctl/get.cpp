#include "appletctl/commands.h"
#include "appletctl/values.h"

namespace appletctl {
namespace {

/** "FG_WIDTH = 1024 pixel"; one line for each element. */
std::string valueLines(const Target& target, const Value& value) {
    const auto* elements = std::get_if<Elements>(&value);
    if (elements == nullptr) return target.name() + " = " + valueWithUnit(*target.parameter, value) + '\n';
    std::string lines;
    for (std::uint32_t index = target.elements->first; const std::uint32_t element : *elements)
        lines += elementName(*target.parameter, index++) + " = " + numberText(element) + '\n';
    return lines;
}

} // namespace

Report getParameters(Context& context, const Words& names) {
    Instance& instance = context.instance();
    const ParameterList& parameters = context.parameters();
    Report report;
    report.document["parameters"] = nlohmann::ordered_json::array();
    for (const Target& target : findTargets(parameters, names)) {
        const Reading reading = readValue(instance, target);
        report.document["parameters"].push_back(readingAsJson(target, reading));
        if (reading.error == FG_OK) {
            report.text += valueLines(target, reading.value);
        } else {
            report.problems.push_back(target.name() + " cannot be read: " + codeInWords(reading.error));
            report.exitCode = exitRefused;
        }
    }
    return report;
}

} // namespace appletctl
