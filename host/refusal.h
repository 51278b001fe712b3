/** Assignments, and error messages for refused ones. */
#ifndef HOST_REFUSAL_H
#define HOST_REFUSAL_H

#include "applet_tools/applet/assignments.h"
#include "host/Station.h"

namespace host {

/** Returns the error with appletctl's message: the limits, what sets them, and what would be accepted.
 *  `wantsAdvice`: also tries values on the scratch board, if the station gives advice. */
Error refusalOf(vexo_station& station, const applet_tools::AssignmentResult& result, bool wantsAdvice = true);

/** The same for a number outside the range of the parameter's type; the assignment's value has another type. */
Error noFitRefusal(vexo_station& station, const applet_tools::Assignment& assignment);

/** Sets the value; throws Error if it is refused. */
void set(vexo_station& station, const applet_tools::Assignment& assignment);

} // namespace host

#endif
