/** Failed requests. */
#ifndef SERVE_HTTP_PROTOCOL_HTTPERROR_H
#define SERVE_HTTP_PROTOCOL_HTTPERROR_H

#include "serve/http/protocol/HttpMessage.h"

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <string>

namespace serve {

using Json = nlohmann::ordered_json;

/** Status codes of answers. */
namespace status {
constexpr int noContent = 204, notModified = 304, badRequest = 400, unauthorised = 401, forbidden = 403,
              notFound = 404, notAllowed = 405, conflict = 409, tooLarge = 413, tooLong = 414,
              unknownEncoding = 415, headTooLarge = 431, internal = 500, unavailable = 503;
} // namespace status

/** Thrown by a route: the answer is {"error": {"code", "message", ...}}. */
// The move of a JSON document checks itself. NOLINTNEXTLINE(bugprone-exception-escape)
struct HttpError : std::runtime_error {
    HttpError(int errorStatus, std::string errorCode, const std::string& message,
              Json errorMembers = Json::object())
        : std::runtime_error(message)
        , status(errorStatus)
        , code(std::move(errorCode))
        , members(std::move(errorMembers)) {}

    int status;
    std::string code; /**< "invalid", "unknown", "refused", "forbidden", "busy", "none" */
    Json members;     /**< more members of the error, such as "advice" */
};

HttpAnswer jsonAnswer(const Json& document, int status = 200);
HttpAnswer errorAnswer(const HttpError& error);

} // namespace serve

#endif
