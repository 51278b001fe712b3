#include "applet_tools/applet/Target.h"

#include "applet_host/record.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "applet_tools/base/words.h"

namespace applet_tools {
namespace {

constexpr std::string_view rangeMark = "..";

/** The range in the brackets; empty if the text is not a range. */
std::optional<ElementRange> parseRange(std::string_view text, std::uint32_t count) {
    const std::size_t mark = text.find(rangeMark);
    if (mark == std::string_view::npos) {
        const auto index = wholeNumber<std::uint32_t>(text);
        return index ? std::optional(ElementRange{*index, *index}) : std::nullopt;
    }
    const std::string_view from = text.substr(0, mark);
    const std::string_view to = text.substr(mark + rangeMark.size());
    const auto first = from.empty() ? 0 : wholeNumber<std::uint32_t>(from);
    const auto last = to.empty() ? count - 1 : wholeNumber<std::uint32_t>(to);
    if (!first || !last) return std::nullopt;
    return ElementRange{*first, *last};
}

ElementRange findElements(const Parameter& parameter, std::string_view text) {
    const std::string shown = parameter.name + "[" + printable(text) + "]";
    const std::uint32_t count = elementCount(parameter);
    if (count == 0) throw UsageError(shown + ": the parameter is not an array");
    if (parameter.kind() != REGISTER_KIND_UINT_FIELD)
        throw UsageError(shown + ": only arrays of unsigned 32-bit numbers can be reached by element");
    const auto range = parseRange(text, count);
    if (!range)
        throw UsageError(shown + ": the elements are named as [100], [100..110], [100..], [..110] or [..]");
    if (range->first >= count || range->last >= count)
        throw UsageError(shown + ": the parameter has " + numberText(count) + " elements, 0 to " +
                         numberText(count - 1));
    if (range->first > range->last)
        throw UsageError(shown + ": the first element is larger than the last one");
    return *range;
}

void addReadable(const std::vector<const Parameter*>& found, std::vector<Target>& targets) {
    for (const Parameter* parameter : found)
        if (parameter->effectOfReading().empty()) targets.push_back({parameter});
}

} // namespace

std::string Target::name() const {
    if (!elements) return parameter->name;
    if (elements->count() == 1) return elementName(*parameter, elements->first);
    return parameter->name + "[" + numberText(elements->first) + std::string(rangeMark) +
           numberText(elements->last) + "]";
}

std::string elementName(const Parameter& parameter, std::uint32_t index) {
    return parameter.name + "[" + numberText(index) + "]";
}

std::uint32_t elementCount(const Parameter& parameter) {
    return parameter.record != nullptr ? applet_host::elementCount(*parameter.record) : 0;
}

Target findTarget(const ParameterList& parameters, std::string_view word) {
    if (isAssignment(word))
        throw UsageError(inQuotedWord(word) +
                         " is an assignment, but a name is expected; give --with before each one, as in "
                         "'--with A=1 --with B=2'");
    const std::size_t bracket = word.find('[');
    const Parameter& parameter = parameters.find(word.substr(0, bracket));
    if (bracket == std::string_view::npos) return {&parameter};
    if (!word.ends_with(']')) throw UsageError(inQuotedWord(word) + " lacks the ']' at its end");
    return {&parameter, findElements(parameter, word.substr(bracket + 1, word.size() - bracket - 2))};
}

std::vector<Target> findTargets(const ParameterList& parameters, const std::vector<std::string>& words) {
    std::vector<Target> targets;
    for (const std::string& word : words) {
        if (word.find_first_of("*?") == std::string::npos) {
            targets.push_back(findTarget(parameters, word));
            continue;
        }
        const std::size_t before = targets.size();
        addReadable(parameters.matching(word), targets);
        if (targets.size() == before)
            throw UsageError("a read of any parameter that matches " + inQuotedWord(word) +
                             " takes something from the board: give full names to read them");
    }
    return targets;
}

std::vector<Target> targetsOfGroups(const ParameterList& parameters, const std::vector<std::string>& labels) {
    std::vector<Target> targets;
    for (const std::string& label : labels)
        addReadable(parameters.inGroup(label), targets);
    return targets;
}

} // namespace applet_tools
