/**
 * Copies between a flat array and a caller's record of some of its elements, counted in the width that the
 * record gives. A null record does nothing. Bounds are not checked here: the caller checks index and count.
 */
#ifndef SUPPORT_FIELD_COPY_H
#define SUPPORT_FIELD_COPY_H

#include "vexo/fg_api.h"

#include <cstddef>
#include <cstring>

namespace field_copy {

/** Width in bytes of the elements of a run; 0 if the tag is not that of a number. */
constexpr std::size_t elementWidth(FgParamTypes type) {
    switch (type) {
    case FG_PARAM_INT32:
    case FG_PARAM_UINT32:
        return 4;
    case FG_PARAM_INT64:
    case FG_PARAM_UINT64:
    case FG_PARAM_DOUBLE:
        return 8;
    default:
        return 0;
    }
}

/** Whether a run is within an array of `size` elements of its width. */
constexpr bool isInside(const FieldParameterAccess& run, std::size_t size) {
    return run.count <= size && run.index <= size - run.count;
}

template <typename Element, typename Record> void set(Element* array, const Record* record) {
    if (record != nullptr) array[record->index] = record->value;
}

template <typename Element, typename Record> void get(const Element* array, Record* record) {
    if (record != nullptr) record->value = array[record->index];
}

inline void setRun(void* array, const FieldParameterAccess* run) {
    if (run == nullptr || run->values == nullptr) return;
    const std::size_t width = elementWidth(run->vtype);
    if (width == 0) return;
    std::memmove(static_cast<char*>(array) + width * run->index, run->values, width * run->count);
}

inline void getRun(const void* array, const FieldParameterAccess* run) {
    if (run == nullptr || run->values == nullptr) return;
    const std::size_t width = elementWidth(run->vtype);
    if (width == 0) return;
    std::memmove(run->values, static_cast<const char*>(array) + width * run->index, width * run->count);
}

} // namespace field_copy

#endif
