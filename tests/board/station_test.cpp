// The simulated station through the functions of the board and the runtime.

#include "support/board_session.h"
#include "vexo/fg_errors.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using board_session::VirtualStation;
using board_session::width;

TEST_F(VirtualStation, DeliversPicturesThroughTheRuntime) {
    // Without a memory pictures are counted and no time passes.
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, nullptr), 0);
    EXPECT_EQ(wait(5), 5);
    EXPECT_EQ(BOARD(vboard_now)(device), 0U);
    EXPECT_EQ(own<std::uint32_t>(5210), 3145728U);

    vboard_frames* memory = BOARD(vboard_memory)(device, 2, 768, VBOARD_RING);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 3, 0, memory), 0);
    EXPECT_EQ(own<std::uint32_t>(24092), 1U);
    EXPECT_EQ(own<std::uint32_t>(5210), 768U);
    EXPECT_EQ(BOARD(vboard_wait)(device, 2, 708), VBOARD_TIMEOUT); // it arrives at tick 709
    EXPECT_EQ(BOARD(vboard_now)(device), 708U);
    EXPECT_EQ(BOARD(vboard_wait)(device, 2, 100), 2);
    EXPECT_EQ(RUNTIME(getLastPicNumberEx)(fg, 0, memory), 2); // a query consumes nothing
    EXPECT_EQ(status(0), 2);
    vboard_record record{};
    ASSERT_EQ(BOARD(vboard_frame)(memory, 2, &record), VBOARD_OK);
    EXPECT_EQ(record.size, 768U);
    EXPECT_TRUE(record.width == 64 && record.lines == 4 && record.bits == 8 && record.bytes_per_line == 192);
    EXPECT_TRUE(record.first_line == 400 && record.last_line == 700 && record.trigger == 2);
    // The default pattern: x, without y. The end of line 700 and 6.0005 ticks for 192 bytes.
    EXPECT_TRUE(record.data[0] == 0 && record.data[3 * 63] == 63 && record.data[192 + 2] == 0);
    EXPECT_EQ(record.arrival, 709U);
    std::vector<std::uint8_t> destination(768);
    vboard_record apart{};
    EXPECT_EQ(BOARD(vboard_frame_into)(memory, 2, destination.data(), 767, &apart), VBOARD_TOO_SMALL);
    EXPECT_EQ(apart.size, 768U);
    EXPECT_EQ(BOARD(vboard_frame_into)(memory, 2, destination.data(), 768, &apart), VBOARD_OK);
    EXPECT_TRUE(std::equal(destination.begin(), destination.end(), record.data) &&
                apart.data == destination.data());
    EXPECT_EQ(BOARD(vboard_frame_into)(memory, 3, destination.data(), 768, &apart), VBOARD_GONE);
    EXPECT_EQ(status(VBOARD_STATUS_TICK), 709);
    EXPECT_EQ(status(VBOARD_STATUS_LINES), 8);
    EXPECT_EQ(BOARD(vboard_advance)(device, 1000), 1709U);
    EXPECT_EQ(own<std::uint32_t>(24092), 0U); // three were requested
    EXPECT_EQ(BOARD(vboard_frame)(memory, 1, &record), VBOARD_GONE);
    EXPECT_EQ(wait(4), FG_ERR_NOT_AVAILABLE);
    EXPECT_EQ(BOARD(vboard_wait)(device, 4, 1), FG_ERR_NOT_AVAILABLE);

    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), 0);
    EXPECT_EQ(setInt("CameraSimulator_Enable_SelectSource", 0), 0);
    EXPECT_EQ(wait(1, 2), VBOARD_TIMEOUT);
    EXPECT_EQ(BOARD(vboard_now)(device), 1709U + 250'000'000);
    EXPECT_EQ(RUNTIME(stopAcquireEx)(fg, 0, memory, 0), 0);
    EXPECT_EQ(own<std::uint32_t>(24092), 0U);
    BOARD(vboard_memory_free)(memory);
}

