/** Runs command lines in sequence on one board, with undo. */
#ifndef APPLETCTL_CLI_SHELL_LINESESSION_H
#define APPLETCTL_CLI_SHELL_LINESESSION_H

#include "applet_tools/scratch/History.h"
#include "appletctl/cli/command_line.h"
#include "appletctl/cli/shell/candidates.h"

#include <string>
#include <vector>

namespace appletctl {

class LineSession {
public:
    explicit LineSession(Context& context) : m_context(context), m_history(context) {}

    /** Runs a line of a shell and prints its report; `options` are those of the shell, and `prefix` precedes its
     *  problems. */
    ExitCode runLine(const std::string& text, const Options& options, const std::string& prefix);
    /** True if the last line has ended the shell. */
    bool isOver() const { return m_isOver; }

    /** Runs a request and prints its report. A later "undo" reverts its changes and shows `line`.
     *  Restores `options` afterwards. */
    ExitCode run(const Request& request, const Options& options, const std::string& line,
                 const std::string& prefix = "");

    /** The same during a pause of another request, for one that only reads: there is nothing to undo. */
    ExitCode runInPause(const Request& request);

    /** Does the work as a step that a later "undo" reverts; shows `line` then. Passes exceptions on. */
    template <typename Work> void change(const std::string& line, Work work) {
        m_history.begin(line);
        try {
            work();
        } catch (...) {
            m_history.end();
            throw;
        }
        m_history.end();
    }

    /** The candidates for the last word of a line; the text up to the cursor is given. */
    std::vector<Candidate> complete(const std::string& text);

private:
    /** What a word of the shell itself does. */
    Report executeWord(const Request& request);
    Report undo(const Options& options);

    Context& m_context;
    History m_history;
    bool m_isOver = false;
};

} // namespace appletctl

#endif
