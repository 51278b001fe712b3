#include "applet_tools/base/errors.h"

#include "applet_tools/base/numbers.h"

namespace applet_tools {

bool isAppletCode(int code) { return applet_host::resultCode(code).symbol[0] != '\0'; }

std::optional<int> codeFrom(std::string_view word) {
    for (const applet_host::ResultCode& row : applet_host::resultCodes())
        if (word == row.symbol) return row.code;
    return wholeNumber<int>(word);
}

nlohmann::ordered_json codeAsJson(int code) {
    const applet_host::ResultCode& row = applet_host::resultCode(code);
    return {{"code", code}, {"symbol", row.symbol}, {"meaning", row.meaning}};
}

} // namespace applet_tools
