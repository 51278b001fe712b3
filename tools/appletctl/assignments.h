/** NAME=VALUE words: reading them, carrying them out in order. */
#ifndef APPLETCTL_ASSIGNMENTS_H
#define APPLETCTL_ASSIGNMENTS_H

#include "appletctl/commands.h"
#include "appletctl/values.h"

#include <functional>
#include <string>
#include <vector>

namespace appletctl {

/** Gives the lines of what was written to the design since it was last asked. */
using TakeWrites = std::function<std::vector<std::string>()>;

/** Reads all words first, so that a misspelt one changes nothing, then carries them out up to the first
 *  refusal; the report shows each assignment, with its writes if there is `takeWrites`. */
Report carryOut(Instance& instance, const ParameterList& parameters, const Words& words,
                const TakeWrites& takeWrites = nullptr);

/** "-6000, value out of range; the present limits are ...": the code, and what the caller can learn from the
 *  live record after the refusal. */
std::string refusalInWords(const Parameter& parameter, const Value& value, int code);

} // namespace appletctl

#endif
