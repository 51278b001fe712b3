// From the components of a line to bytes in memory, and an image's path through buffer and DMA. Numbers are
// computed by hand.

#include "support/station_board.h"

namespace station {
namespace {

using Bytes = std::vector<int>;

/** A board with lines of 64 pixels, one every 100 ticks; the first four pixels are stored. */
const Values small =
    "Size_ImageWidth=100 LineGap_Number=2 SequenceLength_ImageWidth=1 SensorWidth=4 XLength=4 "
    "ImageHeight_ImageHeight=2 YLength=2 FrameGap_Number=2 Size_ImageHeight=2 Frame_Divisor=1";

/** The first component of each pixel. */
Bytes greys(const Bytes& bytes) {
    Bytes values;
    for (std::size_t i = 0; i < bytes.size(); i += 3)
        values.push_back(bytes[i]);
    return values;
}

class StationPath : public StationTest {
protected:
    StationPath() : StationTest(small) {}
};

TEST_F(StationPath, PixelsAreInsertedAtTheDebugPoints) {
    // Two lines of two pixels; the second line of the first image is short. Gains of a half and two.
    board.set("XLength=2 SensorWidth=2 XMirror=1 YMirror=1 RedCoefficient=0.5 BlueCoefficient=2 YLength=9");
    acquire();
    const auto writeAll = [&](P pixel, P flag) {
        write(pixel, 0x4000'3000'1000); // blue 0x40, green 0x30, red 0x10
        write(pixel, 0x0000'0000'2000);
        write(flag, 0);
        write(pixel, 0x0000'0100'0000);
        write(flag, 1);
    };
    writeAll(P::cameraDebugPixel, P::cameraDebugFlag); // the input is off
    board.set("Camera_Debug_OperationMode=1");
    writeAll(P::cameraDebugPixel, P::cameraDebugFlag);
    board.set("Camera_Debug_OperationMode=0 0_Debug_OperationMode=1");
    writeAll(P::bufferDebugPixel, P::bufferDebugFlag);
    board.set("0_Debug_OperationMode=0 OutputFormat_Debug_OperationMode=1");
    writeAll(P::outputDebugPixel, P::outputDebugFlag);
    station.advance(1000);
    ASSERT_EQ(station.lastPicture(), 3); // and none from the simulator
    EXPECT_EQ(bytes(1), (Bytes{0, 0, 0, 0, 1, 0, 0, 0, 0x10, 0x80, 0x30, 0x08}));
    EXPECT_EQ(bytes(2), (Bytes{0x80, 0x30, 0x08, 0, 0, 0x10, 0, 1, 0, 0, 0, 0}));
    EXPECT_EQ(bytes(3), (Bytes{0x40, 0x30, 0x10, 0, 0, 0x20, 0, 1, 0, 0, 0, 0}));
    board.set("OutputFormat_Debug_OperationMode=0");
    station.advance(1000);
    EXPECT_GT(station.lastPicture(), 3);
    EXPECT_FALSE(station.inject(std::make_shared<Raster>(Raster{Raster::Point::output, 2, 2, {1, 2, 3}})));
}

TEST(StationMonitors, ShowPositionAndValueOfTheLastPixel) {
    struct Case {
        Values values;
        Bytes camera, output; // x, y, value after one image of two lines
    };
    const Values on = "Camera_Debug_OperationMode=2 OutputFormat_Debug_OperationMode=2 ";
    const Case cases[] = {
        {{}, {0, 0, 0}, {0, 0, 0}}, // off
        {on, {63, 1, 64}, {3, 1, 0x040404}},
        {on + "YMirror=1", {63, 1, 64}, {3, 1, 0x030303}},
        {on + "XLength=3 BlueCoefficient=2 RedCoefficient=0", {63, 1, 64}, {2, 1, 0x000306}},
        {on + "FORMAT_SelectSource=1 Convert1_VirtualTrash_EnableTrash_Value=0 Shift_Value=6 XLength=2",
         {63, 1, 64},
         {1, 1, 8 << 20 | 8 << 10 | 8}},
        {on + "FORMAT_SelectSource=4 Shift_Value=0", {63, 1, 64}, {3, 1, 0x04000400}}, // 32 of 48 bits
        {on + "XLength=0", {63, 1, 64}, {0, 1, 0}},
    };
    for (const Case& row : cases) {
        Trial run(small + row.values);
        run.acquire(2);
        run.station.advance(150);
        const auto seen = [&run](P x, P y, P value) {
            return Bytes{static_cast<int>(run.value(x)), static_cast<int>(run.value(y)),
                         static_cast<int>(run.value(value))};
        };
        EXPECT_EQ(seen(P::cameraDebugX, P::cameraDebugY, P::cameraDebugValue), row.camera) << row.values;
        EXPECT_EQ(seen(P::outputDebugX, P::outputDebugY, P::outputDebugValue), row.output) << row.values;
        // With the input on, the injected pixel is the last one.
        run.write(P::cameraDebugMode, row.camera[0] > 0 ? 3 : 1);
        EXPECT_TRUE(run.value(P::cameraDebugReady) == 1 && run.value(P::outputDebugReady) == 0);
        EXPECT_TRUE(run.station.inject(std::make_shared<Raster>(
            Raster{Raster::Point::camera, 2, 1, {0, 0, 0, 0x1234, 0x5678, 0x9abc}})));
        const Bytes injected = row.camera[0] > 0 ? Bytes{1, 0, 0x12} : row.camera;
        run.station.advance(100);
        EXPECT_EQ(seen(P::cameraDebugX, P::cameraDebugY, P::cameraDebugValue), injected) << row.values;
        run.station.stop();
        EXPECT_EQ(run.value(P::cameraDebugReady), 0);
    }
}

TEST_F(StationPath, SelectorCountsFromTheStart) {
    board.set("PERIOD_Divisor=3 PHASE_Number=1");
    acquire();
    station.advance(2000); // images of two lines every 200 ticks: 0, 200, ...
    EXPECT_EQ(pictures(), "200-300 2, 800-900 2, 1400-1500 2");
    acquire();
    station.advance(1000);
    EXPECT_EQ(picture(1), "2300-2400 2");
    board.set("PERIOD_Divisor=0 PHASE_Number=0");
    acquire();
    station.advance(420);
    EXPECT_EQ(station.lastPicture(), 2);
    board.set("PHASE_Number=1");
    acquire();
    station.advance(1000);
    EXPECT_EQ(station.lastPicture(), 0);
}

TEST_F(StationPath, WritesTakeEffectFromTheNextImageOn) {
    acquire();
    station.advance(50); // in the first image
    board.set("XOffset=20 SensorWidth=24");
    const auto setTables = [this](std::uint32_t entry) {
        for (const Colour colour : {Colour::red, Colour::green, Colour::blue})
            board.setTable(colour, std::vector<std::uint32_t>(tableSize, entry));
    };
    setTables(7 << 8);
    station.advance(1);
    board.set("EnableLUT_Value=1 XLength=2");
    station.advance(349);
    EXPECT_EQ(greys(bytes(1)), (Bytes{0, 1, 2, 3, 1, 2, 3, 4}));
    EXPECT_EQ(bytes(2), Bytes(12, 7));
    setTables(9 << 8); // and nothing else
    station.advance(500);
    EXPECT_EQ(bytes(station.lastPicture()), Bytes(12, 9));
}

TEST_F(StationPath, BufferFillsAtTheExcessRate) {
    // A line takes 1024 pixels of 24 bits, 48 words of 512 bits: 96 MiB hold 32,768 lines. One comes every 64 ticks.
    // The DMA takes 192 ticks for a line, so two of three lines stay: the 32,768th that stays is about the 49,152nd.
    board.set("Size_ImageWidth=64 LineGap_Number=32 XLength=1024 SensorWidth=1024 "
              "ImageHeight_ImageHeight=1024 YLength=1024 Size_ImageHeight=1024 FrameGap_Number=1024");
    station.setDmaRate(2'000'000'000); // 3072 bytes in 192 ticks
    acquire(2);
    station.advance(64 * 16'384); // 10,922 lines stay, a third of what fits
    EXPECT_EQ(value(P::fillLevel0), 33);
    EXPECT_EQ(value(P::fillLevel2), 33);
    EXPECT_EQ(value(P::overflowOccurred), 0);
    station.advance(64 * 32'700 - 64 * 16'384 + 64 * 16'450); // line 49,150 or so
    EXPECT_EQ(value(P::fillLevel1), 99);
    EXPECT_EQ(board.raised(Event::overflow), 0U);
    station.advance(64 * 10);
    EXPECT_EQ(board.raised(Event::overflow), 1U); // once for the image
    EXPECT_EQ(value(P::overflowOccurred), 1);
    EXPECT_EQ(station.losses().images, 1U);
    board.set("OverflowOccurred_Status=0 Size_ImageWidth=400"); // slower than the DMA
    station.advance(64 * 500);
    EXPECT_EQ(value(P::overflowOccurred), 0);
    // The next picture reports the loss.
    station.waitForPicture(48, never);
    EXPECT_EQ(memory->record(47)->lostBefore, 0U);
    EXPECT_EQ(memory->record(48)->lostBefore, 1U);
    station.stop();
    station.advance(1);
    EXPECT_EQ(value(P::fillLevel0), 0);
}

TEST_F(StationPath, WholeImagesWaitInTheBuffer) {
    // Words of 100 bits, three for a line of 288 bits. A capacity of 12 words is 4 lines.
    board.set(
        "RamDataWidth=100 RamAddressWidth=3 SensorWidth=12 YMirror=1 ImageHeight_ImageHeight=4 YLength=4");
    acquire();
    station.advance(150); // two lines of four
    EXPECT_EQ(value(P::fillLevel0), 50);
    station.advance(152);
    EXPECT_EQ(value(P::fillLevel0), 100);
    station.advance(1); // 12 bytes of a line leave in 0.375 ticks
    EXPECT_EQ(value(P::fillLevel0), 50);
    station.advance(1);
    EXPECT_EQ(picture(1), "0-300 4");
    EXPECT_EQ(memory->record(1)->arrival, 304U); // 48 bytes after 302, in 1.5 ticks
    // A frame smaller than its lines: lost as a whole, repeatedly.
    board.set("ImageHeight_ImageHeight=5 YLength=5");
    station.advance(1100);
    EXPECT_EQ(station.lastPicture(), 1);
    EXPECT_EQ(station.losses().images, 2U);
    // Dropped images leave at 32 pixels per tick, as do silenced ones.
    board.set("ImageHeight_ImageHeight=4 YLength=4 PHASE_Number=1");
    station.advance(1000);
    EXPECT_EQ(station.losses().images, 3U); // another one had begun
    EXPECT_EQ(station.lastPicture(), 1);
    for (const auto& [width, depth] :
         {std::pair{0.0, 512.0}, {63.0, 512.0}, {1e300, 0.0}, {3.0, 4294967295.0}}) {
        board.set({{P::ramAddressWidth, width},
                   {P::ramDataWidth, depth},
                   {P::selectPhase, 0},
                   {P::linkSpeed, -width}});
        station.advance(5000);
    }
    EXPECT_LE(station.fillLevel(), 100U);
}

} // namespace
} // namespace station
