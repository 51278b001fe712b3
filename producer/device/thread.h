/** Threads of the producer. */
#ifndef PRODUCER_DEVICE_THREAD_H
#define PRODUCER_DEVICE_THREAD_H

#include <csignal>
#include <new>
#include <thread>
#include <utility>

#include <pthread.h>

namespace producer {

/** Starts a thread with all signals blocked: they are for the client's own threads. */
template <typename Function> std::thread quietThread(Function function) {
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    std::thread thread(std::move(function));
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return thread;
}

/** Runs a function that needs memory; if there is none, an event or a picture is lost, and the thread
 *  continues. */
template <typename Work> void withMemory(Work work) {
    try {
        work();
    } catch (const std::bad_alloc&) {
    }
}

} // namespace producer

#endif
