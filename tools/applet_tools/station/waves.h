/** Waves for the inputs of the virtual board, as a user writes them. */
#ifndef APPLET_TOOLS_STATION_WAVES_H
#define APPLET_TOOLS_STATION_WAVES_H

#include "applet_tools/applet/Instance.h"
#include "applet_tools/station/ticks.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace applet_tools {

struct LevelWave {
    bool level;
};
struct SquareWave {
    Ticks period, high, start; /**< it rises after `start`, then once in a period */
};
struct EdgesWave {
    std::vector<Ticks> places; /**< low before the first, then high, low, ... */
};
struct EncoderWave {
    unsigned second; /**< input of track B */
    std::vector<vboard_speed> pieces;
};

/** Times count from when it is connected. */
struct WaveRequest {
    unsigned input; /**< 0 to 7 GPI, 8 to 11 front GPI */
    std::variant<LevelWave, SquareWave, EdgesWave, EncoderWave> wave;
};

/** How a wave is written, for messages and help. */
extern const char* const waveForms;

/** The number of an input: "GPI_2", "FRONT_GPI_0", the entry "TRGINSRC_GPI_2", or a number. Throws UsageError. */
unsigned inputFrom(std::string_view word);

/** Reads "INPUT=WAVE". Throws UsageError. */
WaveRequest parseWave(std::string_view word);

/** Connects it to a virtual board. */
void connectWave(const applet_host::BoardFunctions& board, LOOMdevice* device, const WaveRequest& request);
/** The same to that of the instance. */
void connectWave(Instance& instance, const WaveRequest& request);

} // namespace applet_tools

#endif
