/** Command lines, one after the other on one board, with undo. */
#ifndef APPLETCTL_CLI_LINESESSION_H
#define APPLETCTL_CLI_LINESESSION_H

#include "applet_tools/scratch/History.h"
#include "appletctl/cli/command_line.h"
#include "appletctl/cli/shell/candidates.h"

#include <string>
#include <vector>

namespace appletctl {

class LineSession {
public:
    explicit LineSession(Context& context) : m_context(context), m_history(context) {}

    /** Carries a line of a shell out and prints its report; `options` are those of the shell, and `place` precedes its
     *  problems. */
    ExitCode runLine(const std::string& text, const Options& options, const std::string& place);
    /** True when the last line has ended the shell. */
    bool isOver() const { return m_isOver; }

    /** Carries a request out and prints its report. A later "undo" takes back what it has changed, and shows `line`.
     *  Afterwards `options` hold again. */
    ExitCode run(const Request& request, const Options& options, const std::string& line,
                 const std::string& place = "");

    /** The same in a pause of another request, for one that only looks: there is nothing to undo. */
    ExitCode runInPause(const Request& request);

    /** The candidates for the last word of a line, of which the text up to the cursor is given. */
    std::vector<Candidate> complete(const std::string& text);

private:
    Report undo(const Options& options);

    Context& m_context;
    History m_history;
    bool m_isOver = false;
};

} // namespace appletctl

#endif
