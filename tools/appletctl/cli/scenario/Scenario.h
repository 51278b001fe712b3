/** A scenario: a file with one step per line that sets a station up and checks the results. */
#ifndef APPLETCTL_CLI_SCENARIO_SCENARIO_H
#define APPLETCTL_CLI_SCENARIO_SCENARIO_H

#include "appletctl/cli/command_line.h"
#include "appletctl/cli/scenario/ScenarioRunner.h"

#include <string>
#include <vector>

namespace appletctl {

struct StepKind;

struct Step {
    std::size_t line;     /**< in the file, from 1 on */
    std::string section;  /**< the last title before it; empty before the first one */
    std::string text;     /**< as in the file, in UTF-8 and without the comment */
    const StepKind* kind; /**< null for a command */
    Words words;          /**< after the words that name the kind */
    std::string rest;     /**< the same, with their quotes */
    Request request;      /**< for a step that runs a command */
};

/** A kind of step that is not a command of the program. */
struct StepKind {
    const char* name;  /**< its first words */
    const char* form;  /**< the words after them, for a message */
    int fewest, most;  /**< number of those; most -1: unlimited */
    bool isForCommand; /**< the words from the last required one on form a command */
    /** Throws UsageError for words that can never be valid; null if there is no such check. */
    void (*check)(const Words& words);
    /** The same check for names and values, by asking the applet and its board. */
    void (*look)(ScenarioRunner& runner, const Step& step);
    /** Runs the step; returns the error, empty on success. */
    std::string (*run)(ScenarioRunner& runner, const Step& step);
};

/** Parses the steps. Throws UsageError with file, line and suggestions for an invalid line. */
std::vector<Step> readScenario(const std::string& file, const Options& options);

/** Throws UsageError for a step with an unknown name or an invalid value. Runs no step. */
void checkSteps(ScenarioRunner& runner, const std::string& file, const std::vector<Step>& steps);

/** The kinds of steps, for the help. */
std::string scenarioSteps();

/** Runs a step, which may be a command; returns the error, empty on success. */
std::string runStep(ScenarioRunner& runner, const Step& step);

} // namespace appletctl

#endif
