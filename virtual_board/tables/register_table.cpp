#include "virtual_board/tables/design_tables.h"

#include <algorithm>

namespace vboard {
namespace {

// Ids are the addresses on the board; the list is not sorted by them.
constexpr RegisterRow registers[] = {
    {"BoardId", 0x100, 32, readOnly, 0x0002'0880},
    {"Control", 0x110, 32, writable, 0},
    {"StatusLed", 0x114, 1, writable, 1},
    {"PowerGood", 0x118, 1, readOnly, 1},
    {"FanLevel", 0x120, 8, writable, 96},
    {"SlotId", 0x104, 8, readOnly, 5},
    {"IdleTicks", 0x140, 33, readOnly, 0x1'0000'002a},
    {"AlarmTicks", 0x148, 33, writable, 0},
    {"SerialNumber", 0x130, 64, readOnly, 0xfedc'ba98'7654'3210},
    {"ScratchPad", 0x138, 64, writable, 0},
};

template <typename Matches> int find(Matches matches) {
    const auto* found = std::find_if(std::begin(registers), std::end(registers), matches);
    return found != std::end(registers) ? static_cast<int>(found - registers) : -1;
}

} // namespace

std::span<const RegisterRow> registerRows() { return registers; }

int findRegister(std::string_view name) {
    return find([name](const RegisterRow& row) { return row.name == name; });
}

int findRegister(int id) {
    return find([id](const RegisterRow& row) { return row.id == id; });
}

} // namespace vboard
