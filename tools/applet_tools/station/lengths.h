/** Lengths and speeds on the belt of a station. */
#ifndef APPLET_TOOLS_STATION_LENGTHS_H
#define APPLET_TOOLS_STATION_LENGTHS_H

#include <cstdint>
#include <string_view>

namespace applet_tools {

/** Parses "25um", "25µm", "100nm", "51.2mm", "-3cm" or "1.5m" and rounds to nanometres, up to a thousand
 *  kilometres. Throws UsageError. */
std::int64_t nanometresFrom(std::string_view word);

/** Parses "500mm/s", "1.5m/s" or "-20um/s" and rounds to micrometres per second, up to 100 m/s. Throws
 *  UsageError. */
std::int32_t beltSpeedFrom(std::string_view word);

} // namespace applet_tools

#endif
