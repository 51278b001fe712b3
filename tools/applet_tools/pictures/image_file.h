/** Images that are read from files. */
#ifndef APPLET_TOOLS_PICTURES_IMAGE_FILE_H
#define APPLET_TOOLS_PICTURES_IMAGE_FILE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace applet_tools {

/** Rows of red, green and blue with 16 bits each: 255 of 8 bits is 65535. Grey is the same in all three. */
struct PixelImage {
    static constexpr std::uint32_t widest = 16384;
    static constexpr std::uint32_t highest = 65536;
    static constexpr std::size_t mostPixels = std::size_t{1} << 24;

    std::uint32_t width = 0, height = 0;
    std::vector<std::uint16_t> components{};

    /** Makes room. Throws UsageError for a size beyond the limits. */
    void resize(std::uint32_t width, std::uint32_t height);
    std::uint16_t* row(std::uint32_t y) { return components.data() + std::size_t{3} * width * y; }
};

/** A PNG or TIFF file, by its content. What is transparent is taken as if it were not. Throws UsageError with the name of
 *  the file, and Unavailable where the program was built without the library. */
PixelImage readImageFile(const std::string& file);

/** The same from the bytes of a file; throw UsageError. */
PixelImage decodePng(const std::string& bytes);
PixelImage decodeTiff(const std::string& bytes);

} // namespace applet_tools

#endif
