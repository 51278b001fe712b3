#include "device/served/ServedAcquisition.h"

#include "base/Error.h"

#include <algorithm>
#include <utility>

namespace producer {

ServedAcquisition::ServedAcquisition(ServedStation& station, MachineListener listener)
    : Acquisition(station)
    , m_station(station)
    , m_listener(std::move(listener)) {
    if (const auto loss = m_station.link().listen(this)) lose(*loss);
}

ServedAcquisition::~ServedAcquisition() {
    finish();
    m_station.link().listen(nullptr);
}

void ServedAcquisition::finish() { m_station.link().finish(); }

void ServedAcquisition::attach(PictureSink* sink) {
    Lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_isWriting; });
    m_sink = sink;
    if (sink != nullptr && m_loss) sink->lose(*m_loss);
    accept();
}

void ServedAcquisition::wake() {
    const Lock lock(m_mutex);
    accept();
}

void ServedAcquisition::accept() {
    if (!m_isRunning) return;
    std::uint64_t room = m_sink != nullptr ? m_sink->room() : 0;
    if (m_wanted != 0) room = std::min(room, m_wanted - m_delivered);
    if (m_accepted.received == m_received && m_accepted.room == room) return;
    const station_channel::Accept message{m_received, room};
    if (m_station.link().send(message)) m_accepted = message;
}

void ServedAcquisition::start(std::uint64_t pictures) {
    const std::lock_guard starting(m_starting);
    if (isRunning()) throw Error(GC_ERR_RESOURCE_IN_USE, "the acquisition runs already");
    const Geometry atStart = geometry();
    const auto started = m_station.link().ask<station_channel::Started>(station_channel::Start());
    const Lock lock(m_mutex);
    if (m_loss) throw Error(GC_ERR_IO, *m_loss);
    m_isRunning = true;
    m_geometry = atStart;
    m_wanted = pictures;
    m_delivered = m_received = 0;
    m_last = started.picture;
    m_accepted = {};
    accept();
}

void ServedAcquisition::stop() {
    const std::lock_guard starting(m_starting);
    {
        Lock lock(m_mutex);
        m_changed.wait(lock, [this] { return !m_isWriting; });
        if (!std::exchange(m_isRunning, false)) return;
    }
    try {
        m_station.link().ask<station_channel::Done>(station_channel::Stop());
    } catch (const Error&) { // it has ended
    }
}

bool ServedAcquisition::isRunning() {
    const Lock lock(m_mutex);
    return m_isRunning;
}

Geometry ServedAcquisition::geometryOf(const station_channel::Picture& picture) {
    // Others may have changed the parameters since the start.
    Geometry geometry = m_geometry;
    geometry.width = picture.width;
    geometry.height = std::max(geometry.height, picture.lines);
    geometry.format = chosenInsteadOf(pixelFormatOfBits(picture.bits));
    return geometry;
}

Picture ServedAcquisition::described(const station_channel::Picture& picture, const Geometry& geometry) {
    const std::uint64_t missed = picture.number > m_last ? picture.number - m_last - 1 : 0;
    m_last = picture.number;
    return {.number = picture.number,
            .nanoseconds = picture.firstLine * DeviceStation::nanosecondsPerTick,
            .lostBefore = picture.lostBefore + missed,
            .lines = picture.lines,
            .geometry = geometry};
}

void ServedAcquisition::countDelivered() {
    ++m_delivered;
    if (m_wanted == 0 || m_delivered < m_wanted) return;
    m_isRunning = false;
    m_station.link().send(station_channel::Stop());
}

void ServedAcquisition::show(const station_channel::Picture& picture,
                             const station_channel::SharedMemory& memory) {
    Lock lock(m_mutex);
    ++m_received;
    const Geometry geometry = geometryOf(picture);
    const bool isExpected = m_isRunning && m_sink != nullptr && geometry.format != nullptr;
    const auto buffer = isExpected ? m_sink->begin() : std::nullopt;
    if (!buffer) return accept(); // not wanted, or no buffer is left

    PictureSink& sink = *m_sink; // stays while m_isWriting is set
    producer::Picture made = described(picture, geometry);
    const bool isWhole = geometry.format->appletBytes(picture.width) * picture.lines <= picture.size;
    m_isWriting = true;
    lock.unlock(); // copying takes long
    put(made, isWhole ? memory.bytes().data() : nullptr, *buffer);
    lock.lock();
    m_isWriting = false;

    sink.end(made);
    countDelivered();
    accept();
    m_changed.notify_all();
}

void ServedAcquisition::happen(const station_channel::Event& event) {
    if (const EventKind* kind = m_station.eventOf(event.mask))
        m_listener.onEvent(*kind, event.tick * DeviceStation::nanosecondsPerTick);
}

void ServedAcquisition::lose(const std::string& reason) {
    {
        const Lock lock(m_mutex);
        m_loss = reason;
        m_isRunning = false;
        if (m_sink != nullptr) m_sink->lose(reason);
    }
    m_listener.onLoss(reason);
}

} // namespace producer
