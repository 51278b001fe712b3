// Sensor geometry and region of interest: what is accepted, what is written in which order, what is
// published.

#include "support/parameter_test.h"

#include <algorithm>
#include <map>
#include <set>

namespace {

using namespace support;

const std::string buffer = "Device1_Process0_Buffer_0_";
const std::string addressWidth = buffer + "DRAM_DRAM_A_0_Imp_DRAM_RamAddressWidth";
const std::string dataWidth = buffer + "DRAM_DRAM_A_0_Imp_DRAM_RamDataWidth";
const std::string parallelism = buffer + "LinkPixelSpace_Parallelism";

constexpr std::uint32_t widthLimit = 16384;
constexpr std::uint32_t heightLimit = 1398101;
constexpr int refused = -6000;
constexpr int notMultipleOf4 = -7080;

struct Ram {
    std::uint64_t address = 18, data = 512, parallelism = 24;
};

struct Geometry {
    std::uint32_t vantage = 0, sensorWidth = 2048, sensorHeight = 512, width = 1000, height = 100,
                  xOffset = 8, yOffset = 16;

    bool right() const { return vantage == 1 || vantage == 3; }
    bool bottom() const { return vantage >= 2; }
    std::uint32_t& operator[](int id) {
        switch (id) {
        case FG_VANTAGEPOINT:
            return vantage;
        case FG_SENSORWIDTH:
            return sensorWidth;
        case FG_SENSORHEIGHT:
            return sensorHeight;
        case FG_WIDTH:
            return width;
        case FG_HEIGHT:
            return height;
        case FG_XOFFSET:
            return xOffset;
        default:
            return yOffset;
        }
    }
};

constexpr int allIds[] = {FG_VANTAGEPOINT, FG_SENSORWIDTH, FG_SENSORHEIGHT, FG_WIDTH,
                          FG_HEIGHT,       FG_XOFFSET,     FG_YOFFSET};
constexpr int rangeIds[] = {FG_SENSORWIDTH, FG_SENSORHEIGHT, FG_WIDTH, FG_HEIGHT, FG_XOFFSET, FG_YOFFSET};

bool isWidthLike(int id) { return id == FG_SENSORWIDTH || id == FG_WIDTH || id == FG_XOFFSET; }

/** Limit of a parameter for 8 bits in three components, where the three of the capacity cancels out:
 *  data width x 2^(address width - 1) / 8 pixels fit. */
std::uint32_t limitOf(int id, const Geometry& g, const Ram& ram) {
    const std::uint64_t pixels = (ram.data << (ram.address - 1)) / 8;
    const std::uint64_t fittingWidth = pixels / (ram.data + g.sensorHeight - 1);
    const std::uint64_t fittingHeight = pixels / g.sensorWidth - ram.data + 1;
    const std::uint64_t rounded =
        ram.parallelism != 0 ? fittingWidth - fittingWidth % ram.parallelism : fittingWidth;
    const auto least = [](std::uint64_t a, std::uint64_t b) {
        return static_cast<std::uint32_t>(std::min(a, b));
    };
    const std::uint32_t usable = g.right()    ? g.sensorWidth
                                 : g.bottom() ? least(widthLimit, fittingWidth)
                                              : widthLimit;
    switch (id) {
    case FG_SENSORWIDTH:
        return g.bottom() ? least(widthLimit, rounded) : widthLimit;
    case FG_SENSORHEIGHT:
        return g.bottom() ? least(heightLimit, fittingHeight) : heightLimit;
    case FG_WIDTH:
        return usable - g.xOffset;
    case FG_XOFFSET:
        return usable - g.width;
    case FG_HEIGHT:
        return g.bottom() ? g.sensorHeight - g.yOffset : heightLimit;
    default:
        return g.bottom() ? g.sensorHeight - g.height : heightLimit;
    }
}

std::string written(const std::string& name, std::uint32_t value, const char* type = "u32") {
    return "set Device1_Process0_" + name + " " + type + " " + std::to_string(value);
}

/** Everything a setter of `id` does with the design before it refreshes limits. */
Lines accessesOf(int id, std::uint32_t old, const Geometry& g, const Ram& ram) {
    Lines lines;
    const bool always = id == FG_SENSORWIDTH || id == FG_SENSORHEIGHT;
    if (always || (id != FG_VANTAGEPOINT && g.bottom())) {
        lines.push_back("get " + addressWidth + " u32 " + std::to_string(ram.address));
        lines.push_back("get " + dataWidth + " u32 " + std::to_string(ram.data));
    }
    if (id == FG_SENSORWIDTH)
        lines.push_back("get " + parallelism + " u32 " + std::to_string(ram.parallelism));

    lines.push_back(written("Buffer_0_SensorWidth", g.right() ? g.sensorWidth : g.xOffset + g.width));
    const std::string height = written("Buffer_0_SensorHeight", g.bottom() ? g.sensorHeight : 1);
    if (old <= 1) lines.push_back(height);
    lines.push_back(written("Buffer_0_XMirror", g.right()));
    lines.push_back(written("Buffer_0_YMirror", g.bottom(), "i32"));
    if (old > 1) lines.push_back(height);
    lines.push_back(written("Buffer_0_PixelFormat", 8));
    lines.push_back(written("Buffer_0_XLength", g.width));
    lines.push_back(written("Buffer_0_XOffset", g.xOffset));
    if (id == FG_HEIGHT || id == FG_YOFFSET) {
        lines.push_back(written("Trigger_Trigger_YOffset", 0));
        lines.push_back(written("Trigger_Trigger_YLength", g.height));
        lines.push_back(written("Trigger_Trigger_YOffset", g.yOffset));
        lines.push_back(written("ImageHeight_ImageHeight", g.height));
    }
    return lines;
}

class GeometryTest : public ParameterTest {
protected:
    GeometryTest() { fit(ram); }

