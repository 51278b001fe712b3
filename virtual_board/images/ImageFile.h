/** Images from files, for the debug points. */
#ifndef VIRTUAL_BOARD_BOARD_IMAGEFILE_H
#define VIRTUAL_BOARD_BOARD_IMAGEFILE_H

#include "station/picture/PictureSettings.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vboard {

/** An image, or the reason why there is none. */
struct ImageOfFile {
    std::shared_ptr<station::Raster> raster{};
    std::string trouble{}; /**< "its pixels end too early" */
};

/** The image of a PPM or PGM (binary, P6 or P5), PNG or TIFF file. Components of less than 16 bits are put in
 *  the upper bits. It must be a regular file and not larger than a raster may be. PNG and TIFF are read by
 *  the system's libraries, which are loaded for the first such file. */
ImageOfFile readImage(const std::string& path, station::Raster::Point point);

/** Rows of pixels as they are in a file. */
struct PixelRows {
    std::uint32_t width = 0, height = 0;
    unsigned samples =
        3; /**< of each pixel: with one or two the first is its grey, else red, green, blue come first */
    unsigned bits = 8; /**< per sample: 8, or 16 in the machine's byte order */
    bool isInverted = false;
    std::vector<std::uint8_t> bytes{};
    std::string trouble{}; /**< if not empty: why there is no image */

    /** False, with the trouble, for a size that a raster cannot have. */
    bool hasSize();
    /** The same, and allocates the bytes. */
    bool makeRoom();
    std::size_t bytesOfRow() const { return std::size_t{width} * samples * (bits / 8); }
};

PixelRows readPng(const std::string& path);
PixelRows readTiff(const std::string& path);

} // namespace vboard

#endif
