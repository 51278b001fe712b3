/** The runtime's own tree of the design's parameters, grouped by the parts of their names. */
#ifndef VIRTUAL_BOARD_RUNTIME_TREE_H
#define VIRTUAL_BOARD_RUNTIME_TREE_H

#include "vexo/register_info.h"

#include <deque>
#include <map>
#include <string>
#include <vector>

class RuntimeTree {
public:
    /** Of the parameters that the design has at this moment. */
    RuntimeTree();
    /** First record of the top-level chain. */
    RegisterInfo* root();

private:
    struct Group {
        RegisterInfo record{};
        std::vector<RegisterInfo*> children;
    };

    Group& groupFor(const std::string& path);
    RegisterInfo& addLeaf(Group& parent, const char* label, const char* name);
    char* keep(const std::string& text);
    void describe(RegisterInfo& record, std::size_t position);

    std::deque<std::string> m_texts;
    std::deque<RegisterInfo> m_leaves;
    std::map<std::string, Group> m_groups;
    std::vector<Group*> m_topLevel;
    std::vector<char*> m_switchLabels, m_switchNames;
    std::int32_t m_switchValues[2] = {0, 1};
};

#endif
