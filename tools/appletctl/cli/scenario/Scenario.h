/** A scenario: a file of steps, each one a line, that bring a station up and say what is to come of it. */
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
    std::string section;  /**< the title above it; empty above the first one */
    std::string text;     /**< as in the file, without comment */
    const StepKind* kind; /**< null for a command */
    Words words;          /**< behind the words that name the kind */
    std::string rest;     /**< the same, with their quotes */
    Request request;      /**< of a step that carries a command out */
};

/** A kind of step that is no command of the program. */
struct StepKind {
    const char* name;  /**< the words that it begins with */
    const char* form;  /**< the words behind them, for a message */
    int fewest, most;  /**< number of those; most -1: as many as there are */
    bool isForCommand; /**< they end in a command, from the last of the fewest on */
    /** Throws UsageError for words that can never be right; null if there are none. */
    void (*check)(const Words& words);
    /** The same for names and values that the applet or its board does not know. */
    void (*look)(ScenarioRunner& runner, const Step& step);
    /** Does the step; gives what was wrong, nothing if all was well. */
    std::string (*run)(ScenarioRunner& runner, const Step& step);
};

/** Reads the steps. Throws UsageError with file and line, and what is possible, for a line that is none. */
std::vector<Step> readScenario(const std::string& file, const Options& options);

/** Throws such an error for a step with a name or a value that there is not. Nothing is done. */
void checkSteps(ScenarioRunner& runner, const std::string& file, const std::vector<Step>& steps);

/** The kinds of steps, for the help. */
std::string scenarioSteps();

/** Does a step, of a kind or a command; gives what was wrong, nothing if all was well. */
std::string runStep(ScenarioRunner& runner, const Step& step);

} // namespace appletctl

#endif
