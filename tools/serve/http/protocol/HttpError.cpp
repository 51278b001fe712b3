#include "serve/http/protocol/HttpError.h"

namespace serve {

HttpAnswer jsonAnswer(const Json& document, int status) {
    constexpr auto replace = Json::error_handler_t::replace;
    return {.status = status,
            .body = std::make_shared<const std::string>(document.dump(-1, ' ', false, replace) + '\n'),
            .headers = {{"Cache-Control", "no-store"}}};
}

HttpAnswer errorAnswer(const HttpError& error) {
    Json document;
    document["error"] = {{"code", error.code}, {"message", error.what()}};
    document["error"].update(error.members);
    HttpAnswer answer = jsonAnswer(document, error.status);
    if (error.status == status::unavailable) answer.headers.emplace_back("Retry-After", "1");
    if (error.status == status::unauthorised) answer.headers.emplace_back("WWW-Authenticate", "Bearer");
    return answer;
}

} // namespace serve
