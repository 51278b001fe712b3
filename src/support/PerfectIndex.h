/** Lookup tables computed at compile time. */
#ifndef SUPPORT_PERFECTINDEX_H
#define SUPPORT_PERFECTINDEX_H

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

/** The eight bytes at `text` as a little-endian number. */
constexpr std::uint64_t eightBytesAt(const char* text) {
    static_assert(std::endian::native == std::endian::little);
    std::uint64_t word = 0;
    if (!std::is_constant_evaluated()) {
        std::memcpy(&word, text, sizeof word);
        return word;
    }
    for (std::size_t i = 0; i < sizeof word; ++i)
        word |= std::uint64_t{static_cast<unsigned char>(text[i])} << (8 * i);
    return word;
}

/** Hash of a name, the key under which a PerfectIndex finds it. Takes eight bytes at a time. */
constexpr std::uint32_t hashOf(std::string_view name) {
    constexpr std::uint64_t factor = 0x9E3779B97F4A7C15u; // odd, with well mixed bits
    constexpr std::size_t step = sizeof(std::uint64_t);
    std::uint64_t hash = name.size();
    const auto mix = [&hash](std::uint64_t word) { hash = (hash ^ word) * factor; };
    if (name.size() < step) {
        for (const char c : name)
            mix(static_cast<unsigned char>(c));
    } else {
        for (std::size_t i = 0; i + step < name.size(); i += step)
            mix(eightBytesAt(name.data() + i));
        mix(eightBytesAt(name.data() + name.size() - step)); // may overlap bytes already taken
    }
    return static_cast<std::uint32_t>(hash >> 32);
}

/**
 * Finds the position of a key among `count` keys that are known at compile time: one multiplication, one
 * load.
 *
 * The compiler tries multipliers until each key has its own slot. Any other key also leads to
 * some position, so the caller must compare.
 */
template <std::size_t count> class PerfectIndex {
public:
    static_assert(count <= 256, "positions are kept in bytes");

    consteval explicit PerfectIndex(const std::array<std::uint32_t, count>& keys) {
        while (!separates(keys))
            m_multiplier += 2;
        for (std::size_t position = 0; position < count; ++position)
            m_positions[slotOf(keys[position])] = static_cast<std::uint8_t>(position);
    }

    constexpr std::size_t find(std::uint32_t key) const { return m_positions[slotOf(key)]; }

private:
    static constexpr unsigned slotBits = 12;

    constexpr std::size_t slotOf(std::uint32_t key) const { return (key * m_multiplier) >> (32 - slotBits); }

    consteval bool separates(const std::array<std::uint32_t, count>& keys) const {
        std::array<bool, std::size_t{1} << slotBits> taken{};
        for (const std::uint32_t key : keys) {
            if (taken[slotOf(key)]) return false;
            taken[slotOf(key)] = true;
        }
        return true;
    }

    std::uint32_t m_multiplier = 2654435769u;
    std::array<std::uint8_t, std::size_t{1} << slotBits> m_positions{};
};

#endif
