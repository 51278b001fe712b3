#include "applet_tools/station/missing_picture.h"

#include "applet_tools/applet/ParameterReader.h"
#include "applet_tools/applet/timing/line_trigger.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/station/signals.h"

#include "vexo/fg_parameters.h"

#include <algorithm>

namespace applet_tools {
namespace {

/** Looks for the reason, beginning at the source of the lines. */
class Reason {
public:
    Reason(Instance& instance, const ParameterList& parameters, const PictureWait& wait)
        : m_instance(instance)
        , m_settings(instance, parameters)
        , m_wait(wait)
        , m_lines(sourceLines(instance) - wait.start.lines)
        , m_imageLines(m_lines + wait.start.lines - wait.linesAtPicture.value_or(wait.start.lines)) {}

    MissingPicture find() {
        std::string reason = text();
        return {std::move(reason), std::move(m_remedies)};
    }

private:
    std::string text() {
        if (is("FG_DEBUGINENABLE", FG_ON))
            return "the input of a debug point is on, and no line of the source passes it: " +
                   remedy("FG_DEBUGINENABLE=FG_OFF") + ", or insert an image while the acquisition runs";
        if (!isSimulated() && camera() == VBOARD_CAMERA_LINK_LOST)
            return came(m_imageLines) + (m_imageLines > 0 ? ", and" : ":") +
                   " the link to the camera is lost; attach a camera without faults.linkLost, by a "
                   "station file or by the step 'camera' of a scenario";
        if (isAlwaysActive())
            return came(m_lines) + ": with " + shown("FG_LINEEXPOSURE") + " and " + shown("FG_LINEPERIODE") +
                   " ExSync is active without a break and has no edge; shorten FG_LINEEXPOSURE";
        return m_lines <= 0 ? whyNoLine() : came(m_imageLines) + ", " + whyNoImage();
    }

    /** "set FG_EXSYNCON=FG_ON". */
    std::string remedy(const std::string& assignment) {
        m_remedies.push_back(assignment);
        return "set " + assignment;
    }
    bool is(const char* name, std::int32_t entry) const { return m_settings.is(name, entry); }
    std::int32_t entry(const char* name) const { return m_settings.get<std::int32_t>(name); }
    std::string shown(const char* name) const { return m_settings.shown(name); }
    static std::string came(std::int64_t lines) {
        if (lines <= 0) return "no line came";
        return numberText(lines) + (lines == 1 ? " line came" : " lines came");
    }

    std::int32_t lineTriggerMode() const { return entry("FG_LINETRIGGERMODE"); }
    bool isImageTriggered() const {
        return !is("FG_IMGTRIGGERMODE", FREE_RUN) && is("FG_IMGTRIGGERON", FG_ON);
    }
    bool isImageGated() const {
        return m_settings.is("FG_IMGTRIGGERMODE", {ASYNC_GATED, ASYNC_GATED_MULTIFRAME});
    }
    bool isSourceExSync() const { return isExSync(entry("FG_TRIGGERCAMERA_SOURCE")); }
    bool isSimulated() const { return is("FG_CAMERASIMULATOR_ENABLE", FG_CAMERASIMULATOR); }
    std::int64_t camera() const {
        return m_instance.applet().Fg_getStatusEx(m_instance.fg(), VBOARD_STATUS_CAMERA, 0, 0, nullptr);
    }
    bool isSourceTriggered() const {
        if (!isSimulated()) return camera() == VBOARD_CAMERA_TRIGGERED;
        return !is("FG_CAMERASIMULATOR_TRIGGER_MODE", SIMULATION_FREE_RUN);
    }

    bool isAlwaysActive() const {
        return isSourceTriggered() && isSourceExSync() && is("FG_EXSYNCON", FG_ON) &&
               !isExternal(lineTriggerMode()) &&
               m_settings.number("FG_LINEEXPOSURE") >= m_settings.number("FG_LINEPERIODE");
    }

    /** Debounced edges of an input during the wait. */
    Waveform waveformAt(const char* source) const {
        return waveformSince(m_instance, design_signal::firstInput + inputOf(entry(source)),
                             m_wait.start.tick, m_instance.board().now(m_instance.device()));
    }

    bool isHighActive(const char* polarity) const { return !is(polarity, HIGH_ON_ZERO_LOW); }
    static bool hasEdgeTo(bool level, const Waveform& waveform) {
        return !waveform.isComplete || waveform.first(level); // an incomplete waveform has many edges
    }
    std::string noEdge(const char* source, const char* debounce) const {
        return "no edge came at " + shown(source) + ": connect " + m_wait.wave + " with pulses longer than " +
               shown(debounce);
    }
    /** Whether the line trigger's input had an edge that can make a pulse. */
    bool hasLineTriggerEdge() const {
        const Waveform waveform = waveformAt("FG_LINETRIGGERINSRC");
        const bool isHigh = isHighActive("FG_LINETRIGGERINPOLARITY");
        return hasEdgeTo(isHigh, waveform) ||
               (is("FG_SHAFTENCODERON", FG_ON) && hasEdgeTo(!isHigh, waveform));
    }

