#include "appletctl/commands/Context.h"

#include "applet_tools/base/errors.h"
#include "appletctl/base/Progress.h"

namespace appletctl {

Context::Context(const Options& options, Scratch scratch, const Program& program)
    : LiveSession(options, scratch, program.jobs, [] { return std::make_unique<Progress>("working"); })
    , m_options(std::make_shared<const Options>(options))
    , m_program(program) {}

bool Context::waitUntil(const Interruption& interruption, Interruption::Clock::time_point due) const {
    using namespace std::chrono_literals;
    while (m_pause) {
        const auto next = Interruption::Clock::now() + 50ms;
        if (next >= due) break;
        if (!interruption.waitUntil(next)) return false;
        m_pause();
    }
    return interruption.waitUntil(due);
}

void requireMeasured(Context& context, const Condition& condition) {
    if (!context.options().offline) return;
    for (const Target& target : condition.targets())
        if (!context.read(target).isMeasured)
            throw UsageError("the condition asks for " + target.name() +
                             ", which is not measured: offline there is no board");
}

void requireBoard(const Options& options, const char* command) {
    if (options.offline)
        throw UsageError("'" + std::string(command) +
                         "' needs a board, and --offline has none: leave --offline out");
}

void requireVirtualBoard(const Options& options, const std::string& option) {
    if (options.isVirtual()) return;
    throw UsageError(option + " needs the virtual board: leave " +
                     (options.offline ? "--offline" : "--board system") + " out");
}

} // namespace appletctl
