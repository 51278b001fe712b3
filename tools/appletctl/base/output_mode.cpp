#include "appletctl/base/output_mode.h"

namespace appletctl {

namespace {

/** Set once by the command line of the process. */
OutputMode& mode() {
    static OutputMode of;
    return of;
}

} // namespace

const OutputMode& outputMode() { return mode(); }

void setOutputMode(const Options& options) {
    mode() = {options.plain, options.colour, options.quiet || options.json, mode().isForFile};
}

void setPlainOutput(bool isPlain) { mode().isPlain = isPlain; }

OutputForFile::OutputForFile() { mode().isForFile = true; }
OutputForFile::~OutputForFile() { mode().isForFile = false; }

} // namespace appletctl
