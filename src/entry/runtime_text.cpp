#include "entry/runtime_text.h"

#include <cstring>
#include <new>
#include <sys/mman.h>

RuntimeTextRoom::RuntimeTextRoom(std::size_t size) : m_size(size + 1) {
    void* pages =
        mmap(nullptr, m_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (pages == MAP_FAILED) throw std::bad_alloc();
    m_data = static_cast<char*>(pages);
}

RuntimeTextRoom::~RuntimeTextRoom() { munmap(m_data, m_size); }

std::string RuntimeTextRoom::text() const { return {m_data, strnlen(m_data, m_size - 1)}; }
