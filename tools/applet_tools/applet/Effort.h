/** Counts a thread's operations on applets, for -v. */
#ifndef APPLET_TOOLS_APPLET_EFFORT_H
#define APPLET_TOOLS_APPLET_EFFORT_H

#include <cstddef>

namespace applet_tools {

struct Effort {
    std::size_t sets = 0;     /**< calls of setters, by writeValue */
    std::size_t loads = 0;    /**< loads of configuration files */
    std::size_t bringUps = 0; /**< of instances */
};

/** The counters of this thread. */
inline Effort& effort() {
    thread_local Effort ofThread;
    return ofThread;
}

} // namespace applet_tools

#endif
