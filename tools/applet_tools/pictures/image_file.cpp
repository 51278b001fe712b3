#include "applet_tools/pictures/image_file.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

#include "virtual_board/virtual_board.h"

#include <string_view>

namespace applet_tools {

void PixelImage::resize(std::uint32_t newWidth, std::uint32_t newHeight) {
    const bool isSound = newWidth > 0 && newHeight > 0 && newWidth <= VBOARD_WIDEST &&
                         newHeight <= VBOARD_HIGHEST &&
                         std::size_t{newWidth} * newHeight <= VBOARD_MOST_PIXELS;
    if (!isSound)
        throw UsageError("it has " + numberText(newWidth) + " x " + numberText(newHeight) +
                         " pixels; a scene has at most " + numberText(std::uint32_t{VBOARD_WIDEST}) + " x " +
                         numberText(std::uint32_t{VBOARD_HIGHEST}) + ", and " +
                         numberText(std::uint32_t{VBOARD_MOST_PIXELS}) + " in all");
    width = newWidth;
    height = newHeight;
    components.resize(std::size_t{3} * width * height);
}

PixelImage readImageFile(const std::string& file) {
    using namespace std::string_view_literals;
    const std::string bytes = requiredTextOfFile(file);
    try {
        if (bytes.starts_with("\x89PNG\r\n"sv)) return decodePng(bytes);
        if (bytes.starts_with("II*\0"sv) || bytes.starts_with("MM\0*"sv)) return decodeTiff(bytes);
        throw UsageError("it is neither a PNG nor a TIFF file");
    } catch (const UsageError& error) {
        throw UsageError("the image " + inQuotedWord(file) + " cannot be taken: " + error.what());
    }
}

} // namespace applet_tools
