// A dispatcher that records its calls and returns what the test has set.

#include "support/recording_dispatcher.h"

#include <tuple>

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED Recording recording;
Recording recording;

EXPORTED __attribute__((weak)) const char* exportedByBoth() { return "dispatcher"; }

namespace {

void getLogger(const char* name, std::uint64_t* handle, std::uint32_t* level) {
    const auto known = recording.loggers.find(name);
    if (known != recording.loggers.end()) std::tie(*handle, *level) = known->second;
}

void log(std::uint64_t handle, std::uint32_t level, const char* text, std::uint32_t a, std::uint64_t b) {
    const std::lock_guard guard(recording.mutex);
    recording.calls.push_back(std::to_string(handle) + '/' + std::to_string(level) + '/' + text + '/' +
                              std::to_string(a) + '/' + std::to_string(b));
}

void init(void*, LoggingShutdownCallback* shutdown, LoggingLevelCallback* level,
          LoggingGetLogger** getLoggerOut, LoggingLog** logOut) {
    recording.calls.emplace_back("init");
    recording.ownSymbol = exportedByBoth();
    recording.shutdown = shutdown;
    recording.level = level;
    if (recording.onInit) recording.onInit();
    *getLoggerOut = &getLogger;
    *logOut = &log;
}

void fini(void*) {
    if (recording.onFini) recording.onFini();
    recording.calls.emplace_back("fini");
}

} // namespace

EXPORTED const LoggingDispatcherDescriptor logging_dispatcher_descriptor;
const LoggingDispatcherDescriptor logging_dispatcher_descriptor = {&init, &fini};
