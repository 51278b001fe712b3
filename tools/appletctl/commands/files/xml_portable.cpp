// A parameter document for clients that follow the standard strictly: every number as it is, in its
// own width, nothing cached, with names, units and texts; common parameters also have their standard names.

#include "applet_tools/applet/published_limits.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/defaults_and_roles.h"
#include "appletctl/commands/files/xml.h"
#include "appletctl/draw/xml.h"

#include <algorithm>
#include <cctype>
#include <set>

namespace appletctl {
namespace {

constexpr const char* portName = "DevicePort";
constexpr const char* standardCategory = "StandardFeatures";

/** A parameter and its standard name. */
struct StandardFeature {
    const char* name;
    const char* parameter;
    const char* node =
        nullptr; /**< node that converts the parameter's number to another kind; null: of its own kind */
    /** Converts the parameter's value for the node. */
    struct Constant {
        const char* tag;
        const char* value;
    } constants[2] = {};
};

constexpr StandardFeature standardFeatures[] = {
    {"Width", "FG_WIDTH"},
    {"Height", "FG_HEIGHT"},
    {"OffsetX", "FG_XOFFSET"},
    {"OffsetY", "FG_YOFFSET"},
    {"SensorWidth", "FG_SENSORWIDTH"},
    {"SensorHeight", "FG_SENSORHEIGHT"},
    {"PixelFormat", "FG_PIXELFORMAT"},
    {"ExposureTime", "FG_LINEEXPOSURE"},
    {"Gain", "FG_PROCESSING_GAIN"},
    {"Gamma", "FG_PROCESSING_GAMMA"},
    {"LUTEnable", "FG_LUT_ENABLE", "Boolean", {{"OnValue", "1"}, {"OffValue", "0"}}},
    {"TriggerSoftware", "FG_SENDSOFTWARETRIGGER", "Command", {{"CommandValue", "1"}}},
    {"DeviceTemperature", "FG_SYSTEMMONITOR_FPGA_TEMPERATURE"},
};

struct KindRow {
    int kind;
    const char* feature;
    const char* registers; // null: the feature is its own register
    int length;
    bool isSigned;
};

constexpr KindRow kindRows[] = {
    {REGISTER_KIND_UINT, "Integer", "IntReg", 4, false},
    {REGISTER_KIND_INT, "Integer", "IntReg", 4, true},
    {REGISTER_KIND_UINT64, "Integer", "IntReg", 8, false},
    {REGISTER_KIND_INT64, "Integer", "IntReg", 8, true},
    {REGISTER_KIND_ENUM, "Enumeration", "IntReg", 4, true},
    {REGISTER_KIND_DOUBLE, "Float", "FloatReg", 8, true},
    {REGISTER_KIND_STRING, "StringReg", nullptr, 4096, false},
};

/** The row of a parameter; null for arrays, which cannot be addressed as one register, and without a record. */
const KindRow* rowOf(const Parameter& parameter) {
    if (parameter.record == nullptr) return nullptr;
    const auto row = std::ranges::find(kindRows, parameter.kind(), &KindRow::kind);
    return row != std::end(kindRows) ? row : nullptr;
}

/** Letters, digits and underscores of a text; a name does not begin with a digit. */
std::string nodeName(const std::string& text) {
    std::string name;
    for (const char c : text)
        if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_') name += c;
    return !name.empty() && std::isdigit(static_cast<unsigned char>(name.front())) != 0 ? "_" + name : name;
}

std::string element(const char* tag, const std::string& text) {
    return std::string("  <") + tag + ">" + xml::escaped(text) + "</" + tag + ">\n";
}

std::string node(const std::string& tag, const std::string& name, const std::string& content,
                 const char* nameSpace = "Custom") {
    return "<" + tag + xml::attribute("Name", name) + xml::attribute("NameSpace", nameSpace) + ">\n" +
           content + "</" + tag + ">\n";
}

/** The address of the value. */
std::string address(const Parameter& parameter, const KindRow& row, bool isSettable) {
    return element("Address", numberText(parameter.id)) + element("Length", numberText(row.length)) +
           element("AccessMode", isSettable ? "RW" : "RO") + element("pPort", portName) +
           // A set may change the values and limits of other parameters.
           element("Cachable", "NoCache");
}

std::string registerNode(const Parameter& parameter, const KindRow& row, bool isSettable) {
    const bool isInteger = std::string_view(row.registers) == "IntReg";
    return node(row.registers, parameter.name + "_Reg",
                address(parameter, row, isSettable) +
                    (isInteger ? element("Sign", row.isSigned ? "Signed" : "Unsigned") : "") +
                    element("Endianess", "LittleEndian"));
}

std::string enumEntries(const Parameter& parameter) {
    std::string text;
    for (const Entry& entry : entriesOf(parameter))
        text += "  <EnumEntry" + xml::attribute("Name", nodeName(entryName(entry))) +
                xml::attribute("NameSpace", "Custom") + ">\n  " + element("DisplayName", entry.label) + "  " +
                element("Value", numberText(entry.value)) + "  </EnumEntry>\n";
    return text;
}

/** Minimum, maximum and step, if those of the record are usable. */
std::string limitElements(const Parameter& parameter) {
    if (limitsText(parameter).empty()) return "";
    nlohmann::ordered_json described;
    addDescription(described, parameter);
    std::string text;
    text += element("Min", described["minimum"].dump()) + element("Max", described["maximum"].dump());
    constexpr double smallestStep = 1e-12; // a smaller step is a placeholder
    if (described["increment"].get<double>() > smallestStep)
        text += element("Inc", described["increment"].dump());
    return text;
}

class Builder {
public:
    explicit Builder(Context& context) : m_instance(context.instance()), m_parameters(context.parameters()) {
        for (const Parameter& parameter : m_parameters.all())
            if (rowOf(parameter) != nullptr) m_described.push_back(&parameter);
        m_defaultsAndRoles = defaultsAndRolesOf(context, m_described, FileRoles::asked);
    }

