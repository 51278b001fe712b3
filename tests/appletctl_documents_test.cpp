// Real runs of appletctl: the XML documents that it makes.

#include "support/appletctl_program.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <tuple>

namespace {

using namespace appletctl_program;

using XmlDocument = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;

XmlDocument parsed(const std::string& text) {
    return {xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, XML_PARSE_NONET),
            xmlFreeDoc};
}

std::string nameOf(const xmlNode* node) { return reinterpret_cast<const char*>(node->name); }

std::string textOf(const xmlNode* node) {
    xmlChar* content = xmlNodeGetContent(node);
    std::string text = reinterpret_cast<const char*>(content);
    xmlFree(content);
    return text;
}

std::string attributeOf(const xmlNode* node, const char* name) {
    xmlChar* content = xmlGetProp(node, reinterpret_cast<const xmlChar*>(name));
    std::string text = content != nullptr ? reinterpret_cast<const char*>(content) : "";
    xmlFree(content);
    return text;
}

/** The nodes of a document by their names, each with the texts of its elements. */
std::map<std::string, std::multimap<std::string, std::string>> nodesOf(const xmlDoc* document) {
    std::map<std::string, std::multimap<std::string, std::string>> nodes;
    for (const xmlNode* node = document->children->children; node != nullptr; node = node->next) {
        if (node->type != XML_ELEMENT_NODE) continue;
        const std::string name = attributeOf(node, "Name");
        EXPECT_FALSE(nodes.contains(name)) << name << " stands twice";
        nodes[name].emplace("", nameOf(node));
        for (const xmlNode* child = node->children; child != nullptr; child = child->next)
            if (child->type == XML_ELEMENT_NODE) nodes[name].emplace(nameOf(child), textOf(child));
    }
    return nodes;
}

TEST(AppletctlXml, MakesAPortableDocument) {
    const XmlDocument document = parsed(run({"xml", "--portable"}).out);
    ASSERT_NE(document, nullptr) << "not well-formed";
    const auto nodes = nodesOf(document.get());
    std::set<std::string> named = {"Root"};
    for (const auto& [name, elements] : nodes) {
        for (const auto& [tag, text] : elements) {
            if (!tag.starts_with('p')) continue;
            EXPECT_TRUE(nodes.contains(text)) << name << " names " << text;
            named.insert(text);
        }
    }
    for (const auto& [name, elements] : nodes)
        EXPECT_TRUE(named.contains(name)) << "nothing leads to " << name;

    const std::tuple<const char*, const char*, const char*> expected[] = {
        {"FG_DIGIO_OUTPUT", "Min", "-1"},
        {"FG_DIGIO_OUTPUT_Reg", "Sign", "Signed"},
        {"FG_WIDTH_Reg", "Sign", "Unsigned"},
        {"FG_WIDTH_Reg", "Cachable", "NoCache"},
        {"FG_SYSTEMMONITOR_FPGA_DNA_Reg", "Length", "8"},
        {"FG_SYSTEMMONITOR_FPGA_DNA_Reg", "AccessMode", "RO"},
        {"FG_SHAFTENCODERON_Reg", "AccessMode", "RW"}, // read-only now, not for ever
        {"FG_LINEPERIODE", "Unit", "µs"},
        {"FG_LINEPERIODE", "Inc", "0.008"},
        {"FG_LINEPERIODE", "Streamable", "Yes"},
        {"FG_LINEORDER", "Streamable", "No"},
        {"FG_LINETRIGGERDELAY", "DisplayName", "Delay->Exsync"},
        {"Width", "pValue", "FG_WIDTH_Reg"},
        {"Width", "pAlias", "FG_WIDTH"},
        {"TriggerSoftware", "", "Command"},
        {"LUTEnable", "", "Boolean"},
        {"StandardFeatures_Category", "pFeature", "PixelFormat"},
    };
    for (const auto& [name, tag, text] : expected) {
        ASSERT_TRUE(nodes.contains(name)) << name;
        const auto [first, last] = nodes.at(name).equal_range(tag);
        EXPECT_TRUE(std::any_of(first, last,
                                [&, wanted = text](const auto& element) { return element.second == wanted; }))
            << name << " " << tag;
    }
}

TEST(AppletctlXml, IsWellFormed) {
    const support::TemporaryFolder folder;
    support::writeFile(folder / "odd.scenario",
                       "section \"Odd <&> words\"\nexpect exit 0 load \"<&>.mcf\"\n");
    run({"timing", "--svg", folder / "timing.svg"});
    run({"lut", "plot", folder / "lut.svg", "FG_LUT_SAVE_FILE=<&>"});
    run({"run", folder / "odd.scenario", "--junit", folder / "report.xml"});
    for (const char* name : {"timing.svg", "lut.svg", "report.xml"})
        EXPECT_NE(parsed(support::fileBytes(folder / name)), nullptr) << name;
    EXPECT_EQ(document({"xml"})["document"], run({"xml"}).out);
}

} // namespace
