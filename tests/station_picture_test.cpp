// From the components of a line to bytes in memory, and the way of an image through buffer and DMA. Numbers are worked
// out by hand.

#include "support/station_board.h"

namespace station {
namespace {

using Bytes = std::vector<int>;

/** A board with lines of 64 pixels, one every 100 ticks, of which the first four are what is taken. */
const Values small = {{P::simulatorImageWidth, 100},
                      {P::simulatorLineGap, 2},
                      {P::simulatorSequenceLength, 1},
                      {P::sensorWidth, 4},
                      {P::xLength, 4},
                      {P::imageHeight, 2},
                      {P::yLength, 2},
                      {P::simulatorFrameGap, 2},
                      {P::simulatorImageHeight, 2},
                      {P::simulatorFrameDivisor, 1}};

/** The bytes of the first picture. */
Bytes firstPicture(const Values& values, std::vector<std::uint32_t> red = {},
                   std::vector<std::uint32_t> blue = {}) {
    ValueBoard board;
    board.set(small);
    board.set(values);
    board.setTable(Colour::red, std::move(red));
    board.setTable(Colour::blue, std::move(blue));
    Station station(board);
    const auto memory = std::make_shared<HostMemory>(2, 1U << 20, HostMemory::Kind::ring);
    std::span<const std::uint8_t> bytes;
    if (!station.start(memory, 0) || station.waitForPicture(1, 100'000) != Station::Wait::arrived ||
        memory->bytes(1, bytes) != HostMemory::Result::ok)
        return {};
    return {bytes.begin(), bytes.end()};
}

/** The first component of each pixel. */
Bytes greys(const Bytes& bytes) {
    Bytes values;
    for (std::size_t i = 0; i < bytes.size(); i += 3)
        values.push_back(bytes[i]);
    return values;
}

TEST(StationPicture, RegionAndMirrorsChooseThePixels) {
    struct Case {
        Values values;
        Bytes pixels; // two lines; the pattern is x + y
    };
    const Case cases[] = {
        {{}, {0, 1, 2, 3, 1, 2, 3, 4}},
        {{{P::xOffset, 8}, {P::sensorWidth, 12}}, {8, 9, 10, 11, 9, 10, 11, 12}},
        {{{P::xMirror, 1}, {P::sensorWidth, 16}}, {15, 14, 13, 12, 16, 15, 14, 13}},
        {{{P::xMirror, 1}, {P::sensorWidth, 16}, {P::xOffset, 4}}, {11, 10, 9, 8, 12, 11, 10, 9}},
        {{{P::yMirror, 1}}, {1, 2, 3, 4, 0, 1, 2, 3}},
        {{{P::yMirror, 1}, {P::xMirror, 1}}, {4, 3, 2, 1, 3, 2, 1, 0}},
        {{{P::yMirror, -1}, {P::xMirror, 2}}, {0, 1, 2, 3, 1, 2, 3, 4}},          // neither is on
        {{{P::xOffset, 2}}, {2, 3, 0, 0, 3, 4, 0, 0}},                            // beyond what is stored
        {{{P::xMirror, 1}, {P::xOffset, 2}}, {1, 0, 0, 0, 2, 1, 0, 0}},           //
        {{{P::sensorWidth, 80}, {P::xOffset, 62}}, {62, 63, 0, 0, 63, 64, 0, 0}}, // beyond the line
        {{{P::xOffset, 4294967295.0}}, {0, 0, 0, 0, 0, 0, 0, 0}},
        {{{P::xMirror, 1}, {P::sensorWidth, 0}}, {0, 0, 0, 0, 0, 0, 0, 0}},
        {{{P::xLength, 2}}, {0, 1, 1, 2}},
    };
    for (const Case& row : cases)
        EXPECT_EQ(greys(firstPicture(row.values)), row.pixels) << testing::PrintToString(row.values);
}

TEST(StationPicture, FormatsPackFromTheLowestBit) {
    struct Case {
        double format;
        double shift;
        Bytes line; // pixels of 250, 251, 252, 253 of 8 bits
    };
    // Components of 0xfa, 0xfb, 0xfc, 0xfd at the top of 16 bits, three times each.
    const Case cases[] = {
        {0, 8, {0xfa, 0xfa, 0xfa, 0xfb, 0xfb, 0xfb, 0xfc, 0xfc, 0xfc, 0xfd, 0xfd, 0xfd}},
        // 0x3e8 three times, 0x3ec, 0x3f0, 0x3f4: 40 bits are 5 bytes.
        {1, 6, {0xe8, 0xa3, 0x8f, 0x3e, 0xfb, 0xec, 0xb3, 0x0f, 0x3f, 0xfc, 0xf0, 0xd3, 0x4f, 0x3f, 0xfd}},
        {2,
         4,
         {0xa0, 0x0f, 0xfa, 0xa0, 0x0f, 0xfb, 0xb0, 0x0f, 0xfb, 0xc0, 0x0f, 0xfc, 0xc0, 0x0f, 0xfd, 0xd0,
          0x0f, 0xfd}},
        // 0x3e80, 0x3ec0, 0x3f00, 0x3f40: 56 bits are 7 bytes.
        {3, 2, {0x80, 0x3e, 0xa0, 0x0f, 0xe8, 0x03, 0xfb, 0xc0, 0x3e, 0xb0, 0x0f,
                0xf0, 0x03, 0xfc, 0x00, 0x3f, 0xd0, 0x0f, 0xf4, 0x03, 0xfd}},
        {4, 0, {0, 0xfa, 0, 0xfa, 0, 0xfa, 0, 0xfb, 0, 0xfb, 0, 0xfb,
                0, 0xfc, 0, 0xfc, 0, 0xfc, 0, 0xfd, 0, 0xfd, 0, 0xfd}},
        {9, 8, {0xfa, 0xfa, 0xfa, 0xfb, 0xfb, 0xfb, 0xfc, 0xfc, 0xfc, 0xfd, 0xfd, 0xfd}}, // none: as 0
    };
    for (const Case& row : cases) {
        const Bytes bytes = firstPicture({{P::format, row.format},
                                          {P::shift, row.shift},
                                          {P::simulatorOffset, 250},
                                          {P::trash1, 0},
                                          {P::trash2, 0},
                                          {P::trash3, 0},
                                          {P::simulatorYDivisor, 1}});
        ASSERT_EQ(bytes.size(), 2 * row.line.size()) << row.format;
        EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(row.line.size())),
                  row.line)
            << row.format;
        EXPECT_EQ(Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(row.line.size()), bytes.end()), row.line);
    }
    EXPECT_TRUE(firstPicture({{P::format, 1}}).empty()); // silenced: no picture comes
    // Three pixels of 10 bits: the last byte holds two of them.
    EXPECT_EQ(
        firstPicture(
            {{P::format, 1}, {P::trash1, 0}, {P::xLength, 1}, {P::shift, 6}, {P::simulatorOffset, 255}}),
        (Bytes{0xfc, 0xf3, 0xcf, 0x3f, 0, 0, 0, 0}));
}

