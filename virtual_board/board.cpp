#include "board.h"

#include "runtime_tree.h"
#include "virtual_board.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <string_view>

using namespace vboard;

namespace {

std::uint64_t maskOf(int bits) { return bits >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << bits) - 1; }

/** Truncation that gives the lowest value for what does not fit. */
std::int64_t truncated(double number) {
    if (!(number > -9.3e18 && number < 9.2e18)) return INT64_MIN;
    return static_cast<std::int64_t>(number);
}

bool isNumberTag(int type) { return type >= FG_PARAM_INT32 && type <= FG_PARAM_DOUBLE; }

bool isTextTag(int type) { return type == FG_PARAM_TEXT || type == FG_PARAM_ALLOCATED_STRING; }

bool isFieldTag(int type) { return type == FG_PARAM_FIELD_ACCESS || type == FG_PARAM_FIELD_INT; }

std::size_t widthOf(int type) { return type <= FG_PARAM_UINT32 ? 4 : 8; }

/** The caller's word, widened by its sign where it has one. */
std::uint64_t bitsFrom(const void* value, int type) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, value, widthOf(type));
    return type == FG_PARAM_INT32 ? static_cast<std::uint64_t>(static_cast<std::int32_t>(bits)) : bits;
}

void store(Value& place, ValueType type, const void* value, int tag) {
    const std::uint64_t bits = bitsFrom(value, tag);
    if (type == ValueType::F64) {
        place.number = tag == FG_PARAM_DOUBLE   ? std::bit_cast<double>(bits)
                       : tag == FG_PARAM_UINT64 ? static_cast<double>(bits)
                                                : static_cast<double>(static_cast<std::int64_t>(bits));
    } else {
        place.bits = tag == FG_PARAM_DOUBLE
                         ? static_cast<std::uint64_t>(truncated(std::bit_cast<double>(bits)))
                         : bits;
    }
}

/** The value as a word of the caller's tag. */
std::uint64_t wordOf(const Value& value, ValueType type, int tag) {
    if (tag == FG_PARAM_DOUBLE) {
        const bool isSigned = type == ValueType::I32 || type == ValueType::I64;
        const double number = type == ValueType::F64 ? value.number
                              : isSigned ? static_cast<double>(static_cast<std::int64_t>(value.bits))
                                         : static_cast<double>(value.bits);
        return std::bit_cast<std::uint64_t>(number);
    }
    return type == ValueType::F64 ? static_cast<std::uint64_t>(truncated(value.number)) : value.bits;
}

/** First element and count of a field access. */
struct Run {
    std::uint32_t first;
    std::uint32_t count;
};

Run runOf(const void* value, int type) {
    if (type == FG_PARAM_FIELD_INT) return {static_cast<const FieldParameterInt_s*>(value)->index, 1};
    const auto* access = static_cast<const FieldParameterAccess*>(value);
    return {access->index, access->count};
}

bool fits(Run run, const FieldParameterAccess* access) {
    if (run.first > fieldElements || run.count > fieldElements - run.first) return false;
    return access == nullptr || run.count == 0 || (access->values != nullptr && isNumberTag(access->vtype));
}

const FieldParameterAccess* accessOf(const void* value, int type) {
    return type == FG_PARAM_FIELD_ACCESS ? static_cast<const FieldParameterAccess*>(value) : nullptr;
}

int setField(std::vector<std::uint32_t>& field, const void* value, int type) {
    const Run run = runOf(value, type);
    const FieldParameterAccess* access = accessOf(value, type);
    if (!fits(run, access)) return badArgument;
    if (access == nullptr) {
        field[run.first] = static_cast<const FieldParameterInt_s*>(value)->value;
        return accepted;
    }
    const std::size_t width = widthOf(access->vtype);
    for (std::uint32_t i = 0; i < run.count; ++i)
        std::memcpy(&field[run.first + i], static_cast<const char*>(access->values) + width * i, 4);
    return accepted;
}

int getField(const std::vector<std::uint32_t>& field, void* value, int type) {
    const Run run = runOf(value, type);
    const FieldParameterAccess* access = accessOf(value, type);
    if (!fits(run, access)) return badArgument;
    if (access == nullptr) {
        static_cast<FieldParameterInt_s*>(value)->value = field[run.first];
        return accepted;
    }
    const std::size_t width = widthOf(access->vtype);
    for (std::uint32_t i = 0; i < run.count; ++i) {
        const std::uint64_t element = field[run.first + i];
        std::memcpy(static_cast<char*>(access->values) + width * i, &element, width);
    }
    return accepted;
}

