/** An applet after its bring-up, on a board or offline. */
#ifndef APPLET_TOOLS_APPLET_INSTANCE_H
#define APPLET_TOOLS_APPLET_INSTANCE_H

#include "applet_host/AppletHost.h"
#include "applet_tools/base/BoardOptions.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace applet_tools {

/** The libraries selected by the options. */
applet_host::Locations locationsFor(const BoardOptions& options);

/** Whether an applet publishes the design's own parameters, regardless of the environment. */
enum class DesignParameters { asSwitched, published };

/** The configuration files that an applet has loaded. A load stores values unchecked; setters use them and no
 *  getter shows them, so the files are a part of its state. */
struct LoadHistory {
    std::vector<std::string> texts; /**< the last complete load, and the failed ones after it */
    std::set<int> setSince;         /**< ids of the parameters that were set afterwards, or offline */
};

/** An applet object with a handle for the exported functions. Throws HostError when a library is not
 *  found, and Unavailable when the bring-up of the applet fails. */
class Instance {
public:
    explicit Instance(const BoardOptions& options, DesignParameters design = DesignParameters::asSwitched);
    /** Another instance with libraries that are already loaded; `prepare` is called with its board before the
     *  bring-up. */
    Instance(const BoardOptions& options, std::shared_ptr<const applet_host::AppletHost> host,
             DesignParameters design = DesignParameters::asSwitched,
             const applet_host::Prepare& prepare = {});
    /** For an applet that is up on a board. The session must outlive the instance. */
    Instance(std::shared_ptr<const applet_host::AppletHost> host, applet_host::Session& session);
    ~Instance();
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    const std::shared_ptr<const applet_host::AppletHost>& host() const { return m_host; }
    const applet_host::AppletFunctions& applet() const { return m_host->applet(); }
    /** Control functions of the virtual board; null for another board. */
    const applet_host::BoardFunctions& board() const { return m_host->board(); }
    Fg_Struct* fg() { return m_session ? m_session->fg() : m_offline.fg(); }
    /** The board; null offline. */
    LOOMdevice* device() const { return m_session ? m_session->device : nullptr; }
    /** The first top-level record of the parameter tree. */
    const RegisterInfo* parameterTree();
    /** True when the design's parameters are published although the user has not enabled that. */
    bool isDesignHidden() const { return m_isDesignHidden; }
    LoadHistory& loads() { return m_loads; }
    /** Ids of the parameters that writeValue() has set, and of the count that the board continues if a load may have set
     *  it; a reader may clear it. */
    std::set<int>& sets() { return m_sets; }

private:
    bool m_isDesignHidden = false;
    LoadHistory m_loads;
    std::set<int> m_sets;
    std::shared_ptr<const applet_host::AppletHost> m_host;
    std::shared_ptr<applet_host::Session> m_session; // null offline
    applet_host::GrabberHandle m_offline;
};

} // namespace applet_tools

#endif
