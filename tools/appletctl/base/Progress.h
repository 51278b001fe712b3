/** What a person sees while a command takes its time. */
#ifndef APPLETCTL_BASE_PROGRESS_H
#define APPLETCTL_BASE_PROGRESS_H

#include "applet_tools/base/WorkObserver.h"
#include "appletctl/base/applet_tools.h"

#include <chrono>
#include <string>

namespace appletctl {

/** One line on the terminal that is rewritten as the work goes on, and erased at its end. It goes to the error output,
 *  only when both outputs are terminals, not with --json, --plain or -q, and not before half a second. */
class Progress : public WorkObserver {
public:
    explicit Progress(std::string title);
    ~Progress() override;
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    std::chrono::milliseconds interval() const override;
    void setDetail(std::string detail) override { m_detail = std::move(detail); }
    /** Shows the time that has passed, and the detail. */
    void update() override;

private:
    std::string m_title;
    std::string m_detail;
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
    bool m_isWanted;
    bool m_isShown = false;
    bool m_endsBySignal = false; // Ctrl-C ends the program; else it is awaited elsewhere
};

} // namespace appletctl

#endif
