#include "virtual_board/board/Design.h"

#include "virtual_board/tables/design_tables.h"
#include "virtual_board/tables/runtime_entries.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>

namespace vboard {
namespace {

struct Settings {
    std::vector<bool> lackingParameters = std::vector<bool>(parameterRows().size());
    std::map<std::string, int, std::less<>> aliases; // to the row
    std::vector<bool> lackingEvents = std::vector<bool>(eventRows().size());
    int extraEvents = 0;
    bool refuseDesigns = false;
    bool failInit = false;
    int initError = 0;
};

std::mutex settingsMutex;

/** Guarded by settingsMutex. */
Settings& settings() {
    static Settings kept;
    return kept;
}

std::array<std::atomic<bool>, std::size(runtimeEntries)> hiddenEntries;

std::string extraEvent(int number) { return "Extra" + std::to_string(number); }

int findEvent(std::string_view name) {
    const auto rows = eventRows();
    const auto found =
        std::find_if(rows.begin(), rows.end(), [name](const TslEvent& row) { return row.name == name; });
    return found != rows.end() ? static_cast<int>(found - rows.begin()) : -1;
}

} // namespace

std::shared_ptr<const Design> Design::load() {
    const std::lock_guard lock(settingsMutex);
    const Settings& set = settings();
    if (set.refuseDesigns) return nullptr;

    const std::shared_ptr<Design> design(new Design);
    design->m_lacking = set.lackingParameters;
    design->m_aliases = set.aliases;
    const auto rows = eventRows();
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (!set.lackingEvents[i]) design->m_events.push_back(rows[i]);
    // Create all names before taking a pointer to any of them.
    for (int i = 0; i < set.extraEvents; ++i)
        design->m_extraNames.push_back(extraEvent(i));
    for (const std::string& name : design->m_extraNames)
        design->m_events.push_back({1, name.c_str()});
    return design;
}

int Design::find(std::string_view name) const {
    int row = findParameter(name);
    if (const auto alias = m_aliases.find(name); alias != m_aliases.end()) row = alias->second;
    return row >= 0 && has(row) ? row : -1;
}

const TslEvent* Design::event(int index) const {
    if (index < 0 || index >= std::ssize(m_events)) return nullptr;
    return &m_events[static_cast<std::size_t>(index)];
}

bool lackParameter(const char* name, bool lacking) {
    const int row = name != nullptr ? findParameter(name) : -1;
    if (row < 0) return false;
    const std::lock_guard lock(settingsMutex);
    settings().lackingParameters[static_cast<std::size_t>(row)] = lacking;
    return true;
}

bool aliasParameter(const char* alias, const char* name) {
    const int row = alias != nullptr && name != nullptr ? findParameter(name) : -1;
    if (row < 0 || findParameter(alias) >= 0) return false;
    const std::lock_guard lock(settingsMutex);
    settings().aliases.insert_or_assign(alias, row);
    return true;
}

bool lackEvent(const char* name, bool lacking) {
    const int row = name != nullptr ? findEvent(name) : -1;
    if (row < 0) return false;
    const std::lock_guard lock(settingsMutex);
    settings().lackingEvents[static_cast<std::size_t>(row)] = lacking;
    return true;
}

bool isEvent(const char* name) {
    if (findEvent(name) >= 0) return true;
    const std::lock_guard lock(settingsMutex);
    int number = 0;
    while (number < settings().extraEvents && extraEvent(number) != name)
        ++number;
    return number < settings().extraEvents;
}

bool hideEntry(const char* name, bool hidden) {
    const int entry = name != nullptr ? findEntry(name) : -1;
    if (entry < 0) return false;
    hiddenEntries[static_cast<std::size_t>(entry)] = hidden;
    return true;
}

void appendExtraEvents(int count) {
    const std::lock_guard lock(settingsMutex);
    settings().extraEvents = count;
}

void refuseDesigns(bool refuse) {
    const std::lock_guard lock(settingsMutex);
    settings().refuseDesigns = refuse;
}

void failInit(bool fail, int lastError) {
    const std::lock_guard lock(settingsMutex);
    settings().failInit = fail;
    settings().initError = lastError;
}

void restoreDesign() {
    for (auto& hidden : hiddenEntries)
        hidden = false;
    const std::lock_guard lock(settingsMutex);
    Settings& set = settings(); // without an allocation
    set.lackingParameters.assign(set.lackingParameters.size(), false);
    set.aliases.clear();
    set.lackingEvents.assign(set.lackingEvents.size(), false);
    set.extraEvents = set.initError = 0;
    set.refuseDesigns = set.failInit = false;
}

bool isEntryHidden(int entry) { return hiddenEntries[static_cast<std::size_t>(entry)]; }

bool isInitFailing(int& lastError) {
    const std::lock_guard lock(settingsMutex);
    if (!settings().failInit) return false;
    lastError = settings().initError;
    return true;
}

} // namespace vboard
