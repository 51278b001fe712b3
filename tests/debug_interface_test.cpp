// Debug interface: the points that the design tells of, what each access of them reads and writes.

#include "support/applet_fixture.h"
#include "support/sanitizers.h"

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
    static std::string full(const std::string& name) { return "Device1_Process0_" + name; }
    static std::string read(const std::string& name, std::uint32_t value) {
        return "get " + full(name) + " u32 " + std::to_string(value);
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
    expectAllRefused(FG_DEBUGSOURCE, {3u, 4u, 0x10000u, ~0u});
    // The number of points is read anew; a point that was not found at the start has no type.
    tell("Debug_Entries", "2");
    setAll({{FG_DEBUGSOURCE, 1}});
    expectRefused(FG_DEBUGSOURCE, 2u);
    tell("Debug_Entries", "9");
    for (const std::uint32_t source : {3u, 8u})
        expectRefused(FG_DEBUGSOURCE, source, FG_ERR_UNRESOLVED);
    EXPECT_EQ(outAccess(), 1u);
}

TEST_F(DebugInterface, InputAndOutputShareAWord) {
    for (const Point& point : points) {
        SCOPED_TRACE(point.name);
        const std::string word = point.path + "_OperationMode";
        setAll({{FG_DEBUGSOURCE, point.source}});
        for (const std::uint32_t mode : {0u, 1u, 2u, 3u, 0xfcu, 0xffu}) {
            const std::uint32_t in = mode & 1, out = point.monitors ? mode >> 1 & 1 : 0;
            const Lines modeRead = {read(word, mode)}, none;
            poke(word, mode);
            clearLog();
            EXPECT_EQ(get<std::uint32_t>(FG_DEBUGINENABLE), in);
            EXPECT_EQ(get<std::uint32_t>(FG_DEBUGOUTENABLE), out);
            EXPECT_EQ(log(), modeRead + (point.monitors ? modeRead : none));
            for (const std::uint32_t value : {0u, 1u}) {
                poke(word, mode);
                expectAccepted(FG_DEBUGINENABLE, value,
                               (point.monitors ? modeRead : none) + Lines{written(word, out * 2 | value)});
                poke(word, mode);
                expectAccepted(FG_DEBUGOUTENABLE, value,
                               point.monitors ? modeRead + Lines{written(word, in | value * 2)} : none,
                               point.monitors ? value : 0u);
            }
        }
        for (const int id : {FG_DEBUGINENABLE, FG_DEBUGOUTENABLE, FG_DEBUGWRITEFLAG})
            expectAllRefused(id, {2u, 3u, 0x10000u, ~0u});
    }
}

