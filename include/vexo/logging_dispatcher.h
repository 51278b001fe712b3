/**
 * The interface of the optional logging dispatcher.
 *
 * The applet opens "<SDK directory>/lib64/libcommon-logging-dispatcher.so" and looks up the data symbol
 * `logging_dispatcher_descriptor`. Without it, logging is off.
 *
 * Levels are numbers; higher is more severe. A line passes a logger when its level is at or above the
 * logger's threshold. The applet logs at 4 (refused calls, missing ids), 5 (failed design access) and 6 (the
 * runtime could not be bound).
 */
#ifndef VEXO_LOGGING_DISPATCHER_H
#define VEXO_LOGGING_DISPATCHER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Returns handle and threshold of the logger called `name`. Both words are zeroed before the call. */
typedef void LoggingGetLogger(const char* name, uint64_t* handle, uint32_t* level);

/** Logs one line. The applet passes 0 for `a` and `b`. Called from any thread, possibly several at once. */
typedef void LoggingLog(uint64_t handle, uint32_t level, const char* text, uint32_t a, uint64_t b);

/** Notifies the applet that the dispatcher is shutting down; it makes no further calls. */
typedef void LoggingShutdownCallback(void);

/** Notifies the applet of the new threshold of the logger with this handle. */
typedef void LoggingLevelCallback(uint64_t handle, uint32_t level);

typedef struct LoggingDispatcherDescriptor {
    /** Called once after binding. The dispatcher stores its two functions at the addresses given. */
    void (*init)(void* logging, LoggingShutdownCallback* shutdown, LoggingLevelCallback* level,
                 LoggingGetLogger** getLoggerOut, LoggingLog** logOut);
    /** Called at the end, unless the dispatcher has called `shutdown` before. */
    void (*fini)(void* logging);
} LoggingDispatcherDescriptor;

/** The symbol's name. */
#define LOGGING_DISPATCHER_SYMBOL "logging_dispatcher_descriptor"

#ifdef __cplusplus
}
#endif
#endif
