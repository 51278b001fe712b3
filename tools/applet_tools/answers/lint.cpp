// Legal but doubtful states. The rules run on a scratch board, where they can try values.

#include "applet_tools/answers/lint.h"

#include "applet_tools/answers/loading.h"
#include "applet_tools/applet/access_log.h"
#include "applet_tools/applet/assignments.h"
#include "applet_tools/applet/files/LutTables.h"
#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/applet/line_timing.h"
#include "applet_tools/applet/published_limits.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/measured_range.h"

#include "vexo/fg_errors.h"
#include "vexo/fg_parameters.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace applet_tools {
namespace {

/** The state under examination and the findings so far. */
class State {
public:
    /** `goBack` restores the examined state. `refused` are the parameters with values that the load of `file`
     *  stored although their setters refuse them. The name of `file` is empty if there is none. */
    State(ScratchSession& session, std::function<void()> goBack, std::string file, Words refused)
        : m_session(session)
        , m_goBack(std::move(goBack))
        , m_file(std::move(file))
        , m_refused(std::move(refused)) {}

    ScratchSession& session() { return m_session; }
    const ParameterList& parameters() const { return m_session.parameters(); }
    /** The value; zero or empty if it cannot be read, for example in an invalid mode after a load. */
    Value value(const std::string& name) {
        const Target target = m_session.target(name);
        const ReadResult reading = readValue(m_session.instance(), target);
        return reading.error == FG_OK ? reading.value : emptyValue(target);
    }
    double number(const std::string& name) { return asDouble(value(name)); }
    /** True if the enumeration has one of these values. */
    bool is(const std::string& name, std::initializer_list<int> entries) {
        return std::ranges::find(entries, static_cast<int>(number(name))) != entries.end();
    }
    /** True for a value changed since the bring-up. */
    bool isChanged(const std::string& name) {
        const auto start = m_session.defaults().find(name);
        const ReadResult reading = readValue(m_session.instance(), m_session.target(name));
        if (start == m_session.defaults().end() || reading.error != FG_OK) return false;
        const json now = asMessage(reading.value);
        if (!now.is_number_float()) return *start != now;
        // Simulator rates read from a file end up at the next step of their counter.
        constexpr double tolerance = 1e-3;
        const double before = start->get<double>();
        return std::fabs(now.get<double>() - before) > tolerance * std::fabs(before);
    }

    /** True for a value that the load's setter refused but that reads back. */
    bool isRefused(const std::string& name) const {
        return std::ranges::find(m_refused, name) != m_refused.end();
    }

    /** " --from FILE", to run another command on the same state; empty without a file. */
    std::string fromFile() const { return m_file.empty() ? "" : " --from " + asShellWord(m_file); }

    void add(const char* rule, const Words& names, const std::string& why, const std::string& advice) {
        add(rule, names, textsOf(names), valuesOf(names), why, advice);
    }
    /** `texts` are for display; `values` are the same as objects with at least a name. */
    void add(const char* rule, const Words& names, const Words& texts, const json& values,
             const std::string& why, const std::string& advice) {
        if (isAboutRefused(rule, names)) return;
        m_findings.push_back({rule, names, texts, values, why, advice});
    }
    /** Advises setting the first of the names to `wanted`, or to the nearest value that its setter accepts. */
    void propose(const char* rule, const Words& names, const Words& texts, const json& values,
                 const std::string& why, const Value& wanted, const std::string& orElse = "") {
        if (isAboutRefused(rule, names)) return;
        m_proposals.push_back({m_findings.size(), names.front(), wanted, orElse});
        add(rule, names, texts, values, why, "");
    }
    void propose(const char* rule, const Words& names, const std::string& why, const Value& wanted,
                 const std::string& orElse = "") {
        propose(rule, names, textsOf(names), valuesOf(names), why, wanted, orElse);
    }
    /** True when a rule wants the parameter to be set again. */
    bool isProposed(const std::string& name) const {
        return std::ranges::find(m_proposals, name, &Proposal::name) != m_proposals.end();
    }

    /** Restores the state after a rule has tried values. */
    void goBack() { m_goBack(); }

    /** Runs last, since it tries values. */
    const std::vector<LintFinding>& findings() {
        for (const Proposal& proposal : m_proposals) {
            m_goBack();
            m_findings[proposal.finding].advice = adviceOn(proposal);
        }
        m_proposals.clear();
        return m_findings;
    }

private:
    struct Proposal {
        std::size_t finding;
        std::string name;
        Value wanted;
        std::string orElse;
    };

