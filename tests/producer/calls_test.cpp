// Every function of the producer with every invalid argument returns the code of the standard and does nothing else.

#include "support/producer_session.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <functional>

namespace {

using support::deviceId;
using support::interfaceId;
using support::streamId;

/** Valid arguments of the functions; a test makes one of them invalid. */
struct Arguments {
    void* handle = nullptr;
    BUFFER_HANDLE buffer = nullptr;
    std::int32_t command = 0;
    INFO_DATATYPE* type = nullptr;
    void* output = nullptr;
    size_t* size = nullptr;
};

enum class Needs : std::uint8_t { nothing, system, interface, device, stream, port, event };

struct Call {
    const char* name;
    Needs needs;
    std::function<GC_ERROR(const Arguments&)> call;
    /** With a null buffer: success if only the size is requested. */
    GC_ERROR withoutOutput = GC_ERR_INVALID_PARAMETER;
    const char* info = nullptr; // types of its answers by command, see below
};

using A = const Arguments&;
template <typename T> T* as(void* pointer) { return static_cast<T*>(pointer); }

// s text, b bool8, z size_t, p pointer, 4 int32, 5 uint32, 8 uint64; - no answer now. Others are unknown.
constexpr const char* systemInfo = "ssssssss455";
constexpr const char* deviceInfo = "sssss4-ss8";

const Call calls[] = {
    {"GCCloseLib", Needs::nothing, nullptr},
    {"GCGetInfo", Needs::nothing, [](A a) { return GCGetInfo(a.command, a.type, a.output, a.size); }, 0,
     systemInfo},
    {"GCGetLastError", Needs::nothing,
     [](A a) { return GCGetLastError(as<GC_ERROR>(a.output), nullptr, a.size); }},
    {"TLOpen", Needs::nothing, nullptr},
    {"TLGetInfo", Needs::system, [](A a) { return TLGetInfo(a.handle, a.command, a.type, a.output, a.size); },
     0, systemInfo},
    {"TLGetNumInterfaces", Needs::system,
     [](A a) { return TLGetNumInterfaces(a.handle, as<uint32_t>(a.output)); }},
    {"TLGetInterfaceID", Needs::system,
     [](A a) { return TLGetInterfaceID(a.handle, 0, as<char>(a.output), a.size); }, 0},
    {"TLGetInterfaceInfo", Needs::system,
     [](A a) { return TLGetInterfaceInfo(a.handle, interfaceId, a.command, a.type, a.output, a.size); }, 0,
     "sss"},
    {"TLUpdateInterfaceList", Needs::system,
     [](A a) { return TLUpdateInterfaceList(a.handle, as<bool8_t>(a.output), 0); }, 0},
    {"IFGetInfo", Needs::interface,
     [](A a) { return IFGetInfo(a.handle, a.command, a.type, a.output, a.size); }, 0, "sss"},
    {"IFGetNumDevices", Needs::interface,
     [](A a) { return IFGetNumDevices(a.handle, as<uint32_t>(a.output)); }},
    {"IFGetDeviceID", Needs::interface,
     [](A a) { return IFGetDeviceID(a.handle, 0, as<char>(a.output), a.size); }, 0},
    {"IFUpdateDeviceList", Needs::interface,
     [](A a) { return IFUpdateDeviceList(a.handle, as<bool8_t>(a.output), 0); }, 0},
    {"IFGetDeviceInfo", Needs::interface,
     [](A a) { return IFGetDeviceInfo(a.handle, deviceId, a.command, a.type, a.output, a.size); }, 0,
     deviceInfo},
    {"IFGetParentTL", Needs::interface, [](A a) { return IFGetParentTL(a.handle, as<void*>(a.output)); }},
    {"DevGetPort", Needs::device, [](A a) { return DevGetPort(a.handle, as<void*>(a.output)); }},
    {"DevGetNumDataStreams", Needs::device,
     [](A a) { return DevGetNumDataStreams(a.handle, as<uint32_t>(a.output)); }},
    {"DevGetDataStreamID", Needs::device,
     [](A a) { return DevGetDataStreamID(a.handle, 0, as<char>(a.output), a.size); }, 0},
    {"DevGetInfo", Needs::device,
     [](A a) { return DevGetInfo(a.handle, a.command, a.type, a.output, a.size); }, 0, deviceInfo},
    {"DevGetParentIF", Needs::device, [](A a) { return DevGetParentIF(a.handle, as<void*>(a.output)); }},
    {"DSAnnounceBuffer", Needs::stream,
     [](A a) { return DSAnnounceBuffer(a.handle, a.output, 16, nullptr, as<void*>(a.output)); }},
    {"DSAllocAndAnnounceBuffer", Needs::stream,
     [](A a) { return DSAllocAndAnnounceBuffer(a.handle, 16, nullptr, as<void*>(a.output)); }},
    {"DSFlushQueue", Needs::stream, [](A a) { return DSFlushQueue(a.handle, ACQ_QUEUE_OUTPUT_DISCARD); }, 0},
    {"DSGetInfo", Needs::stream, [](A a) { return DSGetInfo(a.handle, a.command, a.type, a.output, a.size); },
     0, "s88zzz8zbbszzz"},
    {"DSGetBufferID", Needs::stream, [](A a) { return DSGetBufferID(a.handle, 0, as<void*>(a.output)); }},
    {"DSGetBufferInfo", Needs::stream,
     [](A a) { return DSGetBufferInfo(a.handle, a.buffer, a.command, a.type, a.output, a.size); }, 0,
     "pzp-bbbbs--------b-z---------bbb"},
    {"DSGetParentDev", Needs::stream, [](A a) { return DSGetParentDev(a.handle, as<void*>(a.output)); }},
    {"GCGetNumPortURLs", Needs::port, [](A a) { return GCGetNumPortURLs(a.handle, as<uint32_t>(a.output)); }},
    {"GCGetPortURL", Needs::port, [](A a) { return GCGetPortURL(a.handle, as<char>(a.output), a.size); }, 0},
    {"GCGetPortURLInfo", Needs::port,
     [](A a) { return GCGetPortURLInfo(a.handle, 0, a.command, a.type, a.output, a.size); }, 0,
     "s44444-884s"},
    {"GCGetPortInfo", Needs::port,
     [](A a) { return GCGetPortInfo(a.handle, a.command, a.type, a.output, a.size); }, 0, "sssssbbbbbbss"},
    {"EventGetInfo", Needs::event,
     [](A a) { return EventGetInfo(a.handle, a.command, a.type, a.output, a.size); }, 0, "4z8zz"},
    {"EventGetDataInfo", Needs::event,
     [](A a) {
         const EVENT_NEW_BUFFER_DATA data{a.buffer, nullptr};
         return EventGetDataInfo(a.handle, &data, sizeof data, a.command, a.type, a.output, a.size);
     },
     0, "pp-"},
    {"EventFlush", Needs::event, [](A a) { return EventFlush(a.handle); }, 0},
};

/** Calls with more outcomes, in a session with one announced buffer of 16 bytes, in this order. */
struct Step {
    const char* name;
    GC_ERROR code;
    std::function<GC_ERROR(support::ProducerSession&, void* buffer)> call;
};

using S = support::ProducerSession&;
void* dummy = nullptr;
std::array<char, 8> room{};
size_t size = 0;
size_t& sized(size_t value) { return size = value; }

const Step steps[] = {
    {"init again", GC_ERR_RESOURCE_IN_USE, [](S, void*) { return GCInitLib(); }},
    {"open again", GC_ERR_RESOURCE_IN_USE, [](S, void*) { return TLOpen(&dummy); }},
    {"no list yet", GC_ERR_INVALID_INDEX,
     [](S s, void*) { return TLGetInterfaceID(s.tl, 0, nullptr, &size); }},
    {"interface again", GC_ERR_RESOURCE_IN_USE,
     [](S s, void*) { return TLOpenInterface(s.tl, interfaceId, &dummy); }},
    {"no such interface", GC_ERR_INVALID_ID,
     [](S s, void*) { return TLOpenInterface(s.tl, "virtual-9", &dummy); }},
    {"null id", GC_ERR_INVALID_PARAMETER, [](S s, void*) { return TLOpenInterface(s.tl, nullptr, &dummy); }},
    {"device again", GC_ERR_RESOURCE_IN_USE,
     [](S s, void*) { return IFOpenDevice(s.interface, deviceId, 3, &dummy); }},
    {"no such device", GC_ERR_INVALID_ID,
     [](S s, void*) { return IFOpenDevice(s.interface, "", 3, &dummy); }},
    {"null device id", GC_ERR_INVALID_PARAMETER,
     [](S s, void*) { return IFOpenDevice(s.interface, nullptr, 3, &dummy); }},
    {"open flags", GC_ERR_INVALID_PARAMETER,
     [](S s, void*) { return IFOpenDevice(s.interface, deviceId, 1, &dummy); }},
    {"stream again", GC_ERR_RESOURCE_IN_USE,
     [](S s, void*) { return DevOpenDataStream(s.device, streamId, &dummy); }},
    {"no such stream", GC_ERR_INVALID_ID,
     [](S s, void*) { return DevOpenDataStream(s.device, "x", &dummy); }},
    {"stream index", GC_ERR_INVALID_INDEX,
     [](S s, void*) { return DevGetDataStreamID(s.device, 1, nullptr, &size); }},
    {"URL index", GC_ERR_INVALID_INDEX,
     [](S s, void*) {
         INFO_DATATYPE type = 0;
         return GCGetPortURLInfo(s.port, 1, 0, &type, nullptr, &size);
     }},
    {"event again", GC_ERR_RESOURCE_IN_USE,
     [](S s, void*) { return GCRegisterEvent(s.stream, EVENT_NEW_BUFFER, &dummy); }},
    {"event of the stream alone", GC_ERR_NOT_IMPLEMENTED,
     [](S s, void*) { return GCRegisterEvent(s.device, EVENT_NEW_BUFFER, &dummy); }},
    {"event kind", GC_ERR_NOT_IMPLEMENTED, [](S s, void*) { return GCRegisterEvent(s.stream, 77, &dummy); }},
    {"event not registered", GC_ERR_INVALID_PARAMETER,
     [](S s, void*) { return GCUnregisterEvent(s.device, EVENT_REMOTE_DEVICE); }},
    {"no event", GC_ERR_TIMEOUT, [](S s, void*) { return EventGetData(s.event, room.data(), &sized(8), 0); }},
    {"no size", GC_ERR_INVALID_PARAMETER,
     [](S s, void*) { return EventGetData(s.event, room.data(), nullptr, 0); }},
    {"kill", GC_ERR_SUCCESS, [](S s, void*) { return EventKill(s.event); }},
    {"killed", GC_ERR_ABORT,
     [](S s, void*) { return EventGetData(s.event, room.data(), &sized(8), GENTL_INFINITE); }},
    {"killed once", GC_ERR_TIMEOUT,
     [](S s, void*) { return EventGetData(s.event, room.data(), &sized(8), 1); }},
    {"not started", GC_ERR_RESOURCE_IN_USE, [](S s, void*) { return DSStopAcquisition(s.stream, 0); }},
    {"start flags", GC_ERR_INVALID_PARAMETER, [](S s, void*) { return DSStartAcquisition(s.stream, 5, 1); }},
    {"no buffers", GC_ERR_INVALID_PARAMETER, [](S s, void*) { return DSStartAcquisition(s.stream, 0, 0); }},
    {"start", GC_ERR_SUCCESS, [](S s, void*) { return DSStartAcquisition(s.stream, 0, GENTL_INFINITE); }},
    {"start again", GC_ERR_RESOURCE_IN_USE, [](S s, void*) { return DSStartAcquisition(s.stream, 0, 1); }},
    {"stop flags", GC_ERR_INVALID_PARAMETER, [](S s, void*) { return DSStopAcquisition(s.stream, 9); }},
    {"flush operation", GC_ERR_INVALID_PARAMETER, [](S s, void*) { return DSFlushQueue(s.stream, 5); }},
    {"buffer of no bytes", GC_ERR_INVALID_PARAMETER,
     [](S s, void*) { return DSAllocAndAnnounceBuffer(s.stream, 0, nullptr, &dummy); }},
    {"buffer of all bytes", GC_ERR_OUT_OF_MEMORY,
     [](S s, void*) { return DSAllocAndAnnounceBuffer(s.stream, SIZE_MAX / 2, nullptr, &dummy); }},
    {"buffer index", GC_ERR_INVALID_INDEX, [](S s, void*) { return DSGetBufferID(s.stream, 1, &dummy); }},
    {"foreign buffer", GC_ERR_INVALID_HANDLE, [](S s, void*) { return DSQueueBuffer(s.stream, s.stream); }},
    {"no parts", GC_ERR_NO_DATA,
     [](S s, void* b) { return DSGetNumBufferParts(s.stream, b, as<uint32_t>(room.data())); }},
    {"no part", GC_ERR_NO_DATA,
     [](S s, void* b) {
         INFO_DATATYPE type = 0;
         return DSGetBufferPartInfo(s.stream, b, 0, 0, &type, nullptr, &size);
     }},
    {"no chunks", GC_ERR_NO_DATA,
     [](S s, void* b) { return DSGetBufferChunkData(s.stream, b, nullptr, &size); }},
    {"queue", GC_ERR_SUCCESS, [](S s, void* b) { return DSQueueBuffer(s.stream, b); }},
    {"queue again", GC_ERR_RESOURCE_IN_USE, [](S s, void* b) { return DSQueueBuffer(s.stream, b); }},
    {"revoke a queued one", GC_ERR_BUSY,
     [](S s, void* b) { return DSRevokeBuffer(s.stream, b, nullptr, nullptr); }},
    {"input to output", GC_ERR_SUCCESS,
     [](S s, void*) { return DSFlushQueue(s.stream, ACQ_QUEUE_INPUT_TO_OUTPUT); }},
    {"queue one in the output", GC_ERR_RESOURCE_IN_USE,
     [](S s, void* b) { return DSQueueBuffer(s.stream, b); }},
    {"small buffer", GC_ERR_BUFFER_TOO_SMALL,
     [](S s, void*) { return EventGetData(s.event, room.data(), &sized(8), 0); }},
    {"unseen", GC_ERR_SUCCESS, [](S s, void*) { return EventGetData(s.event, nullptr, &sized(0), 0); }},
    {"revoke", GC_ERR_SUCCESS, [](S s, void* b) { return DSRevokeBuffer(s.stream, b, nullptr, nullptr); }},
    {"revoke again", GC_ERR_INVALID_HANDLE,
     [](S s, void* b) { return DSRevokeBuffer(s.stream, b, nullptr, nullptr); }},
    {"read nothing", GC_ERR_INVALID_PARAMETER,
     [](S s, void*) { return GCReadPort(s.port, 0, room.data(), &sized(0)); }},
    {"read nowhere", GC_ERR_INVALID_PARAMETER,
     [](S s, void*) { return GCReadPort(s.port, 0, nullptr, &sized(8)); }},
    {"no register", GC_ERR_INVALID_ADDRESS,
     [](S s, void*) { return GCReadPort(s.port, UINT64_MAX, room.data(), &sized(8)); }},
    {"between registers", GC_ERR_INVALID_ADDRESS,
     [](S s, void*) { return GCReadPort(s.port, s.address("Width_Value") + 4, room.data(), &sized(8)); }},
    {"half a register", GC_ERR_SUCCESS,
     [](S s, void*) { return GCReadPort(s.port, s.address("Width_Value") + 4, room.data(), &sized(4)); }},
    {"write the zeros of a number", GC_ERR_SUCCESS,
     [](S s, void*) { return GCWritePort(s.port, s.address("Width_Value") + 4, "\0\0\0", &sized(4)); }},
    {"write a limit", GC_ERR_INVALID_ADDRESS,
     [](S s, void*) { return GCWritePort(s.port, s.address("Width_Max"), room.data(), &sized(8)); }},
    {"write a description", GC_ERR_ACCESS_DENIED,
     [](S s, void*) { return GCWritePort(s.port, 0x10000000, room.data(), &sized(8)); }},
    {"write what can be read", GC_ERR_ACCESS_DENIED, [](S s, void*) { return s.set("PayloadSize", 1); }},
    {"off the grid", GC_ERR_INVALID_VALUE, [](S s, void*) { return s.set("Width", 1022); }},
    {"out of range", GC_ERR_INVALID_VALUE, [](S s, void*) { return s.set("FG_WIDTH", 16388); }},
    {"wider than the parameter", GC_ERR_INVALID_VALUE,
     [](S s, void*) { return s.set("FG_WIDTH", (std::int64_t{1} << 32) + 1024); }},
    {"not a number", GC_ERR_INVALID_VALUE,
     [](S s, void*) { return s.set("ExposureTime", 0x7ff8000000000000); }},
    {"no such entry", GC_ERR_INVALID_VALUE, [](S s, void*) { return s.set("PixelFormat", 5); }},
    {"an entry of 65 bits", GC_ERR_INVALID_VALUE,
     [](S s, void*) { return s.set("TriggerMode", (std::int64_t{1} << 62) + 1); }},
    {"no such boolean", GC_ERR_INVALID_VALUE, [](S s, void*) { return s.set("ReverseX", -1); }},
    {"no such pattern", GC_ERR_INVALID_VALUE, [](S s, void*) { return s.set("TestPattern", 17); }},
    {"no such notification", GC_ERR_INVALID_VALUE, [](S s, void*) { return s.set("EventNotification", 2); }},
    {"lock", GC_ERR_SUCCESS, [](S s, void*) { return s.set("TLParamsLocked", 1); }},
    {"locked", GC_ERR_ACCESS_DENIED, [](S s, void*) { return s.set("Width", 512); }},
    {"no stacked entries", GC_ERR_INVALID_PARAMETER,
     [](S s, void*) { return GCReadPortStacked(s.port, nullptr, &sized(1)); }},
    {"of version 1.6", GC_ERR_NOT_IMPLEMENTED,
     [](S s, void*) { return DSGetNumFlows(s.stream, as<uint32_t>(room.data())); }},
};

/** While idle, and during an acquisition. */
class ProducerCalls : public testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        if (GetParam()) session.start();
        support::ok(TLUpdateInterfaceList(session.tl, nullptr, 0));
        support::ok(IFUpdateDeviceList(session.interface, nullptr, 0));
        support::ok(DSAllocAndAnnounceBuffer(session.stream, 16, nullptr, &arguments.buffer));
        arguments.type = &type;
        arguments.output = output.data();
        arguments.size = &size;
    }
    void* handleFor(Needs needs) {
        void* const handles[] = {nullptr,        session.tl,   session.interface, session.device,
                                 session.stream, session.port, session.event};
        return handles[static_cast<size_t>(needs)];
    }
    GC_ERROR make(const Call& call) {
        size = output.size();
        return call.call(arguments);
    }

    support::ProducerSession session;
    Arguments arguments;
    INFO_DATATYPE type = 0;
    alignas(std::max_align_t) std::array<char, 1024> output{};
    size_t size = 0;
};

