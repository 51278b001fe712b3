// Sensor geometry and region of interest: what is accepted, what is written in which order, what is
// published.

#include "support/applet_fixture.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

namespace {

using namespace support;

const std::string buffer = "Device1_Process0_Buffer_0_";
const std::string ramWidth = buffer + "DRAM_DRAM_A_0_Imp_DRAM_Ram"; // of the address or the data

constexpr std::uint32_t widthLimit = 16384;
constexpr std::uint32_t heightLimit = 1398101;
constexpr int refused = -6000;
constexpr int notMultipleOf4 = -7080;

struct Ram {
    std::uint64_t address = 18, data = 512, parallelism = 24;
};

using Values = std::map<int, std::uint32_t>; // by parameter

/** The geometry of most cases, but for what is told. */
Values geometry(Values g = {}) {
    g.insert({{FG_VANTAGEPOINT, 0}, {FG_SENSORWIDTH, 2048}, {FG_SENSORHEIGHT, 512}, {FG_WIDTH, 1000}});
    g.insert({{FG_HEIGHT, 100}, {FG_XOFFSET, 8}, {FG_YOFFSET, 16}});
    return g;
}
Values at(std::uint32_t vantage) { return geometry({{FG_VANTAGEPOINT, vantage}}); }
bool isRight(const Values& g) { return g.at(FG_VANTAGEPOINT) % 2 == 1; }
bool isBottom(const Values& g) { return g.at(FG_VANTAGEPOINT) >= 2; }

constexpr int rangeIds[] = {FG_SENSORWIDTH, FG_SENSORHEIGHT, FG_WIDTH, FG_HEIGHT, FG_XOFFSET, FG_YOFFSET};

/** Limit of a parameter for 8 bits in three components, where the three of the capacity cancels out:
 *  data width x 2^(address width - 1) / 8 pixels fit. */
std::uint32_t limitOf(int id, const Values& g, const Ram& ram) {
    const std::uint64_t pixels = (ram.data << (ram.address - 1)) / 8;
    const std::uint64_t fittingWidth = pixels / (ram.data + g.at(FG_SENSORHEIGHT) - 1);
    const std::uint64_t fittingHeight = pixels / g.at(FG_SENSORWIDTH) - ram.data + 1;
    const std::uint64_t rounded =
        ram.parallelism != 0 ? fittingWidth - fittingWidth % ram.parallelism : fittingWidth;
    const auto least = [](std::uint32_t most, std::uint64_t fitting) {
        return static_cast<std::uint32_t>(std::min<std::uint64_t>(most, fitting));
    };
    const std::uint32_t fromLeft = isBottom(g) ? least(widthLimit, fittingWidth) : widthLimit;
    const std::uint32_t usable = isRight(g) ? g.at(FG_SENSORWIDTH) : fromLeft;
    if (id == FG_WIDTH) return usable - g.at(FG_XOFFSET);
    if (id == FG_XOFFSET) return usable - g.at(FG_WIDTH);
    if (!isBottom(g)) return id == FG_SENSORWIDTH ? widthLimit : heightLimit;
    if (id == FG_SENSORWIDTH) return least(widthLimit, rounded);
    if (id == FG_SENSORHEIGHT) return least(heightLimit, fittingHeight);
    return g.at(FG_SENSORHEIGHT) - (id == FG_HEIGHT ? g.at(FG_YOFFSET) : g.at(FG_HEIGHT));
}

/** Everything a setter of `id` does with the design before it refreshes limits. */
Lines accessesOf(int id, std::uint32_t old, const Values& g, const Ram& ram) {
    Lines lines;
    const bool always = id == FG_SENSORWIDTH || id == FG_SENSORHEIGHT;
    if (always || (id != FG_VANTAGEPOINT && isBottom(g))) {
        lines.push_back("get " + ramWidth + "AddressWidth u32 " + std::to_string(ram.address));
        lines.push_back("get " + ramWidth + "DataWidth u32 " + std::to_string(ram.data));
    }
    if (id == FG_SENSORWIDTH)
        lines.push_back("get " + buffer + "LinkPixelSpace_Parallelism u32 " +
                        std::to_string(ram.parallelism));

    lines.push_back(written("Buffer_0_SensorWidth",
                            isRight(g) ? g.at(FG_SENSORWIDTH) : g.at(FG_XOFFSET) + g.at(FG_WIDTH)));
    const std::string height = written("Buffer_0_SensorHeight", isBottom(g) ? g.at(FG_SENSORHEIGHT) : 1);
    if (old <= 1) lines.push_back(height);
    lines.push_back(written("Buffer_0_XMirror", isRight(g)));
    lines.push_back(written("Buffer_0_YMirror", isBottom(g), "i32"));
    if (old > 1) lines.push_back(height);
    lines.push_back(written("Buffer_0_PixelFormat", 8));
    lines.push_back(written("Buffer_0_XLength", g.at(FG_WIDTH)));
    lines.push_back(written("Buffer_0_XOffset", g.at(FG_XOFFSET)));
    if (id == FG_HEIGHT || id == FG_YOFFSET) {
        lines.push_back(written("Trigger_Trigger_YOffset", 0));
        lines.push_back(written("Trigger_Trigger_YLength", g.at(FG_HEIGHT)));
        lines.push_back(written("Trigger_Trigger_YOffset", g.at(FG_YOFFSET)));
        lines.push_back(written("ImageHeight_ImageHeight", g.at(FG_HEIGHT)));
    }
    return lines;
}

class GeometryTest : public ParameterTest {
protected:
    GeometryTest() { fit(ram); }

