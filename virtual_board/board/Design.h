/** A loaded design, and the process-wide settings that the next one, and the runtime bound to it, are made from. */
#ifndef VIRTUAL_BOARD_BOARD_DESIGN_H
#define VIRTUAL_BOARD_BOARD_DESIGN_H

#include "virtual_board/board/Live.h"

#include "vexo/design_loader.h"

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vboard {

/** The content of a design: the settings at the time of its load. It never changes. */
class Design {
public:
    /** A design with the current settings; null if designs are refused. */
    static std::shared_ptr<const Design> load();

    /** Row of the parameter with this name or alias, or -1. */
    int find(std::string_view name) const;
    bool has(int row) const { return !m_lacking[static_cast<std::size_t>(row)]; }
    /** Null if out of range. */
    const TslEvent* event(int index) const;

private:
    Design() = default;

    Live m_live{Live::designs};
    std::vector<bool> m_lacking; // by row of the parameters
    std::map<std::string, int, std::less<>> m_aliases;
    std::vector<TslEvent> m_events;
    std::vector<std::string> m_extraNames;
};

/*
 * The settings. Those with a name return false for an unknown one.
 */
bool lackParameter(const char* name, bool lacking);
bool aliasParameter(const char* alias, const char* name);
bool lackEvent(const char* name, bool lacking);
bool isEvent(const char* name);
bool hideEntry(const char* name, bool hidden);
void appendExtraEvents(int count);
void refuseDesigns(bool refuse);
void failInit(bool fail, int lastError);
void restoreDesign();

/** Whether a function of the runtime (by its index in runtimeEntries) is hidden. Takes no lock. */
bool isEntryHidden(int entry);
/** Whether init must fail; if so, `lastError` receives the code. */
bool isInitFailing(int& lastError);

} // namespace vboard

/** The loader's handle of a design. A grabber that uses the design shares it. */
struct fpga_design {
    std::shared_ptr<const vboard::Design> design;
};

#endif