TEST(ProducerState, NothingWorksBeforeTheStart) {
    INFO_DATATYPE type = 0;
    char output[64];
    size_t length = sizeof output;
    for (const Call& call : calls) {
        if (!call.call) continue;
        EXPECT_EQ(call.call({nullptr, nullptr, 0, &type, output, &length}), GC_ERR_NOT_INITIALIZED)
            << call.name;
    }
    EXPECT_EQ(GCCloseLib(), GC_ERR_NOT_INITIALIZED);
    EXPECT_EQ(TLOpen(&dummy), GC_ERR_NOT_INITIALIZED);
}

TEST_P(ProducerCalls, WrongHandlesAreRecognised) {
    DEV_HANDLE closed = session.device;
    support::ok(DevClose(closed));
    support::ok(IFOpenDevice(session.interface, deviceId, 3, &session.device));
    support::ok(DevGetPort(session.device, &session.port));
    support::ok(DevOpenDataStream(session.device, streamId, &session.stream));
    int onTheStack = 0;
    for (const Call& call : calls) {
        if (call.needs == Needs::nothing) continue;
        void* const wrongs[] = {nullptr, closed, &onTheStack, output.data() + 1};
        for (void* wrong : wrongs) {
            arguments.handle = wrong;
            EXPECT_EQ(make(call), GC_ERR_INVALID_HANDLE) << call.name;
        }
        // A live handle of another kind; any module is a port.
        arguments.handle =
            call.needs == Needs::event || call.needs == Needs::interface ? session.tl : session.interface;
        if (call.needs == Needs::port) continue;
        EXPECT_EQ(make(call), GC_ERR_INVALID_HANDLE) << call.name;
    }
}

