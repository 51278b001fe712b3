/** Simulates reads and writes on a busy system: interrupted, or partial. */
#ifndef TESTS_SUPPORT_HINDERED_CALLS_H
#define TESTS_SUPPORT_HINDERED_CALLS_H

namespace support {

/** In its scope, every other read or write of the program ends with EINTR, and the rest move 7 bytes at most. */
class HinderedCalls {
public:
    HinderedCalls();
    ~HinderedCalls();
    HinderedCalls(const HinderedCalls&) = delete;
    HinderedCalls& operator=(const HinderedCalls&) = delete;
};

} // namespace support

#endif
