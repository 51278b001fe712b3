// Time, events and pictures of a virtual station.

#include "applet_host/AppletHost.h"
#include "open_station.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <ranges>
#include <thread>

namespace {

constexpr std::uint64_t millisecond = VEXO_TICKS_PER_SECOND / 1000;

struct Simulation : OpenStation {
    void simulatorOn(const char* format = "FG_FORMAT=FG_COL24") {
        station.set({"FG_WIDTH=64", "FG_HEIGHT=16", format, "FG_CAMERASIMULATOR_ENABLE=FG_CAMERASIMULATOR"});
    }
};

TEST_F(Simulation, TimeIsSteppedOrFollowsTheClock) {
    EXPECT_EQ(station.now(), 0U);
    station.advance(5 * millisecond);
    EXPECT_EQ(station.now(), 5 * millisecond);
    station.clock(1000);
    const std::uint64_t tick = station.now();
    while (station.now() < tick + 10 * millisecond)
        std::this_thread::yield();
    EXPECT_EQ(vexo_advance(handle, 1), VEXO_ERR_STATE);
    station.clock(0);
    const std::uint64_t stopped = station.now();
    EXPECT_EQ(station.now(), stopped);
}

TEST_F(Simulation, EventsComeAtTheEdgesOfAWave) {
    const std::uint64_t rising = station.eventMask("FG_TRIGGER_INPUT2_RISING");
    station.wave("GPI_2=square:10ms,2ms");
    std::vector<std::uint64_t> ticks;
    while (ticks.size() < 3) {
        const auto event = station.waitEvent(rising);
        ASSERT_TRUE(event);
        EXPECT_STREQ(event->name, "FG_TRIGGER_INPUT2_RISING");
        EXPECT_EQ(event->mask, rising);
        ticks.push_back(event->tick);
    }
    EXPECT_EQ(ticks[1] - ticks[0], 10 * millisecond);
    EXPECT_EQ(ticks[2] - ticks[1], 10 * millisecond);
    EXPECT_LT(station.now() - ticks[2], millisecond) << "the wait ends soon after the event";
    station.wave("GPI_2=low");
    const std::uint64_t begin = station.now();
    EXPECT_FALSE(station.waitEvent(rising, {.seconds = 0.05}));
    EXPECT_EQ(station.now() - begin, 50 * millisecond);
    EXPECT_FALSE(station.waitEvent(rising, {.seconds = 1e6, .wall = 0.01}))
        << "the wall clock ends it as well";
}

TEST_F(Simulation, PicturesAreThoseOfTheBoard) {
    for (const char* format : {"FG_FORMAT=FG_COL24", "FG_FORMAT=FG_COL30", "FG_FORMAT=FG_COL48"}) {
        SCOPED_TRACE(format);
        const applet_host::AppletHost host;
        applet_host::Session other(host);
        vexo::Station fresh = vexo::Station::virtualBoard();
        const std::string code = fresh["FG_FORMAT"].get<std::string>();
        fresh.set({"FG_WIDTH=64", "FG_HEIGHT=16", format, "FG_CAMERASIMULATOR_ENABLE=FG_CAMERASIMULATOR"});
        for (const char* name : {"FG_WIDTH", "FG_HEIGHT", "FG_FORMAT", "FG_CAMERASIMULATOR_ENABLE"}) {
            const auto value = fresh.get<std::uint32_t>(name);
            ASSERT_EQ(host.applet().Fg_setParameterWithType(other.fg(), fresh[name].id(), &value, 0,
                                                            FG_PARAM_UINT32),
                      FG_OK);
        }
        vboard_frames* memory = host.board().memory(other.device, 2, 1 << 20, VBOARD_BLOCKING);
        ASSERT_EQ(host.applet().Fg_AcquireEx(other.fg(), 0, 0, 0, memory), FG_OK);
        ASSERT_EQ(host.board().wait(other.device, 1, VEXO_TICKS_PER_SECOND), 1);
        vboard_record record{};
        ASSERT_EQ(host.board().frame(memory, 1, &record), VBOARD_OK);
        const vexo::Picture picture = fresh.grab();
        EXPECT_TRUE(std::ranges::equal(picture.bytes(), std::span(record.data, record.size)));
        EXPECT_EQ(picture.info().bits, record.bits);
        EXPECT_EQ(picture.info().stride * picture.height(), picture.info().size);
        const auto pixels = picture.pixels();
        std::uint32_t blue = 0; // of the first pixel: the lowest bits of its line
        for (std::uint32_t bit = 0; bit < record.bits; ++bit)
            blue |= (record.data[bit / 8] >> bit % 8 & 1U) << bit;
        EXPECT_EQ(pixels[2], blue);
        host.board().memory_free(memory);
    }
}

TEST_F(Simulation, AMemoryKeepsPicturesOrOverwritesTheOldest) {
    simulatorOn();
    vexo_picture picture{};
    ASSERT_EQ(vexo_start(handle, 2, VEXO_KEEP), VEXO_OK);
    EXPECT_EQ(vexo_start(handle, 2, VEXO_KEEP), VEXO_ERR_STATE);
    ASSERT_EQ(vexo_wait_picture(handle, 0, 1, -1, &picture), VEXO_OK);
    ASSERT_EQ(vexo_wait_picture(handle, 0, 1, -1, &picture), VEXO_OK);
    EXPECT_EQ(picture.number, 2);
    EXPECT_EQ(vexo_wait_picture(handle, 0, 0.1, -1, &picture), VEXO_TIMEOUT);
    EXPECT_TRUE(lastErrorHas("release some")) << vexo_last_error();
    std::vector<std::uint8_t> bytes(picture.size);
    EXPECT_EQ(vexo_render(handle, 1, bytes.data(), bytes.size() - 1), VEXO_ERR_SPACE);
    EXPECT_EQ(vexo_render(handle, 1, bytes.data(), bytes.size()), VEXO_OK);
    EXPECT_EQ(vexo_release(handle, 1), VEXO_OK);
    EXPECT_EQ(vexo_release(handle, 1), VEXO_ERR_GONE);
    EXPECT_EQ(vexo_wait_picture(handle, 0, 1, -1, &picture), VEXO_OK);
    EXPECT_EQ(picture.number, 3);
    ASSERT_EQ(vexo_stop(handle), VEXO_OK);
    EXPECT_EQ(vexo_stop(handle), VEXO_OK);

    ASSERT_EQ(vexo_start(handle, 2, VEXO_RING), VEXO_OK);
    ASSERT_EQ(vexo_wait_picture(handle, 5, 1, -1, &picture), VEXO_OK);
    EXPECT_EQ(picture.number, 5);
    EXPECT_EQ(vexo_render(handle, 1, bytes.data(), bytes.size()), VEXO_ERR_GONE);
    EXPECT_EQ(vexo_wait_picture(handle, 1, 1, -1, &picture), VEXO_ERR_GONE);
}

struct Sharing {
    const char* what;
    vexo_memory memory;
    double clock;
};

TEST_F(Simulation, ThreadsThatWaitForTheNextPictureShareThem) {
    constexpr std::size_t most = 400;
    simulatorOn();
    for (const Sharing& row :
         {Sharing{"keep, stepped", VEXO_KEEP, 0}, Sharing{"ring, stepped", VEXO_RING, 0},
          Sharing{"keep, wall clock", VEXO_KEEP, 20}, Sharing{"ring, wall clock", VEXO_RING, 20}}) {
        SCOPED_TRACE(row.what);
        station.clock(row.clock);
        ASSERT_EQ(vexo_start(handle, row.memory == VEXO_KEEP ? 4 : 1000, row.memory), VEXO_OK)
            << vexo_last_error();
        std::mutex adding;
        std::vector<std::int64_t> given;
        std::atomic<std::size_t> count = 0;
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 4; ++thread)
            threads.emplace_back([&] {
                vexo_picture picture{};
                for (std::int64_t before = 0; count++ < most; before = picture.number) {
                    while (vexo_wait_picture(handle, 0, 1e-5, -1, &picture) == VEXO_TIMEOUT) {
                    } // takes none
                    ASSERT_GT(picture.number, before);
                    const std::lock_guard lock(adding);
                    given.push_back(picture.number);
                    if (row.memory == VEXO_KEEP) {
                        ASSERT_EQ(vexo_release(handle, picture.number), VEXO_OK) << vexo_last_error();
                    }
                }
            });
        for (std::thread& thread : threads)
            thread.join();
        std::ranges::sort(given);
        EXPECT_EQ(std::ranges::adjacent_find(given), given.end()) << "given twice";
        EXPECT_EQ(given.size(), most);
        const bool mayOverwrite = row.memory == VEXO_RING && row.clock > 0;
        if (!mayOverwrite) {
            EXPECT_EQ(given.back(), most) << "none is lost";
        }
        EXPECT_EQ(vexo_stop(handle), VEXO_OK);
    }
}

