/** The state of the HTTP interface, which its routes share. */
#ifndef SERVE_HTTP_STATE_SHAREDSTATION_H
#define SERVE_HTTP_STATE_SHAREDSTATION_H

#include "serve/http/state/EventHub.h"
#include "serve/http/state/parameter_documents.h"
#include "serve/live/LiveStation.h"

#include <atomic>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace serve {

struct SharedStation {
    explicit SharedStation(LiveStation& liveStation);
    ~SharedStation();
    SharedStation(const SharedStation&) = delete;
    SharedStation& operator=(const SharedStation&) = delete;

    applet_tools::Instance& instance() const { return access.live->instance(); }
    /** Returns why this station never shows pictures, with advice; empty if it may. Any thread may call it. */
    std::optional<HttpError> pictureRefusal() const;
    /** Returns the pictures. Throws that refusal. */
    LivePictures& requirePictures() const;
    /** Throws HttpError unless the board is virtual. For any thread. */
    void requireVirtual() const;
    /** Throws HttpError unless clients may set. For any thread. */
    void requireSettable() const;
    /** For the command thread: returns why there is no picture now. */
    applet_tools::MissingPicture whyNoPicture() const;
    /** For the command thread, often: records the counts of the source, for whyNoPicture(). */
    void watchSource();

    /** For the command thread: informs the streams of changed parameters. */
    void noteChanges();
    /** For the command thread: informs the streams of everything since the last call. */
    void sample();

    /** For a thread of a stream: does the same on the command thread, unless it was done within the period. */
    void sampleIfDue(std::chrono::milliseconds period);

    LiveStation& live;
    const StationAccess& access;
    CommandThread& commands;
    LivePictures* const pictures; // null without a board whose time follows the clock
    EventHub hub;
    ParameterDocuments parameters;
    applet_tools::StationFile setup; // camera, belt and scene as they are, for the command thread
    const std::string ownImage;      // of the scene at the start; empty: none
    std::mutex recording;            // held by a request that collects a series, which takes much memory
    std::atomic<std::uint64_t> sets = 0, refusedSets = 0, requests = 0, refusedRequests = 0;

    struct StationEvent {
        std::uint64_t tick;
        std::string name;
    };
    struct EventSpan {
        std::vector<StationEvent> events; /**< in the order of time */
        bool isCut = false;               /**< the first ones are missing */
    };
    /** Returns the latest events between two ticks, at most `most`. */
    EventSpan eventsBetween(std::uint64_t from, std::uint64_t to, std::size_t most) const;

private:
    using Clock = LivePictures::Clock;

    /** For the command thread: keeps the events, and informs the streams of them. */
    void keepEvents(const LiveStation::EventTicks& taken);

    /** The counts of the station at a moment. */
    struct Sample {
        Clock::time_point time;
        applet_tools::WaitStart counts;
    };

    std::deque<Sample> m_samples;        // of the acquisition's last second, for the command thread
    std::int64_t m_sampledPictures = 0;  // the number of pictures at the last sample
    applet_tools::WaitStart m_atPicture; // the counts when that number was seen first
    std::vector<applet_tools::ParameterState>
        m_states; // last states sent to the streams; empty without a stream
    std::vector<std::int64_t> m_losses;
    std::mutex m_sampling; // held by the thread that samples
    EventHub::Clock::time_point m_sampled{};
    mutable std::mutex m_mutex;                                // guards the member below
    std::map<std::string, std::deque<std::uint64_t>> m_events; // the latest ticks of each name
};

} // namespace serve

#endif
