/** Draws digital signals over time, in microseconds: on a terminal, as a picture, for a waveform viewer. */
#ifndef APPLETCTL_DRAW_WAVES_H
#define APPLETCTL_DRAW_WAVES_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace appletctl {

struct Pulse {
    double start, end;
};

struct Wave {
    std::string name;
    std::optional<std::vector<Pulse>> active; /**< sorted, without overlap; empty if unknown */
    bool isActiveLow;
};

/** The visible parts of the pulses between 0 and `end`; merges those that touch. */
std::vector<Pulse> merged(const std::vector<Pulse>& pulses, double end);

/** Two lines per wave, in line drawing characters or in ASCII, with the times of the periods below; as wide
 *  as the line allows. */
std::string wavesText(const std::vector<Wave>& waves, double end, double period, bool unicode,
                      std::size_t lineWidth);

/** `origin` is the time at the left end; it is added to the displayed times. If it is not 0, signals that are
 *  active there have begun earlier. */
std::string wavesAsSvg(const std::vector<Wave>& waves, double end, double period, const std::string& subtitle,
                       double origin);

/** A value change dump with one wire per wave, in nanoseconds, starting at `origin`. */
std::string wavesAsVcd(const std::vector<Wave>& waves, double end, double origin);

} // namespace appletctl

#endif
