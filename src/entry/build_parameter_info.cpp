// Fills the published tree: the public parameters, then everything offered for direct access.

#include "catalogue/Fg_ParameterInfo.h"
#include "catalogue/direct_registers.h"
#include "catalogue/parameter_tree.h"
#include "catalogue/runtime_tree.h"
#include "entry/sdk_parameters.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <vector>

using namespace catalogue;

namespace {

constexpr int published = 1;

/** Adds one parameter below a group; one overload for each kind. */
struct AddParameter {
    Fg_ParameterInfo& tree;
    RegisterInfo* parent;
    const TreeRow& row;
    const char* name;

    RegisterInfo* operator()(const Group&) const { return nullptr; }
    RegisterInfo* operator()(const UInt& range) const {
        return number(&Fg_ParameterInfo::addInfoUInt, range);
    }
    RegisterInfo* operator()(const Int& range) const { return number(&Fg_ParameterInfo::addInfoInt, range); }
    RegisterInfo* operator()(const UInt64& range) const {
        return number(&Fg_ParameterInfo::addInfoUInt64, range);
    }
    RegisterInfo* operator()(const Int64& range) const {
        return number(&Fg_ParameterInfo::addInfoInt64, range);
    }
    RegisterInfo* operator()(const Double& range) const {
        return number(&Fg_ParameterInfo::addInfoDouble, range);
    }
    RegisterInfo* operator()(const UIntField& field) const {
        return tree.addInfoUIntField(parent, row.label, name, field.elementCount, field.minimum,
                                     field.maximum, field.increment, row.access, row.paramClass, published,
                                     row.unit, row.id, port);
    }
    RegisterInfo* operator()(const Enumeration& enumeration) const {
        const int count = static_cast<int>(enumeration.entries.size());
        RegisterInfo* record = tree.addInfoEnum(parent, row.label, name, count, row.access, row.paramClass,
                                                published, row.unit, row.id, port);
        for (int i = 0; i < count; ++i) {
            const EnumEntry& entry = enumeration.entries[static_cast<std::size_t>(i)];
            tree.addEnumNameValue(record, i, entry.label, entry.value, entry.symbolicName);
        }
        return record;
    }
    RegisterInfo* operator()(const Text& text) const {
        return tree.addInfoString(parent, row.label, name, text.value, row.access, row.paramClass, published,
                                  row.unit, row.id, port);
    }

private:
    template <typename Add, typename T> RegisterInfo* number(Add add, const Range<T>& range) const {
        return (tree.*add)(parent, row.label, name, range.minimum, range.maximum, range.increment, row.access,
                           row.paramClass, published, row.unit, row.id, port);
    }
};

/** The group of each row: the one that the row creates, or the parent of its parameter. */
std::vector<RegisterInfo*> addGroups(Fg_ParameterInfo& tree) {
    std::vector<RegisterInfo*> groupOfRow;
    std::vector<RegisterInfo*> path;
    groupOfRow.reserve(std::size(parameterTree));
    for (const TreeRow& row : parameterTree) {
        if (const Group* group = std::get_if<Group>(&row.content)) {
            path.resize(static_cast<std::size_t>(group->depth));
            path.push_back(tree.addGroupInfo(port, path.empty() ? nullptr : path.back(), row.label));
        }
        groupOfRow.push_back(path.back());
    }
    return groupOfRow;
}

/** Largest value of a register of more than 32 bits; all ones from 64 bits on. */
std::uint64_t wideMaximum(int bits) {
    return bits >= 64 ? std::numeric_limits<std::uint64_t>::max() : (std::uint64_t{1} << bits) - 1;
}

/**
 * Largest value of a register of at most 32 bits: 2 to the width, truncated to 32 bits, minus 1. 2 to the 32
 * gives 0, as does the fraction of a negative width, so that the result is all ones.
 */
std::uint32_t narrowMaximum(int bits) {
    const std::uint64_t power = bits >= 0 ? std::uint64_t{1} << bits : 0;
    return static_cast<std::uint32_t>(power - 1);
}

/** Copies one parameter of the runtime's tree below a group, under another name and id. */
RegisterInfo* copyParameter(Fg_ParameterInfo& tree, RegisterInfo* parent, const RegisterInfo& source,
                            const char* name, int id) {
    const int access = static_cast<int>(source.access);
    const auto number = [&](auto add, const auto& range) {
        return (tree.*add)(parent, source.displayName, name, range.minimum, range.maximum, range.increment,
                           access, source.paramClass, source.published, source.unit, id, port);
    };
    switch (source.kind) {
    case REGISTER_KIND_UINT:
        return number(&Fg_ParameterInfo::addInfoUInt, source.value.u32);
    case REGISTER_KIND_INT:
        return number(&Fg_ParameterInfo::addInfoInt, source.value.i32);
    case REGISTER_KIND_UINT64:
        return number(&Fg_ParameterInfo::addInfoUInt64, source.value.u64);
    case REGISTER_KIND_INT64:
        return number(&Fg_ParameterInfo::addInfoInt64, source.value.i64);
    case REGISTER_KIND_DOUBLE:
        return number(&Fg_ParameterInfo::addInfoDouble, source.value.f64);
    case REGISTER_KIND_STRING:
        return tree.addInfoString(parent, source.displayName, name, source.value.string.text, access,
                                  source.paramClass, source.published, source.unit, id, port);
    case REGISTER_KIND_ENUM: {
        const auto& entries = source.value.enumeration;
        RegisterInfo* record = tree.addInfoEnum(parent, source.displayName, name, entries.entryCount, access,
                                                source.paramClass, source.published, source.unit, id, port);
        for (int i = 0; i < entries.entryCount; ++i)
            tree.addEnumNameValue(record, i, entries.labels[i], entries.values[i], entries.symbolicNames[i]);
        return record;
    }
    default:
        return nullptr;
    }
}

/** The result of a walk over the runtime's tree. */
struct RuntimeTree {
    struct Leaf {
        const RegisterInfo* record;
        const RegisterInfo* parent;
    };
    std::unordered_map<int, Leaf> leafById; // the first of each id
    std::unordered_map<const RegisterInfo*, const RegisterInfo*> parentOf;

