#include "applet_tools/answers/measured_timing.h"

#include "applet_tools/applet/ParameterReader.h"
#include "applet_tools/applet/timing/line_trigger.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "applet_tools/station/Grabber.h"
#include "applet_tools/station/StationFile.h"
#include "applet_tools/station/missing_picture.h"

#include "vexo/fg_parameters.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace applet_tools {
namespace {

/** Values from the settings, times in microseconds. */
struct Expected {
    double period, exposure, delay;
    std::optional<double> linePeriod, imagePeriod;
    bool isExternal, isExSyncLow, isFlashLow;
    bool hasEdges; // ExSync falls before its next rising edge
};

class Measurement {
public:
    Measurement(Instance& instance, const ParameterList& parameters, const std::optional<TimeWindow>& window)
        : m_instance(instance)
        , m_parameters(parameters)
        , m_settings(instance, parameters)
        , m_window(window) {}

    MeasuredTiming run(const std::vector<WaveRequest>& waves, const std::function<bool()>& goesOn) {
        m_expected = expected();
        connect(waves);
        m_timing.from = now();
        grab(goesOn);
        return std::move(m_timing);
    }

private:
    double number(const char* name) const { return m_settings.number(name); }
    bool is(const char* name, std::int32_t entry) const { return m_settings.is(name, entry); }
    Ticks now() const { return m_instance.board().now(m_instance.device()); }

    Expected expected() const {
        Expected expected{.period = number("FG_LINEPERIODE"),
                          .exposure = number("FG_LINEEXPOSURE"),
                          .delay = number("FG_LINETRIGGERDELAY"),
                          .linePeriod = {},
                          .imagePeriod = {},
                          .isExternal = isExternal(m_settings.get<std::int32_t>("FG_LINETRIGGERMODE")),
                          .isExSyncLow = is("FG_EXSYNCPOLARITY", FG_LOW),
                          .isFlashLow = is("FG_FLASH_POLARITY", FG_LOW),
                          .hasEdges = true};
        expected.hasEdges = expected.isExternal || expected.exposure < expected.period;
        addSource(expected);
        return expected;
    }

    /** The periods of the lines and the images, where the settings fix them. */
    void addSource(Expected& expected) const {
        if (!is("FG_CAMERASIMULATOR_ENABLE", FG_CAMERASIMULATOR)) return;
        const bool isFree = is("FG_CAMERASIMULATOR_TRIGGER_MODE", SIMULATION_FREE_RUN);
        const bool hasFrames = isFree && is("FG_CAMERASIMULATOR_SELECT_MODE", FG_FRAMERATE);
        if (isFree && !hasFrames)
            expected.linePeriod = 1e6 / number("FG_CAMERASIMULATOR_LINERATE");
        else if (is("FG_CAMERASIMULATOR_TRIGGER_MODE", RISING_EDGE_TRIGGERS_LINE) && isExSyncAtCamera() &&
                 expected.hasEdges)
            expected.linePeriod = expected.period;
        if (!is("FG_IMGTRIGGERMODE", FREE_RUN) && !is("FG_IMGTRIGGERON", FG_OFF)) return;
        // One image in every N is taken, and its lines may be more or fewer than those of a frame.
        const double lines = number("FG_IMG_SELECT_PERIOD") * (number("FG_HEIGHT") + number("FG_YOFFSET"));
        if (hasFrames)
            expected.imagePeriod =
                lines / number("FG_CAMERASIMULATOR_HEIGHT") * 1e6 / number("FG_CAMERASIMULATOR_FRAMERATE");
        else if (expected.linePeriod)
            expected.imagePeriod = *expected.linePeriod * lines;
    }

    bool isExSyncAtCamera() const {
        return is("FG_EXSYNCON", FG_ON) && isExSync(m_settings.get<std::int32_t>("FG_TRIGGERCAMERA_SOURCE"));
    }

    void connect(const std::vector<WaveRequest>& waves) {
        for (const WaveRequest& wave : waves) {
            connectWave(m_instance, wave);
            use(wave.input);
            if (const auto* encoder = std::get_if<EncoderWave>(&wave.wave)) use(encoder->second);
        }
        const bool isEncoder = is("FG_SHAFTENCODERON", FG_ON);
        const unsigned input = inputOf(m_settings.get<std::int32_t>("FG_LINETRIGGERINSRC"));
        if (!m_expected.isExternal || !waves.empty() || stationOfEnvironment()) return;
        if (m_instance.board().has_wave(m_instance.device(), input) > 0) return;
        if (isEncoder) {
            m_timing.remarks.emplace_back("no pulse came to the line trigger: give its encoder a --wave");
            return;
        }
        const double period = m_expected.period / number("FG_LINE_DOWNSCALE");
        const auto ticks = std::max<Ticks>(static_cast<Ticks>(std::round(period * ticksPerMicrosecond)), 2);
        connectWave(m_instance, {input, SquareWave{ticks, ticks / 2, ticks}});
        use(input);
    }

