#include "appletctl/applet/access_log.h"
#include "appletctl/applet/assignments.h"
#include "appletctl/base/text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/change/order.h"
#include "appletctl/commands/change/why.h"
#include "appletctl/commands/jobs.h"
#include "appletctl/commands/signals/trace.h"
#include "appletctl/scratch/DesignSnapshot.h"
#include "appletctl/scratch/reports.h"

#include "vexo/fg_errors.h"

#include <set>

namespace appletctl {
namespace {

using nlohmann::ordered_json;

/** Reads every parameter back and tells what is otherwise than it was set. */
void verifyValues(Context& context, const Words& words, Report& report, ordered_json& rows) {
    for (const Assignment& assignment : parseAssignments(context.parameters(), words)) {
        const Target& target = assignment.target;
        const ReadResult reading = readValue(context.instance(), target);
        if (reading.error == FG_OK && reading.value == assignment.value) continue;
        const std::string held =
            reading.error == FG_OK ? valueText(*target.parameter, reading.value) : codeInWords(reading.error);
        const std::string wanted = valueText(*target.parameter, assignment.value);
        report.problems.push_back(target.name() + " was set to " + wanted + " and reads back " + held);
        rows.push_back({{"name", target.name()}, {"expected", wanted}, {"held", held}});
    }
}

/** Compares the design with what the scratch board holds after the same assignments. */
void verifyDesign(Context& context, const json& expected, Report& report, ordered_json& rows) {
    const ParameterList design(context.instance(), ParameterList::Scope::design);
    for (const Parameter& parameter : design.all()) {
        const std::string name = parameter.name.substr(designPrefix.size());
        const auto wanted = expected.find(name);
        if (wanted == expected.end()) continue;
        const ReadResult reading = readValue(context.instance(), {&parameter});
        const std::string held =
            reading.error == FG_OK ? designNumberText(reading.value) : codeInWords(reading.error);
        if (held == *wanted) continue;
        report.problems.push_back("the design holds " + held + " in " + name + ", not " +
                                  wanted->get<std::string>());
        rows.push_back({{"name", name}, {"expected", *wanted}, {"held", held}});
    }
}

void verify(Context& context, const Words& words, const json& expected, Report& report) {
    auto& rows = report.document["unverified"] = ordered_json::array();
    verifyValues(context, words, report, rows);
    if (!context.options().offline) verifyDesign(context, expected, report, rows);
    if (!rows.empty()) report.exitCode = exitRefused;
    if (rows.empty() && report.exitCode == exitDone)
        report.text +=
            "Verified: all values read back" +
            std::string(context.options().offline ? ".\n" : ", and the design holds what it should.\n");
}

} // namespace

json expectJob(ScratchSession& session, const json& arguments) {
    applyAssignments(session.instance(), session.parameters(), arguments.at("assignments").get<Words>());
    std::set<std::string> written;
    for (const std::string& line : takeWrites(session.instance()))
        written.insert(writtenParameter(line));
    json expected = json::object();
    const DesignSnapshot picture(session);
    for (const auto& [name, text] : picture.numbers())
        if (written.contains(name)) expected[name] = text;
    return expected;
}

namespace {

struct SetOptions {
    bool anyOrder = false; /**< --any-order */
    bool verify = false;   /**< --verify */
};

void addSetOptions(CLI::App& command, Options& options) {
    auto& own = options.own<SetOptions>();
    command.add_flag("--any-order", own.anyOrder, "Find an order in which all pass, and set in it");
    command.add_flag("--verify", own.verify, "Read back, from the design as well");
}

Report setParameters(Context& context, const Words& asked) {
    const Options& options = context.options();
    const auto& own = options.of<SetOptions>();
    Report report;
    Words words = asked;
    parseAssignments(context.parameters(), words); // a misspelt one stops all
    if (own.anyOrder) {
        Ordering ordering = askOrder(context, words);
        if (!ordering.isComplete) return ordering.report;
        words = ordering.words;
        report = ordering.report;
    }
    json expected;
    if (own.verify) expected = context.scratch().ask("expect", {{"assignments", words}});
    AssignmentHooks hooks;
    hooks.suggestion = [&](const Assignment& assignment, ordered_json& row) {
        return askSuggestion(context, assignment, row);
    };
    if (options.trace) hooks.takeWrites = [&] { return writesOf(context.takeAccesses()); };
    append(report, applyAssignments(context.instance(), context.parameters(), words, hooks));
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
    .fewest = 1,
    .most = -1,
    .run = setParameters,
    .scratch = Context::Scratch::wanted,
    .addOptions = addSetOptions,
    .showsWrites = true,
};

} // namespace appletctl
