#include "device/Acquisition.h"

#include "base/Error.h"

#include <algorithm>
#include <cstring>

namespace producer {

void put(Picture& picture, const std::uint8_t* made, std::span<std::uint8_t> destination) {
    const PixelFormat& format = *picture.geometry.format;
    const bool isAsMade = format.bits == format.appletBits;
    picture.size = picture.geometry.bytesPerLine() * picture.lines;
    picture.isCut = made == nullptr || picture.size > destination.size();
    picture.written = picture.size;
    // Unpacking needs the whole buffer.
    if (picture.isCut) picture.written = made != nullptr && isAsMade ? destination.size() : 0;
    if (picture.written > 0 && isAsMade && made != destination.data())
        std::memcpy(destination.data(), made, picture.written);
    convert(format, picture.written * 8 / format.bits, isAsMade ? destination.data() : made,
            destination.data());
    const std::uint64_t end = std::min<std::uint64_t>(picture.geometry.bytes(), destination.size());
    if (!picture.isCut && picture.size < end)
        std::memset(destination.data() + picture.size, 0, end - picture.size);
}

Acquisition::Acquisition(DeviceStation& station)
    : m_station(station)
    , m_format(pixelFormatOfOutput(station.integer("FG_FORMAT"))) {}

const PixelFormat* Acquisition::chosenInsteadOf(const PixelFormat* own) {
    if (own == nullptr) return nullptr;
    const PixelFormat* const chosen = m_format;
    if (chosen != nullptr && chosen->outputFormat == own->outputFormat) return chosen;
    return m_format = own;
}

const PixelFormat& Acquisition::format() {
    const PixelFormat* const format = chosenInsteadOf(pixelFormatOfOutput(m_station.integer("FG_FORMAT")));
    if (format == nullptr) throw Error(GC_ERR_NOT_AVAILABLE, "the output format has no pixel format");
    return *format;
}

Geometry Acquisition::geometry() {
    const auto number = [this](const char* name) {
        return static_cast<std::uint32_t>(m_station.integer(name));
    };
    return {number("FG_WIDTH"), number("FG_HEIGHT"), number("FG_XOFFSET"), number("FG_YOFFSET"), &format()};
}

} // namespace producer
