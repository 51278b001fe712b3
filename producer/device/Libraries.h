/** The applet and the virtual board that the producer works with. */
#ifndef PRODUCER_DEVICE_LIBRARIES_H
#define PRODUCER_DEVICE_LIBRARIES_H

#include "applet_host/AppletHost.h"

#include <filesystem>
#include <memory>

namespace producer {

using Libraries = std::shared_ptr<const applet_host::AppletHost>;

/**
 * The libraries, which stay loaded as long as somebody has them: those of the folder VEXO_LIBRARY_DIR, or those beside
 * the producer's own file. APPLET_UNDER_TEST names another applet library. Throws IO with the reason.
 */
Libraries loadLibraries();

/** The producer's own file. */
std::filesystem::path producerFile();

} // namespace producer

#endif
