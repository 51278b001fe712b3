/** What a load of a configuration file would lose. */
#ifndef APPLETCTL_COMMANDS_FILES_CHECK_H
#define APPLETCTL_COMMANDS_FILES_CHECK_H

#include "appletctl/commands/Context.h"
#include "appletctl/commands/files/loading.h"

#include <string>

namespace appletctl {

struct Check {
    Report report; /**< the findings; its exit code tells whether anything is lost */
    int code;      /**< of the load */
    ConfigurationFile state;
};

/** Loads the file into the scratch board. */
Check askCheck(ScratchBoard& scratch, const std::string& file);

} // namespace appletctl

#endif
