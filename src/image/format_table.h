/** Names of output formats, and the width of their components. */
#ifndef IMAGE_FORMAT_TABLE_H
#define IMAGE_FORMAT_TABLE_H

#include "vexo/fg_parameters.h"

#include <cstdint>
#include <optional>
#include <string_view>

/** A format as the design names it. */
struct OutputFormat {
    std::string_view name;
    std::uint32_t format;
    std::uint32_t bits; // of one component
};

// A code of the packed and raw formats holds a pattern and a depth; here it is opaque.
inline constexpr OutputFormat outputFormats[] = {
    {"FG_GRAY", 3, 8},           {"FG_MONO8", 3, 8},          {"FG_GRAY10", 21, 10},
    {"FG_MONO10", 21, 10},       {"FG_GRAY12", 22, 12},       {"FG_MONO12", 22, 12},
    {"FG_GRAY14", 23, 14},       {"FG_MONO14", 23, 14},       {"FG_GRAY16", 1, 16},
    {"FG_MONO16", 1, 16},        {"FG_COL24", FG_COL24, 8},   {"FG_BGR8", FG_COL24, 8},
    {"FG_COL30", FG_COL30, 10},  {"FG_BGR10", FG_COL30, 10},  {"FG_COL36", FG_COL36, 12},
    {"FG_BGR12", FG_COL36, 12},  {"FG_COL42", FG_COL42, 14},  {"FG_BGR14", FG_COL42, 14},
    {"FG_COL48", FG_COL48, 16},  {"FG_BGR16", FG_COL48, 16},  {"FG_RGB8", RGB8, 8},
    {"FG_RGB10", RGB10, 10},     {"FG_RGB12", RGB12, 12},     {"FG_RGB14", RGB14, 14},
    {"FG_RGB16", RGB16, 16},     {"FG_BAYERGR8", 12552, 8},   {"FG_BAYERGR10", 12560, 10},
    {"FG_BAYERGR12", 12562, 12}, {"FG_BAYERGR14", 12564, 14}, {"FG_BAYERGR16", 12566, 16},
    {"FG_BAYERRG8", 12808, 8},   {"FG_BAYERRG10", 12816, 10}, {"FG_BAYERRG12", 12818, 12},
    {"FG_BAYERRG14", 12820, 14}, {"FG_BAYERRG16", 12822, 16}, {"FG_BAYERGB8", 13064, 8},
    {"FG_BAYERGB10", 13072, 10}, {"FG_BAYERGB12", 13074, 12}, {"FG_BAYERGB14", 13076, 14},
    {"FG_BAYERGB16", 13078, 16}, {"FG_BAYERBG8", 13320, 8},   {"FG_BAYERBG10", 13328, 10},
    {"FG_BAYERBG12", 13330, 12}, {"FG_BAYERBG14", 13332, 14}, {"FG_BAYERBG16", 13334, 16},
    {"FG_YUV422_8", 16904, 8},   {"FG_YCBCR422_8", 1825, 8},  {"FG_RGBA8", 1281, 8},
    {"FG_BGRA8", 5377, 8},
};

/** Codes that no input has, but that have a width for the custom shift. */
struct FormatWidth {
    std::uint32_t format;
    std::uint32_t bits;
};

inline constexpr FormatWidth furtherFormats[] = {
    {4, 32}, {20, 32}, {8, 1}, {50, 8}, {408, 8}, {410, 10}, {412, 12}, {414, 14}, {416, 16},
};

/** Has no width there: such an input can be selected, but not shifted manually. */
inline constexpr std::uint32_t formatWithoutShift = 1825;

/** Width of a component as the custom shift counts it, in bits; nothing for an unknown code. */
constexpr std::optional<std::uint32_t> shiftWidthOf(std::uint32_t format) {
    if (format == formatWithoutShift) return {};
    for (const OutputFormat& known : outputFormats)
        if (known.format == format) return known.bits;
    for (const FormatWidth& known : furtherFormats)
        if (known.format == format) return known.bits;
    return {};
}

#endif
