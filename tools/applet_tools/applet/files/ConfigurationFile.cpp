#include "applet_tools/applet/files/ConfigurationFile.h"

#include "applet_tools/applet/Effort.h"
#include "applet_tools/applet/files/MemoryFile.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <functional>

namespace applet_tools {
namespace {

constexpr std::string_view portSection = "[Port A]";

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view unprinted = " \t\r";
    text.remove_prefix(std::min(text.find_first_not_of(unprinted), text.size()));
    return text.substr(0, text.find_last_not_of(unprinted) + 1);
}

/** The value of the text after the equals sign: 'text'; or number; */
std::string_view withoutMarks(std::string_view text) {
    const std::size_t quote = text.rfind('\'');
    if (text.starts_with('\'') && quote > 0) return text.substr(1, quote - 1);
    return trimmed(text.substr(0, text.find(';')));
}

template <typename Integer> std::optional<Value> wholeInFile(const std::string& text) {
    const auto number = wholeNumber<Integer>(text);
    return number ? std::optional<Value>(*number) : std::nullopt;
}

/** A file has unsigned numbers as signed ones. */
std::optional<Value> unsignedInFile(const std::string& text) {
    const auto number = wholeNumber<std::int32_t>(text);
    return number ? static_cast<std::uint32_t>(*number) : wholeInFile<std::uint32_t>(text);
}

} // namespace

ConfigurationFile::ConfigurationFile(std::string text)
    : m_text(std::make_shared<const std::string>(std::move(text))) {
    Section* section = &m_header;
    for (std::string_view rest = *m_text; !rest.empty();) {
        const std::size_t length = std::min(rest.find('\n'), rest.size() - 1) + 1;
        const std::string_view line = rest.substr(0, length);
        rest.remove_prefix(length);
        const std::string_view content = line.ends_with('\n') ? line.substr(0, length - 1) : line;
        const std::size_t equals = content.find('=');
        if (content.find(portSection) != std::string_view::npos)
            section = &m_values;
        else if (equals != std::string_view::npos)
            section->add(
                {content.substr(0, equals), withoutMarks(trimmed(content.substr(equals + 1))), line});
    }
}

ConfigurationFile ConfigurationFile::read(const std::string& path) {
    auto text = textOfFile(path);
    if (!text) throw UsageError(inQuotes(toUtf8(path.c_str())) + " is no file that can be read");
    return ConfigurationFile(std::move(*text));
}

void ConfigurationFile::Section::add(const Line& line) {
    if (m_lines.size() * 2 >= m_slots.size()) grow();
    std::uint32_t& number = m_slots[slotOf(line.key)];
    if (number != 0) {
        ++m_lines[number - 1].count;
        return;
    }
    m_lines.push_back(line);
    number = static_cast<std::uint32_t>(m_lines.size());
}

std::size_t ConfigurationFile::Section::slotOf(std::string_view key) const {
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = std::hash<std::string_view>()(key) & mask;
    while (m_slots[slot] != 0 && m_lines[m_slots[slot] - 1].key != key)
        slot = (slot + 1) & mask;
    return slot;
}

void ConfigurationFile::Section::grow() {
    constexpr std::size_t fewest = 256; // a power of two, as all sizes are
    m_slots.assign(std::max(fewest, m_slots.size() * 2), 0);
    for (std::uint32_t number = 1; number <= m_lines.size(); ++number)
        m_slots[slotOf(m_lines[number - 1].key)] = number;
}

const ConfigurationFile::Line* ConfigurationFile::Section::find(std::string_view key) const {
    if (m_slots.empty()) return nullptr;
    const std::uint32_t number = m_slots[slotOf(key)];
    return number != 0 ? &m_lines[number - 1] : nullptr;
}

std::optional<std::string> ConfigurationFile::Section::value(std::string_view key) const {
    const Line* line = find(key);
    return line != nullptr ? std::optional(std::string(line->value)) : std::nullopt;
}

std::string ConfigurationFile::textWith(const Line& line, std::string_view replacement) const {
    const auto begin = static_cast<std::size_t>(line.text.data() - m_text->data());
    std::string text;
    text.reserve(m_text->size() + replacement.size());
    return text.append(*m_text, 0, begin).append(replacement).append(*m_text, begin + line.text.size());
}

std::string ConfigurationFile::textOfValues() const {
    const std::size_t begin =
        m_header.size() == 0 ? 0 : static_cast<std::size_t>((*m_header.begin()).text.data() - m_text->data());
    std::string text(*m_text, 0, begin);
    for (const Line& line : m_header)
        text.append(line.text);
    text.append("\n").append(portSection).append("\n");
    for (const Line& line : m_values)
        text.append(line.text);
    return text;
}

int loadConfiguration(Instance& instance, const std::string& path) {
    ++effort().loads;
    const int code = instance.applet().Fg_loadConfig(instance.fg(), path.c_str());
    if (code == FG_ERR_FILE_TYPE) return code; // it was not opened
    LoadHistory& history = instance.loads();
    if (code == FG_OK) history = {};
    constexpr std::size_t most = 16;
    if (auto text = textOfFile(path); text && history.texts.size() < most)
        history.texts.push_back(std::move(*text));
    return code;
}

ConfigurationFile stateOf(Instance& instance) {
    const MemoryFile file;
    const int code = instance.applet().Fg_saveConfig(instance.fg(), file.configurationPath().c_str());
    if (code != FG_OK) throw Failure("the applet's state cannot be saved: " + codeInWords(code));
    return ConfigurationFile(file.text());
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
    constexpr std::size_t mostBytes = 200;
    return shortened(value ? valueWithUnit(parameter, *value) : inQuotes(toUtf8(text.c_str())), mostBytes);
}

} // namespace applet_tools
