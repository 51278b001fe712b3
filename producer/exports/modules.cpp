// Exported: the library, systems, interfaces, devices.

#include "base/NeverDestroyed.h"
#include "exports/call.h"
#include "modules/Interface.h"
#include "modules/LocalDevice.h"
#include "modules/Stream.h"
#include "modules/System.h"

#include <pthread.h>

#include <cstdlib>
#include <new>
#include <optional>
#include <utility>

using namespace producer;

// Of this library, by the compiler. NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" __attribute__((visibility("hidden"))) void* __dso_handle;

namespace {

NeverDestroyed<Library>& storedLibrary() {
    static NeverDestroyed<Library> library;
    return library;
}

std::shared_ptr<System> openSystem() {
    const std::lock_guard lock(lockOfModules());
    return Library::the().system;
}

/** Closes the system so that another one can be opened. */
void closeSystem(const std::shared_ptr<System>& system) {
    system->close();
    const std::lock_guard lock(lockOfModules());
    if (Library::the().system == system) Library::the().system.reset();
}

/** When the process ends, or the producer is unloaded, its own thread must not run; other objects that a
 *  client has left open are freed with the process. */
void stopThreads() {
    if (const auto system = openSystem()) system->stopThreads();
}

/** Called when a board runs, so that the threads end before the cleanup of the libraries, which was registered before.
 *  Libraries that are loaded again register theirs again. */
void stopThreadsAtTheEnd() {
    static std::optional<std::uint64_t> registeredFor; // guarded by the lock of the modules
    const std::lock_guard lock(lockOfModules());
    // As std::atexit, but the thread sanitizer, too, then calls it when the producer is unloaded.
    if (std::exchange(registeredFor, timesLoaded()) != timesLoaded())
        abi::__cxa_atexit([](void*) { stopThreads(); }, nullptr, &__dso_handle);
}

std::shared_ptr<System> systemOf(void* handle) { return HandleTable::find<System>(handle, "a system"); }
std::shared_ptr<Interface> interfaceOf(void* handle) {
    return HandleTable::find<Interface>(handle, "an interface");
}
std::shared_ptr<LocalDevice> deviceOf(void* handle) {
    return HandleTable::find<LocalDevice>(handle, "a device");
}

void putFlag(bool flag, bool8_t* destination) {
    if (destination != nullptr) *destination = static_cast<bool8_t>(flag);
}

} // namespace

Library& Library::the() { return storedLibrary().value(); }

void Library::forget() {
    forgetLockOfModules();
    HandleTable::forget();
    storedLibrary().forget();
}

// ---- The library

GC_ERROR GCInitLib() {
    return attempt([] {
        static const int watched = pthread_atfork(nullptr, nullptr, Library::forget);
        if (watched != 0) throw std::bad_alloc();
        if (Library::the().isInitialized.exchange(true))
            throw Error(GC_ERR_RESOURCE_IN_USE, "the library is initialized already");
    });
}

GC_ERROR GCCloseLib() {
    return call([] {
        if (const auto system = openSystem()) closeSystem(system);
        Library::the().isInitialized = false;
    });
}

GC_ERROR GCGetInfo(int32_t command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return call([=] { InfoOutput{type, buffer, size}.put(System::info(command)); });
}

GC_ERROR GCGetLastError(GC_ERROR* code, char* text, size_t* size) {
    if (!Library::the().isInitialized) return GC_ERR_NOT_INITIALIZED;
    // A failure of this call is not stored: it would overwrite the error that the client asks for.
    if (code == nullptr || size == nullptr) return GC_ERR_INVALID_PARAMETER;
    const std::size_t needed = std::strlen(lastErrorText()) + 1;
    const bool fits = text == nullptr || *size >= needed;
    if (text != nullptr && fits) std::memcpy(text, lastErrorText(), needed);
    *code = lastErrorCode();
    *size = needed;
    return fits ? GC_ERR_SUCCESS : GC_ERR_BUFFER_TOO_SMALL;
}

// ---- Systems

GC_ERROR TLOpen(TL_HANDLE* tl) {
    return callAlone([=] {
        void*& handle = required(tl, "tl");
        std::shared_ptr<System>& system = Library::the().system;
        if (system != nullptr) throw Error(GC_ERR_RESOURCE_IN_USE, "the system is open already");
        system = std::make_shared<System>();
        HandleTable::add(system);
        handle = system->handle();
    });
}

GC_ERROR TLClose(TL_HANDLE tl) {
    return call([=] { closeSystem(systemOf(tl)); });
}

GC_ERROR TLGetInfo(TL_HANDLE tl, int32_t command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return call([=] {
        systemOf(tl);
        InfoOutput{type, buffer, size}.put(System::info(command));
    });
}

GC_ERROR TLGetNumInterfaces(TL_HANDLE tl, uint32_t* count) {
    return callAlone([=] {
        const auto system = systemOf(tl);
        required(count, "count") = static_cast<uint32_t>(system->interfaceCount());
    });
}

