#include "hidden_entries.h"

#include <cstring>

std::atomic<bool> vboard_hidden_entries[vboard::entryCount];

namespace vboard {

namespace {

int positionOf(const char* name) {
    for (int i = 0; i < entryCount; ++i)
        if (name != nullptr && std::strcmp(entryNames[i], name) == 0) return i;
    return -1;
}

} // namespace

bool isEntry(const char* name) { return positionOf(name) >= 0; }

bool hideEntry(const char* name, bool hidden) {
    const int position = positionOf(name);
    if (position < 0) return false;
    vboard_hidden_entries[position] = hidden;
    return true;
}

void showAllEntries() {
    for (std::atomic<bool>& hidden : vboard_hidden_entries)
        hidden = false;
}

} // namespace vboard
