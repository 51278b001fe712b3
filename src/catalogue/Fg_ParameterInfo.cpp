#include "catalogue/Fg_ParameterInfo.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>

namespace {

std::size_t portsOf(int count) {
    if (count < 0) throw std::bad_array_new_length();
    return static_cast<std::size_t>(count);
}

/** Zeroed objects in the memory of a port, which releases all of it at once. */
template <typename T> T* makeZeroed(std::pmr::memory_resource& memory, std::size_t count = 1) {
    auto* objects = std::pmr::polymorphic_allocator<T>(&memory).allocate(count);
    std::uninitialized_value_construct_n(objects, count);
    return objects;
}

/** A private copy; null for null. */
char* copyOf(std::pmr::memory_resource& memory, const char* text) {
    if (text == nullptr) return nullptr;
    const std::size_t size = std::strlen(text) + 1;
    return static_cast<char*>(std::memcpy(memory.allocate(size, 1), text, size));
}

/** A private copy; null for a null or empty text. */
char* copyUnlessEmpty(std::pmr::memory_resource& memory, const char* text) {
    return text != nullptr && *text != '\0' ? copyOf(memory, text) : nullptr;
}

bool hasEntry(const RegisterInfo* info, int index) {
    return info != nullptr && info->kind == REGISTER_KIND_ENUM && index >= 0 &&
           index < info->value.enumeration.entryCount;
}

/** One entry more than the capacity: a full array takes one name before it grows. */
void reserveNames(std::pmr::memory_resource& memory, RegisterInfo* info, std::uint32_t capacity) {
    auto** names = makeZeroed<char*>(memory, std::size_t{capacity} + 1);
    std::copy_n(info->invalidatingNames, info->invalidatingNameCount, names);
    info->invalidatingNames = names;
    info->invalidatingNameCapacity = capacity;
}

} // namespace

/** The fields that parameters of all kinds have in common. */
struct Fg_ParameterInfo::Leaf {
    RegisterInfo* parent;
    const char* displayName;
    const char* name;
    int access;
    int paramClass;
    int published;
    const char* unit;
    int id;
    int port;
};

Fg_ParameterInfo::Fg_ParameterInfo(int portCount)
    : m_portCount(portCount)
    , m_ports(new Port[portsOf(portCount)]) {}

Fg_ParameterInfo::~Fg_ParameterInfo() = default;

Fg_ParameterInfo::Port* Fg_ParameterInfo::find(int port) const {
    return port >= 0 && port < m_portCount ? &m_ports[static_cast<std::size_t>(port)] : nullptr;
}

Fg_ParameterInfo::Port* Fg_ParameterInfo::findOpen(int port) const {
    Port* found = find(port);
    return found != nullptr && !found->finalized ? found : nullptr;
}

void Fg_ParameterInfo::init(int port) {
    destroy(port);
    Port* found = find(port);
    if (found == nullptr) return;
    found->root = nullptr;
    found->finalized = false;
}

void Fg_ParameterInfo::destroy(int port) {
    if (Port* found = find(port)) found->memory.release();
}

std::pmr::memory_resource& Fg_ParameterInfo::memoryOf(const RegisterInfo& record) const {
    return find(record.port)->memory;
}

void Fg_ParameterInfo::finalize(int port) {
    if (Port* found = find(port)) found->finalized = true;
}

RegisterInfo* Fg_ParameterInfo::create(int port, int kind, const char* displayName, const char* name, int id,
                                       int access, int paramClass, int published, const char* unit) {
    Port* found = find(port);
    if (found == nullptr) return nullptr;
    std::pmr::memory_resource& memory = found->memory;
    auto* record = makeZeroed<RegisterInfo>(memory);
    record->structSize = REGISTER_INFO_SIZE;
    record->version = REGISTER_INFO_VERSION;
    record->kind = kind;
    record->displayName = copyOf(memory, displayName != nullptr ? displayName : "");
    record->name = copyOf(memory, name);
    record->id = id;
    record->access = static_cast<std::uint32_t>(access);
    record->paramClass = paramClass;
    record->published = published;
    record->unit = copyOf(memory, unit);
    record->port = port;
    return record;
}