    void use(unsigned input) { m_inputs.push_back(design_signal::firstInput + input); }

    void grab(const std::function<bool()>& goesOn) {
        constexpr Ticks longest = 2 * ticksPerSecond;
        constexpr std::size_t frames = 64; // memory for the first pictures
        const WaitStart start = waitStart(m_instance);
        Grabber grabber(m_instance, frames);
        if (!m_window) lookAtStart();
        takePictures(grabber, longest, goesOn);
        if (m_timing.isInterrupted) return;
        m_timing.lines = sourceLines(m_instance) - start.lines;
        m_timing.to = now();
        if (m_timing.pictures == 0)
            m_timing.remarks.push_back(
                whyNoPicture(m_instance, m_parameters,
                             {.start = start, .longer = "the measurement ends after 2 s", .wave = "a --wave"})
                    .reason);
        addRows();
        while (m_window && !m_isWindowSeen && !m_timing.isInterrupted)
            next(grabber, m_window->to, goesOn);
    }

    /** The signals to measure. */
    void takePictures(Grabber& grabber, Ticks longest, const std::function<bool()>& goesOn) {
        constexpr int pictures = 3;
        while (m_timing.pictures < pictures && now() - m_timing.from < longest && !m_timing.isInterrupted) {
            if (!next(grabber, longest, goesOn)) continue;
            ++m_timing.pictures;
            m_firstLines.push_back(grabber.record().first_line);
        }
    }

    /** Advances to the next picture, the end of the window, or this time from the start. True for a picture. */
    bool next(Grabber& grabber, Ticks most, const std::function<bool()>& goesOn) {
        const bool isWindowAhead = m_window && !m_isWindowSeen;
        const Ticks end = m_timing.from + (isWindowAhead ? std::min(most, m_window->to) : most);
        const Grabber::Outcome outcome = grabber.next(end - std::min(now(), end), goesOn);
        m_timing.isInterrupted = outcome == Grabber::Outcome::interrupted;
        if (isWindowAhead && now() >= m_timing.from + m_window->to) lookAtWindow();
        return outcome == Grabber::Outcome::arrived;
    }

    void lookAtWindow() {
        m_isWindowSeen = true;
        noteSignals(m_timing.from + m_window->from, m_timing.from + m_window->to);
        for (const MeasuredSignal& signal : m_timing.signals)
            if (!signal.waveform.isComplete)
                throw Failure(incompleteText(signal.name) + " from " + durationText(m_window->from) + " to " +
                              durationText(m_window->to) + ": make the window shorter");
    }

    /** Records the signals of the first line periods, before the board drops their edges. */
    void lookAtStart() {
        constexpr Ticks longest = ticksPerSecond / 20;
        constexpr std::ptrdiff_t periods = 5;
        const auto isActive = [this](const vboard_edge& edge) {
            return edge.level != m_expected.isExSyncLow;
        };
        const Ticks piece =
            std::clamp<Ticks>(static_cast<Ticks>(m_expected.period * ticksPerMicrosecond), 64, longest);
        do {
            m_instance.board().advance(m_instance.device(), piece);
            m_timing.to = now();
        } while (m_timing.to - m_timing.from < longest &&
                 std::ranges::count_if(waveform(design_signal::exSync).edges, isActive) < periods);
        noteSignals(m_timing.from, m_timing.to);
    }

    void noteSignals(Ticks from, Ticks to) {
        const auto note = [&](const std::string& name, bool isActiveLow, unsigned select) {
            m_timing.signals.push_back({name, isActiveLow, waveformOf(m_instance, select, from, to)});
        };
        for (const StationSignal& signal : stationSignals())
            if (std::ranges::find(m_inputs, signal.select) != m_inputs.end())
                note(signal.name, false, signal.select);
        note("ExSync", m_expected.isExSyncLow, design_signal::exSync);
        note("ExSync2", m_expected.isExSyncLow, design_signal::exSync2);
        note("Flash", m_expected.isFlashLow, design_signal::flash);
        note("LVAL", false, design_signal::lval);
    }

    Waveform waveform(unsigned select) const {
        return waveformOf(m_instance, select, m_timing.from, m_timing.to);
    }

