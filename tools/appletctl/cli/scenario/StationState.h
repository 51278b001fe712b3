/** The state of the station between a scenario's steps. */
#ifndef APPLETCTL_CLI_SCENARIO_STATIONSTATE_H
#define APPLETCTL_CLI_SCENARIO_STATIONSTATE_H

#include "applet_tools/station/Grabber.h"
#include "applet_tools/station/signals.h"
#include "appletctl/base/applet_tools.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace appletctl {

struct StationState {
    std::optional<Grabber> grabber;      /**< an acquisition that continues from step to step */
    Ticks from = 0, to = 0;              /**< time span of the last step that advanced the time */
    std::vector<std::int64_t> losses;    /**< during that span, in the order of lossKinds() */
    std::vector<vboard_record> pictures; /**< of the last grab, without their bytes */
    std::vector<std::uint8_t> lastBytes; /**< of the last of them */
};

} // namespace appletctl

#endif
