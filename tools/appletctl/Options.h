/** What the command line says about every command. */
#ifndef APPLETCTL_OPTIONS_H
#define APPLETCTL_OPTIONS_H

#include <string>

namespace appletctl {

struct Options {
    std::string applet; /**< --applet: library to load instead of the one beside the program */
    bool offline = false;
    bool json = false;
};

} // namespace appletctl

#endif
