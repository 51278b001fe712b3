// The logging dispatcher, libcommon-logging-dispatcher.so: writes lines to standard error.

#include "vexo/logging_dispatcher.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <vector>

namespace {

/** Lines of this level and above are printed; the default is 7, which is above all levels in use. */
std::uint32_t threshold() {
    constexpr std::uint32_t nothing = 7;
    const char* text = std::getenv("VBOARD_LOG_LEVEL");
    if (text == nullptr) return nothing;
    char* end = nullptr;
    const unsigned long level = std::strtoul(text, &end, 10);
    const bool isNumber = end != text && *end == '\0' && text[0] != '-' && level < nothing;
    return isNumber ? static_cast<std::uint32_t>(level) : nothing;
}

std::mutex namesMutex;

/** Names of the loggers; a handle is a position, from 1. Guarded by namesMutex. */
std::vector<std::string>& names() {
    static std::vector<std::string> kept;
    return kept;
}

void getLogger(const char* name, std::uint64_t* handle, std::uint32_t* level) {
    const std::string wanted = name != nullptr ? name : "";
    const std::lock_guard lock(namesMutex);
    *level = threshold();
    for (std::size_t i = 0; i < names().size(); ++i) {
        if (names()[i] != wanted) continue;
        *handle = i + 1;
        return;
    }
    names().push_back(wanted);
    *handle = names().size();
}

void log(std::uint64_t handle, std::uint32_t level, const char* text, std::uint32_t, std::uint64_t) {
    const std::lock_guard lock(namesMutex);
    const bool isKnown = handle >= 1 && handle <= names().size();
    std::fprintf(stderr, "[%u] %s: %s\n", level, isKnown ? names()[handle - 1].c_str() : "?",
                 text != nullptr ? text : "");
}

void init(void*, LoggingShutdownCallback*, LoggingLevelCallback*, LoggingGetLogger** getLoggerOut,
          LoggingLog** logOut) {
    *getLoggerOut = &getLogger;
    *logOut = &log;
}

void fini(void*) { std::fflush(stderr); }

} // namespace

extern "C" {
extern const LoggingDispatcherDescriptor logging_dispatcher_descriptor;
const LoggingDispatcherDescriptor logging_dispatcher_descriptor = {&init, &fini};
}
