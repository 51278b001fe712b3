/** Counts this process's operations on applets, for -v. */
#ifndef APPLET_TOOLS_APPLET_EFFORT_H
#define APPLET_TOOLS_APPLET_EFFORT_H

#include <cstddef>

namespace applet_tools {

struct Effort {
    std::size_t sets = 0;     /**< calls of setters, by writeValue */
    std::size_t loads = 0;    /**< loads of configuration files */
    std::size_t bringUps = 0; /**< of instances */
};

/** The counters of the process. It has one thread. */
inline Effort& effort() {
    static Effort ofProcess;
    return ofProcess;
}

} // namespace applet_tools

#endif
