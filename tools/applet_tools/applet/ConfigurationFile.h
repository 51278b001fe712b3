/** Configuration files (.mcf) as appletctl reads them. */
#ifndef APPLET_TOOLS_APPLET_CONFIGURATIONFILE_H
#define APPLET_TOOLS_APPLET_CONFIGURATIONFILE_H

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

/** The keys and values that a person sees in a file. A load ends a text at its first = ; or ' and a number at the first
 *  character that it cannot use. So what is read here and what the applet holds after a load may differ, and
 *  that is a loss to be reported. */
class ConfigurationFile {
public:
    /** The first line of a key, which is the one that counts. */
    struct Line {
        std::string_view key;   /**< everything before the equals sign, blanks too */
        std::string_view value; /**< without quotes and semicolon */
        std::string_view text;  /**< of the whole line, with its end */
        std::size_t count = 1;  /**< lines of this key */
    };

    /** The keys of a section in the order of the file. It refers to the file's text. */
    class Section {
    public:
        class Iterator;

        explicit Section(std::string_view text) : m_text(text) {}
        /** Takes in the line that begins there. */
        void add(std::size_t begin);
        /** Nothing if there is no such key. */
        std::optional<Line> find(std::string_view key) const;
        /** The value of a key. */
        std::optional<std::string> value(std::string_view key) const;
        Iterator begin() const;
        Iterator end() const;
        std::size_t size() const { return m_places.size(); }

    private:
        /** Of a line in the text. */
        struct Place {
            std::uint64_t begin : 40;
            std::uint64_t count : 24; // of the lines of this key; the last number means that or more
        };
        Line line(const Place& place) const;
        std::string_view keyAt(std::size_t begin) const;
        /** Where the key is in m_slots, or would be. */
        std::size_t slotOf(std::string_view key) const;
        void grow();

        // A file may have millions of short lines: these two take less room than the lines themselves.
        std::string_view m_text;
        std::deque<Place> m_places;
        std::vector<std::uint32_t>
            m_slots; // by the hash of the key the number of its place, from 1; 0 is free
    };

    explicit ConfigurationFile(std::string text);

    /** Both throw UsageError when the file cannot be read. */
    static ConfigurationFile read(const std::string& path) { return ConfigurationFile(textOf(path)); }
    static std::string textOf(const std::string& path);

    const std::string& text() const { return *m_text; }
    /** Above the section of the port: what the file says of itself. */
    const Section& header() const { return m_header; }
    /** From that section on: values of parameters. */
    const Section& values() const { return m_values; }

    std::optional<std::string> value(std::string_view key) const { return m_values.value(key); }

    /** The file's text with other text in the place of one of its lines. */
    std::string textWith(const Line& line, std::string_view replacement) const;

private:
    std::shared_ptr<const std::string> m_text; // stays in its place when the object moves
    Section m_header, m_values;
};

/** Gives the lines one by one. */
class ConfigurationFile::Section::Iterator {
public:
    using value_type = Line;
    using difference_type = std::ptrdiff_t;

    Iterator() = default;
    Iterator(const Section& section, std::size_t number) : m_section(&section), m_number(number) {}
    Line operator*() const { return m_section->line(m_section->m_places[m_number]); }
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
    return {*this, m_places.size()};
}

/** The text of a file without lines of which a load takes nothing: those of further sections and keys that are not in
 *  `known`, and of repeated keys. A load of it does the same. A text without a complete header stays as it is. */
std::string textForLoad(std::string text, const ConfigurationFile& known);

/** Makes the applet load the file, and notes it. Returns the applet's code. */
int loadConfiguration(Instance& instance, const std::string& path);

/** What the applet would save now. Throws Failure. */
ConfigurationFile stateOf(Instance& instance);

/** The value of a file's text; nothing if it is none of the parameter's kind: a load knows neither
 *  symbols nor hexadecimal numbers. */
std::optional<Value> valueInFile(const Parameter& parameter, const std::string& text);

/** True when two texts of a file mean the same value. */
bool isSameValue(const Parameter& parameter, const std::string& a, const std::string& b);

/** The value with symbol and unit; a text that is no value in quotes. */
std::string fileValueText(const Parameter& parameter, const std::string& text);

} // namespace applet_tools

#endif
