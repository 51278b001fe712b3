/** The user's choices for all output of the process. */
#ifndef APPLETCTL_BASE_OUTPUT_MODE_H
#define APPLETCTL_BASE_OUTPUT_MODE_H

#include "appletctl/base/Options.h"

#include <string>

namespace appletctl {

struct OutputMode {
    bool isPlain = false;        /**< --plain: records, one per line, with tabs between their cells */
    std::string colour = "auto"; /**< --color: auto, always or never */
    bool isSilent = false;       /**< -q or --json: no progress line */
    bool isForFile = false;      /**< in the scope of OutputForFile */
};

const OutputMode& outputMode();

/** Sets the choices of the command line: --color, --plain, -q, --json. */
void setOutputMode(const Options& options);

/** Sets whether the output is plain; other settings are kept. */
void setPlainOutput(bool isPlain);

inline bool isPlainOutput() { return outputMode().isPlain; }

/** In its scope texts are laid out for a file: no colour, no width, only ASCII drawings. */
class OutputForFile {
public:
    OutputForFile();
    ~OutputForFile();
    OutputForFile(const OutputForFile&) = delete;
    OutputForFile& operator=(const OutputForFile&) = delete;
};

} // namespace appletctl

#endif