    /** The reason if the belt at the line trigger's input gives no steps; else empty. */
    std::string whyNoStep() const {
        const StationBelt* const belt = m_wait.belt;
        if (belt == nullptr || belt->profile.empty() ||
            belt->encoderA != inputOf(entry("FG_LINETRIGGERINSRC")))
            return "";
        const std::int32_t speed = belt->profile.back().to;
        if (speed == 0) return "the belt that moves the encoder does not run: give it a speed";
        return speed < 0 && is("FG_SHAFTENCODERON", FG_ON)
                   ? "the belt runs backwards, and FG_SHAFTENCODERON passes forward steps only: give it a "
                     "speed above 0, or change FG_SHAFTENCODERLEADING"
                   : "";
    }

    /** The reason if the encoder swallows forward steps after backward ones; else empty. */
    std::string whyNoForwardStep() {
        const char* const count = "FG_SHAFTENCODER_COMPENSATION_COUNT";
        if (!is("FG_SHAFTENCODERON", FG_ON) || !is("FG_SHAFTENCODER_COMPENSATION_ENABLE", FG_ON) ||
            m_settings.number(count) == 0)
            return "";
        return "the encoder went backwards, so the same number of forward steps gives none: " + shown(count) +
               "; wait for them, or " + remedy("FG_SHAFTENCODER_COMPENSATION_COUNT=0");
    }

    /** "with camera triggers ...: 5; ..." if there were losses of this kind during the wait; else empty. */
    std::string lossText(std::size_t index) const {
        const LossKind& kind = lossKinds()[index];
        const std::int64_t lost = lossesOf(m_instance)[index] - m_wait.start.losses[index];
        if (lost <= 0) return "";
        return std::string("with ") + kind.what + ": " + numberText(lost) + "; " + kind.advice;
    }

    /** True if the camera could take more lines with a shorter exposure. */
    bool isSlowedByExposure(const vboard_camera& attached) const {
        if (isSimulated() || is("FG_CLHS_TRIGGER_PULSE_MESSAGE", FG_PULSE_WIDTH)) return false;
        if (attached.line_rate == 0) return !lossText(cameraTriggerLoss).empty();
        return Ticks{attached.exposure} * attached.line_rate >= ticksPerSecond;
    }

    /** The reason if the exposures of this number of lines are longer than the wait; else empty. */
    std::string whyLateLines(double lines) const {
        if (m_wait.camera == nullptr || !isSlowedByExposure(m_wait.camera->camera)) return "";
        const Ticks exposure = m_wait.camera->camera.exposure;
        const Ticks waited = m_instance.board().now(m_instance.device()) - m_wait.start.tick;
        if (static_cast<double>(exposure) * lines < static_cast<double>(waited)) return "";
        return "the camera exposes each line for " + durationText(exposure) +
               ": shorten camera.exposure, or " + m_wait.longer;
    }

    std::string whyNoLine() {
        if (const std::string late = whyLateLines(1); !late.empty()) return "no line came: " + late;
        if (!isSimulated() && camera() == VBOARD_CAMERA_FREE_RUNNING)
            return "no line came: its line period or its exposure is longer than the wait";
        for (const std::size_t kind : {droppedTriggerLoss, cameraTriggerLoss})
            if (const std::string loss = lossText(kind); !loss.empty()) return "no line came, " + loss;
        if (!isSimulated() && camera() == VBOARD_CAMERA_TRIGGERED)
            return "no line came: the camera waits for an edge of " + shown("FG_TRIGGERCAMERA_SOURCE") +
                   (isSourceExSync() ? "; " + whyNoExSync() : "");
        if (!isSimulated())
            return "no line came: the port of the virtual board has no camera; " +
                   remedy("FG_CAMERASIMULATOR_ENABLE=FG_CAMERASIMULATOR");
        if (!isSourceTriggered())
            return "no line came: the camera simulator is slower than that, or no line of its frame has "
                   "begun yet";
        return "no line came: with " + shown("FG_CAMERASIMULATOR_TRIGGER_MODE") +
               " the camera simulator waits for an edge of " + shown("FG_TRIGGERCAMERA_SOURCE") +
               (isSourceExSync() ? "; " + whyNoExSync() : "");
    }

