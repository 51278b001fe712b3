/** Pictures of an open device. */
#ifndef PRODUCER_DEVICE_ACQUISITION_H
#define PRODUCER_DEVICE_ACQUISITION_H

#include "device/DeviceStation.h"
#include "device/PixelFormat.h"

#include <atomic>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace producer {

/** The layout of an acquisition's pictures in a buffer. */
struct Geometry {
    std::uint32_t width = 0, height = 0; // pixels, lines of a full picture
    std::uint32_t x = 0, y = 0;          // offsets
    const PixelFormat* format = nullptr;

    std::uint64_t bytesPerLine() const { return std::uint64_t{width} * format->bits / 8; }
    std::uint64_t bytes() const { return bytesPerLine() * height; }
};

/** A delivered picture. */
struct Picture {
    std::uint64_t number = 0;
    std::uint64_t nanoseconds = 0; /**< of its first line */
    std::uint64_t lostBefore = 0;  /**< images that the board lost before it */
    std::uint32_t lines = 0;
    std::uint64_t size = 0;    /**< bytes of these lines */
    std::uint64_t written = 0; /**< bytes of them in the buffer */
    bool isCut = false;        /**< it did not fit into the buffer */
    Geometry geometry{};
};

/** Converts a picture of the applet to the geometry's format in its buffer, and fills in its sizes. `made`: the
 *  rendered bytes, which may be at the destination already; null if they could not be rendered. */
void put(Picture& picture, const std::uint8_t* made, std::span<std::uint8_t> destination);

/** The destination of pictures. Its functions are called by the acquisition's thread. */
class PictureSink {
public:
    /** Returns the number of pictures that it can accept now. */
    virtual std::size_t room() = 0;
    /** Reserves memory for a picture until `end`; empty if there is none. */
    virtual std::optional<std::span<std::uint8_t>> begin() = 0;
    virtual void end(const Picture& picture) = 0;
    /** Called when no more pictures will arrive. */
    virtual void lose(const std::string& reason) = 0;

protected:
    ~PictureSink() = default;
};

/** Delivers the pictures of a station. Thread-safe. */
class Acquisition {
public:
    /** Ends the thread. */
    virtual ~Acquisition() = default;
    Acquisition(const Acquisition&) = delete;
    Acquisition& operator=(const Acquisition&) = delete;

    /** Sets the sink; null: pictures are not delivered. Returns when the previous sink is no longer used. */
    virtual void attach(PictureSink* sink) = 0;
    /** Call this when the sink may accept pictures again. */
    virtual void wake() = 0;

    /** Starts the DMA; it ends after this many pictures, 0: never. Throws RESOURCE_IN_USE, BUSY, or IO. */
    virtual void start(std::uint64_t pictures) = 0;
    /** Stops the DMA; does nothing if it is not running. Returns when no picture is being written. */
    virtual void stop() = 0;
    virtual bool isRunning() = 0;

    /** Ends the thread; no other function may be called afterwards. */
    virtual void finish() = 0;

    /** Computes the geometry from the present parameters. */
    Geometry geometry();
    void setFormat(const PixelFormat& format) { m_format = &format; }
    /** Returns the format; it differs from the last one set if the applet's output format has changed. */
    const PixelFormat& format();

protected:
    /** The station must outlive the acquisition. */
    explicit Acquisition(DeviceStation& station);

    /** Returns the last format that was set if the applet packs it as `own`; else `own`, which may be null. */
    const PixelFormat* chosenInsteadOf(const PixelFormat* own);

private:
    DeviceStation& m_station;
    std::atomic<const PixelFormat*> m_format;
};

} // namespace producer

#endif
