// The shading operations. There is no shading hardware: they only complete the API.

#include "entry/FgLoomWrapper.h"

ShadingMaster* FgLoomWrapper::Fg_AllocShading(int, int) { return nullptr; }

int FgLoomWrapper::Fg_FreeShading(ShadingMaster*) { return FG_ERR_NOT_SUPPORTED; }

int FgLoomWrapper::Shad_SetSubValueLine(ShadingMaster*, int, int, float) { return FG_ERR_NOT_SUPPORTED; }

int FgLoomWrapper::Shad_SetMultValueLine(ShadingMaster*, int, int, float) { return FG_ERR_NOT_SUPPORTED; }

int FgLoomWrapper::Shad_SetFixedPatternNoiseLine(ShadingMaster*, int, int, int) {
    return FG_ERR_NOT_SUPPORTED;
}

int FgLoomWrapper::Shad_GetMaxLine(ShadingMaster*) { return FG_ERR_NOT_SUPPORTED; }

int FgLoomWrapper::Shad_GetAccess(ShadingMaster*) { return FG_ERR_NOT_SUPPORTED; }

int FgLoomWrapper::Shad_FreeAccess(ShadingMaster*) { return FG_ERR_NOT_SUPPORTED; }

int FgLoomWrapper::Shad_WriteActLine(ShadingMaster*, int) { return FG_ERR_NOT_SUPPORTED; }
