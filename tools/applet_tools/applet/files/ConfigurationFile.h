/** Configuration files (.mcf), with the keys and values as a user sees them. */
#ifndef APPLET_TOOLS_APPLET_FILES_CONFIGURATIONFILE_H
#define APPLET_TOOLS_APPLET_FILES_CONFIGURATIONFILE_H

#include "applet_tools/applet/Instance.h"
#include "applet_tools/applet/values.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace applet_tools {

/** The keys and values of a file. A load ends a text at its first = ; or ' and a number at the first
 *  character that does not belong to it. So these values and those that the applet holds after a load may
 *  differ; such a difference is reported as a loss. */
class ConfigurationFile {
public:
    /** A load reads the rest of a line with more bytes as further lines. */
    static constexpr std::size_t longestLine = 255;

    /** The first line of a key; a load ignores the others. */
    struct Line {
        std::string_view key;   /**< everything before the equals sign, including blanks */
        std::string_view value; /**< without quotes and semicolon */
        std::string_view text;  /**< the whole line with its line end */
        std::size_t count = 1;  /**< number of lines with this key */
    };

    /** The keys of a section in file order. Refers to the file's text. */
    class Section {
    public:
        class Iterator;

        explicit Section(std::string_view text) : m_text(text) {}
        /** Adds the line at this position. */
        void add(std::size_t begin);
        /** The first line of the key, if there is one. */
        std::optional<Line> find(std::string_view key) const;
        /** The value of a key. */
        std::optional<std::string> value(std::string_view key) const;
        Iterator begin() const;
        Iterator end() const;
        std::size_t size() const { return m_entries.size(); }

    private:
        /** Position of a line in the text. */
        struct Entry {
            std::uint64_t begin : 40;
            std::uint64_t count : 24; // lines with this key; saturates
        };
        Line line(const Entry& entry) const;
        std::string_view keyAt(std::size_t begin) const;
        /** The index of the key's slot in m_slots, or of the slot for it. */
        std::size_t slotOf(std::string_view key) const;
        void grow();

        // A file may have millions of short lines: these two need less memory than the lines themselves.
        std::string_view m_text;
        std::deque<Entry> m_entries;
        std::vector<std::uint32_t> m_slots; // hash table of indices into m_entries, plus one; 0 is free
    };

    explicit ConfigurationFile(std::string text);

    /** Throws UsageError when the file cannot be read. */
    static ConfigurationFile read(const std::string& path);

    const std::string& text() const { return *m_text; }
    /** The section above that of the port: information on the file itself. */
    const Section& header() const { return m_header; }
    /** From the port's section on: parameter values. */
    const Section& values() const { return m_values; }

    std::optional<std::string> value(std::string_view key) const { return m_values.value(key); }

    /** The file's text with one line replaced. */
    std::string textWith(const Line& line, std::string_view replacement) const;

private:
    std::shared_ptr<const std::string> m_text; // keeps its address when the object moves
    Section m_header, m_values;
};

/** Iterates over the lines. */
class ConfigurationFile::Section::Iterator {
public:
    using value_type = Line;
    using difference_type = std::ptrdiff_t;

    Iterator() = default;
    Iterator(const Section& section, std::size_t number) : m_section(&section), m_number(number) {}
    Line operator*() const { return m_section->line(m_section->m_entries[m_number]); }
    Iterator& operator++() {
        ++m_number;
        return *this;
    }
    Iterator operator++(int) { return {*m_section, m_number++}; }
    bool operator==(const Iterator&) const = default;

private:
    const Section* m_section = nullptr;
    std::size_t m_number = 0;
};

inline ConfigurationFile::Section::Iterator ConfigurationFile::Section::begin() const { return {*this, 0}; }
inline ConfigurationFile::Section::Iterator ConfigurationFile::Section::end() const {
    return {*this, m_entries.size()};
}

/** The text without lines that a load ignores: those of further sections, of keys that are not in `known`, and
 *  repeated keys. A load of it has the same effect. A text without a complete header is not changed. */
std::string textForLoad(std::string text, const ConfigurationFile& known);

/** The text with each line that is too long for a load broken into the lines that a load reads. */
std::string linesOfLoad(std::string text);

/** Throws UsageError if a load would refuse a file of that name. */
void requireConfigurationName(const std::string& path);

/** Makes the applet load the file, and records the load. Returns the applet's code. */
int loadConfiguration(Instance& instance, const std::string& path);

/** The text that the applet would save now. Throws Failure. */
ConfigurationFile stateOf(Instance& instance);

/** The value of a file's text; empty if the text is not a value of the parameter's kind. A load knows neither
 *  symbols nor hexadecimal numbers. */
std::optional<Value> valueInFile(const Parameter& parameter, const std::string& text);

/** The value that a load makes of any text: the whole decimal number at its beginning, in 32 bits with a sign, or the
 *  decimal number with a point; zero where it begins with no number. Empty for an array. */
std::optional<Value> valueOfLoad(const Parameter& parameter, const std::string& text);

/** Why a load reads another value than the text shows, for a text without valueInFile. */
std::string readingInWords(const Parameter& parameter, const std::string& text);

/** True when two texts of a file mean the same value. */
bool isSameValue(const Parameter& parameter, const std::string& a, const std::string& b);

/** The value with symbol and unit; a text that is not a value is quoted. */
std::string fileValueText(const Parameter& parameter, const std::string& text);

/** The same, with the number that a load reads from a text that is not a value: '"0x800" (read as 0 pixel)'. */
std::string fileValueWithReading(const Parameter& parameter, const std::string& text);

} // namespace applet_tools

#endif
