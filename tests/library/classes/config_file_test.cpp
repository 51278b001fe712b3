// The format of configuration files, byte by byte. The fuzz target mcf compares the lenient reader with the C
// library for arbitrary files.

#include "files/Fg_ConfigFileParser.h"
#include "files/TextFile.h"
#include "support/hindered_calls.h"
#include "support/stress.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <fcntl.h>
#include <functional>
#include <string>
#include <unistd.h>
#include <utility>

namespace {

constexpr int missing = -8000;

using support::fileBytes;
using Parser = Fg_ConfigFileParser;

class ConfigFile : public testing::Test {
protected:
    const char* path() const { return m_path.c_str(); }
    void fill(const std::string& bytes) const { support::writeFile(m_path, bytes); }

    const support::TemporaryFolder folder;
    const std::string m_path = folder / "state.mcf";
};

TEST_F(ConfigFile, WritesEachLineAtOnce) {
    Parser parser(nullptr, nullptr, false);
    fill("of an earlier, longer file\n");
    ASSERT_TRUE(parser.setSaveFile(path()));
    EXPECT_EQ(fileBytes(m_path), "");
    const std::pair<std::function<void()>, const char*> rows[] = {
        {[&] { parser.writeConfigFileHeader(); }, "[Kamerasektion]\n\nConfigFileVersion=2.0;\n"},
        {[&] { parser.writeConfigFile("Typ", "it's; a=b"); }, "Typ='it's; a=b';\n"},
        {[&] { parser.writeConfigFile("Empty", ""); }, "Empty='';\n"},
        {[&] { parser.writeConfigFileValue("As it", "stands '"); }, "As it=stands ';\n"},
        {[&] { parser.writeConfigFilePortA(); }, "\n[Port A]\n"},
        {[&] { parser.writeConfigFilePortB(); }, "\n[Port B]\n"},
        {[&] { parser.writeConfigFileByPort(25); }, "\n[Port Z]\n"},
        {[&] { parser.writeConfigFileIntKey("i", INT32_MIN); }, "i=-2147483648;\n"},
        {[&] { parser.writeConfigFileUInt64Key("u", UINT64_MAX); }, "u=18446744073709551615;\n"},
        {[&] { parser.writeConfigFileInt64Key("l", INT64_MIN); }, "l=-9223372036854775808;\n"},
        {[&] { parser.writeConfigFileDoubleKey("d", 3999.9999999999995); }, "d=4000;\n"},
        {[&] { parser.writeConfigFileDoubleKey("d", 1.0 / 3); }, "d=0.333333333333;\n"},
        {[&] { parser.writeConfigFileDoubleKey("d", -2.5e-300); }, "d=-2.5e-300;\n"},
        {[&] { parser.writeConfigFileDoubleKey("d", 123456789012.5); }, "d=123456789012;\n"},
    };
    std::string expected;
    for (const auto& [write, line] : rows) {
        write();
        EXPECT_EQ(fileBytes(m_path), expected += line);
    }
    ASSERT_TRUE(parser.setSaveFile((folder / "second.mcf").c_str()));
    parser.writeConfigFileIntKey("i", 1);
    EXPECT_EQ(fileBytes(m_path), expected);
    EXPECT_EQ(fileBytes(folder / "second.mcf"), "i=1;\n");
}

TEST_F(ConfigFile, IsCompleteDespiteInterruptedCalls) {
    const std::string text = std::string(5000, 'x') + '\n';
    TextFile file;
    {
        const support::HinderedCalls hindered;
        ASSERT_TRUE(file.open(path(), TextFile::Mode::Write));
        EXPECT_NE(fcntl(file.descriptor(), F_GETFD) & FD_CLOEXEC, 0)
            << "a child of the host would keep the file";
        file.write(text);
        EXPECT_TRUE(file.finish());
    }
    EXPECT_EQ(fileBytes(m_path), text);
    fill("[Port A]\nfirst=1;\n" + text + "last=2;\n");
    const support::HinderedCalls hindered;
    Parser parser(nullptr, path(), true);
    int value = 0;
    EXPECT_EQ(parser.parseIntKeySection(0, "last", &value), 0);
    EXPECT_EQ(value, 2);
}

TEST_F(ConfigFile, ReportsAFailedClose) {
    // Some file systems report a failed write only then.
    TextFile file;
    ASSERT_TRUE(file.open(path(), TextFile::Mode::Write));
    file.write("x");
    ASSERT_EQ(close(file.descriptor()), 0);
    EXPECT_FALSE(file.finish());
}

TEST_F(ConfigFile, FindsKeysBySectionInAnyOrder) {
    fill("[Kamerasektion]\nAktivePort=5;\n[Port A]\nk=1;\n[Port B]\nk=2;\n");
    Parser parser(nullptr, path(), true);
    std::string text;
    for (const int asked : {0, 1, 0}) {
        EXPECT_EQ(parser.parseKeySection(asked, "k", text), 0);
        EXPECT_EQ(text, asked == 0 ? "1" : "2");
    }
    EXPECT_EQ(parser.parseKeySection(0, "none", text), missing);
    EXPECT_EQ(text, "Error");
    const auto expectNumber = [&](auto parse, auto value, auto expected) {
        EXPECT_EQ((parser.*parse)(1, nullptr, &value), -1);
        EXPECT_EQ((parser.*parse)(1, "none", &value), -1);
        EXPECT_EQ(value, 77) << "left alone";
        EXPECT_EQ((parser.*parse)(1, "k", &value), 0);
        EXPECT_EQ(value, expected);
    };
    expectNumber(&Parser::parseIntKeySection, int{77}, 2);
    expectNumber(&Parser::parseUInt64KeySection, std::uint64_t{77}, 2u);
    expectNumber(&Parser::parseInt64KeySection, std::int64_t{77}, 2);
    expectNumber(&Parser::parseDoubleKeySection, 77.0, 2.0);
    int port = 0;
    EXPECT_EQ(parser.parseIntKeyFromHeader("AktivePort", &port), 0);
    EXPECT_EQ(port, 5);
}

TEST_F(ConfigFile, IsReadByConcurrentParsers) {
    std::atomic<int> wrong = 0;
    support::stress(2, 1, [&](int thread, int) {
        const std::string name = thread == 0 ? "first" : "second", own = folder / (name + ".mcf");
        support::writeFile(own, "[Port A]\na='" + name + "a';\nb='" + name + "b';\n");
        Parser parser(nullptr, own.c_str(), true);
        std::string text;
        for (int i = 0; i < 5000; ++i) {
            const std::string key = i % 2 == 0 ? "a" : "b";
            if (parser.parseKey("[Port A]", key, text) != 0 || text != name + key) ++wrong;
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST_F(ConfigFile, IsRecognisedByNameAndReadability) {
    fill("[Port A]\nk=1;\n");
    support::writeFile(folder / "a", "[Port A]\nk=1;\n");
    const struct {
        std::string path;
        bool isType, exists, isRead;
    } cases[] = {
        {m_path, true, true, true},
        {folder / "a", false, true, false},
        {folder / "none.mcf.bak", true, false, false}, // and is not created
        {folder / "none.MCF", false, false, false},
        {"", false, false, false},
    };
    Parser parser(nullptr, nullptr, false);
    for (const auto& row : cases) {
        EXPECT_EQ(parser.checkFileType(row.path.c_str()), row.isType) << row.path;
        for (const bool readOnly : {true, false}) {
            std::string text;
            Parser reader(nullptr, row.path.c_str(), readOnly);
            EXPECT_EQ(reader.parseKey("[Port A]", "k", text), row.isRead ? 0 : missing) << row.path;
            EXPECT_EQ(parser.checkFileExist(row.path.c_str()), row.exists) << row.path;
        }
    }
    EXPECT_FALSE(parser.checkFileType(nullptr));
    EXPECT_FALSE(parser.checkFileExist(nullptr));
}

} // namespace
