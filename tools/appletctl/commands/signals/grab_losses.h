/** The losses in the report of "grab". */
#ifndef APPLETCTL_COMMANDS_SIGNALS_GRAB_LOSSES_H
#define APPLETCTL_COMMANDS_SIGNALS_GRAB_LOSSES_H

#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/signals/grab_request.h"

#include <cstdint>
#include <vector>

namespace appletctl {

/** Adds the losses since `before`, the result of lossesOf(): all to the document, and to the text those that
 *  occurred, or all with --losses. With --strict a loss is a failure of the command. */
void addLosses(CommandRun& run, const GrabOptions& own, const std::vector<std::int64_t>& before);

} // namespace appletctl

#endif
