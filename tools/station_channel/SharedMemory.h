/** Memory that processes share: written once, then sealed read-only. */
#ifndef STATION_CHANNEL_SHAREDMEMORY_H
#define STATION_CHANNEL_SHAREDMEMORY_H

#include "applet_tools/base/Descriptor.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace station_channel {

class SharedMemory {
public:
    /** Memory to write to. Throws std::bad_alloc. */
    explicit SharedMemory(std::size_t size);
    /** Memory that another process has sealed and sent, to read. It cannot change or shrink. Throws Malformed if it is not
     *  such memory, or smaller, and std::bad_alloc. */
    SharedMemory(applet_tools::Descriptor descriptor, std::size_t size);
    ~SharedMemory();
    SharedMemory(SharedMemory&& other) noexcept;
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;
    SharedMemory& operator=(SharedMemory&&) = delete;

    /** Before seal(). */
    std::span<std::uint8_t> writable() { return {m_data, m_size}; }
    /** From now on it can only be read, by any process. The bytes may move. Throws std::bad_alloc. */
    void seal();

    std::span<const std::uint8_t> bytes() const { return {m_data, m_size}; }
    int descriptor() const { return m_descriptor.number(); }

private:
    void map(int protection, int flags);
    void unmap();

    applet_tools::Descriptor m_descriptor;
    std::size_t m_size;
    std::uint8_t* m_data = nullptr;
};

} // namespace station_channel

#endif
