// Runs a scenario step by step.

#include "applet_tools/base/Interruption.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/layout.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/print.h"
#include "appletctl/base/report_text.h"
#include "appletctl/base/terminal.h"
#include "appletctl/cli/scenario/Scenario.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/shared_options.h"
#include "appletctl/draw/junit.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <filesystem>

namespace appletctl {
namespace {

using Outcome = TestCase::Outcome;

/** Runs the step and measures its time. */
TestCase doStep(ScenarioRunner& runner, const Step& step) {
    const auto start = std::chrono::steady_clock::now();
    const std::string wrong = runStep(runner, step);
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    return {.group = step.section,
            .name = "line " + numberText(step.line) + ": " + step.text,
            .outcome = wrong.empty() ? Outcome::passed : Outcome::failed,
            .message = wrong,
            .seconds = passed.count()};
}

std::string stepLine(const Step& step, const TestCase& test) {
    const Style style = Style::forStream(STDOUT_FILENO);
    const std::string outcome = test.outcome == Outcome::passed ? "ok    " : style.alarm("FAILED");
    const std::string number = numberText(step.line);
    if (isPlainOutput())
        return lineOf({test.outcome == Outcome::passed ? "ok" : "failed", number, printable(step.text)}, "");
    return wrapped(outcome + std::string(number.size() < 5 ? 5 - number.size() : 1, ' ') + number + "  " +
                       printable(step.text) + '\n',
                   outputWidth());
}

nlohmann::ordered_json stepAsJson(const Step& step, const TestCase& test) {
    nlohmann::ordered_json row = {
        {"line", step.line}, {"section", step.section}, {"step", step.text}, {"outcome", "skipped"}};
    if (test.outcome == Outcome::skipped) return row;
    row["outcome"] = test.outcome == Outcome::passed ? "passed" : "failed";
    row["seconds"] = test.seconds;
    if (test.outcome == Outcome::failed) row["message"] = test.message;
    return row;
}

void addSummary(Report& report, const std::string& file, const std::vector<Step>& steps,
                const std::vector<TestCase>& tests) {
    const auto count = [&](Outcome outcome) {
        return std::ranges::count(tests, outcome, &TestCase::outcome);
    };
    const auto failed = count(Outcome::failed), skipped = count(Outcome::skipped);
    report.document = {
        {"scenario", file}, {"passed", count(Outcome::passed)}, {"failed", failed}, {"skipped", skipped}};
    auto& rows = report.document["steps"] = nlohmann::ordered_json::array();
    for (std::size_t i = 0; i < steps.size(); ++i)
        rows.push_back(stepAsJson(steps[i], tests[i]));
    report.text = forPerson(numberText(tests.size()) + (tests.size() == 1 ? " step: " : " steps: ") +
                            numberText(count(Outcome::passed)) + " ok, " + numberText(failed) + " failed" +
                            (skipped > 0 ? ", " + numberText(skipped) + " not done" : "") + '\n');
}

struct RunOptions {
    std::string junitFile; /**< --junit; empty: none */
    bool failFast = false; /**< --fail-fast */
};

void addRunOptions(CLI::App& command, Options& options) {
    auto& own = options.own<RunOptions>();
    command.add_option("--junit", own.junitFile, "File to write a JUnit report to")
        ->type_name("FILE")
        ->check(troubleOfFileName);
    command.add_flag("--fail-fast", own.failFast, "End with the first step that fails");
}

Report runScenario(Context& context, const Words& words) {
    Options options = context.options();     // steps have options of their own
    options.own<YesOption>().isGiven = true; // consent to the run covers its steps
    const RunOptions own = options.of<RunOptions>();
    const std::string file = toUtf8(fileOf(words).c_str());
    const std::vector<Step> steps = readScenario(fileOf(words), options);
    if (!own.junitFile.empty()) requireWritable(own.junitFile);
    const Interruption interruption;
    ScenarioRunner runner(context);
    checkSteps(runner, fileOf(words), steps);
    std::vector<TestCase> tests(steps.size());
    Report report;
    const bool isPrinted = !options.json && !options.quiet;
    bool goesOn = true;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        context.pause();
        if (!goesOn || interruption.isAsked()) {
            tests[i].group = steps[i].section;
            tests[i].name = "line " + numberText(steps[i].line) + ": " + steps[i].text;
            continue;
        }
        tests[i] = doStep(runner, steps[i]);
        report.notes.push_back("line " + numberText(steps[i].line) + ": " +
                               numberText(std::round(tests[i].seconds * 1e4) / 10) + " ms");
        if (isPrinted && !writeOut(stepLine(steps[i], tests[i]))) goesOn = !own.junitFile.empty(); // unread
        if (tests[i].outcome != Outcome::failed) continue;
        report.problems.push_back(file + ":" + numberText(steps[i].line) + ": " +
                                  shortened(printable(steps[i].text), 200) + ": " + tests[i].message);
        report.exitCode = exitRefused;
        goesOn = goesOn && !own.failFast;
    }
    if (interruption.isAsked()) report.exitCode = exitInterrupted;
    addSummary(report, file, steps, tests);
    // Written here, while a closed pipe raises no signal.
    report.isPrinted = isPrinted && (writeOut(laidOut(report)) || errno == EPIPE);
    if (own.junitFile.empty()) return report;
    try {
        writeFile(own.junitFile, junitDocument(std::filesystem::path(file).stem(), tests));
    } catch (const Failure& failure) { // the summary is printed nevertheless
        report.problems.emplace_back(failure.what());
        if (report.exitCode == exitDone) report.exitCode = exitRefused;
    }
    return report;
}

} // namespace

extern const Command runScenarioCommand;
const Command runScenarioCommand = {
    .name = "run",
    .help = "Execute a scenario: steps with their expected results",
    .argument = "FILE",
    .argumentHelp = "File of steps, one per line",
    .examples = {{"run line.scenario", "each step with its outcome"},
                 {"run line.scenario --junit report.xml", "with a report for a build server"}},
    .file = Command::File::read,
    .fileSuffix = ".scenario",
    .fewest = 1,
    .most = 1,
    .run = runScenario,
    .scratch = Context::Scratch::wanted,
    .addOptions = addRunOptions,
    .kind = Command::Kind::session,
    .sets = Command::Sets::always,
    .moreHelp = scenarioSteps,
    .acquires = true,
};

} // namespace appletctl
