#include "applet_tools/base/Interruption.h"

#include <poll.h>
#include <unistd.h>

#include <cstddef>
#include <iterator>

namespace applet_tools {
namespace {

volatile std::sig_atomic_t isAskedToEnd = 0;

void askToEnd(int) { isAskedToEnd = 1; }

constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

sigset_t endingSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : signals)
        if (signal != SIGPIPE) sigaddset(&set, signal);
    return set;
}

bool isIgnored(int signal) {
    struct sigaction now {};
    sigaction(signal, nullptr, &now);
    return now.sa_handler == SIG_IGN;
}

/** Stores the previous actions in `before`, unless that is null. */
void watchSignals(struct sigaction* before) {
    struct sigaction asking {};
    asking.sa_handler = askToEnd;
    asking.sa_flags = static_cast<int>(SA_RESETHAND); // no SA_RESTART, so that a blocked write ends too
    struct sigaction ignoring {};
    ignoring.sa_handler = SIG_IGN;
    for (std::size_t i = 0; i < std::size(signals); ++i) {
        const bool isLeft = signals[i] == SIGPIPE || (signals[i] == SIGHUP && isIgnored(SIGHUP));
        sigaction(signals[i], isLeft ? &ignoring : &asking, before != nullptr ? before + i : nullptr);
    }
}

} // namespace

Interruption::Interruption() {
    watchSignals(m_before);
    if (m_before[0].sa_handler != askToEnd) isAskedToEnd = 0;
}

Interruption::~Interruption() {
    for (std::size_t i = 0; const int signal : signals)
        sigaction(signal, &m_before[i++], nullptr);
}

bool Interruption::isAsked() const { return isAskedToEnd != 0; }

void Interruption::rearm() {
    isAskedToEnd = 0;
    watchSignals(nullptr);
}

bool Interruption::waitFor(int descriptor, short events, std::optional<Clock::time_point> due) const {
    const sigset_t ending = endingSignals();
    sigset_t before;
    // Unblocked only during the wait, so that no signal is lost between the check and the wait.
    pthread_sigmask(SIG_BLOCK, &ending, &before);
    bool goesOn = !isAsked();
    while (goesOn) {
        timespec timeout{};
        if (due) {
            const auto left =
                std::chrono::duration_cast<std::chrono::nanoseconds>(*due - Clock::now()).count();
            if (left <= 0) break;
            timeout = {left / 1'000'000'000, left % 1'000'000'000};
        }
        pollfd watched{descriptor, events, 0};
        const int result = ppoll(&watched, 1, due ? &timeout : nullptr, &before);
        if (result > 0 && events != 0) break;
        goesOn = result <= 0 && !isAsked();
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return goesOn;
}

bool Interruption::waitUntil(Clock::time_point due) const {
    return waitFor(STDOUT_FILENO, 0, due); // without requested events poll reports only errors
}

bool Interruption::waitReadable(int descriptor, std::optional<Clock::time_point> due) const {
    return waitFor(descriptor, POLLIN, due);
}

} // namespace applet_tools
