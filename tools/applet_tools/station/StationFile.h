/** A station described by a file: camera, belt, scene, inputs, and the applet's settings. */
#ifndef APPLET_TOOLS_STATION_STATIONFILE_H
#define APPLET_TOOLS_STATION_STATIONFILE_H

#include "applet_tools/applet/ParameterList.h"
#include "applet_tools/base/words.h"
#include "applet_tools/station/waves.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace applet_tools {

struct StationCamera {
    vboard_camera camera{};
    vboard_camera_faults faults{.order = {0, 1, 2},
                                .drop_every = 0,
                                .short_every = 0,
                                .short_width = 1,
                                .lost_after = 0,
                                .lost_for = 0};
};

struct StationBelt {
    std::vector<vboard_speed> profile; /**< in micrometres per second */
    std::optional<unsigned> encoderA, encoderB, barrier;
    std::uint32_t encoderStep = 1; /**< nanometres per quarter step */
    std::int64_t barrierAhead = 0; /**< micrometres */
};

constexpr double whiteLevel = 65535; /**< of a scene */

struct StationScene {
    std::uint32_t pixel = 100'000; /**< nanometres */
    std::string image;             /**< a PNG or TIFF file; empty: the chart */
    std::vector<vboard_object> objects;
    std::uint32_t noise = 0;
    std::uint64_t seed = 0;
};

/** Missing parts leave the station unchanged. */
struct StationFile {
    std::string name;            /**< of the file, for messages; empty without one */
    std::optional<double> clock; /**< factor of vboard_clock */
    std::optional<StationCamera> camera;
    std::optional<StationBelt> belt;
    std::optional<StationScene> scene;
    std::vector<WaveRequest> waves;
    Words parameters; /**< "FG_WIDTH=2048", in file order */
};

/** Parses the text of a file; relative file names in it start at `folder`. Throws UsageError with the path of
 *  the wrong field, the value found and the expected one. */
StationFile parseStation(const std::string& text, const std::string& folder);
/** Reads a file; its name precedes the message. */
StationFile readStationFile(const std::string& file);

/** Connects everything except the parameters to a virtual board. Throws UsageError for an unreadable image. */
void connectStation(const applet_host::BoardFunctions& board, LOOMdevice* device, const StationFile& station);
void connectCamera(const applet_host::BoardFunctions& board, LOOMdevice* device, const StationCamera& camera);
void connectBelt(const applet_host::BoardFunctions& board, LOOMdevice* device, const StationBelt& belt);
void connectScene(const applet_host::BoardFunctions& board, LOOMdevice* device, const StationScene& scene);

/** Connects it to the board of the instance, then sets the parameters. Throws Failure for a refused one. */
void setUpStation(Instance& instance, const ParameterList& parameters, const StationFile& station);

/** The file named by the environment variable VBOARD_STATION; empty if it names none. Throws UsageError. */
std::optional<StationFile> stationOfEnvironment();

} // namespace applet_tools

#endif
