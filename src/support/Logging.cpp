#include "support/Logging.h"

#include "support/SharedLibrary.h"
#include "support/sdk_directory.h"
#include "templates/platform/ReadWriteLock.h"
#include "vexo/logging_dispatcher.h"

#include <atomic>
#include <map>

using vexo::templates::platform::ReadWriteLock;
using vexo::templates::platform::ReadWriteLockGuard;

namespace vexo::tools::logging {

struct Logging::LoggingPrivate {
    using Loggers = std::map<std::uint64_t, std::unique_ptr<Logger>>;

    Logger* findOrAdd(std::uint64_t handle, std::uint32_t level);
    void setLevel(std::uint64_t handle, std::uint32_t level);
    void deleteLoggers();

    std::unique_ptr<Logger> defaultLogger = std::make_unique<Logger>(0);
    LoggingGetLogger* dispatcherGetLogger = nullptr;
    LoggingLog* dispatcherLog = nullptr;
    std::atomic<const LoggingDispatcherDescriptor*> descriptor{nullptr}; // logging is on while it is set
    Loggers loggers GUARDED_BY(lock);
    std::unique_ptr<SharedLibrary> library;
    ReadWriteLock lock;
};

Logger* Logging::LoggingPrivate::findOrAdd(std::uint64_t handle, std::uint32_t level) {
    const ReadWriteLockGuard guard(&lock, ReadWriteLockGuard::write);
    const auto known = loggers.find(handle);
    if (known != loggers.end()) return known->second.get();
    return loggers.emplace(handle, std::make_unique<Logger>(handle, level)).first->second.get();
}

void Logging::LoggingPrivate::setLevel(std::uint64_t handle, std::uint32_t level) {
    const ReadWriteLockGuard guard(&lock, ReadWriteLockGuard::read);
    const auto known = loggers.find(handle);
    if (known != loggers.end()) known->second->setLevel(level);
}

void Logging::LoggingPrivate::deleteLoggers() {
    Loggers ended; // removed from the map first, so that level callbacks in other threads see no freed logger
    const ReadWriteLockGuard guard(&lock, ReadWriteLockGuard::write);
    ended.swap(loggers);
}

Logging::Logging() : m_private(std::make_unique<LoggingPrivate>()) {}

Logging::~Logging() {
    m_private->deleteLoggers();
    if (const LoggingDispatcherDescriptor* descriptor = m_private->descriptor) {
        descriptor->fini(this);
        m_private->library.reset(); // while a last callback still finds everything in place
    } else if (m_private->library != nullptr) {
        m_private->library->leaveOpen(); // the dispatcher shut down on its own and may still run
    }
}

void Logging::init() {
    m_private->library = openSdkLibrary("common-logging-dispatcher", nullptr);
    if (m_private->library == nullptr) return;
    const auto* descriptor = static_cast<const LoggingDispatcherDescriptor*>(
        m_private->library->symbol(LOGGING_DISPATCHER_SYMBOL));
    if (descriptor == nullptr) {
        m_private->library.reset();
        return;
    }
    m_private->descriptor = descriptor;
    descriptor->init(this, &shutdownCallback, &levelCallback, &m_private->dispatcherGetLogger,
                     &m_private->dispatcherLog);
}

Logger* Logging::getLogger(const char* name) {
    if (m_private->descriptor == nullptr || m_private->dispatcherGetLogger == nullptr)
        return m_private->defaultLogger.get();
    std::uint64_t handle = 0;
    std::uint32_t level = 0;
    m_private->dispatcherGetLogger(name, &handle, &level);
    return m_private->findOrAdd(handle, level);
}

void Logging::dispatch(std::uint64_t handle, std::uint32_t level, const char* text, std::uint32_t a,
                       std::uint64_t b) {
    if (m_private->descriptor == nullptr || m_private->dispatcherLog == nullptr) return;
    m_private->dispatcherLog(handle, level, text, a, b);
}

// The dispatcher may call these while init() still binds it, and from its own threads.

void Logging::shutdownCallback() {
    if (Logging* logging = current()) logging->m_private->descriptor = nullptr;
}

void Logging::levelCallback(std::uint64_t handle, std::uint32_t level) {
    if (Logging* logging = current()) logging->m_private->setLevel(handle, level);
}

} // namespace vexo::tools::logging
