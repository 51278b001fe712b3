#include "applet_tools/scratch/probe/refusal.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/message_rows.h"

#include "vexo/fg_errors.h"

#include <utility>

namespace applet_tools {
namespace {

using nlohmann::ordered_json;

/** The end of the range that the number exceeds; empty for a number within the range. */
std::optional<End> exceededEnd(const MeasuredRange& range, const Value& wanted) {
    if (rankOf(wanted) > rankOf(range.maximum)) return End::maximum;
    if (rankOf(wanted) < rankOf(range.minimum)) return End::minimum;
    return std::nullopt;
}

/** Relates a refused number to the accepted range. */
void addRange(Probe& probe, const Subject& subject, const Value& wanted, RefusalCauses& found) {
    const auto range = measuredRange(probe, subject.in(probe));
    if (range) found.nearest = nearestIn(probe, subject.in(probe), *range, wanted);
    probe.restore();
    if (!range) {
        found.limit =
            "with the other parameters as they are, its setter refuses every value that was tried, the "
            "present one too";
        return;
    }
    const auto end = exceededEnd(*range, wanted);
    if (!end) return;
    const LimitCauses causes = causesOf(probe, subject, *range, *end);
    found.limit = causesInWords(probe.at(subject.index), causes, *end);
    found.setBy = asJson(causes, *end);
}

/** The number in the assignment; empty for texts and entries. */
std::optional<Value> wantedNumber(const Assignment& assignment) {
    if (assignment.target.parameter->kind() == REGISTER_KIND_ENUM) return std::nullopt;
    if (const auto* elements = std::get_if<Elements>(&assignment.value)) return Value(elements->front());
    return isNumber(assignment.value) ? std::optional(assignment.value) : std::nullopt;
}

} // namespace

std::string causesInWords(const Parameter& parameter, const LimitCauses& causes, End end) {
    const std::string limit = std::string("the ") + nameOf(end) + " is ";
    if (causes.isEndOfType) return limit + "the end of the parameter's type";
    if (isUnmoved(causes))
        return std::string("no change that was tried ") + (end == End::maximum ? "raises" : "lowers") +
               " the " + nameOf(end);
    std::vector<std::string> words;
    for (const Widening& widening : causes.parameters)
        words.push_back(widening.parameter + " (" + exactValueText(parameter, widening.limit) + " with " +
                        widening.with + ")");
    for (const DesignCause& cause : causes.design)
        if (words.empty() || words.back() != shortWords(cause)) words.push_back(shortWords(cause));
    return limit + "set by " + join(words, " and ");
}

std::vector<RefusalCauses> findCauses(Probe& probe, const std::vector<Assignment>& assignments) {
    struct Refused {
        Subject subject;
        Value value;
        std::optional<Value> number;
    };
    std::vector<Refused> all; // without records, which may become invalid
    all.reserve(assignments.size());
    for (const Assignment& assignment : assignments)
        all.push_back({{probe.indexOf(probe.session().parameters().find(assignment.target.parameter->name)),
                        assignment.target.elements},
                       assignment.value,
                       wantedNumber(assignment)});
    std::vector<RefusalCauses> causes(all.size());
    std::vector<Wish> wishes;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const auto& [subject, value, number] = all[i];
        const int code = probe.answer(subject.in(probe), value);
        if (code == FG_OK) causes[i].limit = "a scratch board with the same values accepts it";
        causes[i].isTried = code != FG_OK && code != FG_ERR_NOT_AVAILABLE;
        if (causes[i].isTried)
            wishes.push_back({subject.index, [&probe, &one = all[i]] {
                                  return probe.answer(one.subject.in(probe), one.value) == FG_OK;
                              }});
        if (all.size() > 1) probe.restore();
    }
    const std::vector<Ways> ways = probe.waysTo(wishes);
    for (std::size_t i = 0, next = 0; i < all.size(); ++i) {
        if (!causes[i].isTried) continue;
        causes[i].ways = probe.assignments(ways[next++]);
        if (all[i].number) addRange(probe, all[i].subject, *all[i].number, causes[i]);
        if (all.size() > 1) probe.restore();
    }
    return causes;
}