TEST_F(Simulation, AWaitForTheNextPictureLeavesOutWhatIsGone) {
    simulatorOn();
    vexo_picture picture{};
    ASSERT_EQ(vexo_start(handle, 2, VEXO_RING), VEXO_OK);
    ASSERT_EQ(vexo_wait_picture(handle, 5, 1, -1, &picture), VEXO_OK);
    ASSERT_EQ(vexo_wait_picture(handle, 4, 1, -1, &picture), VEXO_OK);
    ASSERT_EQ(vexo_wait_picture(handle, 0, 1, -1, &picture), VEXO_OK);
    EXPECT_EQ(picture.number, 6) << "numbers do not go back";
    const std::uint64_t period = picture.arrival - picture.first_line;
    station.advance(6 * period);
    ASSERT_EQ(vexo_wait_picture(handle, 0, 1, -1, &picture), VEXO_OK) << vexo_last_error();
    EXPECT_GT(picture.number, 7) << "the oldest in the memory";
    const std::int64_t oldest = picture.number;
    ASSERT_EQ(vexo_wait_picture(handle, 0, 1, -1, &picture), VEXO_OK);
    EXPECT_EQ(picture.number, oldest + 1);
    ASSERT_EQ(vexo_stop(handle), VEXO_OK);

    ASSERT_EQ(vexo_start(handle, 4, VEXO_KEEP), VEXO_OK);
    ASSERT_EQ(vexo_wait_picture(handle, 0, 1, -1, &picture), VEXO_OK);
    station.advance(6 * period);
    ASSERT_EQ(vexo_release(handle, 2), VEXO_OK) << vexo_last_error();
    ASSERT_EQ(vexo_wait_picture(handle, 0, 1, -1, &picture), VEXO_OK);
    EXPECT_EQ(picture.number, 3) << "2 was released";
}

