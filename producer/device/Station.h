/** A virtual board with the applet on it: its parameters as the producer's values. */
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
    std::string path; /**< labels of its groups, from the outermost on, with a line feed between two */
};

/** An event of the design. */
struct EventKind {
    std::uint64_t id; /**< position in the design's list, from 1 */
    std::uint64_t mask;
    std::string name;
};

/**
 * Opened in the constructor, closed in the destructor. Any thread may call any function; the applet and the board have
 * locks of their own. A board that another process holds would be opened here.
 */
class Station {
public:
    /** Throws IO if the libraries are missing or the applet does not come up. */
    explicit Station(Libraries libraries);

    const std::vector<Parameter>& parameters() const { return m_parameters; }
    /** Null if there is none of that name. */
    const Parameter* find(const std::string& name) const;

    /** Throws IO. */
    Value get(const Parameter& parameter) const;
    std::int64_t integer(const char* name) const;
    double real(const char* name) const;
    /** Throws INVALID_VALUE, ACCESS_DENIED or IO, with name, value and limits in the text. */
    void set(const Parameter& parameter, const Value& value) const;
    void set(const char* name, const Value& value) const;
    /** As they are now; those of the kind where the applet says nothing of use. */
    static Limits limits(const Parameter& parameter);
    static bool isWritable(const Parameter& parameter, bool isAcquiring);

    const std::vector<EventKind>& events() const { return m_events; }
    /** Null for an event that the applet does not know. It keeps what it finds: one thread at a time calls it. */
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
    /** What is around the board: the camera and the inputs. */
    void connectMachine();
    const Parameter& known(const char* name) const;

    const Libraries m_libraries;
    mutable applet_host::Session m_session;
    std::vector<Parameter> m_parameters;
    std::vector<EventKind> m_events;
    std::map<const char*, const EventKind*>
        m_designEvents; // by the design's names, which stay where they are
};

/** A text of the applet, which may be ISO 8859-1. */
std::string toUtf8(const char* text);

} // namespace producer

#endif
