#include "appletctl/cli/shell/LineSession.h"

#include "applet_tools/base/Interruption.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/print.h"
#include "appletctl/base/report_text.h"
#include "appletctl/cli/execute.h"
#include "appletctl/cli/help.h"
#include "appletctl/commands/lines.h"

namespace appletctl {
namespace {

Report reportOf(const Undone& undone) {
    Report report;
    const std::string line = toUtf8(undone.line);
    report.document["undone"] = line;
    report.text = forPerson("Undone: " + printable(line) + "\n");
    auto& rows = report.document["parameters"] = nlohmann::ordered_json::array();
    for (const auto& [target, now, isNextCycle] : undone.settings) {
        rows.push_back(readingAsJson(target, now));
        if (!isNextCycle) report.text += valueLine(target, now.value);
    }
    for (const auto& [name, before, after] : undone.design)
        report.text += name + ": " + before + " -> " + after + '\n';
    if (!undone.otherLimits.empty()) {
        report.document["otherLimits"] = undone.otherLimits;
        if (isPlainOutput())
            for (const std::string& name : undone.otherLimits)
                report.text += "otherLimits\t" + name + '\n';
        report.text += forPerson("Other published limits than before: " + join(undone.otherLimits, ", ") +
                                 "; only a set computes them\n");
    }
    if (undone.notAsBefore.empty()) return report;
    report.problems.push_back("not as before: " + join(undone.notAsBefore, ", "));
    report.exitCode = exitRefused;
    return report;
}

ExitCode show(Report report, const std::string& command, const Options& options, const std::string& prefix) {
    for (std::string& problem : report.problems)
        problem.insert(0, prefix);
    return static_cast<ExitCode>(print(report, command, options));
}

/** The list of the shell's commands, or the help of one of them. */
Report help(const Request& request) {
    if (request.words.empty()) {
        Report report;
        report.text = shellHelp();
        report.document["text"] = report.text;
        return report;
    }
    Words asked = request.words;
    asked.emplace_back("--help");
    return parseShellLine(asked, request.options).outcome;
}

} // namespace

ExitCode LineSession::runLine(const std::string& text, const Options& options, const std::string& prefix) {
    m_isOver = false; // a session of a station has several shells
    const WordLine line = splitLine(text);
    if (line.words.empty()) return exitDone;
    if (line.isOpen) return show(failureReport("usage", unfinishedLine, exitUsage), "", options, prefix);
    return run(parseShellLine(line.words, options), options, text, prefix);
}

Report LineSession::executeWord(const Request& request) {
    const std::string_view word = request.command->name;
    if (word == "help") return help(request);
    if (word == "undo") return undo(request.options);
    m_isOver = true;
    return {};
}

std::vector<Candidate> LineSession::complete(const std::string& text) {
    WordLine line = splitLine(text);
    if (line.words.empty() || line.end != text.size()) line.words.emplace_back();
    const auto parameters = [this]() -> const ParameterList& { return m_context.parameters(); };
    try {
        return candidatesFor(line.words, parameters, shellCommands());
    } catch (const std::exception&) { // without an applet there are no candidates
        return {};
    }
}

ExitCode LineSession::run(const Request& request, const Options& options, const std::string& line,
                          const std::string& prefix) {
    const Interruption interruption;
    setOutputMode(request.options);
    const bool isOfShell = request.command != nullptr && request.command->kind == Command::Kind::ofShell;
    if (request.command != nullptr && !isOfShell) m_history.begin(line);
    Report report = isOfShell ? withNotes(m_context, nameOf(request), [&] { return executeWord(request); })
                              : execute(request, m_context);
    if (interruption.isAsked()) report.exitCode = exitInterrupted;
    const ExitCode code = show(std::move(report), nameOf(request), request.options, prefix);
    m_context.setOptions(options);
    setOutputMode(options);
    m_history.end();
    return code;
}

ExitCode LineSession::runInPause(const Request& request) {
    const std::shared_ptr<const Options> outer = m_context.shareOptions();
    setOutputMode(request.options);
    const ExitCode code = show(execute(request, m_context), nameOf(request), request.options, "");
    m_context.setOptions(outer);
    setOutputMode(*outer);
    return code;
}

Report LineSession::undo(const Options& options) {
    if (m_history.hasSteps()) requireAgreement(options, "undo");
    const std::optional<Undone> undone = m_history.undo();
    return undone ? reportOf(*undone) : failureReport("usage", "there is nothing to undo", exitUsage);
}

} // namespace appletctl
