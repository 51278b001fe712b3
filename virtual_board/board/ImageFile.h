/** Images of files, for the debug points. */
#ifndef VIRTUAL_BOARD_BOARD_IMAGEFILE_H
#define VIRTUAL_BOARD_BOARD_IMAGEFILE_H

#include "station/picture/PictureSettings.h"

#include <memory>
#include <string>

namespace vboard {

/** The image of a PPM or PGM file (binary, P6 or P5) with its components at the top of 16 bits. Null if it is no such
 *  regular file, or larger than a raster may be. */
std::shared_ptr<station::Raster> readImage(const std::string& path, station::Raster::Point point);

} // namespace vboard

#endif
