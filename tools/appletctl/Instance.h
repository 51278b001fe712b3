/** An applet that is up: on a fresh virtual board, or offline. */
#ifndef APPLETCTL_INSTANCE_H
#define APPLETCTL_INSTANCE_H

#include "applet_host/AppletHost.h"
#include "appletctl/Options.h"

#include <memory>

namespace appletctl {

/** The libraries that the options name. */
applet_host::Locations locationsFor(const Options& options);

/** Throws UsageError, naming the command, when the options ask for an instance without a board. */
void requireBoard(const Options& options, const char* command);

/** One applet object with a handle that the exported functions take. Throws HostError when a library is not
 *  found and Failure when the applet does not come up. */
class Instance {
public:
    explicit Instance(const Options& options);
    ~Instance();
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    const applet_host::AppletFunctions& applet() const { return m_host.applet(); }
    const applet_host::BoardFunctions& board() const { return m_host.board(); }
    Fg_Struct* fg() { return m_session ? m_session->fg() : m_offline.fg(); }
    /** The board; null offline. */
    LOOMdevice* device() const { return m_session ? m_session->device : nullptr; }
    /** First top-level record of the parameter tree. */
    const RegisterInfo* parameterTree();

private:
    applet_host::AppletHost m_host;
    std::unique_ptr<applet_host::Session> m_session; // null offline
    applet_host::GrabberHandle m_offline;
};

} // namespace appletctl

#endif
