/** What a record says about its parameter: access, limits, entries. */
#ifndef APPLET_TOOLS_APPLET_PUBLISHED_LIMITS_H
#define APPLET_TOOLS_APPLET_PUBLISHED_LIMITS_H

#include "applet_tools/applet/ParameterList.h"
#include "applet_tools/applet/values.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace applet_tools {

/** "UInt", "Enum", ...; empty for a parameter without record. */
const char* kindName(const Parameter& parameter);

/** "ro", "rw", "rw+" (writable while an acquisition runs as well), "-" without record. */
std::string accessWord(const Parameter& parameter);
/** The same of a record's access bits. */
std::string accessWord(std::uint32_t access);

struct Entry {
    std::int32_t value;
    std::string symbol;
    std::string label;
};

/** The entries of an enumeration, in the published order; none for other kinds. */
std::vector<Entry> entriesOf(const Parameter& parameter);

/** The name by which an entry is shown: its symbol, or its label when it has none. */
const std::string& entryName(const Entry& entry);

/** Limits of a number, or of the elements of an array, in its native type; an array has no increment. */
struct Limits {
    Value minimum, maximum, increment;

    bool operator==(const Limits&) const = default;
};

/** The published limits; nothing where the record has none that say anything. */
std::optional<Limits> limitsOf(const Parameter& parameter);

/** "4 to 16384 in steps of 4"; "0 to 65535, 16384 elements"; empty where the record has no usable limits. */
std::string limitsText(const Parameter& parameter);

/** "RGB8 (1025), RGB10 (1026)"; empty for other kinds. */
std::string entriesText(const Parameter& parameter);

/** True when the record has limits, or entries, and the value keeps to them; of elements the first is looked
 *  at, as a set gives all of them the same value. */
bool isWithinLimits(const Parameter& parameter, const Value& value);

/** Everything that the record says, as members of `object`. */
void addDescription(nlohmann::ordered_json& object, const Parameter& parameter);

} // namespace applet_tools

#endif
