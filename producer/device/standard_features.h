/** What the standard feature naming convention calls the parameters of the applet, and what it adds to them. */
#ifndef PRODUCER_DEVICE_STANDARDFEATURES_H
#define PRODUCER_DEVICE_STANDARDFEATURES_H

#include "device/Acquisition.h"
#include "device/Station.h"
#include "features/Feature.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace producer {

/** State of a device that is no parameter: what selectors select, and what is locked. */
struct DeviceState {
    std::atomic<bool> areParametersLocked{false};
    std::atomic<std::uint64_t> notifiedEvents{0};   /**< mask of the events that are sent to the client */
    std::map<std::string, std::int64_t> selected{}; /**< by the selector's name */
    std::int64_t acquisitionMode = 0;
    std::int64_t frameCount = 1;
    std::int64_t tableIndex = 0;
};

/** What the features work on. All must live as long as they. */
struct Device {
    Station& station;
    Acquisition& acquisition;
    DeviceState& state;
    std::string id;
};

/** Whether parameters are locked that an acquisition may not see change. */
bool isAcquiring(const Device& device);

/** Appends them; `parameters` are the applet's own. The features of a subject have a source of their own. */
void addStandardFeatures(const Device& device, const std::vector<Feature>& parameters,
                         std::vector<Feature>& features);

/** The category of what starts pictures and lines. */
inline constexpr const char* acquisitionControl = "AcquisitionControl";

/** The value of a feature that is an integer, or looks like one to a client. */
inline std::int64_t integerOf(const Value& value) { return std::get<std::int64_t>(value); }

/** Makes features by their subject. */
class StandardFeatures {
public:
    StandardFeatures(const Device& device, const std::vector<Feature>& parameters,
                     std::vector<Feature>& features)
        : m_device(device)
        , m_parameters(parameters)
        , m_features(features) {}

    void addDevice();
    void addImageFormat();
    void addAcquisition();
    void addTriggers();
    void addInputs();
    void addColours();
    void addTransport();
    void addEvents();

private:
    /** A new feature; the reference holds until the next one. */
    Feature& add(const char* category, const std::string& name, Feature::Kind kind, const char* description);
    /** The parameter by another name. */
    Feature* alias(const char* category, const char* name, const char* parameter, const char* description);
    void text(const char* category, const char* name, std::string value, const char* description);
    void selector(const char* category, const char* name, std::vector<FeatureEntry> entries,
                  std::vector<std::string> selected, const char* description);
    std::int64_t selected(const char* selector) const;
    /** Gives a feature the value, limits and lock of a parameter, which depends on a selector: names[selection]. */
    void follow(Feature& feature, const char* selector, const std::vector<const char*>& names);
    const Feature* parameter(const std::string& name) const;

    const Device m_device;
    const std::vector<Feature>& m_parameters;
    std::vector<Feature>& m_features;
};

} // namespace producer

#endif
