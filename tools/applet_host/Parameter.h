/** Parameters of the applet's tree as plain data, without pointers into the applet. Texts are UTF-8. */
#ifndef APPLET_HOST_PARAMETER_H
#define APPLET_HOST_PARAMETER_H

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace applet_host {

/** Integers, booleans and enumerations; real numbers; texts; tables. */
using Value = std::variant<std::int64_t, double, std::string, std::vector<std::uint32_t>>;

/** Limits of a number, in the type of its kind. */
struct Limits {
    Value minimum, maximum, increment;

    bool operator==(const Limits&) const = default;
};

/** An entry of an enumeration. */
struct Entry {
    std::string name;
    std::int64_t value = 0;
    std::string label{};

    bool operator==(const Entry&) const = default;
};

/** What does not change while the applet is up. */
struct Parameter {
    std::string name;
    std::string path; /**< labels of its groups, outermost first, separated by line feeds */
    std::string label, description, unit;
    std::int32_t kind = 0;        /**< REGISTER_KIND_... */
    std::uint32_t elements = 0;   /**< of a table */
    std::vector<Entry> entries{}; /**< of an enumeration; their names are different */

    bool operator==(const Parameter&) const = default;
};

/** What changes with other parameters. */
struct ParameterState {
    Limits limits;            /**< of a number; those of the kind if the applet has no usable ones */
    std::uint32_t access = 0; /**< REGISTER_ACCESS_..., in any combination */

    /** `isAcquiring`: parameters that must not change during an acquisition are locked. */
    bool isWritable(bool isAcquiring) const;

    bool operator==(const ParameterState&) const = default;
};

/** An event of the design. */
struct EventName {
    std::uint64_t mask = 0;
    std::string name;

    bool operator==(const EventName&) const = default;
};

} // namespace applet_host

#endif