TEST_F(VirtualStation, RefusesMemoriesThatDoNotFit) {
    int foreign = 0;
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 3, 0, &foreign), FG_ERR_INVALID_ARGUMENT);
    LOOMdevice* other = BOARD(vboard_open)();
    vboard_frames* others = BOARD(vboard_memory)(other, 2, 768, VBOARD_RING);
    BOARD(vboard_close)(other); // the memory keeps it
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 3, 0, others), FG_ERR_INVALID_ARGUMENT);
    BOARD(vboard_memory_free)(others);
    vboard_frames* small = BOARD(vboard_memory)(device, 2, 767, VBOARD_RING);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 3, 0, small), FG_ERR_BUFFER);
    BOARD(vboard_memory_free)(small);
    EXPECT_EQ(own<std::uint32_t>(24092), 0U);
    EXPECT_EQ(BOARD(vboard_memory)(device, 0, 767, VBOARD_RING), nullptr);
    vboard_frames* memory = BOARD(vboard_memory)(device, 1, 768, VBOARD_BLOCKING);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), 0);
    EXPECT_EQ(BOARD(vboard_advance)(device, 1500), 1500U);
    EXPECT_EQ(RUNTIME(getLastPicNumberEx)(fg, 0, memory), 1); // no room for another
    EXPECT_EQ(BOARD(vboard_release)(memory, 1), VBOARD_OK);
    EXPECT_EQ(BOARD(vboard_release)(memory, 1), VBOARD_GONE);
    EXPECT_EQ(wait(2), 2);
    EXPECT_EQ(BOARD(vboard_memory_frames)(memory, 2), VBOARD_OK);
    EXPECT_EQ(wait(3), 3);
    EXPECT_EQ(BOARD(vboard_memory_frames)(memory, 0), VBOARD_OK);
    EXPECT_TRUE(BOARD(vboard_release)(memory, 2) == VBOARD_OK &&
                BOARD(vboard_release)(memory, 3) == VBOARD_OK);
    EXPECT_EQ(wait(4, 1), VBOARD_TIMEOUT);
    EXPECT_EQ(BOARD(vboard_memory_frames)(memory, 1), VBOARD_OK);
    vboard_record record{};
    EXPECT_EQ(BOARD(vboard_frame)(nullptr, 2, &record), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_frame)(memory, 2, nullptr), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_release)(nullptr, 2), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_frame)(memory, 1, &record), VBOARD_GONE);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), 0);
    EXPECT_EQ(setInt("Buffer_0_XLength", 128), 0);
    EXPECT_EQ(wait(1), 1);
    EXPECT_EQ(BOARD(vboard_frame)(memory, 1, &record), VBOARD_TOO_SMALL);
    EXPECT_EQ(record.data, nullptr);
    BOARD(vboard_memory_free)(memory); // ends the acquisition
    EXPECT_EQ(own<std::uint32_t>(24092), 0U);
    EXPECT_EQ(wait(4), FG_ERR_NOT_AVAILABLE);
    BOARD(vboard_reset)(device);
    EXPECT_EQ(BOARD(vboard_now)(device), 0U);
}

