#include "appletctl/commands/signals/DirectOutput.h"

#include "applet_tools/base/files.h"
#include "appletctl/base/applet_tools.h"

#include <unistd.h>

#include <cerrno>

namespace appletctl {

bool DirectOutput::write(const std::string& bytes) {
    if (m_error == 0 && !writeAll(STDOUT_FILENO, bytes)) m_error = errno;
    return m_error == 0;
}

} // namespace appletctl
