/** The access, limits and entries in a parameter's record. */
#ifndef APPLET_TOOLS_APPLET_PUBLISHED_LIMITS_H
#define APPLET_TOOLS_APPLET_PUBLISHED_LIMITS_H

#include "applet_host/record.h"
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

/** "ro", "rw", "rw+" (also writable during an acquisition), "-" without a record. */
std::string accessWord(const Parameter& parameter);
/** The same for a record's access bits. */
std::string accessWord(std::uint32_t access);

using Entry = applet_host::EnumEntry;

/** The entries of an enumeration, in the published order; empty for other kinds. */
std::vector<Entry> entriesOf(const Parameter& parameter);

/** The displayed name of an entry: its symbol, or its label if it has no symbol. */
const std::string& entryName(const Entry& entry);

/** Limits of a number, or of the elements of an array, in its native type; an array has no increment. */
struct Limits {
    Value minimum, maximum, increment;

    bool operator==(const Limits&) const = default;
};

/** The published limits; empty if the record has no usable ones. */
std::optional<Limits> limitsOf(const Parameter& parameter);

/** "4 to 16384 in steps of 4"; "0 to 65535, 16384 elements"; empty if the record has no usable limits. */
std::string limitsText(const Parameter& parameter);

/** The same with the unit. */
std::string limitsWithUnit(const Parameter& parameter);

/** "RGB8 (1025), RGB10 (1026)"; empty for other kinds. */
std::string entriesText(const Parameter& parameter);

/** "the entries are RGB8 (1025), RGB10 (1026)", "the present limits are 4 to 16384 in steps of 4 pixel"; empty if the
 *  record has neither. */
std::string acceptedText(const Parameter& parameter);

/** True when the record has limits, or entries, and the value is within them. For elements the first is
 *  checked, as a set gives all of them the same value. */
bool isWithinLimits(const Parameter& parameter, const Value& value);

/** Adds all contents of the record as members of `object`. */
void addDescription(nlohmann::ordered_json& object, const Parameter& parameter);

} // namespace applet_tools

#endif
