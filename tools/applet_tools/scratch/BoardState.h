/** The state of a live applet, as a scratch board starts from it. */
#ifndef APPLET_TOOLS_SCRATCH_BOARDSTATE_H
#define APPLET_TOOLS_SCRATCH_BOARDSTATE_H

#include "applet_tools/applet/ParameterList.h"
#include "applet_tools/applet/values.h"

#include <nlohmann/json.hpp>

namespace applet_tools {

using nlohmann::json;

/** Bytes, such as a text that may be no UTF-8, in a message. */
json asBytes(std::string_view bytes);
std::string bytesOf(const json& message);

/** A value in a message: a number, or the bytes of a text or of the elements of an array. */
json asMessage(const Value& value);
/** The value of a message in the native type of the target's kind. */
Value fromMessage(const Target& target, const json& message);

/** A value in a message with its type, for readers that do not know its parameter. */
json asTypedMessage(const Value& value);
Value fromTypedMessage(const json& message);

/** The target that a value is read and written by as a whole: all elements of an array. */
Target wholeOf(const Parameter& parameter);

/** All values that can be read without effect: {NAME: VALUE}. */
json valuesOf(Instance& instance, const ParameterList& parameters);

/** The answers of the design: {NAME: VALUE}; null where they cannot be had, as offline. */
json designOf(Instance& instance);

/** Values to bring about, by their parameters. */
using Wanted = std::vector<std::pair<const Parameter*, const json*>>;

/** Of {NAME: VALUE} all that a set brings about without an effect besides. The values have to outlive it. */
Wanted wantedFrom(const ParameterList& parameters, const json& values);

/** Sets the values until all hold or no more is taken. */
void bringAbout(Instance& instance, const Wanted& wanted);

/** Stores numbers that their setters refuse, such as an exposure above a period that was lowered afterwards: a load of
 *  a configuration file takes them unchecked. */
void storeByLoad(Instance& instance, const Wanted& wanted);

/** The files that were loaded, as a message: {"texts": [BYTES], "setSince": [ID]}. */
json loadsOf(Instance& instance);

/** Loads the files of such a message, and sets what was set behind them: those values may be stored otherwise than
 *  the file has them, and read the same. */
void loadAgain(Instance& instance, const Wanted& wanted, const json& loads);

/** True when the parameter reads as this value. */
bool holds(Instance& instance, const Parameter& parameter, const json& wanted);

/**
 * What the live applet tells of itself: {"design": {NAME: VALUE}, "values": {NAME: VALUE}, "loads": ...}. "design"
 * holds the answers of the design, such as the widths of its memory, its formats and debug points. What a read would
 * change is left out.
 */
json boardStateOf(Instance& instance, const ParameterList& parameters);

} // namespace applet_tools

#endif
