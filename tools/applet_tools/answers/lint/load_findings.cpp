#include "applet_tools/answers/lint/load_findings.h"

#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

namespace applet_tools {
namespace {

/** Reports many missing keys as one finding; returns false if there are few. */
bool addMissing(LintState& state, const LoadOutcome& outcome) {
    constexpr std::size_t few = 3;
    Words names;
    for (const Finding& finding : outcome.findings)
        if (finding.kind == FindingKind::missing) names.push_back(finding.key);
    if (names.size() <= few) return false;
    const Words first(names.begin(), names.begin() + few);
    state.add("load", {}, {numberText(names.size()) + " keys"}, json::array(),
              join(first, ", ") + " and " + numberText(names.size() - few) +
                  " more are missing: a load leaves them as they were",
              "'appletctl check' names them all");
    return true;
}

/** A name for a finding without a parameter value; empty for the others. */
std::string subjectWithoutValue(const Finding& finding, const std::string& path) {
    if (finding.key.empty()) return shownFile(path);
    if (finding.kind == FindingKind::unknown) return "the key " + quotedText(finding.key);
    return finding.kind == FindingKind::missing ? finding.key + " is not in the file" : "";
}

} // namespace

Words keptNames(const LoadOutcome& outcome) {
    Words names;
    for (const Finding& finding : outcome.findings)
        if (finding.kind == FindingKind::kept) names.push_back(finding.key);
    return names;
}

void addLosses(LintState& state, const LoadOutcome& outcome, const std::string& path,
               const ConfigurationFile& file) {
    const bool isMissed = addMissing(state, outcome);
    for (const Finding& finding : outcome.findings) {
        if (isMissed && finding.kind == FindingKind::missing) continue;
        if (const std::string subject = subjectWithoutValue(finding, path); !subject.empty()) {
            state.add("load", {}, {subject}, json::array(), finding.message,
                      "'appletctl check' lists all that is lost");
            continue;
        }
        if (!finding.isLoss || state.isProposed(finding.key)) continue;
        const std::string text = file.value(finding.key).value_or("");
        const Words names = {toUtf8(finding.key)};
        const Words texts = {names.front() + " = " + printable(text) + " in the file"};
        const json values = {{{"name", names.front()}, {"inFile", toUtf8(text)}}};
        const bool isRefused = finding.kind == FindingKind::refused;
        const auto value = isRefused ? valueOfLoad(state.parameters().find(finding.key), text) : std::nullopt;
        if (value)
            state.propose("load", names, texts, values, finding.message, *value);
        else
            state.add("load", names, texts, values, finding.message,
                      "'appletctl check' lists all that is lost");
    }
}

} // namespace applet_tools
