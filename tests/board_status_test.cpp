// Board, camera and applet status: what the design and the runtime have, and what is made of it.

#include "support/applet_fixture.h"

#include <set>
#include <variant>

namespace {

using namespace support;

const std::string process = "Device1_Process0_";

class BoardStatusTest : public ParameterTest {
protected:
    void poke(const std::string& name, std::int64_t value) {
        ASSERT_EQ(board.poke_int(grabber.device, name.c_str(), value), VBOARD_OK) << name;
    }
    /** The answer to a get as it stands, and the code in its place for a failure. */
    std::int64_t ask(int id) {
        std::uint32_t word = 0;
        const int code = grabber.get(id, &word);
        return code != FG_OK ? code : std::int64_t{word};
    }
    std::string text(int id) {
        char place[200] = "";
        EXPECT_EQ(grabber.get(id, place, 0, FG_PARAM_TEXT), 0);
        return place;
    }
};

TEST_F(BoardStatusTest, IsReadFromTheDesignAtEachAsking) {
    using Value = std::variant<std::uint32_t, std::uint64_t, double>;
    struct {
        int id;
        const char* name;
        Value value;
        const char* logged;
    } const rows[] = {
        {200341, "FpgaTemperature", -12.5, "f64 -12.5"},
        {200342, "FpgaVccInt", 0.875, "f64 0.875"},
        {200343, "FpgaVccAux", 1.75, "f64 1.75"},
        {200372, "FpgaVccBram", 0.9375, "f64 0.9375"},
        {200373, "PcieCurrentLinkWidth", 4u, "u32 4"},
        {200374, "PcieCurrentLinkSpeed", 7.5, "f64 7.5"},
        {200375, "PcieLinkGen2Capable", 0u, "u32 0"},
        {200376, "PcieLinkPartnerGen2Capable", 2u, "u32 2"},
        {200377, "PcieTrainedPayloadSize", 1024u, "u32 1024"},
        {200378, "ExtensionConnectorPresent", 0u, "u32 0"},
        {200349, "FpgaDNA", UINT64_C(0x1ffffffffffffff), "u64 144115188075855871"},
    };
    for (const auto& row : rows) {
        const std::string name = process + "BoardStatus_" + row.name;
        std::visit(
            [&](auto value) {
                if constexpr (std::is_same_v<decltype(value), double>)
                    ASSERT_EQ(board.poke_double(grabber.device, name.c_str(), value), VBOARD_OK);
                else
                    poke(name, static_cast<std::int64_t>(value));
                clearLog();
                EXPECT_EQ(get<decltype(value)>(row.id), value) << name;
                EXPECT_EQ(log(), Lines{"get " + name + ' ' + row.logged});
                grabber.fail(name, -4711);
                EXPECT_EQ(grabber.get(row.id, &value), -4711) << name;
                EXPECT_EQ(lastError(), -4711);
            },
            row.value);
    }
}

TEST_F(BoardStatusTest, BoardDetectionIsReversed) {
    const std::string name = process + "BoardStatus_AlternativeBoardDetection";
    for (const auto& [design, code, value] :
         {std::tuple{0u, 0, 1u}, {1u, 0, 0u}, {2u, -2031, 0u}, {~0u, -2031, 0u}}) {
        poke(name, design);
        std::uint32_t out = 7;
        EXPECT_EQ(grabber.get(FG_ALTERNATIVE_BOARD_DETECTION, &out), code) << design;
        EXPECT_EQ(out, value) << design;
    }
}

TEST_F(BoardStatusTest, TellsTheApplet) {
    EXPECT_EQ(ask(FG_APPLET_VERSION), 2);
    EXPECT_EQ(ask(FG_APPLET_REVISION), 2);
    EXPECT_EQ(text(FG_TSL_FILE), "Grab_TwinLaneLineColor.tsl");
    for (const auto& [id, name] :
         {std::pair{FG_APPLET_ID, "AppletUid"}, {FG_APPLET_BUILD_TIME, "BuildTime"}}) {
        const std::string full = process + "AppletProperties_" + name;
        for (const char* told : {name, ""}) {
            ASSERT_EQ(board.poke_text(grabber.device, full.c_str(), told), VBOARD_OK);
            EXPECT_EQ(text(id), told);
        }
        grabber.fail(full, -4711);
        char place[200] = "";
        EXPECT_EQ(grabber.get(id, place, 0, FG_PARAM_TEXT), -4711);
    }
}

TEST_F(BoardStatusTest, RuntimeKnowsTheDma) {
    EXPECT_EQ(ask(FG_DMASTATUS), 0);
    EXPECT_EQ(applet.Fg_AcquireEx(grabber.fg(), 0, 1, 0, nullptr), 0);
    std::uint64_t word = 0xffffffff'ffffffff;
    EXPECT_EQ(grabber.get(FG_DMASTATUS, &word, 0, FG_PARAM_DOUBLE), 0) << "32 bits, whatever the tag";
    EXPECT_EQ(word, 0xffffffff'00000001);
    grabber.fail("FG_DMASTATUS", -4711);
    EXPECT_EQ(ask(FG_DMASTATUS), -4711);
}

TEST_F(BoardStatusTest, CameraWordIsComposed) {
    const std::string overflow = process + "OverflowOccurred_Status";
    const std::string level = process + "Buffer_0_DRAM_DRAM_A_1_FillLevel";
    const auto word = [&](std::uint32_t base, std::uint32_t percent, std::uint32_t first,
                          std::uint32_t second) {
        poke("FG_CAMSTATUS_EXTENDED", base);
        poke(level, percent);
        poke(overflow, first);
        EXPECT_EQ(board.poke_after_read(grabber.device, overflow.c_str(), second), VBOARD_OK);
        return ask(FG_CAMSTATUS_EXTENDED);
    };
    for (const auto& [percent, quarter] : {std::pair{0u, 0},
                                           {24u, 0},
                                           {25u, 1},
                                           {49u, 1},
                                           {50u, 2},
                                           {74u, 2},
                                           {75u, 3},
                                           {100u, 3},
                                           {~0u, 3}}) {
        EXPECT_EQ(word(0, percent, 0, 0), quarter << 6) << percent;
        EXPECT_EQ(word(0xff, percent, 0, 0), 0x1f | quarter << 6) << "the word's own upper bits are lost";
        EXPECT_EQ(word(0xff1f, percent, 0, 1), 0xff3f | quarter << 6);
    }
    EXPECT_EQ(word(0, 100, 1, 1), 224);
    EXPECT_EQ(word(0, 10, 1, 0), 192) << "an overflow counts as full, and the first read has cleared it";
    EXPECT_EQ(word(0, 10, 0, 2), 64) << "spills";

    ASSERT_EQ(word(6, 30, 0, 0), 6 | 64);
    clearLog();
    EXPECT_EQ(ask(FG_CAMSTATUS), 0);
    const std::string dram = "get " + process + "Buffer_0_DRAM_DRAM_A_";
    EXPECT_EQ(log(),
              (Lines{"get " + overflow + " u32 0", dram + "0_FillLevel u32 0", dram + "1_FillLevel u32 30",
                     dram + "2_FillLevel u32 0", "get " + overflow + " u32 0", "get #2050 u32 6"}));
    poke("FG_CAMSTATUS_EXTENDED", 7);
    EXPECT_EQ(ask(FG_CAMSTATUS), 1);
    ASSERT_EQ(set(FG_CAMERASIMULATOR_ENABLE, 1u), 0);
    EXPECT_EQ(word(0, 0, 0, 0), 1) << "the simulator is a pixel clock";
    EXPECT_EQ(ask(FG_CAMSTATUS), 1);
    for (const std::string& name : {std::string("FG_CAMSTATUS_EXTENDED"), overflow, level}) {
        grabber.fail(name, -4711);
        EXPECT_EQ(ask(FG_CAMSTATUS_EXTENDED), -4711) << name;
        EXPECT_EQ(ask(FG_CAMSTATUS), -4711) << name;
        grabber.fail(name, 0);
    }
}

/** All parameters, whatever their subject. */
TEST_F(BoardStatusTest, EveryParameterCanBeReadAndSetUnlessItIsReadOnly) {
    std::set<std::string> readOnly;
    for (const Lines& row : dataRows("read_only_ids.txt"))
        readOnly.insert(row[1]);
    const auto index = dataRows("parameter_index.txt");
    ASSERT_EQ(index.size(), 164u);
    for (const Lines& row : index) {
        const int id = std::stoi(row[2]);
        const int tag = id >= FG_LUT_VALUE_RED && id <= FG_LUT_VALUE_BLUE ? 4098 : int{FG_PARAM_UINT32};
        alignas(8) char place[256] = ""; // of a field, the record of its first element
        EXPECT_EQ(grabber.get(id, place, 0, tag), 0) << row[1];
        const int code = applet.Fg_setParameterWithType(grabber.fg(), id, place, 0, tag);
        if (readOnly.contains(row[1]))
            EXPECT_EQ(code, FG_ERR_NOT_AVAILABLE) << row[1];
        else // the value that it has; some refuse it, but none is unknown
            EXPECT_TRUE(code != FG_ERR_NOT_AVAILABLE && code != FG_ERR_INVALID_ARGUMENT)
                << row[1] << ": " << code;
    }
}

} // namespace
