/** A virtual board in a child process, on which anything may be tried. */
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

/** A process of its own, since the virtual board's libraries bear the names of the real ones: one process holds
 *  only the one or the other. To be made before any library is loaded. The child loads them with the first state,
 *  and ends with the object. */
class ScratchBoard {
public:
    /** The jobs are all that it can be asked for; each question that is waited for is observed. */
    ScratchBoard(const BoardOptions& options, std::span<const JobRow> jobs, ObserveWork observe);
    ~ScratchBoard();
    ScratchBoard(const ScratchBoard&) = delete;
    ScratchBoard& operator=(const ScratchBoard&) = delete;

    /** The state that each job starts from (see boardStateOf). Gives what of it is assumed (see ScratchSession). */
    nlohmann::json startFrom(const nlohmann::json& state);
    /** Lets a job of the table find something out; gives its result. What it throws is thrown
     *  here: UsageError, Unavailable, or Failure for everything else. */
    nlohmann::json ask(const std::string& job, const nlohmann::json& arguments);
    /** What was asked and what it took, in words, since they were last taken. */
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
