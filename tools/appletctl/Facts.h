/** What a client sees of a parameter at a moment, and how that moves. */
#ifndef APPLETCTL_FACTS_H
#define APPLETCTL_FACTS_H

#include "appletctl/limits.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace appletctl {

struct Facts {
    int error = 0; /**< of the read */
    Value value;   /**< of an array only the number of its elements */
    std::uint32_t access = 0;
    std::optional<Limits> limits;

    bool operator==(const Facts&) const = default;
};

/** What a read would change is left out. */
Facts factsNow(Instance& instance, const Parameter& parameter);

/** One way in which facts differ, in words. */
struct Move {
    const char* what; /**< "value", "limits", "access", "accepted values" */
    std::string from, to;
};

std::vector<Move> movesBetween(const Parameter& parameter, const Facts& before, const Facts& after);

nlohmann::ordered_json asJson(const Move& move);

} // namespace appletctl

#endif
