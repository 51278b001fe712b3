// What each output, analyzer and event listens to. Which parameters of the design belong to a pair of source
// and polarity, and what they should hold, is asked of the applet itself: a scratch board gets the same pair.

#include "appletctl/applet/access_log.h"
#include "appletctl/applet/assignments.h"
#include "appletctl/base/text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/jobs.h"
#include "appletctl/commands/shared_options.h"

#include <unistd.h>

#include <algorithm>
#include <optional>
#include <sstream>
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

/** What the applet writes for the pairs: [[{"parameter", "expected"} of the selection, the same of the inversion],
 *  ...]. */
json expectedRoutes(ScratchBoard& scratch, Instance& instance, const std::vector<Route>& routes) {
    json pairs = json::array();
    for (const Route& route : routes)
        for (const Target& target : {route.source, route.polarity})
            pairs.push_back(
                {{"name", target.parameter->name}, {"value", asMessage(valueOf(instance, target))}});
    return scratch.ask("routes", pairs);
}

/** What the live board holds for one of them. */
DesignValue compare(Instance& instance, const ParameterList& design, const json& expected) {
    DesignValue value{expected.at("parameter").get<std::string>(),
                      expected.at("expected").get<std::int64_t>(), 0};
    const Parameter& parameter = design.find(std::string(designPrefix) + value.parameter);
    std::visit(
        [&](const auto& held) {
            if constexpr (std::is_integral_v<std::decay_t<decltype(held)>>)
                value.held = static_cast<std::int64_t>(held);
        },
        valueOf(instance, {&parameter}));
    return value;
}

/** What is known of a route. */
struct RouteState {
    std::string output, source, polarity;
    std::optional<BoardRoute> board; // none offline

    bool disagrees() const { return board && !board->agrees(); }
};

RouteState stateOf(Instance& instance, const Route& route) {
    const auto text = [&](const Target& target) {
        return valueText(*target.parameter, valueOf(instance, target));
    };
    return {.output = route.output,
            .source = text(route.source),
            .polarity = text(route.polarity),
            .board = std::nullopt};
}

/** "3"; "7, not 3" where the applet writes 3. */
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
    nlohmann::ordered_json row = {{"output", state.output},     {"source", state.source},
                                  {"polarity", state.polarity}, {"select", nullptr},
                                  {"invert", nullptr},          {"agrees", nullptr}};
    if (!state.board) return row;
    row["select"] = asJson(state.board->select);
    row["invert"] = asJson(state.board->invert);
    row["agrees"] = state.board->agrees();
    return row;
}

void setOnScratch(ScratchSession& session, const json& wanted) {
    const Target target = session.target(wanted.at("name").get<std::string>());
    const int code = writeValue(session.instance(), target, fromMessage(target, wanted.at("value")));
    if (code != FG_OK)
        throw Failure(target.name() + " cannot be set on a scratch board: " + codeInWords(code));
}

/** Reads "set Device1_... u32 3". */
json writtenValue(const std::string& write) {
    std::string kind, parameter, width;
    std::int64_t expected = 0;
    std::istringstream(write) >> kind >> parameter >> width >> expected;
    return {{"parameter", parameter}, {"expected", expected}};
}

/** The routes as a graph from the sources to the outputs, where the board differs in red. */
std::string asDot(const std::vector<RouteState>& states) {
    std::string text = "digraph routes {\n  rankdir=LR;\n  node [shape=box];\n";
    for (const RouteState& state : states) {
        Words attributes;
        if (state.polarity == "FG_LOW") attributes.emplace_back("label=\"inverted\"");
        if (state.disagrees()) attributes.emplace_back("color=red");
        text += "  " + inQuotes(state.source) + " -> " + inQuotes(state.output) + " [" +
                join(attributes, ", ") + "];\n";
    }
    return text + "}\n";
}

} // namespace

json routesJob(ScratchSession& session, const json& pairs) {
    json routes = json::array();
    for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
        setOnScratch(session, pairs[i]);
        takeWrites(session.instance());
        // Either parameter writes both of the design's, so the second set writes the pair as it is to be.
        setOnScratch(session, pairs[i + 1]);
        const std::vector<std::string> writes = takeWrites(session.instance());
        if (writes.size() != 2)
            throw Failure(pairs[i]["name"].get<std::string>() + ": the applet wrote " +
                          numberText(writes.size()) +
                          " parameters of the design, not a selection and an inversion");
        routes.push_back({writtenValue(writes[0]), writtenValue(writes[1])});
    }
    return routes;
}

namespace {

Report showRoutes(Context& context, const Words& assignments) {
    Instance& instance = context.instance();
    const ParameterList& parameters = context.parameters();
    Report report = applyAssignments(instance, parameters, assignments);
    if (report.exitCode != exitDone) return report;
    const std::vector<Route> routes = routesOf(parameters);
    // Offline there is no board to compare with.
    const bool isOnBoard = !context.options().offline;
    const json expected = isOnBoard ? expectedRoutes(context.bareScratch(), instance, routes) : json();
    std::optional<ParameterList> design;
    if (isOnBoard) design.emplace(instance, ParameterList::Scope::design);

    auto& rows = report.document["routes"] = nlohmann::ordered_json::array();
    Table table;
    table.setTitles({"OUTPUT", "SOURCE", "POLARITY", "BOARD: SELECT", "INVERT", "AGREES"});
    std::vector<RouteState> states;
    for (std::size_t i = 0; i < routes.size(); ++i) {
        RouteState& state = states.emplace_back(stateOf(instance, routes[i]));
        if (isOnBoard)
            state.board = {compare(instance, *design, expected[i][0]),
                           compare(instance, *design, expected[i][1])};
        table.addRow(asCells(state));
        rows.push_back(asJson(state));
        if (!state.disagrees()) continue;
        report.problems.push_back("the board does not hold what the applet writes for " + state.output);
        report.exitCode = exitRefused;
    }
    if (context.options().of<DotOption>().isWanted) {
        report.text = asDot(states);
        report.document["dot"] = report.text;
        return report;
    }
    report.text += (report.text.empty() ? "" : "\n") + table.render(Style::forStream(STDOUT_FILENO));
    return report;
}

} // namespace

extern const Command routeCommand;
const Command routeCommand = {
    .name = "route",
    .help = "Show what each output, analyzer and event listens to, and what the board holds",
    .argument = "NAME=VALUE",
    .argumentHelp = "Assignments to carry out before",
    .most = -1,
    .run = showRoutes,
    .scratch = Context::Scratch::wanted,
    .addOptions = addDot,
};

} // namespace appletctl
