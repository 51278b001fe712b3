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

std::string nameOf(const Step& step) { return "line " + numberText(step.line) + ": " + step.text; }

TestCase notDone(const Step& step) {
    return {.group = step.section, .name = nameOf(step), .outcome = Outcome::skipped, .message = ""};
}

/** Runs the step and measures its time. */
TestCase doStep(ScenarioRunner& runner, const Step& step) {
    const auto start = std::chrono::steady_clock::now();
    const std::string wrong = runStep(runner, step);
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    return {.group = step.section,
            .name = nameOf(step),
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

/** A scenario, from its file to the report. */
class ScenarioRun {
public:
    /** Reads and checks all steps. Throws UsageError and Failure. */
    ScenarioRun(Context& context, const Words& words)
        : m_context(context)
        , m_options(optionsOfSteps(context))
        , m_own(m_options.of<RunOptions>())
        , m_isPrinted(!m_options.json && !m_options.quiet)
        , m_file(toUtf8(fileOf(words)))
        , m_steps(readScenario(fileOf(words), m_options))
        , m_runner(context) {
        if (!m_own.junitFile.empty()) requireWritable(m_own.junitFile);
        checkSteps(m_runner, fileOf(words), m_steps);
    }

    Report run() {
        for (const Step& step : m_steps) {
            m_context.pause();
            m_tests.push_back(m_goesOn && !m_interruption.isAsked() ? doStep(m_runner, step) : notDone(step));
            if (m_tests.back().outcome != Outcome::skipped) addResult(step, m_tests.back());
        }
        if (m_interruption.isAsked()) m_report.exitCode = exitInterrupted;
        addSummary(m_report, m_file, m_steps, m_tests);
        // Written here, while a closed pipe raises no signal.
        m_report.isPrinted = m_isPrinted && (writeOut(laidOut(m_report)) || errno == EPIPE);
        if (!m_own.junitFile.empty()) writeJunit();
        return std::move(m_report);
    }

private:
    static Options optionsOfSteps(const Context& context) {
        Options options = context.options();     // steps have options of their own
        options.own<YesOption>().isGiven = true; // consent to the run covers its steps
        return options;
    }

    /** Shows the result of a step that was done, and decides whether more follow. */
    void addResult(const Step& step, const TestCase& test) {
        m_report.notes.push_back("line " + numberText(step.line) + ": " +
                                 numberText(std::round(test.seconds * 1e4) / 10) + " ms");
        if (m_isPrinted && !writeOut(stepLine(step, test))) m_goesOn = !m_own.junitFile.empty(); // unread
        if (test.outcome != Outcome::failed) return;
        m_report.problems.push_back(m_file + ":" + numberText(step.line) + ": " +
                                    shortened(printable(step.text), 200) + ": " + test.message);
        m_report.exitCode = exitRefused;
        m_goesOn = m_goesOn && !m_own.failFast;
    }

    void writeJunit() {
        try {
            writeFile(m_own.junitFile, junitDocument(std::filesystem::path(m_file).stem(), m_tests));
        } catch (const Failure& failure) { // the summary is printed nevertheless
            m_report.problems.emplace_back(failure.what());
            if (m_report.exitCode == exitDone) m_report.exitCode = exitRefused;
        }
    }

    Context& m_context;
    const Options m_options;
    const RunOptions m_own;
    const bool m_isPrinted;
    const std::string m_file;
    const std::vector<Step> m_steps;
    const Interruption m_interruption;
    ScenarioRunner m_runner;
    std::vector<TestCase> m_tests;
    Report m_report;
    bool m_goesOn = true;
};

Report runScenario(Context& context, const Words& words) { return ScenarioRun(context, words).run(); }

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
