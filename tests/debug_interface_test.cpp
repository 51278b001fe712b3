// Debug interface: the points that the design tells of, what each access of them reads and writes.

#include "support/applet_fixture.h"

#include <cstdio>
#include <filesystem>
#include <map>
#include <unistd.h>

namespace {

using namespace support;

struct Point {
    std::uint32_t source;
    std::string name, path;
    bool monitors;
    std::uint32_t maxPixel;
};
const Point points[] = {{0, "Camera", "Camera_Debug", true, 0xffff},
                        {1, "Buffer", "Buffer_0_Debug", false, 0},
                        {2, "Output", "OutputFormat_Debug", true, 0xffffffff}};

class DebugInterface : public ParameterTest {
protected:
    void select(const Point& point) {
        ASSERT_EQ(set(FG_DEBUGSOURCE, point.source), 0);
        clearLog();
    }
    static std::string full(const Point& point, const std::string& suffix) {
        return "Device1_Process0_" + point.path + suffix;
    }
    static std::string read(const Point& point, const std::string& suffix, std::uint32_t value) {
        return "get " + full(point, suffix) + " u32 " + std::to_string(value);
    }
    void poke(const Point& point, const std::string& suffix, std::uint32_t value) {
        ASSERT_EQ(board.poke_int(grabber.device, full(point, suffix).c_str(), value), VBOARD_OK);
    }
    std::uint32_t outAccess() { return record(FG_DEBUGOUTENABLE)->access; }
};

TEST_F(DebugInterface, SourcesAreThePointsOfTheDesign) {
    EXPECT_EQ(text(FG_DEBUG_VERSION), "1.0");
    for (const std::uint32_t source : {2u, 1u, 0u, 1u, 2u}) {
        const Point& point = points[source];
        expectAccepted(FG_DEBUGSOURCE, source, {});
        EXPECT_EQ(log(), Lines{"get Device1_Process0_Debug_Entries text 3"});
        EXPECT_EQ(text(FG_DEBUGSOURCENAME), point.name);
        EXPECT_EQ(outAccess(), point.monitors ? 7u : 1u);
        EXPECT_EQ(maximum(FG_DEBUGOUTPIXEL), point.maxPixel);
    }
    for (const std::uint32_t source : {3u, 4u, 0x10000u, ~0u})
        expectRefused(FG_DEBUGSOURCE, source);
    // The number of points is read anew; a point that was not found at the start has no type.
    tell("Debug_Entries", "2");
    ASSERT_EQ(set(FG_DEBUGSOURCE, 1u), 0);
    expectRefused(FG_DEBUGSOURCE, 2u);
    tell("Debug_Entries", "9");
    for (const std::uint32_t source : {3u, 8u})
        expectRefused(FG_DEBUGSOURCE, source, FG_ERR_UNRESOLVED);
    EXPECT_EQ(outAccess(), 1u);
    for (const int id : {FG_DEBUGSOURCENAME, FG_DEBUG_VERSION, FG_DEBUGOUTXPOS, FG_DEBUGOUTYPOS,
                         FG_DEBUGOUTPIXEL, FG_DEBUGREADY})
        EXPECT_EQ(set(id, 0u), FG_ERR_NOT_AVAILABLE);
}

TEST_F(DebugInterface, InputAndOutputShareAWord) {
    for (const Point& point : points) {
        SCOPED_TRACE(point.name);
        ASSERT_NO_FATAL_FAILURE(select(point));
        for (const std::uint32_t mode : {0u, 1u, 2u, 3u, 0xfcu, 0xffu}) {
            const std::uint32_t in = mode & 1, out = point.monitors ? mode >> 1 & 1 : 0;
            poke(point, "_OperationMode", mode);
            clearLog();
            EXPECT_EQ(get<std::uint32_t>(FG_DEBUGINENABLE), in);
            EXPECT_EQ(get<std::uint32_t>(FG_DEBUGOUTENABLE), out);
            const std::string modeRead = read(point, "_OperationMode", mode);
            EXPECT_EQ(log(), point.monitors ? (Lines{modeRead, modeRead}) : Lines{modeRead});
            for (const std::uint32_t value : {0u, 1u}) {
                poke(point, "_OperationMode", mode);
                Lines accesses = {written(point.path + "_OperationMode", out * 2 | value)};
                if (point.monitors) accesses.insert(accesses.begin(), modeRead);
                expectAccepted(FG_DEBUGINENABLE, value, accesses);

                poke(point, "_OperationMode", mode);
                accesses = {modeRead, written(point.path + "_OperationMode", in | value * 2)};
                expectAccepted(FG_DEBUGOUTENABLE, value, point.monitors ? accesses : Lines{},
                               point.monitors ? value : 0u);
            }
        }
        poke(point, "_OperationMode", point.monitors ? 3 : 1);
        for (const int id : {FG_DEBUGINENABLE, FG_DEBUGOUTENABLE, FG_DEBUGWRITEFLAG})
            for (const std::uint32_t value : {2u, 3u, 0x10000u, ~0u})
                expectRefused(id, value);
    }
    for (const Point& point : points) {
        std::int64_t mode = 0;
        board.peek_int(grabber.device, full(point, "_OperationMode").c_str(), &mode);
        EXPECT_EQ(mode, point.monitors ? 3 : 1) << "another source leaves a point as it was";
    }
}

TEST_F(DebugInterface, InjectionAndWatching) {
    for (const Point& point : points) {
        SCOPED_TRACE(point.name);
        ASSERT_NO_FATAL_FAILURE(select(point));
        for (const std::string& file :
             {std::string("/some/image.tif"), std::string(), std::string(3000, 'x')}) {
            clearLog();
            EXPECT_EQ(setText(FG_DEBUGFILE, file), 0);
            EXPECT_EQ(log(), Lines{written(point.path + "_DebugFile", file)});
            EXPECT_EQ(text(FG_DEBUGFILE), file);
        }
        tell(point.path + "_DebugFile", "of the design");
        EXPECT_EQ(text(FG_DEBUGFILE), "of the design");

        expectAccepted(FG_DEBUGINSERT, 1u,
                       {read(point, "_OperationMode", 0), written(point.path + "_Insert", 1)});
        for (const std::uint32_t value : {0u, 2u, 0x101u, ~0u})
            expectRefused(FG_DEBUGINSERT, value);
        constexpr std::uint64_t pixelLimit = std::uint64_t{1} << 57;
        for (const std::uint64_t pixel : {std::uint64_t{0}, std::uint64_t{1} << 40, pixelLimit - 1})
            expectAccepted(FG_DEBUGWRITEPIXEL, pixel,
                           {written(point.path + "_Inject_WritePixel", pixel, "u64")});
        for (const std::uint64_t pixel : {pixelLimit, pixelLimit + 1, ~std::uint64_t{0}})
            expectRefused(FG_DEBUGWRITEPIXEL, pixel);
        for (const std::uint32_t flag : {1u, 0u})
            expectAccepted(FG_DEBUGWRITEFLAG, flag, {written(point.path + "_Inject_WriteFlag", flag)});

        for (const auto& [id, suffix] : {std::pair{FG_DEBUGOUTXPOS, "_XPosition"},
                                         {FG_DEBUGOUTYPOS, "_YPosition"},
                                         {FG_DEBUGOUTPIXEL, "_PixelValue"}}) {
            if (point.monitors) poke(point, suffix, 4711);
            clearLog();
            EXPECT_EQ(get<std::uint32_t>(id), point.monitors ? 4711u : 0u);
            EXPECT_EQ(log(), point.monitors ? Lines{read(point, suffix, 4711)} : Lines{});
        }
        for (const std::uint32_t ready : {0u, 1u}) {
            poke(point, "_Inject_ReadyForInjection", ready);
            EXPECT_EQ(get<std::uint32_t>(FG_DEBUGREADY), ready);
        }
    }
}

TEST_F(DebugInterface, EveryFailureOfAPointIsOneCode) {
    const std::map<int, std::string> reads = {{FG_DEBUGINENABLE, "_OperationMode"},
                                              {FG_DEBUGOUTENABLE, "_OperationMode"},
                                              {FG_DEBUGFILE, "_DebugFile"},
                                              {FG_DEBUGOUTXPOS, "_XPosition"},
                                              {FG_DEBUGOUTYPOS, "_YPosition"},
                                              {FG_DEBUGOUTPIXEL, "_PixelValue"},
                                              {FG_DEBUGREADY, "_Inject_ReadyForInjection"}};
    ASSERT_EQ(setText(FG_DEBUGFILE, "old"), 0);
    for (const bool lacking : {false, true}) {
        for (const auto& [id, suffix] : reads) {
            if (lacking) {
                ASSERT_EQ(board.lack_parameter(full(points[0], suffix).c_str(), true), VBOARD_OK);
                restart([] {});
            } else {
                grabber.fail(full(points[0], suffix), -4711);
            }
            char buffer[4096] = "untouched";
            EXPECT_EQ(grabber.get(id, buffer), FG_ERR_UNRESOLVED) << suffix;
            EXPECT_EQ(lastError(), FG_ERR_UNRESOLVED);
            EXPECT_STREQ(buffer, "untouched");
            grabber.fail(full(points[0], suffix), 0);
            board.restore_design();
        }
    }
    restart([] {});
    // A pixel's limit that cannot be told stays.
    record(FG_DEBUGOUTPIXEL)->value.u32.maximum = 7777;
    ASSERT_EQ(board.lack_parameter(full(points[2], "_PixelValue").c_str(), true), VBOARD_OK);
    restart([] {});
    record(FG_DEBUGOUTPIXEL)->value.u32.maximum = 7777;
    EXPECT_EQ(set(FG_DEBUGSOURCE, 2u), 0);
    EXPECT_EQ(get<std::uint32_t>(FG_DEBUGSOURCE), 2u);
}

TEST_F(DebugInterface, NineOrNoPoints) {
    const std::string debug = "Device1_Process0_Debug_";
    for (const std::string part : {"Name", "Type", "Path"})
        for (int i = 3; i < 9; ++i)
            ASSERT_EQ(board.alias_parameter((debug + part + std::to_string(i)).c_str(),
                                            (debug + part + std::to_string(i % 3)).c_str()),
                      VBOARD_OK);
    restart([&] { tell("Debug_Entries", "9"); });
    for (std::uint32_t source = 9; source-- > 0;) {
        expectAccepted(FG_DEBUGSOURCE, source, {});
        EXPECT_EQ(text(FG_DEBUGSOURCENAME), points[source % 3].name);
        EXPECT_EQ(outAccess(), points[source % 3].monitors ? 7u : 1u);
    }
    expectRefused(FG_DEBUGSOURCE, 9u);
    restart([&] { tell("Debug_Entries", "10"); }); // the first digit
    EXPECT_EQ(set(FG_DEBUGSOURCE, 0u), 0);
    expectRefused(FG_DEBUGSOURCE, 1u);

    // Without points every source passes the limit, and none has a type. The rest works.
    for (const std::string none : {"0", "", "!", "-3"}) {
        restart([&] { tell("Debug_Entries", none); });
        for (const std::uint32_t source : {0u, 1u, 9u, 78u, 79u, 0x7fffffffu})
            EXPECT_LT(set(FG_DEBUGSOURCE, source), 0) << none << " " << source;
        EXPECT_EQ(get<std::uint32_t>(FG_DEBUGSOURCE), 0u);
        char buffer[8192];
        for (const int id : {FG_DEBUGINENABLE, FG_DEBUGFILE, FG_DEBUGREADY})
            EXPECT_EQ(grabber.get(id, buffer), FG_ERR_UNRESOLVED) << id;
        for (const int id : {FG_DEBUGINENABLE, FG_DEBUGINSERT, FG_DEBUGWRITEFLAG})
            EXPECT_EQ(set(id, 1u), FG_ERR_UNRESOLVED) << id;
        EXPECT_EQ(setText(FG_DEBUGFILE, "file"), FG_ERR_UNRESOLVED);
        for (const int id : {FG_DEBUGSOURCENAME, FG_DEBUGOUTENABLE, FG_DEBUGOUTPIXEL})
            grabber.get(id, buffer);
        EXPECT_EQ(set(FG_FORMAT, 5u), 0) << none;
    }
}

TEST_F(DebugInterface, AFailedDiscoveryEndsTheWholeStep) {
    struct {
        const char* name;
        const char* text; // null: cannot be read
    } const failures[] = {{"Debug_Name1", nullptr},   {"Debug_Type1", nullptr},
                          {"Debug_Type1", "Monitor"}, {"Debug_Type1", ""},
                          {"Debug_Type1", "inject"},  {"Debug_Type1", "InjectMonitors"},
                          {"Debug_Entries", "4"},     {"Debug_Entries", "x"}};
    for (const auto& failure : failures) {
        SCOPED_TRACE(failure.name);
        restart([&] {
            if (failure.text != nullptr)
                tell(failure.name, failure.text);
            else
                grabber.fail(std::string("Device1_Process0_") + failure.name, -4711);
        });
        // The point before it is known, the output formats and the simulator's limit behind it are not.
        EXPECT_EQ(text(FG_DEBUGSOURCENAME), "Camera");
        EXPECT_EQ(set(FG_DEBUGINENABLE, 1u), 0);
        expectRefused(FG_FORMAT, 2u);
        EXPECT_EQ(doubleMaximum(FG_CAMERASIMULATOR_PIXEL_FREQUENCY), -1.0);
    }
}

TEST_F(DebugInterface, LongTextsAreCut) {
    for (const std::size_t length : {126u, 127u, 128u, 129u, 200u, 4000u}) {
        SCOPED_TRACE(length);
        const std::string longText(length, 'n');
        restart([&] {
            tell("Debug_Name0", longText);
            tell("Debug_Path1", longText);
            tell("Debug_Entries", "3" + longText);
        });
        EXPECT_EQ(text(FG_DEBUGSOURCENAME), longText.substr(0, 127));
        EXPECT_EQ(set(FG_DEBUGINENABLE, 1u), 0);
        ASSERT_EQ(set(FG_DEBUGSOURCE, 1u), 0);
        EXPECT_EQ(text(FG_DEBUGSOURCENAME), "Buffer");
        EXPECT_EQ(set(FG_DEBUGINENABLE, 1u), FG_ERR_UNRESOLVED);
        EXPECT_EQ(set(FG_DEBUGSOURCE, 2u), 0);
        restart([&] { tell("Debug_Type0", "Inject" + longText); });
        expectRefused(FG_FORMAT, 2u);
    }
}

TEST_F(DebugInterface, SavesThroughTheRuntime) {
    const std::string path = testing::TempDir() + "debug-save-" + std::to_string(getpid()) + ".mcf";
    EXPECT_EQ(setText(FG_DEBUGSAVECONFIG, path), 0);
    EXPECT_GT(std::filesystem::file_size(path), 0u);
    std::remove(path.c_str());

    // The runtime comes back to the applet, which serves it.
    static std::vector<std::string> saved;
    static std::uint32_t width = 0;
    saved.clear();
    const auto save = [](Fg_Struct* fg, const char* file) {
        saved.emplace_back(file);
        EXPECT_EQ(host().applet().Fg_getParameterWithType(fg, FG_WIDTH, &width, 0, FG_PARAM_UINT32), 0);
        EXPECT_EQ(host().applet().Fg_setParameterWithType(fg, FG_WIDTH, &width, 0, FG_PARAM_UINT32), 0);
        return -5;
    };
    board.attach_applet(grabber.device, grabber.fg(), save, nullptr);
    for (const std::string& name : {std::string("/tmp/some.mcf"), std::string()}) {
        EXPECT_EQ(setText(FG_DEBUGSAVECONFIG, name), 0) << "whatever the save answers";
        EXPECT_EQ(lastError(), 0);
        EXPECT_EQ(text(FG_DEBUGSAVECONFIG), name);
    }
    EXPECT_EQ(saved, (std::vector<std::string>{"/tmp/some.mcf", ""}));
    EXPECT_EQ(width, 1024u);
}

} // namespace
