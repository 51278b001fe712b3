/** Work for a station: simulated seconds, and pictures of one size. */
#ifndef BENCH_STATION_WORK_H
#define BENCH_STATION_WORK_H

#include "station/Station.h"

#include <cstdint>
#include <vector>

struct Simulated {
    std::uint64_t lines, events;
};

/** Simulates `seconds` seconds with `linesPerSecond` lines each, triggered by an encoder, with both analyzers
 *  and all events. Resolution 3: each quarter step is a line; 1: one of four. */
Simulated simulate(station::Tick seconds, std::int32_t linesPerSecond, double resolution);

inline constexpr std::uint32_t pictureWidth = 4096;
inline constexpr std::uint32_t pictureHeight = 512;

/** The record of a picture with `bits` bits per component: of the simulator, or of a 16-bit raster. */
station::Record pictureRecord(std::uint32_t bits, bool isRaster);

/** The minimum cost of such a picture: one look-up of each component, and the format. */
class LookUps {
public:
    LookUps(std::uint32_t bits, bool isRaster);
    void run();
    const std::vector<std::uint8_t>& bytes() const { return m_bytes; }

private:
    std::uint32_t m_bits;
    std::vector<std::uint16_t> m_table, m_components;
    std::vector<std::uint8_t> m_bytes;
};

#endif
