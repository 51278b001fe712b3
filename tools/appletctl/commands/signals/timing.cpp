// Draws the signals of the line trigger over a few line periods, computed from the present values.

#include "applet_tools/answers/routes.h"
#include "applet_tools/applet/ParameterReader.h"
#include "applet_tools/applet/assignments.h"
#include "applet_tools/applet/published_limits.h"
#include "applet_tools/applet/timing/line_timing.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/probe/refusal.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/report_text.h"
#include "appletctl/base/terminal.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/assignment_report.h"
#include "appletctl/commands/shared_options.h"
#include "appletctl/commands/signals/measured_timing.h"
#include "appletctl/commands/signals/wave_option.h"
#include "appletctl/draw/svg.h"
#include "appletctl/draw/waves.h"

#include <CLI/CLI.hpp>

#include "vexo/fg_parameters.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>

namespace appletctl {
namespace {

constexpr int shownPeriods = 3;

/** Values read from the applet, times in microseconds. */
struct Settings {
    double period, exposure, delay;
    double downscale;
    double flashDelay; // lines
    std::int32_t mode;
    bool isExSyncOn, isFlashOn, isExSyncLow, isFlashLow;
};

/** A load stores values that no setter accepts, such as a period of 0. */
void requireDrawable(const Parameter& parameter, double value, double smallest) {
    constexpr double largest = 1e6;
    if (value >= smallest && value <= largest) return; // false for NaN
    const std::string accepted = acceptedText(parameter);
    throw Failure(parameter.name + " = " + valueWithUnit(parameter, value) +
                  " gives no timing: set another value" + (accepted.empty() ? "" : "; ") + accepted);
}

Settings settingsOf(Instance& instance, const ParameterList& parameters) {
    const ParameterReader reader(instance, parameters);
    const Settings settings = {.period = reader.number("FG_LINEPERIODE"),
                               .exposure = reader.number("FG_LINEEXPOSURE"),
                               .delay = reader.number("FG_LINETRIGGERDELAY"),
                               .downscale = reader.number("FG_LINE_DOWNSCALE"),
                               .flashDelay = reader.number("FG_STROBEPULSEDELAY"),
                               .mode = reader.get<std::int32_t>("FG_LINETRIGGERMODE"),
                               .isExSyncOn = reader.is("FG_EXSYNCON", FG_ON),
                               .isFlashOn = reader.is("FG_FLASHON", FG_ON),
                               .isExSyncLow = reader.is("FG_EXSYNCPOLARITY", FG_LOW),
                               .isFlashLow = reader.is("FG_FLASH_POLARITY", FG_LOW)};
    requireDrawable(parameters.find("FG_LINEPERIODE"), settings.period, 1e-3);
    requireDrawable(parameters.find("FG_LINEEXPOSURE"), settings.exposure, 0);
    requireDrawable(parameters.find("FG_LINETRIGGERDELAY"), settings.delay, 0);
    requireDrawable(parameters.find("FG_LINE_DOWNSCALE"), settings.downscale, 1);
    return settings;
}

/** Pulses of this length, one per period, the first at `start`, within the visible range. */
std::vector<Pulse> train(double start, double period, double length, double end) {
    const double first = start - period * std::ceil((start + length) / period);
    const auto count = static_cast<int>(std::ceil((end - 1e-6 - first) / period));
    std::vector<Pulse> pulses;
    for (int number = 0; number < count; ++number) {
        const double begin = first + number * period;
        pulses.push_back({begin, begin + length});
    }
    return merged(pulses, end);
}

/** A signal of the design: which source of an output it is, and its wave. */
struct Signal {
    std::int32_t source;
    Wave wave;
};

std::vector<Signal> signalsOf(const Settings& settings, double end) {
    const auto exSync = [&](double delay) {
        return settings.isExSyncOn ? train(delay, settings.period, settings.exposure, end)
                                   : std::vector<Pulse>{};
    };
    std::vector<Pulse> flash;
    // From the ExSync of its line to the next one.
    const double flashStart = settings.flashDelay * settings.period;
    if (settings.isFlashOn) flash = merged({{flashStart, flashStart + settings.period}}, end);
    return {{FG_SIGNAL_CAM0_EXSYNC, {"ExSync", exSync(0), settings.isExSyncLow}},
            {FG_SIGNAL_CAM0_EXSYNC2, {"ExSync2", exSync(settings.delay), settings.isExSyncLow}},
            {FG_SIGNAL_CAM0_FLASH, {"Flash", flash, settings.isFlashLow}}};
}

/** An output of the board and its signal. */
struct Output {
    std::string name; // "FG_TRIGGERCAMERA"
    std::string source;
    nlohmann::ordered_json sourceJson;
    std::int32_t sourceValue;
    bool isInverted;
    Wave wave;
};

Wave waveOf(const std::string& name, std::int32_t source, bool isInverted,
            const std::vector<Signal>& signals) {
    if (source == GND) return {name, std::vector<Pulse>{}, false};
    if (source == VCC) return {name, std::vector<Pulse>{}, true};
    for (const Signal& signal : signals)
        if (signal.source == source) return {name, signal.wave.active, signal.wave.isActiveLow != isInverted};
    return {name, std::nullopt, isInverted};
}

std::vector<Output> outputsOf(Instance& instance, const ParameterList& parameters,
                              const std::vector<Signal>& signals) {
    std::vector<Output> outputs;
    for (const SignalRoute& route : routesOf(parameters)) {
        if (!route.output.starts_with("FG_TRIGGER")) continue;
        const Value source = valueOf(instance, route.source);
        const auto value = std::get<std::int32_t>(source);
        const Value polarity = valueOf(instance, route.polarity);
        const bool isConstant = value == GND || value == VCC;
        const bool isInverted = !isConstant && std::get<std::int32_t>(polarity) == FG_LOW;
        outputs.push_back({route.output, valueText(*route.source.parameter, source),
                           valueAsJson(route.source, source), value, isInverted,
                           waveOf(route.output, value, isInverted, signals)});
    }
    return outputs;
}

/** All displayed data. */
struct Timing {
    Settings settings{};
    double end = 0;
    std::vector<Signal> signals;
    std::vector<Output> outputs;
    std::vector<Wave> shown; // signals and what follows from them
    Words assumed;
    Words warnings;
};

Timing timingOf(Instance& instance, const ParameterList& parameters) {
    Timing timing;
    timing.settings = settingsOf(instance, parameters);
    const Settings& settings = timing.settings;
    timing.end = shownPeriods * settings.period;
    for (const TimingTrouble& trouble :
         timingTroubles(settings.mode, settings.period, settings.exposure, settings.delay))
        timing.warnings.emplace_back(std::string(trouble.rule) + ": " + trouble.why);
    timing.signals = signalsOf(settings, timing.end);
    timing.outputs = outputsOf(instance, parameters, timing.signals);
    if (isExternal(settings.mode)) {
        const double period = settings.period / settings.downscale;
        timing.shown.push_back({"Line input", train(0, period, period / 2, timing.end), false});
        timing.assumed.push_back(
            "the line trigger input has a period of FG_LINEPERIODE / FG_LINE_DOWNSCALE, " +
            numberText(period) + " µs; its real one is the encoder's");
    }
    for (const Signal& signal : timing.signals)
        timing.shown.push_back(signal.wave);
    const auto camera = std::ranges::find(timing.outputs, "FG_TRIGGERCAMERA", &Output::name);
    if (camera != timing.outputs.end()) {
        timing.shown.push_back({"Exposure", camera->wave.active, false});
        timing.assumed.push_back(
            camera->wave.active ? "the camera exposes while its trigger is active"
                                : "nothing of the exposure, as the camera is triggered by " + camera->source);
    }
    if (settings.isFlashOn && settings.flashDelay >= shownPeriods)
        timing.assumed.push_back("the flash comes " + numberText(settings.flashDelay) +
                                 " lines after the start of the image, outside the picture");
    return timing;
}

std::string outputNames(const Timing& timing, std::int32_t source) {
    Words names;
    for (const Output& output : timing.outputs)
        if (output.sourceValue == source)
            names.push_back(output.name + (output.isInverted ? " (inverted)" : ""));
    return names.empty() ? "-" : join(names, ", ");
}

std::string tableText(const Timing& timing) {
    const Settings& settings = timing.settings;
    Table table;
    table.setTitles({"SIGNAL", "ACTIVE", "FROM", "EVERY", "OUTPUTS"});
    const std::string exposure = numberText(settings.exposure) + " µs";
    const std::string period = numberText(settings.period) + " µs";
    const std::string off = "off";
    table.addRow({"ExSync", settings.isExSyncOn ? exposure : off, "0 µs", period,
                  outputNames(timing, FG_SIGNAL_CAM0_EXSYNC)});
    table.addRow({"ExSync2", settings.isExSyncOn ? exposure : off, numberText(settings.delay) + " µs", period,
                  outputNames(timing, FG_SIGNAL_CAM0_EXSYNC2)});
    table.addRow({"Flash", settings.isFlashOn ? period : off, numberText(settings.flashDelay) + " lines",
                  "image", outputNames(timing, FG_SIGNAL_CAM0_FLASH)});
    Words shown;
    for (const Output& output : timing.outputs) {
        const bool isSignal =
            std::ranges::find(timing.signals, output.sourceValue, &Signal::source) != timing.signals.end();
        if (isSignal || std::ranges::find(shown, output.source) != shown.end()) continue;
        shown.push_back(output.source);
        table.addRow({output.source, "-", "-", "-", outputNames(timing, output.sourceValue)});
    }
    return table.render(Style::forStream(STDOUT_FILENO));
}

nlohmann::ordered_json asJson(const Wave& wave) {
    nlohmann::ordered_json object = {
        {"name", wave.name}, {"activeLow", wave.isActiveLow}, {"pulses", nullptr}};
    if (!wave.active) return object;
    object["pulses"] = nlohmann::ordered_json::array();
    for (const Pulse& pulse : *wave.active)
        object["pulses"].push_back({pulse.start, pulse.end});
    return object;
}

void addDocument(Report& report, const Timing& timing) {
    report.document["linePeriod"] = timing.settings.period;
    report.document["lineRate"] = 1e6 / timing.settings.period;
    report.document["end"] = timing.end;
    auto& signals = report.document["signals"] = nlohmann::ordered_json::array();
    for (const Wave& wave : timing.shown)
        signals.push_back(asJson(wave));
    auto& outputs = report.document["outputs"] = nlohmann::ordered_json::array();
    for (const Output& output : timing.outputs)
        outputs.push_back(
            {{"output", output.name}, {"source", output.sourceJson}, {"inverted", output.isInverted}});
    report.document["assumed"] = timing.assumed;
    report.document["warnings"] = timing.warnings;
}

/** Signals, then the outputs. */
std::vector<Wave> allWaves(const Timing& timing) {
    std::vector<Wave> waves = timing.shown;
    for (const Output& output : timing.outputs)
        waves.push_back(output.wave);
    return waves;
}

std::string subtitle(const Timing& timing) {
    return "line period " + numberText(timing.settings.period) + " µs, exposure " +
           numberText(timing.settings.exposure) + " µs, delay of ExSync2 " +
           numberText(timing.settings.delay) + " µs";
}

void writePicture(Report& report, const std::optional<std::string>& file, const char* member,
                  const std::string& content) {
    if (!file) return;
    writeFile(*file, content);
    report.document[member] = toUtf8(*file);
    report.text += writtenLine(*file);
}

struct TimingOptions {
    std::optional<std::string> svgFile; /**< --svg */
    std::optional<std::string> vcdFile; /**< --vcd */
    bool isMeasured = false;            /**< --measured: on the station, too */
    std::optional<std::string> window;  /**< --window: the time that the files show */
};

void addTimingOptions(CLI::App& command, Options& options) {
    auto& own = options.own<TimingOptions>();
    command.add_option("--svg", own.svgFile, "Picture to write")->type_name("FILE");
    command.add_option("--vcd", own.vcdFile, "Waveforms to write, for a waveform viewer")->type_name("FILE");
    command.add_flag("--measured", own.isMeasured,
                     "Let the virtual board's station run, and show beside it what it does; files show that");
    command
        .add_option("--window", own.window,
                    "Time that the files of --measured show, from when the station starts to run, such as "
                    "10ms..12ms; "
                    "if not given, four line periods of the beginning")
        ->type_name("FROM..TO");
    addWaves(command, options);
}

Report showTiming(Context& context, const Words& assignments) {
    const auto& options = context.options().of<TimingOptions>();
    requireFileName(options.svgFile);
    requireFileName(options.vcdFile);
    if (options.svgFile) requireEnding(*options.svgFile, ".svg", "an SVG picture");
    if (options.vcdFile) requireEnding(*options.vcdFile, ".vcd", "a value change dump");
    const std::vector<WaveRequest> connected = wavesOf(context.options());
    if (!connected.empty() && !options.isMeasured)
        throw UsageError("--wave is for the station, which runs with --measured");
    if (options.window && (!options.isMeasured || (!options.svgFile && !options.vcdFile)))
        throw UsageError("--window is for the files of --measured: give --measured, and --svg or --vcd");
    const std::optional<TimeWindow> window =
        options.window ? std::optional(windowFrom(*options.window)) : std::nullopt;
    Report report = applyLive(context, assignments);
    if (report.exitCode != exitDone) return report;
    const Timing timing = timingOf(context.instance(), context.parameters());
    addDocument(report, timing);
    if (!report.text.empty()) report.text += '\n';
    report.text += forPerson(wavesText(timing.shown, timing.end, timing.settings.period,
                                       canDrawUnicode(STDOUT_FILENO), outputWidth()) +
                             '\n') +
                   tableText(timing);
    for (const std::string& warning : timing.warnings)
        report.text += forPerson(warning + ".\n");
    for (const std::string& assumption : timing.assumed)
        report.text += forPerson("(assumed: " + assumption + ")\n");
    MeasuredDrawing drawing{allWaves(timing), timing.settings.period, timing.end, 0};
    if (options.isMeasured) drawing = addMeasuredTiming(report, context, connected, window);
    if (report.exitCode != exitDone) return report;
    const std::string words =
        options.isMeasured ? "measured on the virtual board's station" : subtitle(timing);
    writePicture(report, options.svgFile, "svg",
                 wavesAsSvg(drawing.waves, drawing.end, drawing.period, words, drawing.origin));
    writePicture(report, options.vcdFile, "vcd", wavesAsVcd(drawing.waves, drawing.end, drawing.origin));
    return report;
}

} // namespace

extern const Command timingCommand;
const Command timingCommand = {
    .name = "timing",
    .help = "Show the signals over three line periods, and which output carries them",
    .argument = "NAME=VALUE",
    .argumentHelp = "Assignments to execute first",
    .examples = {{"timing FG_LINEPERIODE=50", "signals of three line periods"},
                 {"timing --svg lines.svg", "as a picture"},
                 {"timing --measured --from line.mcf", "beside what the virtual board's station does"}},
    .most = -1,
    .run = showTiming,
    .scratch = Context::Scratch::wanted,
    .addOptions = addTimingOptions,
    .sets = Command::Sets::assignments,
    .showsValues = true,
    .takesLong = true,
};

} // namespace appletctl
