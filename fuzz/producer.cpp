// The input is a list of calls of the producer, 8 bytes each: the function, then the source of its arguments.
// Handles are taken from all that were ever returned, so that closed ones and those of another type
// are used as well. Every call, in any order, must return one of the standard's codes, and nothing may be
// left open at the end.

#include "applet_host/AppletHost.h"
#include "invariants.h"
#include "producer/gentl.h"
#include "support/temporary_folder.h"

#include <array>
#include <filesystem>

namespace {

using fuzz::require;

constexpr std::size_t mostCalls = 60;

class Calls {
public:
    Calls(const std::uint8_t* data, std::size_t size) : m_next(data), m_end(data + size) {}

    void run() {
        for (std::size_t i = 0; i < mostCalls && m_next != m_end; ++i) {
            const unsigned function = byte();
            const GC_ERROR code = call(function % 38);
            require(code == GC_ERR_SUCCESS || (code <= GC_ERR_ERROR && code >= GC_ERR_AMBIGUOUS),
                    "a known code", code);
        }
        const GC_ERROR code = GCCloseLib();
        require(code == GC_ERR_SUCCESS || code == GC_ERR_NOT_INITIALIZED, "the library closes", code);
    }

private:
    unsigned byte() { return m_next == m_end ? 0 : *m_next++; }
    std::int32_t number() { return static_cast<std::int8_t>(byte()); }
    void* handle(unsigned which) { return which < m_handles.size() ? m_handles[which] : nullptr; }

    /** Opens with a function that stores a handle at the given address. */
    template <typename Function> GC_ERROR open(Function function) {
        void* opened = nullptr;
        const GC_ERROR code = function(&opened);
        require((code == GC_ERR_SUCCESS) == (opened != nullptr), "a handle with success", code);
        if (opened != nullptr && m_handles.size() < 255) m_handles.push_back(opened);
        return code;
    }

    GC_ERROR call(unsigned function) {
        static constexpr const char* ids[] = {"virtual-0", "virtual-0-process-0", "virtual-0-process-0-dma-0",
                                              "", nullptr};
        static constexpr std::uint64_t offsets[] = {0, 0x1f000, 0x1000'0000, 4};
        size_t size = byte() * std::size_t{2};
        const unsigned flags = byte();
        void* const first = handle(byte());
        void* const second = handle(byte());
        const char* const id = ids[byte() % std::size(ids)];
        const std::int32_t number = static_cast<std::int8_t>(byte());
        const std::uint64_t address =
            (byte() + flags / 16 % 2 * std::uint64_t{256}) * 0x20000 + offsets[flags % 4];
        std::array<char, 600> memory{};
        void* const buffer = flags / 4 % 4 == 3 ? nullptr : memory.data();
        INFO_DATATYPE type = 0;
        std::uint32_t count = 0;
        switch (function) {
        case 0:
            return GCInitLib();
        case 1:
            return flags == 0 ? GCCloseLib() : GC_ERR_SUCCESS;
        case 2:
            return open([](void** h) { return TLOpen(h); });
        case 3:
            return open([&](void** h) { return TLOpenInterface(first, id, h); });
        case 4:
            return open([&](void** h) { return IFOpenDevice(first, id, number, h); });
        case 5:
            return open([&](void** h) { return DevOpenDataStream(first, id, h); });
        case 6:
            return open([&](void** h) { return DevGetPort(first, h); });
        case 7:
            return open([&](void** h) { return GCRegisterEvent(first, number, h); });
        case 8:
            return open([&](void** h) { return DSAllocAndAnnounceBuffer(first, size * 200, nullptr, h); });
        case 9:
            return TLClose(first);
        case 10:
            return IFClose(first);
        case 11:
            return DevClose(first);
        case 12:
            return DSClose(first);
        case 13:
            return GCUnregisterEvent(first, number);
        case 14:
            return DSRevokeBuffer(first, second, nullptr, nullptr);
        case 15:
            return DSQueueBuffer(first, second);
        case 16:
            return DSFlushQueue(first, number);
        case 17:
            return DSStartAcquisition(first, number, size);
        case 18:
            return DSStopAcquisition(first, number);
        case 19:
            return EventGetData(first, buffer, &size, flags % 4);
        case 20:
            return EventKill(first);
        case 21:
            return EventFlush(first);
        case 22:
            return EventGetInfo(first, number, &type, buffer, &size);
        case 23:
            return EventGetDataInfo(first, memory.data(), size, number, &type, nullptr, &size);
        case 24:
            return GCReadPort(first, address, buffer, &size);
        case 25:
            memory.fill(static_cast<char>(number == '/' ? 1 : number)); // never names a file elsewhere
            return GCWritePort(first, address, buffer, &size);
        case 26: { // a number, such as 1 for a command
            std::int64_t value = number;
            size = sizeof value;
            return GCWritePort(first, address, &value, &size);
        }
        case 27:
            return TLUpdateInterfaceList(first, nullptr, 0);
        case 28:
            return IFUpdateDeviceList(first, nullptr, 0);
        case 29:
            return TLGetInterfaceID(first, flags, static_cast<char*>(buffer), &size);
        case 30:
            return IFGetDeviceInfo(first, id, number, &type, buffer, &size);
        case 31:
            return DevGetInfo(first, number, &type, buffer, &size);
        case 32:
            return DSGetInfo(first, number, &type, buffer, &size);
        case 33:
            return DSGetBufferInfo(first, second, number, &type, buffer, &size);
        case 34:
            return DSGetBufferID(first, flags, static_cast<void**>(buffer));
        case 35:
            return GCGetPortInfo(first, number, &type, buffer, &size);
        case 36:
            return GCGetPortURLInfo(first, flags % 2, number, &type, buffer, &size);
        default:
            return GCGetNumPortURLs(first, &count);
        }
    }

    const std::uint8_t* m_next;
    const std::uint8_t* const m_end;
    std::vector<void*> m_handles{};
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const applet_host::AppletHost loaded; // libFuzzer counts in libraries, which must not be unloaded
    static const support::TemporaryFolder folder;
    static const int clock = setenv("VBOARD_CLOCK", "stepped", 1);
    require(clock == 0, "the clock is chosen");
    std::filesystem::current_path(folder / "");
    Calls(data, size).run();
    return 0;
}
