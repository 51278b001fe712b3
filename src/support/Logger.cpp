#include "support/Logger.h"

#include "support/Logging.h"
#include "templates/platform/RecursiveMutex.h"

#include <atomic>
#include <pthread.h>
#include <set>

using vexo::templates::platform::RecursiveMutex;
using vexo::templates::platform::RecursiveMutexGuard;

namespace vexo::tools::logging {

struct Logger::Private {
    const std::uint64_t handle;
    RecursiveMutex mutex;
    std::set<std::uint64_t> mutedThreads GUARDED_BY(mutex);
    std::atomic<std::uint32_t> level;
};

Logger::Logger(std::uint64_t handle, std::uint32_t level) : m_private(new Private{handle, {}, {}, level}) {}

Logger::~Logger() = default;

bool Logger::isEnabled(std::uint32_t level) const {
    if (level < m_private->level.load(std::memory_order_relaxed)) return false;
    const RecursiveMutexGuard guard(&m_private->mutex);
    return !m_private->mutedThreads.contains(pthread_self());
}

void Logger::log(std::uint32_t level, const char* text, std::uint32_t a, std::uint64_t b) const {
    Logging::instance()->dispatch(m_private->handle, level, text, a, b);
}

void Logger::setLevel(std::uint32_t level) { m_private->level.store(level, std::memory_order_relaxed); }

bool Logger::setEnabled(bool enabled) {
    const RecursiveMutexGuard guard(&m_private->mutex);
    if (enabled) return m_private->mutedThreads.erase(pthread_self()) == 0;
    return m_private->mutedThreads.insert(pthread_self()).second;
}

} // namespace vexo::tools::logging