void Fg_ParameterInfo::add(RegisterInfo* child, RegisterInfo* parent) {
    if (child == nullptr || parent == nullptr || parent->kind != REGISTER_KIND_GROUP) return;
    auto& group = parent->value.group;
    const auto count = static_cast<std::size_t>(group.childCount);
    if (count == 0 || std::has_single_bit(count)) { // full: the capacity is always a power of two
        auto** children = makeZeroed<RegisterInfo*>(memoryOf(*parent), std::max<std::size_t>(2 * count, 1));
        std::copy_n(group.children, count, children);
        group.children = children;
    }
    child->index = group.nextChildIndex++;
    child->depth = parent->depth + 1;
    group.children[child->index] = child;
    ++group.childCount;
    child->parentName = copyOf(memoryOf(*child), parent->displayName);
}

void Fg_ParameterInfo::add(RegisterInfo* record, int port) {
    Port* found = find(port);
    if (record == nullptr || found == nullptr) return;
    record->depth = 0;
    record->parentName = nullptr;
    if (found->root == nullptr) {
        found->root = record;
        return;
    }
    RegisterInfo* last = found->root;
    while (last->next != nullptr)
        last = last->next;
    last->next = record;
    record->previous = last;
}

RegisterInfo* Fg_ParameterInfo::addGroupInfo(int port, RegisterInfo* parent, const char* displayName) {
    return addGroupInfo(port, parent, displayName, nullptr, 0);
}

RegisterInfo* Fg_ParameterInfo::addGroupInfo(int port, RegisterInfo* parent, const char* displayName,
                                             const char* name, int published) {
    if (findOpen(port) == nullptr) return nullptr;
    RegisterInfo* group = create(port, REGISTER_KIND_GROUP, displayName, name, 0, 0, 0, published, nullptr);
    if (parent != nullptr)
        add(group, parent);
    else
        add(group, port);
    return group;
}

RegisterInfo* Fg_ParameterInfo::addLeaf(int kind, const Leaf& leaf) {
    if (findOpen(leaf.port) == nullptr || leaf.parent == nullptr) return nullptr;
    RegisterInfo* record = create(leaf.port, kind, leaf.displayName, leaf.name, leaf.id, leaf.access,
                                  leaf.paramClass, leaf.published, leaf.unit);
    add(record, leaf.parent);
    return record;
}

template <typename Area, typename T>
RegisterInfo* Fg_ParameterInfo::addScalar(int kind, Area RegisterInfoValue::*area, const Leaf& leaf,
                                          T minimum, T maximum, T increment) {
    RegisterInfo* record = addLeaf(kind, leaf);
    if (record != nullptr) record->value.*area = {minimum, maximum, increment, 0};
    return record;
}

template <typename Area, typename T>
RegisterInfo* Fg_ParameterInfo::addField(int kind, Area RegisterInfoValue::*area, const Leaf& leaf,
                                         int elementCount, T minimum, T maximum) {
    RegisterInfo* record = addLeaf(kind, leaf);
    if (record != nullptr) record->value.*area = {minimum, maximum, elementCount, 0, minimum};
    return record;
}

RegisterInfo* Fg_ParameterInfo::addInfoEnum(RegisterInfo* parent, const char* displayName, const char* name,
                                            int entryCount, int access, int paramClass, int published,
                                            const char* unit, int id, int port) {
    RegisterInfo* record = addLeaf(
        REGISTER_KIND_ENUM, {parent, displayName, name, access, paramClass, published, unit, id, port});
    if (record == nullptr) return nullptr;
    const auto count = static_cast<std::size_t>(std::max(entryCount, 0));
    std::pmr::memory_resource& memory = memoryOf(*record);
    auto& value = record->value.enumeration;
    for (char*** texts : {&value.labels, &value.symbolicNames, &record->enumEntryDescriptions,
                          &record->enumEntryToolTips, &record->enumEntryGenICamNames})
        *texts = makeZeroed<char*>(memory, count);
    value.values = makeZeroed<std::int32_t>(memory, count);
    value.entryCount = static_cast<std::int32_t>(count);
    return record;
}

int Fg_ParameterInfo::addEnumNameValue(RegisterInfo* info, int index, const char* label, int value,
                                       const char* symbolicName) {
    if (!hasEntry(info, index)) return FG_ERR_BUFFER;
    auto& entries = info->value.enumeration;
    std::pmr::memory_resource& memory = memoryOf(*info);
    entries.symbolicNames[index] = nullptr;
    entries.labels[index] = copyOf(memory, label);
    if (entries.labels[index] == nullptr) return FG_ERR_BUFFER;
    entries.values[index] = value;
    entries.symbolicNames[index] = copyOf(memory, symbolicName);
    return FG_OK;
}

