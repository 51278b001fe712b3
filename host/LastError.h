/** Failures of the exported functions: codes, messages and details, for each thread. */
#ifndef HOST_LASTERROR_H
#define HOST_LASTERROR_H

#include "host/vexo.h"

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <string>
#include <utility>

namespace host {

/** A failure with its code and message. */
// The move of a JSON document checks itself. NOLINTNEXTLINE(bugprone-exception-escape)
struct Error : std::runtime_error {
    Error(int number, const std::string& words, nlohmann::ordered_json more = nullptr)
        : std::runtime_error(words)
        , code(number)
        , members(std::move(more)) {}

    int code;
    nlohmann::ordered_json members; /**< of the details; null without any */
};

/** Records the exception that is being handled as the last error of this thread, and returns its code. */
int recordFailure() noexcept;

/** Records a failure and returns its code. */
int fail(int code, const std::string& words) noexcept;

/** Records that a pointer is null; `what` names the argument. Returns VEXO_ERR_ARGUMENT. */
int failNull(const char* what) noexcept;

/** Returns the result of the work, or the code of its exception. */
template <typename Work> int guarded(const Work& work) noexcept {
    try {
        return work();
    } catch (...) {
        return recordFailure();
    }
}

} // namespace host

#endif
