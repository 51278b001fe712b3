/** All that the station knows of the board that it belongs to. */
#ifndef STATION_BOARD_H
#define STATION_BOARD_H

#include "station/timing/Events.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace station {

/** A parameter of the design. */
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

/** The design's names, such as "Device1_Process0_Buffer_0_XLength". */
const char* nameOf(Parameter parameter);
const char* nameOf(Event event);

enum class Colour : std::uint8_t { red, green, blue };
inline constexpr std::size_t colourCount = 3;
/** Entries of a lookup table. */
inline constexpr std::size_t tableSize = 16384;

/**
 * The values that the board holds. The station reads them when its time moves, and writes the states back when it has
 * moved. It calls no function of the board from elsewhere, and never two at a time.
 */
class Board {
public:
    virtual ~Board() = default;
    /** A number that is another one after each change of a parameter. */
    virtual std::uint64_t revision() const = 0;
    /** The same for the lookup tables. */
    virtual std::uint64_t tableRevision() const = 0;
    /** The present value of any parameter; integers as they are, signed ones with their sign. */
    virtual double value(Parameter parameter) const = 0;
    /** The entries of a lookup table; those past the end are 0. */
    virtual std::span<const std::uint32_t> table(Colour colour) const = 0;
    /** The station changes a state. */
    virtual void publish(Parameter parameter, double value) = 0;
    /** An event came so many times. */
    virtual void raise(Event event, std::uint64_t times) = 0;
};

} // namespace station

#endif
