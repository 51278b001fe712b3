// The classes that write the XML document: filters, categories, the nodes of each kind, the walk over a tree.

#include "catalogue/Category.h"
#include "catalogue/Fg_ParameterInfo.h"
#include "catalogue/ParameterInfoBuilderXML.h"
#include "catalogue/ParameterInfoGeneratorXML.h"
#include "catalogue/xml_text.h"

#include <gtest/gtest.h>

#include <limits>
#include <locale>
#include <sstream>

namespace {

TEST(XmlText, MarkupIsReplacedEverywhere) {
    const std::pair<const char*, const char*> rows[] = {
        {nullptr, ""},
        {"", ""},
        {"plain \xB5\n", "plain \xB5\n"},
        {"Delay->Exsync", "Delay-&gt;Exsync"},
        {"\"'<>&", "&quot;&apos;&lt;&gt;&amp;"},
        {"&amp;", "&amp;amp;"},
        {"a<<b", "a&lt;&lt;b"},
    };
    for (const auto& [text, expected] : rows) {
        std::ostringstream stream;
        catalogue::put(stream, "[", catalogue::xmlStringFilter(text), "]");
        EXPECT_EQ(stream.str(), '[' + std::string(expected) + ']');
    }
}

TEST(XmlText, NamesKeepOnlyValidCharacters) {
    const std::pair<const char*, const char*> rows[] = {
        {"", ""},
        {"Digital I/O", "DigitalIO"},
        {"Line Trigger / ExSync", "LineTriggerExSync"},
        {"FG_CUSTOM_SIGNAL_EVENT_0", "FG_CUSTOM_SIGNAL_EVENT_0"},
        {"1st", "st"},
        {"_a_1", "a_1"},
        {"12a", "2a"}, // only the first position of the text itself
        {" 1a", "1a"},
        {"[@`{/:^\xB5\xC3\xA4]", ""},
    };
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(catalogue::xmlNameFilter(text), expected) << text;
}

TEST(CategoryTest, FindsChildrenAndFeatures) {
    Category root("Root");
    const auto* first = &root.addChild("Image");
    auto* second = &root.addChild("Image");
    second->addFeature("A");
    EXPECT_EQ(root.getChild("Image"), first);
    EXPECT_EQ(root.getChild("image"), nullptr);
    EXPECT_EQ(root.getChild(2), nullptr);
    EXPECT_TRUE(root.hasChild("Image") && !second->hasChild("Image"));
    EXPECT_TRUE(second->hasFeature("A") && !first->hasFeature("A"));
    EXPECT_EQ(second->getFeature(1), "");
}

class DocumentTest : public testing::Test {
protected:
    Fg_ParameterInfo tree{1};
    RegisterInfo* group = tree.addGroupInfo(0, nullptr, "Group");

