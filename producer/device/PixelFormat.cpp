#include "device/PixelFormat.h"

#include "vexo/fg_parameters.h"

#include <algorithm>
#include <utility>

namespace producer {
namespace {

// The naming convention has no code for packed 14 bits: components are sent as 16-bit words.
constexpr PixelFormat formats[] = {
    {"BGR8", 0x02180015, FG_COL24, 24, 24, false},   {"RGB8", 0x02180014, FG_COL24, 24, 24, true},
    {"BGR10p", 0x021E0048, FG_COL30, 30, 30, false}, {"BGR12p", 0x02240049, FG_COL36, 36, 36, false},
    {"BGR14", 0x0230004A, FG_COL42, 48, 42, false},  {"BGR16", 0x0230004B, FG_COL48, 48, 48, false},
};

/** Converts packed 14-bit components, from the lowest bit on, to words. Lines end at whole bytes, as widths are
 *  multiples of 4. */
void unpack14(std::uint64_t components, const std::uint8_t* from, std::uint8_t* to) {
    std::uint32_t held = 0;
    unsigned count = 0;
    for (std::uint64_t i = 0; i < components; ++i) {
        while (count < 14) {
            held |= std::uint32_t{*from++} << count;
            count += 8;
        }
        *to++ = static_cast<std::uint8_t>(held);
        *to++ = static_cast<std::uint8_t>((held >> 8) & 0x3f);
        held >>= 14;
        count -= 14;
    }
}

} // namespace

std::span<const PixelFormat> pixelFormats() { return formats; }

const PixelFormat* pixelFormatOf(std::int64_t code) {
    const auto* found =
        std::ranges::find_if(formats, [code](const auto& format) { return format.code == code; });
    return found != std::end(formats) ? found : nullptr;
}

const PixelFormat* pixelFormatOfOutput(std::int64_t outputFormat) {
    const auto* found = std::ranges::find(formats, outputFormat, &PixelFormat::outputFormat);
    return found != std::end(formats) ? found : nullptr;
}

const PixelFormat* pixelFormatOfBits(std::uint32_t bits) {
    constexpr std::uint32_t components = 3;
    const auto* found = std::ranges::find(formats, components * bits, &PixelFormat::appletBits);
    return found != std::end(formats) ? found : nullptr;
}

void convert(const PixelFormat& format, std::uint64_t pixels, const std::uint8_t* made,
             std::uint8_t* destination) {
    if (format.isSwapped) {
        for (std::uint64_t i = 0; i < pixels; ++i, destination += 3)
            std::swap(destination[0], destination[2]);
    } else if (format.bits != format.appletBits) {
        unpack14(3 * pixels, made, destination);
    }
}

} // namespace producer