TEST_F(VirtualStation, ActsOnWritesWavesAndInjection) {
    EXPECT_EQ(setInt("Trigger_Trigger_ImgTriggerMode", 1), 0);
    EXPECT_EQ(setInt("Trigger_Trigger_ImgTriggerEnable", 1), 0);
    EXPECT_EQ(setInt("Trigger_Trigger_ImgTrgInSource", 4), 0);
    vboard_frames* memory = BOARD(vboard_memory)(device, 4, 768, VBOARD_RING);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), 0);
    EXPECT_EQ(BOARD(vboard_wave_square)(device, 3, 100, 1000, 50), VBOARD_OK);
    EXPECT_EQ(BOARD(vboard_wave_level)(device, 12, true), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_advance)(device, 120), 120U);
    EXPECT_EQ(setInt("Trigger_Trigger_SoftwareTrgPulse", 1), 0);
    EXPECT_EQ(wait(1), 1);
    vboard_record record{};
    EXPECT_EQ(BOARD(vboard_frame)(memory, 1, &record), VBOARD_OK);
    EXPECT_EQ(record.first_line, 200U);

    vboard_edge edges[2]{};
    bool level = true;
    EXPECT_EQ(BOARD(vboard_signals)(device, 24, 0, 200, edges, 2, &level), 2); // debounced for 3 ticks
    EXPECT_TRUE(!level && edges[0].tick == 103 && edges[0].level && edges[1].tick == 153);
    std::int64_t inputs = -1;
    BOARD(vboard_peek_int)(device, "Device1_Process1_Trigger_Inputs_InputStatus_Status", &inputs);
    EXPECT_EQ(inputs, 0);
    vboard_event event{};
    std::map<std::string, int> count;
    while (BOARD(vboard_next_event)(device, &event) == VBOARD_OK)
        ++count[event.name];
    EXPECT_EQ(count["Device1_Process1_Trigger_Inputs_InputEvents_InputEvents_Pin3"], 1);
    EXPECT_EQ(count["Device1_Process1_Trigger_Events_Events_LVAL_FVAL_Cam0LineStart"], 6);
    EXPECT_EQ(RUNTIME(getStatusEx)(fg, VBOARD_STATUS_EVENTS, 1 << 2, 0, nullptr), 6); // by mask too

    const std::uint16_t pixels[] = {0x1100, 0x2200, 0x3300};
    EXPECT_EQ(BOARD(vboard_inject)(device, VBOARD_OUTPUT, 1, 1, pixels), VBOARD_UNKNOWN); // the input is off
    EXPECT_EQ(setInt("OutputFormat_Debug_OperationMode", 1), 0);
    EXPECT_EQ(BOARD(vboard_inject)(device, VBOARD_OUTPUT, 1, 1, pixels), VBOARD_OK);
    EXPECT_EQ(wait(2), 2);
    EXPECT_EQ(BOARD(vboard_frame)(memory, 2, &record), VBOARD_OK);
    EXPECT_TRUE(record.data[0] == 0x33 && record.data[1] == 0x22 && record.data[2] == 0x11 &&
                record.data[3] == 0);

    const vboard_speed speed[] = {{1000, 1'250'000, 1'250'000}}; // ten quarter steps, then constant
    EXPECT_EQ(BOARD(vboard_wave_encoder)(device, 1, 2, speed, 1), VBOARD_OK);
    EXPECT_EQ(BOARD(vboard_wave_encoder)(device, 1, 1, speed, 1), VBOARD_UNKNOWN);
    const auto edgesIn = [&](std::uint64_t ticks) {
        const std::uint64_t now = BOARD(vboard_now)(device);
        BOARD(vboard_advance)(device, ticks);
        return BOARD(vboard_signals)(device, 22, now, now + ticks, nullptr, 0, nullptr);
    };
    EXPECT_EQ(edgesIn(1000), 5);
    const vboard_speed fast[] = {{1, 10'000'001, 0}}, back[] = {{1, 0, INT32_MIN}},
                       slow[] = {{(1ULL << 40) + 1, 0, 0}};
    for (const vboard_speed* pieces : {fast, back, slow, static_cast<const vboard_speed*>(nullptr)})
        EXPECT_EQ(BOARD(vboard_wave_encoder)(device, 1, 2, pieces, 1), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_wave_edges)(device, 1, false, nullptr, 1), VBOARD_UNKNOWN);
    EXPECT_EQ(edgesIn(1000), 5) << "a refused wave changes nothing";
    const vboard_speed always[] = {{0, 1'250'000, 1'250'000}}; // a last piece without time
    EXPECT_EQ(BOARD(vboard_wave_encoder)(device, 1, 2, always, 1), VBOARD_OK);
    EXPECT_EQ(edgesIn(1000), 5);
    const vboard_speed stopping[] = {{1000, 1'250'000, 1'250'000}, {0, 0, 0}};
    EXPECT_EQ(BOARD(vboard_wave_encoder)(device, 1, 2, stopping, 2), VBOARD_OK);
    EXPECT_GT(edgesIn(1100), 0);
    EXPECT_EQ(edgesIn(3000), 0) << "the last piece stops it, although it has no time";
    BOARD(vboard_memory_free)(memory);
}

