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
 *  process can load only one of the two. A copy of this process starts at once: make it before any library is
 *  loaded, and before there are threads. A program starts with the first request. The child loads the libraries
 *  with the first state, and ends with the object. */
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
    void start();
    void end();
    nlohmann::json request(const nlohmann::json& message);

    BoardOptions m_options;
    std::span<const JobRow> m_jobs;
    ObserveWork m_observe;
    pid_t m_child = -1;
    Descriptor m_socket;
    std::optional<MessageReader> m_reader;
    Words m_notes;
};

/** The descriptor of the socket with which a program for scratch boards starts. */
inline constexpr int scratchSocket = 3;

/** The work of a program for scratch boards. Its arguments are the folder of the libraries, and the file of the
 *  applet's; empty ones: the default. Answers messages until the other side has closed. Returns the exit code. */
int runScratchBoard(const std::string& folder, const std::string& applet, std::span<const JobRow> jobs);

} // namespace applet_tools

#endif
