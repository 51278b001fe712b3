/** A virtual board with the applet: its parameters as values for the producer. */
#ifndef PRODUCER_DEVICE_STATION_H
#define PRODUCER_DEVICE_STATION_H

#include "device/Libraries.h"
#include "features/Feature.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace producer {

/** A parameter of the applet's tree. */
struct Parameter {
    std::string name;
    const RegisterInfo* record;
    std::string path; /**< labels of its groups, outermost first, separated by line feeds */
};

/** A design event. */
struct EventKind {
    std::uint64_t id; /**< position in the design's list, from 1 */
    std::uint64_t mask;
    std::string name;
};

/**
 * Opened in the constructor, closed in the destructor. Thread-safe: the applet and the board have locks of their
 * own. A board in another process would be opened here.
 */
class Station {
public:
    /** Throws IO if the libraries are missing or the applet does not come up. */
    explicit Station(Libraries libraries);

    const std::vector<Parameter>& parameters() const { return m_parameters; }
    /** Null if there is no parameter of that name. */
    const Parameter* find(const std::string& name) const;

    /** Throws IO. */
    Value get(const Parameter& parameter) const;
    std::int64_t integer(const char* name) const;
    double real(const char* name) const;
    /** Throws INVALID_VALUE, ACCESS_DENIED or IO, with name, value and limits in the text. */
    void set(const Parameter& parameter, const Value& value) const;
    void set(const char* name, const Value& value) const;
    /** The present limits; those of the kind if the applet has no usable ones. */
    static Limits limits(const Parameter& parameter);
    static bool isWritable(const Parameter& parameter, bool isAcquiring);

    const std::vector<EventKind>& events() const { return m_events; }
    /** Null for an event unknown to the applet. It caches the result, so only one thread may call it at a
     *  time. */
    const EventKind* eventOfDesign(const char* designName);

    const applet_host::BoardFunctions& board() const { return m_libraries->board(); }
    const applet_host::AppletFunctions& applet() const { return m_libraries->applet(); }
    LOOMdevice* device() { return m_session.device; }
    Fg_Struct* fg() const { return m_session.fg(); }
    /** Simulated time in nanoseconds. */
    std::uint64_t nanoseconds() { return board().now(device()) * nanosecondsPerTick; }
    static constexpr std::uint64_t nanosecondsPerTick = 8;

private:
    void collect(const RegisterInfo& record, const std::string& path);
    void collectEvents();
    /** Sets up the board's environment: the camera and the inputs. */
    void connectMachine();
    const Parameter& known(const char* name) const;

    const Libraries m_libraries;
    mutable applet_host::Session m_session;
    std::vector<Parameter> m_parameters;
    std::vector<EventKind> m_events;
    std::map<const char*, const EventKind*>
        m_designEvents; // by the design's names; a map, so that pointers stay valid
};

/** Converts a text of the applet, which may be ISO 8859-1. */
std::string toUtf8(const char* text);

} // namespace producer

#endif