TEST_P(ProducerCalls, NullPointersAreRecognised) {
    for (const Call& call : calls) {
        if (!call.call) continue;
        arguments.handle = handleFor(call.needs);
        EXPECT_EQ(make(call), GC_ERR_SUCCESS) << call.name;
        arguments.output = nullptr;
        EXPECT_EQ(make(call), call.withoutOutput) << call.name;
        arguments.output = output.data();
        if (call.info == nullptr) continue;
        arguments.size = nullptr;
        EXPECT_EQ(make(call), GC_ERR_INVALID_PARAMETER) << call.name;
        arguments.size = &size;
        arguments.type = nullptr;
        EXPECT_EQ(make(call), GC_ERR_INVALID_PARAMETER) << call.name;
        arguments.type = &type;
    }
}

TEST_P(ProducerCalls, EachCommandReturnsItsType) {
    const auto letterOf = [](INFO_DATATYPE answered) { return "?s???45?8?pbz???"[answered]; };
    for (const Call& call : calls) {
        if (call.info == nullptr) continue;
        arguments.handle = handleFor(call.needs);
        const std::string expected = call.info;
        std::string found;
        for (arguments.command = 0; arguments.command < static_cast<int>(expected.size());
             ++arguments.command) {
            const GC_ERROR code = make(call);
            found += code == GC_ERR_NOT_AVAILABLE ? '-' : code == GC_ERR_SUCCESS ? letterOf(type) : '!';
            if (code != GC_ERR_SUCCESS) continue;
            const size_t whole = size;
            arguments.output = nullptr;
            EXPECT_TRUE(make(call) == GC_ERR_SUCCESS && size == whole)
                << call.name << ' ' << arguments.command;
            arguments.output = output.data();
            size = whole - 1;
            EXPECT_EQ(call.call(arguments), GC_ERR_BUFFER_TOO_SMALL) << call.name << ' ' << arguments.command;
        }
        EXPECT_EQ(found, expected) << call.name;
        for (const std::int32_t unknown : {static_cast<std::int32_t>(expected.size()), -1, 1000, INT32_MIN}) {
            arguments.command = unknown;
            EXPECT_EQ(make(call), GC_ERR_NOT_IMPLEMENTED) << call.name << ' ' << unknown;
        }
        arguments.command = 0;
    }
}

