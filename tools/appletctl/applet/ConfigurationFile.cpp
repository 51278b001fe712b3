#include "appletctl/applet/ConfigurationFile.h"

#include "appletctl/base/errors.h"
#include "appletctl/base/output.h"
#include "appletctl/base/text.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <unordered_map>
#include <utility>

namespace appletctl {
namespace {

constexpr std::string_view portSection = "[Port A]";
constexpr std::string_view extension = ".mcf";

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

/** The value of what stands behind the equals sign: 'text'; or number; */
std::string_view withoutMarks(std::string_view text) {
    const std::size_t quote = text.rfind('\'');
    if (text.starts_with('\'') && quote > 0) return text.substr(1, quote - 1);
    return trimmed(text.substr(0, text.find(';')));
}

std::optional<std::string> firstValue(const std::vector<ConfigurationFile::Line>& lines,
                                      std::string_view key) {
    const auto* line = ConfigurationFile::find(lines, key);
    return line != nullptr ? std::optional(line->value) : std::nullopt;
}

template <typename Integer> std::optional<Value> wholeInFile(const std::string& text) {
    const auto number = wholeNumber<Integer>(text);
    return number ? std::optional<Value>(*number) : std::nullopt;
}

/** Unsigned numbers stand in a file as signed ones. */
std::optional<Value> unsignedInFile(const std::string& text) {
    const auto number = wholeNumber<std::int32_t>(text);
    return number ? static_cast<std::uint32_t>(*number) : wholeInFile<std::uint32_t>(text);
}

} // namespace

ConfigurationFile::ConfigurationFile(std::string text) : m_text(std::move(text)) {
    std::vector<Line>* section = &m_header;
    std::unordered_map<std::string_view, std::size_t> places; // in the section, by key
    for (std::size_t begin = 0, end = 0; begin < m_text.size(); begin = end + 1) {
        end = std::min(m_text.find('\n', begin), m_text.size());
        const std::string_view line = std::string_view(m_text).substr(begin, end - begin);
        const std::size_t equals = line.find('=');
        if (line.find(portSection) != std::string_view::npos) {
            if (std::exchange(section, &m_values) == &m_header) places.clear();
            continue;
        }
        if (equals == std::string_view::npos) continue;
        const std::string_view key = line.substr(0, equals);
        const auto [place, isFirst] = places.try_emplace(key, section->size());
        if (isFirst)
            section->push_back({std::string(key), std::string(withoutMarks(trimmed(line.substr(equals + 1)))),
                                begin, end + 1 - begin});
        else
            ++(*section)[place->second].repeats;
    }
}

ConfigurationFile ConfigurationFile::read(const std::string& path) {
    auto text = textOfFile(path);
    if (!text) throw UsageError(inQuotes(toUtf8(path.c_str())) + " is no file that can be read");
    return ConfigurationFile(std::move(*text));
}

const ConfigurationFile::Line* ConfigurationFile::find(const std::vector<Line>& lines, std::string_view key) {
    const auto found =
        std::find_if(lines.begin(), lines.end(), [&](const Line& line) { return line.key == key; });
    return found != lines.end() ? &*found : nullptr;
}

std::optional<std::string> ConfigurationFile::headerValue(std::string_view key) const {
    return firstValue(m_header, key);
}

std::optional<std::string> ConfigurationFile::value(std::string_view key) const {
    return firstValue(m_values, key);
}

std::string ConfigurationFile::textWith(const Line& line, const std::string& replacement) const {
    return std::string(m_text).replace(line.begin, line.length, replacement);
}

std::optional<std::string> textOfFile(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return std::nullopt; // a FIFO would wait for a writer
    std::ifstream stream(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(stream), {}};
    return stream.is_open() && !stream.bad() ? std::optional(std::move(text)) : std::nullopt;
}

TemporaryFile::TemporaryFile() : m_path(std::filesystem::temp_directory_path() / "appletctl_XXXXXX.mcf") {
    const int descriptor = ::mkstemps(m_path.data(), static_cast<int>(extension.size()));
    if (descriptor < 0) throw Failure("no temporary file " + m_path + " can be made");
    ::close(descriptor);
}

TemporaryFile::~TemporaryFile() { ::unlink(m_path.c_str()); }

void TemporaryFile::write(const std::string& text) const { writeFile(m_path, text); }

ConfigurationFile stateOf(Instance& instance) {
    const TemporaryFile file;
    const int code = instance.applet().Fg_saveConfig(instance.fg(), file.path().c_str());
    if (code != FG_OK) throw Failure("the applet's state cannot be saved: " + codeInWords(code));
    return ConfigurationFile::read(file.path());
}

std::optional<Value> valueInFile(const Parameter& parameter, const std::string& text) {
    if (parameter.kind() == REGISTER_KIND_STRING) return text;
    if (text.find_first_of("xX") != std::string::npos) return std::nullopt; // to a load 0x800 is 0
    switch (parameter.kind()) {
    case REGISTER_KIND_UINT:
        return unsignedInFile(text);
    case REGISTER_KIND_ENUM: // not by its symbol
        return wholeInFile<std::int32_t>(text);
    default:
        break;
    }
    try {
        return parseValue({&parameter}, text);
    } catch (const UsageError&) {
        return std::nullopt;
    }
}

bool isSameValue(const Parameter& parameter, const std::string& a, const std::string& b) {
    const std::optional<Value> first = valueInFile(parameter, a);
    const std::optional<Value> second = valueInFile(parameter, b);
    return first && second ? *first == *second : a == b;
}

std::string fileValueText(const Parameter& parameter, const std::string& text) {
    const std::optional<Value> value = valueInFile(parameter, text);
    return value ? valueWithUnit(parameter, *value) : inQuotes(toUtf8(text.c_str()));
}

} // namespace appletctl