    void fit(const Ram& values) {
        ram = values;
        poke(addressWidth, static_cast<std::int64_t>(ram.address));
        poke(dataWidth, static_cast<std::int64_t>(ram.data));
        poke(parallelism, static_cast<std::int64_t>(ram.parallelism));
    }
    /** Brings the object to a geometry by a road that every geometry can take. */
    void arrange(Geometry g) {
        const Ram wanted = ram;
        fit({30, 512, 4});
        const std::pair<int, std::uint32_t> road[] = {{FG_VANTAGEPOINT, 0},
                                                      {FG_SENSORWIDTH, g.sensorWidth},
                                                      {FG_SENSORHEIGHT, g.sensorHeight},
                                                      {FG_XOFFSET, 0},
                                                      {FG_WIDTH, g.width},
                                                      {FG_HEIGHT, g.height},
                                                      {FG_XOFFSET, g.xOffset},
                                                      {FG_YOFFSET, g.yOffset},
                                                      {FG_VANTAGEPOINT, g.vantage}};
        for (const auto& [id, value] : road)
            ASSERT_EQ(set(id, value), 0) << id;
        fit(wanted);
        clearLog();
    }
    std::uint32_t maximum(int id) { return record(id)->value.u32.maximum; }
    std::map<int, std::uint32_t> published() {
        std::map<int, std::uint32_t> maxima;
        for (const int id : rangeIds)
            maxima[id] = maximum(id);
        return maxima;
    }
    std::map<int, std::uint32_t> limits(const Geometry& g) {
        std::map<int, std::uint32_t> all;
        for (const int id : rangeIds)
            all[id] = limitOf(id, g, ram);
        return all;
    }

