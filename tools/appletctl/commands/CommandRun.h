/** Shared by commands that take assignments. */
#ifndef APPLETCTL_COMMANDS_COMMANDRUN_H
#define APPLETCTL_COMMANDS_COMMANDRUN_H

#include "applet_tools/applet/ParameterReader.h"
#include "applet_tools/applet/assignments.h"
#include "appletctl/base/Report.h"
#include "appletctl/commands/Context.h"

#include <string>

namespace appletctl {

/** A running command: an instance with the user's assignments applied, and the report so far. */
struct CommandRun {
    CommandRun(Context& context, const Words& assignments);

    bool isRefused() const { return report.exitCode != exitDone; }
    /** Returns the applet's code. */
    int set(const char* name, const Value& value);
    /** Adds the problem; the program exits with 1. */
    void refuse(const std::string& words);
    /** The same for work that is already partly done: the document has the problems too, as its error. */
    void fail(const std::string& words);

    Instance& instance;
    const ParameterList& parameters;
    const ParameterReader settings;
    Report report;
};

Words behindFirst(const Words& words);

/** The file named by the first word. Throws UsageError if the name is empty. */
const std::string& fileOf(const Words& words);

} // namespace appletctl

#endif
