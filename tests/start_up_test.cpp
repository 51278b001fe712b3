// What a start does with the design: it reads what there is, then writes the defaults, one setter after the
// other, each for itself.

#include "support/applet_fixture.h"

#include <set>

namespace {

using namespace support;

/** The expected accesses of a normal start: what the design tells of itself, then a section for each setter. */
std::vector<Lines> expectedSections() {
    std::vector<Lines> sections;
    for (const std::string& line : dataLines("start_up_writes.txt")) {
        if (line.starts_with("# "))
            sections.emplace_back();
        else
            sections.back().push_back(line);
    }
    return sections;
}

class StartUpTest : public AppletTest {
protected:
    /** Brings a handle up on a board whose memory has the widths that the listing tells. */
    void start(Grabber& grabber, int flags) {
        for (const auto& [name, value] : {std::pair{"DRAM_DRAM_A_0_Imp_DRAM_RamAddressWidth", 24},
                                          {"DRAM_DRAM_A_0_Imp_DRAM_RamDataWidth", 512},
                                          {"LinkPixelSpace_Parallelism", 32}}) {
            const std::string full = std::string("Device1_Process0_Buffer_0_") + name;
            ASSERT_EQ(board.poke_int(grabber.device, full.c_str(), value), VBOARD_OK);
        }
        ASSERT_EQ(grabber.bringUp(flags).error, FG_OK);
    }
};

TEST_F(StartUpTest, WritesTheDefaultsInOrderAndNothingForASlave) {
    const std::vector<Lines> sections = expectedSections();
    Lines all;
    for (const Lines& section : sections)
        all.insert(all.end(), section.begin(), section.end());
    for (const int flags : {0, 1, 2, 3}) { // bit 0 makes a slave, no other bit is read
        Grabber grabber;
        start(grabber, flags);
        EXPECT_EQ(grabber.log(), flags % 2 == 0 ? all : sections[0]) << flags;
        EXPECT_EQ(grabber.value<std::uint32_t>(FG_TIMEOUT), 1000000u);
        EXPECT_EQ(grabber.value<double>(FG_LINEEXPOSURE), 19.0);
    }
}

TEST_F(StartUpTest, AFailingDefaultEndsItsOwnSetterOnly) {
    const std::vector<Lines> sections = expectedSections();
    std::set<std::string> names;
    for (std::size_t i = 1; i < sections.size(); ++i)
        for (const std::string& line : sections[i])
            names.insert(line.substr(4, line.find(' ', 4) - 4));
    ASSERT_GE(names.size(), 50u);
    for (const std::string& name : names) {
        Grabber grabber;
        grabber.fail(name, -4711);
        start(grabber, 0);
        Lines expected;
        for (const Lines& section : sections) {
            for (std::string line : section) {
                const bool fails = line.substr(4, name.size() + 1) == name + " ";
                if (fails && line.starts_with("get ")) line.erase(line.rfind(' '));
                expected.push_back(fails ? line + " = -4711" : line);
                if (fails) break;
            }
        }
        EXPECT_EQ(grabber.log(), expected) << name;
    }
}

using TimeoutTest = ParameterTest;

TEST_F(TimeoutTest, IsKeptInTheObjectAlone) {
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
