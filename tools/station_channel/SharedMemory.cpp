#include "station_channel/SharedMemory.h"

#include "station_channel/messages.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <new>
#include <utility>

namespace station_channel {
namespace {

constexpr int neededSeals = F_SEAL_WRITE | F_SEAL_SHRINK;

} // namespace

SharedMemory::SharedMemory(std::size_t size)
    : m_descriptor(memfd_create("picture", MFD_CLOEXEC | MFD_ALLOW_SEALING))
    , m_size(size) {
    if (!m_descriptor || ftruncate(m_descriptor.number(), static_cast<off_t>(size)) != 0)
        throw std::bad_alloc();
    map(PROT_READ | PROT_WRITE, MAP_SHARED);
}

SharedMemory::SharedMemory(applet_tools::Descriptor descriptor, std::size_t size)
    : m_descriptor(std::move(descriptor))
    , m_size(size) {
    struct stat status {};
    const int seals = m_descriptor ? fcntl(m_descriptor.number(), F_GET_SEALS) : -1;
    if (seals < 0 || (seals & neededSeals) != neededSeals || fstat(m_descriptor.number(), &status) != 0 ||
        std::cmp_less(status.st_size, size))
        throw Malformed("a picture came without its memory");
    map(PROT_READ, MAP_PRIVATE);
}

SharedMemory::~SharedMemory() { unmap(); }

SharedMemory::SharedMemory(SharedMemory&& other) noexcept
    : m_descriptor(std::move(other.m_descriptor))
    , m_size(std::exchange(other.m_size, 0))
    , m_data(std::exchange(other.m_data, nullptr)) {}

void SharedMemory::map(int protection, int flags) {
    if (m_size == 0) return;
    // All pages at once: page after page, as they are used, takes longer.
    void* const address = mmap(nullptr, m_size, protection, flags | MAP_POPULATE, m_descriptor.number(), 0);
    if (address == MAP_FAILED) throw std::bad_alloc();
    m_data = static_cast<std::uint8_t*>(address);
}

void SharedMemory::unmap() {
    if (m_data != nullptr) munmap(std::exchange(m_data, nullptr), m_size);
}

void SharedMemory::seal() {
    unmap();
    if (fcntl(m_descriptor.number(), F_ADD_SEALS, neededSeals | F_SEAL_GROW | F_SEAL_SEAL) != 0)
        throw std::bad_alloc();
    map(PROT_READ, MAP_PRIVATE); // older kernels refuse a shared mapping of sealed memory
}

} // namespace station_channel
