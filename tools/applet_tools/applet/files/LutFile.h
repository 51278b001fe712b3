/** Looks at a lookup table file before the applet loads it. */
#ifndef APPLET_TOOLS_APPLET_FILES_LUTFILE_H
#define APPLET_TOOLS_APPLET_FILES_LUTFILE_H

#include <cstdint>
#include <string>

namespace applet_tools {

/** What the applet's tables can hold. */
struct LutLimits {
    std::uint32_t elements; /**< of a table */
    std::uint32_t largest;  /**< value of an element */
};

/** The result of reading a lookup table file as a load does. */
struct LutFile {
    std::string trouble;        /**< a line that a load reads otherwise than it is written, or what is
                                      missing; empty for a good file */
    std::uint32_t elements = 0; /**< of each table; entries with a higher index keep their values */
};

/** Throws UsageError if the file cannot be read. */
LutFile lookAtLutFile(const std::string& file, const LutLimits& limits);

} // namespace applet_tools

#endif
