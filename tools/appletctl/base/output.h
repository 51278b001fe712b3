/** What a command gives back, and how text is laid out. */
#ifndef APPLETCTL_BASE_OUTPUT_H
#define APPLETCTL_BASE_OUTPUT_H

#include "applet_tools/base/errors.h"
#include "applet_tools/base/words.h"
#include "appletctl/base/Options.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/applet_tools.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace appletctl {

enum ExitCode {
    exitDone = 0,
    exitRefused = 1,
    exitDifferent = 1, /**< of "diff" */
    exitUsage = 2,
    exitUnavailable = 3, /**< applet, runtime, loader or board are not to be had */
    exitInterrupted = 130
};

/** How the user wants all output of the process, from now on: --color, --plain, -q, --json. */
void setOutputMode(const Options& options);

/** Whether the output of the process is plain, from now on; all else stays. */
void setPlainOutput(bool isPlain);

/** True with --plain: the output is records, one a line, with tabs between their cells. */
bool isPlainOutput();

/** Columns of a line of the standard output; no limit with --plain, and while a document is written for a file. */
std::size_t outputWidth();

/** While one lives, texts are laid out for a file: no colour, no width, only ASCII drawings. */
class OutputForFile {
public:
    OutputForFile();
    ~OutputForFile();
    OutputForFile(const OutputForFile&) = delete;
    OutputForFile& operator=(const OutputForFile&) = delete;
};

/** A line of the output: the cells with --plain, else the text. */
std::string lineOf(const std::vector<std::string>& cells, const std::string& text);

/** Says that a file was written. */
std::string writtenLine(const std::string& file);

/** A remark or a drawing, which --plain leaves out. */
std::string forPerson(std::string text);

/** True when a person watches: both outputs are terminals, and neither --json, --plain nor -q is given. */
bool isProgressWanted();

/** Emphasis for a terminal; plain text where colour is not wanted. */
class Style {
public:
    /** Colour for the stream behind this file descriptor: as --color says, or else only on a terminal and never
     *  with NO_COLOR. */
    static Style forStream(int fileDescriptor);

    std::string heading(const std::string& text) const { return painted("1", text); }
    std::string faint(const std::string& text) const { return painted("2", text); }
    std::string alarm(const std::string& text) const { return painted("1;31", text); }
    bool hasColour() const { return m_colour; }

private:
    std::string painted(const char* attributes, const std::string& text) const;

    bool m_colour = false;
};

/** True on a terminal that obeys control sequences, where the user does not want plain output. */
bool isCapableTerminal(int fileDescriptor);

/** True when box drawing and braille characters can be shown: on a terminal of a UTF-8 locale. */
bool canDrawUnicode(int fileDescriptor);

/** How many colours a picture on this stream can have. */
enum class ColourDepth { none, of256, of24Bits };
/** None where Style shows no colour, outside of a UTF-8 locale, or on a terminal that knows fewer than 256 (by TERM and
 *  COLORTERM). */
ColourDepth colourDepth(int fileDescriptor);

/** The outcome of a command: text for the standard output, or the document instead of it; problems, one line
 *  each, for the error output. */
// The move of a JSON document checks itself. NOLINTNEXTLINE(bugprone-exception-escape)
struct Report {
    nlohmann::ordered_json document;
    std::string text;
    std::vector<std::string> problems;
    std::vector<std::string> notes{}; /**< how the answer came about; shown with -v */
    ExitCode exitCode = exitDone;
    bool isPrinted = false;  /**< the command has printed as it went: only the problems are left */
    bool isVerbatim = false; /**< the text is a document of its own: its lines are not folded */
};

/**
 * The document of the report of `command`, complete, as UTF-8; in one line, or with this indent in several.
 */
std::string documentText(const Report& report, const std::string& command, int indent = -1);

/** The report's text as it is printed: records with --plain, else within the terminal. */
std::string laidOut(const Report& report);

/** Writes to the standard output, at once. False when it does not take the text; errno tells why. */
bool writeOut(const std::string& text);

/** Prints the report of `command` as the options say; returns the exit code of the program. */
int print(const Report& report, const std::string& command, const Options& options);

/** The message for an exception that no command expects. */
std::string internalError(const std::exception& error);

/** The report of a command that failed as a whole; `kind` is "usage", "failure", "unavailable" or "internal". */
Report failureReport(const char* kind, const std::string& words, ExitCode exitCode);

} // namespace appletctl

#endif
