/** Components side by side in memory, without a gap: from the lowest bit of a line on, 16-bit words little endian. */
#ifndef STATION_PICTURE_PACKING_H
#define STATION_PICTURE_PACKING_H

#include <cstddef>
#include <cstdint>

namespace station {

/** Number of bytes of packed components; the rest of the last byte is 0. */
constexpr std::uint64_t packedSize(std::uint64_t components, std::uint32_t bits) {
    return (components * bits + 7) / 8;
}

/** Components of any number of bits up to 16, one after the other. */
class PackedOut {
public:
    PackedOut(std::uint8_t* out, std::uint32_t bits) : m_out(out), m_bits(bits) {}

    void put(std::uint16_t component) {
        m_rest |= std::uint64_t{component} << m_count;
        m_count += m_bits;
        if (m_count < 32) return;
        for (int byte = 0; byte < 4; ++byte)
            m_out[byte] = static_cast<std::uint8_t>(m_rest >> (8 * byte));
        m_out += 4;
        m_rest >>= 32;
        m_count -= 32;
    }
    /** Writes the remaining bits. */
    void finish() {
        for (std::uint32_t written = 0; written < m_count; written += 8)
            *m_out++ = static_cast<std::uint8_t>(m_rest >> written);
        m_rest = m_count = 0;
    }

private:
    std::uint8_t* m_out;
    std::uint32_t m_bits;
    std::uint64_t m_rest = 0;
    std::uint32_t m_count = 0; // number of valid bits
};

/** Components of 8 bits. */
class ByteOut {
public:
    explicit ByteOut(std::uint8_t* out) : m_out(out) {}
    void put(std::uint16_t component) { *m_out++ = static_cast<std::uint8_t>(component); }
    void finish() {}

private:
    std::uint8_t* m_out;
};

/** Components of 16 bits. */
class WordOut {
public:
    explicit WordOut(std::uint8_t* out) : m_out(out) {}
    void put(std::uint16_t component) {
        m_out[0] = static_cast<std::uint8_t>(component);
        m_out[1] = static_cast<std::uint8_t>(component >> 8);
        m_out += 2;
    }
    void finish() {}

private:
    std::uint8_t* m_out;
};

/** Calls `draw` with an object that packs components of `bits` bits to `out`. */
template <typename Draw> void packInto(std::uint8_t* out, std::uint32_t bits, Draw draw) {
    if (bits == 8)
        draw(ByteOut(out));
    else if (bits == 16)
        draw(WordOut(out));
    else
        draw(PackedOut(out, bits));
}

} // namespace station

#endif