    std::string build() {
        for (const Parameter* parameter : m_described)
            addParameter(*parameter);
        for (const StandardFeature& feature : standardFeatures)
            addStandardFeature(feature);
        std::string text = header();
        for (const auto& [name, label, features] : m_categories)
            text += categoryNode(name, label, features);
        text += m_nodes;
        text += "<Port" + xml::attribute("Name", portName) + xml::attribute("NameSpace", "Custom") + "/>\n";
        return text + "</RegisterDescription>\n";
    }

private:
    struct Category {
        std::string name, label;
        std::vector<std::string> features;
    };

    std::string header() {
        std::string text = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<RegisterDescription";
        const std::pair<const char*, std::string> attributes[] = {
            {"ModelName", infoText(FG_INFO_NAME)},
            {"VendorName", "NorvaneImaging"},
            {"ToolTip", infoText(FG_INFO_DESCRIPTION)},
            {"StandardNameSpace", "None"},
            {"SchemaMajorVersion", "1"},
            {"SchemaMinorVersion", "1"},
            {"SchemaSubMinorVersion", "0"},
            {"MajorVersion", "1"},
            {"MinorVersion", "0"},
            {"SubMinorVersion", "0"},
            {"ProductGuid", infoText(FG_INFO_PRODUCT_GUID)},
            {"VersionGuid", infoText(FG_INFO_VERSION_GUID)},
            {"xmlns", "http://www.genicam.org/GenApi/Version_1_1"},
            {"xmlns:xsi", "http://www.w3.org/2001/XMLSchema-instance"},
            {"xsi:schemaLocation", "http://www.genicam.org/GenApi/Version_1_1 GenApiSchema_Version_1_1.xsd"},
        };
        for (const auto& [name, value] : attributes)
            text += "\n   " + xml::attribute(name, xml::escaped(value));
        return text + ">\n";
    }

    std::string infoText(FgInfoCode code) {
        const char* text = "";
        m_instance.applet().Info(code, 0, 0, nullptr, &text);
        return toUtf8(text);
    }