TEST_F(Simulation, ARangeOfPicturesLosesNone) {
    simulatorOn();
    std::int64_t count = 0;
    for (const vexo::Picture& picture : station.pictures(20)) {
        EXPECT_EQ(picture.info().number, ++count);
        EXPECT_EQ(picture.info().lost_before, 0U);
    }
    EXPECT_EQ(count, 20);
    EXPECT_EQ(station.grab().info().number, 1) << "the range has ended its acquisition";
}

#if !defined(__clang__) || __clang_major__ >= 16 // older ones do not take the views of libstdc++
TEST_F(Simulation, ARangeOfPicturesIsAView) {
    simulatorOn();
    vexo::Pictures pictures = station.pictures();
    std::int64_t count = 0;
    for (const vexo::Picture& picture : pictures | std::views::take(2))
        EXPECT_EQ(picture.info().number, ++count);
    EXPECT_EQ(pictures.next().info().number, count + 1) << "none is taken that is not looked at";
    vexo::Pictures others = std::move(pictures);
    pictures = std::move(others);
    EXPECT_EQ(pictures.next().info().number, count + 2);
    {
        vexo::Pictures last = std::move(pictures);
        for (const vexo::Picture& picture : last | std::views::take(1))
            EXPECT_EQ(picture.info().number, count + 3);
    }
    EXPECT_EQ(station.grab().info().number, 1) << "the acquisition has ended";
}
#endif

