#include "applet_tools/applet/files/ConfigurationFile.h"

#include "applet_tools/applet/Effort.h"
#include "applet_tools/applet/files/MemoryFile.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"

#include "vexo/fg_errors.h"
#include "vexo/fg_parameters.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <set>

namespace applet_tools {
namespace {

constexpr std::string_view portSection = "[Port A]";

/** The value in the text after the equals sign: 'text'; or number; */
std::string_view withoutMarks(std::string_view text) {
    if (text.starts_with('\'')) {
        const std::size_t quote = text.rfind('\'');
        return text.substr(1, (quote > 0 ? quote : text.find_last_not_of(';') + 1) - 1);
    }
    return trimmed(text.substr(0, text.find(';')));
}

/** The line at this position, with its line end. */
std::string_view lineAt(std::string_view text, std::size_t begin) {
    return text.substr(begin, std::min(text.find('\n', begin), text.size() - 1) + 1 - begin);
}

template <typename Integer> std::optional<Value> wholeInFile(const std::string& text) {
    const auto number = wholeNumber<Integer>(text);
    return number ? std::optional<Value>(*number) : std::nullopt;
}

/** A file stores unsigned numbers as signed ones. */
std::optional<Value> unsignedInFile(const std::string& text) {
    const auto number = wholeNumber<std::int32_t>(text);
    return number ? static_cast<std::uint32_t>(*number) : wholeInFile<std::uint32_t>(text);
}

} // namespace

ConfigurationFile::ConfigurationFile(std::string text)
    : m_text(std::make_shared<const std::string>(std::move(text)))
    , m_header(*m_text)
    , m_values(*m_text) {
    Section* section = &m_header;
    for (std::size_t begin = 0; begin < m_text->size();) {
        const std::string_view line = lineAt(*m_text, begin);
        if (line.find(portSection) != std::string_view::npos)
            section = &m_values;
        else if (line.find('=') != std::string_view::npos)
            section->add(begin);
        begin += line.size();
    }
}

ConfigurationFile ConfigurationFile::read(const std::string& path) {
    return ConfigurationFile(requiredTextOfFile(path));
}

void ConfigurationFile::Section::add(std::size_t begin) {
    if (m_entries.size() * 2 >= m_slots.size()) grow();
    std::uint32_t& number = m_slots[slotOf(keyAt(begin))];
    if (number != 0) {
        Entry& first = m_entries[number - 1];
        constexpr std::uint64_t mostCounted = (std::uint64_t{1} << 24) - 1;
        if (first.count < mostCounted) first.count = (first.count + 1) & mostCounted;
        return;
    }
    constexpr std::uint64_t positionBits = (std::uint64_t{1} << 40) - 1; // a terabyte
    m_entries.push_back({begin & positionBits, 1});
    number = static_cast<std::uint32_t>(m_entries.size());
}

std::string_view ConfigurationFile::Section::keyAt(std::size_t begin) const {
    return m_text.substr(begin, m_text.find('=', begin) - begin);
}

ConfigurationFile::Line ConfigurationFile::Section::line(const Entry& entry) const {
    const std::string_view line = lineAt(m_text, entry.begin);
    const std::string_view content = line.substr(0, line.size() - (line.ends_with('\n') ? 1 : 0));
    const std::size_t equals = content.find('=');
    return {content.substr(0, equals), withoutMarks(trimmed(content.substr(equals + 1))), line, entry.count};
}

std::size_t ConfigurationFile::Section::slotOf(std::string_view key) const {
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = std::hash<std::string_view>()(key) & mask;
    const auto isOther = [&](const Entry& entry) {
        const std::string_view line = m_text.substr(entry.begin, key.size() + 1);
        return !line.ends_with('=') || !line.starts_with(key);
    };
    while (m_slots[slot] != 0 && isOther(m_entries[m_slots[slot] - 1]))
        slot = (slot + 1) & mask;
    return slot;
}

void ConfigurationFile::Section::grow() {
    constexpr std::size_t fewest = 256; // a power of two, as are all sizes
    m_slots.assign(std::max(fewest, m_slots.size() * 2), 0);
    for (std::uint32_t number = 1; number <= m_entries.size(); ++number)
        m_slots[slotOf(keyAt(m_entries[number - 1].begin))] = number;
}

std::optional<ConfigurationFile::Line> ConfigurationFile::Section::find(std::string_view key) const {
    if (m_slots.empty()) return std::nullopt;
    const std::uint32_t number = m_slots[slotOf(key)];
    return number != 0 ? std::optional(line(m_entries[number - 1])) : std::nullopt;
}

std::optional<std::string> ConfigurationFile::Section::value(std::string_view key) const {
    const auto line = find(key);
    return line ? std::optional(std::string(line->value)) : std::nullopt;
}

std::string ConfigurationFile::textWith(const Line& line, std::string_view replacement) const {
    const auto begin = static_cast<std::size_t>(line.text.data() - m_text->data());
    std::string text;
    text.reserve(m_text->size() + replacement.size());
    return text.append(*m_text, 0, begin).append(replacement).append(*m_text, begin + line.text.size());
}

std::string textForLoad(std::string text, const ConfigurationFile& known) {
    const std::size_t section = text.find(portSection);
    if (section == std::string::npos) return text;
    std::string kept(text, 0, section + lineAt(text, section).size());
    if (kept.find(lineAt(known.text(), 0)) == std::string::npos) return text;
    for (const auto& line : known.header())
        if (kept.find(line.key) == std::string::npos) return text;
    std::set<std::string_view> seen;
    for (std::size_t begin = kept.size(); begin < text.size();) {
        const std::string_view line = lineAt(text, begin);
        begin += line.size();
        const std::string_view key = line.substr(0, line.find('='));
        const bool isRead = key.size() < line.size() && known.values().find(key) && seen.insert(key).second;
        if (isRead || line.size() > ConfigurationFile::longestLine) kept.append(line);
    }
    return kept;
}

std::string linesOfLoad(std::string text) {
    std::string lines;
    std::size_t copied = 0;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t length = lineAt(text, begin).size();
        const bool isLong = length > ConfigurationFile::longestLine;
        begin += isLong ? ConfigurationFile::longestLine : length;
        if (!isLong) continue;
        lines.append(text, copied, begin - copied).append(1, '\n');
        copied = begin;
    }
    return copied == 0 ? std::move(text) : std::move(lines.append(text, copied));
}

