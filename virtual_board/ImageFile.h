/** Images of files, for the debug points. */
#ifndef VIRTUAL_BOARD_IMAGE_FILE_H
#define VIRTUAL_BOARD_IMAGE_FILE_H

#include "station/picture/PictureSettings.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace vboard {

/** An image, or why there is none. */
struct ImageOfFile {
    std::shared_ptr<station::Raster> raster{};
    std::string trouble{}; /**< "its pixels end too early" */
};

/** The image of a PPM or PGM (binary, P6 or P5), PNG or TIFF file with its components at the top of 16 bits: those of 16 bits
 *  stay as they are. It has to be a regular file, and no larger than a raster may be. PNG and TIFF are read by the
 *  system's libraries, which are loaded when the first such file comes. */
ImageOfFile readImage(const std::string& path, station::Raster::Point point);

/** Rows of pixels as a file has them. */
struct PixelRows {
    std::uint32_t width = 0, height = 0;
    unsigned samples =
        3; /**< of a pixel: with one or two the first is its grey, else red, green, blue come first */
    unsigned bits = 8; /**< of a sample: 8, or 16 in the machine's order */
    bool isInverted = false;
    std::vector<std::uint8_t> bytes{};
    std::string trouble{}; /**< not empty: why it is none */

    /** Makes room for the bytes; false, with the trouble, for a size that a raster cannot have. */
    bool makeRoom();
    std::size_t bytesOfRow() const { return std::size_t{width} * samples * (bits / 8); }
};

PixelRows readPng(const std::string& path);
PixelRows readTiff(const std::string& path);

} // namespace vboard

#endif
