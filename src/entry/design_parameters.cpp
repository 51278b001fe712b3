// The binding of the design's own parameters: their ids, writers and readers.

#include "entry/DesignAccess.h"
#include "entry/setter_tools.h"

#include <iterator>

namespace levels = vexo::tools::logging::levels;

/** The design's parameters and the members that hold their ids, in the order in which ids are resolved. */
struct DesignParameterTable {
    struct Row {
        const char* name;
        std::int32_t DesignAccess::*id;
    };

#define DESIGN_WRITTEN(parameter) {"Device1_" #parameter, &DesignAccess::m_id_##parameter},
#define DESIGN_READ DESIGN_WRITTEN
#define DESIGN_BOTH DESIGN_WRITTEN
    static constexpr Row rows[] = {
#include "entry/design_parameters.def"
    };
#undef DESIGN_WRITTEN
#undef DESIGN_READ
#undef DESIGN_BOTH
    static_assert(std::size(rows) == 138);
};

void DesignAccess::resolveDesignParameterIds() {
    // A design that lacks a parameter can still be brought up; only accesses to that parameter fail.
    for (const DesignParameterTable::Row& row : DesignParameterTable::rows) {
        this->*row.id = getParameterIdByName(row.name);
        if (this->*row.id < 1)
            log(levels::refusedCall, "cannot retrieve LOOM id for LOOM parameter: '", row.name, "'");
    }
}

void DesignAccess::accessFailed(const char* verb, const char* name, std::int32_t id, const void* value,
                                int result, bool raise) {
    if (value != nullptr)
        log(levels::accessFailed, verb, " LOOM parameter '", name, "' (ID: ", id,
            ") failed: result = ", result);
    if (raise) refuse(result);
}
