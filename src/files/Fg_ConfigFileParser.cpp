#include "files/Fg_ConfigFileParser.h"

#include "files/LineReader.h"
#include "files/text_tokens.h"
#include "support/Fg_Log.h"
#include "vexo/fg_errors.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

using text_tokens::contains;
using text_tokens::Decimal;
using text_tokens::missingKey;
using text_tokens::secondToken;
using text_tokens::takeToken;

namespace {

constexpr std::string_view extension = ".mcf";
constexpr std::string_view headerSection = "[Kamerasektion]\n";
constexpr std::string_view versionLine = "\nConfigFileVersion=2.0;\n";

constexpr const char* typeOk = "File type ok";
constexpr const char* typeNotOk = "File type not ok";

/** True for the line of a key: "KEY=". */
bool isLineOf(std::string_view line, std::string_view key) {
    return line.size() > key.size() && line[key.size()] == '=' && line.starts_with(key);
}

/** Reads up to and including the section's own line. False if there is none. */
bool skipToSection(LineReader& lines, std::string_view section) {
    std::string_view line;
    while (lines.next(line))
        if (contains(line, section)) return true;
    return false;
}

/** A copy that is valid as long as the memory. */
std::string_view copyIn(std::pmr::memory_resource& memory, std::string_view text) {
    char* const copy = static_cast<char*>(memory.allocate(text.size(), alignof(char)));
    std::memcpy(copy, text.data(), text.size());
    return {copy, text.size()};
}

} // namespace

Fg_ConfigFileParser::Fg_ConfigFileParser(Fg_Log* log, const char* path, bool readOnly) : m_log(log) {
    func("Fg_ConfigFileParser::Fg_ConfigFileParser(char * filename)");
    if (!checkFileType(path) || !checkFileExist(path)) return;
    m_file.open(path, readOnly ? TextFile::Mode::Read : TextFile::Mode::Update);
}

Fg_ConfigFileParser::~Fg_ConfigFileParser() { func("Fg_ConfigFileParser::~Fg_ConfigFileParser()"); }

void Fg_ConfigFileParser::func(const char* name) const {
    if (m_log != nullptr) m_log->Func(name);
}

bool Fg_ConfigFileParser::checkFileType(const char* path) const {
    if (path == nullptr) return false;
    const bool isOk = contains(path, extension);
    func("Fg_ConfigFileParser::checkFileType");
    func(isOk ? typeOk : typeNotOk);
    return isOk;
}

bool Fg_ConfigFileParser::checkFileExist(const char* path) const {
    func("Fg_ConfigFileParser::checkFileExist");
    const bool exists = TextFile().open(path, TextFile::Mode::Read);
    if (m_log != nullptr) m_log->Info(exists ? "Config File exist" : "Config File don't exist");
    return exists;
}

// ---- Writing

bool Fg_ConfigFileParser::setSaveFile(const char* path) {
    func("Fg_ConfigFileParser::setSaveFile");
    if (!checkFileType(path)) {
        if (m_log != nullptr) m_log->Error("Config File is Invalid");
        return false;
    }
    if (!m_file.open(path, TextFile::Mode::Write)) {
        if (m_log != nullptr) m_log->Error("Config File: fopen failed");
        return false;
    }
    if (m_log != nullptr) m_log->Info("Config File is valid");
    return true;
}

void Fg_ConfigFileParser::writeConfigFileHeader() {
    func("Fg_ConfigFileParser::writeConfigFileHeader");
    m_file.write(headerSection);
    m_file.write(versionLine);
}

void Fg_ConfigFileParser::writeConfigFilePortA() { writeConfigFileByPort(0); }

void Fg_ConfigFileParser::writeConfigFilePortB() { writeConfigFileByPort(1); }

void Fg_ConfigFileParser::writeConfigFileByPort(int port) { m_file.write("\n" + getPortString(port) + "\n"); }

