#include "applet_tools/applet/Condition.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"

#include <algorithm>

namespace applet_tools {
namespace {

// Longer operators before their prefixes.
constexpr Relation relations[] = {
    {"<=", std::is_lteq}, {">=", std::is_gteq}, {"==", std::is_eq},
    {"!=", std::is_neq},  {"<", std::is_lt},    {">", std::is_gt},
};

constexpr std::string_view blanks = " \t";
constexpr std::string_view endsOfName = " \t<>=!&|()";

/** A reading position in the text of a condition. */
class Reader {
public:
    explicit Reader(const std::string& text) : m_text(text) {}

    bool isAtEnd() {
        skipBlanks();
        return m_position == m_text.size();
    }

    bool isNext(std::string_view mark) {
        skipBlanks();
        return rest().starts_with(mark);
    }

    bool take(std::string_view mark) {
        if (!isNext(mark)) return false;
        m_position += mark.size();
        return true;
    }

    /** A name or a label. A label may be unquoted if a parameter has it; the longest match counts. */
    std::string takeName(const ParameterList& parameters) {
        skipBlanks();
        const std::size_t length = std::min(rest().find_first_of(endsOfName), rest().size());
        const std::size_t label = isQuoteNext() ? 0 : labelLength(parameters);
        if (isQuoteNext() || label > length) {
            std::string name = isQuoteNext() ? takeQuoted() : taken(label);
            return name += takeElements();
        }
        if (length == 0) refuse("expected the name of a parameter");
        return taken(std::max(length, wordsBeforeRelation()));
    }

    const Relation& takeRelation() {
        skipBlanks();
        const Relation* relation = relationAt(rest());
        if (relation == nullptr) refuse("expected one of " + relationsInWords());
        m_position += relation->symbol.size();
        return *relation;
    }

    std::string takeValue() {
        skipBlanks();
        if (isQuoteNext()) return takeQuoted();
        const std::size_t length =
            std::min({rest().find_first_of(" \t)"), rest().find("&&"), rest().find("||"), rest().size()});
        if (length == 0 || relationAt(rest()) != nullptr || rest().front() == '=') refuse("expected a value");
        return taken(length);
    }

    [[noreturn]] void refuse(const std::string& wanted) const {
        const std::string there = rest().empty() ? "at its end" : "at " + inQuotedWord(rest());
        throw UsageError(inQuotedWord(m_text) + ", " + there + " (character " + numberText(m_position + 1) +
                         "): " + wanted);
    }

private:
    std::string_view rest() const { return std::string_view(m_text).substr(m_position); }
    bool isQuoteNext() const { return rest().starts_with('"') || rest().starts_with('\''); }

    std::string takeQuoted() {
        const std::size_t end = m_text.find(rest().front(), m_position + 1);
        if (end == std::string::npos) refuse("the quote is not closed");
        std::string text = m_text.substr(m_position + 1, end - m_position - 1);
        m_position = end + 1;
        return text;
    }

    /** "[100]" after a label; empty if there is none. */
    std::string takeElements() {
        if (!rest().starts_with('[')) return "";
        return taken(std::min(rest().find(']') + 1, rest().size()));
    }

    /** Length of the longest label at the present position; 0 if there is none. */
    std::size_t labelLength(const ParameterList& parameters) const {
        const std::string text = lowerCase(rest());
        std::size_t longest = 0;
        for (const Parameter& parameter : parameters.all()) {
            const std::string label = lowerCase(parameter.label());
            const bool isNext =
                text.starts_with(label) && (label.size() == text.size() || endsLabel(text[label.size()]));
            if (isNext) longest = std::max(longest, label.size());
        }
        return longest;
    }

    /** Length of several words before an operator that are not a label; 0 for a single word. */
    std::size_t wordsBeforeRelation() const {
        const std::size_t mark = rest().find_first_of("<>=!&|()");
        if (mark == std::string_view::npos || relationAt(rest().substr(mark)) == nullptr) return 0;
        return rest().find_last_not_of(blanks, mark - 1) + 1;
    }

    static bool endsLabel(char c) { return c == '[' || endsOfName.find(c) != std::string_view::npos; }

    void skipBlanks() { m_position = std::min(m_text.find_first_not_of(blanks, m_position), m_text.size()); }
    std::string taken(std::size_t length) {
        m_position += length;
        return m_text.substr(m_position - length, length);
    }

