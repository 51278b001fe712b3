/**
 * Changes to records of the tree while the runtime may be reading them.
 *
 * Each change is one atomic store of the field's own width, each read of such a field one atomic load. A null
 * record, which means that the tree could not add one, is ignored.
 */
#ifndef CATALOGUE_LIVE_RECORDS_H
#define CATALOGUE_LIVE_RECORDS_H

#include "support/quietly.h"
#include "vexo/register_info.h"

#include <algorithm>
#include <atomic>
#include <limits>

namespace catalogue {

template <typename T> void storeLive(T& field, T value) {
    std::atomic_ref<T>(field).store(value, std::memory_order_relaxed);
}

/** Reads a field that may be changing. C++20 has no reference to an atomic constant. */
template <typename T> T loadLive(const T& field) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
    return std::atomic_ref<T>(const_cast<T&>(field)).load(std::memory_order_relaxed);
}

inline void publishAccess(RegisterInfo* record, std::uint32_t access) {
    if (record != nullptr) storeLive(record->access, access);
}

inline std::uint32_t publishedAccess(const RegisterInfo* record) {
    return record != nullptr ? loadLive(record->access) : std::uint32_t{REGISTER_ACCESS_READ};
}

inline void publishMaximum(RegisterInfo* record, std::uint32_t maximum) {
    if (record != nullptr) storeLive(record->value.u32.maximum, maximum);
}

inline void publishMaximum(RegisterInfo* record, double maximum) {
    if (record != nullptr) storeLive(record->value.f64.maximum, maximum);
}

/** The published form of a maximum that must stay above zero. */
inline double aboveZero(double maximum) { return std::max(maximum, std::numeric_limits<double>::min()); }

/** Publishes the result of `compute`; if it fails, the old maximum stays and no error is reported. */
template <typename Compute> void republishMaximum(RegisterInfo* record, Compute compute) {
    quietly([&] { publishMaximum(record, compute()); });
}

} // namespace catalogue

#endif
