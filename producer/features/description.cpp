// The schema fixes the order of elements for each kind of node; a reader may refuse a document with a wrong
// order.

#include "features/description.h"

#include "applet_host/text_encoding.h"
#include "base/hexadecimal.h"
#include "features/RegisterMap.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

namespace producer {
namespace {

/** As text of the document, which must not have control characters. */
std::string escaped(std::string text) {
    std::ranges::replace_if(
        text, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return applet_host::escapedMarkup(text);
}

class Document {
public:
    Document(const DescriptionNames& names, const std::vector<Feature>& features) : m_names(names) {
        begin();
        addCategories(features);
        for (std::size_t i = 0; i < features.size(); ++i)
            add(features[i], i * RegisterMap::slotSize);
        for (const std::uint64_t event : m_events) {
            open("Port", eventPort(event));
            element("EventID", wholeBytes(event));
            close("Port");
        }
        m_text += "<Port Name=\"" + m_names.port + "\"/>\n</RegisterDescription>\n";
    }

    std::string take() { return std::move(m_text); }

private:
    void begin() {
        m_text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<RegisterDescription ModelName=\"" +
                 m_names.model + "\" VendorName=\"NorvaneImaging\" ToolTip=\"" + escaped(m_names.toolTip) +
                 "\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" "
                 "SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" "
                 "ProductGuid=\"3BF9B9A0-5C2E-4B4A-9C59-5D2D1C8C0B01\" "
                 "VersionGuid=\"3BF9B9A0-5C2E-4B4A-9C59-5D2D1C8C0B02\" "
                 "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\" "
                 "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
                 "xsi:schemaLocation=\"http://www.genicam.org/GenApi/Version_1_1 "
                 "http://www.genicam.org/GenApi/GenApiSchema_Version_1_1.xsd\">\n";
    }

    void open(const char* kind, const std::string& name, bool isStandard = false) {
        m_text += std::string("<") + kind + " Name=\"" + name + "\"" +
                  (isStandard ? " NameSpace=\"Standard\"" : "") + ">";
    }
    void close(const char* kind) { m_text += std::string("</") + kind + ">\n"; }
    void element(const char* name, const std::string& content) {
        m_text += std::string("<") + name + ">" + content + "</" + name + ">";
    }
    void optional(const char* name, const std::string& content) {
        if (!content.empty()) element(name, escaped(content));
    }

    static std::string eventPort(std::uint64_t event) { return "Event" + hexadecimal(event) + "Port"; }

    /** A category "A/B" is B, within A. */
    void addCategories(const std::vector<Feature>& features) {
        std::vector<std::string> order{"Root"};
        std::map<std::string, std::vector<std::string>> members;
        const auto enter = [&](const std::string& category, const std::string& member) {
            auto& inCategory = members[category];
            if (inCategory.empty() && category != "Root") order.push_back(category);
            inCategory.push_back(member);
        };
        std::set<std::string> known;
        for (const Feature& feature : features) {
            std::string parent = "Root", path = feature.category;
            while (!path.empty()) {
                const std::size_t end = path.find('/');
                const std::string name = path.substr(0, end);
                if (known.insert(name).second) enter(parent, name);
                parent = name;
                path = end == std::string::npos ? "" : path.substr(end + 1);
            }
            enter(parent, feature.name);
        }
        for (const std::string& category : order) {
            open("Category", category, category == "Root");
            for (const std::string& member : members[category])
                element("pFeature", member);
            close("Category");
        }
    }

    void addHead(const Feature& feature) {
        static constexpr const char* visibilities[] = {"Beginner", "Expert", "Guru", "Invisible"};
        optional("ToolTip", feature.description.substr(0, feature.description.find('\n')));
        optional("Description", feature.description);
        optional("DisplayName", feature.label);
        element("Visibility", visibilities[static_cast<std::size_t>(feature.visibility)]);
        if (feature.lockReason) element("pIsLocked", feature.name + "_Locked");
        if (!feature.set) element("ImposedAccessMode", "RO");
    }

    void addNumber(const Feature& feature, const char* kind) {
        open(kind, feature.name, feature.isStandard);
        addHead(feature);
        element("pValue", feature.name + "_Value");
        if (feature.limits) {
            element("pMin", feature.name + "_Min");
            element("pMax", feature.name + "_Max");
            if (feature.kind == Feature::Kind::integer) element("pInc", feature.name + "_Inc");
        }
        optional("Unit", feature.unit);
        for (const std::string& name : feature.selected)
            element("pSelected", name);
        close(kind);
    }

    void addEnumeration(const Feature& feature) {
        open("Enumeration", feature.name, feature.isStandard);
        addHead(feature);
        for (const FeatureEntry& entry : feature.entries) {
            open("EnumEntry", entry.name, feature.isStandard);
            optional("DisplayName", entry.label);
            element("Value", std::to_string(entry.value));
            close("EnumEntry");
        }
        element("pValue", feature.name + "_Value");
        for (const std::string& name : feature.selected)
            element("pSelected", name);
        close("Enumeration");
    }

    void addBoolean(const Feature& feature) {
        open("Boolean", feature.name, feature.isStandard);
        addHead(feature);
        element("pValue", feature.name + "_Value");
        element("OnValue", "1");
        element("OffValue", "0");
        close("Boolean");
    }

    void addCommand(const Feature& feature) {
        open("Command", feature.name, feature.isStandard);
        addHead(feature);
        element("pValue", feature.name + "_Value");
        element("CommandValue", "1");
        close("Command");
    }

    /** The common elements of all registers. */
    void addRegisterElements(const Feature& feature, std::uint64_t address, std::size_t length,
                             const char* access) {
        element("Address", "0x" + hexadecimal(address));
        element("Length", std::to_string(length));
        element("AccessMode", access);
        element("pPort", feature.eventId != 0 ? eventPort(feature.eventId) : m_names.port);
        element("Cachable", "NoCache");
    }

    void addRegister(const Feature& feature, const std::string& suffix, std::uint64_t address,
                     const char* access, bool isReal) {
        const char* const kind = isReal ? "FloatReg" : "IntReg";
        open(kind, feature.name + suffix);
        element("Visibility", "Invisible");
        addRegisterElements(feature, address, 8, access);
        if (!isReal) element("Sign", "Signed");
        element("Endianess", "LittleEndian");
        close(kind);
    }

    /** A feature that is itself a register. */
    void addPlain(const Feature& feature, const char* kind, std::uint64_t address) {
        open(kind, feature.name, feature.isStandard);
        addHead(feature);
        addRegisterElements(feature, address, valueSize(feature), accessOf(feature));
        close(kind);
    }

    static const char* accessOf(const Feature& feature) {
        if (!feature.set) return "RO";
        return feature.get ? "RW" : "WO";
    }

    void addRegisters(const Feature& feature, std::uint64_t slot) {
        const bool isReal = feature.kind == Feature::Kind::real;
        const bool hasValue = feature.kind != Feature::Kind::text && feature.kind != Feature::Kind::table;
        const std::uint64_t limits = slot + RegisterMap::limitsOffset;
        if (hasValue)
            addRegister(feature, "_Value", feature.eventId != 0 ? feature.eventOffset : slot,
                        accessOf(feature), isReal);
        if (feature.limits) {
            addRegister(feature, "_Min", limits, "RO", isReal);
            addRegister(feature, "_Max", limits + 8, "RO", isReal);
            if (!isReal) addRegister(feature, "_Inc", limits + 16, "RO", false);
        }
        if (feature.lockReason) addRegister(feature, "_Locked", limits + 24, "RO", false);
    }

    void add(const Feature& feature, std::uint64_t slot) {
        switch (feature.kind) {
        case Feature::Kind::integer:
            addNumber(feature, "Integer");
            break;
        case Feature::Kind::real:
            addNumber(feature, "Float");
            break;
        case Feature::Kind::enumeration:
            addEnumeration(feature);
            break;
        case Feature::Kind::boolean:
            addBoolean(feature);
            break;
        case Feature::Kind::command:
            addCommand(feature);
            break;
        case Feature::Kind::text:
            addPlain(feature, "StringReg", slot);
            break;
        case Feature::Kind::table:
            addPlain(feature, "Register", slot);
            break;
        }
        addRegisters(feature, slot);
        if (feature.eventId != 0) m_events.insert(feature.eventId);
    }

    const DescriptionNames& m_names;
    std::string m_text;
    std::set<std::uint64_t> m_events;
};

} // namespace

std::string describe(const DescriptionNames& names, const std::vector<Feature>& features) {
    return Document(names, features).take();
}

} // namespace producer
