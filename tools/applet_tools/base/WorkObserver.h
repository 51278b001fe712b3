/** How far a piece of work is, for whoever waits for it. */
#ifndef APPLET_TOOLS_BASE_WORKOBSERVER_H
#define APPLET_TOOLS_BASE_WORKOBSERVER_H

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace applet_tools {

/** Lives as long as the work. All calls come from the thread that waits. */
class WorkObserver {
public:
    virtual ~WorkObserver() = default;

    /** How long to wait before the next update; negative when no update is wanted. */
    virtual std::chrono::milliseconds interval() const = 0;
    /** The work has come to "3 of 20"; to be shown with the next update. */
    virtual void setDetail(std::string detail) = 0;
    virtual void update() = 0;
};

/** Makes the observer of a piece of work that begins now. */
using ObserveWork = std::function<std::unique_ptr<WorkObserver>()>;

} // namespace applet_tools

#endif
