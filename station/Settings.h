/** Converts the values of the board to the settings of engine and renderer, clamped to their limits. */
#ifndef STATION_SETTINGS_H
#define STATION_SETTINGS_H

#include "station/Board.h"
#include "station/picture/PictureSettings.h"
#include "station/timing/Engine.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace station {

/** Number of outputs. Order, as that of the crossbar's parameters: camera trigger, eight GPO, two front GPO. */
inline constexpr std::size_t outputCount = 11;

/** Converts a value to an unsigned integer. NaN and negative values become 0; values that are too large, the maximum. */
std::uint32_t countOf(double value);

/** Everything except tables, picture settings and view, which are shared. `bytesPerSecond` is the rate of the DMA;
 *  0: that of the link. */
EngineSettings readEngineSettings(const Board& board, std::uint64_t bytesPerSecond);
/** What a line takes in the buffer and in memory; part of the engine's settings. */
Layout readLayout(const Board& board);
PictureSettings readPictureSettings(const Board& board);
Tables readTables(const Board& board);
/** The signal that an output is routed to. A constant low one if there is no such output. */
Route readOutput(const Board& board, std::size_t output);

} // namespace station

#endif
