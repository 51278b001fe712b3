#include "appletctl/commands/reports.h"

#include "applet_tools/base/text.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/report_text.h"

#include <algorithm>

namespace appletctl {

nlohmann::json asMessage(const Report& report) {
    constexpr auto replace = nlohmann::json::error_handler_t::replace;
    return {{"document", report.document.dump(-1, ' ', false, replace)}, // as text: its members have an order
            {"text", report.text},
            {"problems", report.problems},
            {"notes", report.notes},
            {"exitCode", static_cast<int>(report.exitCode)}};
}

Report reportOf(const nlohmann::json& message) {
    return {.document = nlohmann::ordered_json::parse(message["document"].get<std::string>()),
            .text = message["text"].get<std::string>(),
            .problems = message["problems"].get<Words>(),
            .notes = message["notes"].get<Words>(),
            .exitCode = static_cast<ExitCode>(message["exitCode"].get<int>())};
}

void append(Report& report, const Report& more) {
    if (more.document.is_object()) report.document.update(more.document);
    report.text += more.text;
    report.problems.insert(report.problems.end(), more.problems.begin(), more.problems.end());
    report.notes.insert(report.notes.end(), more.notes.begin(), more.notes.end());
    report.exitCode = std::max(report.exitCode, more.exitCode);
}

Report askReport(ScratchBoard& scratch, const std::string& job, nlohmann::json arguments) {
    arguments["plain"] = isPlainOutput();
    return reportOf(scratch.ask(job, arguments));
}

void layOutAsAsked(const nlohmann::json& arguments) { setPlainOutput(arguments.at("plain").get<bool>()); }

void addAssumed(Report& report, const Context& context, const Words& words, const Words& assignments) {
    Words assumed = context.assumed();
    // An assumed measurement matters only for a question about itself.
    const std::string asked = lowerCase(join(words, " ") + " " + join(assignments, " "));
    for (const std::string& name : context.assumedMeasurements())
        if (asked.find(lowerCase(name)) != std::string::npos) assumed.push_back(name);
    addAssumed(report, assumed);
}

void addAssumed(Report& report, const Words& assumed) {
    if (assumed.empty()) return;
    report.document["assumed"] = assumed;
    report.text += forPerson("(assumed: " + join(assumed, ", ") + ")\n");
}

} // namespace appletctl
