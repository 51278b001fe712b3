/** The description of an image that its bytes can be rendered from. Contains none of the bytes. */
#ifndef STATION_TIMING_RECORD_H
#define STATION_TIMING_RECORD_H

#include "station/scene/Exposure.h"
#include "station/signals/Tick.h"
#include "station/timing/Simulator.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace station {

struct PictureSettings; // settings of the renderer
struct Tables;          // the lookup tables
struct Raster;          // pixels that were injected
struct View;            // the camera's view

/** Parameters of an image's transfer through buffer and DMA, as they were at its first line. */
struct Layout {
    std::uint64_t wordsPerLine = 0;  // in the buffer
    std::uint64_t bytesPerLine = 0;  // in the memory of the host
    std::uint64_t pixelsPerLine = 0; // the same line
    std::uint32_t sensorWidth = 0;   // pixels of a line that are stored
    bool isTurnedOver = false;       // leaves the buffer in reverse order of lines
    std::uint32_t selectPeriod = 1;
    std::uint32_t selectPhase = 0;
    bool isSilenced = false; // its output format is
};

/** Consecutive lines of a source: y counts up to the height and continues in the next frame. */
struct LineRun {
    SourceLine first;
    std::uint32_t count = 0;

    /** Whether the line continues the run. */
    bool isFollowedBy(const SourceLine& line) const;
    /** The line with a number below `count`. */
    SourceLine line(std::uint32_t number) const;
};

struct Record {
    /** Maximum number of runs, and of lines of a camera: an image with more ends there. The lines are more than any
     *  image of the applet has. */
    static constexpr std::size_t mostRuns = 4096;
    static constexpr std::size_t mostExposures = std::size_t{1} << 21;

    std::int64_t picture = 0;     // from 1
    std::uint64_t lostBefore = 0; // images since the previous picture that did not fit in the buffer
    std::uint64_t trigger = 0;    // number of the start that it belongs to, from 1
    std::int64_t encoder = 0;     // position of the encoder at the first line, in quarter steps
    Tick firstLine = 0;           // start of its transfer
    Tick lastLine = 0;
    Tick arrival = 0; // in the memory of the host
    std::uint32_t lines = 0;
    bool isShort = false;  // fewer lines than the height of an image
    bool isNarrow = false; // a line of the source was narrower than the width to be stored
    Layout layout;
    std::vector<LineRun> runs;
    std::vector<Exposure> exposures; // the lines of a camera; their y is the index here
    std::shared_ptr<const View> view;
    std::shared_ptr<const PictureSettings> settings;
    std::shared_ptr<const Tables> tables;
    std::shared_ptr<const Raster> raster; // of an injected image

    std::uint64_t bytes() const { return layout.bytesPerLine * lines; }
    /** Adds a line; false if there is no room for another run. */
    bool add(const SourceLine& line);
    /** Adds a line of a camera; false also if there is no room for another exposure. */
    bool add(const SourceLine& line, const Exposure& exposure);
};

} // namespace station

#endif
