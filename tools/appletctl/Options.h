/** What the command line says besides the words of a command. */
#ifndef APPLETCTL_OPTIONS_H
#define APPLETCTL_OPTIONS_H

#include <optional>
#include <string>

namespace appletctl {

struct Options {
    std::string applet; /**< --applet: library to load instead of the one beside the program */
    bool offline = false;
    bool json = false;
    std::optional<std::string> xmlFile; /**< --out of "xml" */
    std::string lutColour = "all";      /**< --color of "lut show": red, green, blue or all */
    int watchInterval = 1000;           /**< --interval of "watch": milliseconds from round to round */
    int watchCount = 0;                 /**< --count of "watch": rounds; 0: no end */
};

} // namespace appletctl

#endif
