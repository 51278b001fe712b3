#include "files/Fg_LutFileParser.h"

#include "files/text_tokens.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <type_traits>
#include <utility>

using text_tokens::contains;
using text_tokens::Decimal;
using text_tokens::missingKey;
using text_tokens::secondToken;

namespace {

constexpr char keySeparator = '=', elementSeparator = ',';
constexpr std::string_view keyDelimiters = "='";

constexpr std::uint64_t largestUsualTable = 1 << 20;
constexpr std::uint64_t shortestElementLine = 3; // bytes, as in "0,1"

Fg_LutFileParser::LineText zeroEnded(std::string_view text) {
    Fg_LutFileParser::LineText result{};
    std::copy_n(text.data(), std::min(text.size(), result.size() - 1), result.data());
    return result;
}

void convert(const char* text, std::uint32_t& element) {
    int value = 0;
    Fg_LutFileParser::getIntValue(text, &value);
    element = static_cast<std::uint32_t>(value);
}

void convert(const char* text, double& element) { Fg_LutFileParser::getDoubleValue(text, &element); }

/** Takes the number, of one to nine digits, at the beginning of a text. False if there is none. */
bool takeNumber(std::string_view& text, std::uint32_t& number) {
    constexpr std::size_t mostDigits = 9; // any such number fits
    std::size_t length = 0;
    number = 0;
    for (; length < text.size(); ++length) {
        const unsigned digit = static_cast<unsigned char>(text[length]) - unsigned{'0'};
        if (digit > 9) break;
        number = number * 10 + digit;
    }
    text.remove_prefix(length);
    return length > 0 && length <= mostDigits;
}

/** A line with the properties that the search for elements and sections needs. */
class ElementLine {
public:
    ElementLine(std::string_view text, char separator)
        : m_text(text)
        , m_separator(separator)
        , m_hasBracket(text.find('[') != std::string_view::npos) {
        if (!takeNumber(text, m_index) || !text.starts_with(separator)) return;
        text.remove_prefix(1);
        m_isRegular = takeNumber(text, m_value);
    }

    std::string_view text() const { return m_text; }
    char separator() const { return m_separator; }
    /** "17,42": index, separator and value at its beginning. */
    bool isRegular() const { return m_isRegular; }
    std::uint32_t index() const { return m_index; }
    std::uint32_t value() const { return m_value; }
    /** Usual sections start with a bracket, which is searched for once for all of them. */
    bool holds(std::string_view section) const {
        return (m_hasBracket || !section.starts_with('[')) && contains(m_text, section);
    }

private:
    std::string_view m_text;
    char m_separator;
    bool m_hasBracket, m_isRegular = false;
    std::uint32_t m_index = 0, m_value = 0;
};

/** Collects the elements of one table from the lines of a file. */
template <typename Element> class ElementCollector {
public:
    ElementCollector() = default;
    ElementCollector(std::span<Element> elements, std::string_view section)
        : m_elements(elements)
        , m_section(section) {}

    bool isFull() const { return m_index == m_elements.size(); }

    void take(const ElementLine& line) {
        if (isFull()) return;
        m_inside = m_inside || line.holds(m_section);
        if (m_inside && (takeRegular(line) || takeAny(line))) ++m_index;
    }

private:
    bool takeRegular(const ElementLine& line) {
        if (!std::is_integral_v<Element> || !line.isRegular() || line.index() != m_index) return false;
        m_elements[m_index] = static_cast<Element>(line.value());
        return true;
    }

    /** The index and the separator may be anywhere: "117,42" gives element 17. */
    bool takeAny(const ElementLine& line) {
        const Decimal index(static_cast<int>(m_index));
        const char separator = line.separator();
        if (!contains(line.text(), std::string(index.text()) += separator)) return false;
        const std::string_view value = secondToken(line.text(), {&separator, 1});
        if (value.empty()) return false;
        convert(zeroEnded(value).data(), m_elements[m_index]);
        return true;
    }

    std::span<Element> m_elements;
    std::string_view m_section;
    bool m_inside = false;
    std::size_t m_index = 0;
};

/** One pass over the file for all tables. */
template <typename Element>
void collect(const TextFile& file, char separator, std::span<ElementCollector<Element>> collectors) {
    LineReader lines(file);
    std::string_view text;
    while (!std::ranges::all_of(collectors, &ElementCollector<Element>::isFull) && lines.next(text)) {
        const ElementLine line(text, separator);
        for (ElementCollector<Element>& collector : collectors)
            collector.take(line);
    }
}

} // namespace

template <typename Table> struct Fg_LutFileParser::Section {
    const char* name;
    Table* table;
};

template <typename Table>
auto Fg_LutFileParser::colours(Table* red, Table* green, Table* blue) -> std::array<Section<Table>, 3> {
    return {{{"[red]", red}, {"[green]", green}, {"[blue]", blue}}};
}

