/** Handles Ctrl-C, and the end of a terminal, while a command runs. */
#ifndef APPLET_TOOLS_BASE_INTERRUPTION_H
#define APPLET_TOOLS_BASE_INTERRUPTION_H

#include <chrono>
#include <csignal>
#include <optional>

namespace applet_tools {

/** During its lifetime, SIGINT, SIGTERM and SIGHUP request an end, a second one forces it, and a closed pipe is
 * reported by the write. A SIGHUP that the process ignores, as below nohup, stays ignored. Nested instances share the request. */
class Interruption {
public:
    using Clock = std::chrono::steady_clock;

    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    bool isAsked() const;
    /** Clears the request: the next signal makes a new one. */
    void rearm();
    /** Waits until the descriptor is readable, or until `due`. False when the command should end. */
    bool waitReadable(int descriptor, std::optional<Clock::time_point> due = {}) const;
    /** Waits until `due`. False when the command should end: a signal arrived, or the output's reader has
     *  closed. */
    bool waitUntil(Clock::time_point due) const;

private:
    bool waitFor(int descriptor, short events, std::optional<Clock::time_point> due) const;

    struct sigaction m_before[4] = {};
};

} // namespace applet_tools

#endif
