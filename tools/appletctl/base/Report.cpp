#include "appletctl/base/Report.h"

#include <new>

namespace appletctl {

Report failureReport(const char* kind, const std::string& words, ExitCode exitCode) {
    return {.document = {{"error", {{"kind", kind}, {"message", words}}}},
            .text = "",
            .problems = {words},
            .exitCode = exitCode};
}

std::string internalError(const std::exception& error) {
    if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) return "there is not enough memory";
    return std::string("internal error, please report it with the command line: ") + error.what();
}

} // namespace appletctl
