#include "catalogue/DirectAccessStore.h"

#include "support/switches.h"

using vexo::templates::platform::RecursiveMutexGuard;

std::string DirectAccessStore::keyOf(std::string_view section, std::string_view name) const {
    const std::string key = std::string(section) + "::" + std::string(name);
    return m_caseSensitive ? key : lowerCase(key);
}

void DirectAccessStore::insert(std::string_view section, std::string_view name, std::string_view value) {
    const RecursiveMutexGuard guard(&m_mutex);
    m_values.insert_or_assign(keyOf(section, name), value);
}

std::vector<std::string> DirectAccessStore::switchedOn(std::string_view section) const {
    const std::string prefix = keyOf(section, "");
    const RecursiveMutexGuard guard(&m_mutex);
    std::vector<std::string> names;
    for (auto at = m_values.lower_bound(prefix); at != m_values.end() && at->first.starts_with(prefix); ++at)
        if (isOn(at->second)) names.push_back(at->first.substr(prefix.size()));
    return names;
}
