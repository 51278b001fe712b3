/**
 * The program's own malloc family, in the place of the C library's for every library of the process: operator
 * new of the standard library ends here as well. It counts, and fails where a test wants it.
 *
 * The address and the thread sanitizer own malloc: under them nothing is counted and nothing fails.
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

/** For a scope, allocation number `k` from its beginning fails (1: the first), alone or with all behind it. */
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
