/** What is to be said of the program, a group of commands or a command: the help and the manual lay it out. */
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
    std::vector<HelpEntry> examples; /**< command lines, and what they are good for */
    std::string usage;               /**< "appletctl set [OPTIONS] NAME=VALUE..." */
    std::vector<HelpEntry> commands; /**< those below the program or the group */
    std::vector<HelpEntry> words;
    std::string details; /**< lines that are laid out already */
    std::vector<HelpEntry> options, commonOptions;
    std::string
        effect; /**< what the command does to a board of the system, besides the start of the applet */
};

/** What help and manual say of all commands. */
extern const char* const accessWords;
extern const char* const boardNotes;

struct ExitCodeMeaning {
    const char* code;
    const char* meaning;
};
extern const ExitCodeMeaning exitCodes[5];

} // namespace appletctl

#endif
