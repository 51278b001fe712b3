// The control functions: what a host steers the model with.

#include "virtual_board.h"

#include "Board.h"
#include "Design.h"
#include "runtime_entries.h"
#include "vexo/fg_errors.h"

#include <bit>
#include <cstring>

using namespace vboard;

namespace {

int known(bool isKnown) { return isKnown ? VBOARD_OK : VBOARD_UNKNOWN; }

} // namespace

LOOMdevice* vboard_open(void) { return new LOOMdevice; }

void vboard_close(LOOMdevice* board) {
    if (board != nullptr) board->release();
}

void vboard_reset(LOOMdevice* board) {
    if (board != nullptr) board->reset();
}

int vboard_lack_parameter(const char* name, bool lacking) { return known(lackParameter(name, lacking)); }
int vboard_alias_parameter(const char* alias, const char* name) { return known(aliasParameter(alias, name)); }
int vboard_lack_event(const char* name, bool lacking) { return known(lackEvent(name, lacking)); }
int vboard_hide_entry(const char* name, bool hidden) { return known(hideEntry(name, hidden)); }
void vboard_extra_events(int count) { appendExtraEvents(count); }
void vboard_refuse_design(bool refuse) { refuseDesigns(refuse); }
void vboard_fail_init(bool fail, int lastError) { failInit(fail, lastError); }
void vboard_restore_design(void) { restoreDesign(); }

void vboard_log_kinds(LOOMdevice* board, unsigned mask) {
    if (board != nullptr) board->setLogKinds(mask);
}

size_t vboard_log_size(LOOMdevice* board) { return board != nullptr ? board->logSize() : 0; }

int vboard_log_line(LOOMdevice* board, size_t index, char* text, size_t size) {
    if (board == nullptr || text == nullptr) return VBOARD_UNKNOWN;
    const auto line = board->logLine(index);
    if (!line) return VBOARD_UNKNOWN;
    if (line->size() >= size) return VBOARD_TOO_SMALL;
    std::memcpy(text, line->c_str(), line->size() + 1);
    return static_cast<int>(line->size());
}

void vboard_log_clear(LOOMdevice* board) {
    if (board != nullptr) board->clearLog();
}

void vboard_fail_access(LOOMdevice* board, unsigned k, int code, int how) {
    if (board != nullptr) board->failAccess(k, code, how == VBOARD_FROM_THEN_ON);
}

unsigned vboard_access_count(LOOMdevice* board) { return board != nullptr ? board->accessCount() : 0; }

int vboard_fail_name(LOOMdevice* board, const char* name, int code) {
    return known(board != nullptr && name != nullptr && board->failName(name, code));
}

void vboard_on_access(LOOMdevice* board, vboard_access_function* function, void* context) {
    if (board != nullptr) board->setWatcher({function, context});
}

int vboard_answer(LOOMdevice* board, const char* function, int64_t value) {
    const int entry = board != nullptr && function != nullptr ? findEntry(function) : -1;
    if (entry < 0 || runtimeEntries[entry].answer != RuntimeEntry::forcible) return VBOARD_UNKNOWN;
    board->setAnswer(entry, value);
    return VBOARD_OK;
}

void vboard_attach_applet(LOOMdevice* board, Fg_Struct* fg, vboard_config_function* save,
                          vboard_config_function* load) {
    if (board != nullptr) board->attachApplet({fg, save, load});
}

void vboard_last_error(LOOMdevice* board, int code) {
    if (board != nullptr) board->setLastError(code);
}

int vboard_poke_int(LOOMdevice* board, const char* name, int64_t value) {
    return known(board != nullptr && name != nullptr &&
                 board->poke(name, Type::i64, static_cast<std::uint64_t>(value)));
}

int vboard_poke_after_read(LOOMdevice* board, const char* name, int64_t value) {
    return known(board != nullptr && name != nullptr &&
                 board->pokeAfterRead(name, static_cast<std::uint64_t>(value)));
}

int vboard_poke_double(LOOMdevice* board, const char* name, double value) {
    return known(board != nullptr && name != nullptr &&
                 board->poke(name, Type::f64, std::bit_cast<std::uint64_t>(value)));
}

int vboard_raise_event(LOOMdevice* board, const char* name) {
    return known(board != nullptr && name != nullptr && board->raiseEvent(name));
}

int vboard_poke_text(LOOMdevice* board, const char* name, const char* value) {
    return known(board != nullptr && name != nullptr && value != nullptr && board->pokeText(name, value));
}

int vboard_peek_int(LOOMdevice* board, const char* name, int64_t* value) {
    std::uint64_t bits = 0;
    if (board == nullptr || name == nullptr || value == nullptr || !board->peek(name, Type::i64, bits))
        return VBOARD_UNKNOWN;
    *value = static_cast<std::int64_t>(bits);
    return VBOARD_OK;
}

int vboard_peek_double(LOOMdevice* board, const char* name, double* value) {
    std::uint64_t bits = 0;
    if (board == nullptr || name == nullptr || value == nullptr || !board->peek(name, Type::f64, bits))
        return VBOARD_UNKNOWN;
    *value = std::bit_cast<double>(bits);
    return VBOARD_OK;
}

int vboard_peek_field(LOOMdevice* board, const char* name, uint32_t first, uint32_t count, uint32_t* values) {
    return known(board != nullptr && name != nullptr && values != nullptr &&
                 board->peekField(name, first, count, values));
}

int vboard_live(const char* what) {
    constexpr const char* names[] = {"boards", "designs", "handles", "strings"};
    static_assert(std::size(names) == Live::kinds);
    for (std::size_t kind = 0; what != nullptr && kind < std::size(names); ++kind)
        if (std::strcmp(names[kind], what) == 0) return Live::count(static_cast<Live::Kind>(kind));
    return VBOARD_UNKNOWN;
}

int VexoRegisterRead(LOOMdevice* board, int reg, uint64_t* value) {
    return board != nullptr ? board->readRegister(reg, value) : FG_ERR_INVALID_HANDLE;
}

int VexoRegisterWrite(LOOMdevice* board, int reg, uint64_t value) {
    return board != nullptr ? board->writeRegister(reg, value) : FG_ERR_INVALID_HANDLE;
}
