// What a start writes: the defaults, one setter after the other, each for itself.

#include "support/parameter_test.h"

#include <set>

namespace {

/** The expected accesses of a normal start, one section for each setter. */
std::vector<Lines> expectedSections() {
    std::vector<Lines> sections;
    for (const std::string& line : dataLines("start_up_writes.txt")) {
        if (line.rfind("# ", 0) == 0)
            sections.emplace_back();
        else
            sections.back().push_back(line);
    }
    return sections;
}

/** A board whose memory has the widths that the listing tells, and the handle that comes up on it. */
class Start {
public:
    Start() {
        for (const auto& [name, value] : {std::pair{"DRAM_DRAM_A_0_Imp_DRAM_RamAddressWidth", 24},
                                          {"DRAM_DRAM_A_0_Imp_DRAM_RamDataWidth", 512},
                                          {"LinkPixelSpace_Parallelism", 32}}) {
            const std::string full = std::string("Device1_Process0_Buffer_0_") + name;
            EXPECT_EQ(m_board.poke_int(device, full.c_str(), value), VBOARD_OK);
        }
    }
    ~Start() {
        if (handle.object != nullptr) m_applet.Fg_FreeGrabber(handle.fg());
        m_board.close(device);
    }
    void bringUp(int flags) {
        handle.object = m_applet.Std_entry(device, &error, flags);
        EXPECT_NE(handle.object, nullptr);
        EXPECT_EQ(error, 0);
    }

private:
    const applet_host::AppletFunctions& m_applet = appletHost().applet();
    const applet_host::BoardFunctions& m_board = appletHost().board();

public:
    LOOMdevice* device = m_board.open();
    applet_host::GrabberHandle handle;
    int error = -1;
};

TEST(StartUp, WritesTheDefaultsInOrder) {
    Start start;
    start.bringUp(0);
    Lines expected;
    for (const Lines& section : expectedSections())
        expected.insert(expected.end(), section.begin(), section.end());
    EXPECT_EQ(logOf(start.device), expected);
}

TEST(StartUp, LeavesTheBoardAloneForASlave) {
    Start start;
    start.bringUp(1);
    EXPECT_EQ(logOf(start.device), Lines{});
}

TEST(StartUp, AFailingDefaultEndsItsOwnSetterOnly) {
    const std::vector<Lines> sections = expectedSections();
    std::set<std::string> names;
    for (const Lines& section : sections)
        for (const std::string& line : section)
            names.insert(line.substr(4, line.find(' ', 4) - 4));
    ASSERT_GE(names.size(), 25u);
    for (const std::string& name : names) {
        Start start;
        ASSERT_EQ(appletHost().board().fail_name(start.device, name.c_str(), -4711), VBOARD_OK);
        start.bringUp(0);
        Lines expected;
        for (const Lines& section : sections) {
            for (std::string line : section) {
                const bool fails = line.substr(4, name.size() + 1) == name + " ";
                if (fails && line.rfind("get ", 0) == 0) line.erase(line.rfind(' '));
                expected.push_back(fails ? line + " = -4711" : line);
                if (fails) break;
            }
        }
        EXPECT_EQ(logOf(start.device), expected) << name;
    }
}

class TimeoutTest : public ParameterTest {};

TEST_F(TimeoutTest, IsKeptInTheObjectAlone) {
    EXPECT_EQ(get<std::uint32_t>(FG_TIMEOUT), 1000000u);
    for (const std::uint32_t value : {2u, 2147483646u, 3u}) {
        EXPECT_EQ(set(FG_TIMEOUT, value), 0);
        EXPECT_EQ(get<std::uint32_t>(FG_TIMEOUT), value);
    }
    for (const std::uint32_t value : {0u, 1u, 2147483647u, ~0u}) {
        EXPECT_EQ(set(FG_TIMEOUT, value), -6000);
        EXPECT_EQ(lastError(), -6000);
        EXPECT_EQ(get<std::uint32_t>(FG_TIMEOUT), 3u);
    }
    EXPECT_EQ(log(), Lines{});
}

} // namespace
