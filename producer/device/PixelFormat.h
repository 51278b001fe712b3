/** The pixel formats of pictures. */
#ifndef PRODUCER_DEVICE_PIXELFORMAT_H
#define PRODUCER_DEVICE_PIXELFORMAT_H

#include <cstdint>
#include <span>

namespace producer {

struct PixelFormat {
    const char* name;
    std::uint32_t code;        /**< code of the pixel format naming convention */
    std::int32_t outputFormat; /**< FG_FORMAT */
    std::uint32_t bits;        /**< per pixel in a buffer */
    std::uint32_t appletBits;  /**< per pixel as the applet packs it */
    bool isSwapped;            /**< red and blue are exchanged */

    /** Bytes of a line as the applet packs it. */
    std::uint64_t appletBytes(std::uint64_t pixels) const { return (pixels * appletBits + 7) / 8; }
};

/** Returns all formats. For each output format, the applet's own format is the first. */
std::span<const PixelFormat> pixelFormats();
/** Null for an unknown code. */
const PixelFormat* pixelFormatOf(std::int64_t code);
const PixelFormat* pixelFormatOfOutput(std::int64_t outputFormat);
/** `bits`: bits of a component as the applet packs it. */
const PixelFormat* pixelFormatOfBits(std::uint32_t bits);

/** Converts a picture of the applet to a format. `made` and `destination` may be the same unless the format's bits
 *  differ from the applet's. */
void convert(const PixelFormat& format, std::uint64_t pixels, const std::uint8_t* made,
             std::uint8_t* destination);

} // namespace producer

#endif
