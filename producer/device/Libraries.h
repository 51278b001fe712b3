/** The applet and the virtual board of the producer. */
#ifndef PRODUCER_DEVICE_LIBRARIES_H
#define PRODUCER_DEVICE_LIBRARIES_H

#include "applet_host/AppletHost.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace producer {

using Libraries = std::shared_ptr<const applet_host::AppletHost>;

/**
 * The libraries; they stay loaded while the result is referenced. Taken from the folder VEXO_LIBRARY_DIR, or
 * from that of the producer's own file. APPLET_UNDER_TEST names another applet library. Throws IO with the
 * reason.
 */
Libraries loadLibraries();

/** How often loadLibraries() has had to load them. */
std::uint64_t timesLoaded();

/** The producer's own file. */
std::filesystem::path producerFile();

} // namespace producer

#endif