RefusalCauses findCauses(Probe& probe, const Assignment& assignment) {
    return findCauses(probe, std::vector{assignment}).front();
}

void addCauses(ordered_json& row, const Parameter& parameter, const RefusalCauses& causes) {
    row["acceptedWith"] = waysInWords(causes.ways);
    if (!causes.setBy.is_null()) row["setBy"] = causes.setBy;
    if (causes.nearest) addValue(row["nearest"], {&parameter}, *causes.nearest);
}

namespace {

/** {"the maximum is set by ...", "the nearest accepted value is 64", "accepted with ..."}. */
Words clausesOf(const Parameter& parameter, const RefusalCauses& causes) {
    constexpr std::size_t shown = 3;
    Words clauses;
    if (!causes.limit.empty()) clauses.push_back(causes.limit);
    if (causes.nearest)
        clauses.push_back("the nearest accepted value is " + exactValueWithUnit(parameter, *causes.nearest));
    Words ways = waysInWords(causes.ways);
    const bool areMore = ways.size() > shown;
    if (areMore) ways.resize(shown);
    if (!ways.empty())
        clauses.push_back("accepted with " + join(ways, " or ") + (areMore ? " or others" : ""));
    else if (causes.isTried && !causes.nearest)
        clauses.emplace_back("no change of another parameter that was tried makes it accepted");
    return clauses;
}

} // namespace

std::string Suggestion::words() const {
    std::string words;
    for (const std::string& clause : clauses)
        words += "; " + clause;
    return words;
}

std::vector<Suggestion> suggestionsFor(Probe& probe, const std::vector<Assignment>& assignments) {
    Words names; // copied, as the records may be gone after the trials
    for (const Assignment& assignment : assignments)
        names.push_back(assignment.target.parameter->name);
    std::vector<Suggestion> suggestions;
    for (const RefusalCauses& causes : findCauses(probe, assignments)) {
        const Parameter& parameter = probe.session().parameters().find(names[suggestions.size()]);
        Suggestion& suggestion =
            suggestions.emplace_back(Suggestion{clausesOf(parameter, causes), causes.ways, {}});
        addCauses(suggestion.members, parameter, causes);
    }
    return suggestions;
}

Suggestion suggestionFor(Probe& probe, const Assignment& assignment) {
    return suggestionsFor(probe, std::vector{assignment}).front();
}

template <> struct MessageRows<Suggestion> {
    static constexpr auto rows = std::tuple(&Suggestion::clauses, &Suggestion::ways, &Suggestion::members);
};

json suggestionJob(ScratchSession& session, const json& arguments) {
    Probe probe(session);
    const auto word = arguments.at("assignment").get<std::string>();
    return toMessage(suggestionFor(probe, parseAssignments(session.parameters(), {word}).front()));
}

Suggestion askSuggestion(LiveSession& live, const Assignment& assignment, int code) {
    if (assignment.target.parameter->kind() == REGISTER_KIND_STRING) return {}; // texts depend on files
    if (!isAppletCode(code)) return {}; // an error of the board does not depend on values
    const std::string word = assignment.target.name() + "=" + assignment.text;
    return recordFrom<Suggestion>(live.scratch().ask("suggestion", {{"assignment", word}}));
}

void startFrom(ScratchSession& session, const Words& assignments) {
    if (assignments.empty()) return;
    std::string problem;
    int code = FG_OK;
    ordered_json members;
    const auto explain = [&](const AssignmentResult& result) {
        if (result.code == FG_OK) return;
        code = result.code;
        problem = refusalInWords(result);
        members = refusalAsJson(result.assignment);
        session.keep();
        Probe probe(session);
        const Suggestion suggestion = suggestionFor(probe, result.assignment);
        problem += suggestion.words();
        if (suggestion.members.is_object()) members.update(suggestion.members);
    };
    const AssignmentsOutcome outcome =
        applyAssignments(session.instance(), session.parameters(), assignments, {.after = explain});
    if (!outcome.notSet.empty()) problem += "; not set after that: " + join(outcome.notSet, ", ");
    if (outcome.isRefused) throw AssumptionRefused(problem, code, std::move(members));
    session.keep();
}

} // namespace applet_tools
