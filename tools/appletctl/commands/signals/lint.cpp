// Legal but doubtful states. The rules look at a scratch board, where values may be tried.

#include "appletctl/commands/signals/lint.h"

#include "appletctl/applet/LutTables.h"
#include "appletctl/applet/access_log.h"
#include "appletctl/applet/assignments.h"
#include "appletctl/applet/published_limits.h"
#include "appletctl/base/text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/jobs.h"
#include "appletctl/scratch/reports.h"

#include "vexo/fg_errors.h"
#include "vexo/fg_parameters.h"

#include <algorithm>
#include <cmath>

namespace appletctl {
namespace {

/** The state that is looked at, and what was found so far. */
class State {
public:
    explicit State(ScratchSession& session) : m_session(session) {}

    ScratchSession& session() { return m_session; }
    const ParameterList& parameters() const { return m_session.parameters(); }
    Value value(const std::string& name) { return valueOf(m_session.instance(), m_session.target(name)); }
    double number(const std::string& name) {
        return std::visit(
            [](const auto& native) {
                using T = std::decay_t<decltype(native)>;
                if constexpr (std::is_arithmetic_v<T>)
                    return static_cast<double>(native);
                else
                    return 0.0;
            },
            value(name));
    }
    /** True if the enumeration holds one of the entries. */
    bool is(const std::string& name, std::initializer_list<int> entries) {
        return std::ranges::find(entries, static_cast<int>(number(name))) != entries.end();
    }
    /** True for a value that was changed since the bring-up. */
    bool isChanged(const std::string& name) {
        const auto start = m_session.defaults().find(name);
        if (start == m_session.defaults().end()) return false;
        const json now = asMessage(value(name));
        if (!now.is_number_float()) return *start != now;
        // Rates of the simulator come back from a file as the next step of their counter.
        constexpr double tolerance = 1e-3;
        const double before = start->get<double>();
        return std::fabs(now.get<double>() - before) > tolerance * std::fabs(before);
    }

