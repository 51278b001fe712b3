#include "virtual_board/board/Values.h"

#include "vexo/fg_api.h"
#include "vexo/fg_errors.h"
#include "virtual_board/board/numbers.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace vboard {
namespace {

std::uint64_t widthMask(int bits) { return bits < 64 ? (std::uint64_t{1} << bits) - 1 : ~std::uint64_t{0}; }

constexpr std::size_t elementSize = sizeof(std::uint32_t); // of a field

/** A run of elements in the memory of a caller. */
struct Run {
    std::uint32_t first, count;
    Type type;
    char* elements;
    std::size_t stride; // from one element to the next

    void* operator[](std::uint32_t i) const { return elements + i * stride; }
    /** True if it can be copied as a whole, as whole tables are. */
    bool hasOwnLayout() const { return type == Type::u32 && stride == elementSize; }
    /** In the form that the log keeps. */
    std::uint64_t extent() const { return first | std::uint64_t{count} << 32; }
};

/** The run that a record of the tag describes; nothing if the record is invalid. */
std::optional<Run> runOf(int tag, const void* record) {
    const auto* bytes = static_cast<const char*>(record);
    if (tag == FG_PARAM_FIELD_INT) {
        FieldParameterInt_s element;
        std::memcpy(&element, bytes, sizeof element);
        // The value is in the record itself; a set only reads it.
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
        return Run{element.index, 1, Type::u32, const_cast<char*>(bytes), sizeof element};
    }
    FieldParameterAccess access;
    std::memcpy(&access, bytes, sizeof access);
    auto* elements = static_cast<char*>(access.values);
    if (elements == nullptr && access.count > 0) return std::nullopt;
    // Records of single elements: their values are stored one after the other, whatever their index is.
    if (access.vtype == FG_PARAM_FIELD_INT)
        return Run{access.index, access.count, Type::u32, elements, sizeof(FieldParameterInt_s)};
    const auto type = typeOfTag(access.vtype);
    if (!type || !isNumber(*type)) return std::nullopt;
    const std::size_t width = *type == Type::i32 || *type == Type::u32 ? 4 : 8;
    return Run{access.index, access.count, *type, elements, width};
}

bool isInside(std::uint32_t first, std::uint32_t count) { return std::uint64_t{first} + count <= fieldSize; }

/** Numbers convert into each other; texts and arrays must match. */
bool isCompatible(std::optional<Type> given, Type own) {
    return given && (isNumber(own) ? isNumber(*given) : *given == own);
}

} // namespace

void Values::reset() {
    std::vector<std::uint64_t> numbers;
    std::vector<std::string> texts;
    for (const ParameterRow& row : parameterRows()) {
        numbers.push_back(row.start);
        texts.emplace_back(row.text);
    }
    std::vector<std::uint64_t> registers;
    for (const RegisterRow& row : registerRows())
        registers.push_back(row.start);
    std::vector<std::vector<std::uint32_t>> fields(numbers.size());
    // Everything is allocated: no partial reset.
    m_numbers = std::move(numbers);
    m_texts = std::move(texts);
    m_fields = std::move(fields);
    m_registers = std::move(registers);
    m_afterRead.clear();
    ++m_revision;
    ++m_tableRevision;
}

const char* Values::describe(Access& access, const void* value) {
    const auto type = typeOfTag(access.tag);
    if (value == nullptr || !type) return nullptr;
    if (type == Type::text) return static_cast<const char*>(value);
    if (type != Type::field) {
        access.content = Access::number;
        access.value = loadNumber(*type, value);
    } else if (const auto run = runOf(access.tag, value)) {
        access.content = Access::run;
        access.value = run->extent();
    }
    return nullptr;
}

int Values::store(const Access& access, const void* value) {
    const ParameterRow& row = parameterRows()[indexOf(access.row)];
    const auto type = typeOfTag(access.tag);
    if (!row.writable) return FG_ERR_NOT_AVAILABLE;
    if (!isCompatible(type, row.type)) return FG_ERR_INVALID_ARGUMENT;
    if (row.type == Type::field) return storeField(access, value);
    ++m_revision;
    if (row.type == Type::text)
        m_texts[indexOf(access.row)] = static_cast<const char*>(value);
    else
        m_numbers[indexOf(access.row)] = converted(*type, access.value, row.type);
    return FG_OK;
}

int Values::fetch(Access& access, void* value, const char*& text) {
    const std::size_t at = indexOf(access.row);
    const ParameterRow& row = parameterRows()[at];
    const bool isHandedOut = access.tag == FG_PARAM_ALLOCATED_STRING;
    const auto type = isHandedOut ? Type::text : typeOfTag(access.tag);
    if (!isCompatible(type, row.type)) return FG_ERR_INVALID_ARGUMENT;
    if (row.type == Type::field) return fetchField(access, value);
    if (row.type == Type::text) {
        text = m_texts[at].c_str();
        const std::size_t size = m_texts[at].size() + 1;
        char* destination = isHandedOut ? new char[size] : static_cast<char*>(value);
        std::memcpy(destination, text, size);
        if (isHandedOut) std::memcpy(value, &destination, sizeof destination);
        return FG_OK;
    }
    access.content = Access::number;
    access.value = converted(row.type, m_numbers[at], *type);
    storeNumber(*type, access.value, value);
    if (row.clearedByReading) m_numbers[at] = 0;
    if (const auto next = m_afterRead.extract(at)) m_numbers[at] = next.mapped();
    return FG_OK;
}

