/** The station of a board: it reads and writes the board's values, and raises its events. */
#ifndef VIRTUAL_BOARD_BOARD_STATION_H
#define VIRTUAL_BOARD_BOARD_STATION_H

#include "Board.h"
#include "Events.h"
#include "Values.h"
#include "WallClock.h"
#include "station/Station.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace vboard {

/** The caller holds the board's mutex. */
class BoardStation final : station::Board {
public:
    /** Values and events must live as long. */
    BoardStation(Values& values, Events& events) : m_values(values), m_events(events) {}

    station::Station& station() { return m_station; }

    /** Whether a write of this row does something by being written. */
    static bool isActing(int row);
    /** Such a row was written. FG_OK, or why the image of a debug point's file was not taken: FG_ERR_FILE_TYPE,
     *  FG_ERR_NOT_AVAILABLE. */
    int write(int row);

    /** Time follows the machine's, so many times as fast; 0: it moves in steps. */
    void setClock(double factor);
    bool followsClock() const { return m_clock.isRunning(); }
    /** Lets time catch up with the machine's, if it follows it. */
    void follow();
    /** Lets time move by so many ticks; the new time, or VBOARD_NOT_STEPPED. */
    std::uint64_t advance(std::uint64_t ticks);
    /** Number of the last picture if this one is there, VBOARD_TIMEOUT from the tick `deadline` on, or
     *  FG_ERR_NOT_AVAILABLE. In steps, time moves on to that; else there may be no answer yet. */
    std::optional<std::int64_t> waitForPicture(std::int64_t picture, station::Tick deadline);
    /** How long to sleep before the next question for a picture. */
    WallClock::Duration pauseBefore(station::Tick deadline) const;
    /** Brings the runtime's parameters up to date that show the station. */
    void publishRuntime();

    /** Why the image of a debug point's file was not taken when it was asked for last; empty if it was. */
    const std::string& insertTrouble() const { return m_insertTrouble; }

private:
    int insertFile(station::Raster::Point point);

    // station::Board
    std::uint64_t revision() const override { return m_values.revision(); }
    std::uint64_t tableRevision() const override { return m_values.tableRevision(); }
    double value(station::Parameter parameter) const override;
    std::span<const std::uint32_t> table(station::Colour colour) const override;
    void publish(station::Parameter parameter, double value) override;
    void raise(station::Event event, std::uint64_t times) override;

    Values& m_values;
    Events& m_events;
    station::Station m_station{*this};
    WallClock m_clock;
    std::string m_insertTrouble;
};

/** Holds the board for a control function of the station. Its time has caught up with the machine's. */
class SCOPED_CAPABILITY StationLock {
public:
    explicit StationLock(Board& board) ACQUIRE(board.mutex()) : m_mutex(board.mutex()) {
        m_mutex.lock();
        board.followClock();
    }
    ~StationLock() RELEASE() { m_mutex.unlock(); }
    StationLock(const StationLock&) = delete;
    StationLock& operator=(const StationLock&) = delete;

private:
    Mutex& m_mutex;
};

} // namespace vboard

/** A memory of the host. It holds its board. */
struct vboard_frames {
    vboard::Board& board;
    const std::shared_ptr<station::HostMemory> memory;
};

#endif
