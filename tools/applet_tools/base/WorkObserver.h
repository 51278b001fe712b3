/** Progress of a piece of work. */
#ifndef APPLET_TOOLS_BASE_WORKOBSERVER_H
#define APPLET_TOOLS_BASE_WORKOBSERVER_H

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace applet_tools {

/** Exists for the duration of the work. All calls come from the waiting thread. */
class WorkObserver {
public:
    virtual ~WorkObserver() = default;

    /** Time until the next update; negative if no update is wanted. */
    virtual std::chrono::milliseconds interval() const = 0;
    /** The detail of the progress, such as "3 of 20"; shown with the next update. */
    virtual void setDetail(std::string detail) = 0;
    virtual void update() = 0;
};

/** Makes the observer when the work begins. */
using ObserveWork = std::function<std::unique_ptr<WorkObserver>()>;

} // namespace applet_tools

#endif
