/** Steps of a scenario that let the virtual board's station run, and say what is to come of it. */
#ifndef APPLETCTL_CLI_STATION_STEPS_H
#define APPLETCTL_CLI_STATION_STEPS_H

#include "appletctl/cli/Scenario.h"

#include <string>

namespace appletctl {

void checkAdvance(const Words& words);
std::string advanceStation(ScenarioRunner& station, const Step& step);

void checkWave(const Words& words);
std::string connectStationWave(ScenarioRunner& station, const Step& step);

void checkStation(const Words& words);
std::string setUpStationFile(ScenarioRunner& station, const Step& step);
void checkCamera(const Words& words);
std::string attachCamera(ScenarioRunner& station, const Step& step);
void checkBelt(const Words& words);
std::string startBelt(ScenarioRunner& station, const Step& step);
void checkScene(const Words& words);
std::string putScene(ScenarioRunner& station, const Step& step);
void checkAcquire(const Words& words);
std::string acquire(ScenarioRunner& station, const Step& step);

void checkGrab(const Words& words);
std::string grab(ScenarioRunner& station, const Step& step);

void checkFrame(const Words& words);
std::string expectFrame(ScenarioRunner& station, const Step& step);

void checkSignal(const Words& words);
std::string expectSignal(ScenarioRunner& station, const Step& step);

void checkPixel(const Words& words);
std::string expectPixel(ScenarioRunner& station, const Step& step);

void checkLoss(const Words& words);
std::string expectLoss(ScenarioRunner& station, const Step& step);

} // namespace appletctl

#endif
