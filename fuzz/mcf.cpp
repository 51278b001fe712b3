// The input is a configuration file. The parser must find the same as a simple reader with the C library's
// functions, and the values found must read back the same from a file that they are written to.

#include "files/Fg_ConfigFileParser.h"
#include "invariants.h"
#include "support/Fg_Log.h"
#include "support/temporary_folder.h"

#include <cstring>
#include <optional>

namespace {

using Parser = Fg_ConfigFileParser;
using Lines = std::vector<std::string>;
using Text = std::optional<std::string>;

const std::string sections[] = {"[Kamerasektion]\n", "[Port A]"};
const std::string keys[] = {"k", "k2"};

Text plainValue(const Lines& lines, const std::string& section, const std::string& key) {
    bool isInside = false;
    for (std::string line : lines) {
        if (!isInside) {
            isInside = std::strstr(line.c_str(), section.c_str()) != nullptr;
            continue;
        }
        if (std::strncmp(line.c_str(), key.c_str(), key.size()) != 0 || line[key.size()] != '=') continue;
        std::strtok(line.data(), "=;");
        const char* token = std::strtok(nullptr, "=;'");
        const bool isEmpty = token == nullptr || *token == '\r' || *token == '\n';
        return isEmpty ? "" : token;
    }
    return {};
}

void plainNumber(const char* text, int& value) { value = std::atoi(text); }
void plainNumber(const char* text, double& value) { value = std::atof(text); }
void plainNumber(const char* text, std::uint64_t& value) { std::sscanf(text, "%lu", &value); }
void plainNumber(const char* text, std::int64_t& value) { std::sscanf(text, "%li", &value); }

template <typename T>
void checkNumber(Parser& parser, const std::string& section, const std::string& key, const Text& text,
                 int (Parser::*parse)(std::string_view, std::string_view, T*)) {
    T found{77}, plain{77};
    const bool isNumber = text && text->find("Error") == text->npos;
    if (isNumber) plainNumber(text->c_str(), plain);
    fuzz::require((parser.*parse)(section, key, &found) == (isNumber ? 0 : -1), "result of a number");
    fuzz::require(std::memcmp(&found, &plain, sizeof found) == 0, "a number, or the old value");
}

/** Compares all queries. True if the file has any of the keys. */
bool check(Parser& parser, const Lines& lines) {
    bool isAnyThere = false;
    std::string text;
    for (const std::string& key : keys) {
        const Text identity = fuzz::plainKey(lines, key.c_str());
        fuzz::require((parser.parseKeyFromLine(key, text) == 0) == identity.has_value(), "a key's line");
        fuzz::require(text == identity.value_or("Error"), "text of a key's line");
        if (!identity) continue; // then no section has the key
        for (const std::string& section : sections) {
            const Text value = plainValue(lines, section, key);
            isAnyThere = isAnyThere || value;
            fuzz::require((parser.parseKey(section, key, text) == 0) == value.has_value(), "a key");
            fuzz::require(text == value.value_or("Error"), "text of a key");
            checkNumber(parser, section, key, value, &Parser::parseIntKey);
            checkNumber(parser, section, key, value, &Parser::parseUInt64Key);
            checkNumber(parser, section, key, value, &Parser::parseInt64Key);
            checkNumber(parser, section, key, value, &Parser::parseDoubleKey);
        }
    }
    return isAnyThere;
}

/** Texts and numbers found in one section. */
struct Found {
    std::string texts[std::size(keys)];
    int i32 = 0;
    std::uint64_t u64 = 0;
    std::int64_t i64 = 0;

    explicit Found(Parser& parser, const char* kU64, const char* kI64, const char* kI32) {
        for (std::size_t i = 0; i < std::size(keys); ++i)
            if (parser.parseKeySection(0, keys[i].c_str(), texts[i]) != 0) texts[i].clear();
        parser.parseUInt64KeySection(0, kU64, &u64);
        parser.parseInt64KeySection(0, kI64, &i64);
        parser.parseIntKeySection(0, kI32, &i32);
    }
    bool operator==(const Found&) const = default;

    void write(const char* path) const {
        Parser parser(nullptr, nullptr, false);
        parser.setSaveFile(path);
        parser.writeConfigFileHeader();
        parser.writeConfigFilePortA();
        for (std::size_t i = 0; i < std::size(keys); ++i)
            parser.writeConfigFile(keys[i], texts[i]);
        parser.writeConfigFileUInt64Key("u64", u64);
        parser.writeConfigFileInt64Key("i64", i64);
        parser.writeConfigFileIntKey("i32", i32);
    }
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const support::TemporaryFolder folder;
    static fuzz::InputFile input(folder / "input.mcf");
    static const std::string written = folder / "written.mcf";
    static Fg_Log log("never-opened.log");

    input.fill(data, size);
    Parser parser(&log, input.path(), true);
    if (!check(parser, fuzz::linesOf(data, size)) || size % 8 != 0) return 0; // writing is slowest

    const Found found(parser, "k", "k", "k");
    for (const std::string& text : found.texts)
        if (text.size() > 240) return 0; // a truncated line does not read back the same
    found.write(written.c_str());
    Parser again(nullptr, written.c_str(), true);
    fuzz::require(Found(again, "u64", "i64", "i32") == found, "what was written comes back");
    return 0;
}
