/** Pictures for viewers, from an acquisition that runs while somebody looks. */
#ifndef SERVE_HTTP_STATE_LIVEPICTURES_H
#define SERVE_HTTP_STATE_LIVEPICTURES_H

#include "applet_tools/applet/Instance.h"
#include "applet_tools/station/frame_memory.h"
#include "applet_tools/station/missing_picture.h"
#include "serve/http/state/CommandThread.h"
#include "serve/http/state/SharedPicture.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace serve {

/**
 * The acquisition starts with the first request and stops some seconds after the last one; it gives way to the
 * acquisitions of commands. A thread waits for the board's pictures, and renders the latest one that a viewer
 * has asked for, at most thirty a second: each picture once, for all viewers.
 */
class LivePictures {
public:
    using Clock = std::chrono::steady_clock;
    using Picture = std::shared_ptr<const SharedPicture>;

    /** For a virtual board with a device. `factor`: speed of its time. */
    LivePictures(CommandThread& commands, applet_tools::Instance& instance, double factor);
    ~LivePictures();
    LivePictures(const LivePictures&) = delete;
    LivePictures& operator=(const LivePictures&) = delete;

    /** Called with each rendered picture, by the thread. Set before the first request. */
    void setOnPicture(std::function<void(const SharedPicture&)> function) {
        m_onPicture = std::move(function);
    }

    /** The latest picture, if its number is above `after`; waits for one until `due`. Null if there is none. Starts
     *  the acquisition if it does not run; throws the exceptions of that, such as Busy. */
    Picture newerThan(std::int64_t after, Clock::time_point due);
    /** A picture that is still kept; 0: the latest. Null if it is not. */
    Picture kept(std::int64_t number) const;
    std::vector<Picture> allKept() const;

    /** For the command thread: stops the acquisition until comeBack(), before another one. Nested calls count. */
    void giveWay(const std::string& reason);
    void comeBack();
    /** For the command thread: no acquisition runs for viewers while it is paused. */
    void setPaused(bool isPaused);
    /** Ends all waits for pictures. */
    void close();

    struct State {
        bool isRunning = false;
        bool isPaused = false;
        std::string gaveWayTo{};   /**< the command with an acquisition of its own; empty: none */
        std::int64_t pictures = 0; /**< of the viewers' acquisitions */
        std::int64_t rendered = 0;
        std::size_t keptBytes = 0;
        Clock::time_point lastPicture{}; /**< or the start of the acquisition */
        applet_tools::WaitStart start{}; /**< of the acquisition */
        bool hasPicture = false;         /**< the acquisition has made one */
        double rate = 0;                 /**< pictures a second of machine time, over the last seconds */
    };
    State state() const;

private:
    /** For the command thread. */
    void start();
    void stop();
    void stopUnwatched();

    /** With the lock. */
    bool isWatched() const;
    /** The thread. */
    void work();
    void watch(std::unique_lock<std::mutex>& lock);
    void render(std::unique_lock<std::mutex>& lock, std::int64_t picture);
    void keep(Picture picture);
    void note(std::int64_t picture);

    CommandThread& m_commands;
    applet_tools::Instance& m_instance;
    const double m_factor;
    std::function<void(const SharedPicture&)> m_onPicture;
    applet_tools::FrameMemory m_memory; // for the command thread, and the thread while it runs

    mutable std::mutex m_mutex; // guards the members below
    std::condition_variable m_changed;
    State m_state;
    int m_ways = 0;            // given and not taken back
    bool m_isWatching = false; // the thread uses the memory
    bool m_isStopPosted = false;
    bool m_isEnding = false;
    std::int64_t m_offset = 0; // of the acquisition's numbers
    std::int64_t m_last = 0;   // the last picture of the acquisition
    int m_waiting = 0;         // viewers that wait
    Clock::time_point m_lastAsked{};
    Clock::time_point m_rateSince{};
    std::int64_t m_rateFrom = 0;
    std::deque<Picture> m_kept; // the latest at the end

    std::thread m_thread; // last, as it uses the other members
};

} // namespace serve

#endif
