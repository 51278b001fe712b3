/** Pictures of a station that another process serves. */
#ifndef PRODUCER_DEVICE_SERVED_SERVEDACQUISITION_H
#define PRODUCER_DEVICE_SERVED_SERVEDACQUISITION_H

#include "device/Acquisition.h"
#include "device/Machine.h"
#include "device/served/ServedStation.h"

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace producer {

/**
 * Delivers the station's own pictures, with its numbers. The station sends a picture only if a buffer is queued, and
 * does not wait for this client: the client misses pictures that arrive while it has no buffer. The thread of the link
 * copies each picture into its buffer.
 */
class ServedAcquisition final : public Acquisition, LinkListener {
public:
    /** The listener's functions are called by the thread of the station's link. */
    ServedAcquisition(ServedStation& station, MachineListener listener);
    ~ServedAcquisition() override;

    void attach(PictureSink* sink) override;
    void wake() override;
    void start(std::uint64_t pictures) override;
    void stop() override;
    bool isRunning() override;
    void finish() override;

private:
    using Lock = std::unique_lock<std::mutex>;

    void show(const station_channel::Picture& picture, const station_channel::SharedMemory& memory) override;
    void happen(const station_channel::Event& event) override;
    void lose(const std::string& reason) override;

    /** With the lock: sends the number of available buffers to the station. */
    void accept();
    /** With the lock. */
    Geometry geometryOf(const station_channel::Picture& picture);
    /** With the lock: describes the picture for the sink, and makes it the last one. */
    Picture described(const station_channel::Picture& picture, const Geometry& geometry);
    /** With the lock: counts a picture; ends the acquisition after the last wanted one. */
    void countDelivered();

    ServedStation& m_station;
    const MachineListener m_listener;
    std::mutex m_starting; // held while an acquisition is started or stopped

    std::mutex m_mutex; // guards the members below
    std::condition_variable m_changed;
    PictureSink* m_sink = nullptr;
    bool m_isRunning = false;
    bool m_isWriting = false;   // the sink is used without the lock
    Geometry m_geometry;        // at the start
    std::uint64_t m_wanted = 0; // pictures; 0: no end
    std::uint64_t m_delivered = 0, m_received = 0;
    std::uint64_t m_last = 0; // number of the last delivered picture, or of the last one before the start
    station_channel::Accept m_accepted; // the last one that was sent
    std::optional<std::string> m_loss;
};

} // namespace producer

#endif
