/** Features of the standard feature naming convention, mapped to parameters of the applet. */
#ifndef PRODUCER_DEVICE_STANDARDFEATURES_H
#define PRODUCER_DEVICE_STANDARDFEATURES_H

#include "device/Acquisition.h"
#include "device/DeviceStation.h"
#include "features/Feature.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace producer {

/** State of a device that is not a parameter: selections and locks. */
struct DeviceState {
    std::atomic<bool> areParametersLocked{false};
    std::atomic<std::uint64_t> notifiedEvents{0};   /**< mask of the events that are sent to the client */
    std::map<std::string, std::int64_t> selected{}; /**< selections by the selector's name */
    std::int64_t acquisitionMode = 0;
    std::int64_t frameCount = 1;
    std::int64_t tableIndex = 0;
};

/** Objects that the features refer to. They must outlive the features. */
struct Device {
    DeviceStation& station;
    Acquisition& acquisition;
    DeviceState& state;
    std::string id;
};

/** Returns why parameters that must not change during an acquisition are locked; empty if they are not. */
std::string acquisitionLock(const Device& device);

/** Appends the standard features; `parameters` are the applet's own. */
void addStandardFeatures(const Device& device, const std::vector<Feature>& parameters,
                         std::vector<Feature>& features);

/** The category of the triggers of pictures and lines. */
inline constexpr const char* acquisitionControl = "AcquisitionControl";

/** Returns the value of a feature that is an integer, or appears as one to a client. */
inline std::int64_t integerOf(const Value& value) { return std::get<std::int64_t>(value); }

/** Sets the limits of an integer that is not a parameter. `set` is called only with values within them. */
void setWithin(Feature& feature, std::int64_t minimum, std::int64_t maximum,
               const std::function<void(std::int64_t)>& set);

/** Creates features, grouped by subject. */
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
    /** Adds a feature; the reference is valid until the next call. */
    Feature& add(const char* category, const std::string& name, Feature::Kind kind, const char* description);
    void addSize();
    void addPixelFormat();
    /** Adds a flag for this bit of the vantage point. */
    void addMirror(const char* name, std::int64_t bit);
    void addTestPattern();
    void addAcquisitionMode();
    void addAcquisitionCommands();
    /** Adds the line rate, the reciprocal of the line period. */
    void addLineRate(const Feature& period);
    /** Adds the parameter under another name; null if the design does not have it. */
    Feature* alias(const char* category, const char* name, const char* parameter, const char* description);
    void text(const char* category, const char* name, std::string value, const char* description);
    void selector(const char* category, const char* name, std::vector<FeatureEntry> entries,
                  std::vector<std::string> selected, const char* description);
    std::int64_t selected(const char* selector) const;
    /** Connects a feature to the value, limits and lock of a parameter that depends on a selector:
     *  names[selection]. */
    void follow(Feature& feature, const char* selector, const std::vector<const char*>& names);
    const Feature* parameter(const std::string& name) const;

    const Device m_device;
    const std::vector<Feature>& m_parameters;
    std::vector<Feature>& m_features;
};

} // namespace producer

#endif
