/** The object that code logs through. */
#ifndef SUPPORT_LOGGER_H
#define SUPPORT_LOGGER_H

#include <cstdint>
#include <memory>

namespace vexo::tools::logging {

/** The levels at which the library logs. */
namespace levels {
inline constexpr std::uint32_t refusedCall = 4;   // and ids that the design lacks
inline constexpr std::uint32_t accessFailed = 5;  // of the design, of a file, or the runtime's init
inline constexpr std::uint32_t bindingFailed = 6; // of the runtime's library
} // namespace levels

/** The threshold of a logger without a dispatcher: above every level. */
inline constexpr std::uint32_t closedLevel = 7;

/**
 * A named source of log lines with a threshold. Levels are numbers; higher is more severe.
 *
 * Loggers belong to Logging. All operations may be called from any thread.
 */
class Logger {
public:
    explicit Logger(std::uint64_t handle, std::uint32_t level = closedLevel);
    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;
    virtual ~Logger();

    /** Whether a line of this level passes. Ask before composing one. Locks only if the level passes. */
    bool isEnabled(std::uint32_t level) const;
    /** Passes a line to the dispatcher without checking its level. */
    void log(std::uint32_t level, const char* text, std::uint32_t a, std::uint64_t b) const;
    void setLevel(std::uint32_t level);
    /** Enables or disables the logger for the calling thread. Returns whether it was enabled before. */
    bool setEnabled(bool enabled);

private:
    struct Private;
    std::unique_ptr<Private> m_private;
};

} // namespace vexo::tools::logging

#endif
