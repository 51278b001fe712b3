#include "host/refusal.h"

#include "applet_tools/answers/limits.h"
#include "applet_tools/applet/published_limits.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/scratch/probe/refusal.h"

#include "vexo/fg_errors.h"

#include <cmath>

namespace host {
namespace {

using applet_tools::Assignment, applet_tools::AssignmentResult;

/** Empty if the scratch board cannot be asked: the refusal is reported without advice then. */
applet_tools::Suggestion adviceFor(vexo_station& station, const AssignmentResult& result) {
    try {
        return askSuggestion(asking(station), result.assignment, result.code);
    } catch (const std::exception&) {
        return {};
    }
}

/** The accepted number nearest to `number`, which may be outside the range of the type. */
applet_tools::Value nearestTo(double number, const applet_tools::MeasuredRange& range) {
    if (number <= asDouble(range.minimum)) return range.minimum;
    if (number >= asDouble(range.maximum)) return range.maximum;
    const auto rounded = [&](const auto& like) -> applet_tools::Value {
        using T = std::decay_t<decltype(like)>;
        if constexpr (std::is_arithmetic_v<T>) return static_cast<T>(std::round(number));
        return like;
    };
    return nearestOnGrid(range, std::visit(rounded, range.minimum));
}

/** What sets the limit that the number exceeds, and the nearest accepted one. */
applet_tools::RefusalCauses causesOf(vexo_station& station, const applet_tools::Parameter& parameter,
                                     double number) {
    using applet_tools::End;
    applet_tools::RefusalCauses found;
    try {
        const auto accepted = askAcceptedValues(asking(station), {parameter.name}, {}).front();
        if (!accepted.range) return found;
        found.nearest = nearestTo(number, *accepted.range);
        const bool isAbove = number > asDouble(accepted.range->maximum);
        if (!isAbove && number >= asDouble(accepted.range->minimum)) return found;
        const End end = isAbove ? End::maximum : End::minimum;
        const applet_tools::LimitCauses& causes = isAbove ? accepted.ofMaximum : accepted.ofMinimum;
        found.limit = causesInWords(parameter, causes, end);
        found.setBy = asJson(causes, end);
    } catch (const std::exception&) { // the refusal is reported without causes
    }
    return found;
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

Error noFitRefusal(vexo_station& station, const Assignment& assignment) {
    const applet_tools::Parameter& parameter = *assignment.target.parameter;
    nlohmann::ordered_json members = refusalAsJson(assignment);
    std::string words = parameter.name + "=" + assignment.text +
                        " was refused: the number does not fit in the type of the value";
    if (const std::string accepted = acceptedText(parameter); !accepted.empty()) words += "; " + accepted;
    if (station.givesAdvice && entriesOf(parameter).empty()) {
        const applet_tools::RefusalCauses causes = causesOf(station, parameter, asDouble(assignment.value));
        if (!causes.limit.empty()) words += "; " + causes.limit;
        if (causes.nearest)
            words += "; the nearest accepted value is " + exactValueWithUnit(parameter, *causes.nearest);
        addCauses(members, parameter, causes);
    }
    return {VEXO_ERR_VALUE, words, std::move(members)};
}

void set(vexo_station& station, const Assignment& assignment) {
    requireWritable(station, ("a set of " + assignment.target.name()).c_str());
    const int code = writeValue(station.instance, assignment.target, assignment.value);
    if (code != FG_OK) throw refusalOf(station, refusedResult(station.instance, assignment, code));
}

} // namespace host
