/** Reads lines that a user types, with history and completion if a library for that is available. */
#ifndef APPLETCTL_CLI_SHELL_LINE_INPUT_H
#define APPLETCTL_CLI_SHELL_LINE_INPUT_H

#include "appletctl/cli/shell/candidates.h"

#include <functional>
#include <optional>
#include <string>

namespace appletctl {

/** Reads from a terminal; one instance per process. */
class LineInput {
public:
    /** Candidates for the last word of a line; the text up to the cursor is given. */
    using Complete = std::function<std::vector<Candidate>(const std::string& text)>;

    /** Loads the history from a file, and saves it there at the end. */
    LineInput(std::string historyFile, Complete complete);
    ~LineInput();
    LineInput(const LineInput&) = delete;
    LineInput& operator=(const LineInput&) = delete;

    /** The next line; empty at the end of the input, or if a signal arrived instead of a line. */
    std::optional<std::string> read(const std::string& prompt);

private:
    std::string m_historyFile;
};

} // namespace appletctl

#endif
