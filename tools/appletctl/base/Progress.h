/** A progress line for commands that take long. */
#ifndef APPLETCTL_BASE_PROGRESS_H
#define APPLETCTL_BASE_PROGRESS_H

#include "applet_tools/base/WorkObserver.h"
#include "appletctl/base/applet_tools.h"

#include <chrono>
#include <functional>
#include <string>

namespace appletctl {

/** A line on the terminal that is rewritten as the work proceeds, and erased at the end. It goes to the error
 *  output, only if both outputs are terminals, not with --json, --plain or -q, and not before half a second. */
class Progress : public WorkObserver {
public:
    explicit Progress(std::string title);
    ~Progress() override;
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    std::chrono::milliseconds interval() const override;
    void setDetail(std::string detail) override { m_detail = std::move(detail); }
    /** Shows the elapsed time and the detail. */
    void update() override;

private:
    std::string m_title;
    std::string m_detail;
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
    bool m_isWanted;
    bool m_isShown = false;
    bool m_endsBySignal = false; // Ctrl-C ends the program; otherwise it is handled elsewhere
};

/** Does work that gives no sign of its own, and shows meanwhile that it goes on. */
void withProgress(const std::string& title, const std::function<void()>& work);

} // namespace appletctl

#endif
