/** The parameters of an instance: its tree as a flat list, and the names that are in no tree. */
#ifndef APPLET_TOOLS_APPLET_PARAMETERLIST_H
#define APPLET_TOOLS_APPLET_PARAMETERLIST_H

#include "applet_tools/applet/Instance.h"

#include <string>
#include <string_view>
#include <vector>

namespace applet_tools {

struct Parameter {
    std::string name;
    int id = 0;
    const RegisterInfo* record = nullptr; /**< live record of the tree; null for a parameter without one */
    std::vector<std::string> groups;      /**< labels from the top down */

    /** Without a record a parameter is taken for an unsigned 32-bit number. */
    int kind() const { return record != nullptr ? record->kind : REGISTER_KIND_UINT; }
    std::string label() const;
    std::string unit() const;
    /** "clears when read": what a read takes from the board; empty for all that can be read freely. */
    std::string effectOfReading() const;
    /** "writes a file": what a set does besides; empty for all that can be set to the same value freely. */
    std::string effectOfWriting() const;
    /** True where a set writes the file that the value names. */
    bool writesFile() const;
    /** "Digital I/O / GPO". */
    std::string path() const;
};

/** A parameter of the design as such a one is published. */
inline constexpr std::string_view designPrefix = "DLOOMA_";

/** The design's own name of a parameter that is published with this prefix. */
inline std::string designName(const std::string& published) { return published.substr(designPrefix.size()); }

class ParameterList {
public:
    /** Either without the design's parameters where the user has not switched them on, or only those. */
    enum class Scope { visible, design };
    explicit ParameterList(Instance& instance, Scope scope = Scope::visible);

    const std::vector<Parameter>& all() const { return m_parameters; }

    /** The parameter of that name, in any case and with or without "FG_". Throws UsageError, with the closest
     *  names, when there is none or more than one. */
    const Parameter& find(std::string_view name) const;

    /** The parameters whose name matches a glob (if it holds * ? or [) or contains the text, in any case.
     *  An empty pattern matches all. Throws UsageError when none does. */
    std::vector<const Parameter*> matching(const std::string& pattern) const;

    /** The parameters of the groups of that label, or else of those with the text in their path; in any case.
     *  Throws UsageError when there is none. */
    std::vector<const Parameter*> inGroup(const std::string& label) const;

private:
    void addTree(const RegisterInfo& record, std::vector<std::string>& groups);
    void addNamesWithoutRecord(Instance& instance);
    /** Those near to the word as a whole, else those with a label near to it, else with a part that is. */
    std::vector<std::string> closestNames(std::string_view name) const;
    /** "; did you mean ROI?", or where the groups are shown. */
    std::string suggestedGroups(const std::string& label) const;

    bool isWanted(std::string_view name) const;

    bool m_wantsDesign, m_wantsOthers;
    std::vector<Parameter> m_parameters;
};

} // namespace applet_tools

#endif
