/** Reads the parameters of an applet by their names. */
#ifndef APPLET_TOOLS_APPLET_PARAMETERREADER_H
#define APPLET_TOOLS_APPLET_PARAMETERREADER_H

#include "applet_tools/applet/ParameterList.h"
#include "applet_tools/applet/values.h"

#include <algorithm>
#include <initializer_list>
#include <string>

namespace applet_tools {

/** All functions throw Failure if the read fails. */
class ParameterReader {
public:
    ParameterReader(Instance& instance, const ParameterList& parameters)
        : m_instance(instance)
        , m_parameters(parameters) {}

    Value value(const char* name) const { return valueOf(m_instance, {&m_parameters.find(name)}); }
    /** The value in the parameter's own type. */
    template <typename T> T get(const char* name) const { return std::get<T>(value(name)); }
    double number(const char* name) const { return asDouble(value(name)); }
    /** True if the enumeration has one of these values. */
    bool is(const char* name, std::initializer_list<std::int32_t> entries) const {
        return std::ranges::find(entries, get<std::int32_t>(name)) != entries.end();
    }
    bool is(const char* name, std::int32_t entry) const { return is(name, {entry}); }
    /** "FG_HEIGHT = 1024 line". */
    std::string shown(const char* name) const {
        const Parameter& parameter = m_parameters.find(name);
        return parameter.name + " = " + valueWithUnit(parameter, valueOf(m_instance, {&parameter}));
    }

private:
    Instance& m_instance;
    const ParameterList& m_parameters;
};

} // namespace applet_tools

#endif
