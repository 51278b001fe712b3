/** The binding to the optional logging dispatcher. */
#ifndef SUPPORT_LOGGING_H
#define SUPPORT_LOGGING_H

#include "support/Logger.h"
#include "templates/patterns/LibraryGuard.h"

#include <cstdint>
#include <memory>

namespace vexo::tools::logging {

/**
 * Binds the dispatcher, creates loggers and forwards their lines. Without a dispatcher logging is off.
 *
 * The map of loggers has its own lock, which is not held while the dispatcher is called.
 */
class Logging final : public GuardedSingleton<Logging> {
public:
    /** Releases the dispatcher and destroys all loggers. */
    ~Logging() override;
    /** Looks for the dispatcher in the SDK directory and binds it. */
    void init() override;

    /** The logger of that name; it belongs to this object. Without a dispatcher all names share one. */
    Logger* getLogger(const char* name);
    /** Forwards a line if a dispatcher is bound. */
    void dispatch(std::uint64_t handle, std::uint32_t level, const char* text, std::uint32_t a,
                  std::uint64_t b);

private:
    friend GuardedSingleton<Logging>;
    struct LoggingPrivate;

    Logging();
    static void shutdownCallback();
    static void levelCallback(std::uint64_t handle, std::uint32_t level);

    std::unique_ptr<LoggingPrivate> m_private;
};

} // namespace vexo::tools::logging

#endif
