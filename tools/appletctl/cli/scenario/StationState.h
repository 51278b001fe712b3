/** What the steps of a scenario know of the station. */
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
    std::optional<Grabber> grabber;      /**< an acquisition that goes on from step to step */
    Ticks from = 0, to = 0;              /**< the last step that let time move */
    std::vector<std::int64_t> losses;    /**< in it, in the order of lossKinds() */
    std::vector<vboard_record> pictures; /**< of the last grab, without their bytes */
    std::vector<std::uint8_t> lastBytes; /**< of the last one of them */
};

} // namespace appletctl

#endif
