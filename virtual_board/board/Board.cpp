#include "virtual_board/board/Board.h"

#include "vexo/fg_api.h"
#include "vexo/fg_errors.h"
#include "virtual_board/board/BoardStation.h"
#include "virtual_board/board/Guard.h"
#include "virtual_board/board/numbers.h"

#include <algorithm>

namespace vboard {
namespace {

/** An access to the row that `id` leads to in this design; the row is -1 if there is none. */
Access parameterAccess(int kind, const Design& design, int id, int tag) {
    int row = rowOfId(id);
    if (row >= 0 && !design.has(row)) row = -1;
    if (tag == 0 && row >= 0) tag = tagOf(parameterRows()[indexOf(row)].type);
    return {
        .kind = static_cast<std::uint8_t>(kind), .row = static_cast<std::int16_t>(row), .tag = tag, .id = id};
}

Access registerAccess(int kind, int id) {
    const int row = findRegister(id);
    const bool isWide = row < 0 || registerRows()[indexOf(row)].bits > 32;
    return {.kind = static_cast<std::uint8_t>(kind),
            .row = static_cast<std::int16_t>(row),
            .tag = isWide ? FG_PARAM_UINT64 : FG_PARAM_UINT32,
            .id = id};
}

} // namespace

Board::Board() = default;
Board::~Board() = default;

void Board::release() {
    if (--m_holders == 0) delete static_cast<LOOMdevice*>(this);
}

Board::AccessLock::AccessLock(Board& board, int kind) : m_held(board.m_mutex) {
    board.m_mutex.lock();
    if (board.m_watcher.function != nullptr && board.m_log.includes(kind)) {
        const Watcher watcher = board.m_watcher;
        board.m_mutex.unlock(); // the host may call the board, or even end its thread
        watcher.function(watcher.context);
        board.m_mutex.lock();
    }
    board.followClock();
}

Board::AccessLock::~AccessLock() { m_held.unlock(); }

int Board::faultOf(const Access& access) { return m_faults.due(access, m_log.includes(access.kind)); }

int Board::finish(Access access, int code, const char* text) {
    if (code < 0) m_lastError = code;
    if (!m_log.includes(access.kind)) return code;
    access.code = code;
    if (text != nullptr)
        m_log.add(access, text);
    else
        m_log.add(access);
    return code;
}

int Board::set(const Design& design, int id, const void* value, int dma, int tag) {
    const AccessLock lock(*this, VBOARD_SET);
    Access access = parameterAccess(VBOARD_SET, design, id, tag);
    const char* text = Values::describe(access, value); // a failed set also logs its value
    if (const int fault = faultOf(access)) return finish(access, fault, text);
    if (access.row < 0 || value == nullptr || dma != 0) return finish(access, FG_ERR_INVALID_ARGUMENT, text);
    int code = m_values.store(access, value);
    if (code == FG_OK && m_station != nullptr && BoardStation::isActing(access.row))
        code = m_station->write(access.row);
    return finish(access, code, text);
}

int Board::get(const Design& design, int id, void* value, int dma, int tag) {
    const AccessLock lock(*this, VBOARD_GET);
    Access access = parameterAccess(VBOARD_GET, design, id, tag);
    if (const int fault = faultOf(access)) return finish(access, fault);
    if (access.row < 0 || value == nullptr || dma != 0) return finish(access, FG_ERR_INVALID_ARGUMENT);
    const char* text = nullptr;
    const int code = m_values.fetch(access, value, text);
    return finish(access, code, text);
}

int Board::readRegister(int id, std::uint64_t* value) {
    const AccessLock lock(*this, VBOARD_REGISTER_READ);
    Access access = registerAccess(VBOARD_REGISTER_READ, id);
    if (const int fault = faultOf(access)) return finish(access, fault);
    if (access.row < 0 || value == nullptr) return finish(access, FG_ERR_INVALID_ARGUMENT);
    const int code = m_values.fetchRegister(access, value);
    return finish(access, code);
}

int Board::writeRegister(int id, std::uint64_t value) {
    const AccessLock lock(*this, VBOARD_REGISTER_WRITE);
    Access access = registerAccess(VBOARD_REGISTER_WRITE, id);
    access.content = Access::number;
    access.value = value;
    if (const int fault = faultOf(access)) return finish(access, fault);
    if (access.row < 0) return finish(access, FG_ERR_INVALID_ARGUMENT);
    return finish(access, m_values.storeRegister(access));
}

int Board::resolve(const Design& design, const char* name) {
    const AccessLock lock(*this, VBOARD_RESOLVE);
    Access access{.kind = VBOARD_RESOLVE};
    access.id = faultOf(access);
    if (access.id == 0 && name != nullptr) {
        const int row = design.find(name);
        // The runtime's own parameters cannot be looked up by name.
        if (row >= 0 && parameterRows()[indexOf(row)].number == 0) access.id = idOfRow(row);
    }
    finish(access, FG_OK, name != nullptr ? name : "");
    return access.id;
}

int Board::lastError() {
    return static_cast<int>(call(entry("Fg_getLastErrorNumber"),
                                 [this]() REQUIRES(m_mutex) { return m_forcedError.value_or(m_lastError); }));
}

std::int64_t Board::call(int function, const std::function<std::int64_t()>& perform) {
    const AccessLock lock(*this, VBOARD_CALL);
    const Access access{.kind = VBOARD_CALL, .row = static_cast<std::int16_t>(function)};
    if (const int fault = faultOf(access)) return finish(access, fault);
    const auto forced = m_faults.answer(function);
    const std::int64_t answer = forced ? *forced : perform();
    // Returning the last error is not itself a failure.
    const bool isFailure = answer < 0 && function != entry("Fg_getLastErrorNumber");
    finish(access, isFailure ? static_cast<int>(answer) : FG_OK);
    return answer;
}

int Board::configure(int function, vboard_config_function* AttachedApplet::*which, const char* file) {
    AttachedApplet applet;
    const auto answer = static_cast<int>(call(function, [&]() REQUIRES(m_mutex) -> std::int64_t {
        applet = m_applet;
        return applet.*which != nullptr ? FG_OK : FG_ERR_NOT_SUPPORTED;
    }));
    return applet.*which != nullptr ? (applet.*which)(applet.fg, file) : answer;
}

BoardStation& Board::station() {
    if (m_station == nullptr) m_station = std::make_unique<BoardStation>(m_values, m_events);
    return *m_station;
}

void Board::followClock() noexcept {
    if (m_station == nullptr || !m_station->followsClock()) return;
    guarded([this]() REQUIRES(m_mutex) { // if memory runs out, its time lags
        m_station->follow();
        publishAcquisition();
    });
}

void Board::publishAcquisition() {
    static const int status = findParameter("FG_DMASTATUS");
    const bool isRunning = m_isImaging ? station().station().isRunning() : m_acquisition.isRunning();
    m_values.setNumber(status, isRunning ? 1 : 0);
}

int Board::startAcquisition(int dma, std::int64_t pictures, const void* memory) {
    if (dma != 0) return FG_ERR_INVALID_ARGUMENT;
    if (memory != nullptr) {
        const auto known = std::find(m_memories.begin(), m_memories.end(), memory);
        if (known == m_memories.end()) return FG_ERR_INVALID_ARGUMENT;
        if (!station().station().start((*known)->memory, pictures)) return FG_ERR_BUFFER;
        m_acquisition.stop();
        station().publishRuntime();
    } else {
        if (m_isImaging) station().station().stop();
        m_acquisition.start(pictures);
    }
    m_isImaging = memory != nullptr;
    ++m_acquisitions;
    publishAcquisition();
    return FG_OK;
}

int Board::stopAcquisition(int dma) {
    if (dma != 0) return FG_ERR_INVALID_ARGUMENT;
    m_acquisition.stop();
    if (m_isImaging) station().station().stop();
    publishAcquisition();
    return FG_OK;
}

std::int64_t Board::picture() {
    return m_isImaging ? station().station().lastPicture() : m_acquisition.picture();
}

std::int64_t Board::nextPicture() { return m_isImaging ? picture() : m_acquisition.nextPicture(); }

std::int64_t Board::waitForPicture(std::int64_t picture, int seconds) {
    if (!m_isImaging) return m_acquisition.waitForPicture(picture);
    return waitInStation(picture, static_cast<station::Tick>(std::max(seconds, 0)) * station::ticksPerSecond);
}

std::int64_t Board::waitInStation(std::int64_t picture, std::uint64_t ticks) {
    const station::Tick deadline =
        std::min(station::later(station().station().now(), ticks), station::lastTick);
    const std::uint64_t acquisition = m_acquisitions;
    while (acquisition == m_acquisitions) {
        const auto result = station().waitForPicture(picture, deadline);
        publishAcquisition();
        if (result) return *result;
        m_mutex.sleepUnlocked(station().pauseBefore(deadline));
        followClock();
    }
    return FG_ERR_NOT_AVAILABLE; // the acquisition has ended
}

std::int64_t Board::stationStatus(int what) {
    station::Station& station = this->station().station();
    const station::Losses losses = station.losses();
    switch (what) {
    case VBOARD_STATUS_TICK:
        return static_cast<std::int64_t>(station.now());
    case VBOARD_STATUS_LINES:
        return static_cast<std::int64_t>(station.lines());
    case VBOARD_STATUS_CAMERA:
        return static_cast<std::int64_t>(station.cameraState());
    case VBOARD_STATUS_FILL_LEVEL:
        return station.fillLevel();
    case VBOARD_STATUS_LOST_IMAGES:
        return static_cast<std::int64_t>(losses.images);
    case VBOARD_STATUS_IGNORED_TRIGGERS:
        return static_cast<std::int64_t>(losses.triggers);
    case VBOARD_STATUS_LOST_PULSES:
        return static_cast<std::int64_t>(losses.pulses);
    case VBOARD_STATUS_LOST_CAMERA_TRIGGERS:
        return static_cast<std::int64_t>(losses.cameraTriggers);
    case VBOARD_STATUS_DROPPED_CAMERA_TRIGGERS:
        return static_cast<std::int64_t>(losses.droppedTriggers);
    case VBOARD_STATUS_WAITS:
        return static_cast<std::int64_t>(losses.waits);
    case VBOARD_STATUS_DROPPED_EVENTS:
        return static_cast<std::int64_t>(losses.events);
    default:
        return 0;
    }
}

std::string Board::insertTrouble() const { return m_station != nullptr ? m_station->insertTrouble() : ""; }

void Board::addMemory(const vboard_frames& memory) { m_memories.push_back(&memory); }

void Board::removeMemory(const vboard_frames& memory) {
    std::erase(m_memories, &memory);
    if (m_station != nullptr) m_station->station().detach(*memory.memory);
    publishAcquisition();
}

void Board::reset() {
    const MutexLock lock(m_mutex);
    m_values.reset();
    m_faults.reset();
    m_log.clear();
    m_acquisition = {};
    m_station.reset();
    m_isImaging = false;
    ++m_acquisitions;
    m_events.reset();
    m_watcher = {};
    m_forcedError.reset();
    m_lastError = 0;
}

void Board::setWatcher(const Watcher& watcher) {
    const MutexLock lock(m_mutex);
    m_watcher = watcher;
}

void Board::attachApplet(const AttachedApplet& applet) {
    const MutexLock lock(m_mutex);
    m_applet = applet;
}

void Board::setLastError(int code) {
    const MutexLock lock(m_mutex);
    m_forcedError = code;
}

} // namespace vboard
