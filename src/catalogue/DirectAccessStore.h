/** The design parameters that are offered for direct access, as a store of "section::name" properties. */
#ifndef CATALOGUE_DIRECTACCESSSTORE_H
#define CATALOGUE_DIRECTACCESSSTORE_H

#include "templates/platform/RecursiveMutex.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

/** All operations may be called from any thread. */
class DirectAccessStore {
public:
    explicit DirectAccessStore(bool caseSensitive) : m_caseSensitive(caseSensitive) {}

    /** Stores a property, replacing an existing one. */
    void insert(std::string_view section, std::string_view name, std::string_view value);
    /** Names of the section's properties that are switched on, sorted. */
    std::vector<std::string> switchedOn(std::string_view section) const;

private:
    std::string keyOf(std::string_view section, std::string_view name) const;

    mutable vexo::templates::platform::RecursiveMutex m_mutex;
    const bool m_caseSensitive;
    std::map<std::string, std::string> m_values GUARDED_BY(m_mutex);
};

#endif
