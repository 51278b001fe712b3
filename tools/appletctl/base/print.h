/** Writes to the standard output and the error output. */
#ifndef APPLETCTL_BASE_PRINT_H
#define APPLETCTL_BASE_PRINT_H

#include "appletctl/base/Options.h"
#include "appletctl/base/Report.h"

#include <string>

namespace appletctl {

/** Writes to the standard output without delay. False, with errno, if the write fails. */
bool writeOut(const std::string& text);
/** The message for that, unless the reader has closed a pipe. */
inline constexpr const char* unwrittenOutput = "the output could not be written";

/** Prints the report of `command` according to the options; returns the exit code of the program. */
int print(const Report& report, const std::string& command, const Options& options);

} // namespace appletctl

#endif
