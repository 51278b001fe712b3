/** Carries out what a command line asks for. */
#ifndef APPLETCTL_CLI_EXECUTE_H
#define APPLETCTL_CLI_EXECUTE_H

#include "appletctl/cli/command_line.h"

#include <functional>
#include <string>

namespace appletctl {

/** The report of the command on the context of a run of several commands; all failures are reports too. */
Report execute(const Request& request, Context& context);

/** What a line of a shell or a scenario asks for, which works on the board that is there already: wrong
 * usage where it names another one, and for commands that have lines of their own. */
Request parseLine(const Words& words, const Options& options);

/** The same for a whole command line that a client wants to be carried out on the board of a station. */
Request parseForStation(const Words& words, const Options& options);

/** Asks before something that sets values on a board of the system; throws UsageError where it must not be done, Failure
 *  where the user does not agree. `name` is that of the command. */
void requireAgreement(const Options& options, const std::string& name);

/** The report of the work; all failures are reports too. */
Report withFailuresAsReports(const std::function<Report()>& work);

/** The report of the only command of a run, whose command line is `words`. It has been printed already when a station
 *  has carried it out. */
Report execute(const Request& request, const Words& words);

} // namespace appletctl

#endif
