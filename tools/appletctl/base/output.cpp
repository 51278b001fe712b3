#include "appletctl/base/output.h"

#include "applet_tools/base/text.h"
#include "appletctl/base/layout.h"

#include <langinfo.h>
#include <locale.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <new>
#include <string_view>

namespace appletctl {

namespace {

struct Mode {
    bool isPlain = false;
    std::string colour = "auto";
    bool isSilent = false;  // no progress line
    bool isForFile = false; // the text being laid out is not for the standard output
};

/** Settings of the process, set once by its command line. */
Mode& mode() {
    static Mode of;
    return of;
}

bool isUtf8Locale() {
    const locale_t user = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (user == nullptr) return false;
    const bool isUtf8 = std::string_view(nl_langinfo_l(CODESET, user)) == "UTF-8";
    freelocale(user);
    return isUtf8;
}

} // namespace

void setOutputMode(const Options& options) {
    mode() = {options.plain, options.colour, options.quiet || options.json, mode().isForFile};
}

void setPlainOutput(bool isPlain) { mode().isPlain = isPlain; }

bool isPlainOutput() { return mode().isPlain; }

std::size_t outputWidth() {
    return mode().isPlain || mode().isForFile ? unlimitedWidth : lineWidth(STDOUT_FILENO);
}

OutputForFile::OutputForFile() { mode().isForFile = true; }
OutputForFile::~OutputForFile() { mode().isForFile = false; }

std::string lineOf(const std::vector<std::string>& cells, const std::string& text) {
    return (mode().isPlain ? join(cells, "\t") : text) + '\n';
}

std::string writtenLine(const std::string& file) {
    return lineOf({"written", printable(file)}, shownFile(file) + " written");
}

std::string forPerson(std::string text) { return mode().isPlain ? std::string() : std::move(text); }

bool isCapableTerminal(int fileDescriptor) {
    if (mode().isPlain || mode().isForFile) return false;
    const char* terminal = std::getenv("TERM");
    const bool dumb = terminal == nullptr || std::string_view(terminal) == "dumb";
    return isatty(fileDescriptor) == 1 && !dumb;
}

bool isProgressWanted() {
    return !mode().isSilent && isCapableTerminal(STDOUT_FILENO) && isCapableTerminal(STDERR_FILENO);
}

Style Style::forStream(int fileDescriptor) {
    Style style;
    const char* const refused = std::getenv("NO_COLOR"); // set and not empty
    style.m_colour = mode().colour == "auto"
                         ? isCapableTerminal(fileDescriptor) && (refused == nullptr || *refused == '\0')
                         : mode().colour == "always" && !mode().isPlain && !mode().isForFile;
    return style;
}

bool canDrawUnicode(int fileDescriptor) { return isCapableTerminal(fileDescriptor) && isUtf8Locale(); }

ColourDepth colourDepth(int fileDescriptor) {
    if (!Style::forStream(fileDescriptor).hasColour() || !isUtf8Locale()) return ColourDepth::none;
    const auto variable = [](const char* name) {
        const char* const text = std::getenv(name);
        return std::string_view(text != nullptr ? text : "");
    };
    const std::string_view depth = variable("COLORTERM"), terminal = variable("TERM");
    if (depth == "truecolor" || depth == "24bit" || terminal.ends_with("-direct"))
        return ColourDepth::of24Bits;
    return terminal.find("256color") != std::string_view::npos ? ColourDepth::of256 : ColourDepth::none;
}

std::string Style::painted(const char* attributes, const std::string& text) const {
    if (!m_colour) return text;
    return std::string("\033[") + attributes + "m" + text + "\033[0m";
}

std::string documentText(const Report& report, const std::string& command, int indent) {
    nlohmann::ordered_json document = {{"schema", "appletctl/2"}, {"command", command}};
    document["done"] = report.exitCode == exitDone;
    if (report.document.is_object()) document.update(report.document); // null where a command adds nothing
    return document.dump(indent, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
}

namespace {

std::string withoutEmptyLines(const std::string& text) {
    std::string lines;
    for (const char c : text)
        if (c != '\n' || (!lines.empty() && lines.back() != '\n')) lines += c;
    return lines;
}

void printProblem(const std::string& text) {
    std::cerr << wrapped(text, mode().isPlain ? unlimitedWidth : lineWidth(STDERR_FILENO)) << '\n';
}

} // namespace

std::string laidOut(const Report& report) {
    if (report.isVerbatim) return report.text;
    return mode().isPlain ? withoutEmptyLines(report.text) : wrapped(report.text, outputWidth());
}

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
        printProblem(name + ' ' + toUtf8(problem.c_str())); // may quote a word of the user
    for (const std::string& note : report.notes)
        if (options.verbose) printProblem("appletctl: " + note);
    if (!isWritten) {
        if (isRead) std::cerr << name << ' ' << unwrittenOutput << '\n';
        return isRead ? exitRefused : exitUnread;
    }
    return report.exitCode;
}

std::string internalError(const std::exception& error) {
    if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) return "there is not enough memory";
    return std::string("internal error, please report it with the command line: ") + error.what();
}

Report failureReport(const char* kind, const std::string& words, ExitCode exitCode) {
    return {.document = {{"error", {{"kind", kind}, {"message", words}}}},
            .text = "",
            .problems = {words},
            .exitCode = exitCode};
}

} // namespace appletctl
