/** Access to the parameters of an applet as plain data. */
#ifndef APPLET_HOST_PARAMETER_ACCESS_H
#define APPLET_HOST_PARAMETER_ACCESS_H

#include "applet_host/AppletHost.h"
#include "applet_host/Parameter.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace applet_host {

/** The applet refused an access; the text has the name, the value, the reason and the present limits. */
class Refused : public std::runtime_error {
public:
    Refused(int code, const std::string& text) : std::runtime_error(text), m_code(code) {}

    /** The applet's code, FG_ERR_... */
    int code() const { return m_code; }

private:
    int m_code;
};

/** For messages. */
std::string textOf(const Value& value);

Parameter describe(const RegisterInfo& record, const std::string& path);
/** The present state. The applet may change it meanwhile. */
ParameterState stateOf(const RegisterInfo& record);
/** Throws Refused. */
Value readValue(const AppletFunctions& applet, Fg_Struct* fg, const RegisterInfo& record);
/** Throws Refused, also for a value that is not of the parameter's kind. */
void writeValue(const AppletFunctions& applet, Fg_Struct* fg, const RegisterInfo& record, const Value& value);

/** The events of the design, in its order. */
std::vector<EventName> eventNames(const AppletFunctions& applet, Fg_Struct* fg);

} // namespace applet_host

#endif
