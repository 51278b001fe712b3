// Pictures of the producer: delivery, stop, flush, revoke, and many threads.

#include "support/producer_session.h"
#include "support/sanitizers.h"
#include "support/temporary_folder.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <bit>
#include <chrono>
#include <cstring>
#include <random>
#include <thread>

namespace {

using support::ok;
using support::ProducerSession;

/** Small pictures that come fast. */
class ProducerStream : public testing::Test {
protected:
    explicit ProducerStream(const char* clock = "stepped") : m_set(setenv("VBOARD_CLOCK", clock, 1)) {
        ok(session.set("Width", 64));
        ok(session.set("Height", 16));
    }

private:
    const int m_set; // before the session opens

protected:
    ProducerSession session;
};

class ProducerInRealTime : public ProducerStream {
protected:
    ProducerInRealTime() : ProducerStream("wall") {}
};

TEST_F(ProducerStream, PicturesArriveInOrderWithTheirInformation) {
    ok(session.set("OffsetX", 8));
    session.queueBuffers(3);
    session.start();
    std::uint64_t before = 0;
    for (std::uint64_t number = 1; number <= 20; ++number) {
        const BUFFER_HANDLE buffer = session.fetch();
        ASSERT_NE(buffer, nullptr);
        const auto info = [&](std::int32_t command) { return session.bufferNumber(buffer, command); };
        EXPECT_EQ(info(BUFFER_INFO_FRAMEID), number);
        EXPECT_EQ(info(BUFFER_INFO_WIDTH), 64U);
        EXPECT_EQ(info(BUFFER_INFO_HEIGHT), 16U);
        EXPECT_EQ(info(BUFFER_INFO_DELIVERED_IMAGEHEIGHT), 16U);
        EXPECT_EQ(info(BUFFER_INFO_XOFFSET), 8U);
        EXPECT_EQ(info(BUFFER_INFO_PIXELFORMAT), 0x02180015U);
        EXPECT_EQ(info(BUFFER_INFO_SIZE_FILLED), 64U * 16 * 3);
        EXPECT_EQ(info(BUFFER_INFO_PAYLOADTYPE), 1U);
        EXPECT_EQ(info(BUFFER_INFO_IS_INCOMPLETE), 0U);
        EXPECT_EQ(info(BUFFER_INFO_IS_QUEUED), 0U);
        // Lines are 200 µs apart.
        const std::uint64_t time = info(BUFFER_INFO_TIMESTAMP_NS);
        EXPECT_EQ(time - before, number > 1 ? 16U * 200'000 : time);
        before = time;
        const auto* pixels = reinterpret_cast<const std::uint8_t*>(info(BUFFER_INFO_BASE));
        EXPECT_EQ(static_cast<std::uint8_t>(pixels[0] + 1), pixels[3]); // a ramp
        EXPECT_EQ(session.get("Width"), 64);
        EXPECT_EQ(session.set("Width", 128), GC_ERR_ACCESS_DENIED);
        EXPECT_EQ(session.set("FG_LUT_ENABLE", 0), GC_ERR_SUCCESS);
        ok(DSQueueBuffer(session.stream, buffer));
    }
    EXPECT_EQ(session.streamNumber(STREAM_INFO_NUM_UNDERRUN), 0U);
    EXPECT_EQ(session.streamNumber(STREAM_INFO_IS_GRABBING), 1U);
    ok(session.set("AcquisitionStop", 1));
    ok(DSStopAcquisition(session.stream, 0));
    ok(session.set("Width", 128));
}

TEST_F(ProducerStream, FlushMovesBuffersBetweenTheQueues) {
    session.queueBuffers(3);
    constexpr struct {
        std::int32_t operation;
        std::uint64_t queued, awaiting; // afterwards
    } steps[] = {{ACQ_QUEUE_INPUT_TO_OUTPUT, 0, 3},
                 {ACQ_QUEUE_OUTPUT_DISCARD, 0, 0},
                 {ACQ_QUEUE_UNQUEUED_TO_INPUT, 3, 0},
                 {ACQ_QUEUE_OUTPUT_DISCARD, 3, 0},
                 {ACQ_QUEUE_INPUT_TO_OUTPUT, 0, 3},
                 {ACQ_QUEUE_UNQUEUED_TO_INPUT, 0, 3}, // those in the output are queued
                 {ACQ_QUEUE_ALL_TO_INPUT, 3, 0},
                 {ACQ_QUEUE_ALL_DISCARD, 0, 0}};
    for (const auto& step : steps) {
        ok(DSFlushQueue(session.stream, step.operation));
        EXPECT_EQ(session.streamNumber(STREAM_INFO_NUM_QUEUED), step.queued) << step.operation;
        EXPECT_EQ(session.streamNumber(STREAM_INFO_NUM_AWAIT_DELIVERY), step.awaiting) << step.operation;
    }
}

TEST_F(ProducerStream, FormatsChangeTheData) {
    struct Row {
        std::int64_t format;
        unsigned bytes;        // of 64 pixels
        std::uint8_t first[6]; // of pixel 0, which is 0x40 in the 8 bits of the link
    };
    // Gains tell the colours apart: red 0.5, blue 0.25. The applet aligns to the left.
    const Row rows[] = {{0x02180015, 192, {0x10, 0x40, 0x20}},
                        {0x02180014, 192, {0x20, 0x40, 0x10}},
                        {0x0230004A, 384, {0x00, 0x04, 0x00, 0x10, 0x00, 0x08}},
                        {0x0230004B, 384, {0x00, 0x10, 0x00, 0x40, 0x00, 0x20}}};
    const double gains[] = {0.5, 1.0, 0.25};
    for (std::int64_t colour = 0; colour < 3; ++colour) {
        ok(session.set("GainSelector", colour));
        ok(session.set("Gain", std::bit_cast<std::int64_t>(gains[colour])));
    }
    ok(session.set("TestPattern", 1)); // horizontal: each line begins with the offset
    ok(session.set("FG_CAMERASIMULATOR_PATTERN_OFFSET", 0x40));
    for (const Row& row : rows) {
        ok(session.set("PixelFormat", row.format));
        EXPECT_EQ(session.get("PayloadSize"), row.bytes * 16);
        session.queueBuffers(1);
        ok(DSStartAcquisition(session.stream, 0, 1));
        ok(session.set("AcquisitionMode", 1));
        ok(session.set("AcquisitionStart", 1));
        const BUFFER_HANDLE buffer = session.fetch();
        ASSERT_NE(buffer, nullptr);
        const auto* pixels =
            reinterpret_cast<const std::uint8_t*>(session.bufferNumber(buffer, BUFFER_INFO_BASE));
        EXPECT_EQ(std::memcmp(pixels, row.first, row.bytes / 64), 0) << std::hex << row.format;
        EXPECT_EQ(session.streamNumber(STREAM_INFO_IS_GRABBING), 0U);
        EXPECT_EQ(session.streamNumber(STREAM_INFO_NUM_DELIVERED), 1U); // of this acquisition
        ok(DSStopAcquisition(session.stream, 1));
    }
}

TEST_F(ProducerStream, SmallBuffersAreMarked) {
    BUFFER_HANDLE buffer{};
    std::uint8_t memory[100] = {};
    ok(DSAnnounceBuffer(session.stream, memory, 64, &session, &buffer));
    BUFFER_HANDLE second{};
    EXPECT_EQ(DSAnnounceBuffer(session.stream, memory, 64, &session, &second), GC_ERR_RESOURCE_IN_USE);
    session.start();
    EXPECT_EQ(session.set("AcquisitionStart", 1), GC_ERR_RESOURCE_IN_USE); // it runs already
    ok(DSQueueBuffer(session.stream, buffer));
    EXPECT_EQ(session.fetch(), buffer);
    for (const std::int32_t flag : {BUFFER_INFO_IS_INCOMPLETE, BUFFER_INFO_DATA_LARGER_THAN_BUFFER})
        EXPECT_EQ(session.bufferNumber(buffer, flag), 1U);
    EXPECT_EQ(session.bufferNumber(buffer, BUFFER_INFO_SIZE_FILLED), 64U);
    EXPECT_NE(memory[63], 0);
    EXPECT_EQ(memory[64], 0); // nothing is written after it
    void* revoked = nullptr;
    void* user = nullptr;
    ok(DSRevokeBuffer(session.stream, buffer, &revoked, &user));
    EXPECT_TRUE(revoked == memory && user == &session);
}

TEST_F(ProducerInRealTime, WithoutBuffersTheDmaWaitsAndTheBoardLosesImages) {
    ok(session.set("Height", 1024)); // the buffer of the board holds 21 of them
    session.queueBuffers(2);
    ok(session.set("EventSelector", 6)); // of the overflow
    ok(session.set("EventNotification", 1));
    EVENT_HANDLE events{};
    ok(GCRegisterEvent(session.device, EVENT_REMOTE_DEVICE, &events));
    ok(session.set("FG_CAMERASIMULATOR_WIDTH", 64));
    ok(session.set("ExposureTime", std::bit_cast<std::int64_t>(1.0)));
    ok(session.set("AcquisitionLineRate", std::bit_cast<std::int64_t>(100'000.0)));
    session.start();
    std::uint64_t data[3] = {};
    size_t size = sizeof data;
    ok(EventGetData(events, data, &size, 20'000)); // an overflow, as no buffer is fetched
    EXPECT_EQ(size, sizeof data);
    EXPECT_EQ(data[0], 6U);
    EXPECT_EQ(data[1], 32U);
    EXPECT_GT(data[2], 0U);
    INFO_DATATYPE type = 0;
    char id[8];
    size = sizeof id;
    ok(EventGetDataInfo(events, data, sizeof data, EVENT_DATA_ID, &type, id, &size));
    EXPECT_STREQ(id, "06");
    while (session.streamNumber(STREAM_INFO_NUM_UNDERRUN) == 0) { // tells once the pictures before have left
        const BUFFER_HANDLE buffer = session.fetch();
        ASSERT_NE(buffer, nullptr);
        ok(DSQueueBuffer(session.stream, buffer));
    }
}

TEST_F(ProducerStream, SteppedTimePassesOnlyForQueuedBuffers) {
    session.queueBuffers(1);
    session.start();
    const BUFFER_HANDLE buffer = session.fetch();
    ASSERT_NE(buffer, nullptr);
    const std::int64_t before = session.get("Timestamp");
    EXPECT_EQ(session.fetch(300), nullptr);
    EXPECT_EQ(session.get("Timestamp"), before);
    ok(DSQueueBuffer(session.stream, buffer));
    EXPECT_NE(session.fetch(), nullptr);
    EXPECT_GT(session.get("Timestamp"), before);
}

TEST_F(ProducerStream, SetReportsChangedLimits) {
    EVENT_HANDLE events{};
    ok(GCRegisterEvent(session.device, EVENT_FEATURE_INVALIDATE, &events));
    ok(session.set("Width", 512));
    std::string names;
    char name[64];
    for (size_t size = sizeof name; EventGetData(events, name, &size, 0) == GC_ERR_SUCCESS;
         size = sizeof name)
        names += std::string(name, size) + ' ';
    EXPECT_EQ(names, "OffsetX FG_XOFFSET ");
}

TEST_F(ProducerInRealTime, KillFlushRevokeAndStopAtAnyMoment) {
    session.queueBuffers(4);
    std::mt19937 random(1);
    for (int round = 0; round < 60; ++round) {
        session.start();
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 9000));
        switch (round % 6) {
        case 0:
            ok(DSFlushQueue(session.stream, ACQ_QUEUE_ALL_DISCARD));
            for (const BUFFER_HANDLE buffer : session.buffers)
                EXPECT_EQ(session.bufferNumber(buffer, BUFFER_INFO_IS_QUEUED), 0U);
            break;
        case 1:
            for (const BUFFER_HANDLE buffer : session.buffers) {
                const GC_ERROR code = DSRevokeBuffer(session.stream, buffer, nullptr, nullptr);
                EXPECT_TRUE(code == GC_ERR_BUSY || code == GC_ERR_SUCCESS) << code;
            }
            break;
        case 2:
            ok(EventKill(session.event));
            EXPECT_EQ(session.fetch(), nullptr);
            break;
        case 3: // what the stream is to be stopped before
            ok(session.set("AcquisitionStop", 1));
            break;
        case 4:
            ok(GCUnregisterEvent(session.stream, EVENT_NEW_BUFFER));
            ok(GCRegisterEvent(session.stream, EVENT_NEW_BUFFER, &session.event));
            break;
        default:
            EXPECT_NE(session.fetch(), nullptr);
        }
        ok(DSStopAcquisition(session.stream, round % 2));
        ok(session.set("AcquisitionStop", 1));
        EXPECT_EQ(session.streamNumber(STREAM_INFO_IS_GRABBING), 0U);
        ok(DSFlushQueue(session.stream, ACQ_QUEUE_ALL_DISCARD));
        for (BUFFER_HANDLE buffer{}; DSGetBufferID(session.stream, 0, &buffer) == GC_ERR_SUCCESS;)
            ok(DSRevokeBuffer(session.stream, buffer, nullptr, nullptr));
        session.buffers.clear();
        session.queueBuffers(4);
    }
}

TEST_F(ProducerStream, EightThreadsOnOneStream) {
    session.queueBuffers(16);
    session.start();
    std::atomic<std::uint64_t> fetched{0};
    std::atomic<int> wrong{0};
    std::atomic<bool> ends{false};
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < 8; ++i)
        threads.emplace_back([&, i] {
            std::mt19937 random(i);
            while (!ends) {
                if (const BUFFER_HANDLE buffer = session.fetch(5)) {
                    // Now owned by this thread alone, apart from flushes by others.
                    ++fetched;
                    const GC_ERROR code = DSQueueBuffer(session.stream, buffer);
                    if (code != GC_ERR_SUCCESS && code != GC_ERR_RESOURCE_IN_USE) ++wrong;
                }
                if (i == 0 && random() % 8 == 0 && DSFlushQueue(session.stream, 3) != GC_ERR_SUCCESS) ++wrong;
                if (i == 1 && random() % 8 == 0 && EventKill(session.event) != GC_ERR_SUCCESS) ++wrong;
                if (i == 2 && session.streamNumber(STREAM_INFO_NUM_ANNOUNCED) != 16) ++wrong;
                if (i == 3 && session.get("Width") != 64) ++wrong;
            }
        });
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (fetched < 200 && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    // The stream is closed during their calls.
    std::thread waiter([&] {
        EVENT_NEW_BUFFER_DATA data{};
        for (GC_ERROR code = GC_ERR_SUCCESS; code != GC_ERR_ABORT && code != GC_ERR_INVALID_HANDLE;) {
            size_t size = sizeof data;
            code = EventGetData(session.event, &data, &size, GENTL_INFINITE);
        }
    });
    ends = true;
    for (std::thread& thread : threads)
        thread.join();
    ok(DSClose(session.stream));
    waiter.join();
    EXPECT_GE(fetched, 200U);
    EXPECT_EQ(wrong, 0);
}

std::size_t allocatedBytes() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

TEST(ProducerEndurance, OpenAndCloseTenThousandTimes) {
    std::size_t before = 0;
    const int devices = underAddressSanitizer ? 5 : 100; // of each session
    for (int i = 0; i < 100; ++i) {
        if (i == 10) before = allocatedBytes();
        ProducerSession session; // loads the libraries, too
        for (int k = 0; k < devices; ++k) {
            ok(DevClose(session.device));
            ok(IFOpenDevice(session.interface, support::deviceId, DEVICE_ACCESS_CONTROL, &session.device));
            ok(DevGetPort(session.device, &session.port));
            ok(DevOpenDataStream(session.device, support::streamId, &session.stream));
            if (k % 10 == 0) session.start(); // closed while it runs
        }
    }
    if (underAddressSanitizer) return; // it keeps what is freed for a while
    EXPECT_LT(allocatedBytes(), before + 90 * 100 * 12) << "fewer bytes than a block each time";
}

/** Runs a client that leaves something open in a process of its own. One that waits for ever is ended. */
template <typename Client> int exitCodeOf(Client client) {
    const pid_t child = fork();
    if (child == 0) {
        alarm(60);
        client();
    }
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

TEST(ProducerEndurance, ClientMayExitWithoutClosing) {
    for (int round = 0; round < 20; ++round) {
        const int status = exitCodeOf([round] {
            if (round % 2 == 1) ProducerSession(); // loads the libraries, which are loaded again below
            auto* const session = new ProducerSession;
            session->queueBuffers(2);
            session->start();
            std::thread waiting([session] {
                for (;;)
                    session->fetch(GENTL_INFINITE);
            });
            waiting.detach();
            usleep(static_cast<useconds_t>(round) * 1000);
            std::exit(0);
        });
        EXPECT_EQ(status, 0);
    }
}

TEST(ProducerEndurance, ForkedChildLeavesTheParentAlone) {
    if (underAddressSanitizer) GTEST_SKIP() << "its allocator's locks stay locked when another thread forks";
    EXPECT_EQ(exitCodeOf([] {
                  ProducerSession session;
                  session.queueBuffers(4);
                  session.start();
                  // A child has none of the threads, and shares sockets with its parent.
                  const auto closes = [&] {
                      const bool isRefused = DSClose(session.stream) == GC_ERR_NOT_INITIALIZED &&
                                             DevClose(session.device) == GC_ERR_NOT_INITIALIZED &&
                                             GCCloseLib() == GC_ERR_NOT_INITIALIZED;
                      std::exit(isRefused ? 0 : 1);
                  };
                  for (int i = 0; i < 10; ++i)
                      if (exitCodeOf(closes) != 0) std::_Exit(1);
                  std::_Exit(session.fetch() != nullptr ? 0 : 2);
              }),
              0);
}

TEST(ProducerStation, UsesTheStationFile) {
    // The belt moves a pixel of 0.1 mm each 200 us, the period of the lines: their numbers, read from the last bar, go on.
    const support::TemporaryFolder folder;
    const std::string file = folder / "station.json";
    setenv("VBOARD_CLOCK", "stepped", 1);
    setenv("VBOARD_STATION", file.c_str(), 1);
    support::writeFile(
        file, R"({"station": 1, "camera": {"width": 192}, "belt": {"profile": [{"speed": "500mm/s"}]},
        "parameters": {"FG_SENSORWIDTH": 192, "width": 192, "FG_HEIGHT": 8, "FG_LINEPERIODE": "0.2ms",
                       "FG_LUT_VALUE_RED[0..3]": 7, "FG_VANTAGEPOINT": "Top-Right"}})");
    {
        ProducerSession session;
        session.queueBuffers(2);
        session.start();
        const BUFFER_HANDLE buffer = session.fetch();
        ASSERT_NE(buffer, nullptr);
        const auto* pixels =
            reinterpret_cast<const std::uint8_t*>(session.bufferNumber(buffer, BUFFER_INFO_BASE));
        constexpr std::size_t lastBar = 191 - 172;
        for (std::size_t y = 1; y < 8; ++y)
            EXPECT_EQ(pixels[3 * (192 * y + lastBar)] ^ pixels[3 * (192 * (y - 1) + lastBar)], 255) << y;
    }
    for (const char* wrong :
         {R"({"station": 1, "camra": {}})", R"({"station": 1, "parameters": {"FG_WIDTH": 63}})",
          R"({"station": 1, "parameters": {"FG_FORMAT": "FG_COL25"}})",
          R"({"station": 1, "parameters": {"FG_WIDHT": 64}})"}) {
        support::writeFile(file, wrong);
        EXPECT_ANY_THROW(ProducerSession()) << wrong;
    }
    setenv("VBOARD_STATION", "", 1);
    EXPECT_ANY_THROW(ProducerSession()) << "no name";
    unsetenv("VBOARD_STATION");
}

TEST(ProducerEndurance, ClientMayUnloadWithoutClosing) {
    if (underThreadSanitizer || underAddressSanitizer)
        GTEST_SKIP() << "the sanitizers know one namespace of libraries";
    const int status = exitCodeOf([] {
        // A copy, since this program itself is linked with the producer.
        void* const library = dlmopen(LM_ID_NEWLM, PRODUCER_FILE, RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) std::exit(1);
        const auto call = [library](const char* name) { return dlsym(library, name); };
        void* handle = nullptr;
        void* device = nullptr;
        reinterpret_cast<decltype(&GCInitLib)>(call("GCInitLib"))();
        reinterpret_cast<decltype(&TLOpen)>(call("TLOpen"))(&handle);
        void* interface = nullptr;
        reinterpret_cast<decltype(&TLOpenInterface)>(call("TLOpenInterface"))(handle, support::interfaceId,
                                                                              &interface);
        const GC_ERROR code = reinterpret_cast<decltype(&IFOpenDevice)>(call("IFOpenDevice"))(
            interface, support::deviceId, DEVICE_ACCESS_CONTROL, &device);
        dlclose(library);
        usleep(20'000);
        std::_Exit(code == GC_ERR_SUCCESS ? 0 : 2);
    });
    EXPECT_EQ(status, 0);
}

} // namespace
