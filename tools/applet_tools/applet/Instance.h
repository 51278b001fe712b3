/** An applet that is up: on a board, or offline. */
#ifndef APPLET_TOOLS_APPLET_INSTANCE_H
#define APPLET_TOOLS_APPLET_INSTANCE_H

#include "applet_host/AppletHost.h"
#include "applet_tools/base/BoardOptions.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace applet_tools {

/** The libraries that the options name. */
applet_host::Locations locationsFor(const BoardOptions& options);

/** Whether an applet is to publish the design's own parameters, whatever the environment says. */
enum class DesignParameters { asSwitched, published };

/** The configuration files of an applet. A load stores values unchecked that no getter shows and that setters work with,
 *  so this is a part of its state. */
struct LoadHistory {
    std::vector<std::string> texts; /**< the last file that was loaded as a whole, and what failed after it */
    std::set<int> setSince;         /**< ids of the parameters that were set afterwards */
};

/** One applet object with a handle that the exported functions take. Throws HostError when a library is not
 *  found and Unavailable when the applet does not come up. */
class Instance {
public:
    explicit Instance(const BoardOptions& options, DesignParameters design = DesignParameters::asSwitched);
    /** One more on libraries that are loaded already; `prepare` is called with its board before the bring-up. */
    Instance(const BoardOptions& options, std::shared_ptr<const applet_host::AppletHost> host,
             DesignParameters design = DesignParameters::asSwitched,
             const applet_host::Prepare& prepare = {});
    ~Instance();
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    const std::shared_ptr<const applet_host::AppletHost>& host() const { return m_host; }
    const applet_host::AppletFunctions& applet() const { return m_host->applet(); }
    /** Control of the virtual board; not there on another one. */
    const applet_host::BoardFunctions& board() const { return m_host->board(); }
    Fg_Struct* fg() { return m_session ? m_session->fg() : m_offline.fg(); }
    /** The board; null offline. */
    LOOMdevice* device() const { return m_session ? m_session->device : nullptr; }
    /** First top-level record of the parameter tree. */
    const RegisterInfo* parameterTree();
    /** True when the design's parameters are published although the user has not switched that on. */
    bool isDesignHidden() const { return m_isDesignHidden; }
    LoadHistory& loads() { return m_loads; }

private:
    bool m_isDesignHidden = false;
    LoadHistory m_loads;
    std::shared_ptr<const applet_host::AppletHost> m_host;
    std::unique_ptr<applet_host::Session> m_session; // null offline
    applet_host::GrabberHandle m_offline;
};

} // namespace applet_tools

#endif
