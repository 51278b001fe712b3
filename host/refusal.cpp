#include "host/refusal.h"

#include "applet_tools/applet/published_limits.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/scratch/refusal.h"

#include "vexo/fg_errors.h"

namespace host {
namespace {

using applet_tools::Assignment, applet_tools::AssignmentResult;

/** Empty if the scratch board cannot be asked: the refusal matters more. */
applet_tools::Suggestion adviceFor(vexo_station& station, const AssignmentResult& result) {
    try {
        return askSuggestion(asking(station), result.assignment, result.code);
    } catch (const std::exception&) {
        return {};
    }
}

} // namespace

Error refusalOf(vexo_station& station, const AssignmentResult& result, bool wantsAdvice) {
    nlohmann::ordered_json members = refusalAsJson(result.assignment);
    std::string words = refusalInWords(result);
    if (wantsAdvice && station.givesAdvice && result.reason.empty()) {
        const applet_tools::Suggestion advice = adviceFor(station, result);
        words += advice.words();
        if (advice.members.is_object()) members.update(advice.members);
    }
    return {result.code, words, std::move(members)};
}

void set(vexo_station& station, const Assignment& assignment) {
    requireWritable(station, ("a set of " + assignment.target.name()).c_str());
    const int code = writeValue(station.instance, assignment.target, assignment.value);
    if (code != FG_OK) throw refusalOf(station, refusedResult(station.instance, assignment, code));
}

} // namespace host
