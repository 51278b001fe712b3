/** The parameters of a station, as vexo.h describes them. */
#ifndef HOST_PARAMETERTABLE_H
#define HOST_PARAMETERTABLE_H

#include "applet_tools/applet/ParameterList.h"
#include "applet_tools/applet/published_limits.h"
#include "host/vexo.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace host {

/** Texts that live as long as the station. */
struct ParameterRow {
    int id = 0;
    vexo_kind kind = VEXO_UINT32;
    FgParamTypes tag = 0;     /**< type tag of a number, for the applet */
    bool isNumber = false;    /**< one number, or an entry */
    bool hasElements = false; /**< its elements can be read and set */
    const applet_tools::Parameter* parameter = nullptr;
    std::string label, unit, description, group, readEffect, setEffect;
    std::vector<applet_tools::Entry> entries;
};

/** All parameters, in the order of the tree. Does not change after its construction. */
class ParameterTable {
public:
    ParameterTable(applet_tools::Instance& instance, const applet_tools::ParameterList& parameters);

    const std::vector<ParameterRow>& rows() const { return m_rows; }
    /** Null for an unknown id. */
    const ParameterRow* find(int id) const {
        for (std::uint32_t index = slotOf(id);; index = (index + 1) & m_mask) {
            const Slot& slot = m_slots[index];
            if (slot.id == id) return slot.row;
            if (slot.row == nullptr) return nullptr;
        }
    }

    /** Returns the id for an exact name; 0 for an unknown one. */
    int idOf(std::string_view name) const {
        const auto found = m_ids.find(name);
        return found != m_ids.end() ? found->second : 0;
    }

private:
    /** A slot of a hash table that is at most half full. */
    struct Slot {
        int id = 0;
        const ParameterRow* row = nullptr; // null: free
    };
    std::uint32_t slotOf(int id) const { return (static_cast<std::uint32_t>(id) * 2654435769U) >> m_shift; }

    std::vector<ParameterRow> m_rows;
    std::unordered_map<std::string_view, int> m_ids;
    std::vector<Slot> m_slots;
    std::uint32_t m_mask = 0;
    unsigned m_shift = 0;
};

} // namespace host

#endif
