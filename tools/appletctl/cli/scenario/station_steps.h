/** Steps of a scenario that run the virtual board's station and check the results. */
#ifndef APPLETCTL_CLI_SCENARIO_STATION_STEPS_H
#define APPLETCTL_CLI_SCENARIO_STATION_STEPS_H

#include "appletctl/cli/scenario/Scenario.h"

#include <string>

namespace appletctl {

void checkAdvance(const Words& words);
std::string advanceStation(ScenarioRunner& runner, const Step& step);

void checkWave(const Words& words);
std::string connectStationWave(ScenarioRunner& runner, const Step& step);

void checkStation(const Words& words);
std::string setUpStationFile(ScenarioRunner& runner, const Step& step);
void checkCamera(const Words& words);
std::string attachCamera(ScenarioRunner& runner, const Step& step);
void checkBelt(const Words& words);
std::string startBelt(ScenarioRunner& runner, const Step& step);
void checkScene(const Words& words);
std::string putScene(ScenarioRunner& runner, const Step& step);
void checkAcquire(const Words& words);
std::string acquire(ScenarioRunner& runner, const Step& step);

void checkGrab(const Words& words);
std::string grab(ScenarioRunner& runner, const Step& step);

void checkFrame(const Words& words);
std::string expectFrame(ScenarioRunner& runner, const Step& step);

void checkSignal(const Words& words);
std::string expectSignal(ScenarioRunner& runner, const Step& step);

void checkPixel(const Words& words);
std::string expectPixel(ScenarioRunner& runner, const Step& step);

void checkLoss(const Words& words);
std::string expectLoss(ScenarioRunner& runner, const Step& step);

} // namespace appletctl

#endif
