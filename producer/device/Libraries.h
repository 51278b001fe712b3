/** Loading of the applet and the virtual board. */
#ifndef PRODUCER_DEVICE_LIBRARIES_H
#define PRODUCER_DEVICE_LIBRARIES_H

#include "applet_host/AppletHost.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace producer {

using Libraries = std::shared_ptr<const applet_host::AppletHost>;

/**
 * Loads the libraries from the folder VEXO_LIBRARY_DIR, or else from the folder of the producer's own file. They
 * stay loaded while the result is referenced. APPLET_UNDER_TEST names another applet library. Throws IO with the
 * reason.
 */
Libraries loadLibraries();

/** Returns how often loadLibraries() has loaded them. */
std::uint64_t timesLoaded();

/** Returns the path of the producer's own file. */
std::filesystem::path producerFile();

} // namespace producer

#endif
