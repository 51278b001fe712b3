/** The sensor and the region of interest on it. */
#ifndef IMAGE_SENSOR_GEOMETRY_H
#define IMAGE_SENSOR_GEOMETRY_H

#include <cstdint>

struct SensorGeometry {
    std::uint32_t m_vantagePoint;
    std::uint32_t m_sensorWidth;  // pixels
    std::uint32_t m_sensorHeight; // lines
    std::uint32_t m_width;        // pixels
    std::uint32_t m_height;       // lines
    std::uint32_t m_xOffset;      // pixels
    std::uint32_t m_yOffset;      // lines

    /** Which is written first when the buffer's geometry changes: the sensor's height, or the mirrors. */
    enum class WriteOrder { heightFirst, mirrorsFirst };
    /**
     * The order that follows from the old value of the parameter being set, whichever parameter that is. Only
     * for the vantage point does this value describe where images were read from before, but the order of the
     * writes is fixed for all of them.
     */
    static WriteOrder orderAfter(std::uint32_t previous);

    bool mirrorsLines() const;  // a right vantage point
    bool mirrorsFrames() const; // a bottom vantage point
    /** Refuse a region that does not fit. The sensor's size only matters where the vantage point mirrors. */
    void checkRoiX() const;
    void checkRoiY() const;

    /** The memory of the buffer, which a mirrored frame has to fit in. */
    struct Dram {
        std::uint32_t dataWidth; // bits
        std::uint64_t pixels;    // that fit
    };
};

#endif
