/** Threads that no signal interrupts. */
#ifndef APPLET_TOOLS_BASE_BLOCK_SIGNALS_H
#define APPLET_TOOLS_BASE_BLOCK_SIGNALS_H

#include <csignal>

#include <pthread.h>

namespace applet_tools {

/** Blocks all signals in the calling thread until it ends: they are for the program's main thread. */
inline void blockSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

} // namespace applet_tools

#endif