bool Fg_LutFileParser::checkFileType(const char* /*path*/) const { return true; }

bool Fg_LutFileParser::checkFileExist(const char* path) const {
    return TextFile().open(path, TextFile::Mode::Read);
}

bool Fg_LutFileParser::setSaveFile(const char* path) { return m_file.open(path, TextFile::Mode::Write); }

bool Fg_LutFileParser::setOpenFile(const char* path, bool readOnly) {
    return checkFileExist(path) &&
           m_file.open(path, readOnly ? TextFile::Mode::Read : TextFile::Mode::Update);
}

// Writing

int Fg_LutFileParser::saveLutToFile(const char* path, const LookupTable_s* table) {
    // Two more line ends than in a file of three tables.
    return save(path, "# Lut data file v1.1\n\n", std::array{Section<const LookupTable_s>{"[gray]", table}});
}

int Fg_LutFileParser::saveLutToFile(const char* path, const LookupTable_s* red, const LookupTable_s* green,
                                    const LookupTable_s* blue) {
    return save(path, "# Lut data file v1.1", colours(red, green, blue));
}

int Fg_LutFileParser::saveLutToFile(const char* path, const KneeLookupTable_s* table, const char* section) {
    return save(path, "# KneeLut data file v1.0",
                std::array{Section<const KneeLookupTable_s>{section, table}});
}

int Fg_LutFileParser::saveLutToFile(const char* path, const KneeLookupTable_s* red,
                                    const KneeLookupTable_s* green, const KneeLookupTable_s* blue) {
    return save(path, "# KneeLut data file v1.1", colours(red, green, blue));
}

template <typename Table, std::size_t N>
int Fg_LutFileParser::save(const char* path, std::string_view comment,
                           const std::array<Section<Table>, N>& sections) {
    for (const auto& [name, table] : sections)
        if (name == nullptr || table == nullptr || (table->lut == nullptr && table->nrOfElements != 0))
            return -1;
    if (!setSaveFile(path)) return -1;
    writeLutFileHeader(comment);
    for (const auto& [name, table] : sections) {
        writeLutFileHeader("\n\n");
        writeLutFileHeader(name);
        writeLutFileHeader("\n\n");
        writeTable(*table);
    }
    return 0;
}

void Fg_LutFileParser::writeTable(const LookupTable_s& table) {
    writeIntKey("id", static_cast<int>(table.id), keySeparator);
    writeIntKey("nrOfElements", static_cast<int>(table.nrOfElements), keySeparator);
    writeIntKey("format", static_cast<int>(table.format), keySeparator);
    writeIntKey("number", static_cast<std::uint8_t>(table.number), keySeparator);
    for (std::uint32_t i = 0; i < table.nrOfElements; ++i)
        writeIntInt(static_cast<int>(i), static_cast<int>(table.lut[i]), elementSeparator);
}

void Fg_LutFileParser::writeTable(const KneeLookupTable_s& table) {
    for (std::uint32_t i = 0; i < table.nrOfElements; ++i)
        writeIntDouble(static_cast<int>(i), table.lut[i], elementSeparator);
}

int Fg_LutFileParser::saveMatrixToFile(const char* path, const char* header, const int* matrix, int count) {
    if (header == nullptr || (matrix == nullptr && count > 0) || !setSaveFile(path)) return -1;
    writeLutFileHeader(header);
    writeIntKey("nrOfElements", count, keySeparator);
    for (int i = 0; i < count; ++i)
        writeIntInt(i, matrix[i], elementSeparator);
    return 0;
}

void Fg_LutFileParser::writeLutFileHeader(std::string_view text) { m_file.write(text); }

void Fg_LutFileParser::writeLutFileValue(std::string_view key, std::string_view value, char separator) {
    constexpr std::string_view lineEnd = ";\n";
    constexpr std::size_t longest = 256;
    std::array<char, longest + lineEnd.size()> line;
    std::size_t length = 0;
    for (const std::string_view part : {key, std::string_view(&separator, 1), value})
        length += part.copy(line.data() + length, longest - length);
    length += lineEnd.copy(line.data() + length, lineEnd.size());
    m_file.write({line.data(), length});
}

void Fg_LutFileParser::writeIntKey(std::string_view key, int value, char separator) {
    writeLutFileValue(key, Decimal(value).text(), separator);
}

void Fg_LutFileParser::writeDoubleKey(std::string_view key, double value, char separator) {
    char text[32];
    std::snprintf(text, sizeof text, "%.*g", 12, value);
    writeLutFileValue(key, text, separator);
}

void Fg_LutFileParser::writeIntInt(int index, int value, char separator) {
    writeLutFileValue(Decimal(index).text(), Decimal(value).text(), separator);
}

