/** An open station: its parameters, events and time. */
#ifndef PRODUCER_DEVICE_DEVICESTATION_H
#define PRODUCER_DEVICE_DEVICESTATION_H

#include "base/Error.h"
#include "features/Feature.h"
#include "virtual_board/virtual_board.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace producer {

/** A parameter of the applet's tree. */
struct Parameter : applet_host::Parameter {
    std::size_t index; /**< in DeviceStation::parameters() */
};

/** A design event. */
struct EventKind {
    std::uint64_t id; /**< number of its bit in the mask, from 1 */
    std::uint64_t mask;
    std::string name;
};

/** The constructor opens the station, the destructor closes it. Thread-safe. */
class DeviceStation {
public:
    virtual ~DeviceStation() = default;
    DeviceStation(const DeviceStation&) = delete;
    DeviceStation& operator=(const DeviceStation&) = delete;

    const std::vector<Parameter>& parameters() const { return m_parameters; }
    /** Null if there is no parameter of that name. */
    const Parameter* find(const std::string& name) const;

    /** Throws IO. */
    virtual Value get(const Parameter& parameter) const = 0;
    std::int64_t integer(const char* name) const;
    double real(const char* name) const;
    /** Throws INVALID_VALUE, ACCESS_DENIED, BUSY or IO, with name, value and limits in the text. */
    virtual void set(const Parameter& parameter, const Value& value) const = 0;
    void set(const char* name, const Value& value) const;
    /** The present limits and access. Throws IO. */
    virtual applet_host::ParameterState state(const Parameter& parameter) const = 0;

    const std::vector<EventKind>& events() const { return m_events; }
    /** Null if there is no event with that mask. */
    const EventKind* eventOf(std::uint64_t mask) const;
    /** Requests the events of the mask; others may be omitted. Throws IO. */
    virtual void wantEvents(std::uint64_t mask) = 0;

    /** Simulated time in nanoseconds. Throws IO. */
    virtual std::uint64_t nanoseconds() = 0;
    static constexpr std::uint64_t nanosecondsPerTick = 1'000'000'000 / VBOARD_TICKS_PER_SECOND;

protected:
    DeviceStation() = default;
    void addParameter(applet_host::Parameter parameter);
    void addEvents(const std::vector<applet_host::EventName>& names);

private:
    const Parameter& known(const char* name) const;

    std::vector<Parameter> m_parameters;
    std::vector<EventKind> m_events;
};

/** Returns the error for a refusal of the applet with this code, FG_ERR_... */
Error refusal(int code, const std::string& text);

} // namespace producer

#endif
