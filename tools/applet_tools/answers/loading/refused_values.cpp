#include "applet_tools/answers/loading/refused_values.h"

#include "applet_tools/applet/assignments.h"
#include "applet_tools/applet/files/MemoryFile.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/probe/refusal.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <utility>

namespace applet_tools {
namespace {

using KeySet = std::set<std::string, std::less<>>;

/** The keys of the refused values that are accepted in the present state. */
KeySet acceptedNow(ScratchSession& session, const ConfigurationFile& asked,
                   const std::vector<Finding>& findings) {
    KeySet accepted;
    for (const Finding& finding : findings) {
        if (!finding.isRefusal()) continue;
        const Parameter& parameter = session.parameters().find(finding.key);
        const auto value = valueOfLoad(parameter, asked.value(finding.key).value_or(""));
        if (value && parameter.kind() != REGISTER_KIND_STRING &&
            writeValue(session.instance(), {&parameter}, *value) == FG_OK)
            accepted.insert(finding.key);
    }
    return accepted;
}

/** Describes the changes of the design that a refused value causes, and adds them to the finding. To find
 *  them it loads the same file again with the previous value. */
std::string reachedInWords(ScratchSession& session, const ConfigurationFile& asked,
                           const ConfigurationFile& before, const DesignSnapshot& loaded, Finding& finding,
                           const std::function<void()>& lookWithout) {
    const auto line = asked.values().find(finding.key), old = before.values().find(finding.key);
    if (!line || !old || !finding.isRefusal()) return "";
    const MemoryFile other;
    other.write(asked.textWith(*line, old->text));
    session.rewind();
    loadConfiguration(session.instance(), other.configurationPath());
    const std::vector<DesignChange> reached = DesignSnapshot(session).changesTo(loaded);
    lookWithout();
    if (reached.empty()) return "; nothing of it has reached the board";
    finding.reached = asJson(reached);
    std::vector<std::string> words;
    words.reserve(reached.size());
    for (const DesignChange& change : reached)
        words.push_back(change.parameter + " " + afterInWords(change) + " (" + beforeInWords(change) +
                        " without it)");
    return "; the board has received it: " + join(words, ", ");
}

/** For the key of a refused value: the keys of other refused values that are accepted without it. */
using AcceptedWithout = std::map<std::string, KeySet>;

bool isAcceptedWithout(const AcceptedWithout& accepted, const std::string& cause, const std::string& key) {
    const auto found = accepted.find(cause);
    return found != accepted.end() && found->second.contains(key);
}

/** True if only the cause makes that the value is refused: neither follows if each is accepted without the other. */
bool follows(const AcceptedWithout& accepted, const std::string& key, const std::string& cause) {
    return isAcceptedWithout(accepted, cause, key) && !isAcceptedWithout(accepted, key, cause);
}

bool followsFromAny(const AcceptedWithout& accepted, const std::string& key) {
    return std::ranges::any_of(accepted, [&](const auto& one) { return follows(accepted, key, one.first); });
}

/** The refused value from which this refusal follows, and which follows from no other; empty if there is none. */
std::string firstCauseOf(const AcceptedWithout& accepted, const std::string& key) {
    for (const auto& [cause, keys] : accepted)
        if (follows(accepted, key, cause) && !followsFromAny(accepted, cause)) return cause;
    return "";
}

/** Names the cause of each value that is refused only because of another refused one. */
void markFollowers(std::vector<Finding>& findings, const AcceptedWithout& accepted) {
    for (Finding& finding : findings) {
        const std::string cause = finding.isRefusal() ? firstCauseOf(accepted, finding.key) : "";
        if (cause.empty()) continue;
        finding.followsFrom = cause;
        finding.message += "; that follows from the refusal of " + cause;
    }
}

/** A refused value of the file and its finding. */
struct RefusedValue {
    Finding* finding;
    Assignment assignment;
};

/** The refused values for which a cause can be looked for. */
std::vector<RefusedValue> refusedValues(const ScratchSession& session, const ConfigurationFile& asked,
                                        std::vector<Finding>& findings) {
    std::vector<RefusedValue> refused;
    for (Finding& finding : findings) {
        if (!finding.isRefusal() || !finding.followsFrom.empty() || !asked.values().find(finding.key))
            continue;
        const Parameter& parameter = session.parameters().find(finding.key);
        const std::string text = asked.value(finding.key).value_or("");
        const auto value = valueOfLoad(parameter, text);
        if (value && parameter.kind() != REGISTER_KIND_STRING)
            refused.push_back({&finding, {{&parameter}, text, *value}});
    }
    return refused;
}

} // namespace

std::vector<std::string> outcomesOf(ScratchSession& session, const ConfigurationFile& asked,
                                    const ConfigurationFile& before, const DesignSnapshot& loaded,
                                    std::vector<Finding>& findings) {
    std::vector<std::string> outcomes;
    AcceptedWithout accepted;
    bool isExplained = false; // the meaning of a kept value is the same for all, so it is said once
    for (Finding& finding : findings) {
        session.reportProgress(outcomes.size(), findings.size());
        std::string& words = outcomes.emplace_back();
        if (finding.kind == FindingKind::kept)
            words =
                std::string("; it reads back nevertheless") +
                (std::exchange(isExplained, true) ? "" : ", and setters of other parameters work with it");
        words += reachedInWords(session, asked, before, loaded, finding,
                                [&] { accepted[finding.key] = acceptedNow(session, asked, findings); });
    }
    markFollowers(findings, accepted);
    return outcomes;
}

void addCauses(ScratchSession& session, const std::string& file, const ConfigurationFile& asked,
               std::vector<Finding>& findings) {
    session.keep();
    constexpr std::size_t most = 5; // each takes many trials
    const std::vector<RefusedValue> refused = refusedValues(session, asked, findings);
    if (refused.empty()) return;
    std::vector<Assignment> assignments;
    for (std::size_t i = 0; i < refused.size(); ++i) {
        const auto& [finding, assignment] = refused[i];
        if (i < most) {
            assignments.push_back(assignment);
            continue;
        }
        finding->isExamined = false;
        finding->message += "; the cause was looked for with the first " + numberText(most) +
                            " refused values only, so ask 'appletctl why " + finding->key + "=" +
                            exactValueText(*assignment.target.parameter, assignment.value) + " --from " +
                            asShellWord(file) + "'";
    }
    Probe probe(session);
    const std::vector<Suggestion> suggestions = suggestionsFor(probe, assignments);
    for (std::size_t i = 0; i < suggestions.size(); ++i)
        refused[i].finding->message += suggestions[i].words();
}

} // namespace applet_tools
