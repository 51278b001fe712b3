/** The command line is written in the terms of the library below it. */
#ifndef APPLETCTL_BASE_APPLET_TOOLS_H
#define APPLETCTL_BASE_APPLET_TOOLS_H

namespace applet_tools {}

namespace appletctl {

using namespace applet_tools;

} // namespace appletctl

#endif
