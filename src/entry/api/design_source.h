/** Loading of the design. */
#ifndef ENTRY_API_DESIGN_SOURCE_H
#define ENTRY_API_DESIGN_SOURCE_H

#include "vexo/design_loader.h"

/** Code of this design's type. */
inline constexpr int designTypeCode = 1880;

/**
 * Loads the design embedded in the library, or the file `tslName` if the environment variable
 * __VEXO_FORCE_EXTERNAL_TSL is set to any value. Null if the loader refuses it.
 */
fpga_design* loadDesign(const char* tslName);

#endif