TEST_F(VirtualStation, RefusesInvalidCamerasBeltsAndScenes) {
    EXPECT_EQ(setInt("CameraSimulator_Enable_SelectSource", 0), 0);
    const vboard_camera camera{.width = 64, .line_rate = 1000, .exposure = 10, .full_exposure = 0};
    const vboard_camera_faults sound{{2, 1, 0}, 0, 2, 64, 0, 0};
    vboard_camera none = camera, wide = camera;
    none.width = 0;
    wide.width = 16385;
    vboard_camera_faults twice = sound, longer = sound;
    twice.order[0] = 1;
    longer.short_width = 65;
    EXPECT_EQ(status(VBOARD_STATUS_CAMERA), VBOARD_CAMERA_NONE);
    for (const auto& [one, faults] :
         {std::pair<const vboard_camera*, const vboard_camera_faults*>{&none, &sound},
          {&wide, &sound},
          {&camera, &twice},
          {&camera, &longer}})
        EXPECT_EQ(BOARD(vboard_camera_attach)(device, one, faults), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_camera_attach)(device, nullptr, nullptr), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_camera_attach)(nullptr, &camera, nullptr), VBOARD_UNKNOWN);
    EXPECT_EQ(status(VBOARD_STATUS_CAMERA), VBOARD_CAMERA_NONE);
    EXPECT_EQ(BOARD(vboard_camera_attach)(device, &camera, &sound), VBOARD_OK);
    EXPECT_EQ(status(VBOARD_STATUS_CAMERA), VBOARD_CAMERA_FREE_RUNNING);
    BOARD(vboard_advance)(device, 125'000'000);
    EXPECT_EQ(status(VBOARD_STATUS_LINES), 1000);

    const vboard_speed speed{1, 1'000'000, 1'000'000};
    const vboard_belt_setup belt{&speed, 1, 1, 2, 100, VBOARD_NO_INPUT, 0};
    EXPECT_EQ(BOARD(vboard_belt)(device, &belt), VBOARD_OK);
    const auto isTaken = [this](vboard_belt_setup setup) {
        return BOARD(vboard_belt)(device, &setup) == VBOARD_OK;
    };
    EXPECT_FALSE(isTaken({&speed, 1, 1, 2, 99, VBOARD_NO_INPUT, 0})); // more than ten million steps
    EXPECT_FALSE(isTaken({&speed, 1, 1, 1, 100, VBOARD_NO_INPUT, 0}));
    EXPECT_FALSE(isTaken({&speed, 1, 1, VBOARD_NO_INPUT, 100, 0, 0}));
    EXPECT_FALSE(isTaken({&speed, 1, 1, 2, 100, 12, 0}));
    EXPECT_FALSE(isTaken({nullptr, 1, 1, 2, 100, 0, 0}));
    const vboard_speed fast{1, 100'000'001, 0};
    EXPECT_FALSE(isTaken({&fast, 1, VBOARD_NO_INPUT, VBOARD_NO_INPUT, 0, VBOARD_NO_INPUT, 0}));
    EXPECT_FALSE(isTaken({&speed, 1, 1, 2, 100, 0, INT64_MIN}));

    const std::uint16_t pixels[3] = {1, 2, 3};
    const vboard_object object{-5, 10}, nothing{5, 0};
    const auto isScene = [this](vboard_scene_setup setup) {
        return BOARD(vboard_scene)(device, &setup) == VBOARD_OK;
    };
    EXPECT_TRUE(isScene({1, 1, 1, pixels, &object, 1, 65535, 0}));
    EXPECT_FALSE(isScene({0, 1, 1, pixels, &object, 1, 0, 0}));
    EXPECT_FALSE(isScene({1, 1, 0, pixels, &object, 1, 0, 0}));
    EXPECT_FALSE(isScene({1, 16384, 1025, pixels, &object, 1, 0, 0}));
    EXPECT_FALSE(isScene({1, 0, 0, nullptr, &nothing, 1, 0, 0}));
    EXPECT_FALSE(isScene({1, 0, 0, nullptr, nullptr, 1, 0, 0}));
    EXPECT_FALSE(isScene({1, 0, 0, nullptr, &object, 1, 65536, 0}));
    EXPECT_EQ(BOARD(vboard_camera_detach)(device), VBOARD_OK);
    EXPECT_EQ(status(VBOARD_STATUS_CAMERA), VBOARD_CAMERA_NONE);
}