TEST(ProducerSteps, EachStepHasItsCode) {
    support::ProducerSession session;
    BUFFER_HANDLE buffer{};
    support::ok(DSAllocAndAnnounceBuffer(session.stream, 16, nullptr, &buffer));
    for (const Step& step : steps)
        EXPECT_EQ(step.call(session, buffer), step.code) << step.name;
    for (const auto& close : {DSClose, DevClose, IFClose, TLClose}) {
        void* const handle = close == DSClose   ? session.stream
                             : close == DevClose ? session.device
                             : close == IFClose  ? session.interface
                                                 : session.tl;
        EXPECT_EQ(close(handle), GC_ERR_SUCCESS);
        EXPECT_EQ(close(handle), GC_ERR_INVALID_HANDLE);
    }
}

TEST(ProducerSteps, AnIdEndsWithANulCharacter) {
    support::ProducerSession session;
    std::string text(64, 'x');
    size_t length = text.size();
    support::ok(TLUpdateInterfaceList(session.tl, nullptr, 0));
    support::ok(TLGetInterfaceID(session.tl, 0, text.data(), &length));
    EXPECT_STREQ(text.c_str(), interfaceId);
    EXPECT_EQ(length, std::strlen(interfaceId) + 1);
}

INSTANTIATE_TEST_SUITE_P(States, ProducerCalls, testing::Bool());

