// The input is an image file for a debug point. It is refused with a reason, or gives a whole image.

#include "invariants.h"
#include "virtual_board/images/ImageFile.h"

#include <sys/mman.h>

using fuzz::require;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int file = memfd_create("image", MFD_CLOEXEC);
    static const std::string path = "/proc/self/fd/" + std::to_string(file);
    const bool isWritten =
        ftruncate(file, 0) == 0 && pwrite(file, data, size, 0) == static_cast<ssize_t>(size);
    require(isWritten, "the file is written");
    const vboard::ImageOfFile image = vboard::readImage(path, station::Raster::Point::buffer);
    require(image.trouble.empty() == (image.raster != nullptr), "an image, or the reason why there is none");
    if (image.raster == nullptr) return 0;
    require(image.raster->isSound(), "an image has all of its pixels");
    require(image.raster->point == station::Raster::Point::buffer, "it is for the point that was asked for");
    return 0;
}
