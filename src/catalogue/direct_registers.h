/** Ids of direct access, and the design's registers as they are offered for it. */
#ifndef CATALOGUE_DIRECT_REGISTERS_H
#define CATALOGUE_DIRECT_REGISTERS_H

#include "vexo/design_loader.h"
#include "vexo/fg_api.h"

#include <string>

namespace catalogue {

/** `number` plus `offset`. Wraps, since a loader or a runtime may return any number. */
constexpr int movedId(int number, int offset) {
    return static_cast<int>(static_cast<unsigned>(number) + static_cast<unsigned>(offset));
}

/** Label of the group of the registers in the tree. */
inline constexpr const char* directRegisterGroup = "Direct Register Access";

struct DirectRegister {
    const char* name; // the design's
    int number;
    std::string publicName() const { return std::string("DRA_") + name; }
    int publicId() const { return movedId(number, FG_DIRECT_REGISTER_BASE); }
};

/** Calls `visit` with each register, in ascending order. A register without a name is skipped. */
template <typename Visit> void forEachRegister(fpga_design* design, Visit visit) {
    const int count = TslGetNrOfRegister(design);
    for (int i = 1; i <= count; ++i)
        if (const char* name = TslGetRegisterName(design, i))
            visit(DirectRegister{name, TslGetRegisterByName(design, name)});
}

} // namespace catalogue

#endif
