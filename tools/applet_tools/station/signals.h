/** Signals of the virtual board's station, and what was lost on the way of an image. */
#ifndef APPLET_TOOLS_STATION_SIGNALS_H
#define APPLET_TOOLS_STATION_SIGNALS_H

#include "applet_tools/applet/Instance.h"
#include "applet_tools/base/words.h"
#include "applet_tools/station/ticks.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace applet_tools {

/** A signal, and the number by which the design selects it. */
struct StationSignal {
    std::string name; /**< "ExSync", "LVAL", "GPI_0", "LineStart" */
    unsigned select;
};

const std::vector<StationSignal>& stationSignals();

/** By its name in any case, or by that of a source such as FG_SIGNAL_CAM0_EXSYNC. Throws UsageError. */
const StationSignal& signalFrom(std::string_view word);

/** What a signal did. */
struct SignalCourse {
    bool isComplete = true; /**< false: the board has forgotten the edges at the beginning */
    bool startsHigh = false;
    std::vector<vboard_edge> edges;

    bool level() const { return edges.empty() ? startsHigh : edges.back().level; }
    /** From each rising edge to the next. */
    std::vector<Ticks> periods() const;
    /** From each rising edge to the falling one behind it, as far as both are there; of low pulses the other way. */
    std::vector<Ticks> widths(bool isActiveLow = false) const;
    std::size_t risingEdges() const;
    /** Where the first rising edge is, or falling one. */
    std::optional<Ticks> first(bool level) const;
};

/** From one tick to another, both included. */
SignalCourse courseOf(Instance& instance, unsigned select, Ticks from, Ticks to);

/** Rising edges a second between the first and the last one; none with fewer than two. */
std::optional<double> rateOf(const SignalCourse& course);

/** A way to lose something. */
struct LossKind {
    const char* name; /**< "images" */
    int status;       /**< code of Fg_getStatusEx */
    const char* what; /**< "images lost in the full buffer" */
    const char* cure; /**< what to set */
};

std::span<const LossKind> lossKinds();

/** How often each kind came since the board was opened, in the order of lossKinds(). */
std::vector<std::int64_t> lossesOf(Instance& instance);

/** Throws UsageError, naming what wants it, where the board is no virtual one. */
void requireStation(const Instance& instance, const std::string& what);

/** Lets time move in pieces. False when `goesOn`, which is asked before each piece, says no. */
template <typename GoesOn> bool advance(Instance& instance, Ticks ticks, const GoesOn& goesOn) {
    constexpr Ticks piece = ticksPerSecond / 20;
    const Ticks end = instance.board().now(instance.device()) + ticks;
    for (Ticks now = end - ticks; now < end;) {
        if (!goesOn(now)) return false;
        now = instance.board().advance(instance.device(), std::min(piece, end - now));
    }
    return true;
}

} // namespace applet_tools

#endif
