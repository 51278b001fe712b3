#include "catalogue/Fg_ParameterInfo.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

std::size_t portsOf(int count) {
    if (count < 0) throw std::bad_array_new_length();
    return static_cast<std::size_t>(count);
}

/** A private copy; null for null. */
char* copyOf(const char* text) {
    if (text == nullptr) return nullptr;
    const std::size_t size = std::strlen(text) + 1;
    return static_cast<char*>(std::memcpy(new char[size], text, size));
}

void release(char*& text) {
    delete[] text;
    text = nullptr;
}

/** Puts a copy in the place of the old text; a null or empty text leaves null there. */
void replace(char*& place, const char* text) {
    char* fresh = text != nullptr && *text != '\0' ? copyOf(text) : nullptr;
    delete[] place;
    place = fresh;
}

bool hasEntry(const RegisterInfo* info, int index) {
    return info != nullptr && info->kind == REGISTER_KIND_ENUM && index >= 0 &&
           index < info->value.enumeration.entryCount;
}

void releaseAll(char** texts, std::int64_t count) {
    if (texts == nullptr) return;
    for (std::int64_t i = 0; i < count; ++i)
        delete[] texts[i];
    delete[] texts;
}

void releaseValue(RegisterInfo& record) {
    switch (record.kind) {
    case REGISTER_KIND_ENUM: {
        auto& value = record.value.enumeration;
        for (char** texts : {value.labels, value.symbolicNames, record.enumEntryDescriptions,
                             record.enumEntryToolTips, record.enumEntryGenICamNames})
            releaseAll(texts, value.entryCount);
        delete[] value.values;
        break;
    }
    case REGISTER_KIND_GROUP:
        delete[] record.value.group.children;
        break;
    case REGISTER_KIND_STRING:
        delete[] record.value.string.text;
        break;
    default:
        break;
    }
}

void releaseRecord(RegisterInfo* record) {
    for (char* text : {record->displayName, record->parentName, record->name, record->unit,
                       record->description, record->toolTip, record->genICamName})
        delete[] text;
    releaseValue(*record);
    releaseAll(record->invalidatingNames, record->invalidatingNameCount);
    delete record;
}

/** One place more than the capacity says: a full array takes one name before it grows. */
void reserveNames(RegisterInfo* info, std::uint32_t capacity) {
    auto** names = new char* [std::size_t{capacity} + 1] {};
    std::copy_n(info->invalidatingNames, info->invalidatingNameCount, names);
    delete[] info->invalidatingNames;
    info->invalidatingNames = names;
    info->invalidatingNameCapacity = capacity;
}

} // namespace

/** What all parameters have in common, whatever their kind. */
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

Fg_ParameterInfo::~Fg_ParameterInfo() {
    for (int port = 0; port < m_portCount; ++port)
        destroy(port);
}

Fg_ParameterInfo::Port* Fg_ParameterInfo::find(int port) const {
    return port >= 0 && port < m_portCount ? &m_ports[static_cast<std::size_t>(port)] : nullptr;
}

Fg_ParameterInfo::Port* Fg_ParameterInfo::findOpen(int port) const {
    Port* found = find(port);
    return found != nullptr && !found->finalized ? found : nullptr;
}

void Fg_ParameterInfo::init(int port) {
    destroy(port);
    if (Port* place = find(port)) *place = Port{};
}

void Fg_ParameterInfo::destroy(int port) {
    Port* place = find(port);
    if (place == nullptr) return;
    std::for_each(place->records.begin(), place->records.end(), releaseRecord);
    place->records.clear();
}

void Fg_ParameterInfo::finalize(int port) {
    if (Port* place = find(port)) place->finalized = true;
}

RegisterInfo* Fg_ParameterInfo::create(int port, int kind, const char* displayName, const char* name, int id,
                                       int access, int paramClass, int published, const char* unit) {
    Port* place = find(port);
    if (place == nullptr) return nullptr;
    auto fresh = std::make_unique<RegisterInfo>();
    place->records.push_back(fresh.get());
    RegisterInfo* record = fresh.release();
    record->structSize = REGISTER_INFO_SIZE;
    record->version = REGISTER_INFO_VERSION;
    record->kind = kind;
    record->displayName = copyOf(displayName != nullptr ? displayName : "");
    record->name = copyOf(name);
    record->id = id;
    record->access = static_cast<std::uint32_t>(access);
    record->paramClass = paramClass;
    record->published = published;
    record->unit = copyOf(unit);
    record->port = port;
    return record;
}

