#include "entry/runtime/runtime_text.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <sys/mman.h>

namespace {

/** Minimum number of bytes cleared before a text is read, even if the previous text was shorter. */
constexpr std::size_t leastCleared = 256;

} // namespace

RuntimeTextRoom::RuntimeTextRoom(std::size_t length) : m_size(std::max(length, runtimeTextRoom) + 1) {
    void* pages =
        mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (pages == MAP_FAILED) throw std::bad_alloc();
    m_data = static_cast<char*>(pages);
}

RuntimeTextRoom::~RuntimeTextRoom() { munmap(m_data, m_size); }

void RuntimeTextRoom::clear() {
    std::memset(m_data, 0, m_used);
    m_used = leastCleared;
}

std::string RuntimeTextRoom::text() {
    const std::size_t length = strnlen(m_data, m_size - 1);
    m_used = std::max(leastCleared, length);
    return {m_data, length};
}
