// The document that describes the parameters.

#include "catalogue/ParameterInfoBuilderXML.h"
#include "entry/FgLoomWrapper.h"

#include <cstring>

int FgLoomWrapper::Fg_getParameterInfoXML(Fg_Struct*, int index, char* buffer, unsigned long* size) {
    if (size == nullptr) return fgError().setErr(FG_ERR_INVALID_ARGUMENT);
    if (buffer != nullptr && *size == 0) return fgError().setErr(FG_ERR_BUFFER);
    if (parameterInfo().getRegisterInfo(index) == nullptr) return fgError().setErr(FG_ERR_NO_TRANSLATION);

    const std::string document = ParameterInfoBuilderXML(parameterInfo(), appletName(), index).build();
    if (buffer != nullptr) {
        if (document.size() >= *size) return fgError().setErr(FG_ERR_BUFFER);
        std::memcpy(buffer, document.c_str(), document.size() + 1);
    }
    *size = document.size() + 1;
    return fgError().setErr(FG_OK);
}
