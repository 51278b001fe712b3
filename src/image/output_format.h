/** The output format, and the inputs that the design offers for it. */
#ifndef IMAGE_OUTPUT_FORMAT_H
#define IMAGE_OUTPUT_FORMAT_H

#include <cstdint>
#include <vector>

struct OutputFormatting {
    std::uint32_t m_format;
    std::uint32_t m_bitAlignment;
    std::uint32_t m_customBitShiftRight; // bits
    /** One input of the multiplexer at the end of the image path. */
    struct FormatInput {
        std::uint32_t format = 0;
        std::uint32_t bits = 0;    // of one component
        bool hasTrash = false;     // its branch can be silenced
        std::uint32_t trashId = 0; // design parameter that does so
    };
    std::vector<FormatInput> m_formatInputs;
    std::int32_t m_formatMaxBits = 0; // of the widest component

    /** Bits of a component within the applet. */
    std::uint32_t pixelDepth() const { return 16; }
};

#endif