void Fg_ConfigFileParser::writeConfigFile(std::string_view key, std::string_view text) {
    func("Fg_ConfigFileParser::writeConfigFile");
    m_file.write(m_line.assign(key).append("='").append(text).append("';\n"));
}

void Fg_ConfigFileParser::writeConfigFileValue(std::string_view key, std::string_view text) {
    func("Fg_ConfigFileParser::writeConfigFileValue");
    m_file.write(m_line.assign(key).append("=").append(text).append(";\n"));
}

void Fg_ConfigFileParser::writeConfigFileIntKey(std::string_view key, int value) {
    func("Fg_ConfigFileParser::writeConfigFileIntKey");
    writeConfigFileValue(key, Decimal(value).text());
}

void Fg_ConfigFileParser::writeConfigFileUInt64Key(std::string_view key, std::uint64_t value) {
    func("Fg_ConfigFileParser::writeConfigFileUInt64Key");
    writeConfigFileValue(key, Decimal(value).text());
}

// Some functions log the name of a neighbour or a misspelt name. The names are kept, since logs are compared.
void Fg_ConfigFileParser::writeConfigFileInt64Key(std::string_view key, std::int64_t value) {
    func("Fg_ConfigFileParser::writeConfigFileUInt64Key");
    writeConfigFileValue(key, Decimal(value).text());
}

void Fg_ConfigFileParser::writeConfigFileDoubleKey(std::string_view key, double value) {
    func("Fg_ConfigFileParser::wrtiteConfigFileDoubleKey");
    char text[32];
    std::snprintf(text, sizeof text, "%.12g", value);
    writeConfigFileValue(key, text);
}

// ---- Reading

std::string Fg_ConfigFileParser::getPortString(int port) {
    return std::string("[Port ") + static_cast<char>('A' + port) + "]";
}

void Fg_ConfigFileParser::prepareKeys(std::string_view section, std::span<const std::string_view> keys) {
    m_preparedLines.reserve(keys.size());
    m_preparedSection = section;
    for (const std::string_view key : keys)
        m_preparedLines.try_emplace(key);
    LineReader lines(m_file);
    if (!skipToSection(lines, section)) return;
    std::size_t wanted = m_preparedLines.size();
    std::string_view line;
    while (wanted != 0 && lines.next(line)) {
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) continue;
        const auto prepared = m_preparedLines.find(line.substr(0, equals));
        if (prepared == m_preparedLines.end() || prepared->second) continue;
        prepared->second = copyIn(m_preparedMemory, line);
        --wanted;
    }
}

/** The first line of a key after the section's own line. Valid until the next search. */
std::optional<std::string_view> Fg_ConfigFileParser::findLine(std::string_view section,
                                                              std::string_view key) {
    if (section == m_preparedSection) {
        const auto prepared = m_preparedLines.find(key);
        if (prepared != m_preparedLines.end()) return prepared->second;
    }
    LineReader lines(m_file);
    if (!skipToSection(lines, section)) return {};
    std::string_view line;
    while (lines.next(line))
        if (isLineOf(line, key)) return m_line = line;
    return {};
}

int Fg_ConfigFileParser::parseKeyFromLine(std::string_view key, std::string& out) {
    func("Fg_ConfigFileParser::parseKeyFromLine");
    LineReader lines(m_file);
    std::string_view line;
    while (lines.next(line)) {
        if (!contains(line, key)) continue;
        out = secondToken(line, "='");
        return 0;
    }
    out = missingKey;
    return missing;
}

int Fg_ConfigFileParser::parseKey(std::string_view section, std::string_view key, std::string& out) {
    func("Fg_ConfigFileParser::parseKey");
    const std::optional<std::string_view> line = findLine(section, key);
    if (!line) {
        out = missingKey;
        return missing;
    }
    std::string_view value = line->substr(key.size() + 1);
    out = takeToken(value, "=;'");
    // A line end is part of the value, unless the value is otherwise empty.
    if (out.starts_with('\r') || out.starts_with('\n')) out.clear();
    return 0;
}

