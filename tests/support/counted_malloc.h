/**
 * The program's own malloc family replaces that of the C library for every library of the process, including operator
 * new of the standard library. It counts allocations and fails on request.
 *
 * The address and the thread sanitizer replace malloc themselves: under them nothing is counted and nothing fails.
 */
#ifndef TESTS_SUPPORT_COUNTED_MALLOC_H
#define TESTS_SUPPORT_COUNTED_MALLOC_H

#include "support/sanitizers.h"

namespace support {

inline constexpr bool mallocIsCounted = !underAddressSanitizer && !underThreadSanitizer;

/** Allocations tried so far. */
long allocations();
/** Blocks allocated and not yet freed. */
long liveBlocks();

enum class Shortage { once, fromThenOn };

/** In its scope, allocation number `k` fails (1: the first), alone or with all after it. */
class ScarceMemory {
public:
    ScarceMemory(long k, Shortage shortage);
    ~ScarceMemory();
    ScarceMemory(const ScarceMemory&) = delete;
    ScarceMemory& operator=(const ScarceMemory&) = delete;

    /** True once an allocation has failed. */
    bool struck() const { return allocations() >= m_first; }

private:
    const long m_first;
};

} // namespace support

#endif
