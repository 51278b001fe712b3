/** The state of a live applet as a message that a scratch board can take over. */
#ifndef APPLET_TOOLS_SCRATCH_BOARDSTATE_H
#define APPLET_TOOLS_SCRATCH_BOARDSTATE_H

#include "applet_tools/applet/ParameterList.h"
#include "applet_tools/applet/values.h"

#include <nlohmann/json.hpp>

namespace applet_tools {

using nlohmann::json;

/** Bytes in a message, such as a text that may not be UTF-8. */
json asBytes(std::string_view bytes);
std::string bytesOf(const json& message);

/** A value as a message: a number, or the bytes of a text or of the elements of an array. */
json asMessage(const Value& value);
/** Converts a message to a value of the target's native type. */
Value fromMessage(const Target& target, const json& message);

/** A value as a message with its type, for readers that do not know its parameter. */
json asTypedMessage(const Value& value);
Value fromTypedMessage(const json& message);

/** The target for reading and writing a parameter as a whole: all elements of an array. */
Target wholeOf(const Parameter& parameter);

/** All values that can be read without side effect: {NAME: VALUE}. */
json valuesOf(Instance& instance, const ParameterList& parameters);

/** The design's read-only values: {NAME: VALUE}; null if there are none, as offline. */
json designOf(Instance& instance);

/** Values to set, by parameter. */
using Wanted = std::vector<std::pair<const Parameter*, const json*>>;

/** The values in {NAME: VALUE} that can be set without side effect. The result refers to `values`. */
Wanted wantedFrom(const ParameterList& parameters, const json& values);

/** Repeats a round of sets as long as the last one has set a value, since one value can block another. `round` returns
 *  true if it has set one. */
template <typename Round> void repeatSets(const Round& round, int mostRounds = 8) {
    for (bool isSet = true; isSet && mostRounds > 0; --mostRounds)
        isSet = round();
}

/** Sets the values repeatedly until all are equal or no more are accepted. */
void setAll(Instance& instance, const Wanted& wanted);

/** Stores numbers that their setters refuse, such as an exposure above a period that was lowered afterwards, by
 *  a load of a configuration file, which does not check them. */
void storeByLoad(Instance& instance, const Wanted& wanted);

/** The loaded files as a message: {"texts": [BYTES], "setSince": [ID]}. */
json loadsOf(Instance& instance);

/** Loads the files of such a message, and repeats the sets made after them: such values may be stored
 *  differently from those in the file although they read the same. */
void loadAgain(Instance& instance, const Wanted& wanted, const json& loads);

/** True if the parameter reads as this value. */
bool holds(Instance& instance, const Parameter& parameter, const json& wanted);

/**
 * The state of the live applet: {"design": {NAME: VALUE}, "values": {NAME: VALUE}, "loads": ...}. "design"
 * holds the read-only values of the design, such as its memory widths, formats and debug points. Values that a
 * read would change are left out.
 */
json boardStateOf(Instance& instance, const ParameterList& parameters);

} // namespace applet_tools

#endif
