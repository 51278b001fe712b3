/** A virtual board with the applet, in this process. */
#ifndef PRODUCER_DEVICE_BOARD_BOARDSTATION_H
#define PRODUCER_DEVICE_BOARD_BOARDSTATION_H

#include "device/DeviceStation.h"
#include "device/Libraries.h"

#include <map>
#include <string>
#include <vector>

namespace producer {

/** Needs no lock: the applet and the board have their own. */
class BoardStation final : public DeviceStation {
public:
    /** Throws IO if the libraries are missing or the applet does not come up. */
    explicit BoardStation(Libraries libraries);

    Value get(const Parameter& parameter) const override;
    using DeviceStation::set;
    void set(const Parameter& parameter, const Value& value) const override;
    applet_host::ParameterState state(const Parameter& parameter) const override;
    void wantEvents(std::uint64_t) override {} // all events are delivered
    std::uint64_t nanoseconds() override { return board().now(device()) * nanosecondsPerTick; }

    /** Returns null for an event unknown to the applet. Caches the result, so only one thread at a time may call
     *  it. */
    const EventKind* eventOfDesign(const char* designName);

    const applet_host::BoardFunctions& board() const { return m_libraries->board(); }
    const applet_host::AppletFunctions& applet() const { return m_libraries->applet(); }
    LOOMdevice* device() { return m_session.device; }
    Fg_Struct* fg() const { return m_session.fg(); }

private:
    void collect(const RegisterInfo& record, const std::string& path);
    /** Sets up the board's environment: the camera and the inputs. */
    void connectMachine();

    const Libraries m_libraries;
    mutable applet_host::Session m_session;
    std::vector<const RegisterInfo*> m_records;             // of the parameters
    std::map<const char*, const EventKind*> m_designEvents; // by the design's names
};

} // namespace producer

#endif
