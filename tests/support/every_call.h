/** All exported functions as calls, with results and required functions: one list for all tests that walk
 *  them. */
#ifndef TESTS_SUPPORT_EVERY_CALL_H
#define TESTS_SUPPORT_EVERY_CALL_H

#include "support/applet_fixture.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace support {

constexpr int answered = 5;                      // by the functions that the wrapper forwards to the runtime
constexpr int errorBefore = FG_ERR_OUT_OF_RANGE; // the last error before a call; no call returns it

/** A call of an exported function; a pointer counts as 1, or 0 for null. */
struct Call {
    std::string function;
    std::function<std::int64_t(Fg_Struct*)> call;
    std::int64_t usual;
    /** Functions of the runtime, each with the result where it is missing; the first missing one decides. */
    std::vector<std::pair<std::string, std::int64_t>> needs{};
    /** The last error; of most calls it is the result, or 0 where that is not a failure. */
    std::optional<int> stored{};
    std::int64_t badHandle = FG_ERR_INVALID_HANDLE;

    int errorAfter(std::int64_t result) const {
        return stored.value_or(result < 0 ? static_cast<int>(result) : FG_OK);
    }
};

/** All but Std_entry, Fg_FreeGrabber and Fg_getLastErrorNumber. Configurations are saved to `saved`. */
std::vector<Call> everyCall(const std::string& saved);

/** A function that is forwarded to the runtime. */
struct Forwarder {
    const char* name;
    bool wide; /**< 64-bit result */
    std::function<std::int64_t(Fg_Struct*)> call;
};
const std::vector<Forwarder>& forwarders();

} // namespace support

#endif
