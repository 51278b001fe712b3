#include "features/RegisterMap.h"

#include "base/Error.h"
#include "base/hexadecimal.h"
#include "features/description.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace producer {
namespace {

using Bytes = std::vector<std::uint8_t>;

/** The value in this many bytes; longer texts are truncated. */
Bytes encoded(const Value& value, std::size_t size) {
    Bytes bytes(size, 0);
    const auto copy = [&](const void* from, std::size_t length) {
        std::memcpy(bytes.data(), from, std::min(length, size));
    };
    if (const auto* integer = std::get_if<std::int64_t>(&value)) copy(integer, sizeof *integer);
    if (const auto* real = std::get_if<double>(&value)) copy(real, sizeof *real);
    if (const auto* text = std::get_if<std::string>(&value))
        copy(text->data(), std::min(text->size(), size - 1));
    if (const auto* table = std::get_if<std::vector<std::uint32_t>>(&value))
        copy(table->data(), 4 * table->size());
    return bytes;
}

Value decoded(Feature::Kind kind, const Bytes& bytes) {
    switch (kind) {
    case Feature::Kind::real: {
        double value = 0;
        std::memcpy(&value, bytes.data(), sizeof value);
        return value;
    }
    case Feature::Kind::text: {
        const char* text = reinterpret_cast<const char*>(bytes.data());
        return std::string(text, strnlen(text, bytes.size()));
    }
    case Feature::Kind::table: {
        std::vector<std::uint32_t> table(bytes.size() / 4);
        std::memcpy(table.data(), bytes.data(), bytes.size());
        return table;
    }
    default: {
        std::int64_t value = 0;
        std::memcpy(&value, bytes.data(), sizeof value);
        return value;
    }
    }
}

Bytes limitsOf(const Feature& feature) {
    const Limits limits = feature.limits ? feature.limits() : Limits{};
    Bytes bytes;
    for (const Value* value : {&limits.minimum, &limits.maximum, &limits.increment}) {
        const Bytes one = encoded(*value, 8);
        bytes.insert(bytes.end(), one.begin(), one.end());
    }
    const Bytes locked = encoded(std::int64_t{feature.lockReason && !feature.lockReason().empty()}, 8);
    bytes.insert(bytes.end(), locked.begin(), locked.end());
    return bytes;
}

/** Whether this many bytes from `offset` on are in a register. */
bool isWithin(std::uint64_t offset, std::size_t length, std::size_t size) {
    return offset < size && length <= size - offset;
}

[[noreturn]] void refuseAddress(std::uint64_t address, std::size_t length) {
    throw Error(GC_ERR_INVALID_ADDRESS, "there is no register of " + std::to_string(length) + " bytes at 0x" +
                                            hexadecimal(address) +
                                            "; the description names those that there are");
}

/** "0 (Off), 1 (On)" */
std::string listOf(const std::vector<FeatureEntry>& entries) {
    std::string list;
    for (const FeatureEntry& entry : entries)
        list += (list.empty() ? "" : ", ") + std::to_string(entry.value) + " (" + entry.name + ")";
    return list;
}

/** Throws INVALID_VALUE for a value that no feature of that kind can have. The applet itself checks its parameters. */
void requireValid(const Feature& feature, const Value& value) {
    const auto refuse = [&](const std::string& text, const std::string& wanted) {
        throw Error(GC_ERR_INVALID_VALUE, feature.name + " = " + text + " was refused: it can be " + wanted);
    };
    // A comparison with a limit does not detect it.
    if (const auto* real = std::get_if<double>(&value); real != nullptr && std::isnan(*real))
        refuse("nan", "a number");
    const auto* const integer = std::get_if<std::int64_t>(&value);
    if (integer == nullptr || !feature.isStandard) return;
    if (feature.kind == Feature::Kind::boolean && *integer != 0 && *integer != 1)
        refuse(std::to_string(*integer), "0 or 1");
    if (feature.kind == Feature::Kind::enumeration &&
        std::ranges::find(feature.entries, *integer, &FeatureEntry::value) == feature.entries.end())
        refuse(std::to_string(*integer), listOf(feature.entries));
}

} // namespace

