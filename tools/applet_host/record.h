/** The contents of a record of the applet's tree. */
#ifndef APPLET_HOST_RECORD_H
#define APPLET_HOST_RECORD_H

#include "vexo/register_info.h"

#include <cstdint>
#include <string>
#include <vector>

namespace applet_host {

/** Whether these are the limits of the elements of an array. */
template <typename Limits> constexpr bool isArrayLimits = requires(Limits limits) { limits.elementCount; };

/** Calls `use` with the limits of a numeric record, scalar or array; not at all for other records. */
template <typename Use> void withLimits(const RegisterInfo& record, Use use) {
    const RegisterInfoValue& value = record.value;
    switch (record.kind) {
    case REGISTER_KIND_UINT:
        return use(value.u32);
    case REGISTER_KIND_INT:
        return use(value.i32);
    case REGISTER_KIND_UINT64:
        return use(value.u64);
    case REGISTER_KIND_INT64:
        return use(value.i64);
    case REGISTER_KIND_DOUBLE:
        return use(value.f64);
    case REGISTER_KIND_UINT_FIELD:
        return use(value.u32Field);
    case REGISTER_KIND_INT_FIELD:
        return use(value.i32Field);
    case REGISTER_KIND_UINT64_FIELD:
        return use(value.u64Field);
    case REGISTER_KIND_INT64_FIELD:
        return use(value.i64Field);
    case REGISTER_KIND_DOUBLE_FIELD:
        return use(value.f64Field);
    default:
        return;
    }
}

/** Some records publish no usable limits: all are zero, or the minimum is above the maximum. */
template <typename Limits> bool areUsable(const Limits& limits) {
    if constexpr (!isArrayLimits<Limits>)
        if (limits.minimum == limits.maximum && limits.increment == 0) return false;
    return limits.minimum <= limits.maximum;
}

/** Calls `use` with a zero of the type in which the applet has numbers and entries of the kind. */
template <typename Use> void withNumberOf(std::int32_t kind, Use use) {
    switch (kind) {
    case REGISTER_KIND_ENUM:
    case REGISTER_KIND_INT:
        return use(std::int32_t{});
    case REGISTER_KIND_UINT64:
        return use(std::uint64_t{});
    case REGISTER_KIND_INT64:
        return use(std::int64_t{});
    case REGISTER_KIND_DOUBLE:
        return use(double{});
    default:
        return use(std::uint32_t{});
    }
}

bool isArray(const RegisterInfo& record);
/** Number of elements; 0 if the record is not of an array. */
std::uint32_t elementCount(const RegisterInfo& record);

/** An entry of an enumeration. Texts are UTF-8. */
struct EnumEntry {
    std::int32_t value;
    std::string symbol; /**< empty if it has none */
    std::string label;
};

/** The entries of an enumeration, in the published order; empty for other kinds. */
std::vector<EnumEntry> entriesOf(const RegisterInfo& record);

} // namespace applet_host

#endif
