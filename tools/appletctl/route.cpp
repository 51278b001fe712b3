// What each output, analyzer and event listens to. Which parameters of the design belong to a pair of source
// and polarity, and what they should hold, is asked of the applet itself: a scratch board gets the same pair.

#include "appletctl/assignments.h"
#include "appletctl/text.h"
#include "appletctl/writes.h"

#include <unistd.h>

#include <algorithm>
#include <optional>
#include <sstream>

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

void setOnScratch(Instance& scratch, const Target& target, const Value& value) {
    const int code = writeValue(scratch, target, value);
    if (code != FG_OK)
        throw Failure(target.name() + " cannot be set on a scratch board: " + codeInWords(code));
}

/** Reads "set Device1_... u32 3" and looks up what the board holds. */
DesignValue compare(Instance& instance, const std::string& write) {
    DesignValue value{};
    std::string kind, width;
    std::istringstream(write) >> kind >> value.parameter >> width >> value.expected;
    if (instance.board().peek_int(instance.device(), value.parameter.c_str(), &value.held) != VBOARD_OK)
        throw Failure("the board does not tell what " + value.parameter + " holds");
    return value;
}

BoardRoute onBoard(Instance& instance, Instance& scratch, const Route& route) {
    setOnScratch(scratch, route.source, valueOf(instance, route.source));
    takeWrites(scratch);
    // Either parameter writes both of the design's, so the second set writes the pair as it is to be.
    setOnScratch(scratch, route.polarity, valueOf(instance, route.polarity));
    const std::vector<std::string> writes = takeWrites(scratch);
    if (writes.size() != 2)
        throw Failure(route.output + ": the applet wrote " + numberText(writes.size()) +
                      " parameters of the design, not a selection and an inversion");
    return {compare(instance, writes[0]), compare(instance, writes[1])};
}

/** What is known of a route. */
struct RouteState {
    std::string output, source, polarity;
    std::optional<BoardRoute> board; // none offline

    bool disagrees() const { return board && !board->agrees(); }
};

RouteState stateOf(Instance& instance, std::optional<Instance>& scratch, const Route& route) {
    const auto text = [&](const Target& target) {
        return valueText(*target.parameter, valueOf(instance, target));
    };
    RouteState state{.output = route.output,
                     .source = text(route.source),
                     .polarity = text(route.polarity),
                     .board = std::nullopt};
    if (scratch) state.board = onBoard(instance, *scratch, route);
    return state;
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

} // namespace

Report showRoutes(Context& context, const Words& assignments) {
    Instance& instance = context.instance();
    const ParameterList& parameters = context.parameters();
    Report report = carryOut(instance, parameters, assignments);
    if (report.exitCode != exitDone) return report;
    std::optional<Instance> scratch; // none offline: there is no board to compare with
    if (!context.options().offline) logWrites(scratch.emplace(context.options()));

    auto& rows = report.document["routes"] = nlohmann::ordered_json::array();
    Table table;
    table.setTitles({"OUTPUT", "SOURCE", "POLARITY", "BOARD: SELECT", "INVERT", "AGREES"});
    for (const Route& route : routesOf(parameters)) {
        const RouteState state = stateOf(instance, scratch, route);
        table.addRow(asCells(state));
        rows.push_back(asJson(state));
        if (!state.disagrees()) continue;
        report.problems.push_back("the board does not hold what the applet writes for " + state.output);
        report.exitCode = exitRefused;
    }
    report.text += (report.text.empty() ? "" : "\n") + table.render(Style::forStream(STDOUT_FILENO));
    return report;
}

} // namespace appletctl
