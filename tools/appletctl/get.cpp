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

Report getParameters(const Options& options, const Words& names) {
    Instance instance(options);
    const ParameterList parameters(instance);
    std::vector<Target> wanted; // all names first: a misspelt one stops before anything is read
    for (const std::string& name : names)
        wanted.push_back(findTarget(parameters, name));

    Report report;
    report.document["parameters"] = nlohmann::ordered_json::array();
    for (const Target& target : wanted) {
        const Parameter* parameter = target.parameter;
        const Reading reading = readValue(instance, target);
        nlohmann::ordered_json row = {
            {"name", parameter->name}, {"id", parameter->id}, {"unit", parameter->unit()}};
        if (reading.error == FG_OK) {
            report.text += valueLines(target, reading.value);
            addValue(row, target, reading.value);
        } else {
            report.problems.push_back(target.name() + " cannot be read: " + codeInWords(reading.error));
            report.exitCode = exitRefused;
            row["error"] = codeAsJson(reading.error);
        }
        report.document["parameters"].push_back(std::move(row));
    }
    return report;
}

} // namespace appletctl
