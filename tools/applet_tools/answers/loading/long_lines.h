/** Lines of a configuration file that are too long for a load. */
#ifndef APPLET_TOOLS_ANSWERS_LOADING_LONG_LINES_H
#define APPLET_TOOLS_ANSWERS_LOADING_LONG_LINES_H

#include "applet_tools/applet/files/ConfigurationFile.h"

#include <string>
#include <string_view>

namespace applet_tools {

/** True if a load reads this line in pieces. */
bool isLong(const ConfigurationFile::Line& line);

/** The key of the first long line with a piece that a load reads as a line of `key`; empty if there is none. */
std::string keyWithRestFor(const ConfigurationFile& file, std::string_view key);

} // namespace applet_tools

#endif
