#include "virtual_board/libraries/RuntimeTree.h"

namespace vboard {
namespace {

constexpr const char* runtimeGroup = "Runtime";

/** Returns the length of the first part of a name: up to "_"; a number belongs to the part before it. */
std::size_t lengthOfPart(std::string_view name) {
    std::size_t end = name.find('_');
    while (end != std::string_view::npos) {
        const std::size_t next = name.find('_', end + 1);
        const std::string_view following = name.substr(end + 1, next - end - 1);
        const bool isNumber = following.find_first_not_of("0123456789") == std::string_view::npos;
        if (!isNumber) return end;
        end = next;
    }
    return name.size();
}

/** Returns the position of the last part of a name; the path of its group ends before it. */
std::size_t startOfLeaf(std::string_view name) {
    std::size_t start = 0;
    while (true) {
        const std::size_t length = lengthOfPart(name.substr(start));
        if (start + length >= name.size()) return start;
        start += length + 1;
    }
}

template <typename Limits> void setLimits(Limits& limits, const ParameterRow& row, std::uint64_t value) {
    using Number = decltype(limits.value);
    limits.minimum = static_cast<Number>(row.minimum);
    limits.maximum = static_cast<Number>(row.maximum);
    limits.increment = 1;
    limits.value = static_cast<Number>(value);
}

} // namespace

RuntimeTree::RuntimeTree(Board& board, const Design& design) {
    for (int row = 0; row < std::ssize(parameterRows()); ++row)
        if (design.has(row)) addLeaf(board, row);
    if (m_root == nullptr) groupOf(runtimeGroup);
}

char* RuntimeTree::keep(std::string text) { return m_texts.emplace_back(std::move(text)).data(); }

void RuntimeTree::describe(RegisterInfo& record, std::string_view label) {
    record.displayName = keep(std::string(label));
    record.structSize = REGISTER_INFO_SIZE;
    record.version = REGISTER_INFO_VERSION;
}

void RuntimeTree::link(RegisterInfo& record, Group& parent) {
    record.index = static_cast<std::int32_t>(parent.children.size());
    record.depth = parent.record.depth + 1;
    record.parentName = parent.record.displayName;
    parent.children.push_back(&record);
    auto& group = parent.record.value.group;
    group.childCount = group.nextChildIndex = record.index + 1;
    group.children = parent.children.data();
}

RuntimeTree::Group& RuntimeTree::groupOf(std::string_view path) {
    Group*& known = m_groupByPath[std::string(path)];
    if (known != nullptr) return *known;
    Group& group = m_groups.emplace_back();
    known = &group; // the map's next insertion invalidates the reference

    const std::size_t start = startOfLeaf(path);
    group.record.kind = REGISTER_KIND_GROUP;
    describe(group.record, path.substr(start));
    if (start != 0) {
        link(group.record, groupOf(path.substr(0, start - 1)));
        return group;
    }
    // Top level; only these groups have a name.
    group.record.name = keep(std::string(path));
    if (m_root == nullptr) {
        m_root = &group.record;
    } else {
        m_lastTopLevel->next = &group.record;
        group.record.previous = m_lastTopLevel;
    }
    m_lastTopLevel = &group.record;
    return group;
}

void RuntimeTree::describeEntries(RegisterInfo& record, const ParameterRow& row, std::uint64_t value) {
    auto& labels = m_words.emplace_back();
    auto& symbols = m_words.emplace_back();
    auto& values = m_values.emplace_back();
    for (const EnumEntry& entry : row.entries) {
        labels.push_back(keep(entry.label));
        symbols.push_back(entry.symbolicName != nullptr ? keep(entry.symbolicName) : nullptr);
        values.push_back(entry.value);
    }
    auto& enumeration = record.value.enumeration;
    enumeration.entryCount = static_cast<std::int32_t>(values.size());
    enumeration.labels = labels.data();
    enumeration.symbolicNames = symbols.data();
    enumeration.values = values.data();
    enumeration.value = static_cast<std::int32_t>(value);
    // Empty arrays: readers index them without a null check.
    record.enumEntryDescriptions = m_words.emplace_back(values.size()).data();
    record.enumEntryToolTips = m_words.emplace_back(values.size()).data();
    record.enumEntryGenICamNames = m_words.emplace_back(values.size()).data();
}

void RuntimeTree::addLeaf(Board& board, int at) {
    const ParameterRow& row = parameterRows()[static_cast<std::size_t>(at)];
    const std::string_view name = row.name;
    const bool isOwn = row.number != 0;
    const std::size_t start = isOwn ? 0 : startOfLeaf(name);
    Group& group = groupOf(isOwn ? runtimeGroup : name.substr(0, start - 1));

    RegisterInfo& record = m_leaves.emplace_back();
    describe(record, name.substr(start));
    record.name = keep(row.name);
    record.unit = keep(row.unit);
    record.id = idOfRow(at);
    record.published = 1;
    record.paramClass = row.writable ? 1 : 2;
    record.access = REGISTER_ACCESS_READ;
    if (row.writable) record.access |= REGISTER_ACCESS_WRITE | REGISTER_ACCESS_WRITE_WHILE_ACQUIRING;
    link(record, group);

    describeValue(record, row, board.values().number(at));
    if (row.type == Type::text) record.value.string.text = keep(board.values().text(at));
}

void RuntimeTree::describeValue(RegisterInfo& record, const ParameterRow& row, std::uint64_t value) {
    if (!row.entries.empty()) {
        record.kind = REGISTER_KIND_ENUM;
        describeEntries(record, row, value);
        return;
    }
    switch (row.type) {
    case Type::u32:
        record.kind = REGISTER_KIND_UINT;
        setLimits(record.value.u32, row, value);
        break;
    case Type::i32:
        record.kind = REGISTER_KIND_INT;
        setLimits(record.value.i32, row, value);
        break;
    case Type::u64:
        record.kind = REGISTER_KIND_UINT64;
        setLimits(record.value.u64, row, value);
        break;
    case Type::i64:
        record.kind = REGISTER_KIND_INT64;
        setLimits(record.value.i64, row, value);
        break;
    case Type::f64:
        record.kind = REGISTER_KIND_DOUBLE;
        record.value.f64 = {std::bit_cast<double>(row.minimum), std::bit_cast<double>(row.maximum), 0.001,
                            std::bit_cast<double>(value)};
        break;
    case Type::text:
        record.kind = REGISTER_KIND_STRING;
        break;
    case Type::field:
        record.kind = REGISTER_KIND_UINT_FIELD;
        record.value.u32Field.maximum = static_cast<std::uint32_t>(row.maximum);
        record.value.u32Field.elementCount = fieldSize;
        break;
    }
}

} // namespace vboard
