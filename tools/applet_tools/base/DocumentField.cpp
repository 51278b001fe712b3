#include "applet_tools/base/DocumentField.h"

#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace applet_tools {
namespace {

using Document = nlohmann::ordered_json;

constexpr int deepest = 16; // nesting of objects and arrays

/** "line 3, column 5" for a byte offset. */
std::string positionIn(const std::string& text, std::size_t byte) {
    const std::string before = text.substr(0, byte > 0 ? byte - 1 : 0);
    const auto line = std::ranges::count(before, '\n') + 1;
    const std::size_t begin = before.rfind('\n');
    const std::size_t column = before.size() - (begin == std::string::npos ? 0 : begin + 1) + 1;
    return "line " + numberText(line) + ", column " + numberText(column);
}

/** Refuses documents that the library accepts: with duplicate names, or very deep ones. Knows the path of the value
 *  that is read. */
class Watcher {
public:
    bool operator()(int depth, Document::parse_event_t event, Document& parsed) {
        using Event = Document::parse_event_t;
        if (depth > deepest)
            throw UsageError("it has more than " + numberText(deepest) + " levels of objects and lists");
        if (event == Event::object_start || event == Event::array_start)
            m_open.push_back({.isArray = event == Event::array_start});
        if (event == Event::object_end || event == Event::array_end) m_open.pop_back();
        if (event == Event::key || (event == Event::value && parsed.is_string()))
            requireWhole(parsed.get_ref<const std::string&>());
        if (event == Event::key) enter(parsed.get<std::string>());
        const bool isValue = event == Event::value || event == Event::object_end || event == Event::array_end;
        if (isValue && !m_open.empty()) ++m_open.back().count;
        return true;
    }
    /** "objects[2].place"; empty for the document itself. */
    std::string path() const {
        std::string path;
        for (const Level& level : m_open)
            path += level.isArray ? "[" + numberText(level.count) + "]"
                                  : (path.empty() ? "" : ".") + printable(level.name);
        return path;
    }

private:
    /** An object or an array that is open. */
    struct Level {
        bool isArray;
        std::size_t count = 0; /**< of values before this one */
        std::string name{};    /**< of the value in an object */
        std::set<std::string> names{};
    };

    /** Refuses a text that would be cut: the applet and the system end one at a NUL. */
    void requireWhole(const std::string& text) const {
        if (text.find('\0') == std::string::npos) return;
        const std::string place = path();
        throw UsageError(place + (place.empty() ? "" : ": ") + "the text " + inQuotes(printable(text)) +
                         " has a NUL character, where it would end");
    }

    void enter(const std::string& name) {
        Level& level = m_open.back();
        level.name = name;
        if (!level.names.insert(name).second)
            throw UsageError("the name " + inQuotes(name) +
                             " comes twice in an object: leave one of them out");
    }

    std::vector<Level> m_open;
};

/** The number in the library's message about one that is too large: "... '1e400'". */
std::string numberIn(const std::string& message) {
    const std::size_t begin = message.find('\''), end = message.rfind('\'');
    return begin < end ? shortened(printable(message.substr(begin + 1, end - begin - 1)), 60) : "the number";
}

} // namespace

std::string shownValue(const Document& value) {
    constexpr std::size_t most = 60;
    if (value.is_object()) return "an object";
    if (value.is_array()) return value.empty() ? "an empty list" : "a list";
    const std::string text = value.dump(-1, ' ', false, Document::error_handler_t::replace);
    return shortened(printable(text), most);
}

Document parseDocument(const std::string& text) {
    Watcher watcher;
    try {
        return Document::parse(text, [&](int depth, Document::parse_event_t event, Document& parsed) {
            return watcher(depth, event, parsed);
        });
    } catch (const Document::parse_error& error) {
        throw UsageError(positionIn(text, error.byte) + ": this is not JSON");
    } catch (const Document::out_of_range& error) {
        const std::string path = watcher.path();
        throw UsageError(path + (path.empty() ? "" : ": ") + "found " + numberIn(error.what()) +
                         "; expected a number that a double can hold, up to 1.79e308");
    } catch (const Document::exception&) {
        throw UsageError("it has a value that cannot be read");
    }
}

std::string DocumentField::pathOf(const std::string& member) const {
    return m_path.empty() ? printable(member) : m_path + "." + printable(member);
}

void DocumentField::refuse(const std::string& why) const {
    throw UsageError((m_path.empty() ? "" : m_path + ": ") + why);
}

void DocumentField::refuseAs(const std::string& expected) const {
    refuse("found " + shownValue(*m_value) + "; expected " + expected);
}

void DocumentField::requireObject(const Words& known) const {
    if (!isObject()) refuseAs("an object with " + join(known, ", "));
    for (const auto& [name, value] : m_value->items()) {
        if (std::ranges::find(known, name) != known.end()) continue;
        throw UsageError(shortened(pathOf(name), 200) + ": there is no such field" +
                         didYouMean(nearestWords(name, known)) + "; the fields here are " +
                         join(known, ", "));
    }
}

std::optional<DocumentField> DocumentField::find(const std::string& member) const {
    const auto found = m_value->find(member);
    if (found == m_value->end()) return std::nullopt;
    return DocumentField(*found, pathOf(member));
}

DocumentField DocumentField::at(const std::string& member, const std::string& expected) const {
    if (const auto found = find(member)) return *found;
    throw UsageError(pathOf(member) + ": this field is missing; expected " + expected);
}

std::vector<DocumentField> DocumentField::elements(const std::string& expected, std::size_t fewest,
                                                   std::size_t most) const {
    if (!isArray() || m_value->size() < fewest) refuseAs(expected);
    if (m_value->size() > most)
        refuse("found " + numberText(m_value->size()) + " elements; expected at most " + numberText(most));
    std::vector<DocumentField> elements;
    for (std::size_t i = 0; i < m_value->size(); ++i)
        elements.emplace_back((*m_value)[i], m_path + "[" + numberText(i) + "]");
    return elements;
}

std::vector<std::pair<std::string, DocumentField>> DocumentField::members(const std::string& expected) const {
    if (!isObject()) refuseAs(expected);
    std::vector<std::pair<std::string, DocumentField>> members;
    for (const auto& [name, value] : m_value->items())
        members.emplace_back(name, DocumentField(value, pathOf(name)));
    return members;
}

std::string DocumentField::text(const std::string& expected) const {
    if (!m_value->is_string()) refuseAs(expected);
    return m_value->get<std::string>();
}

std::int64_t DocumentField::whole(std::int64_t least, std::int64_t most, const std::string& what) const {
    const std::string expected =
        what + ", a whole number from " + numberText(least) + " to " + numberText(most);
    if (!m_value->is_number()) refuseAs(expected);
    const auto number = m_value->get<double>(); // exact up to 2^53; all limits here are below that
    if (!(number >= static_cast<double>(least) && number <= static_cast<double>(most)) ||
        std::floor(number) != number)
        refuseAs(expected);
    return static_cast<std::int64_t>(number);
}

double DocumentField::number(double least, double most, const std::string& what) const {
    const std::string expected = what + ", a number from " + numberText(least) + " to " + numberText(most);
    if (!m_value->is_number()) refuseAs(expected);
    const auto number = m_value->get<double>();
    if (!(number >= least && number <= most)) refuseAs(expected);
    return number;
}

} // namespace applet_tools
