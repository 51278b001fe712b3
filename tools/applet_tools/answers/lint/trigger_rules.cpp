#include "applet_tools/answers/lint/rules.h"

#include "applet_tools/answers/routes.h"
#include "applet_tools/applet/timing/line_timing.h"
#include "applet_tools/applet/timing/line_trigger.h"

#include "vexo/fg_parameters.h"

#include <algorithm>
#include <cmath>

namespace applet_tools::lint_rules {
namespace {

std::int32_t entry(LintState& state, const char* name) {
    return static_cast<std::int32_t>(state.number(name));
}

bool isImageTriggered(LintState& state) { return !state.is("FG_IMGTRIGGERMODE", {FREE_RUN}); }

} // namespace

void unfitTiming(LintState& state) {
    for (const TimingTrouble& trouble :
         timingTroubles(entry(state, "FG_LINETRIGGERMODE"), state.number("FG_LINEPERIODE"),
                        state.number("FG_LINEEXPOSURE"), state.number("FG_LINETRIGGERDELAY")))
        state.propose(trouble.rule, {trouble.names.begin(), trouble.names.end()}, trouble.why,
                      trouble.longest, std::string(" or less") + trouble.orElse);
}

void phaseAboveDownscale(LintState& state) {
    if (state.number("FG_LINE_DOWNSCALEINIT") <= state.number("FG_LINE_DOWNSCALE")) return;
    state.propose("phase", {"FG_LINE_DOWNSCALEINIT", "FG_LINE_DOWNSCALE"},
                  "The first line of an image waits for more input pulses than one line takes",
                  state.value("FG_LINE_DOWNSCALE"), " or less");
}

void untriggeredCamera(LintState& state) {
    if (state.is("FG_TRIGGERCAMERA_SOURCE", {GND, VCC}))
        state.add("camera-trigger", {"FG_TRIGGERCAMERA_SOURCE"},
                  "The camera's trigger is a constant level: it exposes no line by itself",
                  "Set FG_TRIGGERCAMERA_SOURCE=FG_SIGNAL_CAM0_EXSYNC, unless the camera runs freely");
    if (isExSync(entry(state, "FG_TRIGGERCAMERA_SOURCE")) && state.is("FG_EXSYNCON", {FG_OFF}))
        state.add("camera-trigger", {"FG_EXSYNCON", "FG_TRIGGERCAMERA_SOURCE"},
                  "The camera is triggered by ExSync, and ExSync is off",
                  "Set FG_EXSYNCON=FG_ON, unless the camera runs freely");
}

void flashNowhere(LintState& state) {
    Words outputs;
    for (const SignalRoute& route : routesOf(state.parameters()))
        if (route.output.starts_with("FG_TRIGGEROUT_") &&
            state.is(route.source.name(), {FG_SIGNAL_CAM0_FLASH}))
            outputs.push_back(route.output);
    if (state.is("FG_FLASHON", {FG_ON}) && outputs.empty())
        state.add("flash", {"FG_FLASHON"}, "The flash is on and no output carries it",
                  "Set an output to FG_SIGNAL_CAM0_FLASH, as FG_TRIGGEROUT_GPO_0_SOURCE");
    if (state.is("FG_FLASHON", {FG_ON}) && state.number("FG_STROBEPULSEDELAY") >= state.number("FG_HEIGHT"))
        state.propose("flash", {"FG_STROBEPULSEDELAY", "FG_HEIGHT"},
                      "The flash comes after the last line of the image",
                      static_cast<std::uint32_t>(std::max(1.0, state.number("FG_HEIGHT")) - 1), " or less");
}

void imageTrigger(LintState& state) {
    if (!isImageTriggered(state)) return;
    if (state.is("FG_IMGTRIGGERON", {FG_OFF}))
        state.add("image-trigger", {"FG_IMGTRIGGERON", "FG_IMGTRIGGERMODE"},
                  "The image trigger is off: images come without a trigger, as in free run",
                  "Set FG_IMGTRIGGERON=FG_ON");
    const double lines = state.number("FG_IMGTRIGGER_ASYNC_HEIGHT");
    const double height = state.number("FG_HEIGHT");
    if (state.is("FG_IMGTRIGGERMODE", {ASYNC_TRIGGER_MULTIFRAME}) && std::fmod(lines, height) != 0)
        state.add("trigger-height", {"FG_IMGTRIGGER_ASYNC_HEIGHT", "FG_HEIGHT"},
                  "The lines of one trigger are not a whole number of images: the last one stays incomplete",
                  "Set FG_IMGTRIGGER_ASYNC_HEIGHT to a multiple of FG_HEIGHT");
}

void sharedInputs(LintState& state) {
    if (isGrabberControlled(entry(state, "FG_LINETRIGGERMODE"))) return;
    if (state.is("FG_SHAFTENCODERON", {FG_ON}) &&
        state.number("FG_LINETRIGGERINSRC") == state.number("FG_SHAFTENCODERINSRC"))
        state.add("shared-input", {"FG_LINETRIGGERINSRC", "FG_SHAFTENCODERINSRC"},
                  "The shaft encoder's tracks A and B come from the same input, so there is no direction",
                  "Set FG_SHAFTENCODERINSRC to the input of track B");
    if (isImageTriggered(state) && state.number("FG_LINETRIGGERINSRC") == state.number("FG_IMGTRIGGERINSRC"))
        state.add("shared-input", {"FG_LINETRIGGERINSRC", "FG_IMGTRIGGERINSRC"},
                  "One input triggers both lines and images", "Set one of them to another input");
}

} // namespace applet_tools::lint_rules
