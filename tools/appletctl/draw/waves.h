/** Digital signals over time, in microseconds: on a terminal, as a picture, for a waveform viewer. */
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
    std::optional<std::vector<Pulse>> active; /**< in order, apart from each other; none: not known */
    bool isActiveLow;
};

/** Pulses in order, as far as they show between 0 and `end`; those that touch become one. */
std::vector<Pulse> merged(const std::vector<Pulse>& pulses, double end);

/** Two lines for each wave, in line drawing characters or in ASCII, below them the times of the periods; as wide as the
 *  line allows. */
std::string wavesText(const std::vector<Wave>& waves, double end, double period, bool unicode,
                      std::size_t lineWidth);

/** `origin`: the time at the left end, which is added to what is written below. What is active there has
 *  begun before, if that is not 0. */
std::string wavesAsSvg(const std::vector<Wave>& waves, double end, double period, const std::string& subtitle,
                       double origin);

/** A value change dump with one wire for each wave, in nanoseconds, which begin with `origin`. */
std::string wavesAsVcd(const std::vector<Wave>& waves, double end, double origin);

} // namespace appletctl

#endif
