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
    bool isCut = false;        /**< it did not fit */
    Geometry geometry{};
};

/** Brings a picture of the applet into its buffer in the geometry's format, and fills in its sizes. `made`: its
 *  bytes, which may be at the destination already; null if they could not be made. */
void put(Picture& picture, const std::uint8_t* made, std::span<std::uint8_t> destination);

/** The destination of pictures. Its functions are called by the acquisition's thread. */
class PictureSink {
public:
    /** How many pictures it could accept now. */
    virtual std::size_t room() = 0;
    /** Memory for a picture, reserved until `end`; null if there is none. */
    virtual std::optional<std::span<std::uint8_t>> begin() = 0;
    virtual void end(const Picture& picture) = 0;
    /** No more pictures will come. */
    virtual void lose(const std::string& reason) = 0;

protected:
    ~PictureSink() = default;
};

/** Delivers the pictures of a station. Thread-safe. */
class Acquisition {
public:
    /** Ends its thread. */
    virtual ~Acquisition() = default;
    Acquisition(const Acquisition&) = delete;
    Acquisition& operator=(const Acquisition&) = delete;

    /** Null: pictures are not delivered. Returns when the previous sink is no longer used. */
    virtual void attach(PictureSink* sink) = 0;
    /** Call it when there may be room again. */
    virtual void wake() = 0;

    /** Starts the DMA; it ends after this many pictures, 0: never. Throws RESOURCE_IN_USE, BUSY, or IO. */
    virtual void start(std::uint64_t pictures) = 0;
    /** Does nothing if none runs. Returns when no picture is being written. */
    virtual void stop() = 0;
    virtual bool isRunning() = 0;

    /** Ends the thread; no other function may be called afterwards. */
    virtual void finish() = 0;

    /** The geometry from the present parameters. */
    Geometry geometry();
    void setFormat(const PixelFormat& format) { m_format = &format; }
    /** The format; differs from the last one set if the applet's output format has changed. */
    const PixelFormat& format();

protected:
    /** The station must outlive the acquisition. */
    explicit Acquisition(DeviceStation& station);

    /** The last format that was set, if the applet packs it as this one; else this one, which may be null. */
    const PixelFormat* chosenInsteadOf(const PixelFormat* own);

private:
    DeviceStation& m_station;
    std::atomic<const PixelFormat*> m_format;
};

} // namespace producer

#endif