    RegisterInfo* record(const char* label, const char* name, int access = 3, int id = 77) {
        return tree.create(0, REGISTER_KIND_UINT, label, name, id, access, 1, 1, "");
    }
    /** The generator's output for a call. */
    template <typename... Arguments>
    static std::string nodes(const RegisterInfo* record, const Arguments&... arguments) {
        std::ostringstream stream;
        stream.precision(12);
        ParameterInfoGeneratorXML(stream).infoGenerate(*record, arguments...);
        return stream.str();
    }
    /** The document without its opening and closing tags. */
    std::string body() {
        const std::string document = ParameterInfoBuilderXML(tree, "<Applet>", 0).build();
        const std::string start = "ModelName=\"&lt;Applet&gt;\"", tag = ".xsd\">\n";
        const std::string end = "<Port Name=\"DevicePort\"></Port>\n</RegisterDescription>\n";
        const std::size_t begin = document.find(tag) + tag.size();
        if (document.find(start) == document.npos || !document.ends_with(end)) return document;
        return document.substr(begin, document.size() - begin - end.size());
    }
};

TEST_F(DocumentTest, AddressAndAccessOfARegister) {
    const char* const modes[] = {"", "RO", "WO", "RW", "", "RO", "WO", "RW"};
    for (int access = 0; access < 8; ++access)
        EXPECT_EQ(nodes(record("", "", access), 12),
                  "<Address>77</Address>\n<Length>12</Length>\n<AccessMode>" + std::string(modes[access]) +
                      "</AccessMode>\n<pPort>DevicePort</pPort>\n");
    EXPECT_EQ(nodes(record("", "", 1, 0), 4),
              "<Length>4</Length>\n<AccessMode>RO</AccessMode>\n<pPort>DevicePort</pPort>\n");
}

TEST_F(DocumentTest, NodesOfArraysAndOfARecordWithoutAName) {
    using u64 = std::uint64_t;
    const RegisterInfo* array = record("A<B", "N&N");
    const auto element = [&](auto... limits) {
        return "<Integer "
               "Name='N&amp;N_Selector'>\n<Value>0</Value>\n<Min>0</Min>\n<Max>2</Max>\n<Inc>1</Inc>\n"
               "<pSelect>N&amp;N_Reg</pSelect>\n</Integer>" +
               nodes(array, limits...);
    };
    const u64 most = std::numeric_limits<u64>::max();
    EXPECT_EQ(nodes(array, std::vector<u64>(3), u64{4}, most, u64{2}), element(u64{4}, u64{4}, most, u64{2}));
    EXPECT_EQ(nodes(array, std::vector<double>(3), -0.5, 7e-11, 0.5), element(-0.5, -0.5, 7e-11, 0.5));
    EXPECT_TRUE(
        nodes(array, std::vector<u64>(3), u64{4}, most, u64{0}).ends_with("<Inc>0</Inc>\n</Integer>"));
    EXPECT_EQ(nodes(record("", nullptr, 1, 0), u64{9}, u64{0}, u64{1}, u64{0}),
              "<IntReg >\n<Length>4</Length>\n<AccessMode>RO</AccessMode>\n<pPort>DevicePort</pPort>\n"
              "<Sign>Signed</Sign>\n<Endianess>LittleEndian</Endianess>\n</IntReg>\n<Integer Name=''>\n"
              "<pValue>_Reg</pValue>\n<Min>0</Min>\n<Max>1</Max>\n</Integer>");
    // One parameter has a wider register.
    EXPECT_NE(nodes(record("", "FG_TRANSFER_LEN"), u64{}, u64{}, u64{}, u64{}).find("<Length>8</Length>"),
              std::string::npos);
}

TEST_F(DocumentTest, WalksGroupsInOrderAndListsTheirFeatures) {
    const auto text = [&](RegisterInfo* parent, const char* name, int published = 1) {
        return tree.addInfoString(parent, "", name, "", 1, 1, published, "", 0, 0);
    };
    text(tree.addGroupInfo(0, group, "I/O"), "1_2a"); // filtered twice
    text(group, "A");
    text(group, "A");
    text(group, "unpublished", 0);
    text(tree.addGroupInfo(0, nullptr, "Direct Register Access"), "DRA_A");
    text(tree.addGroupInfo(0, nullptr, "I O"), "D"); // the same category as I/O
    tree.addGroupInfo(0, nullptr, "Empty");
    // Arrays and 64-bit integers have no nodes and are not features.
    tree.addInfoUInt64(group, "", "wide", 0, 1, 1, 1, 1, 1, "", 1, 0);
    tree.addInfoInt64(group, "", "wide", 0, 1, 1, 1, 1, 1, "", 1, 0);
    tree.addInfoUIntField(group, "", "array", 9, 0, 1, 1, 1, 1, 1, "", 1, 0);
    tree.addInfoDoubleField(group, "", "array", 9, 0, 1, 1, 1, 1, 1, "", 1, 0);
    RegisterInfo* alone = text(group, "Alone");
    tree.add(alone, 0); // on the top level, where it has no group
    alone->previous = nullptr;

    const auto node = [](const std::string& name) {
        return "<StringReg Name=\"" + name +
               "\">\n<Length>4096</Length>\n<AccessMode>RO</AccessMode>\n"
               "<pPort>DevicePort</pPort>\n</StringReg>\n\r";
    };
    EXPECT_EQ(body(), node("1_2a") + node("A") + node("A") + node("Alone") + node("D") + node("Alone") +
                          "<Category Name='Root' NameSpace='Standard' >\n<pFeature>IO</pFeature>\n"
                          "<pFeature>Group</pFeature>\n<pFeature>Alone</pFeature>\n</Category>\n"
                          "<Category Name='IO'  >\n<pFeature>2a</pFeature>\n<pFeature>D</pFeature>\n"
                          "</Category>\n<Category Name='Group'  >\n<pFeature>A</pFeature>\n"
                          "<pFeature>A</pFeature>\n<pFeature>Alone</pFeature>\n</Category>\n");
}

struct Grouping : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST_F(DocumentTest, TakesLimitsAndEntriesFromTheRecordsInAnyLocale) {
    tree.addInfoInt(group, "", "I", -1, 4096, -2, 3, 1, 1, "", 0, 0);
    tree.addInfoUInt(group, "", "U", 0, 4294967295u, 0, 3, 1, 1, "", 1234567, 0);
    tree.addInfoDouble(group, "", "D", 0.9999999999999998, 34359738.36, 1, 3, 1, 1, "", 0, 0);
    RegisterInfo* choice = tree.addInfoEnum(group, "", "E", 5, 3, 1, 1, "", 0, 0);
    tree.addEnumNameValue(choice, 0, "", 1001, "LATE");
    tree.addEnumNameValue(choice, 1, "", 5, "FIRST");
    tree.addEnumNameValue(choice, 2, "", 5, "SECOND");
    tree.addEnumNameValue(choice, 3, "", 1, nullptr); // has no name
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Grouping));
    const std::string written = body();
    std::locale::global(before);
    for (const char* part :
         {"<Min>18446744073709551615</Min>\n<Max>4096</Max>\n<Inc>18446744073709551614</Inc>\n</Integer>",
          "<Address>1234567</Address>", "<Min>0</Min>\n<Max>4294967295</Max>\n</Integer>",
          "<Min>1</Min>\n<Max>34359738.36</Max>\n</Float>",
          "<Enumeration Name='E'>\n<EnumEntry Name=\"SECOND\">\n<Value>5</Value>\n</EnumEntry>\n"
          "<EnumEntry Name=\"LATE\">\n<Value>1001</Value>\n</EnumEntry>\n<pValue>"})
        EXPECT_NE(written.find(part), std::string::npos) << part << "\nis not in\n" << written;
}

} // namespace
