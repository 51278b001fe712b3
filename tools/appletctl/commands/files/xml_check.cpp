// Finds problems of a parameter document for its clients.

#include "applet_tools/applet/published_limits.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "appletctl/commands/files/xml.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <map>

namespace appletctl {
namespace {

/** Parses a document from start to end. */
class XmlReader {
public:
    explicit XmlReader(std::string_view text) : m_text(text) {}

    XmlElement read() {
        skipBlanks();
        if (take("<?")) m_at = endOf("?>");
        skipBlanks();
        XmlElement root = element();
        skipBlanks();
        if (m_at != m_text.size()) fail("there is something after the last element");
        return root;
    }

private:
    [[noreturn]] void fail(const std::string& why) const {
        throw Failure("the document is not well-formed, at byte " + numberText(m_at) + ": " + why);
    }

    static bool isBlank(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }
    void skipBlanks() {
        while (m_at < m_text.size() && isBlank(m_text[m_at]))
            ++m_at;
    }
    bool take(std::string_view wanted) {
        if (!m_text.substr(m_at).starts_with(wanted)) return false;
        m_at += wanted.size();
        return true;
    }
    void expect(std::string_view wanted) {
        if (!take(wanted)) fail("'" + std::string(wanted) + "' is missing");
    }
    std::size_t endOf(std::string_view wanted) const {
        const std::size_t found = m_text.find(wanted, m_at);
        if (found == std::string_view::npos) fail("'" + std::string(wanted) + "' is missing");
        return found + wanted.size();
    }
    std::string upTo(std::string_view ends) {
        const std::size_t end = std::min(m_text.find_first_of(ends, m_at), m_text.size());
        std::string part(m_text.substr(m_at, end - m_at));
        m_at = end;
        return part;
    }

    XmlElement element() {
        expect("<");
        XmlElement read{.tag = upTo(" \n\r\t/>"), .attributes = {}, .text = {}, .children = {}};
        for (skipBlanks(); m_at < m_text.size() && m_text[m_at] != '>' && m_text[m_at] != '/'; skipBlanks()) {
            std::string name = upTo("= \n>");
            expect("=");
            const std::string quote(1, m_at < m_text.size() ? m_text[m_at++] : ' ');
            if (quote != "\"" && quote != "'") fail("an attribute lacks its quote");
            read.attributes.emplace_back(std::move(name), upTo(quote));
            expect(quote);
        }
        if (take("/>")) return read;
        expect(">");
        while (!take("</")) {
            const std::string text = upTo("<");
            if (m_at == m_text.size()) fail("'" + read.tag + "' has no end");
            if (!std::ranges::all_of(text, isBlank)) read.text += text;
            if (!m_text.substr(m_at).starts_with("</")) read.children.push_back(element());
        }
        expect(read.tag);
        skipBlanks();
        expect(">");
        return read;
    }

    std::string_view m_text;
    std::size_t m_at = 0;
};

/** The document as a client sees it. */
struct Document {
    const XmlElement& root;
    const ParameterList& parameters;
    std::map<std::string, const XmlElement*> nodes; // by name
    std::vector<XmlFinding> findings{};

    void add(const std::string& nodeName, const std::string& reason) {
        findings.push_back({nodeName, reason});
    }
    void addForAll(const std::string& reason) { add("RegisterDescription", reason); }
};

bool isRegister(const XmlElement& node) { return node.tag.ends_with("Reg"); }

std::optional<long double> numberOf(const std::optional<std::string>& text) {
    double number = 0;
    if (!text) return std::nullopt;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), number);
    return error == std::errc{} ? std::optional<long double>(number) : std::nullopt;
}

void checkNames(Document& document) {
    std::map<std::string, int> counts;
    for (const XmlElement& node : document.root.children)
        if (++counts[node.attribute("Name")] == 2)
            document.add(node.attribute("Name"),
                         "two nodes have this name: a client takes one of them, or none");
    for (const XmlElement& node : document.root.children)
        if (node.attribute("Name").empty()) document.add(node.tag, "the node has no name");
}

void checkReferences(Document& document) {
    for (const XmlElement& node : document.root.children)
        for (const XmlElement& child : node.children)
            if (child.tag.starts_with('p') && !document.nodes.contains(child.text))
                document.add(node.attribute("Name"),
                             child.tag + " names '" + child.text + "', and there is no such node");
}

