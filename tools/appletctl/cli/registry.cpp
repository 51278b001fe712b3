#include "appletctl/cli/registry.h"

#include "appletctl/commands/Command.h"

namespace appletctl {

// Each is defined in the source of its command.
extern const Command listCommand, getCommand, setCommand, resetCommand, limitsCommand, whyCommand,
    depsCommand, planCommand, applyCommand, describeCommand, infoCommand, xmlCommand, eventsCommand,
    watchCommand, routeCommand, lintCommand, timingCommand, docsCommand, reportCommand, saveCommand,
    loadCommand, checkCommand, diffCommand, traceCommand, runScenarioCommand, shellCommand, completionCommand,
    helpCommand, completeCommand, lutShowCommand, lutPlotCommand, lutSaveCommand, lutLoadCommand, grabCommand,
    serveCommand, stationListCommand, stationStopCommand, stationLogCommand;

namespace {

constexpr const Command* commands[] = {
    &listCommand,        &getCommand,         &setCommand,        &resetCommand,   &limitsCommand,
    &whyCommand,         &depsCommand,        &planCommand,       &applyCommand,   &describeCommand,
    &infoCommand,        &xmlCommand,         &eventsCommand,     &watchCommand,   &routeCommand,
    &lintCommand,        &timingCommand,      &grabCommand,       &docsCommand,    &reportCommand,
    &saveCommand,        &loadCommand,        &checkCommand,      &diffCommand,    &traceCommand,
    &runScenarioCommand, &shellCommand,       &completionCommand, &helpCommand,    &completeCommand,
    &lutShowCommand,     &lutPlotCommand,     &lutSaveCommand,    &lutLoadCommand, &serveCommand,
    &stationListCommand, &stationStopCommand, &stationLogCommand,
};

} // namespace

std::span<const Command* const> allCommands() { return commands; }

} // namespace appletctl
