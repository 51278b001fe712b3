#include "applet_tools/scratch/refusal.h"

#include "applet_tools/base/text.h"
#include "applet_tools/scratch/limit_causes.h"

#include "vexo/fg_errors.h"

#include <utility>

namespace appletctl {
namespace {

using nlohmann::ordered_json;

/** The end of the range that the number is beyond; nothing for a number within. */
std::optional<End> exceededEnd(const MeasuredRange& range, const Value& wanted) {
    if (rankOf(wanted) > rankOf(range.maximum)) return End::maximum;
    if (rankOf(wanted) < rankOf(range.minimum)) return End::minimum;
    return std::nullopt;
}

/** "the maximum is set by FG_XOFFSET (16384 with FG_XOFFSET=0) and FG_SENSORWIDTH (...)". */
std::string causesInWords(const Probe& probe, const Parameter& parameter, const LimitCauses& causes,
                          End end) {
    const std::string limit = std::string("the ") + nameOf(end) + " is ";
    if (!fixedInWords(causes).empty()) return limit + "fixed";
    std::vector<std::string> words;
    for (const Widening& widening : causes.parameters)
        words.push_back(probe.at(widening.change.place).name + " (" + valueText(parameter, widening.limit) +
                        " with " + probe.words(widening.change) + ")");
    for (const DesignCause& cause : causes.design)
        if (words.empty() || words.back() != shortWords(cause)) words.push_back(shortWords(cause));
    return limit + "set by " + join(words, " and ");
}

/** What the range that the setter takes says about a refused number. */
void addRange(Probe& probe, const Subject& subject, const Value& wanted, RefusalCauses& found,
              ordered_json& row) {
    const auto range = measuredRange(probe, subject.in(probe));
    probe.restore();
    if (!range) {
        found.limit = "its setter refuses every value that was tried, the present one included";
        return;
    }
    found.nearest = nearestIn(*range, wanted);
    const auto end = exceededEnd(*range, wanted);
    if (!end) return;
    const LimitCauses causes = causesOf(probe, subject, *range, *end);
    found.limit = causesInWords(probe, probe.at(subject.place), causes, *end);
    row["setBy"] = asJson(probe, causes, *end);
}

/** The number that the assignment asks for; nothing for texts and entries. */
std::optional<Value> wantedNumber(const Assignment& assignment) {
    if (assignment.target.parameter->kind() == REGISTER_KIND_ENUM) return std::nullopt;
    if (const auto* elements = std::get_if<Elements>(&assignment.value)) return Value(elements->front());
    return isNumber(assignment.value) ? std::optional(assignment.value) : std::nullopt;
}

} // namespace

RefusalCauses findCauses(Probe& probe, const Assignment& assignment, ordered_json& row) {
    const Subject subject{probe.placeOf(probe.session().parameters().find(assignment.target.parameter->name)),
                          assignment.target.elements};
    const Value value = assignment.value;
    const auto wanted = wantedNumber(assignment);
    RefusalCauses found;
    row["acceptedWith"] = ordered_json::array();
    const int code = probe.answer(subject.in(probe), value);
    if (code == FG_OK) found.limit = "a scratch board with the same values accepts it";
    if (code == FG_OK || code == FG_ERR_NOT_AVAILABLE) return found;
    found.isTried = true;
    found.acceptedWith = probe.words(
        probe.waysTo(subject.place, [&] { return probe.answer(subject.in(probe), value) == FG_OK; }));
    if (wanted) addRange(probe, subject, *wanted, found, row);
    row["acceptedWith"] = found.acceptedWith;
    if (found.nearest) addValue(row["nearest"], {&probe.at(subject.place)}, *found.nearest);
    return found;
}

std::string addSuggestion(Probe& probe, const Assignment& assignment, ordered_json& row) {
    constexpr std::size_t shown = 3;
    const std::string name = assignment.target.parameter->name; // the record may be gone after the trials
    RefusalCauses found = findCauses(probe, assignment, row);
    const Parameter& parameter = probe.session().parameters().find(name);
    std::string words;
    if (!found.limit.empty()) words += "; " + found.limit;
    if (found.nearest) words += "; the nearest accepted value is " + valueWithUnit(parameter, *found.nearest);
    if (found.acceptedWith.empty()) {
        const bool isStuck = found.isTried && !found.nearest;
        return words + (isStuck ? "; no change of another parameter that was tried makes it accepted" : "");
    }
    const bool areMore = found.acceptedWith.size() > shown;
    if (areMore) found.acceptedWith.resize(shown);
    return words + "; accepted with " + join(found.acceptedWith, " or ") + (areMore ? " or others" : "");
}

json suggestionJob(ScratchSession& session, const json& arguments) {
    Probe probe(session);
    const auto word = arguments.at("assignment").get<std::string>();
    ordered_json row = ordered_json::object();
    const Assignment assignment = parseAssignments(session.parameters(), {word}).front();
    const std::string words = addSuggestion(probe, assignment, row);
    return {{"words", words}, {"row", row.dump()}};
}

std::string askSuggestion(Context& context, const Assignment& assignment, ordered_json& row) {
    if (assignment.target.parameter->kind() == REGISTER_KIND_STRING) return ""; // texts depend on files
    const auto error = row.find("error"); // an error of the board is no matter of values
    if (error != row.end() && error->value("symbol", "").empty()) return "";
    const std::string word = assignment.target.name() + "=" + assignment.text;
    const json answer = context.scratch().ask("suggestion", {{"assignment", word}});
    row.update(ordered_json::parse(answer["row"].get<std::string>()));
    return answer["words"].get<std::string>();
}

Report applyLive(Context& context, const Words& words, AssignmentHooks hooks) {
    hooks.suggestion = [&](const Assignment& assignment, ordered_json& row) {
        return askSuggestion(context, assignment, row);
    };
    return applyAssignments(context.instance(), context.parameters(), words, hooks);
}

void startFrom(ScratchSession& session, const json& arguments) {
    const auto words = arguments.at("with").get<Words>();
    if (words.empty()) return;
    AssignmentHooks hooks;
    hooks.suggestion = [&](const Assignment& assignment, ordered_json& row) {
        session.keep();
        Probe probe(session);
        return addSuggestion(probe, assignment, row);
    };
    const Report report = applyAssignments(session.instance(), session.parameters(), words, hooks);
    if (report.exitCode != exitDone) throw Failure(join(report.problems, "; "));
    session.keep();
}

} // namespace appletctl
