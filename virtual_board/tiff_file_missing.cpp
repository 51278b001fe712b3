#include "ImageFile.h"

namespace vboard {

PixelRows readTiff(const std::string&) {
    return {
        .trouble =
            "it is a TIFF file, and the board was built without TIFF (package libtiff-dev, 4.5 or later): "
            "make a PPM file of it"};
}

} // namespace vboard
