/** Units behind a number that a user typed: "12.5us", "2 ms", "0.1 kHz", "640 pixel". */
#ifndef APPLET_TOOLS_APPLET_UNITS_H
#define APPLET_TOOLS_APPLET_UNITS_H

#include <optional>
#include <string>

namespace applet_tools {

/** A number as it was typed, taken apart. */
struct NumberWithUnit {
    std::string
        number; /**< in the unit that was asked for, in decimal: "12.5e-3"; empty where it does not fit */
    std::string reason; /**< why it does not fit */
};

/** Converts "12.5us" into the unit of a parameter; that unit may be empty. Nothing where the text is not a number
 *  with a known unit behind it. */
std::optional<NumberWithUnit> convertUnit(const std::string& text, const std::string& unit);

} // namespace applet_tools

#endif
