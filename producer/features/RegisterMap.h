/** The registers of a module, and the description of them that lies behind them. */
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

/** Names of a module's description. */
struct DescriptionNames {
    std::string model; /**< of the file and of the module, an identifier */
    std::string toolTip;
    std::string port; /**< the Port node */
};

/**
 * A byte-addressed map with a slot for each feature. A slot has the value at 0 and, at limitsPlace, minimum, maximum,
 * increment (8 bytes each) and whether the feature is locked. Nothing is kept: each read asks the feature.
 *
 * All numbers are 8 bytes wide and little endian, texts have textSize bytes, tables 4 bytes for each element.
 * One access is carried out at a time.
 */
class RegisterMap {
public:
    static constexpr std::uint64_t slotSize = 0x20000;
    static constexpr std::uint64_t limitsPlace = 0x1f000;
    static constexpr std::size_t limitsSize = 32;
    static constexpr std::size_t textSize = 4096;
    /** Behind all slots. */
    static constexpr std::uint64_t descriptionAddress = 0x1000'0000;

    RegisterMap(DescriptionNames names, std::vector<Feature> features);

    /** Throw INVALID_ADDRESS where there is no register, ACCESS_DENIED, or what the feature throws. */
    void read(std::uint64_t address, std::span<std::uint8_t> bytes);
    void write(std::uint64_t address, std::span<const std::uint8_t> bytes);
    /** A write, after which it gives the names of the features with other limits, or another lock, than before. */
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

/** Bytes of a feature's value. */
std::size_t valueSize(const Feature& feature);

} // namespace producer

#endif