    Ram ram;
};

TEST_F(GeometryTest, EveryVantagePointWritesItsRow) {
    const std::uint32_t rows[][4] = {
        // sensor width, sensor height, X mirror, Y mirror
        {1008, 1, 0, 0},
        {2048, 1, 1, 0},
        {1008, 512, 0, 1},
        {2048, 512, 1, 1},
    };
    for (std::uint32_t from = 0; from < 4; ++from) {
        for (std::uint32_t to = 0; to < 4; ++to) {
            arrange({.vantage = from});
            ASSERT_EQ(set(FG_VANTAGEPOINT, to), 0);
            const auto& row = rows[to];
            const std::string height = written("Buffer_0_SensorHeight", row[1]);
            Lines expected = {
                written("Buffer_0_SensorWidth", row[0]), height,
                written("Buffer_0_XMirror", row[2]),     written("Buffer_0_YMirror", row[3], "i32"),
                written("Buffer_0_PixelFormat", 8),      written("Buffer_0_XLength", 1000),
                written("Buffer_0_XOffset", 8)};
            if (from >= 2) std::rotate(&expected[1], &expected[2], &expected[4]); // the mirrors first
            EXPECT_EQ(logToLastWrite(), expected) << from << " to " << to;
            EXPECT_EQ(get<std::uint32_t>(FG_VANTAGEPOINT), to);
        }
    }
}

TEST_F(GeometryTest, EverySetterReadsAndWritesInItsOrder) {
    for (std::uint32_t vantage = 0; vantage < 4; ++vantage) {
        const Geometry start{.vantage = vantage};
        const std::pair<int, std::uint32_t> changes[] = {{FG_SENSORWIDTH, 4092}, {FG_SENSORHEIGHT, 500},
                                                         {FG_WIDTH, 2000},       {FG_HEIGHT, 300},
                                                         {FG_XOFFSET, 800},      {FG_YOFFSET, 200}};
        for (const auto& [id, value] : changes) {
            arrange(start);
            ASSERT_EQ(set(id, value), 0) << id << " at " << vantage;
            Geometry now = start;
            const std::uint32_t old = now[id];
            now[id] = value;
            EXPECT_EQ(logToLastWrite(), accessesOf(id, old, now, ram)) << id << " at " << vantage;
            clearLog();
            for (const int each : allIds)
                EXPECT_EQ(get<std::uint32_t>(each), now[each]) << each << " after " << id;
            EXPECT_EQ(log(), Lines{}); // getters read nothing from the design
        }
    }
}

TEST_F(GeometryTest, AnOldValueOfZeroOrOneTurnsTheOrder) {
    const std::pair<int, std::uint32_t> olds[] = {
        {FG_XOFFSET, 0}, {FG_XOFFSET, 4}, {FG_YOFFSET, 0},      {FG_YOFFSET, 1},     {FG_YOFFSET, 2},
        {FG_HEIGHT, 1},  {FG_HEIGHT, 2},  {FG_SENSORHEIGHT, 1}, {FG_SENSORHEIGHT, 2}};
    for (const auto& [id, old] : olds) {
        Geometry g;
        g[id] = old;
        arrange(g);
        ASSERT_EQ(set(id, 40u), 0);
        g[id] = 40;
        EXPECT_EQ(logToLastWrite(), accessesOf(id, old, g, ram)) << id << " from " << old;
    }
}

TEST_F(GeometryTest, LimitsOfEveryVantagePoint) {
    // A RAM that limits everything; one whose limits exceed the fixed ones; one without parallelism.
    for (const Ram& fitted : {Ram{18, 512, 24}, Ram{36, 512, 32}, Ram{18, 512, 0}}) {
        for (std::uint32_t vantage = 0; vantage < 4; ++vantage) {
            const Geometry g{.vantage = vantage};
            fit(fitted);
            arrange(g);
            ASSERT_EQ(set(FG_VANTAGEPOINT, vantage), 0); // refreshes all six
            EXPECT_EQ(published(), limits(g)) << vantage;
            for (const int id : rangeIds) {
                SCOPED_TRACE(testing::Message() << id << " at " << vantage << " in RAM " << fitted.address);
                const std::uint32_t step = isWidthLike(id) ? 4 : 1;
                const std::uint32_t most = limitOf(id, g, ram) / step * step;
                arrange(g);
                EXPECT_EQ(set(id, most), 0);
                arrange(g);
                std::vector<std::pair<std::uint32_t, int>> bad = {
                    {most + step, refused}, {~std::uint32_t{0}, refused}, {~std::uint32_t{0} << 2, refused}};
                if (id != FG_XOFFSET && id != FG_YOFFSET) bad.push_back({isWidthLike(id) ? 3 : 0, refused});
                if (isWidthLike(id)) { // too large comes before not a multiple
                    bad.insert(bad.end(), {{most - 1, notMultipleOf4},
                                           {most - 2, notMultipleOf4},
                                           {most + step + 2, refused},
                                           {5, notMultipleOf4}});
                }
                for (const auto& [value, code] : bad) {
                    EXPECT_EQ(set(id, value), code) << value;
                    EXPECT_EQ(lastError(), code);
                }
                for (const std::string& line : log())
                    EXPECT_FALSE(line.starts_with("set ")) << line;
                EXPECT_EQ(get<std::uint32_t>(id), Geometry(g)[id]);
            }
        }
    }
}

TEST_F(GeometryTest, SmallestAndOddValues) {
    for (const int id : {FG_SENSORWIDTH, FG_WIDTH}) {
        EXPECT_EQ(set(id, 4u), 0); // from the left, a sensor smaller than the region
        EXPECT_EQ(set(id, 0u), refused);
    }
    EXPECT_EQ(set(FG_SENSORHEIGHT, 1u), 0);
    EXPECT_EQ(set(FG_HEIGHT, 1u), 0);
    EXPECT_EQ(set(FG_WIDTH, 1022u), notMultipleOf4);
    EXPECT_EQ(set(FG_WIDTH, 16386u), refused);
    EXPECT_EQ(set(FG_YOFFSET, 1398101u), 0); // beyond its catalogue maximum
    for (const std::uint32_t unknown : {4u, 5u, ~0u})
        EXPECT_EQ(set(FG_VANTAGEPOINT, unknown), refused);
}

TEST_F(GeometryTest, RegionOutsideTheSensorIsRefusedBeforeAnyWrite) {
    struct {
        Geometry from;
        int id;
        std::uint32_t value;
    } const rows[] = {
        {{.vantage = 1, .sensorWidth = 1008}, FG_SENSORWIDTH, 1004},
        {{.vantage = 3, .sensorWidth = 1008}, FG_SENSORWIDTH, 4},
        {{.vantage = 2, .sensorHeight = 116}, FG_SENSORHEIGHT, 115},
        {{.vantage = 3, .sensorHeight = 116}, FG_SENSORHEIGHT, 1},
        {{.vantage = 0, .sensorWidth = 1004}, FG_VANTAGEPOINT, 1},
        {{.vantage = 0, .sensorWidth = 1004}, FG_VANTAGEPOINT, 3},
        {{.vantage = 0, .sensorHeight = 115}, FG_VANTAGEPOINT, 2},
        {{.vantage = 1, .sensorHeight = 115}, FG_VANTAGEPOINT, 3},
    };
    for (const auto& row : rows) {
        arrange(row.from);
        Geometry old = row.from;
        EXPECT_EQ(set(row.id, row.value), refused) << row.id << " " << row.value;
        EXPECT_EQ(logToLastWrite(), Lines{});
        EXPECT_EQ(get<std::uint32_t>(row.id), old[row.id]);
    }
}

TEST_F(GeometryTest, DifferencesWrapAndTheRegionCheckDecides) {
    const Geometry g{.vantage = 2};
    fit({1, 512, 4}); // nothing fits: the usable width is 0
    arrange(g);
    ASSERT_EQ(set(FG_VANTAGEPOINT, 2u), 0);
    EXPECT_EQ(maximum(FG_WIDTH), 0u - 8);
    EXPECT_EQ(maximum(FG_XOFFSET), 0u - 1000);
    EXPECT_EQ(maximum(FG_SENSORWIDTH), 0u);
    clearLog();
    EXPECT_EQ(set(FG_WIDTH, 16380u), refused); // below its limit, right of the sensor
    EXPECT_EQ(set(FG_WIDTH, 0u - 8), refused); // with the offset it would come round to 0
    EXPECT_EQ(set(FG_XOFFSET, 15388u), refused);
    EXPECT_EQ(set(FG_XOFFSET, 0u - 1000), refused);
    EXPECT_EQ(logToLastWrite(), Lines{});
    EXPECT_EQ(set(FG_WIDTH, 16376u), 0);
    EXPECT_EQ(set(FG_WIDTH, 1000u), 0);
    EXPECT_EQ(set(FG_XOFFSET, 15384u), 0);
}

TEST_F(GeometryTest, ExtremeRamWidthsComputeWithoutFault) {
    struct {
        Ram ram;
        std::uint32_t sensorHeight, sensorWidthMaximum, sensorHeightMaximum;
    } const rows[] = {
        {{0, 512, 1}, 512, 0, heightLimit},  // no word of RAM: 0 - 512 + 1 lines, cut to 32 bits
        {{1, 512, 1}, 512, 0, heightLimit},  //
        {{64, 512, 1}, 512, 0, heightLimit}, // shifted by 0 bits, then by one to the right
        {{80, 512, 1}, 512, 2050, 513},      // like 16 bits
        {{63, 512, 1}, 512, 0, heightLimit}, // 512 words too many for 64 bits
        {{56, 1, 1}, 1048575, 4096, 0},      // 2^32 + 4096 and 2^41, cut to 32 bits
        {{18, 0, 1}, 512, 0, 1},             // no data bits
        {{18, 4294966785, 1}, 513, widthLimit, heightLimit}, // the divisor's sum wraps to 1
    };
    for (const auto& row : rows) {
        fit(row.ram);
        arrange({.vantage = 2, .sensorHeight = row.sensorHeight});
        ASSERT_EQ(set(FG_VANTAGEPOINT, 2u), 0);
        EXPECT_EQ(maximum(FG_SENSORWIDTH), row.sensorWidthMaximum) << row.ram.address << " " << row.ram.data;
        EXPECT_EQ(maximum(FG_SENSORHEIGHT), row.sensorHeightMaximum)
            << row.ram.address << " " << row.ram.data;
    }
}

TEST_F(GeometryTest, AZeroDivisorIsOutOfRange) {
    for (const auto& [data, sensorHeight] : {std::pair{0u, 1u}, std::pair{4294966785u, 512u}}) {
        for (const std::uint32_t vantage : {0u, 2u}) {
            fit({18, data, 4});
            arrange({.vantage = vantage, .sensorHeight = sensorHeight, .height = 1, .yOffset = 0});
            EXPECT_EQ(set(FG_SENSORWIDTH, 2000u), refused) << data; // computed for every vantage point
            EXPECT_EQ(get<std::uint32_t>(FG_SENSORWIDTH), 2048u);
            EXPECT_EQ(set(FG_WIDTH, 500u), vantage == 2 ? refused : 0) << data;
            EXPECT_EQ(set(FG_VANTAGEPOINT, vantage), 0); // the published limit stays as it was
        }
    }
}

TEST_F(GeometryTest, EachSetterRefreshesItsNeighboursOnly) {
    const std::map<int, std::set<int>> neighbours = {
        {FG_VANTAGEPOINT, {FG_SENSORWIDTH, FG_SENSORHEIGHT, FG_WIDTH, FG_HEIGHT, FG_XOFFSET, FG_YOFFSET}},
        {FG_SENSORWIDTH, {FG_SENSORHEIGHT, FG_WIDTH, FG_HEIGHT, FG_XOFFSET, FG_YOFFSET}},
        {FG_SENSORHEIGHT, {FG_SENSORWIDTH, FG_WIDTH, FG_HEIGHT, FG_XOFFSET, FG_YOFFSET}},
        {FG_WIDTH, {FG_SENSORWIDTH, FG_SENSORHEIGHT, FG_HEIGHT, FG_XOFFSET, FG_YOFFSET}},
        {FG_HEIGHT, {FG_WIDTH, FG_XOFFSET, FG_YOFFSET}},
        {FG_XOFFSET, {FG_SENSORWIDTH, FG_SENSORHEIGHT, FG_WIDTH}},
        {FG_YOFFSET, {FG_SENSORHEIGHT, FG_HEIGHT}},
    };
    constexpr std::uint32_t mark = 7777;
    const auto markAll = [&] {
        for (const int id : rangeIds)
            record(id)->value.u32.maximum = mark;
    };
    for (std::uint32_t vantage = 0; vantage < 4; ++vantage) {
        for (const auto& [id, refreshed] : neighbours) {
            SCOPED_TRACE(testing::Message() << id << " at " << vantage);
            Geometry g{.vantage = vantage};
            arrange(g);
            markAll();
            g[id] = id == FG_VANTAGEPOINT ? vantage : g[id] + 40;
            ASSERT_EQ(set(id, g[id]), 0);
            std::map<int, std::uint32_t> expected = limits(g);
            for (auto& [each, maximum] : expected)
                if (!refreshed.contains(each)) maximum = mark;
            EXPECT_EQ(published(), expected);

            // A refused value refreshes nothing; a limit that cannot be computed stays, and nobody is told.
            markAll();
            EXPECT_EQ(set(id, ~0u), refused);
            EXPECT_EQ(published(), (std::map<int, std::uint32_t>{{FG_SENSORWIDTH, mark},
                                                                 {FG_SENSORHEIGHT, mark},
                                                                 {FG_WIDTH, mark},
                                                                 {FG_HEIGHT, mark},
                                                                 {FG_XOFFSET, mark},
                                                                 {FG_YOFFSET, mark}}));
        }
        arrange({.vantage = vantage});
        markAll();
        fail(addressWidth, -4711);
        EXPECT_EQ(set(FG_VANTAGEPOINT, vantage), 0);
        EXPECT_EQ(maximum(FG_SENSORWIDTH), vantage >= 2 ? mark : widthLimit);
        EXPECT_EQ(maximum(FG_SENSORHEIGHT), vantage >= 2 ? mark : heightLimit);
        fail(addressWidth, 0);
    }
}

TEST_F(GeometryTest, AnUnreadableRamStopsTheSettersThatConsultIt) {
    for (const std::string& name : {addressWidth, dataWidth, parallelism}) {
        for (std::uint32_t vantage = 0; vantage < 4; ++vantage) {
            arrange({.vantage = vantage});
            fail(name, -4711);
            for (const int id : rangeIds) {
                const bool ofRam = name != parallelism;
                const bool consulted =
                    id == FG_SENSORWIDTH || (ofRam && (id == FG_SENSORHEIGHT || vantage >= 2));
                EXPECT_EQ(set(id, Geometry{}[id]), consulted ? -4711 : 0)
                    << name << ", " << id << " at " << vantage;
            }
            fail(name, 0);
        }
    }
}

} // namespace
