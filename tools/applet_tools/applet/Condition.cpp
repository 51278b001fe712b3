#include "applet_tools/applet/Condition.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"

#include <algorithm>

namespace applet_tools {
namespace {

// The longer ones first.
constexpr Relation relations[] = {
    {"<=", [](std::partial_ordering order) { return order <= 0; }},
    {">=", [](std::partial_ordering order) { return order >= 0; }},
    {"==", [](std::partial_ordering order) { return order == 0; }},
    {"!=", [](std::partial_ordering order) { return order != 0; }},
    {"<", [](std::partial_ordering order) { return order < 0; }},
    {">", [](std::partial_ordering order) { return order > 0; }},
};

constexpr std::string_view blanks = " \t";

/** Goes through the text of a condition. */
class Reader {
public:
    explicit Reader(const std::string& text) : m_text(text) {}

    bool isAtEnd() {
        skipBlanks();
        return m_place == m_text.size();
    }

    bool isNext(std::string_view mark) {
        skipBlanks();
        return rest().starts_with(mark);
    }

    bool take(std::string_view mark) {
        if (!isNext(mark)) return false;
        m_place += mark.size();
        return true;
    }

    std::string takeName() {
        skipBlanks();
        const std::size_t length = std::min(rest().find_first_of(" \t<>=!&|()"), rest().size());
        if (length == 0) refuse("the name of a parameter is wanted");
        return taken(length);
    }

    const Relation& takeRelation() {
        skipBlanks();
        const Relation* relation = relationAt(rest());
        if (relation == nullptr) refuse("one of " + relationsInWords() + " is wanted");
        m_place += relation->symbol.size();
        return *relation;
    }

    std::string takeValue() {
        skipBlanks();
        const char quote = rest().empty() ? '\0' : rest().front();
        if (quote == '"' || quote == '\'') {
            const std::size_t end = m_text.find(quote, m_place + 1);
            if (end == std::string::npos) refuse("the quote is not closed");
            const std::string value = m_text.substr(m_place + 1, end - m_place - 1);
            m_place = end + 1;
            return value;
        }
        const std::size_t length =
            std::min({rest().find_first_of(" \t)"), rest().find("&&"), rest().find("||"), rest().size()});
        if (length == 0 || relationAt(rest()) != nullptr || quote == '=') refuse("a value is wanted");
        return taken(length);
    }

    [[noreturn]] void refuse(const std::string& wanted) const {
        const std::string there = rest().empty() ? "at its end" : "at " + inQuotedWord(rest());
        throw UsageError(inQuotedWord(m_text) + ", " + there + " (character " + numberText(m_place + 1) +
                         "): " + wanted);
    }

private:
    std::string_view rest() const { return std::string_view(m_text).substr(m_place); }
    void skipBlanks() { m_place = std::min(m_text.find_first_not_of(blanks, m_place), m_text.size()); }
    std::string taken(std::size_t length) {
        m_place += length;
        return m_text.substr(m_place - length, length);
    }

    const std::string& m_text;
    std::size_t m_place = 0;
};

/** Of values of the same kind. */
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
        if (!m_reader.isAtEnd()) m_reader.refuse("&& or || is wanted");
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
        if (!m_reader.take(")")) m_reader.refuse("&&, || or a closing parenthesis is wanted");
        --m_depth;
        return node;
    }

    Comparison parseComparison() {
        const Target target = findTarget(m_parameters, m_reader.takeName());
        if (target.elements && target.elements->count() > 1)
            throw UsageError(target.name() + ": one element is compared at a time");
        const Relation& relation = m_reader.takeRelation();
        return {target, &relation, parseValue(target, m_reader.takeValue())};
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

bool Condition::holds(const Reading& reading) const { return holds(m_root, reading); }

bool Condition::holds(const Node& node, const Reading& reading) {
    const auto isTrue = [&](const Node& part) { return holds(part, reading); };
    if (node.kind == Node::Kind::any) return std::ranges::any_of(node.parts, isTrue);
    if (node.kind == Node::Kind::all) return std::ranges::all_of(node.parts, isTrue);
    const ReadResult is = reading(node.comparison.target);
    return is.error == 0 && node.comparison.relation->holds(order(is.value, node.comparison.value));
}

} // namespace applet_tools