    void add(const char* rule, const Words& names, const std::string& why, const std::string& advice) {
        Words values;
        for (const std::string& name : names)
            values.push_back(name + " = " + valueWithUnit(parameters().find(name), value(name)));
        add(rule, names, values, why, advice);
    }
    void add(const char* rule, const Words& names, const Words& values, const std::string& why,
             const std::string& advice) {
        m_findings.push_back(
            {{"rule", rule}, {"names", names}, {"values", values}, {"why", why}, {"advice", advice}});
    }
    const json& findings() const { return m_findings; }

private:
    ScratchSession& m_session;
    json m_findings = json::array();
};

bool isGrabberControlled(State& state) {
    return state.is("FG_LINETRIGGERMODE", {GRABBER_CONTROLLED, GRABBER_CONTROLLED_GATED});
}

std::string rounded(double number) {
    constexpr double places = 1e9;
    return numberText(std::round(number * places) / places);
}

void exposureAbovePeriod(State& state) {
    const double period = state.number("FG_LINEPERIODE");
    if (!isGrabberControlled(state) || period <= 0 || !(state.number("FG_LINEEXPOSURE") > period)) return;
    state.add(
        "exposure", {"FG_LINEEXPOSURE", "FG_LINEPERIODE"},
        "The ExSync pulse is longer than the line period. The period was lowered after the exposure was "
        "set, and the exposure is neither clamped nor reported",
        "Set FG_LINEEXPOSURE=" + numberText(period) + " or less, or a longer FG_LINEPERIODE");
}

void delayAbovePeriod(State& state) {
    const double period = state.number("FG_LINEPERIODE");
    if (period <= 0 || !(state.number("FG_LINETRIGGERDELAY") > period)) return;
    state.add("delay", {"FG_LINETRIGGERDELAY", "FG_LINEPERIODE"},
              "ExSync2 is delayed by more than a line period, so it belongs to no line any more",
              "Set FG_LINETRIGGERDELAY=" + numberText(period) + " or less");
}

void offTheGrid(State& state) {
    for (const Parameter& parameter : state.parameters().all()) {
        if (parameter.kind() != REGISTER_KIND_DOUBLE || !accessWord(parameter).starts_with("rw")) continue;
        const double step = parameter.record->value.f64.increment;
        constexpr double smallestStep = 1e-6; // below it is a placeholder
        const double value = state.number(parameter.name);
        if (step < smallestStep || !std::isfinite(value)) continue;
        const double steps = value / step;
        constexpr double tolerance = 1e-6;
        if (std::fabs(steps - std::round(steps)) <= tolerance) continue;
        const std::string actual = rounded(std::round(steps) * step);
        state.add("grid", {parameter.name},
                  "Requested is " + numberText(value) + ", and the hardware counts in steps of " +
                      numberText(step) + ": the nearest one is " + actual,
                  "Set " + parameter.name + "=" + actual);
    }
}

void outsideItsLimits(State& state) {
    for (const Parameter& parameter : state.parameters().all()) {
        const bool isToldElsewhere =
            parameter.name == "FG_LINEEXPOSURE" || parameter.name == "FG_LINETRIGGERDELAY";
        if (isToldElsewhere || elementCount(parameter) > 0 || !accessWord(parameter).starts_with("rw") ||
            limitsText(parameter).empty())
            continue;
        if (isWithinLimits(parameter, state.value(parameter.name))) continue;
        state.add("limits", {parameter.name},
                  "The value stands outside its present limits, " + limitsText(parameter) +
                      ": they have moved since it was set, or a load has stored it unchecked. Setting it "
                      "again would be refused",
                  "Set a value within the limits, or see 'appletctl limits " + parameter.name + "'");
    }
}

void phaseAboveDownscale(State& state) {
    if (state.number("FG_LINE_DOWNSCALEINIT") <= state.number("FG_LINE_DOWNSCALE")) return;
    state.add("phase", {"FG_LINE_DOWNSCALEINIT", "FG_LINE_DOWNSCALE"},
              "The first line of an image waits for more input pulses than one line takes",
              "Set FG_LINE_DOWNSCALEINIT=" + numberText(state.number("FG_LINE_DOWNSCALE")) + " or less");
}

/** The rows of the region's two directions: in which of them the sensor is not checked. */
struct Direction {
    const char *offset, *size, *sensor;
    std::initializer_list<int> unchecked; // vantage points
};

void outsideTheSensor(State& state) {
    const Direction directions[] = {
        {"FG_XOFFSET", "FG_WIDTH", "FG_SENSORWIDTH", {FG_VANTAGEPOINT_TOP_LEFT, FG_VANTAGEPOINT_BOTTOM_LEFT}},
        {"FG_YOFFSET", "FG_HEIGHT", "FG_SENSORHEIGHT", {FG_VANTAGEPOINT_TOP_LEFT, FG_VANTAGEPOINT_TOP_RIGHT}},
    };
    for (const Direction& direction : directions) {
        const double end = state.number(direction.offset) + state.number(direction.size);
        if (!state.is("FG_VANTAGEPOINT", direction.unchecked) || end <= state.number(direction.sensor))
            continue;
        state.add(
            "sensor", {direction.offset, direction.size, direction.sensor, "FG_VANTAGEPOINT"},
            "The region of interest ends at " + numberText(end) +
                ", outside the sensor. This vantage point does not check it; another one would refuse it",
            std::string("Set ") + direction.sensor + " to the camera's own size, or a smaller region");
    }
}

void unlikeTables(State& state) {
    const LutTables tables = readLutTables(state.session().instance(), state.parameters());
    const Words names = {"FG_LUT_VALUE_RED", "FG_LUT_VALUE_GREEN", "FG_LUT_VALUE_BLUE"};
    if (!tables.areEqual()) {
        Words values;
        for (const LutTable& table : tables.colours) {
            const LutStatistics told = statisticsOf(table.entries, tables.largest);
            values.push_back(std::string(table.parameter) + " from " + numberText(told.minimum) + " to " +
                             numberText(told.maximum));
        }
        state.add(
            "tables", names, values,
            "The tables of the three colours are unlike. Whenever the applet writes whole tables by itself, "
            "from a file or by the formula, the board receives blue's for all three",
            "Set the elements of each colour after the file was loaded, or use one table for all; "
            "'appletctl lut show' compares with the board");
    }
    if (!state.is("FG_LUT_ENABLE", {FG_ON})) return;
    for (const LutTable& table : tables.colours)
        if (statisticsOf(table.entries, tables.largest).distinct == 1)
            state.add(
                "flat-table", {table.parameter},
                {std::string(table.parameter) + " is " + numberText(table.entries.front()) + " everywhere"},
                "The lookup table is on and gives one value for all inputs: the image is uniform",
                "See 'appletctl lut show', FG_PROCESSING_GAIN, _OFFSET and _GAMMA");
}

void customTableWithoutFile(State& state) {
    if (!state.is("FG_LUT_TYPE", {LUT_TYPE_CUSTOM})) return;
    if (!std::get<std::string>(state.value("FG_LUT_CUSTOM_FILE")).empty()) return;
    state.add("table-file", {"FG_LUT_TYPE", "FG_LUT_CUSTOM_FILE"},
              "The tables are to come from a file and none is named: they are what they were before, and no "
              "configuration file holds them",
              "Set FG_LUT_CUSTOM_FILE, or FG_LUT_TYPE=LUT_TYPE_PROCESSING");
}

void untriggeredCamera(State& state) {
    if (state.is("FG_TRIGGERCAMERA_SOURCE", {GND, VCC}))
        state.add("camera-trigger", {"FG_TRIGGERCAMERA_SOURCE"},
                  "The camera's trigger is a constant level: it exposes no line by itself",
                  "Set FG_TRIGGERCAMERA_SOURCE=FG_SIGNAL_CAM0_EXSYNC, unless the camera runs freely");
    if (state.is("FG_TRIGGERCAMERA_SOURCE", {FG_SIGNAL_CAM0_EXSYNC, FG_SIGNAL_CAM0_EXSYNC2}) &&
        state.is("FG_EXSYNCON", {FG_OFF}))
        state.add("camera-trigger", {"FG_EXSYNCON", "FG_TRIGGERCAMERA_SOURCE"},
                  "The camera is triggered by ExSync, and ExSync is off",
                  "Set FG_EXSYNCON=FG_ON, unless the camera runs freely");
}

void flashNowhere(State& state) {
    Words outputs;
    for (const Parameter& parameter : state.parameters().all())
        if (parameter.name.starts_with("FG_TRIGGEROUT_") && parameter.name.ends_with("_SOURCE") &&
            state.is(parameter.name, {FG_SIGNAL_CAM0_FLASH}))
            outputs.push_back(parameter.name);
    if (state.is("FG_FLASHON", {FG_ON}) && outputs.empty())
        state.add("flash", {"FG_FLASHON"}, "The flash is on and no output carries it",
                  "Set an output to FG_SIGNAL_CAM0_FLASH, as FG_TRIGGEROUT_GPO_0_SOURCE");
    if (state.is("FG_FLASHON", {FG_ON}) && state.number("FG_STROBEPULSEDELAY") >= state.number("FG_HEIGHT"))
        state.add("flash", {"FG_STROBEPULSEDELAY", "FG_HEIGHT"},
                  "The flash comes after the last line of the image",
                  "Set FG_STROBEPULSEDELAY below FG_HEIGHT");
}

bool isImageTriggered(State& state) { return !state.is("FG_IMGTRIGGERMODE", {FREE_RUN}); }

void imageTrigger(State& state) {
    if (!isImageTriggered(state)) return;
    if (state.is("FG_IMGTRIGGERON", {FG_OFF}))
        state.add("image-trigger", {"FG_IMGTRIGGERON", "FG_IMGTRIGGERMODE"},
                  "Images wait for a trigger, and the image trigger is off: none will start",
                  "Set FG_IMGTRIGGERON=FG_ON");
    const double lines = state.number("FG_IMGTRIGGER_ASYNC_HEIGHT");
    const double height = state.number("FG_HEIGHT");
    if (state.is("FG_IMGTRIGGERMODE", {ASYNC_TRIGGER_MULTIFRAME}) && std::fmod(lines, height) != 0)
        state.add("trigger-height", {"FG_IMGTRIGGER_ASYNC_HEIGHT", "FG_HEIGHT"},
                  "The lines of one trigger are no whole number of images: the last one stays incomplete",
                  "Set FG_IMGTRIGGER_ASYNC_HEIGHT to a multiple of FG_HEIGHT");
}

void sharedInputs(State& state) {
    if (isGrabberControlled(state)) return;
    if (state.is("FG_SHAFTENCODERON", {FG_ON}) &&
        state.number("FG_LINETRIGGERINSRC") == state.number("FG_SHAFTENCODERINSRC"))
        state.add("shared-input", {"FG_LINETRIGGERINSRC", "FG_SHAFTENCODERINSRC"},
                  "The shaft encoder's tracks A and B come from the same input, so there is no direction",
                  "Set FG_SHAFTENCODERINSRC to the input of track B");
    if (isImageTriggered(state) && state.number("FG_LINETRIGGERINSRC") == state.number("FG_IMGTRIGGERINSRC"))
        state.add("shared-input", {"FG_LINETRIGGERINSRC", "FG_IMGTRIGGERINSRC"},
                  "One input triggers both lines and images", "Set one of them to another input");
}

constexpr std::string_view simulatorPrefix = "FG_CAMERASIMULATOR_";

void simulatorOrDebug(State& state) {
    if (state.is("FG_CAMERASIMULATOR_ENABLE", {FG_CAMERASIMULATOR}))
        state.add("simulator", {"FG_CAMERASIMULATOR_ENABLE"},
                  "The images come from the camera simulator, not from the camera",
                  "Set FG_CAMERASIMULATOR_ENABLE=FG_CAMPORT");
    for (const char* name : {"FG_DEBUGINENABLE", "FG_DEBUGOUTENABLE"})
        if (state.is(name, {FG_ON}))
            state.add("debug", {name}, "The debug interface taps or feeds the image path",
                      std::string("Set ") + name + "=FG_OFF");
}

/** What a set of the value writes; nothing if it is refused. */
std::optional<Words> writesOf(State& state, const Target& target, const Value& value) {
    takeWrites(state.session().instance());
    if (writeValue(state.session().instance(), target, value) != FG_OK) return std::nullopt;
    return takeWrites(state.session().instance());
}

/** What a set does to the board. */
enum class Effect {
    some,
    none,
    computed, // the value does not follow a set: it is what other settings make of it
    unknown
};

Effect effectOf(State& state, const Parameter& parameter) {
    const Target target{&parameter};
    const Value now = state.value(parameter.name);
    const auto other =
        writesOf(state, target, fromMessage(target, state.session().defaults()[parameter.name]));
    const bool follows = state.value(parameter.name) != now;
    const auto back = writesOf(state, target, now);
    if (!other || !back) return Effect::unknown;
    if (!follows) return Effect::computed;
    const bool areTables = std::ranges::any_of(
        *back, [](const std::string& line) { return line.find(" field ") != std::string::npos; });
    return *other == *back && !areTables ? Effect::none : Effect::some;
}

bool isDescriptive(int id) { return id == FG_TIMEOUT || id == FG_SENSORWIDTH || id == FG_SENSORHEIGHT; }

/** Changed settings without effect: the published access says so, or the writes are the same for another
 *  value. */
void withoutEffect(State& state) {
    const bool isSimulating = state.is("FG_CAMERASIMULATOR_ENABLE", {FG_CAMERASIMULATOR});
    Words simulator;
    for (const Parameter& parameter : state.parameters().all()) {
        // Text names files, the sensor's size says how the camera is, and the timeout is the runtime's.
        const bool isLookedAt = parameter.record != nullptr && parameter.kind() != REGISTER_KIND_STRING &&
                                elementCount(parameter) == 0 && parameter.effectOfReading().empty() &&
                                parameter.effectOfWriting().empty() && !isDescriptive(parameter.id);
        if (!isLookedAt || !state.isChanged(parameter.name)) continue;
        const bool isReadOnly = accessWord(parameter) == "ro";
        const Effect effect = effectOf(state, parameter);
        if (effect == Effect::computed || effect == Effect::unknown) continue;
        if (parameter.name.starts_with(simulatorPrefix) && !isSimulating) {
            simulator.push_back(parameter.name);
        } else if (isReadOnly || effect == Effect::none) {
            state.add("no-effect", {parameter.name},
                      isReadOnly
                          ? "The value was changed and has no effect in the present mode, in which the "
                            "parameter is read-only"
                          : "The value was changed, and the board receives the same as for the default",
                      "'appletctl why " + parameter.name + "' tells what stands against it");
        }
    }
    if (!simulator.empty())
        state.add("no-effect", simulator,
                  "The simulator's settings were changed, and the images come from the camera",
                  "Set FG_CAMERASIMULATOR_ENABLE=FG_CAMERASIMULATOR to use it");
}

using Rule = void (*)(State& state);

constexpr Rule rules[] = {
    exposureAbovePeriod, delayAbovePeriod, offTheGrid,   outsideItsLimits,
    phaseAboveDownscale, outsideTheSensor, unlikeTables, customTableWithoutFile,
    untriggeredCamera,   flashNowhere,     imageTrigger, sharedInputs,
    simulatorOrDebug,
    withoutEffect, // last, as it tries values
};

} // namespace

json lintJob(ScratchSession& session, const json& arguments) {
    int loaded = FG_OK;
    if (const std::string file = arguments.value("file", ""); !file.empty()) {
        loaded = session.instance().applet().Fg_loadConfig(session.instance().fg(), file.c_str());
        if (loaded == FG_ERR_FILE_TYPE)
            throw UsageError(inQuotes(toUtf8(file.c_str())) +
                             " cannot be loaded: it must exist, and .mcf must be part of its name");
    }
    State state(session);
    for (const Rule rule : rules)
        rule(state);
    return {{"loaded", loaded}, {"findings", state.findings()}};
}

json findingsOf(Context& context, const std::string& file) {
    return context.scratch().ask("lint", {{"file", file}});
}

std::string findingsText(const json& findings) {
    std::string text;
    for (const json& finding : findings) {
        text += finding["rule"].get<std::string>() + ": " + join(finding["values"].get<Words>(), ", ") + '\n';
        text += "    " + finding["why"].get<std::string>() + ".\n";
        text += "    " + finding["advice"].get<std::string>() + ".\n";
    }
    return text;
}

namespace {

Report lintParameters(Context& context, const Words& words) {
    const bool isFile = !words.empty() && words.front().find('=') == std::string::npos;
    if (isFile && words.size() > 1)
        throw UsageError("one file is looked at, or the parameters after assignments");
    Report report = applyAssignments(context.instance(), context.parameters(), isFile ? Words{} : words);
    if (report.exitCode != exitDone) return report;
    const json told = findingsOf(context, isFile ? words.front() : "");
    const json& findings = told["findings"];
    if (isFile) report.document["file"] = toUtf8(words.front().c_str());
    report.document["findings"] = findings;
    report.text += findings.empty() ? "Nothing doubtful.\n" : findingsText(findings);
    if (const int code = told["loaded"].get<int>(); code != FG_OK)
        report.problems.push_back("the load answered " + codeInWords(code) + ": 'appletctl check' tells why");
    if (!findings.empty() || !report.problems.empty()) report.exitCode = exitRefused;
    addAssumed(report, context.assumed());
    return report;
}

} // namespace

extern const Command lintCommand;
const Command lintCommand = {
    .name = "lint",
    .help = "Say what is legal but doubtful",
    .argument = "FILE",
    .argumentHelp = "File to look at, or assignments to carry out before",
    .most = -1,
    .run = lintParameters,
    .scratch = Context::Scratch::wanted,
};

} // namespace appletctl
