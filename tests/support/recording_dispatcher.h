/** The recording dispatcher's data, shared with the test in the same process. */
#ifndef TESTS_SUPPORT_RECORDING_DISPATCHER_H
#define TESTS_SUPPORT_RECORDING_DISPATCHER_H

#include "vexo/logging_dispatcher.h"

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

struct Recording {
    std::map<std::string, std::pair<std::uint64_t, std::uint32_t>> loggers; // handle and level by name
    std::function<void()> onInit;                                           // before the functions are stored
    std::function<void()> onFini;

    std::mutex mutex;               // guards `calls` while other threads log
    std::vector<std::string> calls; // init, fini and the lines
    std::string ownSymbol;          // which library answers to a name that program and dispatcher both export
    LoggingShutdownCallback* shutdown = nullptr;
    LoggingLevelCallback* level = nullptr;
};

/** The symbol of the Recording object. */
inline constexpr const char* recordingSymbol = "recording";

#endif
