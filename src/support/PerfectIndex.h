/** Lookup tables made by the compiler. */
#ifndef SUPPORT_PERFECTINDEX_H
#define SUPPORT_PERFECTINDEX_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/** FNV-1a of a name, the key under which a PerfectIndex finds it. */
constexpr std::uint32_t hashOf(std::string_view name) {
    std::uint32_t hash = 2166136261u;
    for (const char c : name)
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    return hash;
}

/**
 * Finds the position of a key among `count` keys that are known at compile time: one multiplication, one
 * load.
 *
 * The compiler tries multipliers until each key has a slot of its own. A key that is none of them leads to
 * some position too, so the caller compares.
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
