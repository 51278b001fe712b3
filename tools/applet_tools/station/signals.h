/** Signals of the virtual board's station, and loss counters. */
#ifndef APPLET_TOOLS_STATION_SIGNALS_H
#define APPLET_TOOLS_STATION_SIGNALS_H

#include "applet_tools/applet/Instance.h"
#include "applet_tools/applet/timing/ticks.h"
#include "applet_tools/base/words.h"

#include "vexo/fg_parameters.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace applet_tools {

/** Numbers of signals in the design's selects. */
namespace design_signal {
inline constexpr unsigned exSync = 1, exSync2 = 2, flash = 3, lval = 4, fval = 5, firstInput = 21,
                          lineStart = 33, lineEnd = 34, frameStart = 35, frameEnd = 36;
} // namespace design_signal

/** Inputs have numbers: first the GPI, then the front GPI. */
inline constexpr unsigned gpiCount = VBOARD_GPIS, inputCount = VBOARD_INPUTS,
                          frontGpiCount = inputCount - gpiCount;

/** The number of the input that is an entry of FG_LINETRIGGERINSRC, FG_IMGTRIGGERINSRC, ... */
constexpr unsigned inputOf(std::int32_t source) {
    return static_cast<unsigned>(
        source < TRGINSRC_FRONT_GPI_0 ? source : source - TRGINSRC_FRONT_GPI_0 + std::int32_t{gpiCount});
}

/** A signal and its number in the design's selects. */
struct StationSignal {
    std::string name; /**< "ExSync", "LVAL", "GPI_0", "LineStart" */
    unsigned select;

    /** Pulses of one tick: each has one edge in the record. */
    bool isPulse() const { return select >= design_signal::lineStart && select <= design_signal::frameEnd; }
};

const std::vector<StationSignal>& stationSignals();

/** Finds a signal by its name (case does not matter) or by a source such as FG_SIGNAL_CAM0_EXSYNC. Throws
 *  UsageError. */
const StationSignal& signalFrom(std::string_view word);

/** The recorded edges of a signal. */
struct Waveform {
    bool isComplete = true; /**< false: the board has dropped the first edges */
    bool startsHigh = false;
    std::vector<vboard_edge> edges;

    bool level() const { return edges.empty() ? startsHigh : edges.back().level; }
    /** From each rising edge to the next. */
    std::vector<Ticks> periods() const;
    /** From each rising edge to the next falling one, if both are recorded; for low pulses the other way
     *  round. */
    std::vector<Ticks> widths(bool isActiveLow = false) const;
    std::size_t risingEdges() const;
    /** The first rising edge, or falling edge. */
    std::optional<Ticks> first(bool level) const;
};

/** From one tick to another, both inclusive. */
Waveform waveformOf(Instance& instance, unsigned select, Ticks from, Ticks to);

/** What has happened from the time `since` to the time `to`: without the edges at `since`, which belong to the span
 *  before it, except for those at tick 0, which has no span before it. */
Waveform waveformSince(Instance& instance, unsigned select, Ticks since, Ticks to);

/** Why a waveform is not complete: "the station keeps the last 16384 edges of a signal, and LVAL has more of them". */
std::string incompleteText(const std::string& signal);

/** Rising edges per second between the first and the last one; empty with fewer than two. */
std::optional<double> rateOf(const Waveform& waveform);

/** A kind of loss. */
struct LossKind {
    const char* name;   /**< "images" */
    int status;         /**< code of Fg_getStatusEx */
    const char* what;   /**< "images lost in the full buffer" */
    const char* advice; /**< suggested settings */
};

std::span<const LossKind> lossKinds();
/** Indices in lossKinds(). */
inline constexpr std::size_t imageLoss = 0, cameraTriggerLoss = 3, droppedTriggerLoss = 4;
/** Their names: "images", "triggers", ... */
Words lossNames();

/** The number of losses of each kind since the board was opened, in the order of lossKinds(). */
std::vector<std::int64_t> lossesOf(Instance& instance);

/** Throws UsageError if the options and the libraries do not open a virtual board; `what` needs one. */
void requireStation(const BoardOptions& options, const applet_host::AppletHost& host,
                    const std::string& what);

/** Advances the time in steps, or waits for it where it follows the clock. Polls `goesOn` before each step; false if
 *  that returns false. */
template <typename GoesOn> bool advance(Instance& instance, Ticks ticks, const GoesOn& goesOn) {
    constexpr Ticks piece = ticksPerSecond / 20;
    constexpr std::chrono::milliseconds wait(1);
    const Ticks end = instance.board().now(instance.device()) + ticks;
    for (Ticks now = end - ticks; now < end;) {
        if (!goesOn(now)) return false;
        now = instance.board().advance(instance.device(), std::min(piece, end - now));
        if (now != VBOARD_NOT_STEPPED) continue;
        std::this_thread::sleep_for(wait);
        now = instance.board().now(instance.device());
    }
    return true;
}

} // namespace applet_tools

#endif
