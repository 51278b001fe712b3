/** The applet's result codes in words. */
#ifndef APPLET_HOST_CODES_H
#define APPLET_HOST_CODES_H

#include <span>
#include <string>

namespace applet_host {

struct ResultCode {
    int code;
    const char* symbol; /**< "FG_ERR_OUT_OF_RANGE"; empty for a code of the runtime or the board */
    const char* meaning;
};

/** Those with a symbol. */
std::span<const ResultCode> resultCodes();

const ResultCode& resultCode(int code);

/** "-6000, value out of range". */
std::string codeInWords(int code);

} // namespace applet_host

#endif
