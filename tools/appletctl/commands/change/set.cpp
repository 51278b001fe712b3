#include "applet_tools/answers/dependencies.h"
#include "applet_tools/answers/expectation.h"
#include "applet_tools/answers/order.h"
#include "applet_tools/answers/why.h"
#include "applet_tools/applet/access_log.h"
#include "applet_tools/applet/assignments.h"
#include "applet_tools/applet/files/LutTables.h"
#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/probe/refusal.h"
#include "appletctl/base/report_text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/assignment_report.h"
#include "appletctl/commands/reports.h"

#include <CLI/CLI.hpp>

#include "vexo/fg_errors.h"

#include <algorithm>
#include <map>
#include <set>

namespace appletctl {
namespace {

using nlohmann::ordered_json;

/** True if one of the later assignments sets the same parameter, or one of the same elements. */
bool isSetLater(const std::vector<Assignment>& assignments, std::size_t index) {
    const Target& own = assignments[index].target;
    return std::any_of(assignments.begin() + static_cast<std::ptrdiff_t>(index) + 1, assignments.end(),
                       [&](const Assignment& later) {
                           if (later.target.parameter != own.parameter) return false;
                           const auto &a = own.elements, &b = later.target.elements;
                           return !a || !b || (a->first <= b->last && b->first <= a->last);
                       });
}

/** Reads every parameter back and reports differences. `taken` holds each parameter's reading on the scratch
 *  board directly after its set; it differs from the requested value if the hardware has coarser steps. */
void verifyValues(Context& context, const Words& words, const json& taken, Report& report,
                  ordered_json& rows) {
    const std::vector<Assignment> assignments = parseAssignments(context.parameters(), words);
    for (std::size_t i = 0; i < assignments.size(); ++i) {
        const Assignment& assignment = assignments[i];
        const Target& target = assignment.target;
        const ReadResult reading = context.read(target);
        const json expected = i < taken.size() ? taken[i] : json();
        if (!reading.isMeasured || isSetLater(assignments, i)) continue;
        if (reading.error == FG_OK && reading.value == assignment.value) continue;
        const bool isRounded = !countingOf(*target.parameter).empty() && !expected.is_null();
        if (reading.error == FG_OK && isRounded && reading.value == fromMessage(target, expected)) continue;
        const std::string held =
            reading.error == FG_OK ? valueText(*target.parameter, reading.value) : codeInWords(reading.error);
        const std::string wanted = valueText(*target.parameter, assignment.value);
        report.problems.push_back(target.name() + " was set to " + wanted + " and reads back " + held);
        ordered_json row = {{"name", target.name()}, {"expected", requestedAsJson(assignment)}};
        row["held"] = reading.error == FG_OK ? valueAsJson(target, reading.value)
                                             : ordered_json{{"error", codeAsJson(reading.error)}};
        rows.push_back(std::move(row));
    }
}

/** Compares the design with that of the scratch board after the same assignments. */
void verifyDesign(Context& context, const json& expected, Report& report, ordered_json& rows) {
    const ParameterList design(context.instance(), ParameterList::Scope::design);
    for (const Parameter& parameter : design.all()) {
        const std::string name = parameter.name.substr(designPrefix.size());
        const auto wanted = expected.find(name);
        if (wanted == expected.end()) continue;
        const ReadResult reading = readValue(context.instance(), {&parameter});
        const json held = numberAsJson(reading.value);
        if (reading.error == FG_OK && held == *wanted) continue;
        report.problems.push_back("the design holds " +
                                  (reading.error == FG_OK ? held.dump() : codeInWords(reading.error)) +
                                  " in " + name + ", not " + wanted->dump());
        ordered_json row = {{"name", name}, {"expected", {{"value", *wanted}}}};
        row["held"] = reading.error == FG_OK ? ordered_json{{"value", held}}
                                             : ordered_json{{"error", codeAsJson(reading.error)}};
        rows.push_back(std::move(row));
    }
}

/** The same for the arrays of the design, which are not published. */
void verifyTables(Context& context, const json& expected, Report& report, ordered_json& rows) {
    for (const auto& [name, held] : designTables(context.instance(), context.parameters())) {
        const auto wanted = expected.find(name);
        if (wanted == expected.end()) continue;
        const std::size_t changed = differences(held, wanted->get<Elements>());
        if (changed == 0) continue;
        report.problems.push_back("the design holds " + numberText(changed) + " other elements in " + name);
        rows.push_back({{"name", name},
                        {"expected", {{"elements", held.size()}}},
                        {"held", {{"elements", held.size()}}},
                        {"changed", changed}});
    }
}

void verify(Context& context, const Words& words, const Expectation& expected, Report& report) {
    auto& rows = report.document["unverified"] = ordered_json::array();
    verifyValues(context, words, expected.taken, report, rows);
    if (!context.options().offline) {
        verifyDesign(context, expected.design, report, rows);
        verifyTables(context, expected.design, report, rows);
    }
    if (!rows.empty()) report.exitCode = exitRefused;
    if (rows.empty() && report.exitCode == exitDone)
        report.text +=
            forPerson(context.options().offline
                          ? "Verified: all values that need no board read back.\n"
                          : "Verified: all values read back, and the design holds what it should.\n");
}

bool isReadOnly(const Parameter& parameter) { return accessWord(parameter) == "ro"; }

using MovesByName = std::map<std::string, std::vector<Movement>>;

/** What the assignments to read-only parameters will move. */
MovesByName movesOfReadOnly(Context& context, const Words& words) {
    Words names;
    for (const auto& [target, text, value] : parseAssignments(context.parameters(), words)) {
        const std::string& name = target.parameter->name;
        const bool isTried = isReadOnly(*target.parameter) && isNumber(value);
        if (isTried && std::ranges::find(names, name) == names.end()) names.push_back(name);
    }
    return names.empty() ? MovesByName{} : askMoves(context, names, words);
}

/** The changes that make a read-only parameter writable. */
std::string untilWritable(const AccessAnswer& access) {
    if (access.changedWith.empty())
        return ", and no change of another parameter that was tried makes it writable";
    std::string text = " until " + join(access.changedWith, " or ");
    if (access.missingFile.empty()) return text;
    return text + ", which is refused as long as " + shownFile(access.missingFile) +
           " is not a file that can be opened for reading";
}

/** For a read-only parameter: what a set has changed nevertheless. */
std::string waitingText(const AccessAnswer& access, const std::vector<Movement>& moves) {
    Words moved;
    for (const Movement& movement : moves)
        moved.push_back(inWords(movement));
    const std::string effect =
        moves.empty() ? " has no effect " + std::string(access.changedWith.empty() ? "now" : "yet")
                      : " has moved " + join(moved, ", ") + " already";
    return access.subject + effect + (moves.empty() ? ": it" : ", although it") + " is read-only" +
           untilWritable(access) + '\n';
}

/** Reports parameters that were set but are read-only at the end. */
void addWaiting(Context& context, const MovesByName& moves, Report& report) {
    Words names;
    for (const auto& row : report.document["assignments"]) {
        const auto name = row.at("name").get<std::string>();
        const bool isWaiting = isReadOnly(context.parameters().find(name)) && !row.contains("error");
        if (isWaiting && std::ranges::find(names, name) == names.end()) names.push_back(name);
    }
    if (names.empty()) return;
    auto& rows = report.document["waiting"] = ordered_json::array();
    for (const WhyAnswer& answer : askWhy(context, names, {})) {
        auto access = std::get<AccessAnswer>(answer);
        if (access.isWritable) access.changedWith.clear(); // the scratch board differs
        const auto found = moves.find(access.parameter);
        const auto moved = found != moves.end() ? found->second : std::vector<Movement>{};
        auto& row = rows.emplace_back(nlohmann::ordered_json{
            {"name", access.subject}, {"writableWith", access.changedWith}, {"moves", asJson(moved)}});
        if (!access.missingFile.empty()) row["missingFile"] = toUtf8(access.missingFile);
        report.text += forPerson(waitingText(access, moved));
    }
}

Report reportOf(const Ordering& ordering) {
    Report report;
    report.document["order"] = ordering.words;
    if (ordering.isComplete) {
        Words cells{"order"};
        for (const std::string& word : ordering.words)
            cells.push_back(printable(word));
        report.text = lineOf(cells, "order: " + printable(join(ordering.words, " ")));
        return report;
    }
    report.problems = ordering.problems;
    report.problems.push_back("nothing was set");
    report.document["problems"] = report.problems;
    report.exitCode = exitRefused;
    return report;
}

struct SetOptions {
    bool anyOrder = false; /**< --any-order */
    bool verify = false;   /**< --verify */
};

void addSetOptions(CLI::App& command, Options& options) {
    auto& own = options.own<SetOptions>();
    command.add_flag("--any-order", own.anyOrder, "Find an order in which all are accepted");
    command.add_flag("--verify", own.verify, "Read back, from the design as well");
}

Report setParameters(Context& context, const Words& asked) {
    const Options& options = context.options();
    const auto& own = options.of<SetOptions>();
    Report report;
    Words words = asked;
    parseAssignments(context.parameters(), words); // a typing error stops all
    if (own.anyOrder) {
        const Ordering ordering = askOrder(context, words);
        report = reportOf(ordering);
        if (!ordering.isComplete) return report;
        words = ordering.words;
    }
    Expectation expected;
    if (own.verify) expected = askExpectation(context, words);
    const MovesByName moves = movesOfReadOnly(context, words);
    AssignmentAdditions hooks;
    if (options.trace) hooks.takeWrites = [&] { return writesOf(context.takeAccesses()); };
    append(report, applyLive(context, words, hooks));
    addWaiting(context, moves, report);
    if (own.verify) verify(context, words, expected, report);
    return report;
}

} // namespace

extern const Command setCommand;
const Command setCommand = {
    .name = "set",
    .help = "Set parameters in order; stops at the first refusal",
    .argument = "NAME=VALUE",
    .argumentHelp = "Numbers decimal or 0x.., entries of enumerations by name or number",
    .examples = {{"set FG_WIDTH=2048 FG_XOFFSET=64", "two values, in this order"},
                 {"set --any-order FG_VANTAGEPOINT=Top-Right FG_SENSORWIDTH=4096",
                  "in an order in which both pass"},
                 {"set --verify FG_LINEPERIODE=100", "and compare with what the design holds"}},
    .fewest = 1,
    .most = -1,
    .run = setParameters,
    .scratch = Context::Scratch::wanted,
    .addOptions = addSetOptions,
    .sets = Command::Sets::always,
    .showsWrites = true,
};

} // namespace appletctl
