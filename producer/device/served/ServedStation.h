/** A station that another process serves. */
#ifndef PRODUCER_DEVICE_SERVED_SERVEDSTATION_H
#define PRODUCER_DEVICE_SERVED_SERVEDSTATION_H

#include "device/DeviceStation.h"
#include "device/served/StationLink.h"

#include <string>

namespace producer {

/** Caches constant data only; each access is a request to the station. */
class ServedStation final : public DeviceStation {
public:
    /** Throws IO. */
    explicit ServedStation(const std::string& name);

    Value get(const Parameter& parameter) const override;
    using DeviceStation::set;
    void set(const Parameter& parameter, const Value& value) const override;
    applet_host::ParameterState state(const Parameter& parameter) const override;
    void wantEvents(std::uint64_t mask) override;
    std::uint64_t nanoseconds() override;

    StationLink& link() { return m_link; }

private:
    mutable StationLink m_link;
};

} // namespace producer

#endif