TEST(ProducerSteps, LastErrorDescribesTheFailure) {
    struct Row {
        const char* feature;
        std::int64_t value;
        GC_ERROR code;
        const char* text;
    };
    const Row rows[] = {
        {"Width", 1022, GC_ERR_INVALID_VALUE,
         "FG_WIDTH = 1022 was refused: -7080, value not on the parameter's grid; the present limits are "
         "4 to 16384 in steps of 4 pixel"},
        {"TriggerMode", 77, GC_ERR_INVALID_VALUE, "TriggerMode = 77 was refused: it can be 0 (Off), 1 (On)"},
        {"AcquisitionFrameCount", 0, GC_ERR_INVALID_VALUE,
         "AcquisitionFrameCount = 0 was refused: it can be 1 to 2147483647"},
        {"TriggerSource", 1, GC_ERR_ACCESS_DENIED,
         "TriggerSource cannot be written now: the applet makes it read-only; 'appletctl why "
         "FG_IMGTRIGGERINSRC' shows whether a setting changes that"},
        {"TLParamsLocked", 1, GC_ERR_SUCCESS, nullptr},
        {"Width", 512, GC_ERR_ACCESS_DENIED, "Width cannot be written now: TLParamsLocked is 1"},
    };
    support::ProducerSession session;
    GC_ERROR code = 0;
    char text[1024];
    size_t length = 0;
    for (const Row& row : rows) {
        EXPECT_EQ(session.set(row.feature, row.value), row.code) << row.feature;
        if (row.text == nullptr) continue;
        length = sizeof text;
        EXPECT_EQ(GCGetLastError(&code, text, &length), GC_ERR_SUCCESS);
        EXPECT_EQ(code, row.code);
        EXPECT_STREQ(text, row.text);
    }
    length = 3;
    EXPECT_EQ(GCGetLastError(&code, text, &length), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(code, GC_ERR_ACCESS_DENIED);
}

} // namespace
