/** What a command gives back, and how text is laid out. */
#ifndef APPLETCTL_BASE_OUTPUT_H
#define APPLETCTL_BASE_OUTPUT_H

#include "appletctl/base/Options.h"
#include "appletctl/base/errors.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace appletctl {

/** How the user wants all output of the process, from now on: --color, --plain. */
void setOutputMode(const Options& options);

/** Emphasis for a terminal; plain text where colour is not wanted. */
class Style {
public:
    /** Colour for the stream behind this file descriptor: as --color says, or else only on a terminal and never
     *  with NO_COLOR. */
    static Style forStream(int fileDescriptor);

    std::string heading(const std::string& text) const { return painted("1", text); }
    std::string faint(const std::string& text) const { return painted("2", text); }
    std::string alarm(const std::string& text) const { return painted("1;31", text); }

private:
    std::string painted(const char* attributes, const std::string& text) const;

    bool m_colour = false;
};

/** True on a terminal that obeys control sequences, where the user does not want plain output. */
bool isCapableTerminal(int fileDescriptor);

/** True when box drawing and braille characters can be shown: on a terminal of a UTF-8 locale. */
bool canDrawUnicode(int fileDescriptor);

/** Lines of cells in columns that are as wide as their widest cell, with headings in between. */
class Table {
public:
    /** Names of the columns, shown above all. */
    void setTitles(std::vector<std::string> titles) { m_lines.push_back({Kind::titles, std::move(titles)}); }
    void addHeading(std::string text) { m_lines.push_back({Kind::heading, {std::move(text)}}); }
    void addRow(std::vector<std::string> cells) { m_lines.push_back({Kind::row, std::move(cells)}); }
    /** With --plain the titles and rows as cells with tabs between them, without headings. */
    std::string render(const Style& style) const;

private:
    enum class Kind { titles, heading, row };
    struct Line {
        Kind kind;
        std::vector<std::string> cells;
    };
    std::vector<Line> m_lines;
};

/** The outcome of a command: text for the standard output, or the document instead of it; problems, one line
 *  each, for the error output. */
struct Report {
    nlohmann::ordered_json document;
    std::string text;
    std::vector<std::string> problems;
    std::vector<std::string> notes{}; /**< how the answer came about; shown with -v */
    ExitCode exitCode = exitDone;
    bool isPrinted = false; /**< the command has printed as it went: only the problems are left */
};

/**
 * The document of the report of `command`, complete, as UTF-8; in one line, or with this indent in several.
 */
std::string documentText(const Report& report, const std::string& command, int indent = -1);

/** Writes to the standard output, at once. False when it does not take the text; errno tells why. */
bool writeOut(const std::string& text);

/** Prints the report of `command` as the options say; returns the exit code of the program. */
int print(const Report& report, const std::string& command, const Options& options);

/** What a person is told of an exception that no command expects. */
std::string internalError(const std::exception& error);

/** The report of a command that failed as a whole; `kind` is "usage", "failure", "unavailable" or "internal". */
Report failureReport(const char* kind, const std::string& words, ExitCode exitCode);

} // namespace appletctl

#endif
