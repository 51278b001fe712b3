/** Where the design comes from. */
#ifndef ENTRY_API_DESIGN_SOURCE_H
#define ENTRY_API_DESIGN_SOURCE_H

#include "vexo/design_loader.h"

/** Code of this design's type. */
inline constexpr int designTypeCode = 1880;

/**
 * Loads the design out of the library, or out of a file called `tslName` when the environment variable
 * __VEXO_FORCE_EXTERNAL_TSL is set, to whatever. Null if the loader refuses it.
 */
fpga_design* loadDesign(const char* tslName);

#endif