TEST(StationPicture, ComponentsPassGainTableAndShift) {
    // Table entries 0x3200 and on: of the value 0x32 of 8 bits, 0xc800 inside without gain.
    std::vector<std::uint32_t> red(tableSize);
    std::vector<std::uint32_t> blue(tableSize);
    red[0x3200] = 0x1'abcd; // 16 bits of it
    red[0x3fff] = 0x1234;
    red[0] = 0x7700;
    blue[0x1900] = 0x4321;
    struct Case {
        Values values;
        Bytes pixel; // blue, green, red of 16 bits, the high byte first; the value is 0xc8 of 8 bits
    };
    const Case cases[] = {
        {{}, {0xc8, 0, 0xc8, 0, 0xc8, 0}},
        {{{P::redGain, 0.5}, {P::greenGain, 0}, {P::blueGain, 1.25}}, {0xfa, 0, 0, 0, 0x64, 0}},
        {{{P::redGain, 1.5}}, {0xc8, 0, 0xc8, 0, 0xff, 0xff}}, // over the top
        {{{P::redGain, 3.9990234375}, {P::greenGain, 1e9}}, {0xc8, 0, 0xff, 0xff, 0xff, 0xff}},
        {{{P::redGain, 1.0004}, {P::greenGain, 1.0006}},
         {0xc8, 0, 0xc8, 0x32, 0xc8, 0}}, // 1024 and 1025 / 1024
        {{{P::redGain, -1}}, {0xc8, 0, 0xc8, 0, 0, 0}},
        {{{P::lutEnable, 1}}, {0, 0, 0, 0, 0xab, 0xcd}},
        {{{P::lutEnable, 1}, {P::redGain, 2}, {P::blueGain, 0.5}}, {0x43, 0x21, 0, 0, 0x12, 0x34}},
        {{{P::lutEnable, 1}, {P::shift, 3}}, {0, 0, 0, 0, 0x15, 0x79}}, // 0xabcd / 8
        {{{P::shift, 4}}, {0x0c, 0x80, 0x0c, 0x80, 0x0c, 0x80}},
        {{{P::shift, 16}}, {0, 0, 0, 0, 0, 0}},
        {{{P::shift, 4294967295.0}}, {0, 0, 0, 0, 0, 0}},
        {{{P::pixelFormat, 12}}, {0x0c, 0x80, 0x0c, 0x80, 0x0c, 0x80}}, // the low bits of 12
        {{{P::pixelFormat, 16}}, {0, 0xc8, 0, 0xc8, 0, 0xc8}},
        {{{P::pixelFormat, 99}}, {0, 0xc8, 0, 0xc8, 0, 0xc8}},
        {{{P::pixelFormat, 0}}, {0xc8, 0, 0xc8, 0, 0xc8, 0}},
        // All three components of the link are green: the others are 0, and pass their tables as such.
        {{{P::redComponent, 1}, {P::blueComponent, 1}}, {0, 0, 0xc8, 0, 0, 0}},
        {{{P::redComponent, 1}, {P::blueComponent, 1}, {P::lutEnable, 1}}, {0, 0, 0, 0, 0x77, 0}},
    };
    for (const Case& row : cases) {
        Values values = {{P::format, 4},  {P::shift, 0},       {P::simulatorOffset, 200},
                         {P::xLength, 1}, {P::imageHeight, 1}, {P::yLength, 1}};
        values.insert(values.end(), row.values.begin(), row.values.end());
        const Bytes bytes = firstPicture(values, red, blue);
        ASSERT_EQ(bytes.size(), 6U);
        EXPECT_EQ((Bytes{bytes[1], bytes[0], bytes[3], bytes[2], bytes[5], bytes[4]}), row.pixel)
            << testing::PrintToString(row.values);
    }
}

