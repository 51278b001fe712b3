/** Meaning of the entries of FG_LINETRIGGERMODE and FG_TRIGGERCAMERA_SOURCE. */
#ifndef APPLET_TOOLS_APPLET_TIMING_LINE_TRIGGER_H
#define APPLET_TOOLS_APPLET_TIMING_LINE_TRIGGER_H

#include "vexo/fg_parameters.h"

#include <cstdint>

namespace applet_tools {

/** The grabber makes the pulses of the lines, one each FG_LINEPERIODE. Not the complement of isExternal: a load
 *  may store any number. */
constexpr bool isGrabberControlled(std::int32_t mode) {
    return mode == GRABBER_CONTROLLED || mode == GRABBER_CONTROLLED_GATED;
}

/** The pulses come from an input. */
constexpr bool isExternal(std::int32_t mode) { return mode == ASYNC_TRIGGER || mode == ASYNC_GATED; }

/** Pulses count only during an image. */
constexpr bool isGated(std::int32_t mode) { return mode == GRABBER_CONTROLLED_GATED || mode == ASYNC_GATED; }

/** ExSync, with or without its delay, triggers the camera. */
constexpr bool isExSync(std::int32_t source) {
    return source == FG_SIGNAL_CAM0_EXSYNC || source == FG_SIGNAL_CAM0_EXSYNC2;
}

} // namespace applet_tools

#endif
