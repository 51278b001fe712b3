// A served station that lies, stops talking or ends: its client gets errors, and nothing worse.

#include "support/producer_session.h"
#include "support/temporary_folder.h"

#include "serve/StationLocation.h"
#include "serve/local_socket.h"
#include "station_channel/ChannelSocket.h"
#include "station_channel/SharedMemory.h"
#include "vexo/fg_api.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <future>
#include <map>
#include <mutex>
#include <thread>

namespace {

using namespace station_channel;
using support::ok;
using support::ProducerSession;

constexpr const char* name = "fake";

/** A station for one client. It answers truly, unless a function answers in its place. */
class FakeStation {
public:
    /** Answers a request, or is false if the station is to do it. */
    using Special = std::function<bool(FakeStation&, const ToStation&)>;

    explicit FakeStation(Special special)
        : m_special(std::move(special))
        , m_listening(serve::listenAt(serve::locationOf(name).channel, SOCK_SEQPACKET))
        , m_thread([this] { work(); }) {}
    ~FakeStation() {
        shutdown(m_listening.number(), SHUT_RDWR);
        {
            const std::lock_guard lock(m_connecting);
            if (m_socket) m_socket->close();
        }
        m_thread.join();
    }
    FakeStation(const FakeStation&) = delete;
    FakeStation& operator=(const FakeStation&) = delete;

    void send(const Bytes& bytes, int descriptor = -1) {
        m_socket->send(bytes, ChannelSocket::Wait::forRoom, descriptor);
    }
    void answer(const ToStation& to, const Answer& answer) { send(encoded(ToClient{to.number, answer})); }
    void end() { m_socket->close(); }

private:
    void work() {
        pollfd polled{m_listening.number(), POLLIN, 0};
        poll(&polled, 1, -1);
        applet_tools::Descriptor socket(accept(m_listening.number(), nullptr, nullptr));
        if (!socket) return; // the test has ended
        {
            const std::lock_guard lock(m_connecting);
            m_socket.emplace(std::move(socket));
        }
        while (const auto packet = m_socket->receive()) {
            const ToStation request = requestFrom(packet->bytes);
            if (!m_special(*this, request)) answerTruly(request);
        }
    }
    void answerTruly(const ToStation& to) {
        static const std::map<std::string, std::int64_t> values = {
            {"FG_FORMAT", FG_COL24}, {"FG_WIDTH", 4}, {"FG_HEIGHT", 2}, {"FG_XOFFSET", 0}, {"FG_YOFFSET", 0}};
        Description description{static_cast<std::uint32_t>(values.size()), {}, {{1, "FG_EVENT"}}};
        for (const auto& [parameter, value] : values) {
            description.parameters.emplace_back().name = parameter;
            description.parameters.back().kind = REGISTER_KIND_UINT;
        }
        if (std::holds_alternative<Describe>(to.request))
            answer(to, description);
        else if (const auto* read = std::get_if<ReadValue>(&to.request))
            answer(to, applet_host::Value(values.at(read->name)));
        else if (std::holds_alternative<Start>(to.request))
            answer(to, Started{7});
        else if (to.number != 0)
            answer(to, Done());
    }

