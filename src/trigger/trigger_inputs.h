/** The two numbers of a trigger input: the public source value and the design's input index. */
#ifndef TRIGGER_TRIGGER_INPUTS_H
#define TRIGGER_TRIGGER_INPUTS_H

#include "support/refuse.h"
#include "vexo/fg_errors.h"
#include "vexo/fg_parameters.h"

#include <cstdint>

/** GPI 0 to 7 have one number; the front inputs, publicly numbered from 16, follow at 8. */
inline std::uint32_t inputIndexOf(std::uint32_t source) {
    if (source <= TRGINSRC_GPI_7) return source;
    if (source >= TRGINSRC_FRONT_GPI_0 && source <= TRGINSRC_FRONT_GPI_3)
        return source - TRGINSRC_FRONT_GPI_0 + 8;
    refuse(FG_ERR_NO_TRANSLATION);
}

#endif