    void fit(const Ram& values) {
        ram = values;
        grabber.fitRam(static_cast<std::int64_t>(ram.address), static_cast<std::int64_t>(ram.data),
                       static_cast<std::int64_t>(ram.parallelism));
    }
    /** Brings the object to a geometry by a road that every geometry can take. */
    void arrange(const Values& g) {
        const Ram wanted = ram;
        fit({30, 512, 4});
        for (const int id : {FG_VANTAGEPOINT, FG_XOFFSET})
            ASSERT_EQ(set(id, 0u), 0);
        for (const int id :
             {FG_SENSORWIDTH, FG_SENSORHEIGHT, FG_WIDTH, FG_HEIGHT, FG_YOFFSET, FG_XOFFSET, FG_VANTAGEPOINT})
            ASSERT_EQ(set(id, g.at(id)), 0) << id;
        fit(wanted);
        clearLog();
    }
    /** The same in a RAM, and all limits refreshed there. */
    void arrangeIn(const Ram& wanted, const Values& g) {
        fit(wanted);
        arrange(g);
        ASSERT_EQ(set(FG_VANTAGEPOINT, g.at(FG_VANTAGEPOINT)), 0);
    }
    /** One accepted change: all that reaches the design, in order, and all values after it. */
    void expectChange(Values g, int id, std::uint32_t value) {
        SCOPED_TRACE(testing::Message() << id << " = " << value << " at " << g[FG_VANTAGEPOINT]);
        arrange(g);
        ASSERT_EQ(set(id, value), 0);
        const std::uint32_t old = std::exchange(g[id], value);
        EXPECT_EQ(logToLastWrite(), accessesOf(id, old, g, ram));
        clearLog();
        for (const auto& [each, expected] : g)
            EXPECT_EQ(get<std::uint32_t>(each), expected) << each;
        EXPECT_EQ(log(), Lines{}); // getters read nothing from the design
    }
    Values published() {
        Values maxima;
        for (const int id : rangeIds)
            maxima[id] = maximum(id);
        return maxima;
    }
    Values limits(const Values& g) {
        Values all;
        for (const int id : rangeIds)
            all[id] = limitOf(id, g, ram);
        return all;
    }

