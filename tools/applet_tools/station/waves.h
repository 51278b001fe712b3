/** Parses and connects waves for the inputs of the virtual board. */
#ifndef APPLET_TOOLS_STATION_WAVES_H
#define APPLET_TOOLS_STATION_WAVES_H

#include "applet_tools/applet/Instance.h"
#include "applet_tools/applet/timing/ticks.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace applet_tools {

struct LevelWave {
    bool level;
};
struct SquareWave {
    Ticks period, high, start; /**< first rises after `start`, then once per period */
};
struct EdgesWave {
    std::vector<Ticks> times; /**< edges: low before the first, then high, low, ... */
};
struct EncoderWave {
    unsigned second; /**< input of track B */
    std::vector<vboard_speed> pieces;
};

/** Times are relative to the connection. */
struct WaveRequest {
    unsigned input; /**< 0 to 7 GPI, 8 to 11 front GPI */
    std::variant<LevelWave, SquareWave, EdgesWave, EncoderWave> wave;
};

/** The syntax of a wave, for messages and help. */
extern const char* const waveForms;

/** The number of an input: "GPI_2", "FRONT_GPI_0", the entry "TRGINSRC_GPI_2", or a number. Throws UsageError. */
unsigned inputFrom(std::string_view word);

/** Parses "INPUT=WAVE". Throws UsageError. */
WaveRequest parseWave(std::string_view word);

/** Connects the wave to a virtual board. */
void connectWave(const applet_host::BoardFunctions& board, LOOMdevice* device, const WaveRequest& request);
/** Connects it to the board of the instance. */
void connectWave(Instance& instance, const WaveRequest& request);

} // namespace applet_tools

#endif
