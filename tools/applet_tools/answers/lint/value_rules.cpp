#include "applet_tools/answers/lint/rules.h"

#include "applet_tools/applet/access_log.h"
#include "applet_tools/applet/assignments.h"
#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/applet/published_limits.h"
#include "applet_tools/base/numbers.h"

#include "vexo/fg_errors.h"
#include "vexo/fg_parameters.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace applet_tools::lint_rules {
namespace {

/** The writes of a set with this value; empty if it is refused. */
std::optional<Words> writesOf(LintState& state, const Target& target, const Value& value) {
    takeAccessLog(state.session().instance());
    if (writeValue(state.session().instance(), target, value) != FG_OK) return std::nullopt;
    return takeAccessLog(state.session().instance());
}

/** The effect of a set on the board. */
enum class Effect {
    some,
    none,
    computed, // the value depends on other settings and ignores a set
    unknown
};

Effect effectOf(LintState& state, const Parameter& parameter) {
    const Target target{&parameter};
    const Value now = state.value(parameter.name);
    const auto other =
        writesOf(state, target, fromMessage(target, state.session().defaults()[parameter.name]));
    const bool follows = state.value(parameter.name) != now;
    const auto back = writesOf(state, target, requestFor(parameter, now));
    if (!other || !back) return Effect::unknown;
    if (!follows) return Effect::computed;
    const bool areTables = std::ranges::any_of(
        *back, [](const std::string& line) { return line.find(" field ") != std::string::npos; });
    return *other == *back && !areTables ? Effect::none : Effect::some;
}

bool isDescriptive(int id) { return id == FG_TIMEOUT || id == FG_SENSORWIDTH || id == FG_SENSORHEIGHT; }

} // namespace

void offTheGrid(LintState& state) {
    for (const Parameter& parameter : state.parameters().all()) {
        if (countingOf(parameter).empty() || !accessWord(parameter).starts_with("rw")) continue;
        const Value value = state.value(parameter.name);
        if (!isWithinLimits(parameter, value) || state.isProposed(parameter.name)) continue;
        if (const auto actual = nearestStep(parameter, value))
            state.propose("grid", {parameter.name},
                          "Requested is " + valueText(parameter, value) + ", but " + countingOf(parameter) +
                              ": the nearest is " + numberText(*actual),
                          *actual);
    }
}

void refusedIfSetAgain(LintState& state) {
    for (const Parameter& parameter : state.parameters().all()) {
        const bool isAsked = parameter.record != nullptr && elementCount(parameter) == 0 &&
                             parameter.effectOfReading().empty() && parameter.effectOfWriting().empty() &&
                             !isComputedRate(parameter) && !state.isProposed(parameter.name);
        if (!isAsked) continue;
        const ReadResult reading = readValue(state.session().instance(), {&parameter});
        if (reading.error != FG_OK) continue; // reported for the parameter that causes it
        const Value& value = reading.value;
        const auto* number = std::get_if<double>(&value);
        const bool isNoNumber = number != nullptr && !std::isfinite(*number);
        const int code = writeValue(state.session().instance(), {&parameter}, requestFor(parameter, value));
        if (isNoNumber)
            state.propose("limits", {parameter.name},
                          "The value is not a number. No limit stops it, so the board receives it",
                          fromMessage({&parameter}, state.session().defaults().at(parameter.name)));
        else if (state.isRefused(parameter.name) && code != FG_OK)
            state.propose("limits", {parameter.name},
                          "The load of the file refuses the value: " +
                              refusalInWords(parameter, value, code) + ". It reads back nevertheless",
                          value);
        else if (code != FG_OK && code != FG_ERR_NOT_AVAILABLE)
            state.propose(
                "limits", {parameter.name},
                "Setting the value again would be refused: " + refusalInWords(parameter, value, code) +
                    ". The limits have moved since it was set, or a load has stored it unchecked",
                value);
    }
}

void withoutEffect(LintState& state) {
    const bool isSimulating = state.is("FG_CAMERASIMULATOR_ENABLE", {FG_CAMERASIMULATOR});
    Words simulator;
    for (const Parameter& parameter : state.parameters().all()) {
        // Texts are file names, the sensor size describes the camera, the timeout belongs to the runtime.
        const bool isLookedAt = parameter.record != nullptr && parameter.kind() != REGISTER_KIND_STRING &&
                                elementCount(parameter) == 0 && parameter.effectOfReading().empty() &&
                                parameter.effectOfWriting().empty() && !isDescriptive(parameter.id);
        if (!isLookedAt || !state.isChanged(parameter.name)) continue;
        const bool isReadOnly = accessWord(parameter) == "ro";
        const Effect effect = effectOf(state, parameter);
        if (effect == Effect::computed || effect == Effect::unknown) continue;
        if (parameter.name.starts_with("FG_CAMERASIMULATOR_") && !isSimulating) {
            simulator.push_back(parameter.name);
        } else if (isReadOnly || effect == Effect::none) {
            state.add("no-effect", {parameter.name},
                      isReadOnly
                          ? "The value was changed and has no effect in the present mode, in which the "
                            "parameter is read-only"
                          : "The value was changed, and the board receives the same as for the default",
                      "'appletctl why " + parameter.name + state.fromFile() + "' says what prevents it");
        }
    }
    if (simulator.empty()) return;
    state.goBack();
    state.add("no-effect", simulator,
              "The simulator's settings were changed, and the images come from the camera",
              "Set FG_CAMERASIMULATOR_ENABLE=FG_CAMERASIMULATOR to use it");
}

} // namespace applet_tools::lint_rules
