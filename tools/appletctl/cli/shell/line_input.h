/** Lines that a person types, with history and completion where there is a library for that. */
#ifndef APPLETCTL_CLI_SHELL_LINE_INPUT_H
#define APPLETCTL_CLI_SHELL_LINE_INPUT_H

#include "appletctl/cli/shell/candidates.h"

#include <functional>
#include <optional>
#include <string>

namespace appletctl {

/** Of a terminal; one in a process. */
class LineInput {
public:
    /** Candidates for the last word of a line, of which the text up to the cursor is given. */
    using Complete = std::function<std::vector<Candidate>(const std::string& text)>;

    /** Takes the history from a file, and writes it there in the end. */
    LineInput(std::string historyFile, Complete complete);
    ~LineInput();
    LineInput(const LineInput&) = delete;
    LineInput& operator=(const LineInput&) = delete;

    /** The next line; nothing at the end of the input, or when a signal came instead of a line. */
    std::optional<std::string> read(const std::string& prompt);

private:
    std::string m_historyFile;
};

} // namespace appletctl

#endif
