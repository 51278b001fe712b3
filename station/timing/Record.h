/** What the station keeps of an image: all that its bytes follow from, and no byte of it. */
#ifndef STATION_TIMING_RECORD_H
#define STATION_TIMING_RECORD_H

#include "station/scene/Exposure.h"
#include "station/timing/Simulator.h"
#include "station/timing/Tick.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace station {

struct PictureSettings; // what a picture is made with
struct Tables;          // the lookup tables
struct Raster;          // pixels that were injected
struct View;            // what the camera looks at

/** Parameters of an image's way through buffer and DMA, as they were at its first line. */
struct Layout {
    std::uint64_t wordsPerLine = 0;  // in the buffer
    std::uint64_t bytesPerLine = 0;  // in the memory of the host
    std::uint64_t pixelsPerLine = 0; // the same line
    std::uint32_t sensorWidth = 0;   // pixels of a line that are stored
    bool isTurnedOver = false;       // leaves the buffer from its last line on
    std::uint32_t selectPeriod = 1;
    std::uint32_t selectPhase = 0;
    bool isSilenced = false; // its output format is
};

/** Lines that follow one another in a source: y counts up to the height and goes on in the next frame. */
struct LineRun {
    SourceLine first;
    std::uint32_t count = 0;

    /** Whether the line continues the run. */
    bool isFollowedBy(const SourceLine& line) const;
    /** The line of a number below `count`. */
    SourceLine line(std::uint32_t number) const;
};

struct Record {
    /** More pieces than this an image has not: it ends there. */
    static constexpr std::size_t mostRuns = 4096;

    std::int64_t picture = 0;     // from 1
    std::uint64_t lostBefore = 0; // images since the picture before it that the buffer had no room for
    std::uint64_t trigger = 0;    // of the start that it belongs to, from 1
    std::int64_t encoder = 0;     // place of the encoder at the first line, in quarter steps
    Tick firstLine = 0;           // start of its transfer
    Tick lastLine = 0;
    Tick arrival = 0; // in the memory of the host
    std::uint32_t lines = 0;
    bool isShort = false;  // fewer lines than the height of an image
    bool isNarrow = false; // a line of the source was narrower than what was to be stored of it
    Layout layout;
    std::vector<LineRun> runs;
    std::vector<Exposure> exposures; // the lines of a camera; their y is the place here
    std::shared_ptr<const View> view;
    std::shared_ptr<const PictureSettings> settings;
    std::shared_ptr<const Tables> tables;
    std::shared_ptr<const Raster> raster; // of an injected image

    std::uint64_t bytes() const { return layout.bytesPerLine * lines; }
    /** Adds a line; false if there is no room for another piece. */
    bool add(const SourceLine& line);
    /** Adds a line of a camera. */
    bool add(const SourceLine& line, const Exposure& exposure);
};

} // namespace station

#endif
