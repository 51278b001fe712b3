// The stateless query function, and the instance without a board that it makes.

#include "support/every_call.h"

#include <cstring>
#include <numeric>
#include <span>

namespace {

using namespace support;
using InfoTest = AppletTest;

TEST_F(InfoTest, NumbersOfProcessesAndIndices) {
    for (const Lines& row :
         dataRows("info_answers.txt")) { // code, answer; with another process, another index
        const auto ask = [&](int process, int index) {
            return std::to_string(applet.Info(std::stoi(row[0]), process, index, nullptr, nullptr));
        };
        EXPECT_EQ(ask(0, 0), row[1]) << row[0];
        for (const int other : {1, -1, 256}) {
            EXPECT_EQ(ask(other, 0), row[2]) << row[0];
            EXPECT_EQ(ask(0, other), row[3]) << row[0];
        }
    }
}

TEST_F(InfoTest, Texts) {
    for (const std::string& row : dataLines("info_texts.txt")) {
        const int code = std::stoi(row);
        const char* out = nullptr;
        EXPECT_EQ(applet.Info(code, 0, 0, nullptr, &out), 0);
        EXPECT_EQ(out, row.substr(row.find('\t') + 1)) << code;
        EXPECT_EQ(applet.Info(code, 0, 0, nullptr, nullptr), 0);
    }
    std::int32_t words[2] = {7, 7};
    EXPECT_EQ(applet.Info(2304, 0, 0, words, nullptr), 0);
    EXPECT_EQ(words[0], 0);
    EXPECT_EQ(words[1], 7);
}

TEST_F(InfoTest, IconAndDesignImage) {
    const auto block = [&](int code) {
        std::uint64_t size = 7;
        const unsigned char* bytes = nullptr;
        EXPECT_EQ(applet.Info(code, 0, 0, &size, nullptr), 0);
        EXPECT_EQ(applet.Info(code, 1, 1, nullptr, &bytes), 0);
        return std::span(bytes, size);
    };
    const auto icon = block(1041);
    ASSERT_EQ(icon.size(), 4676u);
    // The signature; the header: 32 x 32 pixels of 8 bits in each of red, green, blue and alpha; at the end
    // IEND.
    const unsigned char head[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n', 0, 0, 0,  13, 'I',
                                  'H',  'D', 'R', 0,   0,    0,    32,   0,    0, 0, 32, 8,  6};
    const unsigned char tail[] = {0, 0, 0, 0, 'I', 'E', 'N', 'D', 0xae, 0x42, 0x60, 0x82};
    EXPECT_EQ(std::memcmp(icon.data(), head, sizeof head), 0);
    EXPECT_EQ(std::memcmp(icon.data() + icon.size() - sizeof tail, tail, sizeof tail), 0);

    const auto image = block(1042);
    ASSERT_EQ(image.size(), 7963963u);
    EXPECT_NE(std::accumulate(image.begin(), image.end(), 0u), 0u); // all of it is readable
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(image.data()) % 4096, 0u)
        << "costs no memory until it is read";
}

TEST_F(InfoTest, EnumerationNames) {
    const auto valueOf = [&](const char* name) {
        return applet.Info(4352, 0, 0, const_cast<char*>(name), nullptr);
    };
    const auto rows = dataRows("enumeration_names.txt");
    ASSERT_EQ(rows.size(), 101u);
    for (const Lines& row : rows)
        EXPECT_EQ(valueOf(row[0].c_str()), std::stoi(row[1])) << row[0];
    for (const char* name : {static_cast<const char*>(nullptr), "", "fg_on", "FG_ON ", "FG_O", "FG_GRAY"})
        EXPECT_EQ(valueOf(name), FG_ERR_INVALID_ARGUMENT) << (name != nullptr ? name : "null");
}

TEST_F(InfoTest, InstanceWithoutABoard) {
    setVariable("VEXO_ENABLE_DRA", "1"); // has no effect on it
    const int designs = live("designs");
    void* instance = nullptr;
    RegisterInfo* root = nullptr;
    const auto destroy = [&](void* what) { return applet.Info(4896, 0, 0, what, nullptr); };
    const auto tree = [&](int index, void* of) { return applet.Info(4880, index, 0, of, &root); };
    board.refuse_design(true); // the tree exists nevertheless
    ASSERT_EQ(applet.Info(4864, 0, 0, nullptr, &instance), 0);
    EXPECT_EQ(tree(0, instance), 0);
    EXPECT_NE(root, nullptr);
    EXPECT_EQ(destroy(instance), 0);
    EXPECT_EQ(destroy(instance), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(tree(0, instance), FG_ERR_INVALID_ARGUMENT);
    board.restore_design();

    ASSERT_EQ(applet.Info(4864, 0, 0, nullptr, nullptr), FG_ERR_INVALID_ARGUMENT);
    ASSERT_EQ(applet.Info(4864, 0, 0, nullptr, &instance), 0);
    EXPECT_EQ(live("designs"), designs + 1);
    EXPECT_EQ(tree(1, instance), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(tree(0, nullptr), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(applet.Info(4880, 0, 0, instance, nullptr), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(tree(-1, instance), 0);
    EXPECT_EQ(root, nullptr) << "a negative tree passes the test and is none";

    // Reached through a handle, it keeps values and has no runtime.
    applet_host::GrabberHandle handle{instance};
    std::uint32_t width = 512, out = 0;
    EXPECT_EQ(applet.Fg_setParameterWithType(handle.fg(), FG_WIDTH, &width, 0, FG_PARAM_UINT32), 0);
    EXPECT_EQ(applet.Fg_getParameterWithType(handle.fg(), FG_WIDTH, &out, 0, FG_PARAM_UINT32), 0);
    EXPECT_EQ(out, width);
    EXPECT_EQ(applet.Fg_getNrOfParameter(handle.fg()), 164);
    EXPECT_NE(applet.Fg_getEventMask(handle.fg(), "FG_OVERFLOW_CAM0"), 0u);
    EXPECT_EQ(applet.Fg_getParameterInfo(handle.fg(), 0), nullptr);
    for (const Forwarder& forwarder : forwarders())
        EXPECT_EQ(forwarder.call(handle.fg()), FG_ERR_NOT_AVAILABLE) << forwarder.name;
    // A query without an answer does not write to the caller's buffer.
    for (const int id : {FG_APPLET_ID, FG_APPLET_BUILD_TIME, FG_DMASTATUS, FG_OVERFLOW, FG_IMGTRIGGER_IS_BUSY,
                         FG_DIGIO_INPUT, FG_SHAFTENCODER_COMPENSATION_COUNT,
                         FG_SYSTEMMONITOR_FPGA_TEMPERATURE, FG_SYSTEMMONITOR_FPGA_DNA,
                         FG_SYSTEMMONITOR_CURRENT_LINK_WIDTH, FG_SYSTEMMONITOR_EXTENSION_CONNECTOR_PRESENT,
                         FG_SIGNAL_ANALYZER_0_PERIOD_MIN, FG_SIGNAL_ANALYZER_1_PULSE_COUNT}) {
        char buffer[] = "untouched";
        EXPECT_EQ(applet.Fg_getParameterWithType(handle.fg(), id, buffer, 0, FG_PARAM_TEXT), 0) << id;
        EXPECT_STREQ(buffer, "untouched") << id;
    }
    EXPECT_EQ(destroy(instance), 0);
    EXPECT_EQ(live("designs"), designs);
}

} // namespace
