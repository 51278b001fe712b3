#include "appletctl/cli/shell/LineSession.h"

#include "applet_tools/base/Interruption.h"
#include "applet_tools/base/text.h"
#include "appletctl/cli/execute.h"
#include "appletctl/cli/help.h"
#include "appletctl/commands/lines.h"

namespace appletctl {
namespace {

Report reportOf(const Undone& undone) {
    Report report;
    const std::string line = toUtf8(undone.line.c_str());
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

Report helpReport(const std::string& text) {
    Report report;
    report.text = text;
    report.document["text"] = report.text;
    return report;
}

} // namespace

ExitCode LineSession::runLine(const std::string& text, const Options& options, const std::string& prefix) {
    const WordLine line = splitLine(text);
    if (line.words.empty()) return exitDone;
    const std::string& first = line.words.front();
    m_isOver = line.words.size() == 1 && (first == "exit" || first == "quit");
    if (m_isOver) return exitDone;
    if (line.isOpen)
        return show(failureReport("usage", "a quote is not closed", exitUsage), "", options, prefix);
    if (line.words.size() > 1 && first != "help" && !shellWordHelp(first).empty())
        return show(failureReport("usage", "'" + first + "' takes no words", exitUsage), first, options,
                    prefix);
    if (first == "undo")
        return show(withFailuresAsReports([&] { return undo(options); }), "undo", options, prefix);
    if (first != "help") return run(parseLine(line.words, options), options, text, prefix);
    if (line.words.size() == 1) return show(helpReport(shellHelp()), "help", options, prefix);
    Words words(line.words.begin() + 1, line.words.end());
    const std::string own = words.size() == 1 ? shellWordHelp(words.front()) : "";
    if (!own.empty()) return show(helpReport(own), "help", options, prefix);
    words.emplace_back("--help");
    return run(parseLine(words, options), options, "", prefix);
}

std::vector<Candidate> LineSession::complete(const std::string& text) {
    WordLine line = splitLine(text);
    if (line.words.empty() || line.end != text.size()) line.words.emplace_back();
    const auto parameters = [this]() -> const ParameterList& { return m_context.parameters(); };
    try {
        std::vector<Candidate> candidates = candidatesFor(line.words, parameters);
        if (line.words.size() == 1)
            for (const std::string& own : shellWords())
                if (own.starts_with(line.words.front())) candidates.push_back({own});
        return candidates;
    } catch (const std::exception&) { // without an applet there are no candidates
        return {};
    }
}

ExitCode LineSession::run(const Request& request, const Options& options, const std::string& line,
                          const std::string& prefix) {
    const Interruption interruption;
    setOutputMode(request.options);
    if (request.command != nullptr) m_history.begin(line);
    Report report = execute(request, m_context);
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
