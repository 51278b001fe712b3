#include "base/LastError.h"

#include <algorithm>

namespace producer {
namespace {

struct Failure {
    GC_ERROR code = GC_ERR_SUCCESS;
    char text[512] = "No Error";
};

thread_local Failure failure;

} // namespace

void rememberError(GC_ERROR code, std::string_view text) noexcept {
    failure.code = code;
    const std::size_t length = std::min(text.size(), sizeof failure.text - 1);
    std::copy_n(text.data(), length, failure.text);
    failure.text[length] = 0;
}

GC_ERROR lastErrorCode() { return failure.code; }

const char* lastErrorText() { return failure.text; }

} // namespace producer