std::vector<std::uint32_t>& Values::fieldOf(std::size_t row) {
    if (m_fields[row].empty()) m_fields[row].resize(fieldSize);
    return m_fields[row];
}

int Values::storeField(const Access& access, const void* value) {
    const auto run = runOf(access.tag, value);
    if (!run || !isInside(run->first, run->count)) return FG_ERR_INVALID_ARGUMENT;
    ++m_tableRevision;
    auto& elements = fieldOf(indexOf(access.row));
    if (run->hasOwnLayout()) {
        if (run->count > 0) std::memcpy(&elements[run->first], run->elements, run->count * elementSize);
        return FG_OK;
    }
    for (std::uint32_t i = 0; i < run->count; ++i)
        elements[run->first + i] =
            static_cast<std::uint32_t>(converted(run->type, loadNumber(run->type, (*run)[i]), Type::u32));
    return FG_OK;
}

int Values::fetchField(Access& access, void* value) const {
    const auto run = runOf(access.tag, value);
    if (!run || !isInside(run->first, run->count)) return FG_ERR_INVALID_ARGUMENT;
    access.content = Access::run;
    access.value = run->extent();
    const auto& elements = m_fields[indexOf(access.row)];
    if (run->hasOwnLayout() && !elements.empty()) {
        if (run->count > 0) std::memcpy(run->elements, &elements[run->first], run->count * elementSize);
        return FG_OK;
    }
    for (std::uint32_t i = 0; i < run->count; ++i) {
        const std::uint32_t element = elements.empty() ? 0 : elements[run->first + i];
        storeNumber(run->type, converted(Type::u32, element, run->type), (*run)[i]);
    }
    return FG_OK;
}

int Values::storeRegister(const Access& access) {
    const RegisterRow& row = registerRows()[indexOf(access.row)];
    if (!row.writable) return FG_ERR_NOT_AVAILABLE;
    m_registers[indexOf(access.row)] = access.value & widthMask(row.bits);
    return FG_OK;
}

int Values::fetchRegister(Access& access, std::uint64_t* value) {
    access.content = Access::number;
    access.value = *value = m_registers[indexOf(access.row)];
    return FG_OK;
}

std::uint64_t Values::number(int row) const { return m_numbers[indexOf(row)]; }

const std::string& Values::text(int row) const { return m_texts[indexOf(row)]; }

const std::vector<std::uint32_t>& Values::field(int row) const { return m_fields[indexOf(row)]; }

void Values::setNumber(int row, std::uint64_t number) { m_numbers[indexOf(row)] = number; }

std::uint64_t* Values::findNumber(std::string_view name, Type& type) {
    if (const int row = findParameter(name); row >= 0) {
        type = parameterRows()[indexOf(row)].type;
        return isNumber(type) ? &m_numbers[indexOf(row)] : nullptr;
    }
    type = Type::u64;
    const int row = findRegister(name);
    return row >= 0 ? &m_registers[indexOf(row)] : nullptr;
}

bool Values::poke(std::string_view name, Type type, std::uint64_t bits) {
    Type own;
    std::uint64_t* number = findNumber(name, own);
    if (number == nullptr) return false;
    ++m_revision;
    *number = converted(type, bits, own);
    if (const int row = findRegister(name); row >= 0) *number &= widthMask(registerRows()[indexOf(row)].bits);
    return true;
}

bool Values::peek(std::string_view name, Type type, std::uint64_t& bits) {
    Type own;
    const std::uint64_t* number = findNumber(name, own);
    if (number == nullptr) return false;
    bits = converted(own, *number, type);
    return true;
}

bool Values::pokeAfterRead(std::string_view name, std::uint64_t number) {
    const int row = findParameter(name);
    if (row < 0 || !isNumber(parameterRows()[indexOf(row)].type)) return false;
    m_afterRead[indexOf(row)] = converted(Type::i64, number, parameterRows()[indexOf(row)].type);
    return true;
}

bool Values::pokeText(std::string_view name, const char* text) {
    const int row = findParameter(name);
    if (row < 0 || parameterRows()[indexOf(row)].type != Type::text) return false;
    m_texts[indexOf(row)] = text;
    return true;
}

bool Values::peekField(std::string_view name, std::uint32_t first, std::uint32_t count,
                       std::uint32_t* values) {
    const int row = findParameter(name);
    if (row < 0 || parameterRows()[indexOf(row)].type != Type::field || !isInside(first, count)) return false;
    std::copy_n(fieldOf(indexOf(row)).begin() + first, count, values);
    return true;
}

} // namespace vboard
