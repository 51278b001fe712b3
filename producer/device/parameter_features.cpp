#include "device/parameter_features.h"

#include <algorithm>
#include <cctype>
#include <set>

namespace producer {
namespace {

/** The letters and digits of a label. */
std::string identifierOf(const std::string& label) {
    std::string name;
    for (const char c : label)
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) name += c;
    return name;
}

/** "Lookup Table", "Applet Properties": "Applet/AppletLookupTable/AppletAppletProperties". */
std::string categoryOf(const std::string& path) {
    std::string category = "Applet";
    for (std::size_t start = 0; start < path.size();) {
        const std::size_t end = std::min(path.find('\n', start), path.size());
        category += "/Applet" + identifierOf(path.substr(start, end - start));
        start = end + 1;
    }
    return category;
}

Feature::Kind kindOf(std::int32_t kind) {
    switch (kind) {
    case REGISTER_KIND_ENUM:
        return Feature::Kind::enumeration;
    case REGISTER_KIND_STRING:
        return Feature::Kind::text;
    case REGISTER_KIND_DOUBLE:
        return Feature::Kind::real;
    case REGISTER_KIND_UINT_FIELD:
        return Feature::Kind::table;
    default:
        return Feature::Kind::integer;
    }
}

bool isServed(std::int32_t kind) {
    constexpr std::int32_t served[] = {REGISTER_KIND_UINT,       REGISTER_KIND_INT,    REGISTER_KIND_UINT64,
                                       REGISTER_KIND_INT64,      REGISTER_KIND_DOUBLE, REGISTER_KIND_ENUM,
                                       REGISTER_KIND_UINT_FIELD, REGISTER_KIND_STRING};
    return std::ranges::find(served, kind) != std::end(served);
}

std::vector<FeatureEntry> entriesOf(const RegisterInfo& record) {
    std::vector<FeatureEntry> entries;
    std::set<std::string> names;
    const auto& its = record.value.enumeration;
    for (int i = 0; i < its.entryCount; ++i) {
        const std::string label = toUtf8(its.labels[i]);
        const bool isNamed = its.symbolicNames != nullptr && its.symbolicNames[i] != nullptr;
        const std::string name = isNamed ? its.symbolicNames[i] : "Value" + std::to_string(its.values[i]);
        if (names.insert(name).second) entries.push_back({name, its.values[i], label});
    }
    return entries;
}

} // namespace

std::vector<Feature> parameterFeatures(Station& station, const std::function<bool()>& isAcquiring) {
    std::vector<Feature> features;
    for (const Parameter& parameter : station.parameters()) {
        const RegisterInfo& record = *parameter.record;
        if (!isServed(record.kind)) continue;
        const bool isDebug = parameter.path.find("Debug") != std::string::npos;
        Feature feature{.name = parameter.name,
                        .category = categoryOf(parameter.path),
                        .kind = kindOf(record.kind),
                        .visibility = isDebug ? Feature::Visibility::guru : Feature::Visibility::expert,
                        .label = toUtf8(record.displayName),
                        .description = toUtf8(record.description),
                        .unit = toUtf8(record.unit),
                        .isStandard = false};
        feature.get = [&station, &parameter] { return station.get(parameter); };
        feature.set = [&station, &parameter](const Value& value) { station.set(parameter, value); };
        feature.isLocked = [&parameter, isAcquiring] {
            return !Station::isWritable(parameter, isAcquiring());
        };
        if (feature.kind == Feature::Kind::enumeration) feature.entries = entriesOf(record);
        if (feature.kind == Feature::Kind::table)
            feature.elements = static_cast<std::size_t>(record.value.u32Field.elementCount);
        if (feature.kind == Feature::Kind::integer || feature.kind == Feature::Kind::real)
            feature.limits = [&parameter] { return Station::limits(parameter); };
        features.push_back(std::move(feature));
    }
    return features;
}

} // namespace producer
