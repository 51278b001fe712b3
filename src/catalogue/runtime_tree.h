/** The walk over the runtime's own parameter tree. */
#ifndef CATALOGUE_RUNTIME_TREE_H
#define CATALOGUE_RUNTIME_TREE_H

#include "vexo/register_info.h"

#include <vector>

namespace catalogue {

/** True for the kinds that can be offered for direct access: numbers, enumerations and texts. */
inline bool isDirectKind(const RegisterInfo& record) {
    switch (record.kind) {
    case REGISTER_KIND_INT:
    case REGISTER_KIND_UINT:
    case REGISTER_KIND_INT64:
    case REGISTER_KIND_UINT64:
    case REGISTER_KIND_ENUM:
    case REGISTER_KIND_STRING:
    case REGISTER_KIND_DOUBLE:
        return true;
    default:
        return false;
    }
}

/**
 * Walks the groups of a tree with an explicit stack, from `root` on: all children of a group, then its
 * sub-groups and the next group in the chain, the last found first.
 *
 * @param visitLeaf  called with each child that is not a group, and with the group that holds it
 * @param visitGroup called with each group that is found, and with the group that holds it or null
 */
template <typename VisitLeaf, typename VisitGroup>
void walkRuntimeTree(const RegisterInfo* root, VisitLeaf visitLeaf, VisitGroup visitGroup) {
    struct Pending {
        const RegisterInfo* record;
        const RegisterInfo* parent;
    };
    std::vector<Pending> pending{{root, nullptr}};
    while (!pending.empty()) {
        const auto [group, parent] = pending.back();
        pending.pop_back();
        if (group == nullptr || group->kind != REGISTER_KIND_GROUP) continue;
        visitGroup(*group, parent);
        for (int i = 0; i < group->value.group.childCount; ++i) {
            const RegisterInfo* child = group->value.group.children[i];
            if (child == nullptr) continue;
            if (child->kind == REGISTER_KIND_GROUP)
                pending.push_back({child, group});
            else
                visitLeaf(*child, group);
        }
        if (group->next != nullptr && group->next->kind == REGISTER_KIND_GROUP)
            pending.push_back({group->next, parent});
    }
}

} // namespace catalogue

#endif