TEST_F(VirtualStation, GivesItsSurroundingsToAnotherBoard) {
    // Everything is connected at the tick 1000; on the other board it begins at 0.
    EXPECT_EQ(setInt("CameraSimulator_Enable_SelectSource", 0), 0);
    BOARD(vboard_advance)(device, 999);
    const vboard_camera camera{.width = 64, .line_rate = 125'000, .exposure = 10, .full_exposure = 0};
    EXPECT_EQ(BOARD(vboard_camera_attach)(device, &camera, nullptr), VBOARD_OK);
    EXPECT_EQ(BOARD(vboard_wave_level)(device, 2, true), VBOARD_OK); // the belt takes this input
    const vboard_speed speed{1, 1'000'000, 1'000'000};
    const vboard_belt_setup belt{&speed, 1, 1, 2, 1000, VBOARD_NO_INPUT, 0};
    EXPECT_EQ(BOARD(vboard_belt)(device, &belt), VBOARD_OK);
    EXPECT_EQ(BOARD(vboard_wave_square)(device, 3, 1100, 2000, 1000), VBOARD_OK);
    const vboard_edge edges[] = {{500, true}, {1300, false}, {UINT64_MAX, true}};
    EXPECT_EQ(BOARD(vboard_wave_edges)(device, 4, false, edges, 3), VBOARD_OK);
    EXPECT_EQ(BOARD(vboard_has_wave)(device, 2) - BOARD(vboard_has_wave)(device, 5), 1);
    BOARD(vboard_advance)(device, 500'000);

    LOOMdevice* other = BOARD(vboard_open)();
    EXPECT_EQ(BOARD(vboard_surround)(other, nullptr), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_surround)(nullptr, device), VBOARD_UNKNOWN);
    EXPECT_EQ(BOARD(vboard_surround)(other, device), VBOARD_OK);
    BOARD(vboard_advance)(other, 100'000);
    const auto edgesOf = [](LOOMdevice* board, unsigned select, std::uint64_t from) {
        std::vector<std::uint64_t> ticks;
        vboard_edge found[500];
        const std::int64_t count =
            BOARD(vboard_signals)(board, select, from + 10, from + 100'000, found, 500, nullptr);
        for (std::int64_t i = 0; i < count; ++i)
            ticks.push_back(found[i].tick - from);
        return ticks;
    };
    for (const unsigned select : {22U, 23U, 24U, 25U}) { // encoder, square wave, edges
        EXPECT_FALSE(edgesOf(other, select, 0).empty()) << select;
        EXPECT_EQ(edgesOf(other, select, 0), edgesOf(device, select, 1000)) << select;
    }
    EXPECT_EQ(BOARD(vboard_poke_int)(other, "Device1_Process0_CameraSimulator_Enable_SelectSource", 0),
              VBOARD_OK);
    BOARD(vboard_advance)(other, 1000);
    EXPECT_FALSE(edgesOf(other, 4, 99'990).empty()); // lines of the camera
    BOARD(vboard_close)(other);
}

TEST_F(VirtualStation, FollowsTheClockAndAllowsOtherCallsDuringAWait) {
    using Clock = std::chrono::steady_clock;
    for (const double wrong : {-1.0, 1e-9, 1e9, std::nan("")})
        EXPECT_EQ(BOARD(vboard_clock)(device, wrong), VBOARD_UNKNOWN) << wrong;
    EXPECT_EQ(BOARD(vboard_clock)(nullptr, 1), VBOARD_UNKNOWN);
    for (const char* name : {"ImgTriggerMode", "ImgTriggerEnable"})
        EXPECT_EQ(setInt(std::string("Trigger_Trigger_") + name, 1), 0);
    EXPECT_EQ(setInt("Trigger_Trigger_ImgTrgInSource", 4), 0);
    vboard_frames* memory = BOARD(vboard_memory)(device, 2, 768, VBOARD_BLOCKING);
    const auto start = Clock::now();
    EXPECT_EQ(BOARD(vboard_clock)(device, 10), VBOARD_OK);
    EXPECT_EQ(BOARD(vboard_advance)(device, 1000), VBOARD_NOT_STEPPED);
    // A wait of ten seconds is ended by other threads. Each may act before the wait begins or during it.
    const std::pair<std::function<void()>, std::int64_t> ends[] = {
        {[&] { EXPECT_EQ(setInt("Trigger_Trigger_SoftwareTrgPulse", 1), 0); }, 1},
        {[&] {
             BOARD(vboard_clock)
             (device, setInt("CameraSimulator_Enable_SelectSource", 0));
         },
         VBOARD_TIMEOUT},
        {[&] {
             RUNTIME(stopAcquireEx)
             (fg, 0, nullptr, 0);
         },
         FG_ERR_NOT_AVAILABLE},
        {[&] {
             RUNTIME(AcquireEx)
             (fg, 0, 0, 0, nullptr);
         },
         1},
        {[&] {
             BOARD(vboard_reset)
             (device);
         },
         FG_ERR_NOT_AVAILABLE}};
    for (const auto& [end, answer] : ends) {
        BOARD(vboard_clock)(device, 1);
        EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), 0);
        std::int64_t result = 0;
        std::thread waiting([&] { result = wait(1, 10); });
        std::this_thread::sleep_for(std::chrono::milliseconds(3)); // usually the wait has begun by now
        end();
        waiting.join();
        // Another acquisition either ends the wait or satisfies it.
        EXPECT_TRUE(result == answer || (answer == 1 && result == FG_ERR_NOT_AVAILABLE)) << result;
    }
    EXPECT_EQ(BOARD(vboard_advance)(device, 5), 5U); // the reset made it stepped
    // A second takes a hundredth of a second, and not less.
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), FG_ERR_BUFFER); // with the present parameters
    setInt("Buffer_0_XLength", 0);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), 0);
    const auto before = Clock::now();
    EXPECT_EQ(BOARD(vboard_clock)(device, 100), VBOARD_OK);
    EXPECT_EQ(wait(1, 1), VBOARD_TIMEOUT);
    EXPECT_GE(Clock::now() - before, std::chrono::milliseconds(10));
    const std::uint64_t now = BOARD(vboard_now)(device);
    const double most = std::chrono::duration<double>(Clock::now() - start).count() * 125e6 * 100;
    EXPECT_TRUE(now >= 125'000'000 && static_cast<double>(now) <= most + 5) << now;
    EXPECT_EQ(BOARD(vboard_clock)(device, 0), VBOARD_OK);
    EXPECT_GE(BOARD(vboard_advance)(device, 7), now + 7);
    BOARD(vboard_memory_free)(memory);
}

