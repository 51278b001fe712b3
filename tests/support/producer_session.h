/** A test client of the GenTL producer. */
#ifndef TESTS_SUPPORT_PRODUCER_SESSION_H
#define TESTS_SUPPORT_PRODUCER_SESSION_H

#include "producer/gentl.h"

#include <cstdint>
#include <string>
#include <vector>

namespace support {

constexpr const char* interfaceId = "virtual-0";
constexpr const char* deviceId = "virtual-0-process-0";
constexpr const char* streamId = "virtual-0-process-0-dma-0";

/** The library with one handle of each kind; closes it in the destructor. Throws if a call fails. */
struct ProducerSession {
    explicit ProducerSession(const std::string& id = interfaceId);
    ~ProducerSession();
    ProducerSession(const ProducerSession&) = delete;
    ProducerSession& operator=(const ProducerSession&) = delete;

    /** The register's address in the remote device's description. */
    std::uint64_t address(const std::string& node);
    std::int64_t get(const std::string& feature);
    GC_ERROR set(const std::string& feature, std::int64_t value);
    /** Announces and queues buffers of the stream's payload size. */
    void queueBuffers(unsigned count);
    /** Starts stream and device. */
    void start();
    /** The next buffer; null after a timeout. */
    BUFFER_HANDLE fetch(std::uint64_t milliseconds = 5000);
    std::uint64_t bufferNumber(BUFFER_HANDLE buffer, std::int32_t command);
    std::uint64_t streamNumber(std::int32_t command);

    TL_HANDLE tl{};
    IF_HANDLE interface {};
    DEV_HANDLE device{};
    PORT_HANDLE port{};
    DS_HANDLE stream{};
    EVENT_HANDLE event{}; // of the stream, for new buffers
    std::vector<BUFFER_HANDLE> buffers{};
    std::string description{};
};

/** Throws if the code is not 0. */
void ok(GC_ERROR code);

} // namespace support

#endif
