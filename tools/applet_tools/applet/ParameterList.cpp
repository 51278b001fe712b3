#include "applet_tools/applet/ParameterList.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"

#include <fnmatch.h>

#include <algorithm>
#include <set>
#include <span>

namespace applet_tools {
namespace {

constexpr std::string_view sdkPrefix = "fg_";
constexpr const char* groupWithoutRecord = "Without description";

std::string_view withoutPrefix(std::string_view lowerName) {
    return lowerName.starts_with(sdkPrefix) ? lowerName.substr(sdkPrefix.size()) : lowerName;
}

bool isGlob(std::string_view pattern) { return pattern.find_first_of("*?[") != std::string_view::npos; }

bool matches(const std::string& lowerName, const std::string& lowerPattern) {
    if (!isGlob(lowerPattern)) return lowerName.find(lowerPattern) != std::string::npos;
    const std::string shortName(withoutPrefix(lowerName));
    return fnmatch(lowerPattern.c_str(), lowerName.c_str(), 0) == 0 ||
           fnmatch(lowerPattern.c_str(), shortName.c_str(), 0) == 0;
}

struct ReadEffect {
    std::string_view name; // a string_view, since this is compared often
    const char* words;
};

/** Reading one of these resets the design's overflow flag. */
constexpr ReadEffect readEffects[] = {
    {"FG_OVERFLOW", "clears when read"},
    {"FG_FILLLEVEL", "clears FG_OVERFLOW when read"},
    {"FG_CAMSTATUS", "clears FG_OVERFLOW when read"},
    {"FG_CAMSTATUS_EXTENDED", "clears FG_OVERFLOW when read"},
    {"DLOOMA_Device1_Process0_OverflowOccurred_Status", "clears when read"},
};

constexpr const char* writingAFile = "writes a file";

constexpr ReadEffect writeEffects[] = {
    {"FG_LUT_SAVE_FILE", writingAFile},
    {"FG_DEBUGSAVECONFIG", writingAFile},
    {"FG_DEBUGINSERT", "inserts an image"},
    {"FG_SENDSOFTWARETRIGGER", "fires a trigger"},
    {"FG_SIGNAL_ANALYZER_CLEAR", "clears the analyzers"},
};

std::string wordsFor(std::span<const ReadEffect> effects, const std::string& name) {
    const auto found = std::ranges::find(effects, name, &ReadEffect::name);
    return found != effects.end() ? found->words : "";
}

std::string suggestion(const std::vector<std::string>& names) {
    return names.empty() ? "; 'appletctl list' shows all names" : didYouMean(names);
}

/** The names of the parameters with the label nearest to the word; empty if it is farther away, or of many. */
std::vector<std::string> namesWithLabelNear(const std::vector<Parameter>& parameters,
                                            const std::string& lowerWord, std::size_t farthest) {
    constexpr std::size_t mostNames = 3;
    std::vector<std::string> near;
    for (const Parameter& parameter : parameters) {
        const std::size_t distance = editDistance(lowerWord, lowerCase(parameter.label()));
        if (distance > farthest) continue;
        if (distance < farthest) near.clear();
        farthest = distance;
        near.push_back(parameter.name);
    }
    return near.size() <= mostNames ? near : std::vector<std::string>{};
}

} // namespace

std::string Parameter::label() const { return record != nullptr ? toUtf8(record->displayName) : ""; }

std::string Parameter::unit() const { return record != nullptr ? toUtf8(record->unit) : ""; }

std::string Parameter::effectOfReading() const { return wordsFor(readEffects, name); }

std::string Parameter::effectOfWriting() const { return wordsFor(writeEffects, name); }

bool Parameter::writesFile() const { return effectOfWriting() == writingAFile; }

std::string Parameter::path() const { return join(groups, " / "); }
ParameterList::ParameterList(Instance& instance, Scope scope)
    : m_wantsDesign(scope == Scope::design || !instance.isDesignHidden())
    , m_wantsOthers(scope != Scope::design) {
    std::vector<std::string> groups;
    for (const RegisterInfo* record = instance.parameterTree(); record != nullptr; record = record->next)
        addTree(*record, groups);
    addNamesWithoutRecord(instance);
}

bool ParameterList::isWanted(std::string_view name) const {
    return name.starts_with(designPrefix) ? m_wantsDesign : m_wantsOthers;
}

void ParameterList::addTree(const RegisterInfo& record, std::vector<std::string>& groups) {
    if (record.kind != REGISTER_KIND_GROUP) {
        if (record.name != nullptr && isWanted(record.name))
            m_parameters.push_back({toUtf8(record.name), record.id, &record, groups});
        return;
    }
    groups.push_back(toUtf8(record.displayName));
    // A group's own parameters come before its sub-groups, so that each heading appears once.
    for (const bool wantGroups : {false, true}) {
        for (int i = 0; i < record.value.group.childCount; ++i) {
            const RegisterInfo& child = *record.value.group.children[i];
            if ((child.kind == REGISTER_KIND_GROUP) == wantGroups) addTree(child, groups);
        }
    }
    groups.pop_back();
}

void ParameterList::addNamesWithoutRecord(Instance& instance) {
    std::set<std::string> known;
    for (const Parameter& parameter : m_parameters)
        known.insert(parameter.name);
    const auto& applet = instance.applet();
    const int count = applet.Fg_getNrOfParameter(instance.fg());
    for (int i = 0; i < count; ++i) {
        const char* const text = applet.Fg_getParameterName(instance.fg(), i);
        if (text == nullptr || !isWanted(text)) continue;
        const std::string name = toUtf8(text);
        if (name.empty() || known.contains(name)) continue;
        const int id = applet.Fg_getParameterId(instance.fg(), i);
        if (id > 0) m_parameters.push_back({name, id, nullptr, {groupWithoutRecord}});
    }
}

const Parameter& ParameterList::find(std::string_view name) const {
    const std::string wanted = lowerCase(name);
    std::vector<const Parameter*> found;
    for (const Parameter& parameter : m_parameters) {
        if (parameter.name == name) return parameter;
        const std::string lower = lowerCase(parameter.name);
        if (lower == wanted || withoutPrefix(lower) == wanted) found.push_back(&parameter);
    }
    if (found.empty() && !wanted.empty()) {
        for (const Parameter& parameter : m_parameters)
            if (lowerCase(parameter.label()) == wanted || std::to_string(parameter.id) == wanted)
                found.push_back(&parameter);
    }
    if (found.size() == 1) return *found.front();
    const std::string shown = inQuotedWord(name);
    if (found.empty()) {
        std::vector<std::string> closest = closestNames(wanted);
        const std::string words = "there is no parameter " + shown + suggestion(closest);
        throw UnknownName(words, std::move(closest));
    }
    std::vector<std::string> names;
    names.reserve(found.size());
    for (const Parameter* parameter : found)
        names.push_back(parameter->name);
    const std::string words = "the name " + shown + " is ambiguous" + suggestion(names);
    throw UnknownName(words, std::move(names));
}

std::vector<const Parameter*> ParameterList::matching(const std::string& pattern) const {
    const std::string lowerPattern = lowerCase(pattern);
    std::vector<const Parameter*> found;
    for (const Parameter& parameter : m_parameters)
        if (matches(lowerCase(parameter.name), lowerPattern)) found.push_back(&parameter);
    if (found.empty()) {
        throw UsageError(
            "no parameter's name matches " + inQuotedWord(pattern) +
            suggestion(isGlob(pattern) ? std::vector<std::string>{} : closestNames(lowerPattern)));
    }
    return found;
}

namespace {

/** The names in a label such as "Line Trigger / ExSync". */
std::vector<std::string> partsOf(const std::string& label) {
    constexpr std::string_view separator = " / ";
    std::vector<std::string> parts;
    std::size_t begin = 0, end = 0;
    while ((end = label.find(separator, begin)) != std::string::npos) {
        parts.push_back(label.substr(begin, end - begin));
        begin = end + separator.size();
    }
    parts.push_back(label.substr(begin));
    return parts;
}

} // namespace

std::string ParameterList::suggestedGroups(const std::string& label) const {
    std::vector<std::string> groups;
    const auto add = [&](const std::string& group) {
        if (std::ranges::find(groups, group) == groups.end()) groups.push_back(group);
    };
    for (const Parameter& parameter : m_parameters)
        for (const std::string& group : parameter.groups) {
            add(group);
            for (const std::string& part : partsOf(group))
                add(part);
        }
    const std::string near = label.empty() ? "" : didYouMean(nearestWords(label, groups));
    return near.empty() ? "; 'appletctl list' shows the groups" : near;
}

std::vector<const Parameter*> ParameterList::inGroup(const std::string& label) const {
    const std::string wanted = lowerCase(label);
    const auto isLabelled = [&](const Parameter& parameter) {
        return std::ranges::any_of(parameter.groups,
                                   [&](const std::string& group) { return lowerCase(group) == wanted; });
    };
    const auto isBelow = [&](const Parameter& parameter) {
        return !wanted.empty() && lowerCase(parameter.path()).find(wanted) != std::string::npos;
    };
    std::vector<const Parameter*> labelled, below;
    for (const Parameter& parameter : m_parameters) {
        if (isLabelled(parameter)) labelled.push_back(&parameter);
        if (isBelow(parameter)) below.push_back(&parameter);
    }
    if (below.empty()) throw UsageError("no group is called " + inQuotedWord(label) + suggestedGroups(label));
    return labelled.empty() ? below : labelled;
}

std::vector<std::string> ParameterList::closestNames(std::string_view name) const {
    if (name.empty()) return {};
    constexpr std::size_t farthestLabel = 2;
    const std::string word = lowerCase(name);
    std::vector<std::string> names;
    std::size_t least = farthestLabel + 1; // distance of the nearest name
    for (const Parameter& parameter : m_parameters) {
        names.push_back(parameter.name);
        least = std::min(least, editDistance(withoutPrefix(word), withoutPrefix(lowerCase(parameter.name))));
    }
    if (word.size() > 2 * farthestLabel && least > 0) {
        auto labelled = namesWithLabelNear(m_parameters, word, least - 1);
        if (!labelled.empty()) return labelled;
    }
    const std::vector<std::string> near = nearestWords(name, names);
    return near.empty() ? nearestParts(withoutPrefix(word), names) : near;
}

} // namespace applet_tools
