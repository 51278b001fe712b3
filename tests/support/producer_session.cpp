#include "support/producer_session.h"

#include <stdexcept>

namespace support {

void ok(GC_ERROR code) {
    if (code == GC_ERR_SUCCESS) return;
    char text[1024] = "";
    size_t size = sizeof text;
    GC_ERROR last = 0;
    GCGetLastError(&last, text, &size);
    throw std::runtime_error(std::to_string(code) + ": " + text);
}

ProducerSession::ProducerSession(const std::string& id) {
    ok(GCInitLib());
    try {
        ok(TLOpen(&tl));
        ok(TLOpenInterface(tl, id.c_str(), &interface));
        ok(IFOpenDevice(interface, (id + "-process-0").c_str(), DEVICE_ACCESS_EXCLUSIVE, &device));
        ok(DevGetPort(device, &port));
        ok(DevOpenDataStream(device, (id + "-process-0-dma-0").c_str(), &stream));
        ok(GCRegisterEvent(stream, EVENT_NEW_BUFFER, &event));
    } catch (...) {
        GCCloseLib();
        throw;
    }
}

ProducerSession::~ProducerSession() { GCCloseLib(); }

std::uint64_t ProducerSession::address(const std::string& node) {
    if (description.empty()) {
        INFO_DATATYPE type = 0;
        std::uint64_t address = 0, length = 0;
        size_t size = sizeof address;
        ok(GCGetPortURLInfo(port, 0, URL_INFO_FILE_REGISTER_ADDRESS, &type, &address, &size));
        ok(GCGetPortURLInfo(port, 0, URL_INFO_FILE_SIZE, &type, &length, &size));
        description.resize(length);
        size = length;
        ok(GCReadPort(port, address, description.data(), &size));
    }
    const size_t start = description.find(" Name=\"" + node + "\"");
    const size_t found = description.find("<Address>0x", start);
    if (start == std::string::npos || found == std::string::npos)
        throw std::runtime_error("no register " + node);
    return std::stoull(description.substr(found + 11, 16), nullptr, 16);
}

std::int64_t ProducerSession::get(const std::string& feature) {
    std::int64_t value = 0;
    size_t size = sizeof value;
    ok(GCReadPort(port, address(feature + "_Value"), &value, &size));
    return value;
}

GC_ERROR ProducerSession::set(const std::string& feature, std::int64_t value) {
    size_t size = sizeof value;
    return GCWritePort(port, address(feature + "_Value"), &value, &size);
}

void ProducerSession::queueBuffers(unsigned count) {
    for (unsigned i = 0; i < count; ++i) {
        BUFFER_HANDLE buffer{};
        ok(DSAllocAndAnnounceBuffer(stream, streamNumber(STREAM_INFO_PAYLOAD_SIZE), nullptr, &buffer));
        ok(DSQueueBuffer(stream, buffer));
        buffers.push_back(buffer);
    }
}

void ProducerSession::start() {
    ok(DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, GENTL_INFINITE));
    ok(set("AcquisitionStart", 1));
}

BUFFER_HANDLE ProducerSession::fetch(std::uint64_t milliseconds) {
    EVENT_NEW_BUFFER_DATA data{};
    size_t size = sizeof data;
    return EventGetData(event, &data, &size, milliseconds) == GC_ERR_SUCCESS ? data.BufferHandle : nullptr;
}

std::uint64_t ProducerSession::bufferNumber(BUFFER_HANDLE buffer, std::int32_t command) {
    std::uint64_t value = 0;
    INFO_DATATYPE type = 0;
    size_t size = sizeof value;
    ok(DSGetBufferInfo(stream, buffer, command, &type, &value, &size));
    return value;
}

std::uint64_t ProducerSession::streamNumber(std::int32_t command) {
    std::uint64_t value = 0;
    INFO_DATATYPE type = 0;
    size_t size = sizeof value;
    ok(DSGetInfo(stream, command, &type, &value, &size));
    return value;
}

} // namespace support