template <typename T>
int Fg_ConfigFileParser::parseNumber(std::string_view section, std::string_view key, T* value,
                                     int (Fg_ConfigFileParser::*convert)(const char*, T*) const) {
    std::string text;
    parseKey(section, key, text);
    if (contains(text, missingKey)) return FG_ERR_PARSER;
    return (this->*convert)(text.c_str(), value);
}

int Fg_ConfigFileParser::parseIntKey(std::string_view section, std::string_view key, int* value) {
    func("Fg_ConfigFileParser::parseIntKey");
    return parseNumber(section, key, value, &Fg_ConfigFileParser::getIntValue);
}

int Fg_ConfigFileParser::parseUInt64Key(std::string_view section, std::string_view key,
                                        std::uint64_t* value) {
    func("Fg_ConfigFileParser::parseIntKey");
    return parseNumber(section, key, value, &Fg_ConfigFileParser::getUInt64Value);
}

int Fg_ConfigFileParser::parseInt64Key(std::string_view section, std::string_view key, std::int64_t* value) {
    func("Fg_ConfigFileParser::parseIntKey");
    return parseNumber(section, key, value, &Fg_ConfigFileParser::getInt64Value);
}

int Fg_ConfigFileParser::parseDoubleKey(std::string_view section, std::string_view key, double* value) {
    func("Fg_ConfigFileParser::parseDoubleKey");
    return parseNumber(section, key, value, &Fg_ConfigFileParser::getDoubleValue);
}

int Fg_ConfigFileParser::parseIntKeyFromHeader(std::string_view key, int* value) {
    func("Fg_ConfigFileParser::parseIntKeyFromHeader");
    return parseIntKey(headerSection, key, value);
}

int Fg_ConfigFileParser::parseKeySection(int port, const char* key, std::string& out) {
    return key != nullptr ? parseKey(getPortString(port), key, out) : FG_ERR_PARSER;
}

int Fg_ConfigFileParser::parseIntKeySection(int port, const char* key, int* value) {
    return key != nullptr ? parseIntKey(getPortString(port), key, value) : FG_ERR_PARSER;
}

int Fg_ConfigFileParser::parseUInt64KeySection(int port, const char* key, std::uint64_t* value) {
    return key != nullptr ? parseUInt64Key(getPortString(port), key, value) : FG_ERR_PARSER;
}

int Fg_ConfigFileParser::parseInt64KeySection(int port, const char* key, std::int64_t* value) {
    return key != nullptr ? parseInt64Key(getPortString(port), key, value) : FG_ERR_PARSER;
}

int Fg_ConfigFileParser::parseDoubleKeySection(int port, const char* key, double* value) {
    return key != nullptr ? parseDoubleKey(getPortString(port), key, value) : FG_ERR_PARSER;
}

int Fg_ConfigFileParser::getIntValue(const char* text, int* value) const {
    func("Fg_ConfigFileParser::getIntValue");
    *value = static_cast<int>(std::strtol(text, nullptr, 10)); // the lowest 32 bits
    return 0;
}

int Fg_ConfigFileParser::getUInt64Value(const char* text, std::uint64_t* value) const {
    func("Fg_ConfigFileParser::getIntValue");
    char* end = nullptr;
    const std::uint64_t number = std::strtoul(text, &end, 10);
    if (end != text) *value = number;
    return 0;
}

int Fg_ConfigFileParser::getInt64Value(const char* text, std::int64_t* value) const {
    func("Fg_ConfigFileParser::getIntValue");
    char* end = nullptr;
    const std::int64_t number = std::strtol(text, &end, 0); // hexadecimal and octal too
    if (end != text) *value = number;
    return 0;
}

int Fg_ConfigFileParser::getDoubleValue(const char* text, double* value) const {
    func("Fg_ConfigFileParser::getDoubleValue");
    *value = std::strtod(text, nullptr);
    return 0;
}
