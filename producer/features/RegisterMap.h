/** The registers of a module, followed by their description. */
#ifndef PRODUCER_FEATURES_REGISTERMAP_H
#define PRODUCER_FEATURES_REGISTERMAP_H

#include "features/Feature.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <span>
#include <string>
#include <vector>

namespace producer {

/** Names in a module's description. */
struct DescriptionNames {
    std::string model; /**< of the file and of the module, an identifier */
    std::string toolTip;
    std::string port; /**< the Port node */
};

/**
 * A byte-addressed map with a slot for each feature. A slot has the value at 0 and, at limitsOffset, minimum,
 * maximum, increment (8 bytes each) and the lock flag. Nothing is cached: each read calls the feature.
 *
 * All numbers are 8 bytes wide and little endian, texts have textSize bytes, tables 4 bytes per element.
 * Accesses are serialized.
 */
class RegisterMap {
public:
    static constexpr std::uint64_t slotSize = 0x20000;
    static constexpr std::uint64_t limitsOffset = 0x1f000;
    static constexpr std::size_t limitsSize = 32;
    static constexpr std::size_t textSize = 4096;
    /** After all slots. */
    static constexpr std::uint64_t descriptionAddress = 0x1000'0000;

    RegisterMap(DescriptionNames names, std::vector<Feature> features);

    /** Throw INVALID_ADDRESS if there is no register, ACCESS_DENIED, or the feature's exception. */
    void read(std::uint64_t address, std::span<std::uint8_t> bytes);
    void write(std::uint64_t address, std::span<const std::uint8_t> bytes);
    /** Writes, and returns the names of features with limits or locks that have changed. */
    std::vector<std::string> writeAndCompare(std::uint64_t address, std::span<const std::uint8_t> bytes);

    const DescriptionNames& names() const { return m_names; }
    const std::string& description() const { return m_description; }

private:
    const Feature& featureAt(std::uint64_t address) const;
    void writeHeld(std::uint64_t address, std::span<const std::uint8_t> bytes);
    std::vector<std::vector<std::uint8_t>> allLimits() const;

    const DescriptionNames m_names;
    const std::vector<Feature> m_features;
    const std::string m_description;
    std::mutex m_mutex;
};

/** Size of a feature's value in bytes. */
std::size_t valueSize(const Feature& feature);

} // namespace producer

#endif
