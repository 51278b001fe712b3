#include "appletctl/differences.h"
#include "appletctl/text.h"

namespace appletctl {

Report loadConfiguration(Context& context, const Words& words) {
    requireBoard(context.options(), "load");
    const std::string& file = fileOf(words);
    const Words assignments = behindFirst(words);
    Work work(context, assignments);
    if (work.isRefused()) return work.report;
    const ConfigurationFile before = stateOf(work.instance);
    FileKeys keys(context.options());
    const std::vector<Finding> findings = loadAndCompare(work, keys, file, context.options(), assignments);
    const ConfigurationFile now = stateOf(work.instance);
    work.report.document["file"] = toUtf8(file.c_str());
    const std::size_t changed = addDifferences(work.report, {"BEFORE", "before", &before},
                                               {"NOW", "now", &now}, work.parameters, keys);
    if (changed == 0) work.report.text += "Nothing has changed.\n";
    addFindings(work, findings);
    return work.report;
}

} // namespace appletctl