GC_ERROR TLGetInterfaceID(TL_HANDLE tl, uint32_t index, char* id, size_t* size) {
    return callAlone([=] { putText(systemOf(tl)->interfaceId(index), id, size); });
}

GC_ERROR TLGetInterfaceInfo(TL_HANDLE tl, const char* id, int32_t command, INFO_DATATYPE* type, void* buffer,
                            size_t* size) {
    return callAlone([=] { InfoOutput{type, buffer, size}.put(systemOf(tl)->interfaceInfo(id, command)); });
}

GC_ERROR TLOpenInterface(TL_HANDLE tl, const char* id, IF_HANDLE* interface) {
    return callAlone([=] {
        const auto system = systemOf(tl);
        void*& handle = required(interface, "interface");
        handle = system->openInterface(id)->handle();
    });
}

GC_ERROR TLUpdateInterfaceList(TL_HANDLE tl, bool8_t* changed, uint64_t) {
    return callAlone([=] { putFlag(systemOf(tl)->updateInterfaces(), changed); });
}

// ---- Interfaces

GC_ERROR IFClose(IF_HANDLE interface) {
    return call([=] { interfaceOf(interface)->close(); });
}

GC_ERROR IFGetInfo(IF_HANDLE interface, int32_t command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return call([=] { InfoOutput{type, buffer, size}.put(interfaceOf(interface)->info(command)); });
}

GC_ERROR IFGetNumDevices(IF_HANDLE interface, uint32_t* count) {
    return callAlone([=] {
        const auto interfaceModule = interfaceOf(interface);
        required(count, "count") = static_cast<uint32_t>(interfaceModule->deviceCount());
    });
}

GC_ERROR IFGetDeviceID(IF_HANDLE interface, uint32_t index, char* id, size_t* size) {
    return callAlone([=] { putText(interfaceOf(interface)->deviceId(index), id, size); });
}

GC_ERROR IFUpdateDeviceList(IF_HANDLE interface, bool8_t* changed, uint64_t) {
    return callAlone([=] { putFlag(interfaceOf(interface)->updateDevices(), changed); });
}

GC_ERROR IFGetDeviceInfo(IF_HANDLE interface, const char* id, int32_t command, INFO_DATATYPE* type,
                         void* buffer, size_t* size) {
    return callAlone([=] {
        InfoOutput{type, buffer, size}.put(interfaceOf(interface)->deviceInfo(id, command));
    });
}

GC_ERROR IFOpenDevice(IF_HANDLE interface, const char* id, int32_t flags, DEV_HANDLE* device) {
    return call([=] {
        const auto interfaceModule = interfaceOf(interface);
        void*& handle = required(device, "device");
        handle = interfaceModule->openDevice(id, flags)->handle();
        stopThreadsAtTheEnd();
    });
}

GC_ERROR IFGetParentTL(IF_HANDLE interface, TL_HANDLE* tl) {
    return callAlone([=] {
        const auto interfaceModule = interfaceOf(interface);
        required(tl, "tl") = interfaceModule->system().handle();
    });
}

// ---- Devices

GC_ERROR DevGetPort(DEV_HANDLE device, PORT_HANDLE* remote) {
    return callAlone([=] {
        const auto deviceModule = deviceOf(device);
        required(remote, "remote") = deviceModule->remote().handle();
    });
}

GC_ERROR DevGetNumDataStreams(DEV_HANDLE device, uint32_t* count) {
    return callAlone([=] {
        deviceOf(device);
        required(count, "count") = 1;
    });
}

GC_ERROR DevGetDataStreamID(DEV_HANDLE device, uint32_t index, char* id, size_t* size) {
    return callAlone([=] {
        const auto deviceModule = deviceOf(device);
        if (index != 0) throw Error(GC_ERR_INVALID_INDEX, "a device has one stream, of number 0");
        putText(deviceModule->streamId(), id, size);
    });
}

GC_ERROR DevOpenDataStream(DEV_HANDLE device, const char* id, DS_HANDLE* stream) {
    return callAlone([=] {
        const auto deviceModule = deviceOf(device);
        void*& handle = required(stream, "stream");
        handle = deviceModule->openStream(id)->handle();
    });
}

GC_ERROR DevGetInfo(DEV_HANDLE device, int32_t command, INFO_DATATYPE* type, void* buffer, size_t* size) {
    return callAlone([=] {
        InfoOutput{type, buffer, size}.put(deviceOf(device)->interface().deviceInfo(command));
    });
}

GC_ERROR DevClose(DEV_HANDLE device) {
    return call([=] {
        const auto deviceModule = deviceOf(device);
        deviceModule->interface().closeDevice(*deviceModule);
    });
}

GC_ERROR DevGetParentIF(DEV_HANDLE device, IF_HANDLE* interface) {
    return callAlone([=] {
        const auto deviceModule = deviceOf(device);
        required(interface, "interface") = deviceModule->interface().handle();
    });
}
