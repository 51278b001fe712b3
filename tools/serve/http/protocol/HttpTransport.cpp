#include "serve/http/protocol/HttpTransport.h"

#include "applet_tools/base/errors.h"

#include <dlfcn.h>

namespace serve {

std::unique_ptr<HttpTransport> openHttp(const HttpEndpoint& endpoint, HttpHandler& handler) {
    // Stays loaded: threads of the library may not have exited when the transport is destroyed.
    void* const library = dlopen("libappletctl_http.so", RTLD_NOW | RTLD_LOCAL);
    const char* const trouble = library == nullptr ? dlerror() : nullptr;
    void* const symbol = library == nullptr ? nullptr : dlsym(library, httpTransportFunction);
    if (symbol == nullptr)
        throw applet_tools::Unavailable(
            std::string(
                "this program was built without HTTP: build it with the package libcpp-httplib-dev, or "
                "say --no-http") +
            (trouble != nullptr ? std::string("; ") + trouble : ""));
    std::string problem;
    HttpTransport* const made = reinterpret_cast<HttpTransportFunction*>(symbol)(endpoint, handler, problem);
    if (made == nullptr) throw applet_tools::Failure(problem);
    return std::unique_ptr<HttpTransport>(made);
}

} // namespace serve