RegisterInfo* Fg_ParameterInfo::addInfoInt(RegisterInfo* parent, const char* displayName, const char* name,
                                           std::int32_t minimum, std::int32_t maximum, std::int32_t increment,
                                           int access, int paramClass, int published, const char* unit,
                                           int id, int port) {
    return addScalar(REGISTER_KIND_INT, &RegisterInfoValue::i32,
                     {parent, displayName, name, access, paramClass, published, unit, id, port}, minimum,
                     maximum, increment);
}

RegisterInfo* Fg_ParameterInfo::addInfoUInt(RegisterInfo* parent, const char* displayName, const char* name,
                                            std::uint32_t minimum, std::uint32_t maximum,
                                            std::uint32_t increment, int access, int paramClass,
                                            int published, const char* unit, int id, int port) {
    return addScalar(REGISTER_KIND_UINT, &RegisterInfoValue::u32,
                     {parent, displayName, name, access, paramClass, published, unit, id, port}, minimum,
                     maximum, increment);
}

RegisterInfo* Fg_ParameterInfo::addInfoInt64(RegisterInfo* parent, const char* displayName, const char* name,
                                             std::int64_t minimum, std::int64_t maximum,
                                             std::int64_t increment, int access, int paramClass,
                                             int published, const char* unit, int id, int port) {
    return addScalar(REGISTER_KIND_INT64, &RegisterInfoValue::i64,
                     {parent, displayName, name, access, paramClass, published, unit, id, port}, minimum,
                     maximum, increment);
}

RegisterInfo* Fg_ParameterInfo::addInfoUInt64(RegisterInfo* parent, const char* displayName, const char* name,
                                              std::uint64_t minimum, std::uint64_t maximum,
                                              std::uint64_t increment, int access, int paramClass,
                                              int published, const char* unit, int id, int port) {
    return addScalar(REGISTER_KIND_UINT64, &RegisterInfoValue::u64,
                     {parent, displayName, name, access, paramClass, published, unit, id, port}, minimum,
                     maximum, increment);
}

RegisterInfo* Fg_ParameterInfo::addInfoDouble(RegisterInfo* parent, const char* displayName, const char* name,
                                              double minimum, double maximum, double increment, int access,
                                              int paramClass, int published, const char* unit, int id,
                                              int port) {
    return addScalar(REGISTER_KIND_DOUBLE, &RegisterInfoValue::f64,
                     {parent, displayName, name, access, paramClass, published, unit, id, port}, minimum,
                     maximum, increment);
}

RegisterInfo* Fg_ParameterInfo::addInfoString(RegisterInfo* parent, const char* displayName, const char* name,
                                              const char* value, int access, int paramClass, int published,
                                              const char* unit, int id, int port) {
    RegisterInfo* record = addLeaf(
        REGISTER_KIND_STRING, {parent, displayName, name, access, paramClass, published, unit, id, port});
    if (record != nullptr) record->value.string.text = copyOf(memoryOf(*record), value);
    return record;
}

RegisterInfo* Fg_ParameterInfo::addInfoIntField(RegisterInfo* parent, const char* displayName,
                                                const char* name, int elementCount, std::int32_t minimum,
                                                std::int32_t maximum, std::int32_t /*increment*/, int access,
                                                int paramClass, int published, const char* unit, int id,
                                                int port) {
    return addField(REGISTER_KIND_INT_FIELD, &RegisterInfoValue::i32Field,
                    {parent, displayName, name, access, paramClass, published, unit, id, port}, elementCount,
                    minimum, maximum);
}

RegisterInfo* Fg_ParameterInfo::addInfoUIntField(RegisterInfo* parent, const char* displayName,
                                                 const char* name, int elementCount, std::uint32_t minimum,
                                                 std::uint32_t maximum, std::uint32_t /*increment*/,
                                                 int access, int paramClass, int published, const char* unit,
                                                 int id, int port) {
    return addField(REGISTER_KIND_UINT_FIELD, &RegisterInfoValue::u32Field,
                    {parent, displayName, name, access, paramClass, published, unit, id, port}, elementCount,
                    minimum, maximum);
}

RegisterInfo* Fg_ParameterInfo::addInfoInt64Field(RegisterInfo* parent, const char* displayName,
                                                  const char* name, int elementCount, std::int64_t minimum,
                                                  std::int64_t maximum, std::int64_t /*increment*/,
                                                  int access, int paramClass, int published, const char* unit,
                                                  int id, int port) {
    return addField(REGISTER_KIND_INT64_FIELD, &RegisterInfoValue::i64Field,
                    {parent, displayName, name, access, paramClass, published, unit, id, port}, elementCount,
                    minimum, maximum);
}

