#include "entry/api/design_source.h"

#include "entry/api/embedded_data.h"

#include <cstdlib>

fpga_design* loadDesign(const char* tslName) {
    if (std::getenv("__VEXO_FORCE_EXTERNAL_TSL") != nullptr)
        return TslLoadTslFileWithType(tslName, designTypeCode, 1);
    return TslLoadDesignFromBuffer(appletDesignImage, designImageSize(), 1);
}