void Fg_LutFileParser::writeIntDouble(int index, double value, char separator) {
    char text[256];
    std::snprintf(text, sizeof text, "%0.12f", value);
    writeLutFileValue(Decimal(index).text(), text, separator);
}

// Reading

int Fg_LutFileParser::getLutFromFile(const char* path, LookupTable_s* table, const char* section) {
    return load(path, std::array{Section<LookupTable_s>{section, table}});
}

int Fg_LutFileParser::getLutFromFile(const char* path, LookupTable_s* red, LookupTable_s* green,
                                     LookupTable_s* blue) {
    return load(path, colours(red, green, blue));
}

int Fg_LutFileParser::getLutFromFile(const char* path, KneeLookupTable_s* table, const char* section) {
    return load(path, std::array{Section<KneeLookupTable_s>{section, table}});
}

int Fg_LutFileParser::getLutFromFile(const char* path, KneeLookupTable_s* red, KneeLookupTable_s* green,
                                     KneeLookupTable_s* blue) {
    return load(path, colours(red, green, blue));
}

template <typename Table, std::size_t N>
int Fg_LutFileParser::load(const char* path, const std::array<Section<Table>, N>& sections) {
    for (const auto& [name, table] : sections)
        if (name == nullptr || table == nullptr) return -1;
    const auto clear = [](Table& table) { std::free(std::exchange(table.lut, nullptr)); };
    clear(*sections[0].table);
    if (!setOpenFile(path, true)) return -1;

    // As if the tables were read one by one: a failure ends the load and leaves later tables unchanged.
    using Element = std::remove_pointer_t<decltype(Table::lut)>;
    std::array<ElementCollector<Element>, N> collectors;
    std::size_t begun = 0;
    [[maybe_unused]] LookupTable_s keys;
    if constexpr (std::is_same_v<Table, LookupTable_s>) keys = readKeys();
    for (const auto& [name, table] : sections) {
        clear(*table);
        if constexpr (std::is_same_v<Table, LookupTable_s>) *table = keys;
        const std::size_t count = table->nrOfElements;
        table->lut = static_cast<Element*>(std::calloc(std::max<std::size_t>(count, 1), sizeof(Element)));
        if (table->lut == nullptr) break;
        collectors[begun++] = {{table->lut, count}, name};
    }
    collect<Element>(m_file, elementSeparator, std::span(collectors).first(begun));
    return begun == N ? 0 : -1;
}

/** The values of the file's first keys, in any section; without elements. */
LookupTable_s Fg_LutFileParser::readKeys() {
    const auto number = [this](std::string_view key) {
        int value = 0;
        parseIntKey(key, &value, keyDelimiters);
        return static_cast<std::uint32_t>(value);
    };
    const std::uint64_t bound = std::max(largestUsualTable, m_file.size() / shortestElementLine);
    const auto count = static_cast<std::uint32_t>(std::min<std::uint64_t>(number("nrOfElements"), bound));
    return {nullptr, number("id"), count, number("format"), number("number")};
}

int Fg_LutFileParser::getMatrixFromFile(const char* /*path*/, int* /*matrix*/, int /*count*/) { return -1; }

auto Fg_LutFileParser::parseKeyFromLine(std::string_view key, std::string_view delimiters) -> LineText {
    LineReader lines(m_file);
    std::string_view line;
    while (lines.next(line))
        if (contains(line, key)) return zeroEnded(secondToken(line, delimiters));
    return zeroEnded(missingKey);
}

int Fg_LutFileParser::parseIntKey(std::string_view key, int* value, std::string_view delimiters) {
    const LineText text = parseKeyFromLine(key, delimiters);
    getIntValue(text.data(), value);
    return text.data() == missingKey ? -1 : 0;
}

int Fg_LutFileParser::parseDoubleKey(std::string_view key, double* value, std::string_view delimiters) {
    const LineText text = parseKeyFromLine(key, delimiters);
    getDoubleValue(text.data(), value);
    return text.data() == missingKey ? -1 : 0;
}

int Fg_LutFileParser::parseIntInt(std::span<std::uint32_t> elements, char separator,
                                  std::string_view section) {
    ElementCollector<std::uint32_t> collector(elements, section);
    collect<std::uint32_t>(m_file, separator, {&collector, 1});
    return 0;
}

int Fg_LutFileParser::parseIntDouble(std::span<double> elements, char separator, std::string_view section) {
    ElementCollector<double> collector(elements, section);
    collect<double>(m_file, separator, {&collector, 1});
    return 0;
}

int Fg_LutFileParser::getIntValue(const char* text, int* value) {
    *value = static_cast<int>(std::strtol(text, nullptr, 10)); // the lowest 32 bits
    return 0;
}

int Fg_LutFileParser::getDoubleValue(const char* text, double* value) {
    *value = std::strtod(text, nullptr);
    return 0;
}
