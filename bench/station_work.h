/** Work for a station: simulated seconds, and pictures of one size. */
#ifndef BENCH_STATION_WORK_H
#define BENCH_STATION_WORK_H

#include "station/Station.h"

#include <cstdint>
#include <vector>

struct Simulated {
    std::uint64_t lines, events;
};

/** Lets so many seconds pass, with so many lines in each, all asked for by an encoder, with both analyzers and all events.
 *  Resolution 3: each quarter step is a line; 1: one of four. */
Simulated simulate(station::Tick seconds, std::int32_t linesPerSecond, double resolution);

inline constexpr std::uint32_t pictureWidth = 4096;
inline constexpr std::uint32_t pictureHeight = 512;

/** Of a picture with so many bits a component: of the simulator, or of a raster with values of 16 bits. */
station::Record pictureRecord(std::uint32_t bits, bool isRaster);

/** The least that such a picture can cost: one look-up of each component, and the format. */
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