RegisterInfo* Fg_ParameterInfo::addInfoUInt64Field(RegisterInfo* parent, const char* displayName,
                                                   const char* name, int elementCount, std::uint64_t minimum,
                                                   std::uint64_t maximum, std::uint64_t /*increment*/,
                                                   int access, int paramClass, int published,
                                                   const char* unit, int id, int port) {
    return addField(REGISTER_KIND_UINT64_FIELD, &RegisterInfoValue::u64Field,
                    {parent, displayName, name, access, paramClass, published, unit, id, port}, elementCount,
                    minimum, maximum);
}

RegisterInfo* Fg_ParameterInfo::addInfoDoubleField(RegisterInfo* parent, const char* displayName,
                                                   const char* name, int elementCount, double minimum,
                                                   double maximum, double /*increment*/, int access,
                                                   int paramClass, int published, const char* unit, int id,
                                                   int port) {
    return addField(REGISTER_KIND_DOUBLE_FIELD, &RegisterInfoValue::f64Field,
                    {parent, displayName, name, access, paramClass, published, unit, id, port}, elementCount,
                    minimum, maximum);
}

RegisterInfo* Fg_ParameterInfo::getRegisterInfo(int port) const {
    const Port* found = find(port);
    return found != nullptr ? found->root : nullptr;
}

RegisterInfo* Fg_ParameterInfo::getNextRegisterInfo(RegisterInfo* info, int port) const {
    const Port* found = find(port);
    if (found == nullptr) return nullptr;
    return info != nullptr ? info->next : found->root;
}

void Fg_ParameterInfo::setDescription(RegisterInfo* info, const char* text) {
    if (info != nullptr) info->description = copyUnlessEmpty(memoryOf(*info), text);
}

void Fg_ParameterInfo::setToolTip(RegisterInfo* info, const char* text) {
    if (info != nullptr) info->toolTip = copyUnlessEmpty(memoryOf(*info), text);
}

void Fg_ParameterInfo::setGenICamName(RegisterInfo* info, const char* text) {
    if (info != nullptr) info->genICamName = copyUnlessEmpty(memoryOf(*info), text);
}

void Fg_ParameterInfo::setGenICamVisibility(RegisterInfo* info, int value) {
    if (info != nullptr) info->genICamVisibility = value;
}

void Fg_ParameterInfo::setGenICamStreamable(RegisterInfo* info, bool value) {
    if (info != nullptr) info->genICamStreamable = value;
}

void Fg_ParameterInfo::setGenICamType(RegisterInfo* info, int value) {
    if (info != nullptr) info->genICamType = value;
}

void Fg_ParameterInfo::setEnumEntryDescription(RegisterInfo* info, int index, const char* text) {
    if (hasEntry(info, index)) info->enumEntryDescriptions[index] = copyUnlessEmpty(memoryOf(*info), text);
}

void Fg_ParameterInfo::setEnumEntryToolTip(RegisterInfo* info, int index, const char* text) {
    if (hasEntry(info, index)) info->enumEntryToolTips[index] = copyUnlessEmpty(memoryOf(*info), text);
}

void Fg_ParameterInfo::setEnumEntryGenICamName(RegisterInfo* info, int index, const char* text) {
    if (hasEntry(info, index)) info->enumEntryGenICamNames[index] = copyUnlessEmpty(memoryOf(*info), text);
}

void Fg_ParameterInfo::setInvalidatingNameCapacity(RegisterInfo* info, std::uint32_t capacity) {
    if (info == nullptr || capacity <= info->invalidatingNameCapacity) return;
    reserveNames(memoryOf(*info), info, capacity);
}

void Fg_ParameterInfo::addInvalidatingName(RegisterInfo* info, const char* name) {
    if (info == nullptr || name == nullptr || *name == '\0') return;
    std::pmr::memory_resource& memory = memoryOf(*info);
    // A count equal to the capacity does not make the array grow.
    const std::uint32_t capacity = info->invalidatingNameCapacity;
    if (info->invalidatingNames == nullptr)
        reserveNames(memory, info, capacity);
    else if (capacity < info->invalidatingNameCount)
        reserveNames(memory, info, capacity == 0 ? 1 : 2 * capacity);
    info->invalidatingNames[info->invalidatingNameCount] = copyOf(memory, name);
    ++info->invalidatingNameCount;
}
