// Pixel format and line order: what is written, and how a wider pixel moves the limits of the geometry.

#include "support/applet_fixture.h"

#include <algorithm>
#include <map>

namespace {

using namespace support;

constexpr int geometryIds[] = {FG_SENSORWIDTH, FG_SENSORHEIGHT, FG_WIDTH, FG_HEIGHT, FG_XOFFSET, FG_YOFFSET};
constexpr std::uint32_t bitsOf[] = {8, 10, 12, 14, 16}; // of the formats from 1025 on
using Maxima = std::map<int, std::uint32_t>;

class PixelFormatTest : public ParameterTest {
protected:
    /** A region within a sensor of 2048 x 512, seen from `vantage`, on a board whose memory limits it. */
    void arrange(std::uint32_t vantage) {
        fit(30); // large enough for every way there
        for (const auto& [id, value] : {std::pair{FG_PIXELFORMAT, 1025u},
                                        {FG_VANTAGEPOINT, 0u},
                                        {FG_XOFFSET, 8u},
                                        {FG_WIDTH, 1000u},
                                        {FG_SENSORWIDTH, 2048u},
                                        {FG_SENSORHEIGHT, 512u},
                                        {FG_HEIGHT, 100u},
                                        {FG_YOFFSET, 16u},
                                        {FG_VANTAGEPOINT, vantage}})
            ASSERT_EQ(set(id, value), 0) << id;
        fit(18);
    }
    void fit(int addressWidth) {
        for (const auto& [name, value] : {std::pair{"DRAM_DRAM_A_0_Imp_DRAM_RamAddressWidth", addressWidth},
                                          {"DRAM_DRAM_A_0_Imp_DRAM_RamDataWidth", 512},
                                          {"LinkPixelSpace_Parallelism", 24}})
            board.poke_int(grabber.device, (std::string("Device1_Process0_Buffer_0_") + name).c_str(), value);
    }
    Maxima published() {
        Maxima all;
        for (const int id : geometryIds)
            all[id] = maximum(id);
        return all;
    }
    static Maxima limits(std::uint32_t vantage, std::uint32_t bits) {
        // 512 bits x 2^17 words x 3, at three components a pixel; one line of 512 pixels is lost to the turn.
        const std::uint32_t pixels = 512u * 131072 / bits;
        const std::uint32_t width = std::min(16384u, pixels / (512 + 512 - 1));
        const bool right = vantage % 2 == 1, bottom = vantage >= 2;
        const std::uint32_t usable = right ? 2048 : bottom ? width : 16384;
        return {{FG_SENSORWIDTH, bottom ? width - width % 24 : 16384},
                {FG_SENSORHEIGHT, bottom ? pixels / 2048 - 511 : 1398101},
                {FG_WIDTH, usable - 8},
                {FG_XOFFSET, usable - 1000},
                {FG_HEIGHT, bottom ? 512 - 16 : 1398101},
                {FG_YOFFSET, bottom ? 512 - 100 : 1398101}};
    }
};

TEST_F(PixelFormatTest, RewritesTheBufferAndMovesTheLimits) {
    for (std::uint32_t vantage = 0; vantage < 4; ++vantage) {
        SCOPED_TRACE(vantage);
        const bool right = vantage % 2 == 1, bottom = vantage >= 2;
        ASSERT_NO_FATAL_FAILURE(arrange(vantage));
        for (std::uint32_t i = 5; i-- > 0;) {
            for (const int id : geometryIds)
                record(id)->value.u32.maximum = 7777;
            expectAccepted(FG_PIXELFORMAT, 1025 + i,
                           {written("Buffer_0_PixelFormat", bitsOf[i]),
                            written("Buffer_0_SensorWidth", right ? 2048 : 1008),
                            written("Buffer_0_XMirror", right), written("Buffer_0_YMirror", bottom, "i32"),
                            written("Buffer_0_SensorHeight", bottom ? 512 : 1),
                            written("Buffer_0_PixelFormat", bitsOf[i]), written("Buffer_0_XLength", 1000),
                            written("Buffer_0_XOffset", 8)});
            EXPECT_EQ(published(), limits(vantage, bitsOf[i]));
        }
    }
}

TEST_F(PixelFormatTest, OnlyTheFiveFormatsAreTaken) {
    for (std::uint32_t value = 0; value < 1500; ++value)
        if (value < 1025 || value > 1029) expectRefused(FG_PIXELFORMAT, value);
    // Such as have a good depth code and a wrong group, or the upper half of the word set.
    for (const std::uint32_t value : {257u, 1281u, 0x10401u, 0x80000401u, ~0u})
        expectRefused(FG_PIXELFORMAT, value);
}

TEST_F(PixelFormatTest, GeometryAboveTheNewLimitStays) {
    ASSERT_NO_FATAL_FAILURE(arrange(2));
    ASSERT_EQ(set(FG_SENSORHEIGHT, 3585u), 0); // all that fits
    ASSERT_EQ(set(FG_PIXELFORMAT, 1029u), 0);
    EXPECT_EQ(maximum(FG_SENSORHEIGHT), 1537u);
    expectRefused(FG_SENSORHEIGHT, 3585u);
    EXPECT_EQ(get<std::uint32_t>(FG_SENSORHEIGHT), 3585u);
    EXPECT_EQ(set(FG_SENSORHEIGHT, 1537u), 0);
}

TEST_F(PixelFormatTest, AnUnreadableMemoryLeavesTheLimitsAndHindersNobody) {
    ASSERT_NO_FATAL_FAILURE(arrange(2));
    ASSERT_EQ(set(FG_PIXELFORMAT, 1025u), 0);
    const Maxima before = published();
    grabber.fail("Device1_Process0_Buffer_0_DRAM_DRAM_A_0_Imp_DRAM_RamAddressWidth", -4711);
    EXPECT_EQ(set(FG_PIXELFORMAT, 1029u), 0);
    EXPECT_EQ(get<std::uint32_t>(FG_PIXELFORMAT), 1029u);
    EXPECT_EQ(published(), before);
}

TEST_F(PixelFormatTest, LineOrder) {
    EXPECT_EQ(get<std::uint32_t>(FG_LINEORDER), 0u) << "the design's own stands until it is set";
    const auto order = [](std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
        Lines lines;
        for (const auto& [name, number] : {std::pair{"Red", red}, {"Green", green}, {"Blue", blue}})
            for (const char* part : {"SelectComponents_", "SelectComponentsHeader_"})
                lines.push_back(written(
                    std::string("Camera_SortImage_ColorInterpret_") + part + name + "Component", number));
        return lines;
    };
    expectChoices(FG_LINEORDER, {{0, order(0, 1, 2)},
                                 {1, order(2, 1, 0)},
                                 {2, order(0, 2, 1)},
                                 {3, order(2, 0, 1)},
                                 {4, order(1, 2, 0)},
                                 {5, order(1, 0, 2)}});
}

} // namespace