    const Special m_special;
    const applet_tools::Descriptor m_listening;
    std::mutex m_connecting; // for the destructor; otherwise the socket is the thread's
    std::optional<ChannelSocket> m_socket;
    std::thread m_thread;
};

/** The folder of stations, with one that is running by its lock. */
class ServedStation : public testing::Test {
protected:
    ServedStation() {
        setenv("XDG_RUNTIME_DIR", (m_folder / "").c_str(), 1);
        serve::makeStationFolder();
        m_lock = serve::lockStation(serve::locationOf(name));
        support::writeFile(serve::locationOf(name).socket, "");
    }
    ~ServedStation() override { unsetenv("XDG_RUNTIME_DIR"); }

private:
    support::TemporaryFolder m_folder;
    applet_tools::Descriptor m_lock;
};

template <typename T> bool is(const ToStation& to) { return std::holds_alternative<T>(to.request); }

TEST_F(ServedStation, OneThatCannotBeUnderstoodIsNotOpened) {
    struct Row {
        const char* words; // of the error
        FakeStation::Special special;
    };
    const Row rows[] = {
        {"has ended", [](auto& station, const auto&) { return station.end(), true; }},
        {"a message that cannot be read",
         [](auto& station, const auto&) {
             return station.send({1, 2, 3}), true;
         }},
        {"another version",
         [](auto& station, const auto& to) {
             return station.answer(to, Refusal{Reason::invalid, 0, "it is of another version"}), true;
         }},
        {"the wrong kind of answer",
         [](auto& station, const auto& to) {
             return is<Describe>(to) && (station.answer(to, Done()), true);
         }},
        {"no parameter FG_FORMAT",
         [](auto& station, const auto& to) {
             return is<Describe>(to) && (station.answer(to, Description{5, {}, {}}), true);
         }},
    };
    for (const Row& row : rows) {
        const FakeStation station(row.special);
        try {
            const ProducerSession session("station-fake");
            ADD_FAILURE() << row.words;
        } catch (const std::exception& error) {
            EXPECT_NE(std::string(error.what()).find(row.words), std::string::npos) << error.what();
        }
    }
}

/** What a station sends as the memory of a picture. */
struct Memory {
    explicit Memory(std::size_t size, bool isSealed) : shared(size) {
        for (std::uint8_t& byte : shared.writable())
            byte = static_cast<std::uint8_t>(&byte - shared.writable().data());
        if (isSealed) shared.seal();
    }
    SharedMemory shared;
};

TEST_F(ServedStation, FalsePicturesHarmNobody) {
    constexpr std::uint64_t size = 24; // of 4 x 2 pixels
    const Picture good{
        .number = 9, .firstLine = 5, .lostBefore = 1, .size = size, .width = 4, .lines = 2, .bits = 8};
    const auto with = [good](auto change) {
        Picture picture = good;
        change(picture);
        return picture;
    };
    enum Given { nothing, sealed, unsealed };
    struct Row {
        const char* what;
        Picture picture;
        Given given;
        GC_ERROR code; // of the wait for the picture
    };
    const Row rows[] = {
        {"a good one", good, sealed, GC_ERR_SUCCESS},
        {"no memory", good, nothing, GC_ERR_IO},
        {"memory that may still change", good, unsealed, GC_ERR_IO},
        {"memory that is too small", with([](Picture& picture) { picture.size = 1U << 30U; }), sealed,
         GC_ERR_IO},
        {"more pixels than anybody has", with([](Picture& picture) { picture.width = ~0U; }), sealed,
         GC_ERR_IO},
        {"an unknown format", with([](Picture& picture) { picture.bits = 9; }), sealed, GC_ERR_TIMEOUT},
        {"fewer bytes than pixels", with([](Picture& picture) { picture.size = 12; }), sealed,
         GC_ERR_SUCCESS},
        {"more pixels than bytes", with([](Picture& picture) { picture.lines = 3; }), sealed, GC_ERR_SUCCESS},
        {"fewer lines", with([](Picture& picture) { picture.lines = 1; }), sealed, GC_ERR_SUCCESS},
        {"more bytes than pixels", with([](Picture& picture) { picture.size = 20, picture.width = 3; }),
         sealed, GC_ERR_SUCCESS},
    };
    for (const Row& row : rows) {
        const Memory memory(size, row.given == sealed);
        const FakeStation station([&](FakeStation& self, const ToStation& to) {
            const auto* accept = std::get_if<Accept>(&to.request);
            if (accept != nullptr && accept->room == 1 && accept->received == 0)
                self.send(encoded(ToClient{0, row.picture}),
                          row.given == nothing ? -1 : memory.shared.descriptor());
            return accept != nullptr;
        });
        ProducerSession session("station-fake");
        session.queueBuffers(1);
        auto* const pixels =
            reinterpret_cast<std::uint8_t*>(session.bufferNumber(session.buffers[0], BUFFER_INFO_BASE));
        std::memset(pixels, 0xAA, size);
        session.start();
        EVENT_NEW_BUFFER_DATA data{};
        std::size_t dataSize = sizeof data;
        const std::uint64_t patience = row.code == GC_ERR_TIMEOUT ? 300 : GENTL_INFINITE;
        EXPECT_EQ(EventGetData(session.event, &data, &dataSize, patience), row.code) << row.what;
        if (row.code != GC_ERR_SUCCESS) continue;
        const auto info = [&](std::int32_t command) {
            return session.bufferNumber(data.BufferHandle, command);
        };
        const bool isWhole = row.picture.lines * row.picture.width * 3 <= row.picture.size;
        EXPECT_EQ(info(BUFFER_INFO_FRAMEID), 9U) << row.what;
        EXPECT_EQ(info(BUFFER_INFO_TIMESTAMP_NS), 40U) << row.what;
        EXPECT_EQ(info(BUFFER_INFO_IS_INCOMPLETE), isWhole ? 0U : 1U) << row.what;
        const std::size_t filled = std::size_t{row.picture.lines} * row.picture.width * 3;
        EXPECT_TRUE(!isWhole || std::memcmp(pixels, memory.shared.bytes().data(), filled) == 0) << row.what;
        EXPECT_TRUE(!isWhole || std::all_of(pixels + filled, pixels + row.picture.width * 6,
                                            [](std::uint8_t byte) { return byte == 0; }))
            << row.what;
        EXPECT_EQ(session.streamNumber(STREAM_INFO_NUM_UNDERRUN), 2U)
            << row.what; // one between 7 and 9, one lost before
    }
}

TEST_F(ServedStation, OneThatDoesNotAnswerBlocksNoOtherDevice) {
    std::promise<void> isAsked, mayAnswer;
    const FakeStation station([&](FakeStation&, const ToStation& to) {
        if (is<Describe>(to)) {
            isAsked.set_value();
            mayAnswer.get_future().wait();
        }
        return false;
    });
    ProducerSession session;
    IF_HANDLE interface {};
    DEV_HANDLE device{};
    ok(TLOpenInterface(session.tl, "station-fake", &interface));
    std::thread opening([&] {
        EXPECT_EQ(IFOpenDevice(interface, "station-fake-process-0", DEVICE_ACCESS_CONTROL, &device),
                  GC_ERR_SUCCESS); // had it to wait for the calls below, it would time out
    });
    isAsked.get_future().wait();
    ok(DevClose(session.device));
    ok(IFOpenDevice(session.interface, support::deviceId, DEVICE_ACCESS_CONTROL, &session.device));
    ok(TLUpdateInterfaceList(session.tl, nullptr, 0));
    mayAnswer.set_value();
    opening.join();
    ok(DevClose(device));
}

TEST_F(ServedStation, ItsEndEndsAllWaits) {
    const FakeStation station([](FakeStation& self, const ToStation& to) {
        const auto* read = std::get_if<ReadValue>(&to.request);
        const bool isLast = read != nullptr && read->name == "FG_YOFFSET";
        if (isLast) self.end();
        return isLast;
    });
    ProducerSession session("station-fake");
    EVENT_HANDLE errors{};
    ok(GCRegisterEvent(session.device, EVENT_ERROR, &errors));
    EXPECT_EQ(session.get("Width"), 4);
    std::thread waiting([&] {
        EVENT_NEW_BUFFER_DATA data{};
        std::size_t size = sizeof data;
        EXPECT_EQ(EventGetData(session.event, &data, &size, GENTL_INFINITE), GC_ERR_IO);
    });
    EXPECT_THROW(session.get("OffsetY"), std::exception);
    waiting.join();
    char data[256];
    std::size_t size = sizeof data;
    ok(EventGetData(errors, data, &size, GENTL_INFINITE));
    GC_ERROR code = 0;
    INFO_DATATYPE type = 0;
    std::size_t codeSize = sizeof code;
    ok(EventGetDataInfo(errors, data, size, EVENT_DATA_ID, &type, &code, &codeSize));
    EXPECT_EQ(code, GC_ERR_IO);
    EXPECT_EQ(session.set("AcquisitionStop", 1), GC_ERR_SUCCESS); // nothing runs
    EXPECT_EQ(session.set("AcquisitionStart", 1), GC_ERR_IO);
}

} // namespace