TEST_F(VirtualStation, LeavesTheBoardToOthersDuringALongWait) {
    for (const char* name : {"ImgTriggerMode", "ImgTriggerEnable"})
        EXPECT_EQ(setInt(std::string("Trigger_Trigger_") + name, 1), 0);
    EXPECT_EQ(setInt("Trigger_Trigger_ImgTrgInSource", 4), 0);
    vboard_frames* memory = BOARD(vboard_memory)(device, 2, 768, VBOARD_RING);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), 0);
    // No image is triggered in more lines than any machine simulates in a day.
    std::int64_t result = 0;
    std::thread waiting([&] { result = wait(1, INT32_MAX); });
    while (BOARD(vboard_now)(device) == 0)
        std::this_thread::yield();
    EXPECT_EQ(RUNTIME(stopAcquireEx)(fg, 0, memory, 0), 0);
    waiting.join();
    EXPECT_EQ(result, FG_ERR_NOT_AVAILABLE);
    EXPECT_EQ(setInt("CameraSimulator_Enable_SelectSource", 0), 0);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), 0);
    EXPECT_EQ(BOARD(vboard_wait)(device, 1, UINT64_MAX), VBOARD_TIMEOUT); // time itself ends before that
    BOARD(vboard_memory_free)(memory);
}

TEST_F(VirtualStation, RendersOnManyThreadsWhileTheBoardIsInUse) {
    // 16 million pixels each, so that there is time for an access during the drawing.
    for (const char* name : {"Buffer_0_SensorWidth", "Buffer_0_XLength"})
        setInt(name, 16384);
    for (const char* name : {"ImageHeight_ImageHeight", "Trigger_Trigger_YLength"})
        setInt(name, 1024);
    constexpr int pictures = 3;
    vboard_frames* memory = BOARD(vboard_memory)(device, pictures, 3 * 16384 * 1024, VBOARD_RING);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, pictures, 0, memory), 0);
    EXPECT_EQ(wait(pictures, 60), pictures);
    std::atomic<bool> isDrawing{true};
    std::vector<std::uint8_t> seen[2];
    const auto draw = [&](std::vector<std::uint8_t>& bytes) {
        for (int picture = 1; picture <= pictures; ++picture) {
            vboard_record record{};
            EXPECT_EQ(BOARD(vboard_frame)(memory, picture, &record), VBOARD_OK);
            bytes.push_back(record.data[3 * 63 + 1]); // there is no line beyond this
            bytes.push_back(record.data[record.size - 3 * 16384]);
        }
        isDrawing = false;
    };
    std::thread first(draw, std::ref(seen[0])), second(draw, std::ref(seen[1]));
    int accesses = 0;
    for (std::uint32_t value = 0; isDrawing; ++accesses)
        EXPECT_EQ(get(width, FG_PARAM_UINT32, value), 0);
    first.join();
    second.join();
    EXPECT_EQ(seen[0], seen[1]);
    EXPECT_EQ(seen[0][0], 63);
    EXPECT_GT(accesses, 50) << "an access waits for a picture";
    vboard_record record{};
    EXPECT_EQ(BOARD(vboard_frame)(memory, 1, &record), VBOARD_OK);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, pictures, 0, memory), 0);
    EXPECT_EQ(BOARD(vboard_frame)(memory, 1, &record), VBOARD_GONE);
    BOARD(vboard_memory_free)(memory);
}

