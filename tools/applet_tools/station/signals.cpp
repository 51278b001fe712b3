#include "applet_tools/station/signals.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

#include <algorithm>
#include <limits>

namespace applet_tools {
namespace {

std::vector<StationSignal> allSignals() {
    using namespace design_signal;
    std::vector<StationSignal> signals = {
        {"ExSync", exSync}, {"ExSync2", exSync2}, {"Flash", flash}, {"LVAL", lval}, {"FVAL", fval}};
    for (unsigned i = 0; i < gpiCount; ++i)
        signals.push_back({"GPI_" + std::to_string(i), firstInput + i});
    for (unsigned i = 0; i < frontGpiCount; ++i)
        signals.push_back({"FRONT_GPI_" + std::to_string(i), firstInput + gpiCount + i});
    signals.insert(
        signals.end(),
        {{"LineStart", lineStart}, {"LineEnd", lineEnd}, {"FrameStart", frameStart}, {"FrameEnd", frameEnd}});
    return signals;
}

/** "FG_SIGNAL_CAM0_LINE_START" and "LineStart" are the same. */
std::string comparable(std::string_view word) {
    std::string name = lowerCase(word);
    for (const std::string_view prefix : {"fg_signal_", "cam0_"})
        if (name.starts_with(prefix)) name.erase(0, prefix.size());
    std::erase(name, '_');
    return name;
}

constexpr LossKind kinds[] = {
    {"images", VBOARD_STATUS_LOST_IMAGES, "images lost in the full buffer",
     "lower the line rate, or the bytes of a line by FG_WIDTH, FG_SENSORWIDTH or FG_FORMAT"},
    {"triggers", VBOARD_STATUS_IGNORED_TRIGGERS, "image triggers ignored while an image was in progress",
     "take fewer lines (FG_IMGTRIGGER_ASYNC_HEIGHT, FG_HEIGHT), or let the triggers come further apart"},
    {"pulses", VBOARD_STATUS_LOST_PULSES, "pulses of the line trigger lost while ExSync was active",
     "shorten FG_LINEEXPOSURE, or raise FG_LINE_DOWNSCALE"},
    {"cameratriggers", VBOARD_STATUS_LOST_CAMERA_TRIGGERS,
     "camera triggers lost while a line was in transfer",
     "let the triggers come further apart (FG_LINEPERIODE, or the pulses of the line trigger), or make what "
     "each one starts shorter: a line by FG_CAMERASIMULATOR_WIDTH, a frame by FG_CAMERASIMULATOR_LINERATE"},
    {"droppedtriggers", VBOARD_STATUS_DROPPED_CAMERA_TRIGGERS,
     "camera triggers ignored by the camera because of its fault dropEvery",
     "take faults.dropEvery out of the station file, unless the fault is wanted"},
    {"frames", VBOARD_STATUS_WAITS,
     "waits of the DMA for a frame of the memory, with an image ready in the buffer",
     "take the pictures sooner, or give the memory more frames"},
};
static_assert(kinds[imageLoss].status == VBOARD_STATUS_LOST_IMAGES &&
              kinds[cameraTriggerLoss].status == VBOARD_STATUS_LOST_CAMERA_TRIGGERS &&
              kinds[droppedTriggerLoss].status == VBOARD_STATUS_DROPPED_CAMERA_TRIGGERS);

} // namespace

const std::vector<StationSignal>& stationSignals() {
    static const std::vector<StationSignal> signals = allSignals();
    return signals;
}

const StationSignal& signalFrom(std::string_view word) {
    const std::string wanted = comparable(word);
    std::vector<std::string> names;
    for (const StationSignal& signal : stationSignals()) {
        if (comparable(signal.name) == wanted) return signal;
        names.push_back(signal.name);
    }
    throw UsageError("there is no signal " + inQuotedWord(word) + didYouMean(nearestWords(word, names)) +
                     "; they are " + join(names, ", "));
}

std::vector<Ticks> Waveform::periods() const {
    std::vector<Ticks> found;
    std::optional<Ticks> last;
    for (const vboard_edge& edge : edges) {
        if (!edge.level) continue;
        if (last) found.push_back(edge.tick - *last);
        last = edge.tick;
    }
    return found;
}

std::vector<Ticks> Waveform::widths(bool isActiveLow) const {
    std::vector<Ticks> found;
    std::optional<Ticks> start;
    for (const vboard_edge& edge : edges) {
        if (edge.level != isActiveLow)
            start = edge.tick;
        else if (start)
            found.push_back(edge.tick - *start);
    }
    return found;
}

std::size_t Waveform::risingEdges() const {
    return static_cast<std::size_t>(std::ranges::count(edges, true, &vboard_edge::level));
}

std::optional<Ticks> Waveform::first(bool level) const {
    const auto found = std::ranges::find(edges, level, &vboard_edge::level);
    return found == edges.end() ? std::nullopt : std::optional<Ticks>(found->tick);
}

Waveform waveformOf(Instance& instance, unsigned select, Ticks from, Ticks to) {
    constexpr std::size_t most =
        std::size_t{2} *
        VBOARD_KEPT_EDGES; // a pulse of one tick is stored as one edge and counts as two here
    constexpr Ticks never = std::numeric_limits<Ticks>::max();
    Waveform waveform;
    waveform.edges.assign(most, {never, false});
    const std::int64_t count = instance.board().signals(instance.device(), select, from, to,
                                                        waveform.edges.data(), most, &waveform.startsHigh);
    waveform.isComplete = count >= 0;
    const auto end = std::ranges::find(waveform.edges, never, &vboard_edge::tick);
    waveform.edges.erase(end, waveform.edges.end());
    return waveform;
}

Waveform waveformSince(Instance& instance, unsigned select, Ticks since, Ticks to) {
    return waveformOf(instance, select, since > 0 ? since + 1 : 0, to);
}

std::string incompleteText(const std::string& signal) {
    return "the station keeps the last " + numberText(std::uint32_t{VBOARD_KEPT_EDGES}) +
           " edges of a signal, and " + signal + " has more of them";
}

std::optional<double> rateOf(const Waveform& waveform) {
    const std::vector<Ticks> periods = waveform.periods();
    if (periods.empty()) return std::nullopt;
    Ticks sum = 0;
    for (const Ticks period : periods)
        sum += period;
    return static_cast<double>(periods.size()) * static_cast<double>(ticksPerSecond) /
           static_cast<double>(sum);
}

std::span<const LossKind> lossKinds() { return kinds; }

Words lossNames() {
    Words names;
    for (const LossKind& kind : kinds)
        names.emplace_back(kind.name);
    return names;
}

std::vector<std::int64_t> lossesOf(Instance& instance) {
    std::vector<std::int64_t> losses;
    for (const LossKind& kind : kinds)
        losses.push_back(instance.applet().Fg_getStatusEx(instance.fg(), kind.status, 0, 0, nullptr));
    return losses;
}

void requireStation(const BoardOptions& options, const applet_host::AppletHost& host,
                    const std::string& what) {
    if (!options.offline && host.isVirtual()) return;
    throw UsageError(
        what + " needs the virtual board, which is a simulated station: leave --board and --offline out");
}

} // namespace applet_tools
