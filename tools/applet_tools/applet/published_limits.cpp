#include "applet_tools/applet/published_limits.h"

#include "applet_host/record.h"
#include "applet_tools/base/text.h"

#include <cmath>
#include <type_traits>

namespace applet_tools {
namespace {

using applet_host::areUsable;
using applet_host::isArrayLimits;

struct KindRow {
    int kind;
    const char* name;
};

constexpr KindRow kindRows[] = {
    {REGISTER_KIND_UINT, "UInt"},
    {REGISTER_KIND_ENUM, "Enum"},
    {REGISTER_KIND_STRING, "String"},
    {REGISTER_KIND_DOUBLE, "Double"},
    {REGISTER_KIND_UINT_FIELD, "UInt array"},
    {REGISTER_KIND_DOUBLE_FIELD, "Double array"},
    {REGISTER_KIND_UINT64, "UInt64"},
    {REGISTER_KIND_UINT64_FIELD, "UInt64 array"},
    {REGISTER_KIND_INT, "Int"},
    {REGISTER_KIND_INT64, "Int64"},
    {REGISTER_KIND_INT_FIELD, "Int array"},
    {REGISTER_KIND_INT64_FIELD, "Int64 array"},
};

/** Calls `use` with the limits of a numeric parameter, scalar or array; not at all for all others. */
template <typename Use> void withLimits(const Parameter& parameter, Use use) {
    if (parameter.record != nullptr) applet_host::withLimits(*parameter.record, use);
}

template <typename Limits> std::string limitsInWords(const Limits& limits) {
    if (!areUsable(limits)) return "";
    const std::string range = numberText(limits.minimum) + " to " + numberText(limits.maximum);
    if constexpr (isArrayLimits<Limits>) {
        return range + ", " + numberText(limits.elementCount) + " elements";
    } else {
        // A step of 1, of 0, or of the smallest number is not worth showing.
        const bool isPlain = limits.increment == 0 || limits.increment == 1 ||
                             std::fabs(static_cast<double>(limits.increment)) < 1e-15;
        return isPlain ? range : range + " in steps of " + numberText(limits.increment);
    }
}

} // namespace

const char* kindName(const Parameter& parameter) {
    if (parameter.record == nullptr) return "";
    for (const KindRow& row : kindRows)
        if (row.kind == parameter.record->kind) return row.name;
    return "unknown";
}

std::string accessWord(const Parameter& parameter) {
    return parameter.record != nullptr ? accessWord(parameter.record->access) : "-";
}

std::string accessWord(std::uint32_t access) {
    const bool writable = (access & REGISTER_ACCESS_WRITE) != 0;
    if (!writable) return "ro";
    std::string word = (access & REGISTER_ACCESS_READ) != 0 ? "rw" : "wo";
    if ((access & REGISTER_ACCESS_WRITE_WHILE_ACQUIRING) != 0) word += "+";
    return word;
}

std::vector<Entry> entriesOf(const Parameter& parameter) {
    return parameter.record != nullptr ? applet_host::entriesOf(*parameter.record) : std::vector<Entry>();
}

const std::string& entryName(const Entry& entry) { return entry.symbol.empty() ? entry.label : entry.symbol; }

std::optional<Limits> limitsOf(const Parameter& parameter) {
    std::optional<Limits> limits;
    withLimits(parameter, [&](const auto& published) {
        if (!areUsable(published)) return;
        using Number = std::decay_t<decltype(published.minimum)>;
        Number increment{};
        if constexpr (!isArrayLimits<std::decay_t<decltype(published)>>) increment = published.increment;
        limits = {published.minimum, published.maximum, increment};
    });
    return limits;
}

std::string limitsText(const Parameter& parameter) {
    std::string text;
    withLimits(parameter, [&](const auto& limits) { text = limitsInWords(limits); });
    return text;
}

std::string limitsWithUnit(const Parameter& parameter) {
    const std::string limits = limitsText(parameter), unit = parameter.unit();
    return limits.empty() || unit.empty() ? limits : limits + " " + unit;
}

std::string entriesText(const Parameter& parameter) {
    std::vector<std::string> texts;
    for (const Entry& entry : entriesOf(parameter))
        texts.push_back(entryName(entry) + " (" + numberText(entry.value) + ")");
    return join(texts, ", ");
}

std::string acceptedText(const Parameter& parameter) {
    if (const std::string entries = entriesText(parameter); !entries.empty())
        return "the entries are " + entries;
    const std::string limits = limitsWithUnit(parameter);
    return limits.empty() ? "" : "the present limits are " + limits;
}

bool isWithinLimits(const Parameter& parameter, const Value& value) {
    for (const Entry& entry : entriesOf(parameter))
        if (entry.value == std::get<std::int32_t>(value)) return true;
    bool within = false;
    withLimits(parameter, [&](const auto& limits) {
        using Number = std::decay_t<decltype(limits.minimum)>;
        const Number* number = std::get_if<Number>(&value);
        if constexpr (std::is_same_v<Number, std::uint32_t>)
            if (const auto* elements = std::get_if<Elements>(&value)) number = &elements->front();
        if (number == nullptr || !areUsable(limits)) return;
        within = *number >= limits.minimum && *number <= limits.maximum;
        // Floating-point values are not checked for the grid: the applet decides on the tolerance.
        if constexpr (std::is_integral_v<Number> && !isArrayLimits<std::decay_t<decltype(limits)>>)
            if (within && limits.increment > 1) within = (*number - limits.minimum) % limits.increment == 0;
    });
    return within;
}

void addDescription(nlohmann::ordered_json& object, const Parameter& parameter) {
    object["name"] = parameter.name;
    object["id"] = parameter.id;
    object["group"] = parameter.groups;
    if (parameter.record == nullptr) return;
    object["title"] = parameter.label();
    object["kind"] = kindName(parameter);
    object["unit"] = parameter.unit();
    object["access"] = accessWord(parameter);
    withLimits(parameter, [&](const auto& limits) {
        object["minimum"] = limits.minimum;
        object["maximum"] = limits.maximum;
        if constexpr (!isArrayLimits<std::decay_t<decltype(limits)>>) object["increment"] = limits.increment;
    });
    if (parameter.kind() != REGISTER_KIND_ENUM) return;
    object["entries"] = nlohmann::ordered_json::array();
    for (const Entry& entry : entriesOf(parameter))
        object["entries"].push_back(
            {{"value", entry.value}, {"symbol", entry.symbol}, {"label", entry.label}});
}

} // namespace applet_tools
