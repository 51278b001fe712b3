/** The context in which a command runs. */
#ifndef APPLETCTL_COMMANDS_CONTEXT_H
#define APPLETCTL_COMMANDS_CONTEXT_H

#include "applet_tools/applet/Condition.h"
#include "applet_tools/base/Interruption.h"
#include "applet_tools/scratch/LiveSession.h"
#include "appletctl/base/Options.h"

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <utility>

namespace appletctl {

struct Command;
struct HelpPage;

/** Functions of higher layers that commands need. */
struct Program {
    std::span<const JobRow> jobs{};
    std::span<const Command* const> commands{};
    HelpPage (*helpOf)(const Command* command) = nullptr; /**< null: of the program */
};

/** The session with the options of the current command. A shell keeps one for all of its commands. */
class Context : public LiveSession {
public:
    explicit Context(const Options& options, Scratch scratch = Scratch::none, const Program& program = {});

    const Program& program() const { return m_program; }
    const Options& options() const { return *m_options; }
    /** Sets the options of the next command. Their board and applet options must equal those of the first command. */
    void setOptions(const Options& options) { m_options = std::make_shared<const Options>(options); }
    /** The present options, which stay where they are as long as somebody shares them: a running command refers to its own. */
    std::shared_ptr<const Options> shareOptions() const { return m_options; }
    void setOptions(std::shared_ptr<const Options> options) { m_options = std::move(options); }

    /** Called by pause(); empty at first. */
    void setPause(std::function<void()> pause) { m_pause = std::move(pause); }
    /** To be called regularly by a command that takes long, between two accesses: on a station it executes
     *  commands of other clients that only read. */
    void pause() const {
        if (m_pause) m_pause();
    }
    /** Waits like Interruption::waitUntil, with pauses. */
    bool waitUntil(const Interruption& interruption, Interruption::Clock::time_point due) const;

private:
    std::shared_ptr<const Options> m_options;
    Program m_program;
    std::function<void()> m_pause;
};

/** Throws UsageError, naming the command, when the options ask for an instance without a board. */
void requireBoard(const Options& options, const char* command);
/** Throws UsageError if the condition asks for a value that is never measured, as offline: it would not be true or
 *  false. */
void requireMeasured(Context& context, const Condition& condition);
/** Throws UsageError, naming the option, unless the options ask for a virtual board. */
void requireVirtualBoard(const Options& options, const std::string& option);

} // namespace appletctl

#endif
