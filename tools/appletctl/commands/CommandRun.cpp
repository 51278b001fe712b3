#include "appletctl/commands/CommandRun.h"

#include "applet_tools/base/text.h"
#include "applet_tools/scratch/probe/refusal.h"
#include "appletctl/commands/assignment_report.h"
#include "appletctl/commands/shared_options.h"

namespace appletctl {

CommandRun::CommandRun(Context& context, const Words& assignments)
    : instance(context.instance())
    , parameters(context.parameters())
    , settings(instance, parameters)
    , report(applyLive(context, assignments)) {}

int CommandRun::set(const char* name, const Value& value) {
    return writeValue(instance, {&parameters.find(name)}, value);
}

void CommandRun::refuse(const std::string& words) {
    report.problems.push_back(words);
    report.exitCode = exitRefused;
}

void CommandRun::fail(const std::string& words) {
    refuse(words);
    report.document["error"] = {{"kind", "failure"}, {"message", join(report.problems, "; ")}};
}

Words behindFirst(const Words& words) { return Words(words.begin() + 1, words.end()); }

const std::string& fileOf(const Words& words) {
    requireFileName(words.front());
    return words.front();
}

} // namespace appletctl