TEST(StationPicture, TheOrderOfTheLinkNamesTheColours) {
    // Components 10, 20, 30 on the link; the parameters name the colour of each.
    const struct {
        double first, second, third;
        Bytes pixel; // blue, green, red
    } cases[] = {{0, 1, 2, {30, 20, 10}}, {2, 1, 0, {10, 20, 30}}, {0, 2, 1, {20, 30, 10}},
                 {2, 0, 1, {10, 30, 20}}, {1, 2, 0, {20, 10, 30}}, {1, 0, 2, {30, 10, 20}},
                 {0, 0, 7, {0, 0, 30}}};
    const auto raster =
        std::make_shared<Raster>(Raster{Raster::Point::camera, 1, 1, {10 << 8, 20 << 8, 30 << 8}});
    for (const auto& row : cases) {
        ValueBoard board;
        board.set(small);
        board.set({{P::redComponent, row.first},
                   {P::greenComponent, row.second},
                   {P::blueComponent, row.third},
                   {P::xLength, 1},
                   {P::cameraDebugMode, 1}});
        Station station(board);
        const auto memory = std::make_shared<HostMemory>(2, 1U << 20, HostMemory::Kind::ring);
        ASSERT_TRUE(station.start(memory, 0));
        ASSERT_TRUE(station.inject(raster));
        ASSERT_EQ(station.waitForPicture(1, 100), Station::Wait::arrived);
        std::span<const std::uint8_t> bytes;
        ASSERT_EQ(memory->bytes(1, bytes), HostMemory::Result::ok);
        EXPECT_EQ(Bytes(bytes.begin(), bytes.end()), row.pixel);
    }
}

class StationPath : public StationTest {
protected:
    StationPath() : StationTest(small) {}

    Bytes bytes(std::int64_t number) {
        std::span<const std::uint8_t> picture;
        if (memory->bytes(number, picture) != HostMemory::Result::ok) return {};
        return {picture.begin(), picture.end()};
    }
};

TEST_F(StationPath, PixelsComeInAtTheDebugPoints) {
    // Two lines of two pixels; the second line of the first image is short. Gains of a half and two.
    board.set({{P::xLength, 2},
               {P::sensorWidth, 2},
               {P::xMirror, 1},
               {P::yMirror, 1},
               {P::redGain, 0.5},
               {P::blueGain, 2},
               {P::yLength, 9}});
    acquire();
    const auto writeAll = [&](P pixel, P flag) {
        write(pixel, 0x4000'3000'1000); // blue 0x40, green 0x30, red 0x10
        write(pixel, 0x0000'0000'2000);
        write(flag, 0);
        write(pixel, 0x0000'0100'0000);
        write(flag, 1);
    };
    writeAll(P::cameraDebugPixel, P::cameraDebugFlag); // the input is off
    board.set({{P::cameraDebugMode, 1}});
    writeAll(P::cameraDebugPixel, P::cameraDebugFlag);
    board.set({{P::cameraDebugMode, 0}, {P::bufferDebugMode, 1}});
    writeAll(P::bufferDebugPixel, P::bufferDebugFlag);
    board.set({{P::bufferDebugMode, 0}, {P::outputDebugMode, 1}});
    writeAll(P::outputDebugPixel, P::outputDebugFlag);
    station.advance(1000);
    ASSERT_EQ(station.lastPicture(), 3); // and none of the simulator
    EXPECT_EQ(bytes(1), (Bytes{0, 0, 0, 0, 1, 0, 0, 0, 0x10, 0x80, 0x30, 0x08}));
    EXPECT_EQ(bytes(2), (Bytes{0x80, 0x30, 0x08, 0, 0, 0x10, 0, 1, 0, 0, 0, 0}));
    EXPECT_EQ(bytes(3), (Bytes{0x40, 0x30, 0x10, 0, 0, 0x20, 0, 1, 0, 0, 0, 0}));
    board.set({{P::outputDebugMode, 0}});
    station.advance(1000);
    EXPECT_GT(station.lastPicture(), 3);
    EXPECT_FALSE(station.inject(std::make_shared<Raster>(Raster{Raster::Point::output, 2, 2, {1, 2, 3}})));
}

