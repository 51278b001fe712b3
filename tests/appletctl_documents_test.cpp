// Real runs of appletctl: the documents and pictures that it makes.

#include "support/appletctl_program.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>
#ifdef HAVE_LIBXML2
#include <libxml/parser.h>
#include <libxml/tree.h>
#endif

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <sstream>

namespace {

using namespace appletctl_program;

/** A value change dump, read back. */
struct Dump {
    std::string timescale;
    std::map<std::string, std::string> names; // of the wires, by their codes
    std::map<std::string, std::vector<std::pair<std::int64_t, char>>>
        changes; // by name; the first is the start's
    std::int64_t end = -1;
};

/** Fails the test where the text is no such file. */
Dump readDump(const std::string& text) {
    Dump dump;
    std::istringstream words(text);
    std::string word;
    const auto untilEnd = [&] {
        std::string content;
        while (words >> word && word != "$end")
            content += (content.empty() ? "" : " ") + word;
        EXPECT_EQ(word, "$end");
        return content;
    };
    while (words >> word) {
        if (word == "$timescale") {
            dump.timescale = untilEnd();
        } else if (word == "$var") {
            std::string type, width, code, name;
            std::istringstream(untilEnd()) >> type >> width >> code >> name;
            EXPECT_EQ(type + width, "wire1");
            EXPECT_TRUE(dump.names.emplace(code, name).second) << "two wires have the code " << code;
        } else if (word == "$version" || word == "$scope" || word == "$upscope" ||
                   word == "$enddefinitions") {
            untilEnd();
        } else if (word == "$dumpvars" || word == "$end") {
            EXPECT_EQ(dump.end, 0) << "start values belong to the time 0";
        } else if (word.front() == '#') {
            const std::int64_t time = std::stoll(word.substr(1));
            EXPECT_GT(time, dump.end);
            dump.end = time;
        } else {
            EXPECT_NE(std::string("01x").find(word.front()), std::string::npos) << word;
            const auto name = dump.names.find(word.substr(1));
            if (name == dump.names.end()) {
                ADD_FAILURE() << "no wire has the code of " << word;
                continue;
            }
            dump.changes[name->second].emplace_back(dump.end, word.front());
        }
    }
    return dump;
}

TEST(AppletctlTiming, WritesWhatAWaveformViewerReads) {
    const support::TemporaryFolder folder;
    const std::string file = folder / "timing.vcd";
    const json told =
        document({"timing", "--vcd", file, "FG_LINEPERIODE=100", "FG_LINEEXPOSURE=25",
                  "FG_LINETRIGGERDELAY=90", "FG_STROBEPULSEDELAY=1", "FG_EXSYNCPOLARITY=FG_LOW",
                  "FG_TRIGGEROUT_GPO_1_POLARITY=FG_LOW", "FG_TRIGGEROUT_GPO_3_SOURCE=FG_SIGNAL_GPI_1"});
    EXPECT_EQ(told["lineRate"], 10000.0);
    const Dump dump = readDump(support::fileBytes(file));
    EXPECT_EQ(dump.timescale, "1 ns");
    EXPECT_EQ(dump.end, 300000);
    using Changes = std::vector<std::pair<std::int64_t, char>>;
    const Changes low = {{0, '0'}, {25000, '1'}, {100000, '0'}, {125000, '1'}, {200000, '0'}, {225000, '1'}};
    const Changes delayedLow = {{0, '0'},      {15000, '1'},  {90000, '0'}, {115000, '1'},
                                {190000, '0'}, {215000, '1'}, {290000, '0'}};
    Changes delayedHigh = delayedLow;
    for (auto& [time, level] : delayedHigh)
        level = level == '0' ? '1' : '0';
    const std::pair<const char*, Changes> expected[] = {
        {"ExSync", low},
        {"FG_TRIGGERCAMERA", low},
        {"ExSync2", delayedLow},
        {"FG_TRIGGEROUT_FRONT_GPO_1", delayedLow},
        {"FG_TRIGGEROUT_GPO_1", delayedHigh}, // low active, inverted
        {"Flash", {{0, '0'}, {100000, '1'}, {200000, '0'}}},
        {"FG_TRIGGEROUT_GPO_3", {{0, 'x'}}},
        {"FG_TRIGGEROUT_GPO_4", {{0, '1'}}}, // VCC
    };
    for (const auto& [name, changes] : expected)
        EXPECT_EQ(dump.changes.at(name), changes) << name;
}

TEST(AppletctlTiming, DrawsTheSignals) {
    const Outcome outcome = run({"timing", "FG_LINEEXPOSURE=100", "FG_LINEPERIODE=200"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_TRUE(contains(outcome.out,
                         "            __________           _________           _________\n"
                         "  ExSync              |_________|         |_________|         |_________\n"))
        << outcome.out;
    EXPECT_TRUE(
        contains(outcome.out, "0                   200                 400                 600 µs\n"));
    EXPECT_TRUE(contains(outcome.out, "FG_TRIGGERCAMERA, FG_TRIGGEROUT_GPO_2\n")) << outcome.out;
    // An exposure above the period never ends; an input is not known.
    const json told = document(
        {"timing", "FG_LINEEXPOSURE=100", "FG_LINEPERIODE=50", "FG_TRIGGERCAMERA_SOURCE=FG_SIGNAL_GPI_0"});
    EXPECT_EQ(told["signals"][0]["pulses"], json({{0.0, 150.0}}));
    EXPECT_EQ(told["signals"][3]["pulses"], nullptr);
    const json async = document({"timing", "FG_LINETRIGGERMODE=ASYNC_TRIGGER", "FG_LINE_DOWNSCALE=2"});
    EXPECT_EQ(async["signals"][0]["pulses"].size(), 6u) << "two pulses of the input for each line";
}

TEST(AppletctlRoute, DrawsAGraph) {
    const std::string graph = run({"route", "--dot", "FG_TRIGGEROUT_GPO_2_POLARITY=FG_LOW"}).out;
    EXPECT_TRUE(contains(graph, "digraph routes {\n")) << graph;
    EXPECT_TRUE(
        contains(graph, "  \"FG_SIGNAL_CAM0_EXSYNC\" -> \"FG_TRIGGEROUT_GPO_2\" [label=\"inverted\"];\n"));
    EXPECT_TRUE(contains(graph, "  \"FG_SIGNAL_CAM0_EXSYNC\" -> \"FG_TRIGGERCAMERA\" [];\n")) << graph;
    EXPECT_TRUE(contains(graph, "  \"TRGINSRC_GPI_0\" -> \"image trigger\" [")) << graph;
}

TEST(AppletctlXml, FindsWhatAClientStumblesOver) {
    std::map<std::string, std::string> own;
    const json checked = document({"xml", "--check"});
    for (const json& finding : checked["findings"])
        own[finding["node"]] += finding["reason"].get<std::string>() + '\n';
    EXPECT_EQ(run({"xml", "--check"}).exitCode, 1);
    const std::pair<const char*, const char*> expected[] = {
        {"FG_DIGIO_OUTPUT", "the minimum 18446744073709551615 is a negative number"},
        {"FG_CAMERASIMULATOR_LINERATE", "is above the maximum"},
        {"FG_SIGNAL_ANALYZER_0_PULSE_COUNT", "read as negative numbers"},
        {"FG_SYSTEMMONITOR_FPGA_DNA", "not in the document: kind UInt64"},
        {"RegisterDescription", "ProductGuid is '0'"},
        {"RegisterDescription", "a client saves none of them"},
    };
    for (const auto& [node, reason] : expected)
        EXPECT_TRUE(contains(own[node], reason)) << node << own[node];
    // The portable one lacks nothing but what an address cannot reach.
    const json portable = document({"xml", "--portable", "--check"})["findings"];
    EXPECT_EQ(portable.size(), 3u) << portable.dump(1);
    for (const json& finding : portable)
        EXPECT_TRUE(contains(finding["reason"], "kind UInt array")) << finding;
}

#ifdef HAVE_LIBXML2

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

TEST(AppletctlTiming, DrawsAPicture) {
    const support::TemporaryFolder folder;
    const std::string file = folder / "timing.svg";
    EXPECT_EQ(run({"timing", "--svg", file, "FG_TRIGGEROUT_GPO_3_SOURCE=FG_SIGNAL_GPI_1"}).exitCode, 0);
    const XmlDocument picture = parsed(support::fileBytes(file));
    ASSERT_NE(picture, nullptr);
    int waves = 0;
    const xmlNode* content = picture->children->children;
    while (content != nullptr && nameOf(content) != "g")
        content = content->next;
    ASSERT_NE(content, nullptr);
    for (const xmlNode* node = content->children; node != nullptr; node = node->next)
        waves += nameOf(node) == "polyline" ? 1 : 0;
    EXPECT_EQ(waves, 4 + 11 - 1) << "all signals and outputs but the one that follows an input";
}

#endif

TEST(AppletctlDocs, DescribesAllParametersOnOnePage) {
    const support::TemporaryFolder folder;
    const std::string file = folder / "parameters.html";
    EXPECT_EQ(run({"docs", "--html", file}).out, '"' + file + "\" written\n");
    const std::string page = support::fileBytes(file);
    std::set<std::string> names;
    const std::string begin = "<article id=\"";
    for (std::size_t at = 0; (at = page.find(begin, at)) != std::string::npos;) {
        at += begin.size();
        names.insert(page.substr(at, page.find('"', at) - at));
    }
    EXPECT_EQ(names.size(), 164u);
    for (const char* part : {"<dd class=\"own\">µs</dd>", "Delay-&gt;Exsync",
                             // Links in the contents, in texts, and to what moves a limit.
                             "<nav", "<li><a href=\"#FG_WIDTH\">FG_WIDTH</a></li>",
                             "<dt>moves</dt><dd><a href=\"#FG_LINEEXPOSURE\">FG_LINEEXPOSURE</a> (limits)",
                             "limits: 0.512 to 200 -&gt; 0.512 to 0.512 with <a "
                             "href=\"#FG_LINEPERIODE\">FG_LINEPERIODE</a>=0.512",
                             "<tr><td>-6000</td><td>FG_ERR_OUT_OF_RANGE</td>", "<tr><td>-7080</td>"})
        EXPECT_TRUE(contains(page, part)) << part;
    EXPECT_FALSE(contains(page, "http")) << "the page stands alone";
    EXPECT_EQ(run({"docs"}).exitCode, 2);
}

TEST(AppletctlDocs, MakesManualPagesOrNamesWhatIsMissing) {
    const support::TemporaryFolder folder;
    const std::string man = folder / "man";
    const Outcome without = run({"docs", "--man", man}, {"PATH=/nowhere"});
    EXPECT_EQ(without.exitCode, 3);
    EXPECT_TRUE(contains(without.err, "apt-get install scdoc")) << without.err;
    EXPECT_TRUE(std::filesystem::is_empty(man)) << "no empty page is left";
    if (std::system("command -v scdoc >/dev/null") != 0) GTEST_SKIP() << "scdoc is not installed";
    ASSERT_EQ(run({"docs", "--man", man}).exitCode, 0);
    EXPECT_TRUE(contains(support::fileBytes(man + "/appletctl.1"), ".SH COMMANDS"));
    EXPECT_TRUE(contains(support::fileBytes(man + "/appletctl-parameters.7"), "FG_LINEPERIODE"));
}

TEST(AppletctlReport, HoldsAllThatASupportNeeds) {
    const support::TemporaryFolder folder;
    const std::string file = folder / "report.json";
    const Words environment = {"VEXO_ENABLE_DRA=on", "NORVANE_FG_SDK_DIR"};
    EXPECT_EQ(run({"--json", "report", "-o", file, "FG_LINEPERIODE=100.003"}, environment).exitCode, 0);
    const json told = json::parse(support::fileBytes(file));
    EXPECT_EQ(told["schema"], "appletctl/2");
    EXPECT_EQ(told["environment"]["VEXO_ENABLE_DRA"], "on");
    EXPECT_EQ(told["environment"]["NORVANE_FG_SDK_DIR"], nullptr);
    EXPECT_EQ(told["info"]["board"], "virtual");
    for (const char* library : {"boardLibrary", "designLoader", "runtime", "library"})
        EXPECT_TRUE(std::filesystem::exists(told["info"][library].get<std::string>())) << library;
    EXPECT_GT(told["list"]["parameters"].size(), 164u) << "and the registers";
    EXPECT_EQ(told["lint"]["findings"][0]["rule"], "grid");
    const std::string text = run({"report", "FG_WIDTH=512"}).out;
    EXPECT_TRUE(contains(text, "  FG_WIDTH       ") && contains(text, "Nothing doubtful."))
        << text.substr(0, 2000);
}

} // namespace
