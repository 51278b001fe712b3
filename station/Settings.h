/** From the values of the board to what engine and renderer are set to. What is out of range is clamped here. */
#ifndef STATION_SETTINGS_H
#define STATION_SETTINGS_H

#include "station/Board.h"
#include "station/picture/PictureSettings.h"
#include "station/timing/Engine.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace station {

/** Lines of output, in the order of the crossbar's parameters: camera trigger, eight GPO, two front GPO. */
inline constexpr std::size_t outputCount = 11;

/** What a value is as a count: not a number and negative become 0, what is too large the largest. */
std::uint32_t countOf(double value);

/** All but the tables and the picture settings, which are shared. `bytesPerSecond`: of the DMA, 0: that of the link. */
EngineSettings readEngineSettings(const Board& board, std::uint64_t bytesPerSecond);
PictureSettings readPictureSettings(const Board& board);
Tables readTables(const Board& board);
Route readOutput(const Board& board, std::size_t output);

} // namespace station

#endif
