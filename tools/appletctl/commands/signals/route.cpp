// The sources of each output, analyzer and event, and the inputs of the triggers and the encoder. The
// design parameters for a source and a polarity, and their values, are found with the applet itself:
// a scratch board gets the same values.

#include "applet_tools/answers/routes.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/probe/refusal.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/terminal.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/assignment_report.h"
#include "appletctl/commands/shared_options.h"

#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <type_traits>
#include <utility>

namespace appletctl {
namespace {

/** A parameter of the design. */
struct DesignValue {
    std::string parameter;
    std::int64_t expected; // what the applet writes
    std::int64_t held;     // what is on the board

    bool agrees() const { return held == expected; }
};

/** The two parameters of the design that make up a route. */
struct BoardRoute {
    DesignValue select;
    DesignValue invert;

    bool agrees() const { return select.agrees() && invert.agrees(); }
};

/** A function that uses an input, and the parameters that select the input. */
struct InputRow {
    const char* listener;
    const char* source;
    const char* polarity; // null if it has none
};

constexpr InputRow inputRows[] = {
    {"line trigger, encoder A", "FG_LINETRIGGERINSRC", "FG_LINETRIGGERINPOLARITY"},
    {"encoder B", "FG_SHAFTENCODERINSRC", nullptr},
    {"image trigger", "FG_IMGTRIGGERINSRC", "FG_IMGTRIGGERINPOLARITY"},
};

/** The board's design, and what the applet writes to it for the present values. */
struct Comparison {
    ParameterList design;
    std::vector<DesignWrites> ofRoutes;
    std::vector<DesignWrites> ofInputs; // for the source of each row
};

/** Empty offline: there is no board to compare with. */
std::optional<Comparison> comparisonFor(Context& context, const std::vector<SignalRoute>& routes) {
    if (context.options().offline) return std::nullopt;
    std::vector<std::vector<Target>> groups;
    groups.reserve(routes.size() + std::size(inputRows));
    for (const SignalRoute& route : routes)
        groups.push_back({route.source, route.polarity});
    for (const InputRow& row : inputRows)
        groups.push_back({Target{&context.parameters().find(row.source)}});
    std::vector<DesignWrites> ofRoutes = askWrites(context, groups);
    const auto firstInput = ofRoutes.end() - std::ssize(inputRows);
    std::vector<DesignWrites> ofInputs(firstInput, ofRoutes.end());
    ofRoutes.erase(firstInput, ofRoutes.end());
    return Comparison{ParameterList(context.instance(), ParameterList::Scope::design), std::move(ofRoutes),
                      std::move(ofInputs)};
}

/** The live board's value of one of them. */
DesignValue compare(Instance& instance, const ParameterList& design, const DesignWrite& write) {
    DesignValue value{write.parameter, write.value, 0};
    const Parameter& parameter = design.find(std::string(designPrefix) + value.parameter);
    std::visit(
        [&](const auto& held) {
            if constexpr (std::is_integral_v<std::decay_t<decltype(held)>>)
                value.held = static_cast<std::int64_t>(held);
        },
        valueOf(instance, {&parameter}));
    return value;
}

/** A route with its present values, as text and for documents. */
struct RouteState {
    std::string output, source, polarity;
    nlohmann::ordered_json sourceJson, polarityJson;
    std::optional<BoardRoute> board; // none offline

