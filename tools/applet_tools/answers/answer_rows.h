/** Answers for a person: rows of a title and a text. */
#ifndef APPLET_TOOLS_ANSWERS_ANSWER_ROWS_H
#define APPLET_TOOLS_ANSWERS_ANSWER_ROWS_H

#include "applet_tools/answers/limits.h"
#include "applet_tools/answers/why.h"

#include <string>
#include <vector>

namespace applet_tools {

/** Each row has the same number of cells: {"accepted", "4 to 16384 in steps of 4 pixel"}. */
using Rows = std::vector<std::vector<std::string>>;

/** The rows of an answer about this parameter. */
Rows rowsOf(const AcceptedValues& answer, const Parameter& parameter);
Rows rowsOf(const RefusalAnswer& answer, const Parameter& parameter);
Rows rowsOf(const AccessAnswer& answer, const Parameter& parameter);

} // namespace applet_tools

#endif
