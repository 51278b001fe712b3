/** Imports the names of the library below the command line. */
#ifndef APPLETCTL_BASE_APPLET_TOOLS_H
#define APPLETCTL_BASE_APPLET_TOOLS_H

namespace applet_tools {}

namespace appletctl {

using namespace applet_tools;

} // namespace appletctl

#endif
