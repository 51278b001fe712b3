/** Components side by side in memory, without a gap: from the lowest bit of a line on, 16-bit words little endian. */
#ifndef STATION_PICTURE_PACKING_H
#define STATION_PICTURE_PACKING_H

#include <cstddef>
#include <cstdint>

namespace station {

/** Bytes of so many components; what is left of the last byte is 0. */
constexpr std::uint64_t packedSize(std::uint64_t components, std::uint32_t bits) {
    return (components * bits + 7) / 8;
}

/** Takes components of 8 to 16 bits one after the other. */
class Packer {
public:
    Packer(std::uint8_t* out, std::uint32_t bits) : m_out(out), m_bits(bits) {}

    void put(std::uint32_t component) {
        m_rest |= std::uint64_t{component} << m_count;
        m_count += m_bits;
        while (m_count >= 8) {
            *m_out++ = static_cast<std::uint8_t>(m_rest);
            m_rest >>= 8;
            m_count -= 8;
        }
    }
    /** Writes what is left of the last byte. */
    void finish() {
        if (m_count > 0) *m_out++ = static_cast<std::uint8_t>(m_rest);
        m_count = 0;
        m_rest = 0;
    }

private:
    std::uint8_t* m_out;
    std::uint32_t m_bits;
    std::uint64_t m_rest = 0;
    std::uint32_t m_count = 0; // bits in it
};

} // namespace station

#endif
