/** The keys that configuration files hold. */
#ifndef APPLET_TOOLS_ANSWERS_LOADING_FILEKEYS_H
#define APPLET_TOOLS_ANSWERS_LOADING_FILEKEYS_H

#include "applet_tools/applet/files/ConfigurationFile.h"
#include "applet_tools/applet/files/MemoryFile.h"
#include "applet_tools/scratch/ScratchSession.h"

#include <string_view>

namespace applet_tools {

/** A fresh instance of the applet, used to find out which keys files hold. There is no list of keys here:
 *  the keys are those that the applet saves, and a key is read by a load if the load fails without it. */
class FileKeys {
public:
    explicit FileKeys(ScratchSession& session);

    /** The state after the start. */
    const ConfigurationFile& defaults() const { return m_defaults; }
    /** False for unknown keys and for those that a load ignores, such as measurements. */
    bool isReadByLoad(std::string_view key);

private:
    Instance m_instance;
    ConfigurationFile m_defaults;
    MemoryFile m_file;
};

} // namespace applet_tools

#endif
