/** A word of the command line that names a parameter or elements of an array parameter. */
#ifndef APPLET_TOOLS_APPLET_TARGET_H
#define APPLET_TOOLS_APPLET_TARGET_H

#include "applet_tools/applet/ParameterList.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace applet_tools {

/** Elements of an array, including the last one. */
struct ElementRange {
    std::uint32_t first;
    std::uint32_t last;

    std::uint32_t count() const { return last - first + 1; }
};

/** `elements` is empty for a scalar and for an array as a whole. */
struct Target {
    const Parameter* parameter;
    std::optional<ElementRange> elements = std::nullopt;

    /** "FG_WIDTH", "FG_LUT_VALUE_RED[100]", "FG_LUT_VALUE_RED[100..110]". */
    std::string name() const;
};

/** "FG_LUT_VALUE_RED[100]". */
std::string elementName(const Parameter& parameter, std::uint32_t index);

/** Number of elements of an array parameter; 0 for all others. */
std::uint32_t elementCount(const Parameter& parameter);

/** Reads "NAME", "NAME[5]", "NAME[5..9]"; an omitted end is the end of the array, as in "NAME[..9]".
 *  Throws UsageError for an unknown name and for elements outside the array. */
Target findTarget(const ParameterList& parameters, std::string_view word);

/** Reads all words before anything is done, so that a typing error has no effect. A word with * or ? is a
 *  pattern; it leaves out parameters that a read would change. */
std::vector<Target> findTargets(const ParameterList& parameters, const std::vector<std::string>& words);

/** The parameters of the named groups, without those that a read would change. */
std::vector<Target> targetsOfGroups(const ParameterList& parameters, const std::vector<std::string>& labels);

} // namespace applet_tools

#endif
