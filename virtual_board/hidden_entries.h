/** Which functions of libgrabcore5.so are hidden. The list lives in libvexo_hw.so, the functions do not. */
#ifndef VIRTUAL_BOARD_HIDDEN_ENTRIES_H
#define VIRTUAL_BOARD_HIDDEN_ENTRIES_H

#include <atomic>

namespace vboard {

/** Every function that the runtime offers by name. */
inline constexpr const char* entryNames[] = {
    "Fg_InitHandleSlaveAware",
    "Fg_InitHandle",
    "Fg_FreeGrabber",
    "Fg_getLastErrorNumber",
    "Fg_getParameterIdByName",
    "Fg_setParameterWithType",
    "Fg_getParameterWithType",
    "Fg_freeParameterStringWithType",
    "Fg_setParameter",
    "Fg_getParameter",
    "Fg_getParameterInfo",
    "Fg_saveConfig",
    "Fg_loadConfig",
    "Fg_getAppletId",
    "Fg_AcquireEx",
    "Fg_stopAcquireEx",
    "Fg_getStatusEx",
    "Fg_getLastPicNumberEx",
    "Fg_getLastPicNumberBlockingEx",
};

inline constexpr int entryCount = sizeof entryNames / sizeof *entryNames;

bool isEntry(const char* name);
/** False for a name that is no entry. */
bool hideEntry(const char* name, bool hidden);
void showAllEntries();

} // namespace vboard

/** Read by the resolvers of libgrabcore5.so at each lookup of a name, in the order of entryNames. */
extern "C" __attribute__((visibility("default"))) std::atomic<bool> vboard_hidden_entries[vboard::entryCount];

#endif
