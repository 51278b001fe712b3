/** Conditions on values: "FG_SYSTEMMONITOR_FPGA_TEMPERATURE > 70 || FG_OVERFLOW != 0". */
#ifndef APPLET_TOOLS_APPLET_CONDITION_H
#define APPLET_TOOLS_APPLET_CONDITION_H

#include "applet_tools/applet/values.h"

#include <compare>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace applet_tools {

/** An operator between two values. */
struct Relation {
    std::string_view symbol;
    bool (*holds)(std::partial_ordering);
};

/** The relation at the beginning of the text; null if there is none. */
const Relation* relationAt(std::string_view text);

/** "< <= > >= == !=". */
std::string relationsInWords();

/** Comparisons NAME OPERATOR VALUE, joined by && and ||, of which && binds closer, with parentheses around parts. A
 * value is what a set takes, in single or double quotes where it has blanks or a parenthesis. A label is a name as
 * well, with or without quotes. */
class Condition {
public:
    using ReadFunction = std::function<ReadResult(const Target&)>;

    /** Throws UsageError, with the position, for invalid text. */
    Condition(const ParameterList& parameters, const std::string& text);

    /** The compared parameters, in the order of the text. */
    std::vector<Target> targets() const;
    /** A comparison is false if its reading failed. */
    bool holds(const ReadFunction& read) const;

private:
    class Parser;

    struct Comparison {
        Target target{};
        const Relation* relation = nullptr;
        Value value;
    };
    /** A comparison, or parts of which any or all must hold. */
    struct Node {
        enum class Kind { comparison, any, all } kind;
        std::vector<Node> parts;
        Comparison comparison;
    };

    static void addTargets(const Node& node, std::vector<Target>& targets);
    static bool holds(const Node& node, const ReadFunction& read);

    Node m_root;
};

} // namespace applet_tools

#endif