    /** Adds a row for the mean duration in ticks, and one for its inverse. */
    void add(const char* name, std::optional<double> computed, const std::vector<Ticks>& ticks,
             const char* rateName = nullptr) {
        MeasuredRow row{name, "µs", computed, {}, {}, {}};
        if (!ticks.empty()) {
            const Ticks sum = std::accumulate(ticks.begin(), ticks.end(), Ticks{0});
            row.measured = microseconds(sum) / static_cast<double>(ticks.size());
            const auto [smallest, largest] = std::ranges::minmax(ticks);
            if (smallest != largest) {
                row.smallest = microseconds(smallest);
                row.largest = microseconds(largest);
            }
        }
        m_timing.rows.push_back(row);
        if (rateName == nullptr) return;
        const auto inverse = [](std::optional<double> time) {
            return time && *time > 0 ? std::optional(1e6 / *time) : std::nullopt;
        };
        m_timing.rows.push_back({rateName, "Hz", inverse(computed), inverse(row.measured), {}, {}});
    }

    /** Times from each start in the first list to the next start in the second. */
    static std::vector<Ticks> delays(const Waveform& first, const Waveform& second, bool isActiveLow) {
        std::vector<Ticks> found;
        auto next = second.edges.begin();
        for (const vboard_edge& edge : first.edges) {
            if (edge.level == isActiveLow) continue;
            while (next != second.edges.end() && (next->tick < edge.tick || next->level == isActiveLow))
                ++next;
            if (next == second.edges.end()) break;
            found.push_back(next->tick - edge.tick);
        }
        return found;
    }

    void addRows() {
        const Waveform exSync = waveform(design_signal::exSync), exSync2 = waveform(design_signal::exSync2);
        const Waveform flash = waveform(design_signal::flash), lines = waveform(design_signal::lval);
        const bool isOn = is("FG_EXSYNCON", FG_ON) && m_expected.hasEdges;
        if (is("FG_EXSYNCON", FG_ON) && !m_expected.hasEdges)
            m_timing.remarks.push_back(
                "ExSync is always active, with no edge: FG_LINEEXPOSURE = " +
                numberText(m_expected.exposure) +
                " µs is not shorter than FG_LINEPERIODE = " + numberText(m_expected.period) + " µs");
        const auto ifOn = [&](double value) { return isOn ? std::optional(value) : std::nullopt; };
        add("ExSync period", ifOn(m_expected.period), exSync.periods(), "ExSync rate");
        add("ExSync active", ifOn(m_expected.exposure), exSync.widths(m_expected.isExSyncLow));
        add("ExSync2 delay", ifOn(m_expected.delay), delays(exSync, exSync2, m_expected.isExSyncLow));
        add("ExSync2 active", ifOn(m_expected.exposure), exSync2.widths(m_expected.isExSyncLow));
        add("Flash active", is("FG_FLASHON", FG_ON) ? ifOn(m_expected.period) : std::nullopt,
            flash.widths(m_expected.isFlashLow));
        add("line period", m_expected.linePeriod, lines.periods(), "line rate");
        std::vector<Ticks> images;
        for (std::size_t i = 1; i < m_firstLines.size(); ++i)
            images.push_back(m_firstLines[i] - m_firstLines[i - 1]);
        add("image period", m_expected.imagePeriod, images, "image rate");
    }

    Instance& m_instance;
    const ParameterList& m_parameters;
    const ParameterReader m_settings;
    const std::optional<TimeWindow> m_window;
    bool m_isWindowSeen = false;
    Expected m_expected{};
    std::vector<unsigned> m_inputs; // signal numbers of the inputs with a wave
    std::vector<Ticks> m_firstLines;
    MeasuredTiming m_timing;
};

} // namespace

TimeWindow windowFrom(const std::string& word) {
    const std::size_t dots = word.find("..");
    if (dots == std::string::npos)
        throw UsageError(inQuotedWord(word) +
                         " is not a window of time: write its two ends, as in 10ms..12ms");
    const TimeWindow window{ticksFrom(word.substr(0, dots)), ticksFrom(word.substr(dots + 2))};
    if (window.from >= window.to)
        throw UsageError(inQuotedWord(word) + " is not a window of time: its end is not after its beginning");
    return window;
}

MeasuredTiming measureTiming(Instance& instance, const ParameterList& parameters,
                             const std::vector<WaveRequest>& waves, const std::function<bool()>& goesOn,
                             const std::optional<TimeWindow>& window) {
    return Measurement(instance, parameters, window).run(waves, goesOn);
}

} // namespace applet_tools
