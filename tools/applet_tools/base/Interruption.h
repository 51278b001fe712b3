/** Ctrl-C while a command works step by step. */
#ifndef APPLET_TOOLS_BASE_INTERRUPTION_H
#define APPLET_TOOLS_BASE_INTERRUPTION_H

#include <chrono>
#include <csignal>

namespace applet_tools {

/** While one lives, SIGINT and SIGTERM ask for an end, a second one forces it, and a dead pipe is reported by
 * the write. One within another's life asks that other one as well. */
class Interruption {
public:
    using Clock = std::chrono::steady_clock;

    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    bool isAsked() const;
    /** Forgets what was asked: the next signal asks again. */
    void rearm();
    /** Waits until the descriptor can be read. False when it is time to end. */
    bool waitReadable(int descriptor) const;
    /** Waits until `due`. False when it is time to end: a signal came, or the reader of the output has gone.
     * */
    bool waitUntil(Clock::time_point due) const;

private:
    bool waitFor(int descriptor, short events, const Clock::time_point* due) const;

    struct sigaction m_before[3] = {};
};

} // namespace applet_tools

#endif
