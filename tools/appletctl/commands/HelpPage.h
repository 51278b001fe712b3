/** The contents of a help page; the help and the manual lay it out. */
#ifndef APPLETCTL_COMMANDS_HELPPAGE_H
#define APPLETCTL_COMMANDS_HELPPAGE_H

#include <string>
#include <vector>

namespace appletctl {

struct HelpEntry {
    std::string name, text;
};

struct HelpPage {
    std::string description;
    std::vector<HelpEntry> examples; /**< command lines, and their purpose */
    std::string usage;               /**< "appletctl set [OPTIONS] NAME=VALUE..." */
    std::vector<HelpEntry> commands; /**< those below the program or the group */
    std::vector<HelpEntry> words;
    std::string details; /**< lines with a fixed layout */
    std::vector<HelpEntry> options, commonOptions;
    std::string effect; /**< of the command on a board of the system, besides the start of the applet */
    bool startsOnSystem = false; /**< that start, with its writes, is among the effects */
};

/** The help and manual texts of all commands. */
extern const char* const accessWords;
extern const char* const boardNotes;

struct ExitCodeMeaning {
    const char* code;
    const char* meaning;
};
extern const ExitCodeMeaning exitCodes[6];

} // namespace appletctl

#endif
