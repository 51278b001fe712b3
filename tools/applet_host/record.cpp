#include "applet_host/record.h"

#include "applet_host/text_encoding.h"

#include <algorithm>

namespace applet_host {

bool isArray(const RegisterInfo& record) {
    bool is = false;
    withLimits(record, [&](const auto& limits) { is = isArrayLimits<decltype(limits)>; });
    return is;
}

std::uint32_t elementCount(const RegisterInfo& record) {
    std::int32_t count = 0;
    withLimits(record, [&](const auto& limits) {
        if constexpr (isArrayLimits<decltype(limits)>) count = limits.elementCount;
    });
    return static_cast<std::uint32_t>(std::max(count, 0));
}

std::vector<EnumEntry> entriesOf(const RegisterInfo& record) {
    std::vector<EnumEntry> entries;
    if (record.kind != REGISTER_KIND_ENUM) return entries;
    const auto& enumeration = record.value.enumeration;
    for (int i = 0; i < enumeration.entryCount; ++i) {
        const char* const symbol =
            enumeration.symbolicNames != nullptr ? enumeration.symbolicNames[i] : nullptr;
        entries.push_back({enumeration.values[i], toUtf8(symbol), toUtf8(enumeration.labels[i])});
    }
    return entries;
}

} // namespace applet_host
