/** Parts of a picture: scaled pictures, histograms and profiles of a region. */
#ifndef APPLET_TOOLS_PICTURES_REGION_H
#define APPLET_TOOLS_PICTURES_REGION_H

#include "applet_tools/pictures/PictureView.h"

#include <array>
#include <cstdint>
#include <vector>

namespace applet_tools {

/** A rectangle of a picture, in pixels. */
struct PictureRegion {
    std::uint32_t x = 0, y = 0, width = 0, lines = 0;

    bool operator==(const PictureRegion&) const = default;
};

PictureRegion wholeOf(const PictureView& picture);

/** True when the region has a pixel and is within the picture. */
bool isWithin(const PictureRegion& region, const PictureView& picture);

/** A picture with its bytes: 8 bits of a component, or 16 if the original has more than 8. */
struct OwnedPicture {
    std::uint32_t width = 0, lines = 0, bits = 8;
    std::vector<std::uint8_t> bytes{};

    PictureView view() const {
        return {.bytes = bytes,
                .width = width,
                .lines = lines,
                .bits = bits,
                .bytesPerLine = width * 3 * (bits / 8)};
    }
};

/** The region, reduced to `width` x `lines` pixels; each is the mean of the pixels in its box. Values of more
 *  than 8 bits are widened to 16 bits. `width` and `lines` are 1 to those of the region, which is within the
 *  picture. */
OwnedPicture scaledDown(const PictureView& picture, const PictureRegion& region, std::uint32_t width,
                        std::uint32_t lines);

/** How often each value occurs in a region, for red, green and blue. */
struct PictureHistogram {
    static constexpr std::size_t bins = 256; /**< with more than 8 bits a bin has several values */

    std::uint64_t count = 0; /**< pixels */
    std::array<std::array<std::uint64_t, bins>, 3> counts{};
    std::array<std::uint64_t, 3> low{};  /**< components with the value 0 */
    std::array<std::uint64_t, 3> high{}; /**< components with the maximum for their bits */
    std::array<std::uint64_t, 3> sum{};  /**< of the values */
};

PictureHistogram histogramOf(const PictureView& picture, const PictureRegion& region);

/** Red, green and blue along a line or a column. */
using PictureProfile = std::array<std::vector<double>, 3>;

/** The means of the columns of the region, from left to right: a profile along the line. */
PictureProfile columnMeans(const PictureView& picture, const PictureRegion& region);
/** The means of the lines of the region, from the top down. */
PictureProfile lineMeans(const PictureView& picture, const PictureRegion& region);

} // namespace applet_tools

#endif