TEST_F(Simulation, AMissingPictureHasAReason) {
    ASSERT_EQ(vexo_start(handle, 1, VEXO_KEEP), VEXO_OK);
    vexo_picture picture{};
    EXPECT_EQ(vexo_wait_picture(handle, 0, 0.1, -1, &picture), VEXO_TIMEOUT);
    EXPECT_TRUE(lastErrorHas("no line came")) << vexo_last_error();
    EXPECT_EQ(vexo_wait_picture(handle, 0, 1e6, 0.01, &picture), VEXO_TIMEOUT);
}

TEST_F(Simulation, AStopEndsTheWaitOfAnotherThread) {
    ASSERT_EQ(vexo_start(handle, 1, VEXO_KEEP), VEXO_OK);
    std::thread waiting([&] {
        vexo_picture picture{};
        EXPECT_EQ(vexo_wait_picture(handle, 0, 1e9, -1, &picture), VEXO_ERR_STATE);
    });
    while (station.now() == 0) // the wait advances the time
        std::this_thread::yield();
    EXPECT_EQ(vexo_stop(handle), VEXO_OK);
    waiting.join();
}

TEST_F(Simulation, AStationFileSetsItUp) {
    const std::string file = testing::TempDir() + "host_station.json";
    const auto write = [&](const std::string& text) { std::ofstream(file) << text; };
    write(
        R"({"station": 1, "camera": {"width": 64, "lineRate": 10000}, "parameters": {"FG_WIDTH": 64, "FG_HEIGHT": 8}})");
    EXPECT_EQ(vexo_set_up(handle, file.c_str()), VEXO_OK) << vexo_last_error();
    EXPECT_EQ(station.grab().width(), 64U);
    write(R"({"station": 1, "camera": {"width": "wide"}})");
    EXPECT_EQ(vexo_set_up(handle, file.c_str()), VEXO_ERR_VALUE);
    EXPECT_TRUE(lastErrorHas("camera.width")) << vexo_last_error();
    write(R"({"station": 1, "parameters": {"FG_WIDTH": 99999}})");
    EXPECT_EQ(vexo_set_up(handle, file.c_str()), FG_ERR_OUT_OF_RANGE);
    std::filesystem::remove(file);
}

TEST_F(Simulation, APictureThatIsNoneIsNotRead) {
    const std::uint8_t bytes[6] = {};
    std::uint16_t pixels[6] = {};
    vexo_picture picture{};
    picture.width = 2;
    picture.height = 1;
    picture.bits = 8;
    picture.stride = 6;
    picture.size = 6;
    EXPECT_EQ(vexo_unpack(&picture, bytes, pixels), VEXO_OK);
    for (std::uint32_t vexo_picture::*member :
         {&vexo_picture::width, &vexo_picture::bits, &vexo_picture::height}) {
        vexo_picture wrong = picture;
        wrong.*member = 1000;
        EXPECT_EQ(vexo_unpack(&wrong, bytes, pixels), VEXO_ERR_ARGUMENT);
    }
    EXPECT_EQ(vexo_write_picture(&picture, bytes, "picture.unknown"), VEXO_ERR_VALUE);
    EXPECT_STREQ(vexo_last_error(), "\"picture.unknown\" does not end with .png, .tiff, .ppm or .raw");
    EXPECT_EQ(vexo_write_picture(&picture, bytes, "/nonexistent/picture.ppm"), VEXO_ERR_FILE);
}

} // namespace
