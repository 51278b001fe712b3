// The sources of each output, analyzer and event, and the inputs of the triggers and the encoder. The
// design parameters for a source and a polarity, and their values, are found with the applet itself:
// a scratch board gets the same values.

#include "applet_tools/answers/routes.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/refusal.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/assignment_report.h"
#include "appletctl/commands/shared_options.h"

#include <unistd.h>

#include <algorithm>
#include <optional>
#include <span>
#include <type_traits>

namespace appletctl {
namespace {

/** A pair of parameters, such as FG_TRIGGERCAMERA_SOURCE and FG_TRIGGERCAMERA_POLARITY. */
struct Route {
    std::string output; // "FG_TRIGGERCAMERA"
    Target source;
    Target polarity;
};

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

std::vector<Route> routesOf(const ParameterList& parameters) {
    constexpr std::string_view suffix = "_SOURCE";
    std::vector<Route> routes;
    for (const Parameter& parameter : parameters.all()) {
        if (!parameter.name.ends_with(suffix)) continue;
        const std::string output = parameter.name.substr(0, parameter.name.size() - suffix.size());
        const auto polarity = std::ranges::find(parameters.all(), output + "_POLARITY", &Parameter::name);
        if (polarity != parameters.all().end()) routes.push_back({output, {&parameter}, {&*polarity}});
    }
    return routes;
}

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

/** A route. */
struct RouteState {
    std::string output, source, polarity;
    nlohmann::ordered_json sourceJson, polarityJson;
    std::optional<BoardRoute> board; // none offline

    bool disagrees() const { return board && !board->agrees(); }
};

RouteState stateOf(Instance& instance, const Route& route) {
    const Value source = valueOf(instance, route.source), polarity = valueOf(instance, route.polarity);
    return {.output = route.output,
            .source = valueText(*route.source.parameter, source),
            .polarity = valueText(*route.polarity.parameter, polarity),
            .sourceJson = valueAsJson(route.source, source),
            .polarityJson = valueAsJson(route.polarity, polarity),
            .board = std::nullopt};
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

/** `expected` is the value that the applet writes for the source of each row; empty offline. */
std::vector<InputState> inputsOf(Context& context, const ParameterList* design,
                                 std::span<const DesignWrites> expected) {
    Instance& instance = context.instance();
    const auto addTo = [&](const char* name, std::string& text, nlohmann::ordered_json& value) {
        if (name == nullptr) return;
        const Target target{&context.parameters().find(name)};
        const Value now = valueOf(instance, target);
        text = valueText(*target.parameter, now);
        value = valueAsJson(target, now);
    };
    std::vector<InputState> inputs;
    for (const InputRow& row : inputRows) {
        InputState state{.listener = row.listener,
                         .source = "-",
                         .polarity = "-",
                         .sourceValue = nullptr,
                         .polarityValue = nullptr,
                         .isInUse = accessWord(context.parameters().find(row.source)) != "ro",
                         .values = {}};
        addTo(row.source, state.source, state.sourceValue);
        addTo(row.polarity, state.polarity, state.polarityValue);
        if (design != nullptr)
            for (const DesignWrite& value : expected[inputs.size()])
                state.values.push_back(compare(instance, *design, value));
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

Table tableOf(const std::vector<InputState>& inputs) {
    Table table;
    table.setTitles({"FED BY AN INPUT", "SOURCE", "POLARITY", "IN USE", "BOARD: SELECT", "AGREES"});
    for (const InputState& input : inputs)
        table.addRow({input.listener, input.source, input.polarity, input.isInUse ? "yes" : "no",
                      input.selectText(), input.agreesText()});
    return table;
}

void addInputs(const std::vector<InputState>& inputs, Report& report) {
    auto& rows = report.document["inputs"] = nlohmann::ordered_json::array();
    for (const InputState& input : inputs) {
        rows.push_back(asJson(input));
        if (!input.disagrees()) continue;
        report.problems.push_back(
            std::string("the board does not hold what the applet writes for the input of the ") +
            input.listener);
        report.exitCode = exitRefused;
    }
}

Report showRoutes(Context& context, const Words& assignments) {
    Instance& instance = context.instance();
    const ParameterList& parameters = context.parameters();
    Report report = applyLive(context, assignments);
    if (report.exitCode != exitDone) return report;
    const std::vector<Route> routes = routesOf(parameters);
    // Offline there is no board to compare with.
    const bool isOnBoard = !context.options().offline;
    std::vector<std::vector<Target>> groups;
    groups.reserve(routes.size() + std::size(inputRows));
    for (const Route& route : routes)
        groups.push_back(std::vector{route.source, route.polarity});
    for (const InputRow& row : inputRows)
        groups.push_back(std::vector{Target{&parameters.find(row.source)}});
    const auto expected = isOnBoard ? askWrites(context, groups) : std::vector<DesignWrites>();
    const auto ofInputs = std::span(expected).last(isOnBoard ? std::size(inputRows) : 0);
    std::optional<ParameterList> design;
    if (isOnBoard) design.emplace(instance, ParameterList::Scope::design);

    auto& rows = report.document["routes"] = nlohmann::ordered_json::array();
    Table table;
    table.setTitles({"OUTPUT", "SOURCE", "POLARITY", "BOARD: SELECT", "INVERT", "AGREES"});
    table.setDispensable({"INVERT", "BOARD: SELECT"});
    std::vector<RouteState> states;
    for (std::size_t i = 0; i < routes.size(); ++i) {
        RouteState& state = states.emplace_back(stateOf(instance, routes[i]));
        if (isOnBoard && expected[i].size() != 2)
            throw Failure(state.output + ": the applet wrote " + numberText(expected[i].size()) +
                          " parameters of the design, not a selection and an inversion");
        if (isOnBoard)
            state.board = {compare(instance, *design, expected[i][0]),
                           compare(instance, *design, expected[i][1])};
        table.addRow(asCells(state));
        rows.push_back(asJson(state));
        if (!state.disagrees()) continue;
        report.problems.push_back("the board does not hold what the applet writes for " + state.output);
        report.exitCode = exitRefused;
    }
    const std::vector<InputState> inputs = inputsOf(context, design ? &*design : nullptr, ofInputs);
    addInputs(inputs, report);
    if (context.options().of<DotOption>().isWanted) {
        report.text = asDot(inputs, states);
        report.isVerbatim = true;
        report.document["dot"] = report.text;
        return report;
    }
    const Style style = Style::forStream(STDOUT_FILENO);
    report.text +=
        (report.text.empty() ? "" : "\n") + table.render(style) + "\n" + tableOf(inputs).render(style);
    return report;
}

} // namespace

extern const Command routeCommand;
const Command routeCommand = {
    .name = "route",
    .help = "Show what each output, analyzer and event listens to, and what the board holds",
    .argument = "NAME=VALUE",
    .argumentHelp = "Assignments to carry out before",
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
