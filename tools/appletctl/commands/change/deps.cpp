#include "applet_tools/answers/dependencies.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/report_text.h"
#include "appletctl/base/terminal.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/reports.h"
#include "appletctl/commands/shared_options.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

namespace appletctl {
namespace {

std::string asDot(const Dependencies& found) {
    const std::string& name = found.parameter;
    std::string text = "digraph dependencies {\n  rankdir=LR;\n  \"" + name + "\" [shape=box];\n";
    const auto edge = [&](const std::string& from, const std::string& to, const std::string& label) {
        text += "  \"" + from + "\" -> \"" + to + "\" [label=\"" + label + "\"];\n";
    };
    for (const Movement& movement : found.movedBy)
        edge(movement.parameter, name, movement.move.what);
    for (const Movement& movement : found.moves)
        edge(name, movement.parameter, movement.move.what);
    for (const std::string& write : found.writes) {
        text += "  \"" + write + "\" [shape=note];\n";
        edge(name, write, "writes");
    }
    return text + "}\n";
}

void addMovements(Table& table, const char* title, const std::vector<Movement>& movements) {
    for (const auto& [parameter, with, move] : movements)
        table.addRow({title, parameter, move.what, move.from + " -> " + move.to + " with " + with});
}

std::string asText(const Dependencies& found) {
    Table table;
    table.addSubject(found.parameter);
    addMovements(table, "moves", found.moves);
    if (found.moves.empty() && found.isTried) table.addRow({"moves", "nothing that was seen"});
    addMovements(table, "moved by", found.movedBy);
    if (found.movedBy.empty()) table.addRow({"moved by", "no other parameter that was tried"});
    for (const std::string& write : found.writes)
        table.addRow({"writes", write});
    if (!found.isTried) table.addRow({"moves", "not known: no value of it is tried"});
    return table.render(Style::forStream(STDOUT_FILENO));
}

void addDepsOptions(CLI::App& command, Options& options) { addDot(command, options); }

Report showDependencies(Context& context, const Words& name) {
    const Options& options = context.options();
    const Dependencies found = askDependencies(context, name.front(), options.of<WithOption>().assignments);
    Report report;
    report.document = asJson(found);
    if (!options.of<DotOption>().isWanted) {
        report.text = asText(found);
        if (name.front().find('[') != std::string::npos)
            report.text +=
                forPerson(inQuotedWord(name.front()) + " is an element: this is the answer for all of " +
                          found.parameter + ".\n");
        addAssumed(report, context.assumed());
        return report;
    }
    report.text = asDot(found);
    report.isVerbatim = true;
    report.document["dot"] = report.text;
    if (context.assumed().empty()) return report;
    report.document["assumed"] = context.assumed();
    report.text += "// assumed: " + join(context.assumed(), ", ") + "\n";
    return report;
}

} // namespace

extern const Command depsCommand;
const Command depsCommand = {
    .name = "deps",
    .help = "Show which parameters depend on a parameter, and on which it depends",
    .argument = "NAME",
    .argumentHelp = "Parameter",
    .examples = {{"deps FG_WIDTH", "what it moves and what moves it"},
                 {"deps FG_WIDTH --dot", "as a graph, for the program dot"}},
    .fewest = 1,
    .most = 1,
    .run = showDependencies,
    .scratch = Context::Scratch::wanted,
    .addOptions = addDepsOptions,
    .showsValues = true,
    .takesWithToScratch = true,
};

} // namespace appletctl