std::size_t valueSize(const Feature& feature) {
    if (feature.kind == Feature::Kind::text) return RegisterMap::textSize;
    if (feature.kind == Feature::Kind::table) return 4 * feature.elements;
    return 8;
}

RegisterMap::RegisterMap(DescriptionNames names, std::vector<Feature> features)
    : m_names(std::move(names))
    , m_features(std::move(features))
    , m_description(describe(m_names, m_features)) {}

const Feature& RegisterMap::featureAt(std::uint64_t address) const {
    const std::uint64_t slot = address / slotSize;
    if (slot >= m_features.size() || m_features[slot].eventId != 0) refuseAddress(address, 1);
    return m_features[slot];
}

void RegisterMap::read(std::uint64_t address, std::span<std::uint8_t> bytes) {
    if (address >= descriptionAddress) {
        const std::uint64_t offset = address - descriptionAddress;
        if (!isWithin(offset, bytes.size(), m_description.size())) refuseAddress(address, bytes.size());
        std::memcpy(bytes.data(), m_description.data() + offset, bytes.size());
        return;
    }
    const std::lock_guard lock(m_mutex);
    const Feature& feature = featureAt(address);
    const std::uint64_t offset = address % slotSize;
    if (isWithin(offset, bytes.size(), valueSize(feature))) {
        if (!feature.get) throw Error(GC_ERR_ACCESS_DENIED, feature.name + " can only be written");
        const Bytes all = encoded(feature.get(), valueSize(feature));
        std::copy_n(all.begin() + static_cast<std::ptrdiff_t>(offset), bytes.size(), bytes.begin());
        return;
    }
    if (offset < limitsOffset || !isWithin(offset - limitsOffset, bytes.size(), limitsSize))
        refuseAddress(address, bytes.size());
    const Bytes all = limitsOf(feature);
    std::copy_n(all.begin() + static_cast<std::ptrdiff_t>(offset - limitsOffset), bytes.size(),
                bytes.begin());
}

void RegisterMap::write(std::uint64_t address, std::span<const std::uint8_t> bytes) {
    const std::lock_guard lock(m_mutex);
    writeHeld(address, bytes);
}

std::vector<Bytes> RegisterMap::allLimits() const {
    std::vector<Bytes> all;
    for (const Feature& feature : m_features)
        all.push_back(limitsOf(feature));
    return all;
}

std::vector<std::string> RegisterMap::writeAndCompare(std::uint64_t address,
                                                      std::span<const std::uint8_t> bytes) {
    const std::lock_guard lock(m_mutex);
    const std::vector<Bytes> before = allLimits();
    writeHeld(address, bytes);
    const std::vector<Bytes> after = allLimits();
    std::vector<std::string> moved;
    for (std::size_t i = 0; i < m_features.size(); ++i)
        if (before[i] != after[i]) moved.push_back(m_features[i].name);
    return moved;
}

void RegisterMap::writeHeld(std::uint64_t address, std::span<const std::uint8_t> bytes) {
    if (address >= descriptionAddress) throw Error(GC_ERR_ACCESS_DENIED, "a description can only be read");
    const Feature& feature = featureAt(address);
    const std::uint64_t offset = address % slotSize;
    const std::size_t size = valueSize(feature);
    if (!isWithin(offset, bytes.size(), size)) refuseAddress(address, bytes.size());
    if (!feature.set) throw Error(GC_ERR_ACCESS_DENIED, feature.name + " can only be read");
    if (const std::string reason = feature.lockReason ? feature.lockReason() : ""; !reason.empty())
        throw Error(GC_ERR_ACCESS_DENIED, feature.name + " cannot be written now: " + reason);
    const bool isText = feature.kind == Feature::Kind::text; // a partial write of a text ends the text
    Bytes all(size, 0);
    if (bytes.size() < size && !isText && feature.get) all = encoded(feature.get(), size);
    std::copy(bytes.begin(), bytes.end(), all.begin() + static_cast<std::ptrdiff_t>(offset));
    const Value value = decoded(feature.kind, all);
    requireValid(feature, value);
    feature.set(value);
}

} // namespace producer
