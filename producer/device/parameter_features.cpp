#include "device/parameter_features.h"

#include "vexo/fg_api.h"

#include <algorithm>
#include <cctype>

namespace producer {
namespace {

/** Returns the letters and digits of a label. */
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

} // namespace

std::vector<Feature> parameterFeatures(DeviceStation& station,
                                       const std::function<std::string()>& acquisitionLock) {
    std::vector<Feature> features;
    for (const Parameter& parameter : station.parameters()) {
        if (!isServed(parameter.kind)) continue;
        const bool isDebug = parameter.path.find("Debug") != std::string::npos;
        Feature feature{.name = parameter.name,
                        .category = categoryOf(parameter.path),
                        .kind = kindOf(parameter.kind),
                        .visibility = isDebug ? Feature::Visibility::guru : Feature::Visibility::expert,
                        .label = parameter.label,
                        .description = parameter.description,
                        .unit = parameter.unit,
                        .entries = parameter.entries,
                        .elements = parameter.elements,
                        .isStandard = false};
        feature.get = [&station, &parameter] { return station.get(parameter); };
        feature.set = [&station, &parameter](const Value& value) { station.set(parameter, value); };
        feature.lockReason = [&station, &parameter, acquisitionLock]() -> std::string {
            const applet_host::ParameterState state = station.state(parameter);
            if (!state.isWritable(false))
                return "the applet makes it read-only; 'appletctl why " + parameter.name +
                       "' shows whether a setting changes that";
            return state.isWritable(true) ? "" : acquisitionLock();
        };
        if (feature.kind == Feature::Kind::integer || feature.kind == Feature::Kind::real)
            feature.limits = [&station, &parameter] { return station.state(parameter).limits; };
        features.push_back(std::move(feature));
    }
    return features;
}

} // namespace producer
