#include "applet_tools/applet/ParameterState.h"

#include "applet_tools/base/errors.h"

#include "vexo/fg_errors.h"

namespace applet_tools {
namespace {

std::string limitsInWords(const Parameter& parameter, const std::optional<Limits>& limits) {
    if (!limits) return "-";
    return valueText(parameter, limits->minimum) + " to " + valueText(parameter, limits->maximum);
}

nlohmann::ordered_json limitsAsJson(const std::optional<Limits>& limits) {
    if (!limits) return nullptr;
    return {{"minimum", numberAsJson(limits->minimum)}, {"maximum", numberAsJson(limits->maximum)}};
}

nlohmann::ordered_json valueOrError(const Parameter& parameter, const ParameterState& state) {
    if (state.error == FG_OK) return valueAsJson({&parameter}, state.value);
    return {{"error", codeAsJson(state.error)}};
}

std::string valueInWords(const Parameter& parameter, const ParameterState& state) {
    return state.error == FG_OK ? valueText(parameter, state.value) : codeInWords(state.error);
}

} // namespace

ParameterState currentState(Instance& instance, const Parameter& parameter) {
    ParameterState state;
    if (parameter.effectOfReading().empty()) {
        ReadResult reading = readValue(instance, {&parameter});
        state.error = reading.error;
        state.value = std::move(reading.value);
    }
    if (parameter.record == nullptr) return state;
    state.access = parameter.record->access;
    state.limits = limitsOf(parameter);
    return state;
}

std::vector<ParameterState> statesOf(Instance& instance, const ParameterList& parameters) {
    std::vector<ParameterState> states;
    for (const Parameter& parameter : parameters.all())
        states.push_back(currentState(instance, parameter));
    return states;
}

std::vector<Move> movesBetween(const Parameter& parameter, const ParameterState& before,
                               const ParameterState& after) {
    std::vector<Move> moves;
    if (before.error != after.error || before.value != after.value)
        moves.push_back({"value", valueInWords(parameter, before), valueInWords(parameter, after),
                         valueOrError(parameter, before), valueOrError(parameter, after)});
    if (before.limits != after.limits)
        moves.push_back({"limits", limitsInWords(parameter, before.limits),
                         limitsInWords(parameter, after.limits), limitsAsJson(before.limits),
                         limitsAsJson(after.limits)});
    if (before.access != after.access) {
        const std::string from = accessWord(before.access), to = accessWord(after.access);
        moves.push_back({"access", from, to, from, to});
    }
    return moves;
}

nlohmann::ordered_json asJson(const Move& move) {
    return {{"what", move.what}, {"from", move.fromJson}, {"to", move.toJson}};
}

} // namespace applet_tools
