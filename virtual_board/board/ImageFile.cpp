#include "virtual_board/board/ImageFile.h"

#include <bit>
#include <filesystem>
#include <fstream>
#include <istream>

namespace vboard {
namespace {

/** A number of the header, behind blanks and comments; 0 if there is none. */
std::uint32_t headerNumber(std::istream& file) {
    file >> std::ws;
    while (file.peek() == '#') {
        file.ignore(1 << 16, '\n');
        file >> std::ws;
    }
    std::uint32_t number = 0;
    file >> number;
    return file ? number : 0;
}

} // namespace

std::shared_ptr<station::Raster> readImage(const std::string& path, station::Raster::Point point) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return nullptr; // a pipe might never answer
    std::ifstream file(path, std::ios::binary);
    char magic[2] = {};
    file.read(magic, sizeof magic);
    if (!file || magic[0] != 'P' || (magic[1] != '5' && magic[1] != '6')) return nullptr;
    auto raster = std::make_shared<station::Raster>();
    raster->point = point;
    raster->width = headerNumber(file);
    raster->height = headerNumber(file);
    const std::uint32_t largest = headerNumber(file);
    file.get(); // one blank before the pixels
    if (!file || !raster->hasSoundSize() || largest == 0 || largest > 0xffff) return nullptr;

    const std::size_t pixels = std::size_t{raster->width} * raster->height;
    const std::size_t components = magic[1] == '6' ? 3 : 1; // of a pixel
    const std::size_t bytesOfEach = largest > 0xff ? 2 : 1;
    std::vector<unsigned char> bytes(pixels * components * bytesOfEach);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file) return nullptr;
    const auto shift = 16 - static_cast<unsigned>(std::bit_width(largest));
    raster->components.reserve(3 * pixels);
    for (std::size_t i = 0; i < 3 * pixels; ++i) {
        const unsigned char* place = &bytes[(components == 3 ? i : i / 3) * bytesOfEach];
        const unsigned value = bytesOfEach == 2 ? unsigned{place[0]} << 8U | place[1] : unsigned{place[0]};
        raster->components.push_back(static_cast<std::uint16_t>(value << shift));
    }
    return raster;
}

} // namespace vboard
