/** The parameters of an instance: its tree as a flat list, and the names that are not in the tree. */
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
    const RegisterInfo* record = nullptr; /**< live record of the tree; null if it has none */
    std::vector<std::string> groups;      /**< labels from the top down */

    /** A parameter without a record is treated as an unsigned 32-bit number. */
    int kind() const { return record != nullptr ? record->kind : REGISTER_KIND_UINT; }
    std::string label() const;
    std::string unit() const;
    /** The side effect of a read, such as "clears when read"; empty if there is none. */
    std::string effectOfReading() const;
    /** The side effect of a set, such as "writes a file"; empty if a set of the same value has none. */
    std::string effectOfWriting() const;
    /** True if a set writes the file that the value names. */
    bool writesFile() const;
    /** "Digital I/O / GPO". */
    std::string path() const;
};

/** True for a published parameter of the design. */
inline constexpr std::string_view designPrefix = "DLOOMA_";

/** The design's own name of a parameter published with this prefix. */
inline std::string designName(const std::string& published) { return published.substr(designPrefix.size()); }

class ParameterList {
public:
    /** Selects the list without the design's parameters (unless the user enabled them), or only those. */
    enum class Scope { visible, design };
    explicit ParameterList(Instance& instance, Scope scope = Scope::visible);

    const std::vector<Parameter>& all() const { return m_parameters; }

    /** The parameter with that name; case and the prefix "FG_" do not matter; a label or an id
     *  is a name too. Throws UnknownName, with the closest names, when there is none or more than one. */
    const Parameter& find(std::string_view name) const;

    /** The parameters whose name matches a glob (if it holds * ? or [) or contains the text, in any case.
     *  An empty pattern matches all. Throws UsageError when nothing matches. */
    std::vector<const Parameter*> matching(const std::string& pattern) const;

    /** The parameters of the groups with that label, or else of those with the text in their path; case does not
     *  matter. Throws UsageError when there is none. */
    std::vector<const Parameter*> inGroup(const std::string& label) const;

private:
    void addTree(const RegisterInfo& record, std::vector<std::string>& groups);
    void addNamesWithoutRecord(Instance& instance);
    /** Names similar to the word, or with a label that is more similar; else those with a similar part. */
    std::vector<std::string> closestNames(std::string_view name) const;
    /** "; did you mean ROI?", or a reference to the list of groups. */
    std::string suggestedGroups(const std::string& label) const;

    bool isWanted(std::string_view name) const;

    bool m_wantsDesign, m_wantsOthers;
    std::vector<Parameter> m_parameters;
};

} // namespace applet_tools

#endif
