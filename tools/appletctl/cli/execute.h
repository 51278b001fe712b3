/** Executes a parsed command line. */
#ifndef APPLETCTL_CLI_EXECUTE_H
#define APPLETCTL_CLI_EXECUTE_H

#include "appletctl/cli/command_line.h"

#include <functional>
#include <string>

namespace appletctl {

/** Runs the command in the context of several commands; failures become reports too. */
Report execute(const Request& request, Context& context);

/** Parses a line of a shell or a scenario, which uses the existing board. The request is wrong usage if it
 * selects another board, or for a command that needs a command line of its own. */
Request parseLine(const Words& words, const Options& options);

/** The same for a line of a shell, which may be a word of the shell itself. */
Request parseShellLine(const Words& words, const Options& options);

/** The same for a whole command line that a client sends to a station. */
Request parseForStation(const Words& words, const Options& options);

/** Asks for consent before values are set on a board of the system; throws UsageError if it is not allowed,
 *  Failure if the user declines. `name` is the command's name. */
void requireAgreement(const Options& options, const std::string& name);

/** The report of the work; failures become reports too. */
Report withFailuresAsReports(const std::function<Report()>& work);

/** The same with notes: how the answer was found, and the time that the command of that name took. */
Report withNotes(Context& context, const std::string& name, const std::function<Report()>& work);

/** Runs the only command of the process; `words` is its command line. The report is already printed if a station
 *  has executed it. */
Report execute(const Request& request, const Words& words);

} // namespace appletctl

#endif
