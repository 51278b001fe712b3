/** The names of the runtime's functions. */
#ifndef VIRTUAL_BOARD_TABLES_RUNTIME_ENTRIES_H
#define VIRTUAL_BOARD_TABLES_RUNTIME_ENTRIES_H

#include <cstddef>
#include <string_view>

namespace vboard {

struct RuntimeEntry {
    enum Answer { own, forcible };

    std::string_view name;
    Answer answer;
};

/** All but the two init functions take the handle. */
inline constexpr RuntimeEntry runtimeEntries[] = {
#define RUNTIME_ENTRY(name, type, function, answer) {#name, RuntimeEntry::answer},
#include "virtual_board/tables/runtime_entries.def"
#undef RUNTIME_ENTRY
};

/** Number of a function of the runtime, or -1. */
constexpr int findEntry(std::string_view name) {
    for (std::size_t i = 0; i < std::size(runtimeEntries); ++i)
        if (runtimeEntries[i].name == name) return static_cast<int>(i);
    return -1;
}

/** The same for a name in this project's sources; an unknown one does not compile. */
consteval int entry(std::string_view name) {
    const int found = findEntry(name);
    if (found < 0) throw "no function of the runtime";
    return found;
}

} // namespace vboard

#endif