void giveText(const std::string& text, void* value, int type) {
    if (type == FG_PARAM_TEXT) {
        std::memcpy(value, text.c_str(), text.size() + 1);
        return;
    }
    char* copy = new char[text.size() + 1];
    std::memcpy(copy, text.c_str(), text.size() + 1);
    ++LiveCounts::instance().strings;
    std::memcpy(value, &copy, sizeof copy);
}

const RuntimeParameter* runtimeParameter(int id) {
    for (const RuntimeParameter& parameter : runtimeParameters)
        if (parameter.id == id) return &parameter;
    return nullptr;
}

} // namespace

namespace vboard {

DesignState& DesignState::instance() {
    static DesignState state;
    return state;
}

bool DesignState::has(std::size_t parameter) {
    const std::lock_guard guard(mutex);
    return parameter < lackingParameter.size() && !lackingParameter[parameter];
}

LiveCounts& LiveCounts::instance() {
    static LiveCounts counts;
    return counts;
}

int parameterNamed(const char* name) {
    static const auto positions = [] {
        std::unordered_map<std::string_view, int> all;
        for (std::size_t i = 0; i < designParameters.size(); ++i)
            all.emplace(designParameters[i].name, static_cast<int>(i));
        return all;
    }();
    if (name == nullptr) return -1;
    const auto found = positions.find(name);
    return found != positions.end() ? found->second : -1;
}

} // namespace vboard

LOOMdevice::LOOMdevice() {
    ++LiveCounts::instance().boards;
    reset();
}

LOOMdevice::~LOOMdevice() { --LiveCounts::instance().boards; }

void LOOMdevice::reset() {
    const std::lock_guard guard(mutex);
    values.assign(designParameters.size(), Value{});
    for (std::size_t i = 0; i < values.size(); ++i) {
        const DesignParameter& parameter = designParameters[i];
        values[i].number = parameter.number;
        values[i].bits = static_cast<std::uint64_t>(parameter.number);
        values[i].text = parameter.text;
        if (parameter.type == ValueType::Field) values[i].field.assign(fieldElements, 0);
    }
    registerValues.clear();
    for (const Register& reg : registers)
        registerValues.push_back(reg.value);
    log = AccessLog{};
    faults = Faults{};
    answers.clear();
    lastError = 0;
    pictures = 0;
    acquiring = false;
}

int LOOMdevice::failed(int code) {
    if (code != accepted) lastError = code;
    return code;
}

/** Counts an access that is heeded and gives the code with which it has to fail. */
int LOOMdevice::begin(Access& access) { return log.heeds(access.kind) ? faults.next(access.name) : 0; }

int LOOMdevice::setParameter(int id, const void* value, int type) {
    const std::lock_guard guard(mutex);
    const auto position = static_cast<std::size_t>(static_cast<std::int64_t>(id) - firstParameterId);
    if (value == nullptr || !DesignState::instance().has(position)) return failed(badArgument);
    const DesignParameter& parameter = designParameters[position];
    Access access{.kind = VBOARD_SET, .name = parameter.name, .type = type};
    if (isNumberTag(type)) access.bits = bitsFrom(value, type);
    if (isTextTag(type)) access.text = static_cast<const char*>(value);
    if (isFieldTag(type))
        access.bits = runOf(value, type).first | std::uint64_t{runOf(value, type).count} << 32;

    access.result = begin(access);
    if (access.result == 0) {
        Value& place = values[position];
        if (parameter.readOnly)
            access.result = unavailable;
        else if (parameter.type == ValueType::Text && isTextTag(type))
            place.text = access.text;
        else if (parameter.type == ValueType::Field && isFieldTag(type))
            access.result = setField(place.field, value, type);
        else if (parameter.type < ValueType::Text && isNumberTag(type))
            store(place, parameter.type, value, type);
        else
            access.result = badArgument;
    }
    const int result = access.result;
    if (log.heeds(access.kind)) log.add(std::move(access));
    return failed(result);
}

