/** Numbers with units as a user types them: "12.5us", "2 ms", "0.1 kHz", "640 pixel". */
#ifndef APPLET_TOOLS_APPLET_UNITS_H
#define APPLET_TOOLS_APPLET_UNITS_H

#include <optional>
#include <string>

namespace applet_tools {

/** The result of a conversion. */
struct NumberWithUnit {
    std::string number; /**< in the requested unit, in decimal: "12.5e-3"; empty if the unit does not fit */
    std::string reason; /**< why the unit does not fit */
};

/** Converts "12.5us" into the unit of a parameter; that unit may be empty. Returns nothing if the text is not a
 *  number followed by a known unit. */
std::optional<NumberWithUnit> convertUnit(const std::string& text, const std::string& unit);

} // namespace applet_tools

#endif
