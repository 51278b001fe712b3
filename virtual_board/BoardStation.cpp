#include "BoardStation.h"

#include "design_tables.h"
#include "numbers.h"
#include "vexo/fg_errors.h"
#include "virtual_board.h"

#include <algorithm>
#include <array>
#include <bit>

namespace vboard {
namespace {

using Row = int;

/** Rows of the parameters that the station knows, in its order. */
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

constexpr station::Parameter acting[] = {
    station::Parameter::softwarePulse,   station::Parameter::analyzerClear,
    station::Parameter::encoderCount,    station::Parameter::cameraDebugPixel,
    station::Parameter::cameraDebugFlag, station::Parameter::bufferDebugPixel,
    station::Parameter::bufferDebugFlag, station::Parameter::outputDebugPixel,
    station::Parameter::outputDebugFlag};

const station::Parameter* actingOf(Row row) {
    const auto* found = std::find_if(std::begin(acting), std::end(acting),
                                     [row](station::Parameter parameter) { return rowOf(parameter) == row; });
    return found != std::end(acting) ? found : nullptr;
}

} // namespace

bool BoardStation::isActing(int row) { return actingOf(row) != nullptr; }

void BoardStation::write(int row) {
    if (const station::Parameter* parameter = actingOf(row))
        m_station.write(*parameter, m_values.number(row));
}

std::uint64_t BoardStation::advance(std::uint64_t ticks) {
    const std::uint64_t now = m_station.advance(ticks);
    publishRuntime();
    return now;
}

std::int64_t BoardStation::waitForPicture(std::int64_t picture, std::uint64_t ticks) {
    const station::Station::Wait result = m_station.waitForPicture(picture, ticks);
    publishRuntime();
    switch (result) {
    case station::Station::Wait::arrived:
        break;
    case station::Station::Wait::timeout:
        return VBOARD_TIMEOUT;
    case station::Station::Wait::notRunning:
        return FG_ERR_NOT_AVAILABLE;
    }
    return m_station.lastPicture();
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
