#include "appletctl/commands/lines.h"

#include "appletctl/base/report_text.h"

#include <sstream>

namespace appletctl {

std::string valueLine(const Target& target, const Value& value) {
    const Parameter& parameter = *target.parameter;
    return lineOf({target.name(), valueText(parameter, value), parameter.unit()},
                  target.name() + " = " + valueWithUnit(parameter, value));
}

std::string accessLine(const std::string& line) {
    std::vector<std::string> cells;
    std::istringstream words(line);
    for (std::string word; words >> word;)
        cells.push_back(word);
    return lineOf(cells, "  " + line);
}

} // namespace appletctl
