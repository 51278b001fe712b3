#include "appletctl/cli/station/CommandServer.h"

#include "applet_tools/base/Stopwatch.h"
#include "applet_tools/base/text.h"
#include "appletctl/cli/execute.h"
#include "appletctl/cli/station/ClientTerminal.h"
#include "appletctl/cli/station/http_options.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/shared_options.h"

#include <algorithm>
#include <chrono>
#include <iostream>

namespace appletctl {
namespace {

std::string clockText(const Options& options, double clock) {
    if (!options.isVirtual()) return "-";
    if (clock == 0) return "stepped";
    return clock == 1 ? "wall" : "wall, " + numberText(clock) + " times";
}

std::string boardText(const Options& options) {
    if (options.offline) return "none";
    return options.board == BoardKind::system ? "system" : "virtual";
}

/** True for a command that may start an acquisition, or replace the board. */
bool mayAcquire(const serve::ClientCommand& command) {
    const Words words = command.kind == serve::ClientCommand::Kind::commandLine
                            ? command.words
                            : splitLine(command.line).words;
    const auto acquires = [&](const Command* row) {
        return row->acquires && std::ranges::find(words, row->name) != words.end();
    };
    return std::ranges::any_of(allCommands(), acquires);
}

} // namespace

CommandServer::CommandServer(Context& context, const serve::StationLocation& location,
                             const std::optional<StationFile>& file, double clock)
    : m_context(context)
    , m_shown(context.options())
    , m_clock(clock)
    , m_session(context)
    , m_socket(location, {{"board", boardText(m_shown)}, {"clock", clockText(m_shown, clock)}})
    , m_live(access(location.name, file)) {
    static_cast<BoardOptions&>(m_options) = m_shown;
    setClock();
    context.setPause([this] { lookMeanwhile(); });
    if (!m_shown.of<HttpOptions>().isOff) openHttp();
    m_channel.emplace(location, m_live);
    m_socket.setReady(m_http ? m_http->address(false) : "", address());
}

void CommandServer::run() {
    while (!m_socket.isStopAsked() && waitForWork()) {
        const std::optional<serve::ClientCommand> command =
            m_socket.begin([](const serve::ClientCommand&) { return true; });
        m_live.commands.runPending(false);
        if (!command) continue;
        const bool acquires = mayAcquire(*command);
        m_live.beginCommand(m_socket.runningCommand(), acquires);
        const bool isInterruptedByClient = execute(*command, [&] { return run(*command); });
        setClock();
        m_live.endCommand(acquires);
        if (m_interruption.isAsked() && !isInterruptedByClient) return;
        m_interruption.rearm();
    }
}

serve::StationAccess CommandServer::access(const std::string& name, const std::optional<StationFile>& file) {
    return {
        .name = name,
        .version = APPLETCTL_VERSION,
        .board = boardText(m_shown),
        .clock = m_clock,
        .maySet = m_shown.of<HttpOptions>().maySet,
        .station = file,
        .wake = [this] { m_socket.wake(); },
        .live = &m_context,
        .change = [this](const std::string& text, const std::function<void()>& work) { change(text, work); }};
}

void CommandServer::openHttp() {
    const auto& own = m_shown.of<HttpOptions>();
    try {
        m_http.emplace(m_live, httpEndpoint(own), httpToken(own));
    } catch (const Unavailable& error) {
        if (own.isAsked()) throw;
        std::cerr << "appletctl: the station has no page: " << error.what() << '\n';
    }
}

/** Waits for something to do, or for the next moment at which time should pass. False when the station should
 *  end. */
bool CommandServer::waitForWork() {
    using Clock = Interruption::Clock;
    constexpr std::chrono::milliseconds period(100); // at most so much time is made up by the next command
    Instance* const clocked = virtualInstance();
    if (clocked == nullptr || m_clock == 0) return m_interruption.waitReadable(m_socket.readable());
    clocked->board().now(clocked->device()); // lets time pass
    if (m_http) m_http->watchSource();
    return m_interruption.waitReadable(m_socket.readable(), Clock::now() + period);
}

/** Work of a client that gives no command line. */
void CommandServer::change(const std::string& text, const std::function<void()>& work) {
    const Stopwatch watch;
    try {
        m_session.change(text, work);
    } catch (...) {
        m_socket.addToLog(text, exitRefused, watch.milliseconds() / 1000);
        throw;
    }
    m_socket.addToLog(text, exitDone, watch.milliseconds() / 1000);
}

/** Also after each command, which may have replaced the board or set up a station file. */
void CommandServer::setClock() {
    if (Instance* const clocked = virtualInstance()) clocked->board().clock(clocked->device(), m_clock);
}

/** The instance, if its board is virtual; else null. */
Instance* CommandServer::virtualInstance() {
    if (!m_context.isUp() || !m_shown.isVirtual()) return nullptr;
    Instance& instance = m_context.instance();
    return instance.device() != nullptr ? &instance : nullptr;
}

/** Runs during a pause of the current command: executes commands that only read and are quick. */
void CommandServer::lookMeanwhile() {
    if (m_isPaused || m_interruption.isAsked() || m_context.isCopy()) return;
    m_isPaused = true;
    m_live.commands.runPending(true);
    Request request;
    const auto isWanted = [&](const serve::ClientCommand& command) { return isQuickLook(command, request); };
    const auto look = [&] { return serve::CommandEnd{m_session.runInPause(request), false}; };
    while (const std::optional<serve::ClientCommand> command = m_socket.begin(isWanted))
        if (execute(*command, look)) m_interruption.rearm();
    m_isPaused = false;
}

/** Parses the command into `request`. */
bool CommandServer::isQuickLook(const serve::ClientCommand& command, Request& request) const {
    if (command.kind != serve::ClientCommand::Kind::commandLine) return false;
    request = parseForStation(command.words, m_options);
    return request.command != nullptr && request.command->kind == Command::Kind::plain &&
           request.command->sets == Command::Sets::nothing && request.command->file == Command::File::none &&
           !request.command->takesLong && !request.options.of<WithOption>().isGiven();
}

bool CommandServer::execute(const serve::ClientCommand& command,
                            const std::function<serve::CommandEnd()>& work) {
    serve::CommandEnd end{exitUnavailable, false};
    try {
        const ClientTerminal terminal(command);
        end = work();
    } catch (const std::exception& error) { // from the terminal; failures of commands are reports
        std::cerr << "appletctl: " << internalError(error) << '\n';
    }
    return m_socket.end(end);
}

serve::CommandEnd CommandServer::run(const serve::ClientCommand& command) {
    if (command.kind == serve::ClientCommand::Kind::commandLine) {
        const Request request = parseForStation(command.words, m_options);
        return {m_session.run(request, m_options, joinWords(command.words)), false};
    }
    const Options options = parseCommandLine(command.words, m_options).options;
    const ExitCode code = m_session.runLine(command.line, options, command.prefix);
    return {code, m_session.isOver()};
}

} // namespace appletctl
