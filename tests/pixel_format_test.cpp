// Pixel format: what is written, and how a wider pixel moves the limits of the geometry.

#include "support/applet_fixture.h"

#include <algorithm>

namespace {

using namespace support;

constexpr int geometryIds[] = {FG_SENSORWIDTH, FG_SENSORHEIGHT, FG_WIDTH, FG_XOFFSET, FG_HEIGHT, FG_YOFFSET};
constexpr std::uint32_t bitsOf[] = {8, 10, 12, 14, 16}; // of the formats from 1025 on
using Maxima = std::vector<std::uint32_t>;

class PixelFormatTest : public ParameterTest {
protected:
    /** A region within a sensor of 2048 x 512, seen from `vantage`, on a board whose memory limits it. */
    void arrange(std::uint32_t vantage) {
        restart([&] { fit(30); }); // large enough for every way there
        setAll({{FG_WIDTH, 1000},
                {FG_XOFFSET, 8},
                {FG_SENSORWIDTH, 2048},
                {FG_SENSORHEIGHT, 512},
                {FG_HEIGHT, 100},
                {FG_YOFFSET, 16},
                {FG_VANTAGEPOINT, vantage}});
        fit(18);
    }
    void fit(int addressWidth) {
        poke("Buffer_0_DRAM_DRAM_A_0_Imp_DRAM_RamAddressWidth", addressWidth);
        poke("Buffer_0_DRAM_DRAM_A_0_Imp_DRAM_RamDataWidth", 512);
        poke("Buffer_0_LinkPixelSpace_Parallelism", 24);
    }
    Maxima published() {
        Maxima all;
        for (const int id : geometryIds)
            all.push_back(maximum(id));
        return all;
    }
    static Maxima limits(std::uint32_t vantage, std::uint32_t bits) {
        // 512 bits x 2^17 words x 3, at three components a pixel; one line of 512 pixels is lost to the turn.
        const std::uint32_t pixels = 512u * 131072 / bits;
        const std::uint32_t width = std::min(16384u, pixels / (512 + 512 - 1));
        const bool right = vantage % 2 == 1, bottom = vantage >= 2;
        const std::uint32_t usable = right ? 2048 : bottom ? width : 16384;
        if (!bottom) return {16384, 1398101, usable - 8, usable - 1000, 1398101, 1398101};
        return {width - width % 24, pixels / 2048 - 511, usable - 8, usable - 1000, 512 - 16, 512 - 100};
    }
};

TEST_F(PixelFormatTest, RewritesTheBufferAndMovesTheLimits) {
    for (std::uint32_t vantage = 0; vantage < 4; ++vantage) {
        SCOPED_TRACE(vantage);
        const bool right = vantage % 2 == 1, bottom = vantage >= 2;
        arrange(vantage);
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
    // Also such as have a good depth code and a wrong group, or the upper half of the word set.
    expectAllRefused(FG_PIXELFORMAT, {0u, 257u, 1024u, 1030u, 1281u, 0x10401u, 0x80000401u, ~0u});
}

TEST_F(PixelFormatTest, GeometryAboveTheNewLimitStays) {
    arrange(2);
    setAll({{FG_SENSORHEIGHT, 3585}, {FG_PIXELFORMAT, 1029}}); // all that fits
    EXPECT_EQ(maximum(FG_SENSORHEIGHT), 1537u);
    expectRefused(FG_SENSORHEIGHT, 3585u);
    EXPECT_EQ(get<std::uint32_t>(FG_SENSORHEIGHT), 3585u);
    setAll({{FG_SENSORHEIGHT, 1537}});
}

} // namespace
