/** Reads images from files, of all kinds that the libraries convert, at full scale. The board has a reader of its
 *  own: it depends on no library, and keeps the bits of a debug image as they are in the file. */
#ifndef APPLET_TOOLS_PICTURES_IMAGE_FILE_H
#define APPLET_TOOLS_PICTURES_IMAGE_FILE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace applet_tools {

/** Rows of red, green and blue with 16 bits each; an 8-bit 255 becomes 65535. Grey has three equal
 *  components. */
struct PixelImage {
    std::uint32_t width = 0, height = 0;
    std::vector<std::uint16_t> components{};

    /** Allocates the pixels. Throws UsageError for a size beyond the limits of the virtual board. */
    void resize(std::uint32_t width, std::uint32_t height);
    std::uint16_t* row(std::uint32_t y) { return components.data() + std::size_t{3} * width * y; }
};

/** Reads a PNG or TIFF file, recognised by its content. Ignores transparency. Throws UsageError with the name of
 *  the file, and Unavailable if the program was built without the library. */
PixelImage readImageFile(const std::string& file);

/** Decode the bytes of a file. Throw UsageError. */
PixelImage decodePng(const std::string& bytes);
PixelImage decodeTiff(const std::string& bytes);

} // namespace applet_tools

#endif
