/** Failures that end a command, and the applet's result codes in words. */
#ifndef APPLET_TOOLS_BASE_ERRORS_H
#define APPLET_TOOLS_BASE_ERRORS_H

#include "applet_host/codes.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace applet_tools {

/** An invalid request; nothing was done. */
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/** No parameter has the name, or more than one; nothing was done. */
struct UnknownName : UsageError {
    UnknownName(const std::string& words, std::vector<std::string> names)
        : UsageError(words)
        , nearest(std::move(names)) {}

    std::vector<std::string> nearest; /**< the names that may be meant */
};

/** The applet or the board could not carry out the request. */
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/** The applet refused a value that was assumed to be set. */
// The move of a JSON document checks itself. NOLINTNEXTLINE(bugprone-exception-escape)
struct AssumptionRefused : Failure {
    AssumptionRefused(const std::string& words, int number, nlohmann::ordered_json more)
        : Failure(words)
        , code(number)
        , members(std::move(more)) {}

    int code;
    nlohmann::ordered_json
        members; /**< of a document: name, requested value, limits, what would be accepted */
};

/** The applet or a board is not available. */
struct Unavailable : Failure {
    using Failure::Failure;
};

using applet_host::codeInWords;

/** True for a code of the applet, which has a symbol; false for a code of the runtime or the board. */
bool isAppletCode(int code);

/** Converts a number or a symbol such as "FG_ERR_OUT_OF_RANGE" into the code. */
std::optional<int> codeFrom(std::string_view word);

/** {"code": -6000, "symbol": "FG_ERR_OUT_OF_RANGE", "meaning": "value out of range"}. */
nlohmann::ordered_json codeAsJson(int code);

} // namespace applet_tools

#endif
