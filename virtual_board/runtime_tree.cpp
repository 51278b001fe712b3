#include "runtime_tree.h"

#include "board.h"

#include <string_view>

using namespace vboard;

namespace {

/** A name's group: the first three of its parts, as in "Device1_Process0_Buffer". */
std::string pathOf(std::string_view name) {
    std::size_t end = 0;
    for (int part = 0; part < 3; ++part) {
        const std::size_t next = name.find('_', end + 1);
        if (next == std::string_view::npos) break;
        end = next;
    }
    return std::string(name.substr(0, end));
}

bool isSwitch(std::string_view name) { return name.ends_with("_Invert") || name.ends_with("Mirror"); }

} // namespace

RuntimeTree::RuntimeTree() {
    m_switchLabels = {keep("Off"), keep("On")};
    m_switchNames = {keep("OFF"), keep("ON")};
    for (std::size_t i = 0; i < designParameters.size(); ++i) {
        if (!DesignState::instance().has(i)) continue;
        const std::string name = designParameters[i].name;
        const std::string path = pathOf(name);
        Group& group = groupFor(path);
        describe(addLeaf(group, name.c_str() + path.size() + 1, designParameters[i].name), i);
    }
    for (auto& [path, group] : m_groups) {
        group.record.value.group.childCount = static_cast<std::int32_t>(group.children.size());
        group.record.value.group.children = group.children.data();
        group.record.value.group.nextChildIndex = group.record.value.group.childCount;
    }
    for (std::size_t i = 1; i < m_topLevel.size(); ++i) {
        m_topLevel[i - 1]->record.next = &m_topLevel[i]->record;
        m_topLevel[i]->record.previous = &m_topLevel[i - 1]->record;
    }
}

RegisterInfo* RuntimeTree::root() { return m_topLevel.empty() ? nullptr : &m_topLevel.front()->record; }

char* RuntimeTree::keep(const std::string& text) { return m_texts.emplace_back(text).data(); }

/** "Device1_Process0" is a top-level group; "Device1_Process0_Buffer" hangs below it. */
RuntimeTree::Group& RuntimeTree::groupFor(const std::string& path) {
    const auto found = m_groups.find(path);
    if (found != m_groups.end()) return found->second;

    Group& group = m_groups[path];
    const std::size_t cut = path.rfind('_');
    RegisterInfo& record = group.record;
    record.kind = REGISTER_KIND_GROUP;
    record.displayName = keep(path.substr(cut + 1));
    record.name = keep(path);
    record.structSize = REGISTER_INFO_SIZE;
    record.version = REGISTER_INFO_VERSION;
    if (path.find('_') == cut) {
        m_topLevel.push_back(&group);
        return group;
    }
    Group& parent = groupFor(path.substr(0, cut));
    record.index = static_cast<std::int32_t>(parent.children.size());
    record.depth = parent.record.depth + 1;
    record.parentName = parent.record.displayName;
    parent.children.push_back(&record);
    return group;
}

RegisterInfo& RuntimeTree::addLeaf(Group& parent, const char* label, const char* name) {
    RegisterInfo& record = m_leaves.emplace_back();
    record.displayName = keep(label);
    record.name = keep(name);
    record.paramClass = 1;
    record.published = 1;
    record.index = static_cast<std::int32_t>(parent.children.size());
    record.depth = parent.record.depth + 1;
    record.parentName = parent.record.displayName;
    record.unit = keep("");
    record.structSize = REGISTER_INFO_SIZE;
    record.version = REGISTER_INFO_VERSION;
    parent.children.push_back(&record);
    return record;
}

void RuntimeTree::describe(RegisterInfo& record, std::size_t position) {
    const DesignParameter& parameter = designParameters[position];
    record.id = firstParameterId + static_cast<std::int32_t>(position);
    record.access = parameter.readOnly ? REGISTER_ACCESS_READ : 7;
    switch (parameter.type) {
    case ValueType::U32:
        if (isSwitch(parameter.name)) {
            record.kind = REGISTER_KIND_ENUM;
            record.value.enumeration = {2, m_switchLabels.data(), m_switchValues, 0, m_switchNames.data()};
            return;
        }
        record.kind = REGISTER_KIND_UINT;
        record.value.u32 = {0, 4294967295u, 1, 0};
        return;
    case ValueType::I32:
        record.kind = REGISTER_KIND_INT;
        record.value.i32 = {INT32_MIN, INT32_MAX, 1, 0};
        return;
    case ValueType::U64:
        record.kind = REGISTER_KIND_UINT64;
        record.value.u64 = {0, UINT64_MAX, 1, 0};
        return;
    case ValueType::I64:
        record.kind = REGISTER_KIND_INT64;
        record.value.i64 = {INT64_MIN, INT64_MAX, 1, 0};
        return;
    case ValueType::F64:
        record.kind = REGISTER_KIND_DOUBLE;
        record.value.f64 = {0.0, 1e9, 0.0, 0.0};
        return;
    case ValueType::Text:
        record.kind = REGISTER_KIND_STRING;
        record.value.string.text = keep(parameter.text);
        return;
    case ValueType::Field:
        record.kind = REGISTER_KIND_UINT_FIELD;
        record.value.u32Field = {0, 65535, static_cast<std::int32_t>(fieldElements), 0, 0};
        return;
    }
}
