/** The pixel formats of pictures. */
#ifndef PRODUCER_DEVICE_PIXELFORMAT_H
#define PRODUCER_DEVICE_PIXELFORMAT_H

#include <cstdint>
#include <span>

namespace producer {

struct PixelFormat {
    const char* name;
    std::uint32_t code;        /**< of the pixel format naming convention */
    std::int32_t outputFormat; /**< FG_FORMAT */
    std::uint32_t bits;        /**< of a pixel in a buffer */
    std::uint32_t appletBits;  /**< of a pixel as the applet packs it */
    bool isSwapped;            /**< red and blue change places */
};

/** The first one of an output format is what the applet makes. */
std::span<const PixelFormat> pixelFormats();
/** Null for a code that is none. */
const PixelFormat* pixelFormatOf(std::int64_t code);
const PixelFormat* pixelFormatOfOutput(std::int64_t outputFormat);

/** Brings a picture of the applet's into a format. `made` and `place` are the same, or apart if the format has other
 *  bits than the applet's. */
void convert(const PixelFormat& format, std::uint64_t pixels, const std::uint8_t* made, std::uint8_t* place);

} // namespace producer

#endif