    bool disagrees() const { return board && !board->agrees(); }
};

RouteState stateOf(Instance& instance, const SignalRoute& route) {
    const Value source = valueOf(instance, route.source), polarity = valueOf(instance, route.polarity);
    return {.output = route.output,
            .source = valueText(*route.source.parameter, source),
            .polarity = valueText(*route.polarity.parameter, polarity),
            .sourceJson = valueAsJson(route.source, source),
            .polarityJson = valueAsJson(route.polarity, polarity),
            .board = std::nullopt};
}

BoardRoute boardRouteOf(Instance& instance, const ParameterList& design, const std::string& output,
                        const DesignWrites& expected) {
    if (expected.size() != 2)
        throw Failure(output + ": the applet wrote " + numberText(expected.size()) +
                      " parameters of the design, not a selection and an inversion");
    return {compare(instance, design, expected[0]), compare(instance, design, expected[1])};
}

std::vector<RouteState> statesOf(Instance& instance, const std::vector<SignalRoute>& routes,
                                 const std::optional<Comparison>& comparison) {
    std::vector<RouteState> states;
    for (const SignalRoute& route : routes) {
        RouteState& state = states.emplace_back(stateOf(instance, route));
        if (comparison)
            state.board = boardRouteOf(instance, comparison->design, state.output,
                                       comparison->ofRoutes[states.size() - 1]);
    }
    return states;
}

/** "3"; "7, not 3" if the applet writes 3. */
std::string heldText(const DesignValue& value) {
    const std::string held = numberText(value.held);
    return value.agrees() ? held : held + ", not " + numberText(value.expected);
}

std::vector<std::string> asCells(const RouteState& state) {
    if (!state.board) return {state.output, state.source, state.polarity, "-", "-", "-"};
    return {state.output,
            state.source,
            state.polarity,
            heldText(state.board->select),
            heldText(state.board->invert),
            state.disagrees() ? "no" : "yes"};
}

nlohmann::ordered_json asJson(const DesignValue& value) {
    return {{"parameter", value.parameter}, {"board", value.held}, {"expected", value.expected}};
}

nlohmann::ordered_json asJson(const RouteState& state) {
    nlohmann::ordered_json row = {
        {"output", state.output}, {"source", state.sourceJson}, {"polarity", state.polarityJson},
        {"select", nullptr},      {"invert", nullptr},          {"agrees", nullptr}};
    if (!state.board) return row;
    row["select"] = asJson(state.board->select);
    row["invert"] = asJson(state.board->invert);
    row["agrees"] = state.board->agrees();
    return row;
}

/** An input. */
struct InputState {
    const char* listener;
    std::string source, polarity;
    nlohmann::ordered_json sourceValue, polarityValue; // the latter null if there is none
    bool isInUse;                                      // the mode uses the input: its source is writable
    std::vector<DesignValue> values;                   // none offline

