/** Threads of the producer. */
#ifndef PRODUCER_DEVICE_THREAD_H
#define PRODUCER_DEVICE_THREAD_H

#include "base/Error.h"

#include <csignal>
#include <new>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include <pthread.h>

namespace producer {

/** Blocks all signals of the calling thread. */
class SignalBlocker {
public:
    SignalBlocker() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~SignalBlocker() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalBlocker(const SignalBlocker&) = delete;
    SignalBlocker& operator=(const SignalBlocker&) = delete;

private:
    sigset_t m_before{};
};

/** Starts a thread with all signals blocked, so that the client's own threads handle them. Throws RESOURCE_EXHAUSTED. */
template <typename Function> std::thread startThread(Function function) {
    const SignalBlocker blocker;
    try {
        return std::thread(std::move(function));
    } catch (const std::system_error& error) {
        throw Error(GC_ERR_RESOURCE_EXHAUSTED, std::string("no thread can be started: ") + error.what());
    }
}

/** Runs a function. If it runs out of memory, an event or a picture is lost, and the thread continues. */
template <typename Work> void unlessOutOfMemory(Work work) {
    try {
        work();
    } catch (const std::bad_alloc&) {
    }
}

} // namespace producer

#endif