    /** The category of the groups, including those above it. */
    Category& categoryOf(const std::vector<std::string>& groups) {
        std::string name = "Root";
        std::string label = "Root";
        std::size_t at = find(name, label);
        std::string path;
        for (const std::string& group : groups) {
            path += (path.empty() ? "" : "_") + nodeName(group);
            const std::size_t known = m_categories.size();
            const std::size_t next = find(path + "_Category", group);
            if (next == known) m_categories[at].features.push_back(m_categories[next].name);
            at = next;
        }
        return m_categories[at];
    }
    std::size_t find(const std::string& name, const std::string& label) {
        const auto found = std::ranges::find(m_categories, name, &Category::name);
        if (found == m_categories.end()) m_categories.push_back({name, label, {}});
        return static_cast<std::size_t>(std::ranges::find(m_categories, name, &Category::name) -
                                        m_categories.begin());
    }

    static std::string categoryNode(const std::string& name, const std::string& label,
                                    const std::vector<std::string>& features) {
        std::string content = element("DisplayName", label);
        for (const std::string& feature : features)
            content += element("pFeature", feature);
        return node("Category", name, content, name == "Root" ? "Standard" : "Custom");
    }

    /** The elements of a feature for display. */
    std::string shown(const Parameter& parameter) {
        const std::string text = explanationOf(m_instance, parameter);
        std::string content = element("ToolTip", parameter.label());
        content += element("Description", text.empty() ? parameter.label() : text);
        content += element("DisplayName", parameter.label());
        // A client that reads all features must not read a value that a read clears.
        return content + element("Visibility", parameter.effectOfReading().empty() ? "Beginner" : "Guru");
    }

    std::string streamable(const Parameter& parameter) {
        return element("Streamable",
                       m_defaultsAndRoles.at(parameter.name).fileRole == "restored" ? "Yes" : "No");
    }

    void addParameter(const Parameter& parameter) {
        const KindRow& row = *rowOf(parameter);
        const bool isSettable = m_defaultsAndRoles.at(parameter.name).isSettable;
        categoryOf(parameter.groups).features.push_back(parameter.name);
        std::string content = shown(parameter) + streamable(parameter);
        if (row.registers == nullptr) {
            m_nodes += node(row.feature, parameter.name, content + address(parameter, row, isSettable));
            return;
        }
        m_nodes +=
            node(row.feature, parameter.name, content + valueElements(parameter, parameter.name + "_Reg"));
        m_nodes += registerNode(parameter, row, isSettable);
    }

    std::string valueElements(const Parameter& parameter, const std::string& valueNode) {
        std::string content = enumEntries(parameter) + element("pValue", valueNode);
        if (parameter.kind() == REGISTER_KIND_ENUM) return content;
        content += limitElements(parameter);
        return parameter.unit().empty() ? content : content + element("Unit", parameter.unit());
    }

    void addStandardFeature(const StandardFeature& feature) {
        const auto found = std::ranges::find_if(
            m_described, [&](const Parameter* parameter) { return parameter->name == feature.parameter; });
        if (found == m_described.end()) return;
        const Parameter& parameter = **found;
        categoryOf({standardCategory}).features.emplace_back(feature.name);
        const std::string registers = parameter.name + "_Reg";
        std::string content = shown(parameter) + element("pAlias", parameter.name);
        if (feature.node == nullptr) {
            content += element("Streamable", "No") + valueElements(parameter, registers);
            m_nodes += node(rowOf(parameter)->feature, feature.name, content, "Standard");
            return;
        }
        content += element("pValue", registers);
        for (const auto& [tag, value] : feature.constants)
            if (tag != nullptr) content += element(tag, value);
        m_nodes += node(feature.node, feature.name, content, "Standard");
    }

    Instance& m_instance;
    const ParameterList& m_parameters;
    std::vector<const Parameter*> m_described;
    std::map<std::string, DefaultAndRole> m_defaultsAndRoles;
    std::vector<Category> m_categories;
    std::string m_nodes;
};

} // namespace

std::string portableDocument(Context& context) { return Builder(context).build(); }

} // namespace appletctl