TEST_F(DebugInterface, InjectionAndWatching) {
    for (const Point& point : points) {
        SCOPED_TRACE(point.name);
        setAll({{FG_DEBUGSOURCE, point.source}});
        for (const std::string& file : Lines{"/some/image.tif", "", std::string(7000, 'x')}) {
            clearLog();
            EXPECT_EQ(setText(FG_DEBUGFILE, file), 0);
            EXPECT_EQ(log(), Lines{written(point.path + "_DebugFile", file)});
            EXPECT_EQ(text(FG_DEBUGFILE), file);
        }
        // Any length is taken, and only an allocated text is cut.
        for (const std::size_t length : {8192u, 700000u, 17u << 20}) {
            const std::string file(length, 'y');
            std::string place(length + 1, '?');
            ASSERT_EQ(setText(FG_DEBUGFILE, file), 0) << length;
            EXPECT_EQ(grabber.get(FG_DEBUGFILE, place.data(), 0, FG_PARAM_TEXT), 0);
            EXPECT_TRUE(place == file + '\0') << length;
            EXPECT_TRUE(text(FG_DEBUGFILE) == file.substr(0, 655360)) << length;
        }
        tell(point.path + "_DebugFile", "of the design");
        EXPECT_EQ(text(FG_DEBUGFILE), "of the design");

        expectAccepted(FG_DEBUGINSERT, 1u,
                       {read(point.path + "_OperationMode", 0), written(point.path + "_Insert", 1)});
        expectAllRefused(FG_DEBUGINSERT, {0u, 2u, 0x101u, ~0u});
        constexpr std::uint64_t pixelLimit = std::uint64_t{1} << 57;
        for (const std::uint64_t pixel : {std::uint64_t{0}, std::uint64_t{1} << 40, pixelLimit - 1})
            expectAccepted(FG_DEBUGWRITEPIXEL, pixel,
                           {written(point.path + "_Inject_WritePixel", pixel, "u64")});
        for (const std::uint64_t pixel : {pixelLimit, ~std::uint64_t{0}})
            expectRefused(FG_DEBUGWRITEPIXEL, pixel);
        for (const std::uint32_t flag : {1u, 0u})
            expectAccepted(FG_DEBUGWRITEFLAG, flag, {written(point.path + "_Inject_WriteFlag", flag)});

        for (const auto& [id, suffix, isAlways] : {std::tuple{FG_DEBUGOUTXPOS, "_XPosition", false},
                                                   {FG_DEBUGOUTYPOS, "_YPosition", false},
                                                   {FG_DEBUGOUTPIXEL, "_PixelValue", false},
                                                   {FG_DEBUGREADY, "_Inject_ReadyForInjection", true}}) {
            const bool isThere = point.monitors || isAlways;
            if (isThere) poke(point.path + suffix, 1);
            clearLog();
            EXPECT_EQ(get<std::uint32_t>(id), isThere);
            EXPECT_EQ(log(), isThere ? Lines{read(point.path + suffix, 1)} : Lines{});
        }
    }
}

TEST_F(DebugInterface, APixelsLimitThatCannotBeToldStays) {
    ASSERT_EQ(board.lack_parameter(full(points[2].path + "_PixelValue").c_str(), true), VBOARD_OK);
    restart([] {});
    record(FG_DEBUGOUTPIXEL)->value.u32.maximum = 7777;
    expectAccepted(FG_DEBUGSOURCE, 2u, {});
    EXPECT_EQ(maximum(FG_DEBUGOUTPIXEL), 7777u);
}

TEST_F(DebugInterface, NineOrNoPoints) {
    const std::string debug = full("Debug_");
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
    setAll({{FG_DEBUGSOURCE, 0}});
    expectRefused(FG_DEBUGSOURCE, 1u);

    // Without points every source passes the limit, and none has a type. The rest works.
    for (const std::string none : {"0", "", "!", "-3"}) {
        SCOPED_TRACE(none);
        restart([&] { tell("Debug_Entries", none); });
        for (const std::uint32_t source : {0u, 1u, 9u, 78u, 79u, 0x7fffffffu})
            EXPECT_LT(set(FG_DEBUGSOURCE, source), 0) << source;
        EXPECT_EQ(get<std::uint32_t>(FG_DEBUGSOURCE), 0u);
        char buffer[8192];
        for (const int id : {FG_DEBUGINENABLE, FG_DEBUGFILE, FG_DEBUGREADY})
            EXPECT_EQ(grabber.get(id, buffer), FG_ERR_UNRESOLVED) << id;
        for (const int id : {FG_DEBUGINENABLE, FG_DEBUGINSERT, FG_DEBUGWRITEFLAG})
            EXPECT_EQ(set(id, 1u), FG_ERR_UNRESOLVED) << id;
        EXPECT_EQ(text(FG_DEBUGSOURCENAME), "");
        setAll({{FG_FORMAT, 5}});
    }
}

