// The control functions of the model.

#include "virtual_board/virtual_board.h"

#include "vexo/fg_errors.h"
#include "virtual_board/board/Board.h"
#include "virtual_board/board/BoardStation.h"
#include "virtual_board/board/Design.h"
#include "virtual_board/board/Guard.h"
#include "virtual_board/tables/runtime_entries.h"

#include <bit>
#include <cstring>
#include <string>

using namespace vboard;

namespace {

/** Returns VBOARD_OK if the function returns true, which means that the name is known. */
template <typename Function> int knownTo(Function function) {
    return guarded(int{VBOARD_NO_MEMORY}, [&] { return known(function()); });
}

} // namespace

LOOMdevice* vboard_open(void) {
    return guarded(static_cast<LOOMdevice*>(nullptr), [] { return new LOOMdevice; });
}

void vboard_close(LOOMdevice* board) {
    if (board != nullptr) board->release();
}

void vboard_reset(LOOMdevice* board) {
    if (board != nullptr) guarded([&] { board->reset(); });
}

int vboard_lack_parameter(const char* name, bool lacking) {
    return knownTo([&] { return lackParameter(name, lacking); });
}
int vboard_alias_parameter(const char* alias, const char* name) {
    return knownTo([&] { return aliasParameter(alias, name); });
}
int vboard_lack_event(const char* name, bool lacking) {
    return knownTo([&] { return lackEvent(name, lacking); });
}
int vboard_hide_entry(const char* name, bool hidden) {
    return knownTo([&] { return hideEntry(name, hidden); });
}
void vboard_extra_events(int count) {
    guarded([&] { appendExtraEvents(count); });
}
void vboard_refuse_design(bool refuse) {
    guarded([&] { refuseDesigns(refuse); });
}
void vboard_fail_init(bool fail, int lastError) {
    guarded([&] { failInit(fail, lastError); });
}
void vboard_restore_design(void) { guarded(restoreDesign); }

void vboard_log_kinds(LOOMdevice* board, unsigned mask) {
    if (board == nullptr) return;
    const MutexLock lock(board->mutex());
    board->log().setKinds(mask);
}

size_t vboard_log_size(LOOMdevice* board) {
    if (board == nullptr) return 0;
    const MutexLock lock(board->mutex());
    return board->log().size();
}

int vboard_log_line(LOOMdevice* board, size_t index, char* text, size_t size) {
    if (board == nullptr || text == nullptr) return VBOARD_UNKNOWN;
    return guarded(int{VBOARD_NO_MEMORY}, [&] {
        const MutexLock lock(board->mutex());
        if (index >= board->log().size()) return int{VBOARD_UNKNOWN};
        const std::string line = board->log().line(index);
        if (line.size() >= size) return int{VBOARD_TOO_SMALL};
        std::memcpy(text, line.c_str(), line.size() + 1);
        return static_cast<int>(line.size());
    });
}

void vboard_log_clear(LOOMdevice* board) {
    if (board == nullptr) return;
    const MutexLock lock(board->mutex());
    board->log().clear();
}

void vboard_fail_access(LOOMdevice* board, unsigned k, int code, int how) {
    if (board == nullptr) return;
    const MutexLock lock(board->mutex());
    board->faults().failAccess(k, code, how == VBOARD_FROM_THEN_ON);
}

unsigned vboard_access_count(LOOMdevice* board) {
    if (board == nullptr) return 0;
    const MutexLock lock(board->mutex());
    return board->faults().accessCount();
}

int vboard_fail_name(LOOMdevice* board, const char* name, int code) {
    if (board == nullptr || name == nullptr) return VBOARD_UNKNOWN;
    return knownTo([&] {
        const MutexLock lock(board->mutex());
        return board->faults().failName(name, code);
    });
}

void vboard_on_access(LOOMdevice* board, vboard_access_function* function, void* context) {
    if (board != nullptr) board->setWatcher({function, context});
}

int vboard_answer(LOOMdevice* board, const char* function, int64_t value) {
    const int entry = board != nullptr && function != nullptr ? findEntry(function) : -1;
    if (entry < 0 || runtimeEntries[entry].answer != RuntimeEntry::forcible) return VBOARD_UNKNOWN;
    const MutexLock lock(board->mutex());
    board->faults().setAnswer(entry, value);
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
    if (board == nullptr || name == nullptr) return VBOARD_UNKNOWN;
    return knownTo([&] {
        const MutexLock lock(board->mutex());
        return board->values().poke(name, Type::i64, static_cast<std::uint64_t>(value));
    });
}

int vboard_poke_after_read(LOOMdevice* board, const char* name, int64_t value) {
    if (board == nullptr || name == nullptr) return VBOARD_UNKNOWN;
    return knownTo([&] {
        const MutexLock lock(board->mutex());
        return board->values().pokeAfterRead(name, static_cast<std::uint64_t>(value));
    });
}

int vboard_poke_double(LOOMdevice* board, const char* name, double value) {
    if (board == nullptr || name == nullptr) return VBOARD_UNKNOWN;
    return knownTo([&] {
        const MutexLock lock(board->mutex());
        return board->values().poke(name, Type::f64, std::bit_cast<std::uint64_t>(value));
    });
}

int vboard_raise_event(LOOMdevice* board, const char* name) {
    if (board == nullptr || name == nullptr) return VBOARD_UNKNOWN;
    return knownTo([&] {
        if (!isEvent(name)) return false;
        const MutexLock lock(board->mutex());
        board->events().raise(name);
        return true;
    });
}

int vboard_poke_text(LOOMdevice* board, const char* name, const char* value) {
    if (board == nullptr || name == nullptr || value == nullptr) return VBOARD_UNKNOWN;
    return knownTo([&] {
        const MutexLock lock(board->mutex());
        return board->values().pokeText(name, value);
    });
}

int vboard_peek_int(LOOMdevice* board, const char* name, int64_t* value) {
    if (board == nullptr || name == nullptr || value == nullptr) return VBOARD_UNKNOWN;
    const StationLock lock(*board);
    std::uint64_t bits = 0;
    if (!board->values().peek(name, Type::i64, bits)) return VBOARD_UNKNOWN;
    *value = static_cast<std::int64_t>(bits);
    return VBOARD_OK;
}

int vboard_peek_double(LOOMdevice* board, const char* name, double* value) {
    if (board == nullptr || name == nullptr || value == nullptr) return VBOARD_UNKNOWN;
    const StationLock lock(*board);
    std::uint64_t bits = 0;
    if (!board->values().peek(name, Type::f64, bits)) return VBOARD_UNKNOWN;
    *value = std::bit_cast<double>(bits);
    return VBOARD_OK;
}

int vboard_peek_field(LOOMdevice* board, const char* name, uint32_t first, uint32_t count, uint32_t* values) {
    if (board == nullptr || name == nullptr || values == nullptr) return VBOARD_UNKNOWN;
    return knownTo([&] {
        const MutexLock lock(board->mutex());
        return board->values().peekField(name, first, count, values);
    });
}

int vboard_live(const char* what) {
    constexpr const char* names[] = {"boards", "designs", "handles", "strings"};
    static_assert(std::size(names) == Live::kinds);
    for (std::size_t kind = 0; what != nullptr && kind < std::size(names); ++kind)
        if (std::strcmp(names[kind], what) == 0) return Live::count(static_cast<Live::Kind>(kind));
    return VBOARD_UNKNOWN;
}
