/** The runtime's own tree of parameter descriptions, built from the table of parameters. */
#ifndef VIRTUAL_BOARD_LIBRARIES_RUNTIMETREE_H
#define VIRTUAL_BOARD_LIBRARIES_RUNTIMETREE_H

#include "vexo/register_info.h"
#include "virtual_board/board/Board.h"

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vboard {

/**
 * Groups follow the parts of the names ("Device1" > "Process0" > "Buffer_0" > ...); the top-level chain ends
 * with the group of the runtime's own parameters. A leaf has the full name and the id. Values are read when the
 * tree is built. The tree owns all records.
 */
class RuntimeTree {
public:
    RuntimeTree(Board& board, const Design& design) REQUIRES(board.mutex());
    RegisterInfo* root() const { return m_root; }

private:
    /** A group with its children, stored where the record points to. */
    struct Group {
        RegisterInfo record{};
        std::vector<RegisterInfo*> children;
    };

    char* keep(std::string text);
    Group& groupOf(std::string_view path);
    void describe(RegisterInfo& record, std::string_view label);
    void link(RegisterInfo& record, Group& parent);
    void addLeaf(Board& board, int row) REQUIRES(board.mutex());
    /** Sets kind, limits and number; sets no texts. */
    void describeValue(RegisterInfo& record, const ParameterRow& row, std::uint64_t value);
    void describeEntries(RegisterInfo& record, const ParameterRow& row, std::uint64_t value);

    std::deque<std::string> m_texts;
    std::deque<Group> m_groups;
    std::deque<RegisterInfo> m_leaves;
    std::deque<std::vector<char*>> m_words;
    std::deque<std::vector<std::int32_t>> m_values;
    std::unordered_map<std::string, Group*> m_groupByPath;
    RegisterInfo* m_root = nullptr;
    RegisterInfo* m_lastTopLevel = nullptr;
};

} // namespace vboard

#endif
