#include "applet_tools/applet/Instance.h"

#include "applet_tools/applet/Effort.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"

#include <cstdlib>
#include <optional>
#include <utility>

namespace applet_tools {
namespace {

/** The likely reason for a failed bring-up, derived from the code. */
std::string bringUpHint(int code) {
    if (code == FG_ERR_UNRESOLVED)
        return "; the runtime library libgrabcore5.so or its init function was not found by the applet";
    if (code != FG_ERR_INIT) return "";
    if (std::getenv("__VEXO_FORCE_EXTERNAL_TSL") != nullptr)
        return "; __VEXO_FORCE_EXTERNAL_TSL is set, so the design loader looked for the file "
               "Grab_TwinLaneLineColor.tsl: put it where the loader looks, or unset the variable";
    return "; the design loader did not take the design image in the library";
}

constexpr const char* designSwitch = "VEXO_ENABLE_DLOOMA";

bool isSwitchedOn(const char* variable) {
    const char* text = std::getenv(variable);
    if (text == nullptr) return false;
    const std::string word = lowerCase(text);
    return word == "yes" || word == "true" || word == "on" || word == "1";
}

/** Enables the publication of the design's parameters for a scope. */
class PublishedDesign {
public:
    PublishedDesign() {
        if (const char* before = std::getenv(designSwitch)) m_before = before;
        setenv(designSwitch, "1", 1);
    }
    ~PublishedDesign() {
        if (m_before)
            setenv(designSwitch, m_before->c_str(), 1);
        else
            unsetenv(designSwitch);
    }
    PublishedDesign(const PublishedDesign&) = delete;
    PublishedDesign& operator=(const PublishedDesign&) = delete;

private:
    std::optional<std::string> m_before;
};

} // namespace

applet_host::Locations locationsFor(const BoardOptions& options) {
    applet_host::Locations where = applet_host::Locations::beside();
    if (!options.applet.empty()) where.applet = options.applet;
    if (options.isOnSystem()) where.virtualBoard.clear();
    where.bridge = options.bridge;
    return where;
}

Instance::Instance(const BoardOptions& options, DesignParameters design)
    : Instance(options, std::make_shared<applet_host::AppletHost>(locationsFor(options)), design) {}

Instance::Instance(const BoardOptions& options, std::shared_ptr<const applet_host::AppletHost> host,
                   DesignParameters design, const applet_host::Prepare& prepare)
    : m_host(std::move(host)) {
    ++effort().bringUps;
    if (options.offline) {
        const int code = applet().Info(FG_INFO_CREATE_OFFLINE, 0, 0, nullptr, &m_offline.object);
        if (code != FG_OK) throw Unavailable("no offline instance could be created: " + codeInWords(code));
        return;
    }
    std::optional<PublishedDesign> published;
    if (design == DesignParameters::published) {
        m_isDesignHidden = !isSwitchedOn(designSwitch);
        published.emplace();
    }
    // This flag leaves out the pass that writes the defaults.
    constexpr int joinsRunningBoard = 1;
    m_session =
        std::make_shared<applet_host::Session>(*m_host, options.look ? joinsRunningBoard : 0, prepare);
    if (m_session->handle.object == nullptr) {
        throw Unavailable("the applet did not come up on the board: " + codeInWords(m_session->error) +
                          bringUpHint(m_session->error));
    }
}

Instance::Instance(std::shared_ptr<const applet_host::AppletHost> host, applet_host::Session& session)
    : m_host(std::move(host))
    , m_session(std::shared_ptr<void>(), &session) {} // not owned

Instance::~Instance() {
    if (m_offline.object != nullptr) applet().Info(FG_INFO_DESTROY_OFFLINE, 0, 0, m_offline.object, nullptr);
}

const RegisterInfo* Instance::parameterTree() {
    // Fg_getParameterInfo needs a runtime, and an offline instance has none.
    RegisterInfo* root = nullptr;
    if (m_session)
        root = applet().Fg_getParameterInfo(fg(), 0);
    else
        applet().Info(FG_INFO_OFFLINE_TREE, 0, 0, m_offline.object, &root);
    if (root == nullptr) throw Failure("the applet has no parameter tree");
    return root;
}

} // namespace applet_tools
