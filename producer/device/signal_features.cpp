// Triggers, encoder, inputs, gains and tables, events.

#include "device/standard_features.h"

#include "base/Error.h"
#include "vexo/fg_parameters.h"
#include "virtual_board/virtual_board.h"

#include <algorithm>
#include <bit>

namespace producer {
namespace {

using Kind = Feature::Kind;

constexpr const char* encoderControl = "EncoderControl";
constexpr const char* inputControl = "DigitalIOControl";
constexpr const char* analogControl = "AnalogControl";
constexpr const char* tableControl = "LUTControl";
constexpr const char* eventControl = "EventControl";

/** The inputs, with the numbers of the applet's trigger sources. */
std::vector<FeatureEntry> sources(bool hasSoftware) {
    std::vector<FeatureEntry> entries;
    for (std::int64_t line = 0; line < VBOARD_INPUTS; ++line)
        entries.push_back({"Line" + std::to_string(line),
                           line < VBOARD_GPIS ? line : line - VBOARD_GPIS + TRGINSRC_FRONT_GPI_0});
    if (hasSoftware) entries.push_back({"Software", TRGINSOFTWARE});
    return entries;
}

} // namespace

void StandardFeatures::addTriggers() {
    selector(acquisitionControl, "TriggerSelector", {{"FrameStart", 0}, {"LineStart", 1}},
             {"TriggerMode", "TriggerSource", "TriggerActivation", "TriggerSoftware"},
             "FrameStart is the image trigger of the applet, LineStart its line trigger.");
    constexpr const char* which = "TriggerSelector";

    Feature& mode = add(acquisitionControl, "TriggerMode", Kind::enumeration,
                        "Off: pictures follow one another, lines come at the rate; On: an edge starts each.");
    follow(mode, which, {"FG_IMGTRIGGERMODE", "FG_LINETRIGGERMODE"});
    mode.entries = {{"Off", 0}, {"On", 1}};
    // Every mode except free run waits for an edge.
    const std::int64_t& selection = m_device.state.selected.at(which);
    mode.get = [get = mode.get, &selection] {
        return std::int64_t{integerOf(get()) != (selection == 0 ? FREE_RUN : GRABBER_CONTROLLED)};
    };
    mode.set = [set = mode.set, &selection](const Value& value) {
        const std::int64_t off = selection == 0 ? FREE_RUN : GRABBER_CONTROLLED;
        set(integerOf(value) == 0 ? off : std::int64_t{ASYNC_TRIGGER});
    };

    Feature& source =
        add(acquisitionControl, "TriggerSource", Kind::enumeration,
            "Input of the trigger: Line0 to Line7 are GPI 0 to 7, Line8 to Line11 the front ones.");
    follow(source, which, {"FG_IMGTRIGGERINSRC", "FG_LINETRIGGERINSRC"});
    source.entries = sources(true);

    Feature& edge =
        add(acquisitionControl, "TriggerActivation", Kind::enumeration, "Edge of the input that counts.");
    follow(edge, which, {"FG_IMGTRIGGERINPOLARITY", "FG_LINETRIGGERINPOLARITY"});
    edge.entries = {{"RisingEdge", HIGH_ON_ZERO_HIGH}, {"FallingEdge", HIGH_ON_ZERO_LOW}};

    Feature& pulse =
        add(acquisitionControl, "TriggerSoftware", Kind::command, "An edge of the software trigger.");
    pulse.get = [] { return std::int64_t{0}; };
    pulse.set = [&station = m_device.station](const Value&) {
        station.set("FG_SENDSOFTWARETRIGGER", std::int64_t{FG_APPLY});
    };

    selector(encoderControl, "EncoderSelector", {{"Encoder0", 0}},
             {"EncoderSourceA", "EncoderSourceB", "EncoderDivider"}, "The only encoder.");
    const auto addSource = [this](const char* name, const char* of) {
        if (Feature* feature = alias(encoderControl, name, of, "Input of a track of the encoder."))
            feature->entries = sources(false);
    };
    addSource("EncoderSourceA", "FG_LINETRIGGERINSRC");
    addSource("EncoderSourceB", "FG_SHAFTENCODERINSRC");
    alias(encoderControl, "EncoderDivider", "FG_LINE_DOWNSCALE", "Steps of the encoder for a line.");
}

void StandardFeatures::addInputs() {
    std::vector<FeatureEntry> lines;
    for (std::int64_t line = 0; line < VBOARD_INPUTS; ++line)
        lines.push_back({"Line" + std::to_string(line), line});
    selector(inputControl, "LineSelector", lines, {"LineStatus"},
             "An input: 0 to 7 are GPI 0 to 7, then the front ones.");
    alias(inputControl, "LineStatusAll", "FG_DIGIO_INPUT", "Levels of all inputs, a bit for each.");
    const std::int64_t& line = m_device.state.selected.at("LineSelector");
    add(inputControl, "LineStatus", Kind::boolean, "Level of the input.").get =
        [&station = m_device.station, &line] { return (station.integer("FG_DIGIO_INPUT") >> line) & 1; };
}

void StandardFeatures::addColours() {
    const std::vector<FeatureEntry> colours{{"Red", 0}, {"Green", 1}, {"Blue", 2}};
    selector(analogControl, "GainSelector", colours, {"Gain"}, "The colour.");
    follow(add(analogControl, "Gain", Kind::real, "Factor of a colour in the white balance."), "GainSelector",
           {"FG_SCALINGFACTOR_RED", "FG_SCALINGFACTOR_GREEN", "FG_SCALINGFACTOR_BLUE"});
    alias(analogControl, "Gamma", "FG_PROCESSING_GAMMA",
          "Exponent of the lookup table that the applet computes.");

    selector(tableControl, "LUTSelector", colours, {"LUTValue", "LUTValueAll"}, "The colour of the table.");
    if (const Feature* enable = parameter("FG_LUT_ENABLE")) {
        Feature& feature = add(tableControl, "LUTEnable", Kind::boolean, "Whether the tables are used.");
        feature.get = enable->get;
        feature.set = enable->set;
        feature.lockReason = enable->lockReason;
    }
    Feature& all = add(tableControl, "LUTValueAll", Kind::table, "All entries of the table, 32 bits each.");
    follow(all, "LUTSelector", {"FG_LUT_VALUE_RED", "FG_LUT_VALUE_GREEN", "FG_LUT_VALUE_BLUE"});
    const Feature table = all;
    std::int64_t& index = m_device.state.tableIndex;
    const auto last = static_cast<std::int64_t>(table.elements) - 1;
    Feature& indexFeature = add(tableControl, "LUTIndex", Kind::integer, "The entry that LUTValue is.");
    indexFeature.get = [&index] { return index; };
    setWithin(indexFeature, 0, last, [&index](std::int64_t entry) { index = entry; });
    indexFeature.selected = {"LUTValue"};
    Feature& entry = add(tableControl, "LUTValue", Kind::integer, "An entry of the table.");
    entry.lockReason = table.lockReason;
    entry.get = [get = table.get, &index] {
        return std::int64_t{std::get<std::vector<std::uint32_t>>(get()).at(static_cast<std::size_t>(index))};
    };
    setWithin(entry, 0, UINT16_MAX, [table, &index](std::int64_t value) {
        Value entries = table.get();
        std::get<std::vector<std::uint32_t>>(entries).at(static_cast<std::size_t>(index)) =
            static_cast<std::uint32_t>(value);
        table.set(entries);
    });
}

void StandardFeatures::addEvents() {
    const std::vector<EventKind>& events = m_device.station.events();
    if (events.empty()) return;
    const auto shortName = [](const EventKind& event) { // "FG_..." or "Device1_Process0_..."
        if (event.name.starts_with("FG_")) return event.name.substr(3);
        const std::size_t end = event.name.find('_', event.name.find('_') + 1);
        return end != std::string::npos ? event.name.substr(end + 1) : event.name;
    };
    std::vector<FeatureEntry> entries;
    entries.reserve(events.size());
    for (const EventKind& event : events)
        entries.push_back({shortName(event), static_cast<std::int64_t>(event.id)});
    selector(eventControl, "EventSelector", entries, {"EventNotification"}, "An event of the design.");
    Feature& notification =
        add(eventControl, "EventNotification", Kind::enumeration, "Whether the event is sent to the client.");
    notification.entries = {{"Off", 0}, {"On", 1}};
    const std::int64_t& selection = m_device.state.selected.at("EventSelector");
    auto& notified = m_device.state.notifiedEvents;
    const auto bit = [&selection] { return std::uint64_t{1} << (selection - 1); };
    notification.get = [&notified, bit] { return std::int64_t{(notified & bit()) != 0}; };
    notification.set = [&notified, bit, &station = m_device.station](const Value& value) {
        if (integerOf(value) != 0)
            notified |= bit();
        else
            notified &= ~bit();
        station.wantEvents(notified);
    };
    for (const EventKind& event : events) {
        const std::string category = std::string(eventControl) + "/Event" + shortName(event) + "Data";
        const auto addPart = [&](const char* suffix, std::uint64_t offset, const char* description) {
            Feature& part =
                add(category.c_str(), "Event" + shortName(event) + suffix, Kind::integer, description);
            part.isStandard = false;
            part.eventId = event.id;
            part.eventOffset = offset;
            part.get = [] { return std::int64_t{0}; };
        };
        addPart("", 0, "Mask of the event.");
        addPart("Timestamp", 8, "Time of the station at which it happened, in nanoseconds.");
    }
}

} // namespace producer
