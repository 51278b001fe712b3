// Why a parameter is read-only or refuses a value, and what would free it: single changes of others, tried on the
// scratch board.

#include "applet_tools/applet/assignments.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/measured_range.h"
#include "applet_tools/scratch/refusal.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/jobs.h"
#include "appletctl/commands/reports.h"
#include "appletctl/commands/shared_options.h"

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
        if (ways.empty()) table.addRow({title, "no change of another parameter that was tried"});
    }
};

std::vector<std::string> waysToWrite(Probe& probe, std::size_t place) {
    return probe.words(probe.waysTo(place, [&] { return isWritable(probe.currentState(place).access); }));
}

WhyReport whyRefused(Probe& probe, const Assignment& assignment) {
    const Parameter& parameter = *assignment.target.parameter;
    const std::size_t place = probe.placeOf(parameter);
    const std::string text = toUtf8(assignment.text.c_str());
    const int code = probe.answer(assignment.target, assignment.value);
    WhyReport answer;
    answer.row = {{"name", assignment.target.name()},
                  {"requested", requestedAsJson(assignment)},
                  {"accepted", code == FG_OK}};
    answer.table.addSubject(assignment.target.name() + "=" + printable(text));
    if (code == FG_OK) {
        const bool isPublished = accessWord(parameter) != "ro";
        answer.table.addRow(
            {"accepted",
             isPublished ? "now" : "now, but without effect as long as the parameter is read-only"});
        if (!isPublished) answer.addWays("writable with", "writableWith", waysToWrite(probe, place));
        return answer;
    }
    answer.row["error"] = codeAsJson(code);
    answer.table.addRow({"refused", refusalInWords(parameter, assignment.value, code)});
    const RefusalCauses found = findCauses(probe, assignment);
    addCauses(answer.row, probe.at(place), found);
    if (!found.limit.empty()) answer.table.addRow({"limit", found.limit});
    if (found.isTried) answer.addWays("accepted with", "acceptedWith", found.acceptedWith);
    if (found.nearest) answer.table.addRow({"nearest", exactValueWithUnit(probe.at(place), *found.nearest)});
    return answer;
}

WhyReport whyReadOnly(Probe& probe, const Target& target) {
    WhyReport answer;
    const std::size_t place = probe.placeOf(*target.parameter);
    const ParameterState facts = probe.facts(place);
    const std::string access = accessWord(probe.at(place));
    answer.row = {{"name", target.name()}, {"access", access}, {"writable", isWritable(facts.access)}};
    answer.table.addSubject(target.name());
    const ReadResult now = target.elements ? readValue(probe.session().instance(), target)
                                           : ReadResult{.error = facts.error, .value = facts.value};
    if (now.error == FG_OK) {
        answer.table.addRow({"now", valueWithUnit(probe.at(place), now.value)});
        addValue(answer.row, target, now.value);
    }
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
    answer.table.addRow(
        {access, "now; a value can be set all the same, and takes effect when it is writable"});
    answer.addWays("writable with", "writableWith", waysToWrite(probe, place));
    return answer;
}

} // namespace

json whyJob(ScratchSession& session, const json& arguments) {
    layOutAsAsked(arguments);
    Report report;
    auto& rows = report.document["answers"] = ordered_json::array();
    startFrom(session, arguments.at("with").get<Words>());
    Probe probe(session);
    const auto words = arguments.at("words").get<Words>();
    for (const std::string& word : words) {
        session.tellProgress(rows.size(), words.size());
        const bool isAssignment = word.find('=') != std::string::npos;
        WhyReport answer;
        if (isAssignment) {
            const Assignment assignment = parseAssignments(session.parameters(), {word}).front();
            answer = whyRefused(probe, assignment);
        } else {
            answer = whyReadOnly(probe, findTarget(session.parameters(), word));
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
    .examples = {{"why FG_WIDTH=20000", "why this value is refused"},
                 {"why FG_LINE_DOWNSCALE", "why it cannot be written"}},
    .fewest = 1,
    .most = -1,
    .run = explainParameters,
    .scratch = Context::Scratch::wanted,
    .showsValues = true,
    .takesWithToScratch = true,
};

} // namespace appletctl
