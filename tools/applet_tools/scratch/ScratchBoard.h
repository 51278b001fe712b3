/** A virtual board in a child process, for trying out changes. */
#ifndef APPLET_TOOLS_SCRATCH_SCRATCHBOARD_H
#define APPLET_TOOLS_SCRATCH_SCRATCHBOARD_H

#include "applet_tools/base/BoardOptions.h"
#include "applet_tools/base/WorkObserver.h"
#include "applet_tools/base/messages.h"
#include "applet_tools/base/words.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <span>
#include <string>

#include <sys/types.h>

namespace applet_tools {

struct JobRow;

/** Uses a process of its own, since the virtual board's libraries have the names of the real ones and a
 *  process can load only one of the two. Make it before any library is loaded. The child loads them with the
 *  first state, and ends with the object. */
class ScratchBoard {
public:
    /** `jobs` are its jobs; each wait for an answer is observed. */
    ScratchBoard(const BoardOptions& options, std::span<const JobRow> jobs, ObserveWork observe);
    ~ScratchBoard();
    ScratchBoard(const ScratchBoard&) = delete;
    ScratchBoard& operator=(const ScratchBoard&) = delete;

    /** Sets the state that each job starts from (see boardStateOf). Returns the assumed parts (see
     *  ScratchSession). */
    nlohmann::json startFrom(const nlohmann::json& state);
    /** Runs a job of the table and returns its result. Rethrows the job's exception as UsageError,
     *  Unavailable, or Failure for everything else. */
    nlohmann::json ask(const std::string& job, const nlohmann::json& arguments);
    /** Takes the notes on jobs and their duration since the last call. */
    Words takeNotes();

private:
    nlohmann::json request(const nlohmann::json& message);

    std::span<const JobRow> m_jobs;
    ObserveWork m_observe;
    pid_t m_child = -1;
    Descriptor m_socket;
    std::optional<MessageReader> m_reader;
    Words m_notes;
};

} // namespace applet_tools

#endif
