// Board, camera and applet status: what the design and the runtime have, and what is made of it.

#include "support/applet_fixture.h"

#include <tuple>
#include <variant>

namespace {

using namespace support;

const std::string process = "Device1_Process0_";

class BoardStatusTest : public ParameterTest {
protected:
    /** The answer to a get as it stands, and the code in its place for a failure. */
    std::int64_t ask(int id) {
        std::uint32_t word = 0;
        const int code = grabber.get(id, &word);
        return code != FG_OK ? code : std::int64_t{word};
    }
    std::string text(int id) {
        char place[200] = "";
        const int code = grabber.get(id, place, 0, FG_PARAM_TEXT);
        return code != FG_OK ? std::to_string(code) : place;
    }
};

TEST_F(BoardStatusTest, IsReadFromTheDesignAtEachAsking) {
    struct {
        int id;
        const char* name;
        std::variant<std::uint32_t, std::uint64_t, double> value;
    } const rows[] = {
        {200341, "FpgaTemperature", -12.5},
        {200342, "FpgaVccInt", 0.875},
        {200343, "FpgaVccAux", 1.75},
        {200372, "FpgaVccBram", 0.9375},
        {200373, "PcieCurrentLinkWidth", 4u},
        {200374, "PcieCurrentLinkSpeed", 7.5},
        {200375, "PcieLinkGen2Capable", 0u},
        {200376, "PcieLinkPartnerGen2Capable", 2u},
        {200377, "PcieTrainedPayloadSize", 1024u},
        {200378, "ExtensionConnectorPresent", 0u},
        {200349, "FpgaDNA", UINT64_C(0x1ffffffffffffff)},
    };
    for (const auto& row : rows) {
        const std::string name = process + "BoardStatus_" + row.name;
        std::visit(
            [&](auto value) {
                if constexpr (std::is_same_v<decltype(value), double>)
                    ASSERT_EQ(board.poke_double(grabber.device, name.c_str(), value), VBOARD_OK);
                else
                    grabber.poke(name, static_cast<std::int64_t>(value));
                EXPECT_EQ(get<decltype(value)>(row.id), value) << name;
            },
            row.value);
    }
    // This one is reversed.
    for (const auto& [design, code, value] :
         {std::tuple{0u, 0, 1u}, {1u, 0, 0u}, {2u, -2031, 0u}, {~0u, -2031, 0u}}) {
        grabber.poke(process + "BoardStatus_AlternativeBoardDetection", design);
        std::uint32_t out = 7;
        EXPECT_EQ(grabber.get(FG_ALTERNATIVE_BOARD_DETECTION, &out), code) << design;
        EXPECT_EQ(out, value) << design;
    }
}

TEST_F(BoardStatusTest, TellsTheAppletAndItsDma) {
    EXPECT_EQ(ask(FG_APPLET_VERSION), 2);
    EXPECT_EQ(ask(FG_APPLET_REVISION), 2);
    EXPECT_EQ(text(FG_TSL_FILE), "Grab_TwinLaneLineColor.tsl");
    for (const auto& [id, name] :
         {std::pair{FG_APPLET_ID, "AppletUid"}, {FG_APPLET_BUILD_TIME, "BuildTime"}}) {
        const std::string full = process + "AppletProperties_" + name;
        for (const std::size_t length : {20u, 0u, 8192u, 8300u, 655360u, 655361u, 9u << 20}) {
            const std::string told(length, 'a');
            std::string place(length + 1, '?');
            ASSERT_EQ(board.poke_text(grabber.device, full.c_str(), told.c_str()), VBOARD_OK);
            EXPECT_EQ(grabber.get(id, place.data(), 0, FG_PARAM_TEXT), FG_OK);
            EXPECT_TRUE(place == told + '\0') << length;
            EXPECT_TRUE(ParameterTest::text(id) == told.substr(0, 655360)) << length;
        }
    }
    EXPECT_EQ(ask(FG_DMASTATUS), 0);
    EXPECT_EQ(applet.Fg_AcquireEx(grabber.fg(), 0, 1, 0, nullptr), 0);
    std::uint64_t word = 0xffffffff'ffffffff;
    EXPECT_EQ(grabber.get(FG_DMASTATUS, &word, 0, FG_PARAM_DOUBLE), 0) << "32 bits, whatever the tag";
    EXPECT_EQ(word, 0xffffffff'00000001);
}

TEST_F(BoardStatusTest, CameraWordIsComposed) {
    const std::string overflow = process + "OverflowOccurred_Status";
    const std::string level = process + "Buffer_0_DRAM_DRAM_A_1_FillLevel";
    const struct {
        std::uint32_t base, percent, overflow, overflowThen, word;
    } rows[] = {
        {0, 0, 0, 0, 0},
        {0, 24, 0, 0, 0},
        {0, 25, 0, 0, 1 << 6},
        {0, 49, 0, 0, 1 << 6},
        {0, 50, 0, 0, 2 << 6},
        {0, 74, 0, 0, 2 << 6},
        {0, 75, 0, 0, 3 << 6},
        {0, ~0u, 0, 0, 3 << 6},
        {0xff, 50, 0, 0, 0x1f | 2 << 6}, // its own upper bits are lost
        {0xff1f, 0, 0, 1, 0xff3f},
        {0, 100, 1, 1, 224},
        {0, 10, 1, 0, 192}, // an overflow counts as full, and the first read has cleared it
        {0, 10, 0, 2, 64},  // spills
        {6, 30, 0, 0, 6 | 64},
    };
    for (const auto& row : rows) {
        grabber.poke("FG_CAMSTATUS_EXTENDED", row.base);
        grabber.poke(level, row.percent);
        grabber.poke(overflow, row.overflow);
        ASSERT_EQ(board.poke_after_read(grabber.device, overflow.c_str(), row.overflowThen), VBOARD_OK);
        EXPECT_EQ(ask(FG_CAMSTATUS_EXTENDED), row.word) << row.base << " " << row.percent;
    }
    clearLog();
    EXPECT_EQ(ask(FG_CAMSTATUS), 0);
    const std::string dram = "get " + process + "Buffer_0_DRAM_DRAM_A_";
    EXPECT_EQ(log(),
              (Lines{"get " + overflow + " u32 0", dram + "0_FillLevel u32 0", dram + "1_FillLevel u32 30",
                     dram + "2_FillLevel u32 0", "get " + overflow + " u32 0", "get #2050 u32 6"}));
    grabber.poke("FG_CAMSTATUS_EXTENDED", 7);
    EXPECT_EQ(ask(FG_CAMSTATUS), 1);
    grabber.poke("FG_CAMSTATUS_EXTENDED", 0);
    ASSERT_EQ(set(FG_CAMERASIMULATOR_ENABLE, 1u), 0);
    EXPECT_EQ(ask(FG_CAMSTATUS), 1) << "the simulator is a pixel clock";
}

} // namespace