    explicit RuntimeTree(const RegisterInfo* root) {
        walkRuntimeTree(
            root,
            [this](const RegisterInfo& leaf, const RegisterInfo* parent) {
                leafById.try_emplace(leaf.id, Leaf{&leaf, parent});
            },
            [this](const RegisterInfo& group, const RegisterInfo* parent) {
                parentOf.try_emplace(&group, parent);
            });
    }
};

/** Mirrors groups of the runtime's tree below a group of ours, each once. */
class GroupMirror {
public:
    GroupMirror(Fg_ParameterInfo& tree, RegisterInfo* top, const RuntimeTree& source)
        : m_tree(tree)
        , m_top(top)
        , m_source(source) {}

    RegisterInfo* copyOf(const RegisterInfo* group) {
        if (group == nullptr) return m_top;
        const auto known = m_copies.find(group);
        if (known != m_copies.end()) return known->second;
        RegisterInfo* parent = copyOf(m_source.parentOf.at(group));
        RegisterInfo* copy = m_tree.addGroupInfo(port, parent, group->displayName, group->name, 0);
        return m_copies[group] = copy;
    }

private:
    Fg_ParameterInfo& m_tree;
    RegisterInfo* m_top;
    const RuntimeTree& m_source;
    std::unordered_map<const RegisterInfo*, RegisterInfo*> m_copies;
};

} // namespace

void PublishedParameters::buildParameterInfo() {
    // All groups first: in every group the sub-groups come before the parameters.
    const std::vector<RegisterInfo*> groupOfRow = addGroups(parameterInfo());
    for (std::size_t i = 0; i < std::size(parameterTree); ++i) {
        const TreeRow& row = parameterTree[i];
        if (std::holds_alternative<Group>(row.content)) continue;
        const SdkParameter* parameter = findParameter(row.id);
        RegisterInfo* record =
            std::visit(AddParameter{parameterInfo(), groupOfRow[i], row, parameter->name}, row.content);
        m_registerInfos[static_cast<std::size_t>(parameter - sdkParameters.data())] = record;
    }
    if (m_directRegisterAccess) addDirectRegisters();
    if (!m_directParameterIdByName.empty()) addDirectParameters();
}

void PublishedParameters::addDirectRegisters() {
    RegisterInfo* group = parameterInfo().addGroupInfo(port, nullptr, directRegisterGroup);
    if (group == nullptr) return;
    forEachRegister(designHandle(), [&](const DirectRegister& reg) {
        const int bits = TslGetRegisterBitRange(designHandle(), reg.number);
        const int access = TslGetRegisterDirection(designHandle(), reg.number) != 0 ? anyTime : readOnly;
        const std::string name = reg.publicName();
        const std::string label = std::string(reg.name) + " (" + std::to_string(bits) + ")";
        if (bits > 32)
            parameterInfo().addInfoUInt64(group, label.c_str(), name.c_str(), 0, wideMaximum(bits), 1, access,
                                          1, published, nullptr, reg.publicId(), port);
        else
            parameterInfo().addInfoUInt(group, label.c_str(), name.c_str(), 0, narrowMaximum(bits), 1, access,
                                        1, published, nullptr, reg.publicId(), port);
    });
}

void PublishedParameters::addDirectParameters() {
    RegisterInfo* group = parameterInfo().addGroupInfo(port, nullptr, "Direct LOOM Access");
    const RegisterInfo* root = getUnwrappedParameterInfo();
    if (group == nullptr || root == nullptr) return;

    const RuntimeTree source(root);
    GroupMirror mirror(parameterInfo(), group, source);
    for (const auto& [name, id] : m_directParameterIdByName) {
        const auto found = source.leafById.find(movedId(id, -FG_DIRECT_PARAMETER_BASE));
        if (found == source.leafById.end() || !isDirectKind(*found->second.record)) continue;
        copyParameter(parameterInfo(), mirror.copyOf(found->second.parent), *found->second.record,
                      name.c_str(), id);
    }
}
