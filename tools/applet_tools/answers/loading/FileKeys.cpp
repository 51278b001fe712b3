#include "applet_tools/answers/loading/FileKeys.h"

#include "vexo/fg_errors.h"

namespace applet_tools {

FileKeys::FileKeys(ScratchSession& session)
    : m_instance(session.options(), session.instance().host())
    , m_defaults(stateOf(m_instance)) {}

bool FileKeys::isReadByLoad(std::string_view key) {
    auto line = m_defaults.header().find(key);
    if (!line) line = m_defaults.values().find(key);
    if (!line) return false;
    m_file.write(m_defaults.textWith(*line, ""));
    return loadConfiguration(m_instance, m_file.configurationPath()) != FG_OK;
}

} // namespace applet_tools