void Fg_ParameterInfo::add(RegisterInfo* child, RegisterInfo* parent) {
    if (child == nullptr || parent == nullptr || parent->kind != REGISTER_KIND_GROUP) return;
    auto& group = parent->value.group;
    // One entry more at each addition: the tree is built once and groups are small.
    auto** children = new RegisterInfo*[static_cast<std::size_t>(group.childCount) + 1];
    std::copy_n(group.children, group.childCount, children);
    delete[] group.children;
    group.children = children;

    child->index = group.nextChildIndex++;
    child->depth = parent->depth + 1;
    children[child->index] = child;
    ++group.childCount;
    release(child->parentName);
    child->parentName = copyOf(parent->displayName);
}

void Fg_ParameterInfo::add(RegisterInfo* record, int port) {
    Port* place = find(port);
    if (record == nullptr || place == nullptr) return;
    record->depth = 0;
    release(record->parentName);
    if (place->root == nullptr) {
        place->root = record;
        return;
    }
    RegisterInfo* last = place->root;
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
    auto& value = record->value.enumeration;
    value.labels = new char* [count] {};
    value.symbolicNames = new char* [count] {};
    record->enumEntryDescriptions = new char* [count] {};
    record->enumEntryToolTips = new char* [count] {};
    record->enumEntryGenICamNames = new char* [count] {};
    value.values = new std::int32_t[count]{};
    value.entryCount = static_cast<std::int32_t>(count);
    return record;
}

int Fg_ParameterInfo::addEnumNameValue(RegisterInfo* info, int index, const char* label, int value,
                                       const char* symbolicName) {
    if (!hasEntry(info, index)) return FG_ERR_BUFFER;
    auto& entries = info->value.enumeration;
    release(entries.labels[index]);
    release(entries.symbolicNames[index]);
    entries.labels[index] = copyOf(label);
    if (entries.labels[index] == nullptr) return FG_ERR_BUFFER;
    entries.values[index] = value;
    entries.symbolicNames[index] = copyOf(symbolicName);
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
    if (record != nullptr) record->value.string.text = copyOf(value);
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
    const Port* place = find(port);
    return place != nullptr ? place->root : nullptr;
}

RegisterInfo* Fg_ParameterInfo::getNextRegisterInfo(RegisterInfo* info, int port) const {
    const Port* place = find(port);
    if (place == nullptr) return nullptr;
    return info != nullptr ? info->next : place->root;
}

void Fg_ParameterInfo::setDescription(RegisterInfo* info, const char* text) {
    if (info != nullptr) replace(info->description, text);
}

void Fg_ParameterInfo::setToolTip(RegisterInfo* info, const char* text) {
    if (info != nullptr) replace(info->toolTip, text);
}

void Fg_ParameterInfo::setGenICamName(RegisterInfo* info, const char* text) {
    if (info != nullptr) replace(info->genICamName, text);
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
    if (hasEntry(info, index)) replace(info->enumEntryDescriptions[index], text);
}

void Fg_ParameterInfo::setEnumEntryToolTip(RegisterInfo* info, int index, const char* text) {
    if (hasEntry(info, index)) replace(info->enumEntryToolTips[index], text);
}

void Fg_ParameterInfo::setEnumEntryGenICamName(RegisterInfo* info, int index, const char* text) {
    if (hasEntry(info, index)) replace(info->enumEntryGenICamNames[index], text);
}

void Fg_ParameterInfo::setInvalidatingNameCapacity(RegisterInfo* info, std::uint32_t capacity) {
    if (info != nullptr && capacity > info->invalidatingNameCapacity) reserveNames(info, capacity);
}

void Fg_ParameterInfo::addInvalidatingName(RegisterInfo* info, const char* name) {
    if (info == nullptr || name == nullptr || *name == '\0') return;
    // A count equal to the capacity does not make the array grow.
    const std::uint32_t capacity = info->invalidatingNameCapacity;
    if (info->invalidatingNames == nullptr)
        reserveNames(info, capacity);
    else if (capacity < info->invalidatingNameCount)
        reserveNames(info, capacity == 0 ? 1 : 2 * capacity);
    info->invalidatingNames[info->invalidatingNameCount] = copyOf(name);
    ++info->invalidatingNameCount;
}
