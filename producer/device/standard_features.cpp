// Device, image format, acquisition and transport; signal_features.cpp has triggers, inputs, colours and events.

#include "device/standard_features.h"

#include "base/Error.h"
#include "device/identity.h"
#include "vexo/fg_parameters.h"

#include <algorithm>
#include <cmath>

namespace producer {
namespace {

using Kind = Feature::Kind;

constexpr const char* deviceControl = "DeviceControl";
constexpr const char* imageFormat = "ImageFormatControl";
constexpr const char* transportControl = "TransportLayerControl";

enum AcquisitionMode : std::uint8_t { continuous, singleFrame, multiFrame };

/** Test patterns: those of the simulator; from this value on they roll; 0: the camera port. */
constexpr std::int64_t rolling = 8;

constexpr double micro = 1e6;

/** Returns the nearest period on the grid of its limits. A period that exceeds a limit by up to half a step, as one
 *  computed from a rate may, becomes the limit; one further outside is not changed. */
double periodOnGrid(double wanted, const Limits& limits) {
    const double grid = std::get<double>(limits.increment);
    const double minimum = std::get<double>(limits.minimum), maximum = std::get<double>(limits.maximum);
    const bool isNear = wanted > minimum - grid / 2 && wanted < maximum + grid / 2;
    return isNear ? std::clamp(std::round(wanted / grid) * grid, minimum, maximum) : wanted;
}

} // namespace

std::string acquisitionLock(const Device& device) {
    if (device.state.areParametersLocked) return "TLParamsLocked is 1";
    return device.acquisition.isRunning() ? "an acquisition runs; stop it first" : "";
}

void setWithin(Feature& feature, std::int64_t minimum, std::int64_t maximum,
               const std::function<void(std::int64_t)>& set) {
    feature.limits = [minimum, maximum] { return Limits{minimum, maximum, std::int64_t{1}}; };
    feature.set = [=, name = feature.name](const Value& value) {
        const std::int64_t number = integerOf(value);
        if (number < minimum || number > maximum)
            throw Error(GC_ERR_INVALID_VALUE, name + " = " + std::to_string(number) +
                                                  " was refused: it can be " + std::to_string(minimum) +
                                                  " to " + std::to_string(maximum));
        set(number);
    };
}

void addStandardFeatures(const Device& device, const std::vector<Feature>& parameters,
                         std::vector<Feature>& features) {
    StandardFeatures standard(device, parameters, features);
    standard.addDevice();
    standard.addImageFormat();
    standard.addAcquisition();
    standard.addTriggers();
    standard.addInputs();
    standard.addColours();
    standard.addTransport();
    standard.addEvents();
}

Feature& StandardFeatures::add(const char* category, const std::string& name, Kind kind,
                               const char* description) {
    m_features.push_back({.name = name, .category = category, .kind = kind, .description = description});
    return m_features.back();
}

const Feature* StandardFeatures::parameter(const std::string& name) const {
    const auto found = std::ranges::find(m_parameters, name, &Feature::name);
    return found != m_parameters.end() ? &*found : nullptr;
}

Feature* StandardFeatures::alias(const char* category, const char* name, const char* of,
                                 const char* description) {
    const Feature* original = parameter(of);
    if (original == nullptr) return nullptr; // not in this design
    Feature feature = *original;
    feature.name = name;
    feature.category = category;
    feature.label = "";
    feature.description = description;
    feature.visibility = Feature::Visibility::beginner;
    feature.isStandard = true;
    m_features.push_back(std::move(feature));
    return &m_features.back();
}

void StandardFeatures::text(const char* category, const char* name, std::string value,
                            const char* description) {
    add(category, name, Kind::text, description).get = [value = std::move(value)] { return value; };
}

void StandardFeatures::selector(const char* category, const char* name, std::vector<FeatureEntry> entries,
                                std::vector<std::string> selected, const char* description) {
    Feature& feature = add(category, name, Kind::enumeration, description);
    std::int64_t& state = m_device.state.selected[name];
    state = entries.front().value;
    feature.entries = std::move(entries);
    feature.selected = std::move(selected);
    feature.get = [&state] { return state; };
    feature.set = [&state](const Value& value) { state = integerOf(value); };
}

std::int64_t StandardFeatures::selected(const char* selector) const {
    return m_device.state.selected.at(selector);
}

void StandardFeatures::follow(Feature& feature, const char* selector, const std::vector<const char*>& names) {
    std::vector<Feature> all;
    for (const char* name : names)
        if (const Feature* one = parameter(name)) all.push_back(*one);
    const std::int64_t& state = m_device.state.selected.at(selector);
    const auto followed = [all, &state]() -> const Feature& {
        return all.at(static_cast<std::size_t>(state));
    };
    feature.get = [followed] { return followed().get(); };
    feature.set = [followed](const Value& value) { followed().set(value); };
    feature.lockReason = [followed] { return followed().lockReason(); };
    if (!all.empty() && all.front().limits) feature.limits = [followed] { return followed().limits(); };
    if (!all.empty()) feature.elements = all.front().elements;
}

void StandardFeatures::addDevice() {
    text(deviceControl, "DeviceVendorName", vendorName, "Name of the manufacturer of the device.");
    text(deviceControl, "DeviceModelName", modelName, "Model of the device.");
    text(deviceControl, "DeviceVersion", producerVersion, "Version of the device.");
    text(deviceControl, "DeviceID", m_device.id, "Identification of the device, unique in the producer.");
    text(deviceControl, "DeviceSerialNumber", m_device.id, "Serial number of the device.");
    alias(deviceControl, "DeviceFirmwareVersion", "FG_APPLET_ID", "The applet that runs on the board.");
    alias(deviceControl, "DeviceTemperature", "FG_SYSTEMMONITOR_FPGA_TEMPERATURE",
          "Temperature of the FPGA.");
    Feature& scan = add(deviceControl, "DeviceScanType", Kind::enumeration, "Scan type of the sensor.");
    scan.entries = {{"Areascan", 0}, {"Linescan", 1}};
    scan.get = [] { return std::int64_t{1}; };
    Feature& time = add(deviceControl, "Timestamp", Kind::integer, "Time of the station.");
    time.unit = "ns";
    time.get = [&station = m_device.station] { return static_cast<std::int64_t>(station.nanoseconds()); };
}

void StandardFeatures::addImageFormat() {
    addSize();
    addPixelFormat();
    addMirror("ReverseX", 1);
    addMirror("ReverseY", 2);
    addTestPattern();
}

void StandardFeatures::addSize() {
    alias(imageFormat, "SensorWidth", "FG_SENSORWIDTH", "Pixels of a line of the sensor.");
    alias(imageFormat, "SensorHeight", "FG_SENSORHEIGHT", "Lines of the sensor.");
    alias(imageFormat, "Width", "FG_WIDTH", "Pixels of a line of a picture.");
    alias(imageFormat, "Height", "FG_HEIGHT", "Lines of a picture.");
    alias(imageFormat, "OffsetX", "FG_XOFFSET",
          "Pixels of the sensor's line that are left out before the first.");
    alias(imageFormat, "OffsetY", "FG_YOFFSET", "Lines that are left out before the first.");
    for (const auto& [name, of] : {std::pair{"WidthMax", "FG_WIDTH"}, std::pair{"HeightMax", "FG_HEIGHT"}})
        if (const Feature* size = parameter(of))
            add(imageFormat, name, Kind::integer, "The largest value now.").get = [limits = size->limits] {
                return limits().maximum;
            };
}

void StandardFeatures::addPixelFormat() {
    const Device device = m_device;
    Feature& format =
        add(imageFormat, "PixelFormat", Kind::enumeration, "Format of the pixels of a picture.");
    for (const PixelFormat& one : pixelFormats())
        format.entries.push_back({one.name, one.code});
    format.get = [device] { return std::int64_t{device.acquisition.format().code}; };
    format.set = [device](const Value& value) {
        const PixelFormat& chosen = *pixelFormatOf(integerOf(value));
        device.station.set("FG_FORMAT", std::int64_t{chosen.outputFormat});
        device.acquisition.setFormat(chosen);
    };
    format.lockReason = [device] { return acquisitionLock(device); };
}

void StandardFeatures::addMirror(const char* name, std::int64_t bit) {
    const Feature* vantage = parameter("FG_VANTAGEPOINT");
    if (vantage == nullptr) return; // not in this design
    Feature& mirror = add(imageFormat, name, Kind::boolean, "Mirrors the picture.");
    mirror.get = [get = vantage->get, bit] { return std::int64_t{(integerOf(get()) & bit) != 0}; };
    mirror.set = [get = vantage->get, set = vantage->set, bit](const Value& value) {
        const std::int64_t now = integerOf(get());
        set(integerOf(value) != 0 ? now | bit : now & ~bit);
    };
    mirror.lockReason = vantage->lockReason;
}

void StandardFeatures::addTestPattern() {
    Feature& pattern = add(imageFormat, "TestPattern", Kind::enumeration,
                           "Pattern of the simulator; Off: lines come from the camera port.");
    pattern.entries = {{"Off", 0},
                       {"GreyHorizontalRamp", FG_HORIZONTAL},
                       {"GreyVerticalRamp", FG_VERTICAL},
                       {"GreyDiagonalRamp", FG_DIAGONAL},
                       {"GreyHorizontalRampMoving", FG_HORIZONTAL + rolling},
                       {"GreyVerticalRampMoving", FG_VERTICAL + rolling},
                       {"GreyDiagonalRampMoving", FG_DIAGONAL + rolling}};
    pattern.get = [&station = m_device.station] {
        if (station.integer("FG_CAMERASIMULATOR_ENABLE") == FG_CAMPORT) return std::int64_t{0};
        const bool isRolling = station.integer("FG_CAMERASIMULATOR_ROLL") == FG_ON;
        return station.integer("FG_CAMERASIMULATOR_PATTERN") + (isRolling ? rolling : 0);
    };
    pattern.set = [&station = m_device.station](const Value& value) {
        const std::int64_t chosen = integerOf(value);
        if (chosen != 0) {
            station.set("FG_CAMERASIMULATOR_PATTERN", chosen % rolling);
            station.set("FG_CAMERASIMULATOR_ROLL", chosen / rolling);
        }
        station.set("FG_CAMERASIMULATOR_ENABLE", std::int64_t{chosen != 0});
    };
}

void StandardFeatures::addAcquisition() {
    addAcquisitionMode();
    addAcquisitionCommands();
    alias(acquisitionControl, "ExposureTime", "FG_LINEEXPOSURE", "Exposure of a line.");
    if (const Feature* period = parameter("FG_LINEPERIODE")) addLineRate(*period);
}

void StandardFeatures::addAcquisitionMode() {
    const Device device = m_device;
    Feature& mode =
        add(acquisitionControl, "AcquisitionMode", Kind::enumeration, "When an acquisition ends.");
    mode.entries = {{"Continuous", continuous}, {"SingleFrame", singleFrame}, {"MultiFrame", multiFrame}};
    mode.get = [device] { return device.state.acquisitionMode; };
    mode.set = [device](const Value& value) { device.state.acquisitionMode = integerOf(value); };
    mode.lockReason = [device] { return acquisitionLock(device); };

    Feature& count =
        add(acquisitionControl, "AcquisitionFrameCount", Kind::integer, "Pictures in the mode MultiFrame.");
    count.get = [device] { return device.state.frameCount; };
    setWithin(count, 1, INT32_MAX, [device](std::int64_t pictures) { device.state.frameCount = pictures; });
}

void StandardFeatures::addAcquisitionCommands() {
    const Device device = m_device;
    const auto completesAtOnce = [] { return std::int64_t{0}; };
    Feature& start = add(acquisitionControl, "AcquisitionStart", Kind::command, "Starts the DMA.");
    start.get = completesAtOnce;
    start.set = [device](const Value&) {
        const std::int64_t counts[] = {0, 1, device.state.frameCount};
        device.acquisition.start(static_cast<std::uint64_t>(counts[device.state.acquisitionMode]));
    };
    Feature& stop = add(acquisitionControl, "AcquisitionStop", Kind::command, "Stops the DMA.");
    stop.get = completesAtOnce;
    stop.set = [device](const Value&) { device.acquisition.stop(); };
}

void StandardFeatures::addLineRate(const Feature& period) {
    Feature& rate = add(acquisitionControl, "AcquisitionLineRate", Kind::real,
                        "Lines a second: 1000000 / FG_LINEPERIODE.");
    rate.unit = "Hz";
    rate.get = [get = period.get] { return micro / std::get<double>(get()); };
    rate.limits = [limitsOfPeriod = period.limits] {
        const Limits limits = limitsOfPeriod();
        return Limits{micro / std::get<double>(limits.maximum), micro / std::get<double>(limits.minimum),
                      0.0};
    };
    rate.set = [limits = period.limits, set = period.set](const Value& value) {
        set(periodOnGrid(micro / std::get<double>(value), limits()));
    };
    rate.lockReason = period.lockReason;
}

void StandardFeatures::addTransport() {
    const Device device = m_device;
    Feature& size = add(transportControl, "PayloadSize", Kind::integer, "Bytes of a picture.");
    size.unit = "B";
    size.get = [device] { return static_cast<std::int64_t>(device.acquisition.geometry().bytes()); };
    Feature& locked = add(transportControl, "TLParamsLocked", Kind::integer,
                          "1: parameters are locked that may not change while an acquisition runs.");
    locked.visibility = Feature::Visibility::invisible;
    locked.get = [device] { return std::int64_t{device.state.areParametersLocked}; };
    setWithin(locked, 0, 1, [device](std::int64_t are) { device.state.areParametersLocked = are == 1; });
}

} // namespace producer
