#include "catalogue/ParameterInfoBuilderXML.h"

#include "catalogue/Category.h"
#include "catalogue/Fg_ParameterInfo.h"
#include "catalogue/ParameterInfoGeneratorXML.h"
#include "catalogue/direct_registers.h"
#include "catalogue/live_records.h"
#include "catalogue/xml_text.h"

#include <sstream>
#include <string_view>
#include <utility>

using catalogue::loadLive;
using catalogue::put;
using catalogue::xmlNameFilter;
using catalogue::xmlStringFilter;

/** The parts of the document, in the order in which they are written. */
class ParameterInfoBuilderXMLPrivate {
public:
    ParameterInfoBuilderXMLPrivate(const Fg_ParameterInfo& info, const char* appletName, int port)
        : m_info(info)
        , m_appletName(appletName)
        , m_port(port) {}

    void writeDocument(std::ostream& stream);

private:
    void buildXMLHeader(std::ostream& stream);
    void startAppletDescription(std::ostream& stream);
    void processRegisterInfo(std::ostream& stream, const RegisterInfo* info, const RegisterInfo* parent);
    void buildParamDescr(std::ostream& stream, const RegisterInfo& info, const RegisterInfo* parent);
    void addFeatureToCategory(std::string_view category, std::string_view feature);
    void buildCategories(std::ostream& stream);
    void writeCategory(std::ostream& stream, const Category& category);
    void stopAppletDescription(std::ostream& stream);

    const Fg_ParameterInfo& m_info;
    const char* m_appletName;
    int m_port;
    Category m_root{"Root"};
};

namespace {

/** Room for the document of the whole catalogue, so that the buffer does not grow step by step. */
constexpr std::size_t usualLength = 102'400;

std::string_view viewOf(const char* text) { return text != nullptr ? text : std::string_view(); }

/** The entries that have a symbolic name; of two equal values the later one counts. */
ParameterInfoGeneratorXML::EntryNames entryNames(const RegisterInfo& info) {
    const auto& entries = info.value.enumeration;
    ParameterInfoGeneratorXML::EntryNames names;
    for (int i = 0; i < entries.entryCount; ++i)
        if (entries.symbolicNames[i] != nullptr) names[entries.values[i]] = entries.symbolicNames[i];
    return names;
}

/** The limits of a 32-bit integer, widened as their own signedness says, and written as unsigned numbers. */
template <typename Area>
void generateInteger(ParameterInfoGeneratorXML& generator, const RegisterInfo& info, const Area& area) {
    const auto wide = [](auto number) { return static_cast<std::uint64_t>(number); };
    generator.infoGenerate(info, wide(area.value), wide(area.minimum), wide(loadLive(area.maximum)),
                           wide(area.increment));
}

/** Writes the nodes of a parameter; false if a parameter of its kind has none. */
bool generate(ParameterInfoGeneratorXML& generator, const RegisterInfo& info) {
    const RegisterInfoValue& value = info.value;
    switch (info.kind) {
    case REGISTER_KIND_UINT:
        generateInteger(generator, info, value.u32);
        return true;
    case REGISTER_KIND_INT:
        generateInteger(generator, info, value.i32);
        return true;
    case REGISTER_KIND_ENUM:
        generator.infoGenerate(info, value.enumeration.value, entryNames(info));
        return true;
    case REGISTER_KIND_STRING:
        generator.infoGenerate(info);
        return true;
    case REGISTER_KIND_DOUBLE:
        generator.infoGenerate(info, value.f64.value, value.f64.minimum, loadLive(value.f64.maximum),
                               value.f64.increment);
        return true;
    default: // 64-bit integers and arrays are not in the document
        return false;
    }
}

} // namespace

ParameterInfoBuilderXML::ParameterInfoBuilderXML(const Fg_ParameterInfo& info, const char* appletName,
                                                 int port)
    : m_private(std::make_unique<ParameterInfoBuilderXMLPrivate>(info, appletName, port)) {}

ParameterInfoBuilderXML::~ParameterInfoBuilderXML() = default;