int LOOMdevice::getParameter(int id, void* value, int type) {
    const std::lock_guard guard(mutex);
    if (value == nullptr) return failed(badArgument);
    const RuntimeParameter* own = runtimeParameter(id);
    const auto position = static_cast<std::size_t>(static_cast<std::int64_t>(id) - firstParameterId);
    if (own == nullptr && !DesignState::instance().has(position)) return failed(badArgument);

    Access access{
        .kind = VBOARD_GET, .name = own == nullptr ? designParameters[position].name : nullptr, .type = type};
    if (own != nullptr) access.text = "#" + std::to_string(id);
    access.result = begin(access);
    if (access.result == 0) {
        Value ownValue;
        if (own != nullptr) ownValue.bits = own->value;
        const Value& current = own != nullptr ? ownValue : values[position];
        const ValueType kind = own != nullptr ? ValueType::U32 : designParameters[position].type;
        if (kind == ValueType::Text && isTextTag(type)) {
            access.text = current.text;
            giveText(current.text, value, type);
        } else if (kind == ValueType::Field && isFieldTag(type)) {
            access.bits = runOf(value, type).first | std::uint64_t{runOf(value, type).count} << 32;
            access.result = getField(current.field, value, type);
        } else if (kind < ValueType::Text && isNumberTag(type)) {
            access.bits = wordOf(current, kind, type);
            std::memcpy(value, &access.bits, widthOf(type));
        } else {
            access.result = badArgument;
        }
    }
    const int result = access.result;
    if (log.heeds(access.kind)) log.add(std::move(access));
    return failed(result);
}

int LOOMdevice::freeString(void* text) {
    if (text == nullptr) return failed(badArgument);
    delete[] static_cast<char*>(text);
    --LiveCounts::instance().strings;
    return accepted;
}

int LOOMdevice::resolve(const char* name) {
    const int position = parameterNamed(name);
    const bool known = position >= 0 && DesignState::instance().has(static_cast<std::size_t>(position));
    const int id = known ? firstParameterId + position : 0;
    const std::lock_guard guard(mutex);
    if (!log.heeds(VBOARD_RESOLVE)) return id;
    Access access{.kind = VBOARD_RESOLVE, .name = nullptr, .bits = static_cast<std::uint64_t>(id)};
    access.text = name != nullptr ? name : "";
    const int fault = begin(access);
    if (fault != 0) access.bits = 0;
    log.add(std::move(access));
    return fault != 0 ? 0 : id;
}

int LOOMdevice::readRegister(int reg, std::uint64_t* value) {
    const std::lock_guard guard(mutex);
    const auto position = static_cast<std::size_t>(reg) - 1;
    if (value == nullptr || position >= registers.size()) return failed(badArgument);
    Access access{
        .kind = VBOARD_REGISTER_READ, .name = registers[position].name, .type = registers[position].bits};
    access.result = begin(access);
    if (access.result == 0) *value = access.bits = registerValues[position];
    const int result = access.result;
    if (log.heeds(access.kind)) log.add(std::move(access));
    return failed(result);
}

int LOOMdevice::writeRegister(int reg, std::uint64_t value) {
    const std::lock_guard guard(mutex);
    const auto position = static_cast<std::size_t>(reg) - 1;
    if (position >= registers.size()) return failed(badArgument);
    const Register& row = registers[position];
    Access access{.kind = VBOARD_REGISTER_WRITE, .name = row.name, .type = row.bits, .bits = value};
    access.result = begin(access);
    if (access.result == 0 && !row.writable) access.result = unavailable;
    if (access.result == 0) registerValues[position] = value & maskOf(row.bits);
    const int result = access.result;
    if (log.heeds(access.kind)) log.add(std::move(access));
    return failed(result);
}

bool LOOMdevice::call(const char* function, std::int64_t& answer) {
    const std::lock_guard guard(mutex);
    Access access{.kind = VBOARD_CALL, .name = function};
    access.result = begin(access);
    const int fault = access.result;
    if (log.heeds(access.kind)) log.add(std::move(access));
    if (fault != 0) {
        answer = failed(fault);
        return true;
    }
    const auto forced = answers.find(function);
    if (forced == answers.end()) return false;
    answer = forced->second;
    return true;
}

RegisterInfo* LOOMdevice::tree() {
    const std::lock_guard guard(mutex);
    if (m_tree == nullptr) m_tree = std::make_unique<RuntimeTree>();
    return m_tree->root();
}
