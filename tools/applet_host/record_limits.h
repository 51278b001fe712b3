/** The limits in a record, in the type of its kind. */
#ifndef APPLET_HOST_RECORD_LIMITS_H
#define APPLET_HOST_RECORD_LIMITS_H

#include "vexo/register_info.h"

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

} // namespace applet_host

#endif
