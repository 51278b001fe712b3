// Exported: ports and events.

#include "base/EventQueue.h"
#include "exports/call.h"
#include "modules/Module.h"

using namespace producer;

namespace {

std::shared_ptr<Module> moduleOf(void* handle) { return HandleTable::find<Module>(handle, "a module"); }
std::shared_ptr<EventQueue> eventOf(void* handle) {
    return HandleTable::find<EventQueue>(handle, "an event");
}

/** Performs the entries in order; stores in `count` how many were done. */
template <typename Access> void forAll(PORT_REGISTER_STACK_ENTRY* entries, size_t* count, Access access) {
    size_t& done = required(count, "count");
    const size_t all = done;
    done = 0;
    if (all == 0) throw Error(GC_ERR_INVALID_PARAMETER, "there are no entries");
    required(entries, "entries");
    for (; done < all; ++done) {
        access(entries[done]);
    }
}

std::span<uint8_t> bytesOf(void* buffer, const size_t* size) {
    auto* const first = static_cast<uint8_t*>(&required(static_cast<uint8_t*>(buffer), "buffer"));
    if (required(size, "size") == 0) throw Error(GC_ERR_INVALID_PARAMETER, "there are no bytes to access");
    return {first, *size};
}

} // namespace

GC_ERROR GCGetNumPortURLs(PORT_HANDLE port, uint32_t* count) {
    return call([=] {
        moduleOf(port);
        required(count, "count") = 1;
    });
}

GC_ERROR GCGetPortURL(PORT_HANDLE port, char* url, size_t* size) {
    return call([=] { putText(moduleOf(port)->url(), url, size); });
}

GC_ERROR GCGetPortURLInfo(PORT_HANDLE port, uint32_t index, int32_t command, INFO_DATATYPE* type,
                          void* buffer, size_t* size) {
    return call([=] {
        const auto module = moduleOf(port);
        if (index != 0) throw Error(GC_ERR_INVALID_INDEX, "a port has one URL, of number 0");
        InfoOutput{type, buffer, size}.put(module->urlInfo(command));
    });
}

GC_ERROR GCGetPortInfo(PORT_HANDLE port, int32_t command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return call([=] { InfoOutput{type, buffer, size}.put(moduleOf(port)->portInfo(command)); });
}

GC_ERROR GCReadPort(PORT_HANDLE port, uint64_t address, void* buffer, size_t* size) {
    return call([=] {
        const auto module = moduleOf(port);
        module->read(address, bytesOf(buffer, size));
    });
}

GC_ERROR GCWritePort(PORT_HANDLE port, uint64_t address, const void* buffer, size_t* size) {
    return call([=] {
        const auto module = moduleOf(port);
        // A write does not modify the data. NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
        module->write(address, bytesOf(const_cast<void*>(buffer), size));
    });
}

GC_ERROR GCReadPortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count) {
    return call([=] {
        const auto module = moduleOf(port);
        forAll(entries, count, [&](const PORT_REGISTER_STACK_ENTRY& entry) {
            const size_t size = entry.BufferSize;
            module->read(entry.Address, bytesOf(entry.pBuffer, &size));
        });
    });
}

GC_ERROR GCWritePortStacked(PORT_HANDLE port, PORT_REGISTER_STACK_ENTRY* entries, size_t* count) {
    return call([=] {
        const auto module = moduleOf(port);
        forAll(entries, count, [&](const PORT_REGISTER_STACK_ENTRY& entry) {
            const size_t size = entry.BufferSize;
            module->write(entry.Address, bytesOf(entry.pBuffer, &size));
        });
    });
}

GC_ERROR GCRegisterEvent(EVENTSRC_HANDLE source, int32_t kind, EVENT_HANDLE* event) {
    return callAlone([=] {
        const auto module = moduleOf(source);
        void*& handle = required(event, "event");
        handle = module->registerEvent(kind);
    });
}

GC_ERROR GCUnregisterEvent(EVENTSRC_HANDLE source, int32_t kind) {
    return callAlone([=] { moduleOf(source)->unregisterEvent(kind); });
}

GC_ERROR EventGetData(EVENT_HANDLE event, void* buffer, size_t* size, uint64_t milliseconds) {
    return call([=] { eventOf(event)->take(buffer, size, milliseconds); });
}

GC_ERROR EventGetDataInfo(EVENT_HANDLE event, const void* data, size_t dataSize, int32_t command,
                          INFO_DATATYPE* type, void* buffer, size_t* size) {
    return call([=] {
        const auto queue = eventOf(event);
        const auto& first = required(static_cast<const char*>(data), "data");
        InfoOutput{type, buffer, size}.put(queue->dataInfo({&first, dataSize}, command));
    });
}

GC_ERROR EventGetInfo(EVENT_HANDLE event, int32_t command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return call([=] { InfoOutput{type, buffer, size}.put(eventOf(event)->info(command)); });
}

GC_ERROR EventFlush(EVENT_HANDLE event) {
    return call([=] { eventOf(event)->flush(); });
}

GC_ERROR EventKill(EVENT_HANDLE event) {
    return call([=] { eventOf(event)->kill(); });
}
