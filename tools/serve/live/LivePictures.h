/** Pictures for viewers, from an acquisition that runs while there are viewers. */
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

/** Receives all pictures for which it has memory. */
class PictureReceiver {
public:
    /** True if it has memory for a picture. Any thread may call it. */
    virtual bool wantsPicture() const = 0;
    /** Called by the thread of the pictures; must not block. */
    virtual void take(const SharedPicture& picture) = 0;

protected:
    ~PictureReceiver() = default;
};

/**
 * The acquisition starts with the first request and stops some seconds after the last one. It is suspended during the
 * acquisitions of commands. A thread waits for the board's pictures and renders those that receivers want. For viewers
 * it renders the latest picture on request, at most thirty a second. Each picture is rendered once, for all clients.
 */
class LivePictures {
public:
    using Clock = std::chrono::steady_clock;
    using Picture = std::shared_ptr<const SharedPicture>;

    /** For a virtual board with a device. `factor`: speed of its time; 0: time is stepped, and advances while a receiver
     *  wants a picture. */
    LivePictures(CommandThread& commands, applet_tools::Instance& instance, double factor);
    ~LivePictures();
    LivePictures(const LivePictures&) = delete;
    LivePictures& operator=(const LivePictures&) = delete;

    /** Sets a function that the thread calls with each picture for viewers. On return the previous function is no longer
     *  used. */
    void setOnPicture(std::function<void(const SharedPicture&)> function);

    /** Returns the latest picture if its number is above `after`; waits for one until `due`. Null if there is none.
     *  Starts the acquisition if it is not running, and throws its exceptions, such as Busy. */
    Picture newerThan(std::int64_t after, Clock::time_point due);
    /** For the command thread: adds a receiver, which then gets the pictures that it wants. Returns the number of the
     *  last picture before that. Starts the acquisition if it is not running, and throws its exceptions. */
    std::int64_t join(PictureReceiver& receiver);
    /** Removes the receiver, which is no longer used when the function returns. */
    void leave(PictureReceiver& receiver);
    /** Call this when a receiver wants pictures again. */
    void wake();

    /** Returns a kept picture; 0: the latest. Null if it is no longer kept. */
    Picture kept(std::int64_t number) const;
    std::vector<Picture> allKept() const;

    /** For the command thread: stops the acquisition until resume(), so that another one can run. Calls nest. */
    void suspend(const std::string& reason);
    void resume();
    /** For the command thread: while paused, no acquisition runs for viewers. */
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
        Clock::time_point lastPicture{}; /**< arrival of the last picture, or start of the acquisition */
        applet_tools::WaitStart start{}; /**< of the acquisition */
        bool hasPicture = false;         /**< the acquisition has delivered a picture */
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
    /** Waits for a picture without the lock, for a short time. Returns the number of the last picture, or an error. */
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
    int m_suspensions = 0;     // calls of suspend() without resume() yet
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
