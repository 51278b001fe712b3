/** The files that are embedded in the program: the page, and the description of the interface. */
#ifndef SERVE_HTTP_ROUTES_PAGE_FILES_H
#define SERVE_HTTP_ROUTES_PAGE_FILES_H

#include "serve/http/protocol/HttpMessage.h"

#include <string_view>

namespace serve {

struct PageFile {
    std::string_view name; /**< "index.html", "base/api.js" */
    std::string_view content;
};

/** Returns null if there is no file of this name. */
const PageFile* findPageFile(std::string_view name);

/** Returns the file with its type, a tag of its content, and the headers that restrict a page; 304 if the client has the
 *  file. */
HttpAnswer fileAnswer(const PageFile& file, const HttpRequest& request);

} // namespace serve

#endif
