// What a change would do, tried on a scratch board.

#include "appletctl/assignments.h"
#include "appletctl/jobs.h"
#include "appletctl/writes.h"

namespace appletctl {

json planJob(Trial& trial, const json& arguments) {
    const Report report =
        carryOut(trial.instance(), trial.parameters(), arguments.at("assignments").get<Words>(),
                 [&] { return takeWrites(trial.instance()); });
    return {{"document", report.document},
            {"text", report.text},
            {"problems", report.problems},
            {"exitCode", static_cast<int>(report.exitCode)}};
}

Report planChanges(Context& context, const Words& assignments) {
    const json result = context.scratch().ask("plan", {{"assignments", assignments}});
    Report report;
    report.document = result["document"];
    report.text = result["text"].get<std::string>();
    report.problems = result["problems"].get<Words>();
    report.exitCode = static_cast<ExitCode>(result["exitCode"].get<int>());
    return report;
}

} // namespace appletctl
