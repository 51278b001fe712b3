// The format of configuration files: what is written to the byte, and what the lenient reader makes of any.

#include "files/Fg_ConfigFileParser.h"
#include "files/TextFile.h"
#include "support/Fg_Log.h"
#include "support/hindered_calls.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <fcntl.h>
#include <functional>
#include <string>
#include <thread>
#include <utility>

namespace {

using namespace std::string_literals;

constexpr int missing = -8000;
const std::string a252(252, 'a'), x250(250, 'x'), x254(254, 'x'), x255(255, 'x');

using support::fileBytes;
using Parser = Fg_ConfigFileParser;

class ConfigFile : public testing::Test {
protected:
    const char* path() const { return m_path.c_str(); }
    void fill(const std::string& bytes) const { support::writeFile(m_path, bytes); }

    const support::TemporaryFolder folder;
    const std::string m_path = folder / "state.mcf";
};

TEST_F(ConfigFile, HasEachLineBeforeTheNextIsWritten) {
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

TEST_F(ConfigFile, IsWholeHoweverTheSystemAnswers) {
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

TEST_F(ConfigFile, GivesTextsByTheReadersRules) {
    const std::string port = "[Port A]\n";
    const struct {
        const char* what;
        std::string file;
        int result;
        std::string text;
        const char* key = "k";
    } cases[] = {
        {"the first line", port + "k=1;\nk=2;\n", 0, "1"},
        {"a later section", port + "j=1;\n\n[Port B]\nk=2;\n", 0, "2"},
        {"above the section", "k=1;\n" + port, missing, ""},
        {"in the section's own line", "k=1;[Port A]\n", missing, ""},
        {"a section within a line", "x[Port A]y\nk=1;\n", 0, "1"},
        {"no section", "k=1;\n", missing, ""},
        {"not at the line's begin", port + " k=1;\n\tk=2;\nxk=3;\n", missing, ""},
        {"a longer key", port + "k2=1;\nkk=2;\nk=3;\n", 0, "3"},
        {"a blank behind the key", port + "k =1;\nk;=2;\nk\nk:3\n", missing, ""},
        {"without a semicolon", port + "k=1\n", 0, "1\n"},
        {"lines of other systems", "[Port A]\r\nk=1;\r\n", 0, "1"},
        {"a last line without an end", port + "k=1", 0, "1"},
        {"nothing behind the last key", port + "k=", 0, ""},
        {"a line end of other systems", port + "k=\r\n", 0, ""},
        {"an empty text", port + "k='';\n", 0, ""},
        {"blanks", port + "k=' a b ';\n", 0, " a b "},
        {"a quote inside", port + "k='it's';\n", 0, "it"},
        {"a semicolon inside", port + "k='a;b';\n", 0, "a"},
        {"leading delimiters", port + "k==;'=5;\n", 0, "5"},
        {"Error", port + "k='an Error';\n", 0, "an Error"},
        {"a value over the longest line", port + "k='" + a252 + "bbb';\nj=1;\n", 0, a252},
        {"the rest is a line", port + "k='" + a252 + "j=1;\n", 0, "1", "j"},
        {"behind the longest line", port + x255 + "k=7;\n", 0, "7"},
        {"one before its end", port + x254 + "k=7;\n", missing, ""},
        {"a section cut in two", x250 + "[Port A]\nk=7;\n", missing, ""},
        {"a NUL byte in the value", port + "k=1\0002;\nj=3;\n"s, 0, "1"},
        {"a NUL byte in front", port + "x\0k=1;\n\0\nk=2;\n"s, 0, "2"},
        {"a NUL byte as the value", port + "k=\0001;\n"s, 0, ""},
    };
    Fg_Log log("never-opened.log");
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        fill(row.file);
        Parser parser(&log, path(), true);
        std::string text;
        EXPECT_EQ(parser.parseKeySection(0, row.key, text), row.result);
        EXPECT_EQ(text, row.result == 0 ? row.text : "Error");
    }
    fill(port + "k=1;\n[Port B]\nk=2;\n");
    Parser parser(nullptr, path(), true);
    std::string text;
    for (const int asked : {0, 1, 0}) { // sections may be asked for in turn
        EXPECT_EQ(parser.parseKeySection(asked, "k", text), 0);
        EXPECT_EQ(text, asked == 0 ? "1" : "2");
    }
}

TEST_F(ConfigFile, GivesTheIdentityFromAnyLineThatHoldsTheKey) {
    const struct {
        std::string file;
        int result;
        std::string text;
    } cases[] = {
        {"Typ='Applet';\n", 0, "Applet"},
        {"[Port A]\n x Typ of y='a;b';\nTyp='c';\n", 0, "a;b"},
        {"MyTyp2=1;\nTyp='Applet';\n", 0, "1;\n"},
        {"[Typ]\nTyp='Applet';\n", 0, ""},
        {"Typ='';\n", 0, ";\n"},
        {"='Typ'x='y'", 0, "x"},
        {"Typ=", 0, ""},
        {"Typ", 0, ""},
        {"Ty\np='Applet'\n", missing, "Error"},
        {"x\0Typ='a'\n"s, missing, "Error"},
        {"", missing, "Error"},
    };
    for (const auto& row : cases) {
        fill(row.file);
        std::string text;
        EXPECT_EQ(Parser(nullptr, path(), true).parseKeyFromLine("Typ", text), row.result) << row.file;
        EXPECT_EQ(text, row.text) << row.file;
    }
}

TEST_F(ConfigFile, GivesNumbersAndLeavesTheRestAlone) {
    fill("[Port A]\nnumber=12x;\nword='x';\nlow=-7;\nhex=0x10;\noctal=010;\nreal=-0.5e3y;\nbad='99 Errors';\n"
         "empty=;\n");
    constexpr int old = 77;
    const struct {
        const char* key;
        int result, i32;
        std::uint64_t u64;
        std::int64_t i64;
        double f64;
    } cases[] = {
        {"bad", -1, old, old, old, old}, {"none", -1, old, old, old, old},       {"word", 0, 0, old, old, 0},
        {"empty", 0, 0, old, old, 0},    {"number", 0, 12, 12, 12, 12},          {"octal", 0, 10, 10, 8, 10},
        {"hex", 0, 0, 0, 16, 16},        {"low", 0, -7, UINT64_MAX - 6, -7, -7}, {"real", 0, 0, 0, 0, -500},
    };
    Parser parser(nullptr, path(), true);
    const auto expectNumber = [&](const auto& row, auto expected, auto parse) {
        auto value = static_cast<decltype(expected)>(old);
        EXPECT_EQ((parser.*parse)(0, row.key, &value), row.result) << row.key;
        EXPECT_EQ((parser.*parse)(0, nullptr, &value), -1);
        EXPECT_EQ(value, expected) << row.key;
    };
    for (const auto& row : cases) {
        expectNumber(row, row.i32, &Parser::parseIntKeySection);
        expectNumber(row, row.u64, &Parser::parseUInt64KeySection);
        expectNumber(row, row.i64, &Parser::parseInt64KeySection);
        expectNumber(row, row.f64, &Parser::parseDoubleKeySection);
    }
    // The header's own line has its end in it.
    for (const auto& [file, result] : {std::pair{"[Kamerasektion]\nAktivePort=5;\n", 0},
                                       {"[Kamerasektion]\r\nAktivePort=5;\n", -1},
                                       {"[Kamerasektion]\nAktivePort='Error';\n", -1},
                                       {"AktivePort=5;\n[Kamerasektion]\n", -1}}) {
        fill(file);
        int number = old;
        EXPECT_EQ(Parser(nullptr, path(), true).parseIntKeyFromHeader("AktivePort", &number), result) << file;
        EXPECT_EQ(number, result == 0 ? 5 : old);
    }
}

TEST_F(ConfigFile, IsReadByParsersSideBySide) {
    std::atomic<int> wrong = 0;
    const auto work = [&](const std::string& name) {
        const std::string own = folder / (name + ".mcf");
        support::writeFile(own, "[Port A]\na='" + name + "a';\nb='" + name + "b';\n");
        Parser parser(nullptr, own.c_str(), true);
        std::string text;
        for (int i = 0; i < 5000; ++i) {
            const std::string key = i % 2 == 0 ? "a" : "b";
            if (parser.parseKey("[Port A]", key, text) != 0 || text != name + key) ++wrong;
        }
    };
    std::thread first(work, "first"), second(work, "second");
    first.join();
    second.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(ConfigFile, IsKnownByItsNameAndByBeingReadable) {
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
