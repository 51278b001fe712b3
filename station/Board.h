/** The station's interface to its board. */
#ifndef STATION_BOARD_H
#define STATION_BOARD_H

#include "station/picture/PictureSettings.h"
#include "station/timing/Events.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace station {

/** The parameters of the design that the station uses. */
enum class Parameter : std::uint8_t {
#define PARAMETER(name, designName) name,
#include "station/parameters.def"
#undef PARAMETER
};
inline constexpr std::size_t parameterCount = 0
#define PARAMETER(name, designName) +1
#include "station/parameters.def"
#undef PARAMETER
    ;

/** The name in the design, such as "Device1_Process0_Buffer_0_XLength". */
const char* nameOf(Parameter parameter);
const char* nameOf(Event event);

enum class Colour : std::uint8_t { red, green, blue };
inline constexpr std::size_t colourCount = 3;

/**
 * The values that the board holds. The station calls these functions only from the thread that is calling the station:
 * it reads the parameters before time advances, and publishes the states afterwards.
 */
class Board {
public:
    virtual ~Board() = default;
    /** Changes with every change of a parameter. */
    virtual std::uint64_t revision() const = 0;
    /** Changes with every change of a lookup table. */
    virtual std::uint64_t tableRevision() const = 0;
    /** The current value of a parameter. Signed integers keep their sign. */
    virtual double value(Parameter parameter) const = 0;
    /** The entries of a lookup table; missing entries are 0. */
    virtual std::span<const std::uint32_t> table(Colour colour) const = 0;
    /** Sets a parameter that shows a state of the station. */
    virtual void publish(Parameter parameter, double value) = 0;
    /** Reports that an event occurred `times` times. */
    virtual void raise(Event event, std::uint64_t times) = 0;
};

} // namespace station

#endif
