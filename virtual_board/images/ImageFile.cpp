#include "virtual_board/images/ImageFile.h"

#include <algorithm>
#include <array>
#include <bit>
#include <filesystem>
#include <fstream>
#include <istream>
#include <string_view>

namespace vboard {
namespace {

/** A number of the header, after blanks and comments; 0 if there is none. */
std::uint32_t headerNumber(std::istream& file) {
    file >> std::ws;
    while (file.peek() == '#') {
        file.ignore(1 << 16, '\n');
        file >> std::ws;
    }
    std::uint32_t number = 0;
    if (file.peek() == '-') return 0; // >> would take it for a large number
    file >> number;
    return file ? number : 0;
}

std::uint64_t bytesLeft(std::istream& file) {
    const std::streamoff here = file.tellg();
    file.seekg(0, std::ios::end);
    const std::streamoff end = file.tellg();
    file.seekg(here);
    return static_cast<std::uint64_t>(end - here);
}

/** Puts the value in the upper bits of 16, as many as `largest` has and at least eight. Scaled, so that `largest` sets
 *  all of these bits. */
unsigned inUpperBits(unsigned value, std::uint32_t largest) {
    constexpr unsigned fewest = 8;
    const unsigned bits = std::max(fewest, static_cast<unsigned>(std::bit_width(largest)));
    const unsigned full = (1U << bits) - 1;
    return (value * full + largest / 2) / largest << (16 - bits);
}

/** A binary PPM or PGM, after the two bytes of its magic number. */
ImageOfFile readPnm(std::istream& file, bool isGrey) {
    auto raster = std::make_shared<station::Raster>();
    raster->width = headerNumber(file);
    raster->height = headerNumber(file);
    const std::uint32_t largest = headerNumber(file);
    file.get(); // one blank before the pixels
    if (!file || largest == 0 || largest > 0xffff)
        return {.trouble = "its header is not that of a binary PPM or PGM file"};
    PixelRows rows{.width = raster->width, .height = raster->height, .samples = isGrey ? 1U : 3U};
    rows.bits = largest > 0xff ? 16 : 8;
    if (!rows.hasSize()) return {.trouble = rows.trouble};
    const std::string tooShort = "its pixels end too early";
    if (bytesLeft(file) < rows.bytesOfRow() * rows.height) return {.trouble = tooShort};
    rows.makeRoom();
    std::vector<std::uint8_t>& bytes = rows.bytes;
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file) return {.trouble = tooShort};
    const std::size_t components = std::size_t{3} * rows.width * rows.height;
    raster->components.reserve(components);
    for (std::size_t i = 0; i < components; ++i) {
        const std::uint8_t* component = &bytes[(isGrey ? i / 3 : i) * (rows.bits / 8)];
        const unsigned value =
            rows.bits == 16 ? unsigned{component[0]} << 8U | component[1] : unsigned{component[0]};
        if (value > largest)
            return {.trouble = "it has the value " + std::to_string(value) +
                               ", and its header says at most " + std::to_string(largest)};
        raster->components.push_back(static_cast<std::uint16_t>(inUpperBits(value, largest)));
    }
    return {.raster = std::move(raster)};
}

ImageOfFile imageOf(PixelRows rows) {
    if (!rows.trouble.empty()) return {.trouble = std::move(rows.trouble)};
    auto raster = std::make_shared<station::Raster>();
    raster->width = rows.width;
    raster->height = rows.height;
    const std::size_t pixels = std::size_t{rows.width} * rows.height;
    const std::size_t ofPixel = std::size_t{rows.samples} * (rows.bits / 8);
    raster->components.reserve(3 * pixels);
    for (std::size_t i = 0; i < 3 * pixels; ++i) {
        const std::size_t sample = rows.samples < 3 ? 0 : i % 3;
        const std::uint8_t* component = &rows.bytes[i / 3 * ofPixel + sample * (rows.bits / 8)];
        std::uint16_t value = 0;
        if (rows.bits == 16)
            value = std::bit_cast<std::uint16_t>(std::array{component[0], component[1]});
        else
            value = static_cast<std::uint16_t>((rows.isInverted ? 0xff - component[0] : component[0]) << 8);
        if (rows.bits == 16 && rows.isInverted) value = static_cast<std::uint16_t>(~value);
        raster->components.push_back(value);
    }
    return {.raster = std::move(raster)};
}

ImageOfFile readAnyImage(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) // a read from a pipe might block for ever
        return {.trouble = "there is no such regular file"};
    std::ifstream file(path, std::ios::binary);
    char start[4] = {};
    file.read(start, 2);
    if (!file) return {.trouble = "it cannot be read, or is empty"};
    const std::string_view magic(start, 2);
    if (magic == "P5" || magic == "P6") return readPnm(file, magic == "P5");
    file.read(start + 2, 2);
    const std::string_view longMagic(start, 4);
    if (file && longMagic == "\x89PNG") return imageOf(readPng(path));
    using namespace std::string_view_literals;
    if (file && (longMagic == "II*\0"sv || longMagic == "MM\0*"sv)) return imageOf(readTiff(path));
    return {.trouble = "it is neither a PNG, nor a TIFF, nor a binary PPM or PGM file"};
}

} // namespace

bool PixelRows::hasSize() {
    using Size = station::ImageSize;
    if (Size::isSound(width, height)) return true;
    trouble = "it has " + std::to_string(width) + " x " + std::to_string(height) +
              " pixels, and an image of a debug point has 1 x 1 to " + std::to_string(Size::widest) + " x " +
              std::to_string(Size::highest) + ", and at most " + std::to_string(Size::mostPixels);
    return false;
}

bool PixelRows::makeRoom() {
    if (!hasSize()) return false;
    bytes.resize(bytesOfRow() * height);
    return true;
}

ImageOfFile readImage(const std::string& path, station::Raster::Point point) {
    ImageOfFile image = readAnyImage(path);
    if (image.raster != nullptr) image.raster->point = point;
    return image;
}

} // namespace vboard
