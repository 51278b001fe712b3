/** Conditions on values: "FG_SYSTEMMONITOR_FPGA_TEMPERATURE > 70 || FG_OVERFLOW != 0". */
#ifndef APPLETCTL_APPLET_CONDITION_H
#define APPLETCTL_APPLET_CONDITION_H

#include "appletctl/applet/values.h"

#include <compare>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace appletctl {

/** An operator between two values. */
struct Relation {
    std::string_view symbol;
    bool (*holds)(std::partial_ordering);
};

/** The relation that the text begins with; null if there is none. */
const Relation* relationAt(std::string_view text);

/** "< <= > >= == !=". */
std::string relationsInWords();

/** Comparisons NAME OPERATOR VALUE, joined by && and ||, of which && binds closer. A value is what a set
 * takes, in single or double quotes where it has blanks. */
class Condition {
public:
    /** Throws UsageError, pointing at the place, for what cannot be understood. */
    Condition(const ParameterList& parameters, const std::string& text);

    /** What is compared, in the order of the text. */
    std::vector<Target> targets() const;
    /** A comparison whose reading failed does not hold. */
    bool holds(const std::function<ReadResult(const Target&)>& reading) const;

private:
    struct Comparison {
        Target target;
        const Relation* relation;
        Value value;
    };

    std::vector<std::vector<Comparison>> m_alternatives; // all of one of them have to hold
};

} // namespace appletctl

#endif
