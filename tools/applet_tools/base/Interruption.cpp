#include "applet_tools/base/Interruption.h"

#include <poll.h>
#include <unistd.h>

#include <cstddef>

namespace applet_tools {
namespace {

volatile std::sig_atomic_t isAskedToEnd = 0;

void askToEnd(int) { isAskedToEnd = 1; }

constexpr int signals[] = {SIGINT, SIGTERM, SIGPIPE};

sigset_t endingSignals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

} // namespace

Interruption::Interruption() {
    struct sigaction asking {};
    asking.sa_handler = askToEnd;
    asking.sa_flags = static_cast<int>(SA_RESETHAND); // no SA_RESTART: a write that hangs ends too
    struct sigaction ignoring {};
    ignoring.sa_handler = SIG_IGN;
    for (std::size_t i = 0; const int signal : signals)
        sigaction(signal, signal == SIGPIPE ? &ignoring : &asking, &m_before[i++]);
    if (m_before[0].sa_handler != askToEnd) isAskedToEnd = 0;
}

Interruption::~Interruption() {
    for (std::size_t i = 0; const int signal : signals)
        sigaction(signal, &m_before[i++], nullptr);
}

bool Interruption::isAsked() const { return isAskedToEnd != 0; }

bool Interruption::waitUntil(Clock::time_point due) const {
    const sigset_t ending = endingSignals();
    sigset_t before;
    // Let through during the wait only, so that none gets lost between the look and the wait.
    pthread_sigmask(SIG_BLOCK, &ending, &before);
    bool goesOn = !isAsked();
    while (goesOn) {
        const auto left = std::chrono::duration_cast<std::chrono::nanoseconds>(due - Clock::now()).count();
        if (left <= 0) break;
        const timespec timeout{left / 1'000'000'000, left % 1'000'000'000};
        pollfd output{STDOUT_FILENO, 0, 0}; // reports nothing but errors
        const int result = ppoll(&output, 1, &timeout, &before);
        goesOn = result <= 0 && !isAsked();
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return goesOn;
}

} // namespace applet_tools