TEST_F(StationPath, TheSelectorCountsFromTheStart) {
    board.set({{P::selectPeriod, 3}, {P::selectPhase, 1}});
    acquire();
    station.advance(2000); // images of two lines every 200 ticks: 0, 200, ...
    EXPECT_EQ(pictures(), (std::vector<std::string>{"200-300 2", "800-900 2", "1400-1500 2"}));
    acquire();
    station.advance(1000);
    EXPECT_EQ(picture(1), "2300-2400 2");
    board.set({{P::selectPeriod, 0}, {P::selectPhase, 0}});
    acquire();
    station.advance(420);
    EXPECT_EQ(station.lastPicture(), 2);
    board.set({{P::selectPhase, 1}});
    acquire();
    station.advance(1000);
    EXPECT_EQ(station.lastPicture(), 0);
}

TEST_F(StationPath, WhatIsWrittenHoldsFromTheNextImageOn) {
    acquire();
    station.advance(50); // in the first image
    board.set({{P::xOffset, 20}, {P::sensorWidth, 24}});
    board.setTable(Colour::red, std::vector<std::uint32_t>(tableSize, 7 << 8));
    board.setTable(Colour::green, std::vector<std::uint32_t>(tableSize, 7 << 8));
    board.setTable(Colour::blue, std::vector<std::uint32_t>(tableSize, 7 << 8));
    station.advance(1);
    board.set({{P::lutEnable, 1}, {P::xLength, 2}});
    station.advance(349);
    EXPECT_EQ(greys(bytes(1)), (Bytes{0, 1, 2, 3, 1, 2, 3, 4}));
    EXPECT_EQ(bytes(2), Bytes(12, 7));
}

TEST_F(StationPath, TheBufferFillsAtTheRateOfItsExcess) {
    // A line takes 1024 pixels of 24 bits, 48 words of 512 bits: 96 MiB hold 32,768 lines. One comes every 64 ticks.
    // At 192 ticks for a line two of three stay: the 32,768th that stays is about the 49,152nd that comes.
    board.set({{P::simulatorImageWidth, 64},
               {P::simulatorLineGap, 32},
               {P::xLength, 1024},
               {P::sensorWidth, 1024},
               {P::imageHeight, 1024},
               {P::yLength, 1024},
               {P::simulatorImageHeight, 1024},
               {P::simulatorFrameGap, 1024}});
    station.setDmaRate(2'000'000'000); // 3072 bytes in 192 ticks
    acquire(2);
    station.advance(64 * 16'384); // a third: 10,922 lines stay
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
    board.set({{P::overflowOccurred, 0}, {P::simulatorImageWidth, 400}}); // slower than the DMA
    station.advance(64 * 500);
    EXPECT_EQ(value(P::overflowOccurred), 0);
    // The picture after it tells of the loss.
    station.waitForPicture(48, never);
    EXPECT_EQ(memory->record(47)->lostBefore, 0U);
    EXPECT_EQ(memory->record(48)->lostBefore, 1U);
    station.stop();
    station.advance(1);
    EXPECT_EQ(value(P::fillLevel0), 0);
}

TEST_F(StationPath, WholeImagesWaitInTheBuffer) {
    // Words of 100 bits, three for a line of 288 bits. A capacity of 12 words is 4 lines.
    board.set({{P::ramDataWidth, 100},
               {P::ramAddressWidth, 3},
               {P::sensorWidth, 12},
               {P::yMirror, 1},
               {P::imageHeight, 4},
               {P::yLength, 4}});
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
    // A frame less than its lines take: lost as a whole, and again.
    board.set({{P::imageHeight, 5}, {P::yLength, 5}});
    station.advance(1100);
    EXPECT_EQ(station.lastPicture(), 1);
    EXPECT_EQ(station.losses().images, 2U);
    // Dropped images leave at 32 pixels a tick, and silenced ones too.
    board.set({{P::imageHeight, 4}, {P::yLength, 4}, {P::selectPhase, 1}});
    station.advance(1000);
    EXPECT_EQ(station.losses().images, 3U); // one more had begun
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
