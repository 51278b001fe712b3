/** Configuration files (.mcf) as appletctl reads them. */
#ifndef APPLETCTL_APPLET_CONFIGURATIONFILE_H
#define APPLETCTL_APPLET_CONFIGURATIONFILE_H

#include "appletctl/applet/Instance.h"
#include "appletctl/applet/values.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace appletctl {

/** The keys and values that a person sees in a file. A load ends a text at its first = ; or ' and a number at the first
 *  character that it cannot use. So what is read here and what the applet holds after a load may differ, and
 *  that is a loss to be told. */
class ConfigurationFile {
public:
    struct Line {
        std::string key;           /**< all that stands before the equals sign, blanks too */
        std::string value;         /**< without quotes and semicolon */
        std::size_t begin, length; /**< of the line in the text */
        std::size_t repeats = 0;   /**< further lines of the key, which are not kept */
    };

    explicit ConfigurationFile(std::string text);

    /** Throws UsageError, with the reason, when the file cannot be read. */
    static ConfigurationFile read(const std::string& path);

    const std::string& text() const { return m_text; }
    /** Above the section of the port: what the file says of itself. */
    const std::vector<Line>& header() const { return m_header; }
    /** From that section on: values of parameters. */
    const std::vector<Line>& values() const { return m_values; }

    /** The first line of a key; null if there is none. */
    static const Line* find(const std::vector<Line>& lines, std::string_view key);

    /** The value of a key's first line. */
    std::optional<std::string> headerValue(std::string_view key) const;
    std::optional<std::string> value(std::string_view key) const;

    /** The file's text with other text in the place of one of its lines. */
    std::string textWith(const Line& line, const std::string& replacement) const;

private:
    std::string m_text;
    std::vector<Line> m_header, m_values;
};

/** The text of a regular file; nothing where there is none that can be read. */
std::optional<std::string> textOfFile(const std::string& path);

/** A .mcf file that is gone with the object. Throws Failure when it cannot be made or written. */
class TemporaryFile {
public:
    TemporaryFile();
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string& path() const { return m_path; }
    void write(const std::string& text) const;

private:
    std::string m_path;
};

/** What the applet would save now. */
ConfigurationFile stateOf(Instance& instance);

/** The value that a file's text stands for; nothing if it is none of the parameter's kind: a load knows neither
 *  symbols nor hexadecimal numbers. */
std::optional<Value> valueInFile(const Parameter& parameter, const std::string& text);

/** True when two texts of a file stand for the same value. */
bool isSameValue(const Parameter& parameter, const std::string& a, const std::string& b);

/** The value with symbol and unit; a text that is no value in quotes. */
std::string fileValueText(const Parameter& parameter, const std::string& text);

} // namespace appletctl

#endif
