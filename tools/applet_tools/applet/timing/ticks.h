/** Durations in simulated time, in ticks of 8 ns. */
#ifndef APPLET_TOOLS_APPLET_TIMING_TICKS_H
#define APPLET_TOOLS_APPLET_TIMING_TICKS_H

#include "virtual_board/virtual_board.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace applet_tools {

using Ticks = std::uint64_t;

inline constexpr Ticks ticksPerSecond = VBOARD_TICKS_PER_SECOND;
inline constexpr double ticksPerMicrosecond = ticksPerSecond / 1e6;
inline constexpr double microsecondsPerTick = 1 / ticksPerMicrosecond;

/** Parses "200us", "200µs", "10ms", "1.5s", "80ns" or "25ticks" and rounds to ticks, up to a million seconds.
 *  Throws UsageError. */
Ticks ticksFrom(std::string_view word);

constexpr double microseconds(Ticks ticks) { return static_cast<double>(ticks) * microsecondsPerTick; }

/** "0.008 µs", "200 µs", "10.24 ms", "1.5 s": in the largest of these units in which it is at least one. */
std::string durationText(Ticks ticks);

} // namespace applet_tools

#endif
