#include "appletctl/base/print.h"

#include "applet_tools/base/text.h"
#include "appletctl/base/layout.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/report_text.h"
#include "appletctl/base/terminal.h"

#include <unistd.h>

#include <cerrno>
#include <iostream>

namespace appletctl {

namespace {

void printProblem(const std::string& text) {
    std::cerr << wrapped(text, isPlainOutput() ? unlimitedWidth : lineWidth(STDERR_FILENO)) << '\n';
}

} // namespace

bool writeOut(const std::string& text) {
    static int firstError = 0; // a stream that has failed is not tried again
    if (std::cout.fail()) {
        errno = firstError;
        return false;
    }
    std::cout << text << std::flush;
    if (std::cout.fail()) firstError = errno;
    return !std::cout.fail();
}

int print(const Report& report, const std::string& command, const Options& options) {
    const bool isSilent = report.isPrinted || (options.quiet && !options.json);
    const bool isWritten =
        isSilent || writeOut(options.json ? documentText(report, command, 2) : laidOut(report));
    const bool isRead = isWritten || errno != EPIPE;
    const std::string name = Style::forStream(STDERR_FILENO).alarm("appletctl:");
    for (const std::string& problem : report.problems)
        printProblem(name + ' ' + toUtf8(problem)); // may quote a word of the user
    for (const std::string& note : report.notes)
        if (options.verbose) printProblem("appletctl: " + note);
    if (!isWritten) {
        if (isRead) std::cerr << name << ' ' << unwrittenOutput << '\n';
        return isRead ? exitRefused : exitUnread;
    }
    return report.exitCode;
}

} // namespace appletctl
