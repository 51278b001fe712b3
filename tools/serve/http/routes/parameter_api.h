/** The routes of parameters. */
#ifndef SERVE_HTTP_ROUTES_PARAMETER_API_H
#define SERVE_HTTP_ROUTES_PARAMETER_API_H

#include "serve/http/state/SharedStation.h"

namespace serve {

HttpAnswer listParameters(SharedStation& station, const HttpRequest& request, const std::string& none);
HttpAnswer showParameter(SharedStation& station, const HttpRequest& request, const std::string& name);
HttpAnswer setParameter(SharedStation& station, const HttpRequest& request, const std::string& name);
HttpAnswer setSeveral(SharedStation& station, const HttpRequest& request, const std::string& none);

/** For the command thread: applies all assignments or none; returns [{"name", "requested", "actual", "shown"}, ...].
 *  Throws HttpError for a refusal, with the remedies. */
Json applyAll(SharedStation& station, const applet_tools::Words& words);

/** Executes a change on the command thread, as a step that can be undone. Returns {"changes", ...} with the members
 *  that `work` returns, and informs the streams. Throws HttpError unless sets are allowed. */
Json runChange(SharedStation& station, const std::string& text, const std::function<Json()>& work);

} // namespace serve

#endif
