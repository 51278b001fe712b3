/** The station of a board: it reads and writes the board's values, and raises its events. */
#ifndef VIRTUAL_BOARD_BOARD_STATION_H
#define VIRTUAL_BOARD_BOARD_STATION_H

#include "Board.h"
#include "Events.h"
#include "Values.h"
#include "station/Station.h"

#include <cstdint>
#include <memory>

namespace vboard {

/** The caller holds the board's mutex. */
class BoardStation final : station::Board {
public:
    /** Values and events must live as long. */
    BoardStation(Values& values, Events& events) : m_values(values), m_events(events) {}

    station::Station& station() { return m_station; }

    /** Whether a write of this row does something by being written. */
    static bool isActing(int row);
    /** Such a row was written. */
    void write(int row);

    /** Lets time move by so many ticks; the new time. */
    std::uint64_t advance(std::uint64_t ticks);
    /** Number of the last picture once this one is there, VBOARD_TIMEOUT or FG_ERR_NOT_AVAILABLE. Takes no more than so
     *  many ticks. */
    std::int64_t waitForPicture(std::int64_t picture, std::uint64_t ticks);
    /** Brings the runtime's parameters up to date that show the station. */
    void publishRuntime();

private:
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
};

} // namespace vboard

/** A memory of the host. It holds its board. */
struct vboard_frames {
    vboard::Board& board;
    const std::shared_ptr<station::HostMemory> memory;
};

#endif
