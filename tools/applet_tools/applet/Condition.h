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

/** The relation that the text begins with; null if there is none. */
const Relation* relationAt(std::string_view text);

/** "< <= > >= == !=". */
std::string relationsInWords();

/** Comparisons NAME OPERATOR VALUE, joined by && and ||, of which && binds closer, with parentheses around parts. A
 * value is what a set takes, in single or double quotes where it has blanks or a parenthesis. A label is a name as
 * well, with or without quotes. */
class Condition {
public:
    using ReadFunction = std::function<ReadResult(const Target&)>;

    /** Throws UsageError, pointing at the place, for what cannot be understood. */
    Condition(const ParameterList& parameters, const std::string& text);

    /** What is compared, in the order of the text. */
    std::vector<Target> targets() const;
    /** A comparison whose reading failed does not hold. */
    bool holds(const ReadFunction& read) const;

private:
    class Parser;

    struct Comparison {
        Target target{};
        const Relation* relation = nullptr;
        Value value;
    };
    /** One comparison, or parts of which any or all have to hold. */
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