    /** For a refused value only the limits are reported; findings of other rules would hide them. */
    bool isAboutRefused(std::string_view rule, const Words& names) const {
        if (rule == "limits" || rule == "load") return false;
        return std::ranges::any_of(names, [this](const std::string& name) { return isRefused(name); });
    }

    Words textsOf(const Words& names) {
        Words texts;
        for (const std::string& name : names)
            texts.push_back(name + " = " + valueWithUnit(parameters().find(name), value(name)));
        return texts;
    }
    json valuesOf(const Words& names) {
        json values = json::array();
        for (const std::string& name : names) {
            const Parameter& parameter = parameters().find(name);
            values.push_back({{"name", name}, {"unit", parameter.unit()}});
            values.back().update(json(valueAsJson({&parameter}, value(name))));
        }
        return values;
    }

    std::string adviceOn(const Proposal& proposal) {
        Probe probe(m_session);
        const Target target = m_session.target(proposal.name);
        std::optional<Value> accepted = proposal.wanted;
        if (probe.answer(target, proposal.wanted) != FG_OK)
            accepted = nearestAccepted(probe, target, proposal.wanted);
        if (!accepted || probe.answer(target, *accepted) != FG_OK)
            return "'appletctl limits " + proposal.name + fromFile() + "' tells what is accepted";
        return "Set " + proposal.name + "=" + valueText(*target.parameter, *accepted) + proposal.orElse;
    }

