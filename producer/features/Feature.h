/** A feature of a module: its description and its access functions. */
#ifndef PRODUCER_FEATURES_FEATURE_H
#define PRODUCER_FEATURES_FEATURE_H

#include "applet_host/Parameter.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace producer {

using applet_host::Limits;
using applet_host::Value;
using FeatureEntry = applet_host::Entry;

struct Feature {
    enum class Kind : std::uint8_t { integer, real, text, enumeration, boolean, command, table };
    enum class Visibility : std::uint8_t { beginner, expert, guru, invisible };

    std::string name;
    std::string category;
    Kind kind = Kind::integer;
    Visibility visibility = Visibility::beginner;
    std::string label{};
    std::string description{};
    std::string unit{};
    std::vector<FeatureEntry> entries{}; // for an enumeration
    std::size_t elements = 0;            // for a table, 32 bits each
    std::vector<std::string> selected{}; // names of the features that it selects
    std::uint64_t eventId = 0;           // not 0: updated with this event, from `eventOffset` in its data
    std::uint64_t eventOffset = 0;
    bool isStandard = true; // a name of the standard

    /** The present value; empty for a write-only feature. */
    std::function<Value()> get{};
    /** Sets the value or executes a command; empty for a read-only feature. */
    std::function<void(const Value&)> set{};
    /** The limits of a number; empty if there are none beyond those of its kind. */
    std::function<Limits()> limits{};
    /** Why it cannot be written now; an empty text if it can. No function if it always can. */
    std::function<std::string()> lockReason{};
};

} // namespace producer

#endif
