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

/** Null if there is none of that name. */
const PageFile* findPageFile(std::string_view name);

/** The file with its type, a tag of its content, and the headers that restrict what a page may do; 304 if the client
 *  has it. */
HttpAnswer fileAnswer(const PageFile& file, const HttpRequest& request);

} // namespace serve

#endif
