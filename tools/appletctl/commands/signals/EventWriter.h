/** Writes the events of the station while pictures are taken. */
#ifndef APPLETCTL_COMMANDS_SIGNALS_EVENTWRITER_H
#define APPLETCTL_COMMANDS_SIGNALS_EVENTWRITER_H

#include "applet_tools/base/files.h"
#include "applet_tools/station/EventLog.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/signals/DirectOutput.h"

#include <cstdint>
#include <optional>
#include <string>

namespace appletctl {

/** One event per line, as EventLog gives them. */
class EventWriter {
public:
    /** Begins now. `file` "-" is the standard output. Throws Failure. */
    EventWriter(Instance& instance, const std::string& file, DirectOutput& output);

    /** Writes the events since the last call; `picture` is the number of the picture being waited for. False if the
     *  write to the standard output fails. Throws Failure if that to a file fails. */
    bool write(std::int64_t picture);

    /** Moves the file into place and reports it; lost events are a failure of the command. Throws Failure. */
    void finish(CommandRun& run);

private:
    const std::string m_fileName;
    DirectOutput& m_output;
    EventLog m_events;
    std::optional<OutputFile> m_file; // none for the standard output
};

} // namespace appletctl

#endif
