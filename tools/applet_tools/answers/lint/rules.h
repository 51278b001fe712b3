/** The rules of lint: each adds its findings on the state. */
#ifndef APPLET_TOOLS_ANSWERS_LINT_RULES_H
#define APPLET_TOOLS_ANSWERS_LINT_RULES_H

#include "applet_tools/answers/lint/LintState.h"

namespace applet_tools::lint_rules {

// Lines, images and the signals that trigger them.
void unfitTiming(LintState& state);
void phaseAboveDownscale(LintState& state);
void untriggeredCamera(LintState& state);
void flashNowhere(LintState& state);
void imageTrigger(LintState& state);
void sharedInputs(LintState& state);

// The region, the lookup tables and the source of the images.
void outsideTheSensor(LintState& state);
void unlikeTables(LintState& state);
void customTableWithoutFile(LintState& state);
void simulatorOrDebug(LintState& state);

// The values of all parameters.
void offTheGrid(LintState& state);
/** Sets the parameters to their present values again; does not restore the state. */
void refusedIfSetAgain(LintState& state);
/** Changed settings without effect: read-only according to the record, or with the same writes for another
 *  value. Tries values. */
void withoutEffect(LintState& state);

} // namespace applet_tools::lint_rules

#endif