    ScratchSession& m_session;
    std::function<void()> m_goBack;
    std::vector<LintFinding> m_findings;
    std::vector<Proposal> m_proposals;
    std::string m_file;
    Words m_refused;
};

bool isGrabberControlled(State& state) {
    return state.is("FG_LINETRIGGERMODE", {GRABBER_CONTROLLED, GRABBER_CONTROLLED_GATED});
}

void unfitTiming(State& state) {
    const auto mode = static_cast<std::int32_t>(state.number("FG_LINETRIGGERMODE"));
    for (const TimingTrouble& trouble :
         timingTroubles(mode, state.number("FG_LINEPERIODE"), state.number("FG_LINEEXPOSURE"),
                        state.number("FG_LINETRIGGERDELAY")))
        state.propose(trouble.rule, {trouble.names.begin(), trouble.names.end()}, trouble.why,
                      trouble.longest, std::string(" or less") + trouble.orElse);
}

void offTheGrid(State& state) {
    for (const Parameter& parameter : state.parameters().all()) {
        if (countingOf(parameter).empty() || !accessWord(parameter).starts_with("rw")) continue;
        const Value value = state.value(parameter.name);
        if (!isWithinLimits(parameter, value) || state.isProposed(parameter.name)) continue;
        if (const auto actual = nearestStep(parameter, value))
            state.propose("grid", {parameter.name},
                          "Requested is " + valueText(parameter, value) + ", but " + countingOf(parameter) +
                              ": the nearest is " + numberText(*actual),
                          *actual);
    }
}

constexpr std::string_view simulatorPrefix = "FG_CAMERASIMULATOR_";

/** True for a rate that the simulator computes from other parameters in its present mode. */
bool isComputedRate(const Parameter& parameter) {
    return parameter.kind() == REGISTER_KIND_DOUBLE && parameter.name.starts_with(simulatorPrefix) &&
           accessWord(parameter) == "ro";
}

/** Sets the parameters to their present values again. */
void refusedIfSetAgain(State& state) {
    for (const Parameter& parameter : state.parameters().all()) {
        const bool isAsked = parameter.record != nullptr && elementCount(parameter) == 0 &&
                             parameter.effectOfReading().empty() && parameter.effectOfWriting().empty() &&
                             !isComputedRate(parameter) && !state.isProposed(parameter.name);
        if (!isAsked) continue;
        const ReadResult reading = readValue(state.session().instance(), {&parameter});
        if (reading.error != FG_OK) continue; // reported for the parameter that causes it
        const Value& value = reading.value;
        const auto* number = std::get_if<double>(&value);
        const bool isNoNumber = number != nullptr && !std::isfinite(*number);
        const int code = writeValue(state.session().instance(), {&parameter}, requestFor(parameter, value));
        if (isNoNumber)
            state.propose("limits", {parameter.name},
                          "The value is no number. No limit stops it, so the board receives it",
                          fromMessage({&parameter}, state.session().defaults().at(parameter.name)));
        else if (state.isRefused(parameter.name) && code != FG_OK)
            state.propose("limits", {parameter.name},
                          "The load of the file refuses the value: " +
                              refusalInWords(parameter, value, code) + ". It reads back nevertheless",
                          value);
        else if (code != FG_OK && code != FG_ERR_NOT_AVAILABLE)
            state.propose(
                "limits", {parameter.name},
                "Setting the value again would be refused: " + refusalInWords(parameter, value, code) +
                    ". The limits have moved since it was set, or a load has stored it unchecked",
                value);
    }
}

void phaseAboveDownscale(State& state) {
    if (state.number("FG_LINE_DOWNSCALEINIT") <= state.number("FG_LINE_DOWNSCALE")) return;
    state.propose("phase", {"FG_LINE_DOWNSCALEINIT", "FG_LINE_DOWNSCALE"},
                  "The first line of an image waits for more input pulses than one line takes",
                  state.value("FG_LINE_DOWNSCALE"), " or less");
}

/** Rows for the two directions of the region, with the vantage points for which the sensor is not checked. */
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

/** Lookup tables that map more than a few inputs to black or white. */
void clippedTables(State& state, const LutTables& tables) {
    Words names, texts;
    json values = json::array();
    for (const LutTable& table : tables.colours) {
        const LutStatistics statistics = statisticsOf(table.entries, tables.largest);
        std::size_t clipped = 0;
        for (const auto& range : {statistics.atStart, statistics.atEnd})
            if (range) clipped += range->count();
        constexpr std::size_t few = 100; // one percent is not worth a finding
        if (statistics.distinct == 1 || clipped * few < table.entries.size()) continue;
        names.emplace_back(table.parameter);
        const double percent =
            std::round(100.0 * static_cast<double>(clipped) / static_cast<double>(table.entries.size()));
        texts.push_back(std::string(table.parameter) + " clips " + numberText(percent) + " % of the inputs");
        values.push_back({{"name", table.parameter}, {"clippedPercent", percent}});
    }
    if (names.empty()) return;
    state.add(
        "clipping", names, texts, values,
        "The lookup table is on and gives its smallest or largest value for many inputs: these can no longer "
        "be distinguished",
        "See 'appletctl lut show', FG_PROCESSING_GAIN, _OFFSET and _GAMMA");
}

void unlikeTables(State& state) {
    const LutTables tables = readLutTables(state.session().instance(), state.parameters());
    const Words names = {"FG_LUT_VALUE_RED", "FG_LUT_VALUE_GREEN", "FG_LUT_VALUE_BLUE"};
    if (!tables.areEqual()) {
        Words texts;
        json values = json::array();
        for (const LutTable& table : tables.colours) {
            const LutStatistics statistics = statisticsOf(table.entries, tables.largest);
            texts.push_back(std::string(table.parameter) + " from " + numberText(statistics.minimum) +
                            " to " + numberText(statistics.maximum));
            values.push_back({{"name", table.parameter},
                              {"minimum", statistics.minimum},
                              {"maximum", statistics.maximum}});
        }
        state.add(
            "tables", names, texts, values,
            "The tables of the three colours are unlike. Whenever the applet writes whole tables by itself, "
            "from a file or by the formula, the board receives blue's for all three",
            "Set the elements of each colour after the file was loaded, or use one table for all; "
            "'appletctl lut show' compares with the board");
    }
    if (!state.is("FG_LUT_ENABLE", {FG_ON})) return;
    clippedTables(state, tables);
    for (const LutTable& table : tables.colours)
        if (statisticsOf(table.entries, tables.largest).distinct == 1)
            state.add(
                "flat-table", {table.parameter},
                {std::string(table.parameter) + " is " + numberText(table.entries.front()) + " everywhere"},
                json::array({{{"name", table.parameter},
                              {"minimum", table.entries.front()},
                              {"maximum", table.entries.front()}}}),
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
        state.propose("flash", {"FG_STROBEPULSEDELAY", "FG_HEIGHT"},
                      "The flash comes after the last line of the image",
                      static_cast<std::uint32_t>(std::max(1.0, state.number("FG_HEIGHT")) - 1), " or less");
}

bool isImageTriggered(State& state) { return !state.is("FG_IMGTRIGGERMODE", {FREE_RUN}); }

void imageTrigger(State& state) {
    if (!isImageTriggered(state)) return;
    if (state.is("FG_IMGTRIGGERON", {FG_OFF}))
        state.add("image-trigger", {"FG_IMGTRIGGERON", "FG_IMGTRIGGERMODE"},
                  "The image trigger is off: images come without a trigger, as in free run",
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

void simulatorOrDebug(State& state) {
    if (state.is("FG_CAMERASIMULATOR_ENABLE", {FG_CAMERASIMULATOR}))
        state.add("simulator", {"FG_CAMERASIMULATOR_ENABLE"},
                  "The images come from the camera simulator, not from the camera",
                  "Set FG_CAMERASIMULATOR_ENABLE=FG_CAMPORT");
    if (state.is("FG_CAMERASIMULATOR_ENABLE", {FG_CAMERASIMULATOR}) && !state.is("FG_PIXELFORMAT", {RGB8}))
        state.add("simulator", {"FG_PIXELFORMAT"},
                  "The value of the camera simulator is in the low 8 bits of a component, so its picture is "
                  "dark",
                  "Set FG_PIXELFORMAT=RGB8");
    for (const char* name : {"FG_DEBUGINENABLE", "FG_DEBUGOUTENABLE"})
        if (state.is(name, {FG_ON}))
            state.add("debug", {name}, "The debug interface taps or feeds the image path",
                      std::string("Set ") + name + "=FG_OFF");
}

/** The writes of a set with this value; empty if it is refused. */
std::optional<Words> writesOf(State& state, const Target& target, const Value& value) {
    takeWrites(state.session().instance());
    if (writeValue(state.session().instance(), target, value) != FG_OK) return std::nullopt;
    return takeWrites(state.session().instance());
}

/** The effect of a set on the board. */
enum class Effect {
    some,
    none,
    computed, // the value depends on other settings and ignores a set
    unknown
};

Effect effectOf(State& state, const Parameter& parameter) {
    const Target target{&parameter};
    const Value now = state.value(parameter.name);
    const auto other =
        writesOf(state, target, fromMessage(target, state.session().defaults()[parameter.name]));
    const bool follows = state.value(parameter.name) != now;
    const auto back = writesOf(state, target, requestFor(parameter, now));
    if (!other || !back) return Effect::unknown;
    if (!follows) return Effect::computed;
    const bool areTables = std::ranges::any_of(
        *back, [](const std::string& line) { return line.find(" field ") != std::string::npos; });
    return *other == *back && !areTables ? Effect::none : Effect::some;
}

bool isDescriptive(int id) { return id == FG_TIMEOUT || id == FG_SENSORWIDTH || id == FG_SENSORHEIGHT; }

/** Changed settings without effect: read-only according to the record, or with the same writes for another
 *  value. */
void withoutEffect(State& state) {
    const bool isSimulating = state.is("FG_CAMERASIMULATOR_ENABLE", {FG_CAMERASIMULATOR});
    Words simulator;
    for (const Parameter& parameter : state.parameters().all()) {
        // Texts are file names, the sensor size describes the camera, the timeout belongs to the runtime.
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
                      "'appletctl why " + parameter.name + state.fromFile() + "' says what prevents it");
        }
    }
    if (simulator.empty()) return;
    state.goBack();
    state.add("no-effect", simulator,
              "The simulator's settings were changed, and the images come from the camera",
              "Set FG_CAMERASIMULATOR_ENABLE=FG_CAMERASIMULATOR to use it");
}

using Rule = void (*)(State& state);

constexpr Rule rules[] = {
    unfitTiming,       offTheGrid,       phaseAboveDownscale,
    outsideTheSensor,  unlikeTables,     customTableWithoutFile,
    untriggeredCamera, flashNowhere,     imageTrigger,
    sharedInputs,      simulatorOrDebug,
    refusedIfSetAgain, // last, since it tries values
    withoutEffect,
};

/** Loads the file; does not restore the board. */
LoadOutcome tryLoad(ScratchSession& session, FileKeys& keys, const std::string& file) {
    LoadOutcome outcome = loadAndCompare(session, keys, file);
    if (outcome.code == FG_ERR_FILE_TYPE)
        throw UsageError(inQuotes(toUtf8(file.c_str())) +
                         " cannot be loaded: it must exist, and .mcf must be part of its name");
    return outcome;
}

/** The parameters with values that the load's setters refused but that read back. */
Words keptNames(const LoadOutcome& outcome) {
    Words names;
    for (const Finding& finding : outcome.findings)
        if (finding.kind == "kept") names.push_back(finding.key);
    return names;
}

/** Reports many missing keys as one finding; returns false if there are few. */
bool addMissing(State& state, const LoadOutcome& outcome) {
    constexpr std::size_t few = 3;
    Words names;
    for (const Finding& finding : outcome.findings)
        if (finding.kind == std::string_view("missing")) names.push_back(finding.key);
    if (names.size() <= few) return false;
    const Words first(names.begin(), names.begin() + few);
    state.add("load", {}, {numberText(names.size()) + " keys"}, json::array(),
              join(first, ", ") + " and " + numberText(names.size() - few) +
                  " more are missing: a load leaves them as they were",
              "'appletctl check' names them all");
    return true;
}

/** A name for a finding without a parameter value; empty for the others. */
std::string subjectWithoutValue(const Finding& finding, const std::string& path) {
    const std::string_view kind = finding.kind;
    if (finding.key.empty()) return inQuotes(toUtf8(path.c_str()));
    if (kind == "unknown") return "the key " + inQuotes(toUtf8(finding.key.c_str()));
    return kind == "missing" ? finding.key + " is not in the file" : "";
}

/** Findings about the load of the file that the resulting state does not show. */
void addLosses(State& state, const LoadOutcome& outcome, const std::string& path,
               const ConfigurationFile& file) {
    const bool isMissed = addMissing(state, outcome);
    for (const Finding& finding : outcome.findings) {
        if (isMissed && finding.kind == std::string_view("missing")) continue;
        if (const std::string subject = subjectWithoutValue(finding, path); !subject.empty()) {
            state.add("load", {}, {subject}, json::array(), finding.message,
                      "'appletctl check' tells all that is lost");
            continue;
        }
        if (!finding.isLoss || state.isProposed(finding.key)) continue;
        const std::string text = file.value(finding.key).value_or("");
        const Words names = {toUtf8(finding.key.c_str())};
        const Words texts = {names.front() + " = " + printable(toUtf8(text.c_str())) + " in the file"};
        const json values = {{{"name", names.front()}, {"inFile", toUtf8(text.c_str())}}};
        const bool isRefused = std::string_view(finding.kind) == "refused";
        const auto value = isRefused ? valueInFile(state.parameters().find(finding.key), text) : std::nullopt;
        if (value)
            state.propose("load", names, texts, values, finding.message, *value);
        else
            state.add("load", names, texts, values, finding.message,
                      "'appletctl check' tells all that is lost");
    }
}

} // namespace

Lint lint(ScratchSession& session, const std::string& file) {
    LoadOutcome outcome;
    const MemoryFile readByLoad; // loaded instead of the file, which may be large
    const auto goBack = [&] {
        session.rewind();
        if (!file.empty()) loadConfiguration(session.instance(), readByLoad.configurationPath());
    };
    if (!file.empty()) {
        FileKeys keys(session);
        outcome = tryLoad(session, keys, file);
        readByLoad.write(textForLoad(ConfigurationFile::textOf(file), keys.defaults()));
        goBack();
    }
    State state(session, goBack, file, keptNames(outcome));
    for (const Rule rule : rules)
        rule(state);
    if (!file.empty()) addLosses(state, outcome, file, ConfigurationFile(readByLoad.text()));
    return {outcome.code, state.findings()};
}

json asJson(const LintFinding& finding) {
    return {{"rule", finding.rule},
            {"names", finding.names},
            {"values", finding.values},
            {"why", finding.why},
            {"advice", finding.advice}};
}

json lintJob(ScratchSession& session, const json& arguments) {
    const Lint found = lint(session, arguments.value("file", ""));
    json findings = json::array();
    for (const LintFinding& finding : found.findings) {
        findings.push_back(asJson(finding));
        findings.back()["texts"] = finding.texts;
    }
    return {{"loaded", found.loaded}, {"findings", findings}};
}

Lint askLint(LiveSession& live, const std::string& file) {
    const json answer = live.scratch().ask("lint", {{"file", file}});
    Lint found{answer["loaded"].get<int>()};
    for (const json& row : answer["findings"])
        found.findings.push_back({row["rule"].get<std::string>(), row["names"].get<Words>(),
                                  row["texts"].get<Words>(), row["values"], row["why"].get<std::string>(),
                                  row["advice"].get<std::string>()});
    return found;
}

} // namespace applet_tools
