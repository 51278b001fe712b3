#include "applet_host/codes.h"

#include "vexo/fg_errors.h"

namespace applet_host {
namespace {

constexpr ResultCode codes[] = {
    {FG_ERR_PARSER, "FG_ERR_PARSER",
     "no number where one was wanted, or a failure of the runtime or the board without a reason"},
    {FG_ERR_NOT_AVAILABLE, "FG_ERR_NOT_AVAILABLE", "read-only, or not available in the runtime"},
    {FG_ERR_INIT, "FG_ERR_INIT", "the design could not be loaded or the board not initialised"},
    {FG_ERR_BUFFER, "FG_ERR_BUFFER", "buffer too small or out of memory"},
    {FG_ERR_INVALID_HANDLE, "FG_ERR_INVALID_HANDLE", "invalid handle"},
    {FG_ERR_UNRESOLVED, "FG_ERR_UNRESOLVED",
     "a library or entry point is missing, or a source is not connected"},
    {FG_ERR_INVALID_ARGUMENT, "FG_ERR_INVALID_ARGUMENT", "unknown to the applet, or an invalid argument"},
    {FG_ERR_NO_TRANSLATION, "FG_ERR_NO_TRANSLATION", "the value has no translation for the design"},
    {FG_ERR_FILE_TYPE, "FG_ERR_FILE_TYPE", "the file is missing or of the wrong type"},
    {FG_ERR_STRING_TAG, "FG_ERR_STRING_TAG", "wrong type tag for a text"},
    {FG_ERR_NOT_SUPPORTED, "FG_ERR_NOT_SUPPORTED", "not supported"},
    {FG_ERR_LOAD_CONFIG, "FG_ERR_LOAD_CONFIG", "the configuration file could not be loaded"},
    {FG_ERR_SAVE_CONFIG, "FG_ERR_SAVE_CONFIG", "the file could not be written or read"},
    {FG_ERR_OUT_OF_RANGE, "FG_ERR_OUT_OF_RANGE", "value out of range"},
    {FG_ERR_GRANULARITY, "FG_ERR_GRANULARITY", "value not on the parameter's grid"},
};

constexpr ResultCode unknown = {0, "", "a code of the runtime or the board"};

} // namespace

std::span<const ResultCode> resultCodes() { return codes; }

const ResultCode& resultCode(int code) {
    for (const ResultCode& row : codes)
        if (row.code == code) return row;
    return unknown;
}

std::string codeInWords(int code) { return std::to_string(code) + ", " + resultCode(code).meaning; }

} // namespace applet_host
