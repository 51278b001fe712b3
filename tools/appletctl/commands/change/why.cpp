// Why a parameter is read-only or refuses a value, and what would free it: single changes of others, tried on the
// scratch board.

#include "appletctl/commands/change/why.h"

#include "appletctl/applet/assignments.h"
#include "appletctl/base/text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/jobs.h"
#include "appletctl/commands/shared_options.h"
#include "appletctl/scratch/measured_range.h"
#include "appletctl/scratch/reports.h"

#include "vexo/fg_errors.h"

#include <unistd.h>

namespace appletctl {
namespace {

using nlohmann::ordered_json;

bool isWritable(std::uint32_t access) { return (access & REGISTER_ACCESS_WRITE) != 0; }

/** One answer, as lines of text and as an object. */
struct WhyReport {
    Table table;
    ordered_json row;

    void addWays(const char* title, const char* member, const std::vector<std::string>& ways) {
        row[member] = ways;
        for (const std::string& way : ways)
            table.addRow({title, way});
    }
};

/** Of a number the accepted one that is nearest to the wanted one. */
std::optional<Value> nearestAccepted(Probe& probe, const Target& target, const Value& wanted) {
    if (target.elements || target.parameter->kind() == REGISTER_KIND_ENUM || !isNumber(wanted))
        return std::nullopt;
    const auto range = measuredRange(probe, target);
    if (!range) return std::nullopt;
    const std::uint64_t rank = rankOf(wanted), low = rankOf(range->minimum), high = rankOf(range->maximum);
    if (rank <= low) return range->minimum;
    if (rank >= high) return range->maximum;
    return numberAt(range->step > 1 ? low + (rank - low) / range->step * range->step : rank, wanted);
}

struct WayOut {
    std::vector<std::string> ways; // changes of other parameters
    std::optional<Value> nearest;
};

WayOut wayOutOf(Probe& probe, std::size_t place, const Assignment& assignment) {
    const auto elements = assignment.target.elements;
    const Value value = assignment.value;
    WayOut out;
    out.ways = probe.words(probe.waysTo(place, [&] {
        return probe.answer(Target{&probe.at(place), elements}, value) == FG_OK;
    }));
    out.nearest = nearestAccepted(probe, {&probe.at(place), elements}, value);
    return out;
}

WhyReport whyRefused(Probe& probe, std::size_t place, const Assignment& assignment) {
    const Parameter& parameter = probe.at(place);
    const Target target{&parameter, assignment.target.elements};
    const std::string text = toUtf8(assignment.text.c_str());
    const int code = probe.answer(target, assignment.value);
    WhyReport answer;
    answer.row = {{"name", target.name()}, {"requested", text}, {"accepted", code == FG_OK}};
    answer.table.addHeading(target.name() + "=" + printable(text));
    if (code == FG_OK) {
        const bool isPublished = accessWord(parameter) != "ro";
        answer.table.addRow({"accepted", isPublished ? "now"
                                                     : "by the setter, although it is published as "
                                                       "read-only"});
        return answer;
    }
    answer.row["error"] = codeAsJson(code);
    answer.table.addRow({"refused", refusalInWords(parameter, assignment.value, code)});
    const WayOut out = wayOutOf(probe, place, assignment);
    answer.addWays("accepted with", "acceptedWith", out.ways);
    if (out.ways.empty())
        answer.table.addRow({"accepted with", "no change of other parameters that was tried"});
    if (!out.nearest) return answer;
    answer.table.addRow({"nearest", valueWithUnit(probe.at(place), *out.nearest)});
    addValue(answer.row["nearest"], {&probe.at(place)}, *out.nearest);
    return answer;
}

WhyReport whyReadOnly(Probe& probe, std::size_t place) {
    WhyReport answer;
    const ParameterState facts = probe.facts(place);
    const std::string access = accessWord(probe.at(place));
    answer.row = {{"name", probe.at(place).name}, {"access", access}, {"writable", isWritable(facts.access)}};
    answer.table.addHeading(probe.at(place).name);
    if (facts.error == FG_OK) answer.table.addRow({"now", valueWithUnit(probe.at(place), facts.value)});
    if (isWritable(facts.access)) {
        answer.table.addRow({access, access == "rw+" ? "writable, also while an acquisition runs"
                                                     : "writable, but not while an acquisition runs"});
        std::vector<std::string> ways;
        for (const Change& change :
             probe.changesFor(place, [&] { return !isWritable(probe.currentState(place).access); }))
            ways.push_back(probe.words(change));
        answer.addWays("read-only with", "readOnlyWith", ways);
        return answer;
    }
    const int code = elementCount(probe.at(place)) > 0 ? FG_OK : probe.answer({place, facts.value});
    answer.row["hasSetter"] = code != FG_ERR_NOT_AVAILABLE;
    if (code == FG_ERR_NOT_AVAILABLE) {
        answer.table.addRow({access, "always: it is measured, or fixed by the design"});
        return answer;
    }
    const auto ways =
        probe.words(probe.waysTo(place, [&] { return isWritable(probe.currentState(place).access); }));
    answer.table.addRow({access, "now; its setter takes values all the same, and they count from then on"});
    answer.addWays("writable with", "writableWith", ways);
    if (ways.empty()) answer.table.addRow({"writable with", "no change of other parameters that was tried"});
    return answer;
}

} // namespace

std::string addSuggestion(Probe& probe, const Assignment& assignment, ordered_json& row) {
    constexpr std::size_t shown = 3;
    const std::size_t place =
        probe.placeOf(probe.session().parameters().find(assignment.target.parameter->name));
    WayOut out = wayOutOf(probe, place, assignment);
    row["acceptedWith"] = out.ways;
    if (out.nearest) addValue(row["nearest"], {&probe.at(place)}, *out.nearest);
    std::string words;
    if (out.nearest)
        words += "; the nearest accepted value is " + valueWithUnit(probe.at(place), *out.nearest);
    if (out.ways.empty()) return words;
    const bool areMore = out.ways.size() > shown;
    if (areMore) out.ways.resize(shown);
    return words + "; accepted with " + join(out.ways, " or ") + (areMore ? " or others" : "");
}

json suggestionJob(ScratchSession& session, const json& arguments) {
    Probe probe(session);
    const auto word = arguments.at("assignment").get<std::string>();
    ordered_json row;
    const Assignment assignment = parseAssignments(session.parameters(), {word}).front();
    const std::string words = addSuggestion(probe, assignment, row);
    return {{"words", words}, {"row", row.dump()}};
}

std::string askSuggestion(Context& context, const Assignment& assignment, ordered_json& row) {
    if (assignment.target.parameter->kind() == REGISTER_KIND_STRING) return ""; // texts depend on files
    const std::string word = assignment.target.name() + "=" + assignment.text;
    const json answer = context.scratch().ask("suggestion", {{"assignment", word}});
    row.update(ordered_json::parse(answer["row"].get<std::string>()));
    return answer["words"].get<std::string>();
}

json whyJob(ScratchSession& session, const json& arguments) {
    Report report;
    auto& rows = report.document["answers"] = ordered_json::array();
    startFrom(session, arguments);
    Probe probe(session);
    for (const std::string& word : arguments.at("words").get<Words>()) {
        const bool isAssignment = word.find('=') != std::string::npos;
        WhyReport answer;
        if (isAssignment) {
            const Assignment assignment = parseAssignments(session.parameters(), {word}).front();
            answer = whyRefused(probe, probe.placeOf(*assignment.target.parameter), assignment);
        } else {
            answer = whyReadOnly(probe, probe.placeOf(session.parameters().find(word)));
        }
        report.text +=
            (report.text.empty() ? "" : "\n") + answer.table.render(Style::forStream(STDOUT_FILENO));
        rows.push_back(std::move(answer.row));
        probe.restore();
    }
    return asMessage(report);
}

namespace {

Report explainParameters(Context& context, const Words& words) {
    return askScratch(context, "why",
                      {{"words", words}, {"with", context.options().of<WithOption>().assignments}});
}

} // namespace

extern const Command whyCommand;
const Command whyCommand = {
    .name = "why",
    .help = "Say why a parameter is read-only or refuses a value, and what would free it",
    .argument = "NAME[=VALUE]",
    .argumentHelp = "Parameters or assignments",
    .fewest = 1,
    .most = -1,
    .run = explainParameters,
    .scratch = Context::Scratch::wanted,
    .addOptions = addWith,
};

} // namespace appletctl