void requireConfigurationName(const std::string& path) {
    if (path.find(".mcf") == std::string::npos)
        throw UsageError(shownFile(path) +
                         " has no .mcf in its name, so a load refuses it: give it such a name");
}

int loadConfiguration(Instance& instance, const std::string& path) {
    ++effort().loads;
    const int code = instance.applet().Fg_loadConfig(instance.fg(), path.c_str());
    if (code == FG_ERR_FILE_TYPE) return code; // the file was not opened
    instance.sets().insert(FG_SHAFTENCODER_COMPENSATION_COUNT);
    LoadHistory& history = instance.loads();
    if (code == FG_OK) history = {};
    constexpr std::size_t most = 16, large = 1 << 16;
    auto text = textOfFile(path);
    if (!text || history.texts.size() >= most) return code;
    if (text->size() > large) text = textForLoad(std::move(*text), stateOf(instance));
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
    if (text.find_first_of("xX") != std::string::npos) return std::nullopt; // a load reads 0x800 as 0
    switch (parameter.kind()) {
    case REGISTER_KIND_UINT:
        return unsignedInFile(text);
    case REGISTER_KIND_ENUM: // not by its symbol
        return wholeInFile<std::int32_t>(text);
    case REGISTER_KIND_DOUBLE: // without a unit
        return floatingNumber(text);
    default:
        break;
    }
    try {
        return parseValue({&parameter}, text);
    } catch (const UsageError&) {
        return std::nullopt;
    }
}

std::optional<Value> valueOfLoad(const Parameter& parameter, const std::string& text) {
    return std::visit(
        [&](const auto& native) -> std::optional<Value> {
            using T = std::decay_t<decltype(native)>;
            if constexpr (std::is_same_v<T, std::string>) return text;
            if constexpr (std::is_same_v<T, double>) return std::strtod(text.c_str(), nullptr);
            if constexpr (std::is_integral_v<T>)
                return static_cast<T>(static_cast<std::int32_t>(std::strtol(text.c_str(), nullptr, 10)));
            return std::nullopt;
        },
        emptyValue({&parameter}));
}

std::string readingInWords(const Parameter& parameter, const std::string& text) {
    if (parameter.kind() == REGISTER_KIND_DOUBLE) return "a load reads decimal numbers with a point";
    const std::size_t digits = text.find_first_not_of("+-");
    const bool isWhole = digits <= 1 && text.find_first_not_of("0123456789", digits) == std::string::npos;
    return isWhole ? "a load takes the lowest 32 bits of a number, with a sign, and this one has more"
                   : "a load reads the whole decimal number at the beginning of a text, or 0 without one";
}

bool isSameValue(const Parameter& parameter, const std::string& a, const std::string& b) {
    const std::optional<Value> first = valueInFile(parameter, a);
    const std::optional<Value> second = valueInFile(parameter, b);
    return first && second ? *first == *second : a == b;
}

std::string fileValueText(const Parameter& parameter, const std::string& text) {
    const std::optional<Value> value = valueInFile(parameter, text);
    if (value && parameter.kind() != REGISTER_KIND_STRING) return valueWithUnit(parameter, *value);
    constexpr std::size_t mostBytes = 200;
    return quotedBeginning(text, mostBytes);
}

std::string fileValueWithReading(const Parameter& parameter, const std::string& text) {
    const auto read = valueInFile(parameter, text) ? std::nullopt : valueOfLoad(parameter, text);
    return fileValueText(parameter, text) +
           (read ? " (read as " + valueWithUnit(parameter, *read) + ")" : "");
}

} // namespace applet_tools
