/** The report of a command, and the layout of text. */
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
    exitDifferent = 1, /**< result of "diff" */
    exitUsage = 2,
    exitUnavailable = 3, /**< applet, runtime, loader or board not available */
    exitInterrupted = 130,
    exitUnread = 141 // as a shell shows for a program that SIGPIPE has ended
};

/** Sets the user's choices for all output of the process: --color, --plain, -q, --json. */
void setOutputMode(const Options& options);

/** Sets whether the output of the process is plain; other settings are kept. */
void setPlainOutput(bool isPlain);

/** True with --plain: the output consists of records, one per line, with tabs between their cells. */
bool isPlainOutput();

/** Columns of a line of the standard output; no limit with --plain or in the scope of a file's layout. */
std::size_t outputWidth();

/** In its scope texts are laid out for a file: no colour, no width, only ASCII drawings. */
class OutputForFile {
public:
    OutputForFile();
    ~OutputForFile();
    OutputForFile(const OutputForFile&) = delete;
    OutputForFile& operator=(const OutputForFile&) = delete;
};

/** A line of the output: the cells if --plain, else the text. */
std::string lineOf(const std::vector<std::string>& cells, const std::string& text);

/** Reports a written file. */
std::string writtenLine(const std::string& file);

/** A remark or a drawing; omitted with --plain. */
std::string forPerson(std::string text);

/** True for interactive use: both outputs are terminals, and neither --json, --plain nor -q is given. */
bool isProgressWanted();

/** Emphasis for a terminal; plain text if colour is off. */
class Style {
public:
    /** Colour for the stream with this file descriptor: as --color says, or else only on a terminal and never
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

/** True on a terminal that supports control sequences, unless the user wants plain output. */
bool isCapableTerminal(int fileDescriptor);

/** True when box drawing and braille characters can be shown: on a terminal of a UTF-8 locale. */
bool canDrawUnicode(int fileDescriptor);

/** Number of colours for a picture on this stream. */
enum class ColourDepth { none, of256, of24Bits };
/** None if Style has no colour, outside a UTF-8 locale, or on a terminal with fewer than 256 colours (by TERM
 *  and COLORTERM). */
ColourDepth colourDepth(int fileDescriptor);

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

/**
 * The complete document of the report of `command`, in UTF-8; on one line, or indented by this much.
 */
std::string documentText(const Report& report, const std::string& command, int indent = -1);

/** The printed text of the report: records with --plain, else folded to the terminal's width. */
std::string laidOut(const Report& report);

/** Writes to the standard output without delay. False, with errno, if the write fails. */
bool writeOut(const std::string& text);
/** The message for that, unless the reader has closed a pipe. */
inline constexpr const char* unwrittenOutput = "the output could not be written";

/** Prints the report of `command` according to the options; returns the exit code of the program. */
int print(const Report& report, const std::string& command, const Options& options);

/** The message for an unexpected exception. */
std::string internalError(const std::exception& error);

/** The report of a command that failed as a whole; `kind` is "usage", "failure", "unavailable" or "internal". */
Report failureReport(const char* kind, const std::string& words, ExitCode exitCode);

} // namespace appletctl

#endif
