// From lines to pictures: image trigger, memory, waiting. Lines of 20 ticks start every 100 ticks, from 0 on.

#include "support/station_board.h"

namespace station {
namespace {

const Values everyHundred = "Size_ImageWidth=100 LineGap_Number=20 SequenceLength_ImageWidth=1 "
                            "SensorWidth=64 XLength=64 ImgTrgInSource=4";

class StationImage : public StationTest {
protected:
    StationImage() : StationTest(everyHundred) {}
};

constexpr P pulse = P::softwarePulse;
constexpr P input = P::softwareInput;

TEST_F(StationImage, IsBusyFromTheStartToTheLastLine) {
    board.set("ImgTriggerMode=1 YLength=4 ImageHeight_ImageHeight=4");
    acquire();
    station.advance(150);
    write(pulse, 1);
    EXPECT_EQ(value(P::imageIsBusy), 0);
    for (const auto& [tick, busy] : {std::pair{151, 1}, {519, 1}, {520, 0}, {900, 0}}) {
        advanceTo(static_cast<Tick>(tick));
        EXPECT_EQ(value(P::imageIsBusy), busy) << tick;
    }
    board.set("ImgTriggerMode=0 YOffset=1"); // busy again from the line at 1100
    for (const auto& [tick, busy] : {std::pair{1099, 0}, {1100, 1}, {1419, 1}, {1420, 0}}) {
        advanceTo(static_cast<Tick>(tick));
        EXPECT_EQ(value(P::imageIsBusy), busy) << tick;
    }
}

TEST_F(StationImage, NothingIsStoredWithoutAnAcquisition) {
    board.set("ImgTriggerMode=2 SoftwareTrgInput=1");
    station.advance(450);
    EXPECT_EQ(board.raised(Event::lineStart), 5U);
    acquire(); // a gate that is already open does not start an image
    station.advance(1000);
    write(input, 0);
    station.advance(10);
    write(input, 1);
    station.advance(340); // lines at 1500, 1600, 1700
    station.stop();       // discards them
    EXPECT_FALSE(station.isRunning());
    write(input, 0);
    station.advance(1000);
    EXPECT_EQ(station.lastPicture(), 0);
}

TEST_F(StationImage, WaitsForAPictureInSimulatedTime) {
    board.set("ImageHeight_ImageHeight=4 YLength=4");
    acquire(8, HostMemory::Kind::ring, 3);
    EXPECT_EQ(station.waitForPicture(1, 300), Station::Wait::timeout);
    EXPECT_EQ(station.now(), 300U);
    EXPECT_EQ(station.waitForPicture(1, 300), Station::Wait::arrived);
    // 192 bytes after the end of the line at 320, at 3,999,688,294 bytes a second: 6.0005 ticks.
    EXPECT_EQ(station.now(), 327U);
    EXPECT_EQ(memory->record(1)->arrival, 327U);
    EXPECT_EQ(station.waitForPicture(1, 300), Station::Wait::arrived);
    EXPECT_EQ(station.now(), 327U);
    EXPECT_EQ(station.waitForPicture(4, never), Station::Wait::notRunning); // three were requested
    EXPECT_EQ(station.waitForPicture(3, never), Station::Wait::arrived);
    EXPECT_FALSE(station.isRunning());
    EXPECT_EQ(station.now(), 1127U);
    station.advance(10'000);
    EXPECT_EQ(station.lastPicture(), 3);
    acquire(); // numbers start again
    EXPECT_EQ(station.lastPicture(), 0);
    EXPECT_EQ(station.waitForPicture(2, 10'000), Station::Wait::arrived);
    EXPECT_EQ(picture(2), "11600-11900 4");
}

TEST_F(StationImage, RingIsOverwrittenAndBlockingMemoryWaits) {
    board.set("ImageHeight_ImageHeight=1 YLength=1");
    acquire(2);
    station.advance(450);
    EXPECT_EQ(pictures(), "none, none, none, 300-300 1, 400-400 1");
    acquire(2, HostMemory::Kind::blocking);
    station.advance(450);
    EXPECT_EQ(pictures(), "500-500 1, 600-600 1");
    EXPECT_TRUE(station.release(1));
    EXPECT_FALSE(station.release(1));
    station.advance(8);
    EXPECT_EQ(pictures(), "none, 600-600 1, 700-700 1"); // it was still in the buffer
    EXPECT_EQ(memory->record(3)->arrival, 908U);
}

TEST_F(StationImage, TooLargeFramesAreRefused) {
    auto small = std::make_shared<HostMemory>(2, 3 * 64 * 8 - 1, HostMemory::Kind::ring);
    EXPECT_EQ(station.transferLength(), 1536U);
    EXPECT_FALSE(station.start(small, 0));
    EXPECT_FALSE(station.start(nullptr, 0));
    EXPECT_FALSE(station.isRunning());
    small = std::make_shared<HostMemory>(2, 3 * 64 * 8, HostMemory::Kind::ring);
    ASSERT_TRUE(station.start(small, 0));
    station.advance(1000);
    std::span<const std::uint8_t> bytes;
    EXPECT_EQ(small->bytes(1, bytes), HostMemory::Result::ok);
    EXPECT_EQ(bytes.size(), 1536U);
    EXPECT_EQ(small->bytes(7, bytes), HostMemory::Result::gone);
    board.set("XLength=128"); // takes effect with the next image
    station.advance(2000);
    EXPECT_EQ(small->bytes(3, bytes), HostMemory::Result::tooLarge);
}

TEST_F(StationImage, SimulatorPatternFollowsLineAndFrame) {
    struct Case {
        Values values;
        std::int64_t picture;
        std::size_t x, y;
        int value;
    };
    const Values acrossFrames = "ImageHeight_ImageHeight=12 YLength=12 Size_ImageHeight=8 FrameGap_Number=8";
    const Case cases[] = {
        {{}, 1, 5, 3, 8},   // diagonal
        {{}, 2, 0, 0, 1},   // rolls with each frame, and a picture is one
        {{}, 2, 63, 7, 71}, //
        {"Frame_Divisor=1", 2, 63, 7, 70},
        {"Y_Divisor=1", 1, 5, 3, 5},                 // horizontal
        {"Enable_Value=0", 1, 5, 3, 3},              // vertical
        {"Offset_Value=250", 1, 5, 3, 2},            // 258
        {"Y_Divisor=0 Frame_Divisor=0", 2, 9, 9, 9}, // lengths of 1
        {acrossFrames, 1, 0, 8, 1},                  // the first line of the next frame
        {acrossFrames, 2, 0, 0, 5},                  // line 4 of frame 1
    };
    for (const Case& row : cases) {
        Trial run(everyHundred +
                  "ImageHeight_ImageHeight=10 Size_ImageHeight=10 FrameGap_Number=10 YLength=10" +
                  row.values);
        run.acquire(4);
        run.station.advance(3000);
        const std::vector<int> bytes = run.bytes(row.picture);
        ASSERT_EQ(bytes.size() % 192, 0U);
        for (std::size_t component = 0; component < 3; ++component)
            EXPECT_EQ(bytes.at((row.y * 64 + row.x) * 3 + component), row.value) << row.x << ' ' << row.y;
    }
}

TEST_F(StationImage, RecordDescribesTheOriginOfAPicture) {
    board.set("ImgTriggerMode=1 SensorWidth=1024"); // more than the 640 of a line
    acquire();
    station.advance(50);
    write(pulse, 1);
    ASSERT_EQ(station.waitForPicture(1, 10'000), Station::Wait::arrived);
    station.advance(100);
    write(pulse, 1);
    ASSERT_EQ(station.waitForPicture(2, 10'000), Station::Wait::arrived);
    const auto record = memory->record(2);
    EXPECT_EQ(record->trigger, 2U);
    EXPECT_TRUE(record->isNarrow);
    EXPECT_EQ(record->runs.size(), 1U); // consecutive frames
    EXPECT_EQ(record->runs[0].line(3).frame, 1U + (record->runs[0].first.y + 3 >= 8 ? 1U : 0U));
    EXPECT_EQ(record->layout.bytesPerLine, 192U);
}

} // namespace
} // namespace station