    const std::string& m_text;
    std::size_t m_position = 0;
};

/** Compares values of the same kind. */
std::partial_ordering order(const Value& first, const Value& second) {
    return std::visit(
        [&](const auto& native) -> std::partial_ordering {
            using T = std::decay_t<decltype(native)>;
            const T* other = std::get_if<T>(&second);
            if constexpr (std::is_same_v<T, WholeArray>)
                return std::partial_ordering::unordered;
            else
                return other != nullptr ? native <=> *other : std::partial_ordering::unordered;
        },
        first);
}

} // namespace

const Relation* relationAt(std::string_view text) {
    for (const Relation& relation : relations)
        if (text.starts_with(relation.symbol)) return &relation;
    return nullptr;
}

std::string relationsInWords() {
    std::vector<std::string> symbols;
    for (const Relation& relation : relations)
        symbols.emplace_back(relation.symbol);
    std::ranges::sort(symbols);
    return join(symbols, " ");
}

/** Reads a condition by recursive descent: alternatives of terms, a term is a comparison or in parentheses. */
class Condition::Parser {
public:
    Parser(const ParameterList& parameters, const std::string& text)
        : m_parameters(parameters)
        , m_reader(text) {}

    Node parse() {
        Node node = parseAlternatives();
        if (m_reader.isNext(")")) m_reader.refuse("this parenthesis was not opened");
        if (!m_reader.isAtEnd()) m_reader.refuse("expected && or ||");
        return node;
    }

private:
    Node parseAlternatives() {
        Node node{.kind = Node::Kind::any, .parts = {}, .comparison = {}};
        do
            node.parts.push_back(parseTerms());
        while (m_reader.take("||"));
        return node;
    }

    Node parseTerms() {
        Node node{.kind = Node::Kind::all, .parts = {}, .comparison = {}};
        do
            node.parts.push_back(parseTerm());
        while (m_reader.take("&&"));
        return node;
    }

    Node parseTerm() {
        constexpr int deepest = 50;
        if (!m_reader.take("("))
            return {.kind = Node::Kind::comparison, .parts = {}, .comparison = parseComparison()};
        if (++m_depth > deepest) m_reader.refuse("there are too many parentheses within each other");
        Node node = parseAlternatives();
        if (!m_reader.take(")")) m_reader.refuse("expected &&, || or a closing parenthesis");
        --m_depth;
        return node;
    }

    Comparison parseComparison() {
        const Target target = findTarget(m_parameters, m_reader.takeName(m_parameters));
        if (target.elements && target.elements->count() > 1)
            throw UsageError(target.name() + ": one element is compared at a time");
        const Relation& relation = m_reader.takeRelation();
        const std::string& name = target.parameter->name;
        if (!target.elements && elementCount(*target.parameter) > 0)
            throw UsageError(name + " is an array: name the element to compare, as " + name + "[100]");
        return {target, &relation,
                parseValue(target, m_reader.takeValue(), " " + std::string(relation.symbol) + " ")};
    }

    const ParameterList& m_parameters;
    Reader m_reader;
    int m_depth = 0;
};

Condition::Condition(const ParameterList& parameters, const std::string& text)
    : m_root(Parser(parameters, text).parse()) {}

std::vector<Target> Condition::targets() const {
    std::vector<Target> targets;
    addTargets(m_root, targets);
    return targets;
}

void Condition::addTargets(const Node& node, std::vector<Target>& targets) {
    if (node.kind == Node::Kind::comparison) targets.push_back(node.comparison.target);
    for (const Node& part : node.parts)
        addTargets(part, targets);
}

bool Condition::holds(const ReadFunction& read) const { return holds(m_root, read); }

bool Condition::holds(const Node& node, const ReadFunction& read) {
    const auto isTrue = [&](const Node& part) { return holds(part, read); };
    if (node.kind == Node::Kind::any) return std::ranges::any_of(node.parts, isTrue);
    if (node.kind == Node::Kind::all) return std::ranges::all_of(node.parts, isTrue);
    const ReadResult is = read(node.comparison.target);
    return is.error == 0 && node.comparison.relation->holds(order(is.value, node.comparison.value));
}

} // namespace applet_tools