TEST_F(VirtualStation, InsertsTheImageOfAFile) {
    const std::string path = testing::TempDir() + "inserted.ppm", point = "OutputFormat_Debug_";
    vboard_frames* memory = BOARD(vboard_memory)(device, 9, 768, VBOARD_RING);
    EXPECT_EQ(RUNTIME(AcquireEx)(fg, 0, 0, 0, memory), 0);
    const auto name = "Device1_Process0_" + point + "DebugFile";
    EXPECT_EQ(RUNTIME(setParameterWithType)(fg, id(name), path.c_str(), 0, FG_PARAM_TEXT), 0);
    EXPECT_EQ(setInt(point + "Insert", 1), 0); // the input is off
    EXPECT_EQ(setInt(point + "OperationMode", 3), 0);
    const struct {
        const char* what;
        std::string content;
        int code;
        std::vector<int> pixels; // blue, green, red of the first two
    } cases[] = {
        {"colour",
         "P6 # a comment\n2 1\n255\n\x11\x22\x33\x44\x55\x66",
         0,
         {0x33, 0x22, 0x11, 0x66, 0x55, 0x44}},
        {"grey of 16 bits", std::string("P5\n1 1\n65535\n\x12\x34", 15), 0, {0x12, 0x12, 0x12, 0, 0, 0}},
        {"grey of 12 bits", std::string("P5\n1 1\n4095\n\x01\x23", 14), 0, {0x12, 0x12, 0x12, 0, 0, 0}},
        {"a largest value of 100", "P6 2 1 100\n\x64\x32\x01\x64\x64\x64", 0, {3, 128, 255, 255, 255, 255}},
        {"beyond the largest value", "P5 1 1 100\ne", FG_ERR_FILE_TYPE, {}},
        {"negative", "P6\n-8 1\n255\n", FG_ERR_FILE_TYPE, {}},
        {"one byte is lacking", "P6\n2 1\n255\n12345", FG_ERR_FILE_TYPE, {}},
        {"other format", "P3\n1 1\n255\n1 2 3", FG_ERR_FILE_TYPE, {}},
        {"too large", "P6\n16385 1\n255\n", FG_ERR_FILE_TYPE, {}},
        {"no number", "P6\nx", FG_ERR_FILE_TYPE, {}},
        {"empty", "", FG_ERR_FILE_TYPE, {}},
    };
    std::intptr_t picture = 0;
    for (const auto& row : cases) {
        std::ofstream(path, std::ios::binary) << row.content;
        EXPECT_EQ(setInt(point + "Insert", 1), row.code) << row.what;
        if (row.code != 0) continue;
        EXPECT_EQ(wait(++picture), picture) << row.what;
        vboard_record record{};
        ASSERT_EQ(BOARD(vboard_frame)(memory, picture, &record), VBOARD_OK);
        EXPECT_EQ(std::vector<int>(record.data, record.data + 6), row.pixels) << row.what;
    }
    BOARD(vboard_memory_free)(memory);
    EXPECT_EQ(setInt(point + "Insert", 1), FG_ERR_FILE_TYPE);
    std::ofstream(path) << "P5\n1 1\n255\nx";
    EXPECT_EQ(setInt(point + "Insert", 1), FG_ERR_NOT_AVAILABLE); // no acquisition
    char words[64] = "";
    const int length = BOARD(vboard_insert_trouble)(device, words, sizeof words);
    EXPECT_EQ(length, static_cast<int>(std::strlen(words)));
    EXPECT_STREQ(words, "no acquisition runs that takes it");
    std::remove(path.c_str());
    EXPECT_EQ(setInt(point + "Insert", 1), FG_ERR_FILE_TYPE);
    EXPECT_EQ(BOARD(vboard_insert_trouble)(device, words, 5), VBOARD_TOO_SMALL);
    EXPECT_EQ(BOARD(vboard_insert_trouble)(nullptr, words, 5), VBOARD_UNKNOWN);
}

} // namespace