    Ram ram;
};

TEST_F(GeometryTest, EverySetterReadsAndWritesInItsOrder) {
    for (std::uint32_t vantage = 0; vantage < 4; ++vantage) {
        for (const auto& [id, value] : Values{{FG_SENSORWIDTH, 4092},
                                              {FG_SENSORHEIGHT, 500},
                                              {FG_WIDTH, 2000},
                                              {FG_HEIGHT, 300},
                                              {FG_XOFFSET, 800},
                                              {FG_YOFFSET, 200}})
            expectChange(at(vantage), id, value);
        for (std::uint32_t other = 0; other < 4; ++other)
            expectChange(at(vantage), FG_VANTAGEPOINT, other);
    }
    // From the left, a sensor may be smaller than the region.
    for (const auto& [id, least] :
         Values{{FG_SENSORWIDTH, 4}, {FG_SENSORHEIGHT, 1}, {FG_WIDTH, 4}, {FG_HEIGHT, 1}})
        expectChange(geometry(), id, least);
    // An old value of 0 or 1 turns the order.
    for (const auto& [id, olds] : std::map<int, std::set<std::uint32_t>>{
             {FG_XOFFSET, {0, 4}}, {FG_YOFFSET, {0, 1, 2}}, {FG_HEIGHT, {1, 2}}, {FG_SENSORHEIGHT, {1}}}) {
        for (const std::uint32_t old : olds)
            expectChange(geometry({{id, old}}), id, 40);
    }
}

TEST_F(GeometryTest, LimitsOfEveryVantagePoint) {
    // A RAM that limits everything; one whose limits exceed the fixed ones; one without parallelism.
    for (const Ram& fitted : {Ram{18, 512, 24}, Ram{36, 512, 32}, Ram{18, 512, 0}}) {
        for (std::uint32_t vantage = 0; vantage < 4; ++vantage) {
            SCOPED_TRACE(testing::Message() << "at " << vantage << " in RAM " << fitted.address);
            const Values g = at(vantage);
            arrangeIn(fitted, g);
            EXPECT_EQ(published(), limits(g));
            for (const int id : rangeIds) {
                const bool isX = id == FG_SENSORWIDTH || id == FG_WIDTH || id == FG_XOFFSET;
                const std::uint32_t step = isX ? 4 : 1, most = limitOf(id, g, ram) / step * step;
                arrange(g);
                std::map<std::uint32_t, int> bad = {
                    {most + step, refused}, {~0u, refused}, {~0u << 2, refused}};
                if (id != FG_XOFFSET && id != FG_YOFFSET) bad[isX ? 3 : 0] = refused;
                if (isX) // too large comes before not a multiple
                    bad.insert({{most - 2, notMultipleOf4}, {most + 6, refused}, {5, notMultipleOf4}});
                for (const auto& [value, code] : bad)
                    expectRefused(id, value, code);
                EXPECT_EQ(set(id, most), 0) << id;
            }
        }
    }
}

TEST_F(GeometryTest, RegionOutsideTheSensorIsRefusedBeforeAnyWrite) {
    for (const auto& [vantage, id, from, value] : {std::tuple{1u, FG_SENSORWIDTH, 1008u, 1004u},
                                                   {3u, FG_SENSORWIDTH, 1008u, 4u},
                                                   {2u, FG_SENSORHEIGHT, 116u, 115u},
                                                   {3u, FG_SENSORHEIGHT, 116u, 1u}}) {
        arrange(geometry({{FG_VANTAGEPOINT, vantage}, {id, from}}));
        expectRefused(id, value);
    }
    for (const auto& [id, size, vantage] : {std::tuple{FG_SENSORWIDTH, 1004u, 1u},
                                            {FG_SENSORWIDTH, 1004u, 3u},
                                            {FG_SENSORHEIGHT, 115u, 2u},
                                            {FG_SENSORHEIGHT, 115u, 3u},
                                            {FG_SENSORHEIGHT, 512u, 4u}}) {
        arrange(geometry({{id, size}}));
        expectRefused(FG_VANTAGEPOINT, vantage);
    }
}

TEST_F(GeometryTest, ExtremeRamWidthsWrap) {
    struct {
        Ram ram;
        std::uint32_t sensorHeight, sensorWidthMaximum, sensorHeightMaximum;
    } const rows[] = {
        {{0, 512, 1}, 512, 0, heightLimit},  // no word of RAM: 0 - 512 + 1 lines, cut to 32 bits
        {{64, 512, 1}, 512, 0, heightLimit}, // shifted by 0 bits, then by one to the right
        {{80, 512, 1}, 512, 2050, 513},      // like 16 bits
        {{56, 1, 1}, 1048575, 4096, 0},      // 2^32 + 4096 and 2^41, cut to 32 bits
        {{18, 0, 1}, 512, 0, 1},             // no data bits
        {{18, 4294966785, 1}, 513, widthLimit, heightLimit}, // the divisor's sum wraps to 1
    };
    for (const auto& row : rows) {
        arrangeIn(row.ram, geometry({{FG_VANTAGEPOINT, 2}, {FG_SENSORHEIGHT, row.sensorHeight}}));
        EXPECT_EQ(maximum(FG_SENSORWIDTH), row.sensorWidthMaximum) << row.ram.address << " " << row.ram.data;
        EXPECT_EQ(maximum(FG_SENSORHEIGHT), row.sensorHeightMaximum) << row.ram.address;
    }
    // Where nothing fits, the usable width is 0 and differences wrap: the check of the region decides.
    arrangeIn({1, 512, 4}, at(2));
    EXPECT_EQ(maximum(FG_WIDTH), 0u - 8);
    EXPECT_EQ(maximum(FG_XOFFSET), 0u - 1000);
    for (const auto& [id, most, last] : {std::tuple{FG_WIDTH, 16376u, 0u - 8}, // comes round to 0
                                         {FG_XOFFSET, 15384u, 0u - 1000}}) {
        expectRefused(id, most + 4);
        expectRefused(id, last);
        EXPECT_EQ(set(id, most), 0);
        arrange(at(2));
    }
}

TEST_F(GeometryTest, AZeroDivisorIsOutOfRange) {
    for (const auto& [data, sensorHeight] : {std::pair{0u, 1u}, std::pair{4294966785u, 512u}}) {
        for (const std::uint32_t vantage : {0u, 2u}) {
            fit({18, data, 4});
            Values g{
                {FG_VANTAGEPOINT, vantage}, {FG_SENSORHEIGHT, sensorHeight}, {FG_HEIGHT, 1}, {FG_YOFFSET, 0}};
            arrange(geometry(g));
            expectRefused(FG_SENSORWIDTH, 2000u); // computed for every vantage point
            EXPECT_EQ(set(FG_WIDTH, 500u), vantage == 2 ? refused : 0) << data;
            EXPECT_EQ(set(FG_VANTAGEPOINT, vantage), 0); // the published limit stays as it was
        }
    }
}

TEST_F(GeometryTest, EachSetterRefreshesItsNeighboursOnly) {
    const std::map<int, std::set<int>> leftAlone = {
        {FG_VANTAGEPOINT, {}},
        {FG_SENSORWIDTH, {FG_SENSORWIDTH}},
        {FG_SENSORHEIGHT, {FG_SENSORHEIGHT}},
        {FG_WIDTH, {FG_WIDTH}},
        {FG_HEIGHT, {FG_HEIGHT, FG_SENSORWIDTH, FG_SENSORHEIGHT}},
        {FG_XOFFSET, {FG_XOFFSET, FG_HEIGHT, FG_YOFFSET}},
        {FG_YOFFSET, {FG_YOFFSET, FG_SENSORWIDTH, FG_WIDTH, FG_XOFFSET}},
    };
    constexpr std::uint32_t mark = 7777;
    const auto markAll = [&] {
        for (const int id : rangeIds)
            record(id)->value.u32.maximum = mark;
        return published();
    };
    for (std::uint32_t vantage = 0; vantage < 4; ++vantage) {
        for (const auto& [id, marked] : leftAlone) {
            SCOPED_TRACE(testing::Message() << id << " at " << vantage);
            Values g = at(vantage);
            arrange(g);
            markAll();
            g[id] = id == FG_VANTAGEPOINT ? vantage : g[id] + 40;
            ASSERT_EQ(set(id, g[id]), 0);
            Values expected = limits(g);
            for (const int each : marked)
                expected[each] = mark;
            EXPECT_EQ(published(), expected);
            // A refused value refreshes nothing.
            const Values before = markAll();
            EXPECT_EQ(set(id, ~0u), refused);
            EXPECT_EQ(published(), before);
        }
        // A limit that cannot be computed stays, and nobody is told.
        arrange(at(vantage));
        markAll();
        grabber.fail(ramWidth + "AddressWidth", -4711);
        EXPECT_EQ(set(FG_VANTAGEPOINT, vantage), 0);
        EXPECT_EQ(maximum(FG_SENSORWIDTH), vantage >= 2 ? mark : widthLimit);
        EXPECT_EQ(maximum(FG_SENSORHEIGHT), vantage >= 2 ? mark : heightLimit);
        grabber.fail(ramWidth + "AddressWidth", 0);
    }
}

} // namespace
