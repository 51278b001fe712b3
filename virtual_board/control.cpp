// The control functions: what a design lacks, what a board does wrong, what reached it.

#include "board.h"
#include "hidden_entries.h"
#include "virtual_board.h"

#include <algorithm>
#include <bit>
#include <cstring>

#pragma GCC visibility push(default)

using namespace vboard;

namespace {

/** Position of an event by its name, or -1. */
int eventNamed(const char* name) {
    const auto found = std::find_if(events.begin(), events.end(), [&](const TslEvent& event) {
        return name != nullptr && std::strcmp(event.name, name) == 0;
    });
    return found != events.end() ? static_cast<int>(found - events.begin()) : -1;
}

int registerNamed(const char* name) {
    const auto found = std::find_if(registers.begin(), registers.end(), [&](const Register& reg) {
        return name != nullptr && std::strcmp(reg.name, name) == 0;
    });
    return found != registers.end() ? static_cast<int>(found - registers.begin()) : -1;
}

/** Marks a row of the design as lacking or not. */
int mark(std::vector<bool> DesignState::*rows, int position, bool lacking) {
    if (position < 0) return VBOARD_UNKNOWN;
    DesignState& design = DesignState::instance();
    const std::lock_guard guard(design.mutex);
    (design.*rows)[static_cast<std::size_t>(position)] = lacking;
    return VBOARD_OK;
}

/** Calls `change` with the value of a parameter of these types. */
template <typename Change>
int withValue(LOOMdevice* board, const char* name, bool (*suits)(ValueType), Change change) {
    const int position = parameterNamed(name);
    if (board == nullptr || position < 0) return VBOARD_UNKNOWN;
    const ValueType type = designParameters[static_cast<std::size_t>(position)].type;
    if (!suits(type)) return VBOARD_UNKNOWN;
    const std::lock_guard guard(board->mutex);
    change(board->values[static_cast<std::size_t>(position)]);
    return VBOARD_OK;
}

bool isInteger(ValueType type) { return type < ValueType::F64; }
bool isDouble(ValueType type) { return type == ValueType::F64; }
bool isText(ValueType type) { return type == ValueType::Text; }
bool isField(ValueType type) { return type == ValueType::Field; }

/** Calls `change` with the value of a register. */
template <typename Change> int withRegister(LOOMdevice* board, const char* name, Change change) {
    const int position = registerNamed(name);
    if (board == nullptr || position < 0) return VBOARD_UNKNOWN;
    const std::lock_guard guard(board->mutex);
    change(board->registerValues[static_cast<std::size_t>(position)]);
    return VBOARD_OK;
}

} // namespace

LOOMdevice* vboard_open(void) { return new LOOMdevice; }

void vboard_close(LOOMdevice* board) { delete board; }

void vboard_reset(LOOMdevice* board) { board->reset(); }

int vboard_live(const char* what) {
    LiveCounts& live = LiveCounts::instance();
    const std::string_view kind = what != nullptr ? what : "";
    if (kind == "boards") return live.boards;
    if (kind == "designs") return live.designs;
    if (kind == "handles") return live.handles;
    if (kind == "strings") return live.strings;
    return VBOARD_UNKNOWN;
}

int vboard_lack_parameter(const char* name, bool lacking) {
    return mark(&DesignState::lackingParameter, parameterNamed(name), lacking);
}

int vboard_lack_event(const char* name, bool lacking) {
    return mark(&DesignState::lackingEvent, eventNamed(name), lacking);
}

int vboard_hide_entry(const char* name, bool hidden) {
    return hideEntry(name, hidden) ? VBOARD_OK : VBOARD_UNKNOWN;
}

void vboard_extra_events(int count) {
    DesignState& design = DesignState::instance();
    const std::lock_guard guard(design.mutex);
    design.extraEvents = std::max(count, 0);
}

void vboard_refuse_design(bool refuse) {
    DesignState& design = DesignState::instance();
    const std::lock_guard guard(design.mutex);
    design.refuseDesign = refuse;
}