    std::string whyNoExSync() {
        if (is("FG_EXSYNCON", FG_OFF)) return shown("FG_EXSYNCON") + ": " + remedy("FG_EXSYNCON=FG_ON");
        const std::string mode = shown("FG_LINETRIGGERMODE");
        if (isGated(lineTriggerMode()) && isImageTriggered())
            return "with " + mode + " it has edges only in an image, and " + whyNoStart();
        if (!isExternal(lineTriggerMode()))
            return "with " + mode + " one comes each " + shown("FG_LINEPERIODE");
        const std::string noStep = whyNoStep();
        if (!noStep.empty()) return "with " + mode + " it needs a line trigger, and " + noStep;
        if (!hasLineTriggerEdge())
            return "with " + mode + " it needs a line trigger, and " +
                   noEdge("FG_LINETRIGGERINSRC", "FG_LINETRIGGERDEBOUNCING");
        const std::string noForwardStep = whyNoForwardStep();
        if (!noForwardStep.empty()) return "with " + mode + " it needs a line trigger, and " + noForwardStep;
        return "with " + mode + " it needs a line trigger, and of the edges at " +
               shown("FG_LINETRIGGERINSRC") + " none became one: see " + shown("FG_LINE_DOWNSCALE") +
               " and " + shown("FG_SHAFTENCODERON");
    }

    /** The reason why no image began. */
    std::string whyNoStart() const {
        if (is("FG_IMGTRIGGERINSRC", TRGINSOFTWARE))
            return "an image starts at a software pulse while the acquisition runs, as by the steps "
                   "'acquire start', 'set FG_SENDSOFTWARETRIGGER=FG_APPLY' and 'grab' of a scenario";
        const char* const source = "FG_IMGTRIGGERINSRC";
        const char* const debounce = "FG_IMGTRIGGERDEBOUNCING";
        const Waveform waveform = waveformAt(source);
        const bool isHigh = isHighActive("FG_IMGTRIGGERINPOLARITY");
        if (hasEdgeTo(isHigh, waveform))
            return "none of the edges at " + shown(source) +
                   " started an image: its pulses must be longer than " + shown(debounce) +
                   (isImageGated() ? " and than a line takes" : "");
        if (hasPicture())
            return "no further edge came at " + shown(source) + ": each image needs one, as with " +
                   m_wait.wave + " of square:10ms";
        if (waveform.startsHigh == isHigh)
            return shown(source) +
                   " was active when the wait began: only a level that becomes active later starts an image, "
                   "as with " +
                   m_wait.wave + " of edges:1ms";
        return noEdge(source, debounce);
    }

    /** Whether this acquisition has had a picture. */
    bool hasPicture() const {
        constexpr int lastPicture = 0;
        return m_instance.applet().Fg_getStatusEx(m_instance.fg(), lastPicture, 0, 0, nullptr) > 0;
    }

    std::string whyNoImage() const {
        if (std::string loss = lossText(imageLoss); !loss.empty()) return loss;
        if (isImageTriggered() && !is("FG_IMGTRIGGER_IS_BUSY", IS_BUSY))
            return "and no image was complete: with " + shown("FG_IMGTRIGGERMODE") + ", " + whyNoStart();
        if (isImageTriggered() && isImageGated())
            return "and the image in progress ends with its gate at " + shown("FG_IMGTRIGGERINSRC") +
                   ", or after " + shown("FG_HEIGHT") + "; " + m_wait.longer;
        if (isOfAnotherHeight())
            return "and the image in progress began with another height than " + shown("FG_HEIGHT") +
                   ", which it keeps: stop the acquisition and start it again";
        const std::string late =
            whyLateLines(m_settings.number("FG_HEIGHT") + m_settings.number("FG_YOFFSET"));
        return "and an image takes " + shown("FG_HEIGHT") + " and " + shown("FG_YOFFSET") + "; " +
               (late.empty() ? m_wait.longer : late);
    }

    /** More lines came since the last picture than two images take. */
    bool isOfAnotherHeight() const {
        const auto asLines = [this](const char* name) {
            return static_cast<std::int64_t>(m_settings.number(name));
        };
        return m_wait.linesAtPicture && !isImageTriggered() &&
               m_imageLines > 2 * (asLines("FG_HEIGHT") + asLines("FG_YOFFSET"));
    }

    Instance& m_instance;
    const ParameterReader m_settings;
    const PictureWait& m_wait;
    const std::int64_t m_lines;      // during the wait
    const std::int64_t m_imageLines; // since the last picture, if that is known
    Words m_remedies;
};

} // namespace

std::int64_t sourceLines(Instance& instance) {
    return instance.applet().Fg_getStatusEx(instance.fg(), VBOARD_STATUS_LINES, 0, 0, nullptr);
}

WaitStart waitStart(Instance& instance) {
    return {.tick = instance.board().now(instance.device()),
            .lines = sourceLines(instance),
            .losses = lossesOf(instance)};
}

MissingPicture whyNoPicture(Instance& instance, const ParameterList& parameters, const PictureWait& wait) {
    return Reason(instance, parameters, wait).find();
}

} // namespace applet_tools
