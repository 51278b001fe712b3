#include "applet_tools/station/missing_picture.h"

#include "applet_tools/base/numbers.h"

#include "vexo/fg_parameters.h"

namespace applet_tools {
namespace {

std::string shown(Instance& instance, const ParameterList& parameters, const char* name) {
    const Parameter& parameter = parameters.find(name);
    return parameter.name + " = " + valueText(parameter, valueOf(instance, {&parameter}));
}

bool is(Instance& instance, const ParameterList& parameters, const char* name, std::int32_t value) {
    return valueOf(instance, {&parameters.find(name)}) == Value(value);
}

std::string whyNoLine(Instance& instance, const ParameterList& parameters) {
    const auto show = [&](const char* name) { return shown(instance, parameters, name); };
    if (is(instance, parameters, "FG_CAMERASIMULATOR_ENABLE", FG_CAMPORT))
        return "no line came: the port of the virtual board has no camera; set "
               "FG_CAMERASIMULATOR_ENABLE=FG_CAMERASIMULATOR";
    if (is(instance, parameters, "FG_CAMERASIMULATOR_TRIGGER_MODE", SIMULATION_FREE_RUN))
        return "no line came: the camera simulator is slower than that, or no line of its frame has begun "
               "yet";
    return "no line came: with " + show("FG_CAMERASIMULATOR_TRIGGER_MODE") +
           " the camera simulator waits for an edge of " + show("FG_TRIGGERCAMERA_SOURCE") + ", and " +
           show("FG_EXSYNCON") + ", " + show("FG_LINETRIGGERMODE") +
           "; an external line trigger needs a --wave at " + show("FG_LINETRIGGERINSRC");
}

} // namespace

std::int64_t sourceLines(Instance& instance) {
    return instance.applet().Fg_getStatusEx(instance.fg(), VBOARD_STATUS_LINES, 0, 0, nullptr);
}

std::string whyNoPicture(Instance& instance, const ParameterList& parameters, std::int64_t lines) {
    if (lines <= 0) return whyNoLine(instance, parameters);
    const std::string came = numberText(lines) + (lines == 1 ? " line came" : " lines came");
    const auto show = [&](const char* name) { return shown(instance, parameters, name); };
    const bool isTriggered = !is(instance, parameters, "FG_IMGTRIGGERMODE", FREE_RUN) &&
                             is(instance, parameters, "FG_IMGTRIGGERON", FG_ON);
    if (isTriggered)
        return came + ", and no image was complete: with " + show("FG_IMGTRIGGERMODE") +
               " one starts at an edge of " + show("FG_IMGTRIGGERINSRC") + ", which needs a --wave";
    return came + ", and an image takes " + show("FG_HEIGHT") + " and " + show("FG_YOFFSET") +
           "; give a longer --timeout";
}

} // namespace applet_tools