void vboard_fail_init(bool fail, int lastError) {
    DesignState& design = DesignState::instance();
    const std::lock_guard guard(design.mutex);
    design.failInit = fail;
    design.initError = fail ? lastError : 0;
}

void vboard_restore_design(void) {
    vboard_extra_events(0);
    vboard_refuse_design(false);
    vboard_fail_init(false, 0);
    showAllEntries();
    DesignState& design = DesignState::instance();
    const std::lock_guard guard(design.mutex);
    design.lackingParameter.assign(designParameters.size(), false);
    design.lackingEvent.assign(events.size(), false);
}

void vboard_log_kinds(LOOMdevice* board, unsigned mask) {
    const std::lock_guard guard(board->mutex);
    board->log.setKinds(mask);
}

size_t vboard_log_size(LOOMdevice* board) {
    const std::lock_guard guard(board->mutex);
    return board->log.size();
}

int vboard_log_line(LOOMdevice* board, size_t index, char* text, size_t size) {
    const std::lock_guard guard(board->mutex);
    if (index >= board->log.size()) return VBOARD_UNKNOWN;
    const std::string line = lineOf(board->log.at(index));
    if (line.size() >= size) return VBOARD_TOO_SMALL;
    std::memcpy(text, line.c_str(), line.size() + 1);
    return static_cast<int>(line.size());
}

void vboard_log_clear(LOOMdevice* board) {
    const std::lock_guard guard(board->mutex);
    board->log.clear();
}

void vboard_fail_access(LOOMdevice* board, unsigned k, int code, int how) {
    const std::lock_guard guard(board->mutex);
    board->faults.failAccess(k, code, how == VBOARD_FROM_THEN_ON);
}

unsigned vboard_access_count(LOOMdevice* board) {
    const std::lock_guard guard(board->mutex);
    return board->faults.count();
}

int vboard_fail_name(LOOMdevice* board, const char* name, int code) {
    if (parameterNamed(name) < 0 && registerNamed(name) < 0) return VBOARD_UNKNOWN;
    const std::lock_guard guard(board->mutex);
    board->faults.failName(name, code);
    return VBOARD_OK;
}

int vboard_answer(LOOMdevice* board, const char* function, int64_t value) {
    if (!isEntry(function)) return VBOARD_UNKNOWN;
    const std::lock_guard guard(board->mutex);
    board->answers[function] = value;
    return VBOARD_OK;
}

void vboard_last_error(LOOMdevice* board, int code) {
    const std::lock_guard guard(board->mutex);
    board->lastError = code;
}

int vboard_poke_int(LOOMdevice* board, const char* name, int64_t value) {
    const auto bits = static_cast<std::uint64_t>(value);
    const int result = withValue(board, name, isInteger, [&](Value& place) { place.bits = bits; });
    return result == VBOARD_OK ? result
                               : withRegister(board, name, [&](std::uint64_t& place) { place = bits; });
}

int vboard_poke_double(LOOMdevice* board, const char* name, double value) {
    return withValue(board, name, isDouble, [&](Value& place) { place.number = value; });
}

int vboard_poke_text(LOOMdevice* board, const char* name, const char* value) {
    return withValue(board, name, isText, [&](Value& place) { place.text = value; });
}

int vboard_peek_int(LOOMdevice* board, const char* name, int64_t* value) {
    const auto give = [&](std::uint64_t bits) { *value = static_cast<std::int64_t>(bits); };
    const int result = withValue(board, name, isInteger, [&](const Value& place) { give(place.bits); });
    return result == VBOARD_OK ? result : withRegister(board, name, give);
}

int vboard_peek_double(LOOMdevice* board, const char* name, double* value) {
    return withValue(board, name, isDouble, [&](const Value& place) { *value = place.number; });
}

int vboard_peek_field(LOOMdevice* board, const char* name, uint32_t first, uint32_t count, uint32_t* values) {
    if (first > fieldElements || count > fieldElements - first) return VBOARD_TOO_SMALL;
    return withValue(board, name, isField,
                     [&](const Value& place) { std::copy_n(place.field.begin() + first, count, values); });
}

#pragma GCC visibility pop
