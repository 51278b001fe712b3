// Replaces functions of the C library. Includes no headers with conflicting declarations.

#undef _FORTIFY_SOURCE // the checked functions are inline, and cannot be defined again

#include "support/hindered_calls.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <sys/syscall.h>

extern "C" long syscall(long number, ...);

namespace {

std::atomic<bool> hindered{false};
std::atomic<unsigned> calls{0};

template <typename... Arguments>
long perform(long number, int descriptor, void* bytes, std::size_t size, Arguments... more) {
    if (hindered) {
        if (++calls % 2 == 1) {
            errno = EINTR;
            return -1;
        }
        size = std::min<std::size_t>(size, 7);
    }
    return syscall(number, descriptor, bytes, size, more...);
}

} // namespace

namespace support {

HinderedCalls::HinderedCalls() { hindered = true; }
HinderedCalls::~HinderedCalls() { hindered = false; }

} // namespace support

#pragma GCC visibility push(default)
extern "C" {
long read(int descriptor, void* bytes, std::size_t size);
long pread(int descriptor, void* bytes, std::size_t size, long position);
long write(int descriptor, const void* bytes, std::size_t size);
// Called by the compiler if it knows the buffer's size.
long __read_chk(int descriptor, void* bytes, std::size_t size, std::size_t room);
long __pread_chk(int descriptor, void* bytes, std::size_t size, long position, std::size_t room);

long read(int descriptor, void* bytes, std::size_t size) {
    return perform(SYS_read, descriptor, bytes, size);
}
long pread(int descriptor, void* bytes, std::size_t size, long position) {
    return perform(SYS_pread64, descriptor, bytes, size, position);
}
long write(int descriptor, const void* bytes, std::size_t size) {
    return perform(SYS_write, descriptor, const_cast<void*>(bytes), size);
}
long __read_chk(int descriptor, void* bytes, std::size_t size, std::size_t) {
    return read(descriptor, bytes, size);
}
long __pread_chk(int descriptor, void* bytes, std::size_t size, long position, std::size_t) {
    return pread(descriptor, bytes, size, position);
}
}
#pragma GCC visibility pop