    bool disagrees() const { return !std::ranges::all_of(values, &DesignValue::agrees); }
    /** The parameter that selects the input comes last. */
    std::string selectText() const { return values.empty() ? "-" : heldText(values.back()); }
    std::string agreesText() const { return values.empty() ? "-" : disagrees() ? "no" : "yes"; }
};

nlohmann::ordered_json asJson(const InputState& state) {
    nlohmann::ordered_json row = {
        {"input", state.listener}, {"source", state.sourceValue}, {"polarity", state.polarityValue},
        {"inUse", state.isInUse},  {"select", nullptr},           {"agrees", nullptr}};
    if (state.values.empty()) return row;
    row["select"] = asJson(state.values.back());
    row["agrees"] = !state.disagrees();
    return row;
}

/** One side of an input. */
struct NamedValue {
    std::string text = "-";
    nlohmann::ordered_json value = nullptr;
};

/** `name` is null for an input without this side. */
NamedValue namedValue(Context& context, const char* name) {
    if (name == nullptr) return {};
    const Target target{&context.parameters().find(name)};
    const Value now = valueOf(context.instance(), target);
    return {valueText(*target.parameter, now), valueAsJson(target, now)};
}

std::vector<InputState> inputsOf(Context& context, const std::optional<Comparison>& comparison) {
    std::vector<InputState> inputs;
    for (const InputRow& row : inputRows) {
        const NamedValue source = namedValue(context, row.source),
                         polarity = namedValue(context, row.polarity);
        InputState state{.listener = row.listener,
                         .source = source.text,
                         .polarity = polarity.text,
                         .sourceValue = source.value,
                         .polarityValue = polarity.value,
                         .isInUse = accessWord(context.parameters().find(row.source)) != "ro",
                         .values = {}};
        if (comparison)
            for (const DesignWrite& write : comparison->ofInputs[inputs.size()])
                state.values.push_back(compare(context.instance(), comparison->design, write));
        inputs.push_back(std::move(state));
    }
    return inputs;
}

/** The routes as a graph from sources to outputs and from inputs to their users: red if the board
 *  differs, dashed if the mode does not use the input. */
std::string asDot(const std::vector<InputState>& inputs, const std::vector<RouteState>& states) {
    std::string text = "digraph routes {\n  rankdir=LR;\n  node [shape=box];\n";
    for (const InputState& input : inputs) {
        Words attributes{"label=" + inQuotes(input.polarity == "-" ? "" : input.polarity)};
        if (!input.isInUse) attributes.emplace_back("style=dashed");
        if (input.disagrees()) attributes.emplace_back("color=red");
        text += "  " + inQuotes(input.source) + " -> " + inQuotes(input.listener) + " [" +
                join(attributes, ", ") + "];\n";
        text += "  " + inQuotes(input.listener) + " [shape=ellipse];\n";
    }
    for (const RouteState& state : states) {
        Words attributes;
        if (state.polarity == "FG_LOW") attributes.emplace_back("label=\"inverted\"");
        if (state.disagrees()) attributes.emplace_back("color=red");
        text += "  " + inQuotes(state.source) + " -> " + inQuotes(state.output) + " [" +
                join(attributes, ", ") + "];\n";
    }
    return text + "}\n";
}

Table tableOf(const std::vector<RouteState>& states) {
    Table table;
    table.setTitles({"OUTPUT", "SOURCE", "POLARITY", "BOARD: SELECT", "INVERT", "AGREES"});
    table.setDispensable({"INVERT", "BOARD: SELECT"});
    for (const RouteState& state : states)
        table.addRow(asCells(state));
    return table;
}

Table tableOf(const std::vector<InputState>& inputs) {
    Table table;
    table.setTitles({"FED BY AN INPUT", "SOURCE", "POLARITY", "IN USE", "BOARD: SELECT", "AGREES"});
    for (const InputState& input : inputs)
        table.addRow({input.listener, input.source, input.polarity, input.isInUse ? "yes" : "no",
                      input.selectText(), input.agreesText()});
    return table;
}

void refuse(Report& report, const std::string& subject) {
    report.problems.push_back("the board does not hold what the applet writes for " + subject);
    report.exitCode = exitRefused;
}

void addRoutes(const std::vector<RouteState>& states, Report& report) {
    auto& rows = report.document["routes"] = nlohmann::ordered_json::array();
    for (const RouteState& state : states) {
        rows.push_back(asJson(state));
        if (state.disagrees()) refuse(report, state.output);
    }
}

void addInputs(const std::vector<InputState>& inputs, Report& report) {
    auto& rows = report.document["inputs"] = nlohmann::ordered_json::array();
    for (const InputState& input : inputs) {
        rows.push_back(asJson(input));
        if (input.disagrees()) refuse(report, std::string("the input of the ") + input.listener);
    }
}

void showGraph(const std::string& graph, Report& report) {
    report.text = graph;
    report.isVerbatim = true;
    report.document["dot"] = graph;
}

Report showRoutes(Context& context, const Words& assignments) {
    Report report = applyLive(context, assignments);
    if (report.exitCode != exitDone) return report;
    const std::vector<SignalRoute> routes = routesOf(context.parameters());
    const std::optional<Comparison> comparison = comparisonFor(context, routes);
    const std::vector<RouteState> states = statesOf(context.instance(), routes, comparison);
    const std::vector<InputState> inputs = inputsOf(context, comparison);
    addRoutes(states, report);
    addInputs(inputs, report);
    if (context.options().of<DotOption>().isWanted) {
        showGraph(asDot(inputs, states), report);
        return report;
    }
    const Style style = Style::forStream(STDOUT_FILENO);
    report.text += (report.text.empty() ? "" : "\n") + tableOf(states).render(style) + "\n" +
                   tableOf(inputs).render(style);
    return report;
}

} // namespace

extern const Command routeCommand;
const Command routeCommand = {
    .name = "route",
    .help = "Show the source of each output, analyzer and event, and the board's setting",
    .argument = "NAME=VALUE",
    .argumentHelp = "Assignments to execute first",
    .examples = {{"route", "which signal each output carries"},
                 {"route --dot", "as a graph, for the program dot"}},
    .most = -1,
    .run = showRoutes,
    .scratch = Context::Scratch::wanted,
    .addOptions = addDot,
    .sets = Command::Sets::assignments,
    .showsValues = true,
};

} // namespace appletctl
