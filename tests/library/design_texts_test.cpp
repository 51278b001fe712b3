// Texts of the design and of the runtime: of any length, and those with a call back into the applet.

#include "support/applet_fixture.h"
#include "support/sanitizers.h"

namespace {

using namespace support;

constexpr std::size_t longestAllocated = 655360;

class DesignTexts : public ParameterTest {
protected:
    static std::string full(const std::string& name) { return "Device1_Process0_" + name; }

    /** A design text is copied completely into the caller's buffer; only an allocated one is truncated. */
    void expectText(int id, const std::string& expected) {
        std::string buffer(expected.size() + 1, '?');
        EXPECT_EQ(grabber.get(id, buffer.data(), 0, FG_PARAM_TEXT), FG_OK);
        EXPECT_TRUE(buffer == expected + '\0') << expected.size();
        EXPECT_TRUE(text(id) == expected.substr(0, longestAllocated)) << expected.size();
    }
};

TEST_F(DesignTexts, TextsOfAnyLengthAreRead) {
    for (const std::size_t length : {20u, 0u, 8192u, 8300u, 655360u, 655361u, 9u << 20}) {
        const std::string value(length, 'a');
        for (const auto& [id, name] :
             {std::pair{FG_APPLET_ID, "AppletUid"}, {FG_APPLET_BUILD_TIME, "BuildTime"}}) {
            tell(std::string("AppletProperties_") + name, value);
            expectText(id, value);
        }
        for (const std::uint32_t source : {0u, 1u, 2u}) {
            setAll({{FG_DEBUGSOURCE, source}});
            ASSERT_EQ(setText(FG_DEBUGFILE, value), FG_OK) << length;
            expectText(FG_DEBUGFILE, value);
        }
    }
    // Longer than the room for a text that was not set here.
    const std::string value(34u << 20, 'a');
    ASSERT_EQ(setText(FG_DEBUGFILE, value), FG_OK);
    expectText(FG_DEBUGFILE, value);
}

TEST_F(DesignTexts, LongTextsAreTruncated) {
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

TEST_F(DesignTexts, SavesThroughTheRuntime) {
    if (underThreadSanitizer) GTEST_SKIP() << "the nested release is an error to the sanitizer";
    // The runtime calls the applet, which serves the call.
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

TEST_F(DesignTexts, DmaStatusIsA32BitWordForEveryTag) {
    EXPECT_EQ(applet.Fg_AcquireEx(grabber.fg(), 0, 1, 0, nullptr), FG_OK);
    std::uint64_t word = 0xffffffff'ffffffff;
    EXPECT_EQ(grabber.get(FG_DMASTATUS, &word, 0, FG_PARAM_DOUBLE), FG_OK);
    EXPECT_EQ(word, 0xffffffff'00000001);
}

} // namespace
