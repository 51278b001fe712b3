/** A client's view of a parameter at one moment, and the differences between two of them. */
#ifndef APPLET_TOOLS_APPLET_PARAMETERSTATE_H
#define APPLET_TOOLS_APPLET_PARAMETERSTATE_H

#include "applet_tools/applet/ParameterList.h"
#include "applet_tools/applet/published_limits.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace applet_tools {

struct ParameterState {
    int error = 0; /**< code of the read */
    Value value;   /**< for an array only the number of its elements */
    std::uint32_t access = 0;
    std::optional<Limits> limits;

    bool operator==(const ParameterState&) const = default;
};

/** Leaves out values that a read would change. */
ParameterState currentState(Instance& instance, const Parameter& parameter);

/** The states of all parameters, in the order of the list. */
std::vector<ParameterState> statesOf(Instance& instance, const ParameterList& parameters);

/** One difference between two states, in words and as members of a document. */
struct Move {
    std::string what; /**< "value", "limits", "access", "accepted values" */
    std::string from, to;
    nlohmann::ordered_json fromJson{}, toJson{};
};

std::vector<Move> movesBetween(const Parameter& parameter, const ParameterState& before,
                               const ParameterState& after);

nlohmann::ordered_json asJson(const Move& move);

} // namespace applet_tools

#endif
