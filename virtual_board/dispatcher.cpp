// libcommon-logging-dispatcher.so: prints log lines to the standard error.
//
// The threshold of every logger is the number in VBOARD_LOG_LEVEL; without it nothing passes.

#include "vexo/logging_dispatcher.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <string>

namespace {

constexpr std::uint32_t closedLevel = 7;

struct Loggers {
    std::mutex mutex;
    std::map<std::uint64_t, std::string> nameByHandle; // handles count from 1
};

/** Goes when this library is unloaded, so that loading it again and again leaves nothing behind. */
Loggers& loggers() {
    static Loggers all;
    return all;
}

std::uint32_t threshold() {
    const char* level = std::getenv("VBOARD_LOG_LEVEL");
    if (level == nullptr) return closedLevel;
    char* end = nullptr;
    const unsigned long number = std::strtoul(level, &end, 10);
    return end != level && *end == '\0' && number < closedLevel ? static_cast<std::uint32_t>(number)
                                                                : closedLevel;
}

void getLogger(const char* name, std::uint64_t* handle, std::uint32_t* level) {
    Loggers& all = loggers();
    const std::lock_guard guard(all.mutex);
    for (const auto& [known, knownName] : all.nameByHandle)
        if (knownName == name) *handle = known;
    if (*handle == 0) {
        *handle = all.nameByHandle.size() + 1;
        all.nameByHandle[*handle] = name;
    }
    *level = threshold();
}

void print(std::uint64_t handle, std::uint32_t level, const char* text, std::uint32_t, std::uint64_t) {
    Loggers& all = loggers();
    const std::lock_guard guard(all.mutex);
    std::fprintf(stderr, "[%u] %s: %s\n", level, all.nameByHandle[handle].c_str(), text);
}

void init(void*, LoggingShutdownCallback*, LoggingLevelCallback*, LoggingGetLogger** getLoggerOut,
          LoggingLog** logOut) {
    *getLoggerOut = getLogger;
    *logOut = print;
}

void fini(void*) { std::fflush(stderr); }

} // namespace

extern "C" __attribute__((visibility("default")))
const LoggingDispatcherDescriptor logging_dispatcher_descriptor;
const LoggingDispatcherDescriptor logging_dispatcher_descriptor = {init, fini};
