#include "virtual_board/board/BoardStation.h"

#include "vexo/fg_errors.h"
#include "virtual_board/board/numbers.h"
#include "virtual_board/images/ImageFile.h"
#include "virtual_board/tables/design_tables.h"
#include "virtual_board/virtual_board.h"

#include <algorithm>
#include <array>
#include <bit>
#include <string>
#include <utility>
#include <vector>

namespace vboard {
namespace {

using Row = int;

/** Rows of the parameters that the station reads, in its order. */
const std::array<Row, station::parameterCount>& rowsOfParameters() {
    static const auto rows = [] {
        std::array<Row, station::parameterCount> all{};
        for (std::size_t i = 0; i < all.size(); ++i)
            all[i] = findParameter(station::nameOf(static_cast<station::Parameter>(i)));
        return all;
    }();
    return rows;
}

Row rowOf(station::Parameter parameter) { return rowsOfParameters()[static_cast<std::size_t>(parameter)]; }

/** Limits the work under the board's lock to some hundredths of a second: of an access with the wall clock, and of
 *  a piece of a wait. */
constexpr std::uint64_t mostEventsOfAnAccess = std::uint64_t{1} << 20;
/** The longest time of the wall clock that is made up after that. */
constexpr WallClock::Duration longestLag(1);

constexpr station::Parameter acting[] = {
    station::Parameter::softwarePulse,    station::Parameter::analyzerClear,
    station::Parameter::encoderCount,     station::Parameter::cameraDebugMode,
    station::Parameter::cameraDebugPixel, station::Parameter::cameraDebugFlag,
    station::Parameter::bufferDebugMode,  station::Parameter::bufferDebugPixel,
    station::Parameter::bufferDebugFlag,  station::Parameter::outputDebugMode,
    station::Parameter::outputDebugPixel, station::Parameter::outputDebugFlag};

const station::Parameter* actingOf(Row row) {
    const auto* found = std::find_if(std::begin(acting), std::end(acting),
                                     [row](station::Parameter parameter) { return rowOf(parameter) == row; });
    return found != std::end(acting) ? found : nullptr;
}

/** Rows of a debug point, in the order of station::Raster::Point. */
struct DebugRows {
    Row insert, file;
};
const std::array<DebugRows, 3>& debugRows() {
    static const auto rows = [] {
        std::array<DebugRows, 3> all{};
        const std::string points[] = {"Camera", "Buffer_0", "OutputFormat"};
        for (std::size_t i = 0; i < all.size(); ++i) {
            const std::string name = "Device1_Process0_" + points[i] + "_Debug_";
            all[i] = {findParameter(name + "Insert"), findParameter(name + "DebugFile")};
        }
        return all;
    }();
    return rows;
}

std::size_t debugPointOf(Row insert) {
    const auto& rows = debugRows();
    return static_cast<std::size_t>(std::ranges::find(rows, insert, &DebugRows::insert) -
                                    rows.begin()); // 3: none
}

} // namespace

bool BoardStation::isActing(int row) {
    static const auto rows = [] { // called on each write
        std::vector<bool> all(parameterRows().size());
        for (const station::Parameter parameter : acting)
            all[static_cast<std::size_t>(rowOf(parameter))] = true;
        for (const DebugRows& point : debugRows())
            all[static_cast<std::size_t>(point.insert)] = true;
        return all;
    }();
    return rows[static_cast<std::size_t>(row)];
}

int BoardStation::write(int row) {
    if (const station::Parameter* parameter = actingOf(row))
        m_station.write(*parameter, m_values.number(row));
    else if (m_values.number(row) == 1)
        return insertFile(static_cast<station::Raster::Point>(debugPointOf(row)));
    return FG_OK;
}

int BoardStation::insertFile(station::Raster::Point point) {
    const std::string& path = m_values.text(debugRows()[static_cast<std::size_t>(point)].file);
    m_insertTrouble.clear();
    if (!m_station.isInputOn(point) || path.empty()) return FG_OK; // nothing to insert
    ImageOfFile image = readImage(path, point);
    m_insertTrouble = std::move(image.trouble);
    if (image.raster == nullptr) return FG_ERR_FILE_TYPE;
    if (m_station.inject(image.raster)) return FG_OK;
    m_insertTrouble =
        m_station.isRunning() ? "there is no room for it now" : "no acquisition runs that takes it";
    return FG_ERR_NOT_AVAILABLE;
}

void BoardStation::setClock(double factor) {
    if (factor > 0)
        m_clock.start(m_station.now(), factor, std::chrono::steady_clock::now());
    else
        m_clock.stop();
    m_restEnd = {};
}

void BoardStation::follow() {
    if (!m_clock.isRunning()) return;
    const WallClock::Instant begin = std::chrono::steady_clock::now();
    const station::Tick tick = m_clock.tick(begin);
    if (tick <= m_station.now() || begin < m_restEnd) return;
    m_station.advance(tick - m_station.now(), mostEventsOfAnAccess);
    publishRuntime();
    if (m_station.now() >= tick) return;
    // The machine is too slow for this clock. A rest as long as the work keeps the other accesses quick.
    const WallClock::Instant end = std::chrono::steady_clock::now();
    m_restEnd = end + (end - begin);
    m_clock.limitLag(m_station.now(), longestLag, end);
}

std::uint64_t BoardStation::advance(std::uint64_t ticks) {
    if (m_clock.isRunning()) return VBOARD_NOT_STEPPED;
    const std::uint64_t now = m_station.advance(ticks);
    publishRuntime();
    return now;
}

std::optional<std::int64_t> BoardStation::waitForPicture(std::int64_t picture, station::Tick deadline) {
    const station::Tick rest = deadline > m_station.now() ? deadline - m_station.now() : 0;
    const bool isStepped = !m_clock.isRunning();
    const station::Station::Wait result =
        m_station.waitForPicture(picture, isStepped ? rest : 0, mostEventsOfAnAccess);
    publishRuntime();
    switch (result) {
    case station::Station::Wait::arrived:
        break;
    case station::Station::Wait::notYet:
        if (m_station.now() >= deadline) return VBOARD_TIMEOUT;
        return std::nullopt;
    case station::Station::Wait::notRunning:
        return FG_ERR_NOT_AVAILABLE;
    }
    return m_station.lastPicture();
}

WallClock::Duration BoardStation::pauseBefore(station::Tick deadline) const {
    constexpr WallClock::Duration shortest(50e-6);
    constexpr WallClock::Duration longest(2e-3);
    if (!m_clock.isRunning()) return shortest; // lets a waiting thread take the board
    const station::Tick rest = deadline > m_station.now() ? deadline - m_station.now() : 0;
    return std::clamp(m_clock.durationOf(rest), shortest, longest);
}

void BoardStation::publishRuntime() {
    static const Row cameraStatus = findParameter("FG_CAMSTATUS_EXTENDED");
    static const Row transferLength = findParameter("FG_TRANSFER_LEN");
    m_values.setNumber(cameraStatus, m_station.cameraStatus());
    m_values.setNumber(transferLength, static_cast<std::uint32_t>(m_station.transferLength()));
}

double BoardStation::value(station::Parameter parameter) const {
    const Row row = rowOf(parameter);
    const Type type = parameterRows()[static_cast<std::size_t>(row)].type;
    return std::bit_cast<double>(converted(type, m_values.number(row), Type::f64));
}

std::span<const std::uint32_t> BoardStation::table(station::Colour colour) const {
    static const Row rows[] = {findParameter("Device1_Process0_LookupTable_R_LUTcontent"),
                               findParameter("Device1_Process0_LookupTable_G_LUTcontent"),
                               findParameter("Device1_Process0_LookupTable_B_LUTcontent")};
    return m_values.field(rows[static_cast<std::size_t>(colour)]);
}

void BoardStation::publish(station::Parameter parameter, double value) {
    const Row row = rowOf(parameter);
    const Type type = parameterRows()[static_cast<std::size_t>(row)].type;
    m_values.setNumber(row, converted(Type::f64, std::bit_cast<std::uint64_t>(value), type));
}

void BoardStation::raise(station::Event event, std::uint64_t times) { m_events.raise(nameOf(event), times); }

} // namespace vboard
