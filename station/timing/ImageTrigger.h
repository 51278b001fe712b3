/** The image trigger: assigns lines of the source to images. */
#ifndef STATION_TIMING_IMAGE_TRIGGER_H
#define STATION_TIMING_IMAGE_TRIGGER_H

#include "station/signals/Tick.h"

#include <cstdint>

namespace station {

/** Receives the decisions of the image trigger. */
class ImageHandler {
public:
    /** A trigger or gate was accepted; it requests `lines` lines. */
    virtual void rangeStarts(Tick tick, std::uint64_t lines) = 0;
    /** The input's gate falls, or the acquisition ends. */
    virtual void gateFalls() = 0;
    /** The line that starts now is the first of an image. */
    virtual void imageStarts(Tick tick) = 0;
    /** The image has all its lines, and the last one has arrived. */
    virtual void imageEnds(Tick tick, bool isShort) = 0;

protected:
    ~ImageHandler() = default;
};

class ImageTrigger {
public:
    enum class Mode : std::uint8_t { freeRun, edge, gate };
    struct Settings {
        Mode mode = Mode::freeRun;
        bool isGateOfMany = false;     // one gate covers several images
        std::uint32_t delay = 0;       // lines skipped after a trigger
        std::uint32_t offset = 0;      // and after each start
        std::uint32_t length = 1;      // lines taken after a start
        std::uint32_t imageHeight = 1; // of them in one image
    };

    explicit ImageTrigger(ImageHandler& handler) : m_handler(handler) {}

    /** Lengths apply from the next start on; another mode when the image in progress is complete. */
    void configure(const Settings& settings, Tick tick);
    /** Starts or ends an acquisition. Without one no line is taken; an end drops the image in progress. */
    void setAcquiring(bool isAcquiring);
    /** The level of the input before time first advances. */
    void preset(bool level) { m_level = level; }
    /** The level of the input, high if active. */
    void follow(bool level, Tick tick);

    /** A line of the source starts; true if it is taken. */
    bool lineStarts(Tick tick);
    /** Its transfer ends. */
    void lineEnds(Tick tick);
    /** The image in progress takes no more lines after the present one. */
    void cutImage();

    bool isBusy() const { return m_hasRange && (m_range.mode != Mode::freeRun || m_isTaking); }
    bool level() const { return m_level; }
    /** Triggers and gates that came while it was busy. */
    std::uint64_t ignored() const { return m_ignored; }

private:
    void begin(Tick tick);
    void finish();
    void closeImage(Tick tick);

    ImageHandler& m_handler;
    Settings m_settings;
    Settings m_range; // as at the start
    bool m_isAcquiring = false;
    bool m_level = false;
    bool m_hasRange = false;
    bool m_isTaking = false;        // the range has had its first line
    bool m_isLineTaken = false;     // the line in transfer
    bool m_isImageComplete = false; // with the line in transfer
    bool m_isRangeComplete = false;
    std::uint64_t m_skip = 0; // lines still to be skipped
    std::uint64_t m_take = 0; // lines still to be taken
    std::uint64_t m_imageLines = 0;
    std::uint64_t m_ignored = 0;
};

} // namespace station

#endif
