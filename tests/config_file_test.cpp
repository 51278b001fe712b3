// The format of configuration files: what is written to the byte, and what the lenient reader makes of any.

#include "files/Fg_ConfigFileParser.h"
#include "support/Fg_Log.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using namespace std::string_literals;

constexpr int missing = -8000;
const std::string a252(252, 'a'), x250(250, 'x'), x254(254, 'x'), x255(255, 'x');

class ConfigFile : public testing::Test {
protected:
    ConfigFile() { std::filesystem::create_directory(m_folder); }
    ~ConfigFile() override { std::filesystem::remove_all(m_folder); }

    std::string in(const std::string& name) const { return m_folder / name; }
    const char* path() const { return m_path.c_str(); }
    void fill(const std::string& bytes) const { std::ofstream(m_path, std::ios::binary) << bytes; }
    std::string bytes(const std::string& name = "state.mcf") const {
        std::ifstream file(in(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const std::filesystem::path m_folder =
        std::filesystem::temp_directory_path() / ("config-file-test-" + std::to_string(getpid()));
    const std::string m_path = m_folder / "state.mcf";
};

TEST_F(ConfigFile, HasEachLineBeforeTheNextIsWritten) {
    Fg_ConfigFileParser parser(nullptr, nullptr, false);
    fill("of an earlier, longer file\n");
    ASSERT_TRUE(parser.setSaveFile(path()));
    std::string expected;
    const auto wrote = [&](const std::string& line) {
        expected += line;
        EXPECT_EQ(bytes(), expected);
    };
    wrote("");
    parser.writeConfigFileHeader();
    wrote("[Kamerasektion]\n\nConfigFileVersion=2.0;\n");
    parser.writeConfigFile("Typ", "it's; a=b");
    wrote("Typ='it's; a=b';\n");
    parser.writeConfigFile("Empty", "");
    wrote("Empty='';\n");
    parser.writeConfigFileValue("As it", "stands '");
    wrote("As it=stands ';\n");
    parser.writeConfigFilePortA();
    wrote("\n[Port A]\n");
    parser.writeConfigFilePortB();
    wrote("\n[Port B]\n");
    parser.writeConfigFileByPort(25);
    wrote("\n[Port Z]\n");
    parser.writeConfigFileIntKey("i", INT32_MIN);
    wrote("i=-2147483648;\n");
    parser.writeConfigFileUInt64Key("u", UINT64_MAX);
    wrote("u=18446744073709551615;\n");
    parser.writeConfigFileInt64Key("l", INT64_MIN);
    wrote("l=-9223372036854775808;\n");
    for (const auto& [number, text] : {std::pair{3999.9999999999995, "4000"},
                                       {1.0 / 3, "0.333333333333"},
                                       {0.112, "0.112"},
                                       {-2.5e-300, "-2.5e-300"},
                                       {123456789012.5, "123456789012"},
                                       {0.0, "0"}}) {
        parser.writeConfigFileDoubleKey("d", number);
        wrote("d="s + text + ";\n");
    }
    EXPECT_EQ(Fg_ConfigFileParser::getPortString(0), "[Port A]");
    ASSERT_TRUE(parser.setSaveFile(in("second.mcf").c_str()));
    parser.writeConfigFileIntKey("i", 1);
    wrote("");
    EXPECT_EQ(bytes("second.mcf"), "i=1;\n");
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
        {"an empty file", "", missing, ""},
        {"not at the line's begin", port + " k=1;\n\tk=2;\nxk=3;\n", missing, ""},
        {"a longer key", port + "k2=1;\nkk=2;\nk=3;\n", 0, "3"},
        {"a blank behind the key", port + "k =1;\nk;=2;\nk\nk:3\n", missing, ""},
        {"the key of a width", port + "FG_WIDTH2=1;\nFG_WIDTH=1024;\n", 0, "1024", "FG_WIDTH"},
        {"without a semicolon", port + "k=1\n", 0, "1\n"},
        {"lines of other systems", "[Port A]\r\nk=1;\r\n", 0, "1"},
        {"a last line without an end", port + "k=1", 0, "1"},
        {"nothing behind the last key", port + "k=", 0, ""},
        {"only a line end", port + "k=\n", 0, ""},
        {"a line end of other systems", port + "k=\r\n", 0, ""},
        {"an empty number", port + "k=;\n", 0, ""},
        {"an empty text", port + "k='';\n", 0, ""},
        {"an empty text at the end", port + "k='';", 0, ""},
        {"blanks", port + "k=' a b ';\n", 0, " a b "},
        {"a quote inside", port + "k='it's';\n", 0, "it"},
        {"an equals sign inside", port + "k='a=b';\n", 0, "a"},
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
        Fg_ConfigFileParser parser(&log, path(), true);
        for (int time = 0; time < 2; ++time) {
            std::string text;
            EXPECT_EQ(parser.parseKey("[Port A]", row.key, text), row.result);
            EXPECT_EQ(text, row.result == 0 ? row.text : "Error");
            EXPECT_EQ(parser.parseKeySection(0, row.key, text), row.result);
            EXPECT_EQ(text, row.result == 0 ? row.text : "Error");
        }
    }
    fill(port + "k=1;\n[Port B]\nk=2;\n");
    Fg_ConfigFileParser parser(nullptr, path(), true);
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
        EXPECT_EQ(Fg_ConfigFileParser(nullptr, path(), true).parseKeyFromLine("Typ", text), row.result)
            << row.file;
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
    using Parser = Fg_ConfigFileParser;
    Parser parser(nullptr, path(), true);
    const auto expectNumber = [&](const auto& row, auto expected, auto ofSection, auto ofPort) {
        auto value = static_cast<decltype(expected)>(old), same = value;
        EXPECT_EQ((parser.*ofSection)("[Port A]", row.key, &value), row.result) << row.key;
        EXPECT_EQ((parser.*ofPort)(0, row.key, &same), row.result) << row.key;
        EXPECT_EQ((parser.*ofPort)(0, nullptr, &same), -1);
        EXPECT_EQ(value, expected) << row.key;
        EXPECT_EQ(same, expected) << row.key;
    };
    for (const auto& row : cases) {
        expectNumber(row, row.i32, &Parser::parseIntKey, &Parser::parseIntKeySection);
        expectNumber(row, row.u64, &Parser::parseUInt64Key, &Parser::parseUInt64KeySection);
        expectNumber(row, row.i64, &Parser::parseInt64Key, &Parser::parseInt64KeySection);
        expectNumber(row, row.f64, &Parser::parseDoubleKey, &Parser::parseDoubleKeySection);
    }
    std::string text;
    EXPECT_EQ(parser.parseKeySection(0, nullptr, text), -1);

    // The header's own line has its end in it.
    for (const auto& [file, result] : {std::pair{"[Kamerasektion]\nAktivePort=5;\n", 0},
                                       {"[Kamerasektion]\r\nAktivePort=5;\n", -1},
                                       {"[Kamerasektion]\nAktivePort='Error';\n", -1},
                                       {"AktivePort=5;\n[Kamerasektion]\n", -1}}) {
        fill(file);
        int number = 77;
        EXPECT_EQ(Parser(nullptr, path(), true).parseIntKeyFromHeader("AktivePort", &number), result) << file;
        EXPECT_EQ(number, result == 0 ? 5 : 77);
    }
}

TEST_F(ConfigFile, IsKnownByItsNameAndByBeingReadable) {
    Fg_ConfigFileParser parser(nullptr, nullptr, false);
    for (const char* good : {"a.mcf", "a.mcf.bak", "x.mcfolder/a", ".mcf"})
        EXPECT_TRUE(parser.checkFileType(good)) << good;
    for (const char* bad : {"a.MCF", "amcf", "a.mc", "", static_cast<const char*>(nullptr)})
        EXPECT_FALSE(parser.checkFileType(bad)) << bad;

    const std::string fifo = in("fifo.mcf"), folder = in("folder.mcf"), none = in("none.mcf"),
                      other = in("a");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    ASSERT_EQ(mkdir(folder.c_str(), 0700), 0);
    fill("[Port A]\nk=1;\n");
    std::filesystem::copy(m_path, other);
    for (const std::string& there : {m_path, folder, other})
        EXPECT_TRUE(parser.checkFileExist(there.c_str())) << there;
    for (const char* bad : {none.c_str(), fifo.c_str(), "", static_cast<const char*>(nullptr)})
        EXPECT_FALSE(parser.checkFileExist(bad)) << bad;
    // What cannot be opened holds no key, and is not created.
    for (const std::string& bad : {none, fifo, folder, other}) {
        for (const bool readOnly : {true, false}) {
            std::string text;
            Fg_ConfigFileParser reader(nullptr, bad.c_str(), readOnly);
            EXPECT_EQ(reader.parseKey("[Port A]", "k", text), missing) << bad;
        }
    }
    EXPECT_FALSE(std::filesystem::exists(none));
}

TEST_F(ConfigFile, IsReadByParsersSideBySide) {
    std::atomic<int> wrong = 0;
    const auto work = [&](const std::string& name) {
        const std::string own = in(name + ".mcf");
        {
            Fg_ConfigFileParser writer(nullptr, nullptr, false);
            if (!writer.setSaveFile(own.c_str())) ++wrong;
            writer.writeConfigFileByPort(0);
            for (int i = 0; i < 100; ++i)
                writer.writeConfigFile("k" + std::to_string(i), name + std::to_string(i));
        }
        Fg_ConfigFileParser reader(nullptr, own.c_str(), true);
        std::string text;
        for (int i = 0; i < 5000; ++i) {
            const std::string number = std::to_string(i % 100);
            if (reader.parseKey("[Port A]", "k" + number, text) != 0 || text != name + number) ++wrong;
            if (reader.parseKeyFromLine("k" + number, text) != 0 || !text.starts_with(name)) ++wrong;
        }
    };
    std::thread first(work, "first"), second(work, "second");
    first.join();
    second.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(ConfigFile, MayHoldAnything) {
    std::mt19937 random(5);
    const std::string alphabet = "\n\n\nkj=;'[Port A]\0\r\xff"s;
    std::string garbage(20 << 20, '\0');
    for (char& byte : garbage)
        byte = alphabet[random() % alphabet.size()];
    for (const std::string& file :
         {garbage, "[Port A]" + garbage, std::string(20 << 20, 'k'), std::string(20 << 20, '\0'),
          "[Port A]\nk=" + std::string(20 << 20, '=')}) {
        fill(file);
        Fg_ConfigFileParser parser(nullptr, path(), true);
        for (const char* key : {"k", "j=", "", "Port"}) {
            std::string text, line;
            int number = 77;
            const int result = parser.parseKeySection(0, key, text);
            EXPECT_TRUE(result == 0 || (result == missing && text == "Error"));
            EXPECT_LE(text.size(), 255u);
            EXPECT_EQ(text.find('\0'), std::string::npos);
            EXPECT_EQ(parser.parseIntKeySection(0, key, &number),
                      result == 0 && text.find("Error") > 255 ? 0 : -1);
            EXPECT_TRUE(parser.parseKeyFromLine(key, line) == 0 || line == "Error");
        }
    }
}

} // namespace