void checkLimits(Document& document) {
    constexpr long double largest = 9223372036854775807.0L, largestOf32 = 2147483647.0L;
    for (const auto& [name, node] : document.nodes) {
        const auto minimum = numberOf(node->child("Min")), maximum = numberOf(node->child("Max"));
        if (!minimum || !maximum) continue;
        if (node->tag == "Integer" && *minimum > largest)
            document.add(name,
                         "the minimum " + *node->child("Min") +
                             " is a negative number printed as an unsigned one: no value is large enough");
        else if (*minimum > *maximum)
            document.add(name, "the minimum " + *node->child("Min") + " is above the maximum " +
                                   *node->child("Max") + ": no value is accepted");
        const auto value = document.nodes.find(node->child("pValue").value_or(""));
        if (value == document.nodes.end() || *minimum > largest) continue;
        const XmlElement& reg = *value->second;
        if (reg.child("Sign") == "Signed" && reg.child("Length") == "4" && *maximum > largestOf32)
            document.add(name,
                         "values above 2147483647 read as negative numbers: the register of four bytes is "
                         "said to be signed");
    }
}

void checkEnumerations(Document& document) {
    for (const auto& [name, node] : document.nodes) {
        if (node->tag != "Enumeration") continue;
        std::map<std::string, int> values;
        for (const XmlElement& entry : node->children)
            if (entry.tag == "EnumEntry" && ++values[entry.child("Value").value_or("")] == 2)
                document.add(name, "two entries have the value " + entry.child("Value").value_or(""));
        if (values.empty()) document.add(name, "the enumeration has no entries");
    }
}

/** Parameters that are not accessible to a client. */
void checkCompleteness(Document& document) {
    for (const Parameter& parameter : document.parameters.all())
        if (parameter.record != nullptr && parameter.record->published != 0 &&
            !document.nodes.contains(parameter.name))
            document.add(parameter.name,
                         std::string("the parameter is not in the document: kind ") + kindName(parameter));
}

/** Checks an element that each register, or feature, should have. */
struct Wanted {
    bool ofRegisters;
    const char* tag;
    const char* reason;
};

constexpr Wanted wantedElements[] = {
    {true, "Cachable",
     "no register says how it may be cached, so a client keeps what it has read: values that move with "
     "others or are "
     "measured stay as they were"},
    {false, "Streamable", "no feature is marked as streamable, so a client saves none of them"},
    {false, "DisplayName", "no feature has a name for display: a client shows the names of the nodes"},
    {false, "Unit", "no feature has a unit"},
};

void checkElements(Document& document) {
    for (const Wanted& wanted : wantedElements) {
        const bool isThere = std::ranges::any_of(document.root.children, [&](const XmlElement& node) {
            return isRegister(node) == wanted.ofRegisters && node.child(wanted.tag).has_value();
        });
        if (!isThere) document.addForAll(wanted.reason);
    }
}

bool isGuid(const std::string& text) {
    constexpr std::string_view form = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    return std::ranges::equal(text, form, [](char c, char of) {
        return of == 'x' ? std::isxdigit(static_cast<unsigned char>(c)) != 0 : c == of;
    });
}

void checkHeader(Document& document) {
    for (const char* attribute : {"ProductGuid", "VersionGuid"})
        if (const std::string value = document.root.attribute(attribute); !isGuid(value))
            document.addForAll(std::string(attribute) + " is '" + value +
                               "', which is not a GUID: a client that validates the document refuses it");
}

} // namespace

std::string XmlElement::attribute(std::string_view name) const {
    for (const auto& [key, value] : attributes)
        if (key == name) return value;
    return "";
}

std::optional<std::string> XmlElement::child(std::string_view wanted) const {
    const auto found = std::ranges::find(children, wanted, &XmlElement::tag);
    return found != children.end() ? std::optional(found->text) : std::nullopt;
}

XmlElement readXml(std::string_view document) { return XmlReader(document).read(); }

std::vector<XmlFinding> findingsIn(const XmlElement& root, const ParameterList& parameters) {
    Document document{.root = root, .parameters = parameters, .nodes = {}};
    for (const XmlElement& node : root.children)
        document.nodes.emplace(node.attribute("Name"), &node);
    for (const auto check : {checkHeader, checkElements, checkNames, checkReferences, checkLimits,
                             checkEnumerations, checkCompleteness})
        check(document);
    return std::move(document.findings);
}

} // namespace appletctl