TEST_F(DebugInterface, AFailedDiscoveryEndsTheWholeStep) {
    const std::string type = "Debug_Type1", entries = "Debug_Entries", none = "cannot be read";
    const std::pair<std::string, std::string> rows[] = {{"Debug_Name1", none},
                                                        {type, none},
                                                        {type, "Monitor"},
                                                        {type, ""},
                                                        {type, "inject"},
                                                        {type, "InjectMonitors"},
                                                        {type, std::string(4000, 'n')},
                                                        {entries, "4"},
                                                        {entries, "x"}};
    for (const auto& [name, told] : rows) {
        SCOPED_TRACE(name + " " + told);
        restart([&, failing = name, told = told] {
            told == none ? grabber.fail(full(failing), -4711) : tell(failing, told);
        });
        // The point before it is known, the output formats and the simulator's limit behind it are not.
        EXPECT_EQ(text(FG_DEBUGSOURCENAME), "Camera");
        setAll({{FG_DEBUGINENABLE, 1}});
        expectRefused(FG_FORMAT, 2u);
        EXPECT_EQ(doubleMaximum(FG_CAMERASIMULATOR_PIXEL_FREQUENCY), -1.0);
    }
}

TEST_F(DebugInterface, APathThatCannotBeReadIsEmpty) {
    restart([&] { grabber.fail(full("Debug_Path1"), -4711); });
    setAll({{FG_FORMAT, 2}, {FG_DEBUGSOURCE, 1}});
    EXPECT_EQ(text(FG_DEBUGSOURCENAME), points[1].name);
    expectAccess({FG_DEBUGOUTENABLE}, 1);
    EXPECT_EQ(set(FG_DEBUGINENABLE, 1u), FG_ERR_UNRESOLVED);
    setAll({{FG_DEBUGSOURCE, 2}, {FG_DEBUGINENABLE, 1}});
}

TEST_F(DebugInterface, LongTextsAreCut) {
    for (const std::size_t length : {127u, 128u, 4000u, 100000u}) {
        const std::string longText(length, 'n');
        const std::string cutName = "Device1_Process0_" + std::string(127, 'n') + "_OperationMode";
        restart([&] {
            ASSERT_EQ(board.alias_parameter(cutName.c_str(), "Device1_Process0_Buffer_0_Debug_OperationMode"),
                      0);
            for (const std::string name : {"Debug_Name0", "Debug_Path1"})
                tell(name, longText);
            tell("Debug_Entries", "3" + longText);
        });
        EXPECT_EQ(text(FG_DEBUGSOURCENAME), longText.substr(0, 127));
        setAll({{FG_DEBUGINENABLE, 1}, {FG_DEBUGSOURCE, 1}});
        setAll({{FG_DEBUGINENABLE, 1}, {FG_DEBUGSOURCE, 2}});
    }
}

TEST_F(DebugInterface, SavesThroughTheRuntime) {
    if (underThreadSanitizer) GTEST_SKIP() << "the nested release is an error to the sanitizer";
    // The runtime comes back to the applet, which serves it.
    static Lines saved;
    saved.clear();
    const auto save = [](Fg_Struct* fg, const char* file) {
        saved.emplace_back(file);
        std::uint32_t width = 0;
        EXPECT_EQ(host().applet().Fg_getParameterWithType(fg, FG_WIDTH, &width, 0, FG_PARAM_UINT32), 0);
        EXPECT_EQ(host().applet().Fg_setParameterWithType(fg, FG_WIDTH, &width, 0, FG_PARAM_UINT32), 0);
        return -5;
    };
    board.attach_applet(grabber.device, grabber.fg(), save, nullptr);
    for (const std::string& name : Lines{"/tmp/some.mcf", ""}) {
        EXPECT_EQ(setText(FG_DEBUGSAVECONFIG, name), 0) << "whatever the save answers";
        EXPECT_EQ(lastError(), 0);
        EXPECT_EQ(text(FG_DEBUGSAVECONFIG), name);
    }
    EXPECT_EQ(saved, (Lines{"/tmp/some.mcf", ""}));
}

} // namespace
