/** The result of a command. */
#ifndef APPLETCTL_BASE_REPORT_H
#define APPLETCTL_BASE_REPORT_H

#include "appletctl/base/applet_tools.h"

#include <nlohmann/json.hpp>

#include <exception>
#include <string>
#include <vector>

namespace appletctl {

enum ExitCode {
    exitDone = 0,
    exitRefused = 1,
    exitDifferent = 1, /**< result of "diff" */
    exitUsage = 2,
    exitUnavailable = 3, /**< applet, runtime, loader or board not available */
    exitInterrupted = 130,
    exitUnread = 141 // as a shell shows for a program that SIGPIPE has ended
};

/** The result of a command: text for the standard output, or a document instead of it; problems, one line
 *  each, for the error output. */
// The move of a JSON document checks itself. NOLINTNEXTLINE(bugprone-exception-escape)
struct Report {
    nlohmann::ordered_json document;
    std::string text;
    std::vector<std::string> problems;
    std::vector<std::string> notes{}; /**< how the answer was found; shown with -v */
    ExitCode exitCode = exitDone;
    bool isPrinted = false;  /**< the command has printed its text already: only the problems are left */
    bool isVerbatim = false; /**< the text is a document in itself: its lines are not folded */
};

/** The report of a command that failed as a whole; `kind` is "usage", "failure", "unavailable" or "internal". */
Report failureReport(const char* kind, const std::string& words, ExitCode exitCode);

/** The message for an unexpected exception. */
std::string internalError(const std::exception& error);

} // namespace appletctl

#endif
