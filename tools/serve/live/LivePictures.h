/** Pictures for viewers, from an acquisition that runs while somebody looks. */
#ifndef SERVE_LIVE_LIVEPICTURES_H
#define SERVE_LIVE_LIVEPICTURES_H

#include "applet_tools/applet/Instance.h"
#include "applet_tools/station/frame_memory.h"
#include "applet_tools/station/missing_picture.h"
#include "serve/live/CommandThread.h"
#include "serve/live/SharedPicture.h"

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

/** Takes all pictures, as far as it has memory for them. */
class PictureReceiver {
public:
    /** Whether it has memory for a picture. For any thread. */
    virtual bool wantsPicture() const = 0;
    /** For the thread of the pictures, which must not wait for anything here. */
    virtual void take(const SharedPicture& picture) = 0;

protected:
    ~PictureReceiver() = default;
};

/**
 * The acquisition starts with the first request and stops some seconds after the last one; it gives way to the
 * acquisitions of commands. A thread waits for the board's pictures, and renders those that receivers want, and
 * the latest one that a viewer has asked for, at most thirty a second: each picture once, for all of them.
 */
class LivePictures {
public:
    using Clock = std::chrono::steady_clock;
    using Picture = std::shared_ptr<const SharedPicture>;

    /** For a virtual board with a device. `factor`: speed of its time; 0: it is stepped, and moves while a receiver
     *  wants a picture. */
    LivePictures(CommandThread& commands, applet_tools::Instance& instance, double factor);
    ~LivePictures();
    LivePictures(const LivePictures&) = delete;
    LivePictures& operator=(const LivePictures&) = delete;

    /** Called with each picture for viewers, by the thread. When it returns, the one before is not used any more. */
    void setOnPicture(std::function<void(const SharedPicture&)> function);

    /** The latest picture, if its number is above `after`; waits for one until `due`. Null if there is none. Starts
     *  the acquisition if it does not run; throws the exceptions of that, such as Busy. */
    Picture newerThan(std::int64_t after, Clock::time_point due);
    /** For the command thread: from now on the receiver gets the pictures that it wants. Returns the number of the last
     *  one before that. Starts the acquisition if it does not run; throws the exceptions of that. */
    std::int64_t join(PictureReceiver& receiver);
    /** When it returns, the receiver is not used any more. */
    void leave(PictureReceiver& receiver);
    /** A receiver wants a picture again. */
    void wake();

    /** A picture that is still kept; 0: the latest. Null if it is not. */
    Picture kept(std::int64_t number) const;
    std::vector<Picture> allKept() const;

    /** For the command thread: stops the acquisition until resume(), before another one. Nested calls count. */
    void suspend(const std::string& reason);
    void resume();
    /** For the command thread: no acquisition runs for viewers while it is paused. */
    void setPaused(bool isPaused);
    /** Ends all waits for pictures. */
    void close();

    struct State {
        bool isRunning = false;
        bool isPaused = false;
        std::string suspendedBy{}; /**< the command with an acquisition of its own; empty: none */
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
    void startForReceivers();

    /** With the lock. */
    bool isWatched() const;
    bool isReceived() const;
    bool isViewed() const;
    bool mustStart() const;
    bool isOver() const;     // the acquisition
    bool isInDemand() const; // whether a receiver wants a picture; also at the end
    void retryStart();
    /** The thread. */
    void work();
    void watch(std::unique_lock<std::mutex>& lock);
    bool waitForDemand(std::unique_lock<std::mutex>& lock);
    void askBoard(std::unique_lock<std::mutex>& lock);
    /** The number of the last picture, or an error; waits for this one without the lock, for a short time. */
    std::int64_t waitOnBoard(std::unique_lock<std::mutex>& lock, std::int64_t picture);
    void renderWanted(std::unique_lock<std::mutex>& lock);
    void deliver(std::unique_lock<std::mutex>& lock, const Picture& picture);
    void render(std::unique_lock<std::mutex>& lock, std::int64_t picture);
    void keep(Picture picture);
    void note(std::int64_t picture);

    CommandThread& m_commands;
    applet_tools::Instance& m_instance;
    const double m_factor;
    applet_tools::FrameMemory m_memory; // for the command thread, and the thread while it runs

    mutable std::mutex m_mutex; // guards the members below
    std::condition_variable m_changed;
    State m_state;
    int m_suspensions = 0;     // given and not taken back
    bool m_isWatching = false; // the thread uses the memory
    bool m_isStopPosted = false;
    bool m_isStartPosted = false; // for receivers; stays if it fails, until there is a reason to try again
    bool m_isDelivering = false;  // receivers and the function below are used without the lock
    std::function<void(const SharedPicture&)> m_onPicture;
    bool m_isEnding = false;
    std::int64_t m_offset = 0; // of the acquisition's numbers
    std::int64_t m_last = 0;   // the last picture of the acquisition
    std::int64_t m_next = 1;   // the next one for receivers
    std::vector<PictureReceiver*> m_receivers;
    int m_waiting = 0; // viewers that wait
    Clock::time_point m_lastAsked{};
    Clock::time_point m_nextView{}; // earliest time of the next picture for viewers
    Picture m_shown;                // the latest one for viewers
    Clock::time_point m_rateSince{};
    std::int64_t m_rateFrom = 0;
    std::deque<Picture> m_kept; // the latest at the end

    std::thread m_thread; // last, as it uses the other members
};

} // namespace serve

#endif
