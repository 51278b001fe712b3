#include "support/counted_malloc.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <limits>

namespace {

constexpr long never = std::numeric_limits<long>::max();

std::atomic<long> tried{0};
std::atomic<long> live{0};
std::atomic<long> firstToFail{never};
std::atomic<long> lastToFail{never};

} // namespace

namespace support {

long allocations() { return tried; }
long liveBlocks() { return live; }

ScarceMemory::ScarceMemory(long k, Shortage shortage) : m_first(tried + k) {
    lastToFail = shortage == Shortage::once ? m_first : never;
    firstToFail = m_first;
}

ScarceMemory::~ScarceMemory() { firstToFail = never; }

} // namespace support

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) && !__has_feature(address_sanitizer) &&  \
    !__has_feature(thread_sanitizer)
namespace {

bool isGranted() {
    const long number = ++tried;
    if (number < firstToFail || number > lastToFail) return true;
    errno = ENOMEM;
    return false;
}

void* counted(void* block) {
    if (block != nullptr) ++live;
    return block;
}

} // namespace

extern "C" {
#pragma GCC visibility push(default)
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* block);

void* malloc(size_t size) { return isGranted() ? counted(__libc_malloc(size)) : nullptr; }
void* calloc(size_t count, size_t size) {
    return isGranted() ? counted(__libc_calloc(count, size)) : nullptr;
}
void* memalign(size_t alignment, size_t size) {
    return isGranted() ? counted(__libc_memalign(alignment, size)) : nullptr;
}
void* aligned_alloc(size_t alignment, size_t size) { return memalign(alignment, size); }
int posix_memalign(void** block, size_t alignment, size_t size) {
    void* granted = memalign(alignment, size);
    if (granted == nullptr) return ENOMEM;
    *block = granted;
    return 0;
}
void free(void* block) {
    if (block != nullptr) --live;
    __libc_free(block);
}
void* realloc(void* block, size_t size) {
    if (block == nullptr) return malloc(size);
    if (size == 0) {
        free(block);
        return nullptr;
    }
    return isGranted() ? __libc_realloc(block, size) : nullptr;
}
#pragma GCC visibility pop
}
#endif
