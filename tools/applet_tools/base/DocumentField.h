/** A value of a JSON document with its path, for error messages. */
#ifndef APPLET_TOOLS_BASE_DOCUMENTFIELD_H
#define APPLET_TOOLS_BASE_DOCUMENTFIELD_H

#include "applet_tools/base/errors.h"
#include "applet_tools/base/words.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace applet_tools {

/** Parses a document and refuses duplicate names in an object. Throws UsageError with line and column. */
nlohmann::ordered_json parseDocument(const std::string& text);

/** A short form of a value for a message, without control characters: `an object`, `a list`, `25`, `"text"`. */
std::string shownValue(const nlohmann::ordered_json& value);

/** All members throw UsageError: "belt.encoder.step: found 25; expected a length, such as "25um"". */
class DocumentField {
public:
    /** The document must outlive the field. */
    DocumentField(const nlohmann::ordered_json& value, std::string path)
        : m_value(&value)
        , m_path(std::move(path)) {}

    const std::string& path() const { return m_path; }
    bool isArray() const { return m_value->is_array(); }
    bool isObject() const { return m_value->is_object(); }
    /** Its number; empty if it is not a number. */
    std::optional<double> asNumber() const {
        return m_value->is_number() ? std::optional(m_value->get<double>()) : std::nullopt;
    }

    /** Checks that it is an object and has only these members. */
    void requireObject(const Words& members) const;
    /** A member of an object, if it exists. */
    std::optional<DocumentField> find(const std::string& member) const;
    /** A required member; `expected` describes it in the message. */
    DocumentField at(const std::string& member, const std::string& expected) const;
    /** The elements of an array; it must not be longer than this. */
    std::vector<DocumentField> elements(const std::string& expected, std::size_t fewest,
                                        std::size_t most) const;
    /** The members of an object, in their order. */
    std::vector<std::pair<std::string, DocumentField>> members(const std::string& expected) const;

    std::string text(const std::string& expected) const;
    std::int64_t whole(std::int64_t least, std::int64_t most, const std::string& what) const;
    double number(double least, double most, const std::string& what) const;
    /** A text, converted by `read`; adds the path to its exception. */
    template <typename Read> auto read(const std::string& expected, Read read) const {
        const std::string word = text(expected);
        try {
            return read(word);
        } catch (const UsageError& error) {
            refuse(error.what());
        }
    }

    [[noreturn]] void refuse(const std::string& why) const;
    [[noreturn]] void refuseAs(const std::string& expected) const;

private:
    std::string pathOf(const std::string& member) const;

    const nlohmann::ordered_json* m_value;
    std::string m_path; // empty for the document itself
};

} // namespace applet_tools

#endif
