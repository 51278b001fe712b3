#include "serve/http/HttpError.h"

#include "applet_tools/base/errors.h"
#include "serve/http/CommandThread.h"

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

HttpAnswer answerToException() {
    try {
        throw;
    } catch (const HttpError& error) {
        return errorAnswer(error);
    } catch (const Busy& error) {
        return errorAnswer({status::unavailable, "busy", error.what()});
    } catch (const applet_tools::UsageError& error) {
        return errorAnswer({status::badRequest, "invalid", error.what()});
    } catch (const applet_tools::Unavailable& error) {
        return errorAnswer({status::unavailable, "none", error.what()});
    } catch (const applet_tools::Failure& error) {
        return errorAnswer({status::conflict, "refused", error.what()});
    } catch (const std::exception& error) {
        return errorAnswer({status::internal, "internal", error.what()});
    }
}

} // namespace serve
