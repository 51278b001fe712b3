/** The station of a board: it reads and writes the board's values and raises its events. */
#ifndef VIRTUAL_BOARD_BOARD_BOARDSTATION_H
#define VIRTUAL_BOARD_BOARD_BOARDSTATION_H

#include "station/Station.h"
#include "virtual_board/board/Board.h"
#include "virtual_board/board/Events.h"
#include "virtual_board/board/Values.h"
#include "virtual_board/board/WallClock.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace vboard {

/** The caller holds the board's mutex. */
class BoardStation final : station::Board {
public:
    /** Values and events must outlive it. */
    BoardStation(Values& values, Events& events) : m_values(values), m_events(events) {}

    station::Station& station() { return m_station; }

    /** Whether writing this row triggers an action. */
    static bool isActing(int row);
    /** Call after such a row was written. FG_OK, or why the image of a debug point's file was not injected:
     *  FG_ERR_FILE_TYPE, FG_ERR_NOT_AVAILABLE. */
    int write(int row);

    /** Makes time follow the wall clock, `factor` times as fast; 0: it is stepped. */
    void setClock(double factor);
    bool followsClock() const { return m_clock.isRunning(); }
    /** Advances time to the wall clock, if it follows it. Time that would need too much work is not made up. */
    void follow();
    /** Advances time by `ticks`; returns the new time, or VBOARD_NOT_STEPPED. */
    std::uint64_t advance(std::uint64_t ticks);
    /** Number of the last picture if this one has arrived, VBOARD_TIMEOUT from the tick `deadline` on, or
     *  FG_ERR_NOT_AVAILABLE. Stepped time advances towards it by a piece. Without a result yet, call again. */
    std::optional<std::int64_t> waitForPicture(std::int64_t picture, station::Tick deadline);
    /** How long to sleep before waiting for a picture again. */
    WallClock::Duration pauseBefore(station::Tick deadline) const;
    /** Updates the runtime's parameters that show the state of the station. */
    void publishRuntime();

    /** Why the last insert of a debug point's file injected no image; empty if it did. */
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
    WallClock::Instant m_restEnd; // after an access that did not reach the clock
    std::string m_insertTrouble;
};

/** Holds the board for a control function of the station, with its time advanced to the wall clock. */
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

/** A memory of the host. It keeps its board alive. */
struct vboard_frames {
    vboard::Board& board;
    const std::shared_ptr<station::HostMemory> memory;
};

#endif
