/** Draws a table's curve on a terminal and as SVG. */
#ifndef APPLETCTL_COMMANDS_FILES_CURVE_H
#define APPLETCTL_COMMANDS_FILES_CURVE_H

#include "applet_tools/applet/files/LutTables.h"
#include "appletctl/base/applet_tools.h"

#include <string>
#include <vector>

namespace appletctl {

/** A small curve of the entries, from 0 to `largest`, in braille dots or in plain ASCII; as wide as the line allows. */
std::string curveText(const Elements& entries, std::uint32_t largest, bool braille, std::size_t lineWidth);

/** A self-contained SVG document with axes, the curves of all colours and a legend; `subtitle` names the
 *  source of the tables. */
std::string curvesAsSvg(const LutTables& tables, const std::string& subtitle);

} // namespace appletctl

#endif
