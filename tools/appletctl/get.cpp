#include "appletctl/commands.h"
#include "appletctl/values.h"

namespace appletctl {

Report getParameters(const Options& options, const Words& names) {
    Instance instance(options);
    const ParameterList parameters(instance);
    std::vector<const Parameter*> wanted; // all names first: a misspelt one stops before anything is read
    for (const std::string& name : names)
        wanted.push_back(&parameters.find(name));

    Report report;
    report.document["parameters"] = nlohmann::ordered_json::array();
    for (const Parameter* parameter : wanted) {
        const Reading reading = readValue(instance, *parameter);
        nlohmann::ordered_json row = {
            {"name", parameter->name}, {"id", parameter->id}, {"unit", parameter->unit()}};
        if (reading.error == FG_OK) {
            report.text += parameter->name + " = " + valueWithUnit(*parameter, reading.value) + '\n';
            addValue(row, *parameter, reading.value);
        } else {
            report.problems.push_back(parameter->name + " cannot be read: " + codeInWords(reading.error));
            report.exitCode = exitRefused;
            row["error"] = codeAsJson(reading.error);
        }
        report.document["parameters"].push_back(std::move(row));
    }
    return report;
}

} // namespace appletctl