std::string ParameterInfoBuilderXML::build() {
    std::string room;
    room.reserve(usualLength);
    std::ostringstream stream(std::move(room));
    stream.precision(12);
    m_private->writeDocument(stream);
    return std::move(stream).str();
}

void ParameterInfoBuilderXMLPrivate::writeDocument(std::ostream& stream) {
    buildXMLHeader(stream);
    startAppletDescription(stream);
    processRegisterInfo(stream, m_info.getRegisterInfo(m_port), nullptr);
    buildCategories(stream);
    stopAppletDescription(stream);
}

void ParameterInfoBuilderXMLPrivate::buildXMLHeader(std::ostream& stream) {
    put(stream, "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n\n");
}

void ParameterInfoBuilderXMLPrivate::startAppletDescription(std::ostream& stream) {
    put(stream, "<RegisterDescription\nModelName=\"", xmlStringFilter(m_appletName), "\"\n",
        R"(VendorName="NorvaneImaging"
StandardNameSpace="None"
SchemaMajorVersion="1"
SchemaMinorVersion="0"
SchemaSubMinorVersion="1"
MajorVersion="1"
MinorVersion="0"
SubMinorVersion="0"
ProductGuid="0"
VersionGuid="0"
xmlns="http://www.genicam.org/GenApi/Version_1_0"
xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"
xsi:schemaLocation="http://www.genicam.org/GenApi/Version_1_0 GenApiSchema_Version_1_0.xsd">
)");
}

void ParameterInfoBuilderXMLPrivate::processRegisterInfo(std::ostream& stream, const RegisterInfo* info,
                                                         const RegisterInfo* parent) {
    for (; info != nullptr; info = info->next) {
        if (info->kind != REGISTER_KIND_GROUP) {
            buildParamDescr(stream, *info, parent);
            continue;
        }
        for (int i = 0; i < info->value.group.childCount; ++i)
            processRegisterInfo(stream, info->value.group.children[i], info);
    }
}

void ParameterInfoBuilderXMLPrivate::buildParamDescr(std::ostream& stream, const RegisterInfo& info,
                                                     const RegisterInfo* parent) {
    if (info.published == 0) return;
    const std::string_view category = viewOf(parent != nullptr ? parent->displayName : nullptr);
    if (category == catalogue::directRegisterGroup) return;
    ParameterInfoGeneratorXML generator(stream);
    if (!generate(generator, info)) return;
    addFeatureToCategory(category, viewOf(info.name));
    put(stream, "\n\r"); // the order is part of the format
}

void ParameterInfoBuilderXMLPrivate::addFeatureToCategory(std::string_view category,
                                                          std::string_view feature) {
    Category* node = &m_root;
    if (!category.empty()) {
        // The categories are flat: groups of equal names are one.
        std::string name = xmlNameFilter(category);
        node = m_root.getChild(name);
        if (node == nullptr) node = &m_root.addChild(std::move(name));
    }
    // The first filter may move a digit to the front, which the second removes.
    node->addFeature(xmlNameFilter(xmlNameFilter(feature)));
}

void ParameterInfoBuilderXMLPrivate::buildCategories(std::ostream& stream) { writeCategory(stream, m_root); }

void ParameterInfoBuilderXMLPrivate::writeCategory(std::ostream& stream, const Category& category) {
    const auto writeFeature = [&](std::string_view name) {
        put(stream, "<pFeature>", name, "</pFeature>\n");
    };
    put(stream, "<Category Name='", category.getName(), "' ",
        (&category == &m_root ? "NameSpace='Standard'" : ""), " >\n");
    for (std::size_t i = 0; i < category.getChildCount(); ++i)
        writeFeature(category.getChild(i)->getName());
    for (std::size_t i = 0; i < category.getFeatureCount(); ++i)
        writeFeature(category.getFeature(i));
    put(stream, "</Category>\n");
    // Categories follow one another, they are not nested.
    for (std::size_t i = 0; i < category.getChildCount(); ++i)
        writeCategory(stream, *category.getChild(i));
}

void ParameterInfoBuilderXMLPrivate::stopAppletDescription(std::ostream& stream) {
    put(stream, "<Port Name=\"DevicePort\"></Port>\n</RegisterDescription>\n");
}
