// The design accesses of a start: it reads the design's properties, then writes the defaults, one setter after
// the other, each independently.

#include "support/applet_fixture.h"

namespace {

using namespace support;

class StartUpTest : public AppletTest {
protected:
    /** Brings a handle up on a board with memory of the listed widths. */
    void start(Grabber& grabber, int flags) { ASSERT_EQ(grabber.fitRam().bringUp(flags).error, FG_OK); }
};

TEST_F(StartUpTest, WritesTheDefaultsInOrderAndNothingForASlave) {
    const Sections sections = startUpSections();
    Lines all;
    for (const auto& [setter, accesses] : sections)
        all = all + accesses;
    for (const int flags : {0, 1, 2, 3}) { // bit 0 makes a slave, no other bit is read
        Grabber grabber;
        start(grabber, flags);
        EXPECT_EQ(grabber.log(), flags % 2 == 0 ? all : sections[0].second) << flags;
        EXPECT_EQ(grabber.value<std::uint32_t>(FG_TIMEOUT), 1000000u);
        EXPECT_EQ(grabber.value<double>(FG_LINEEXPOSURE), 19.0);
    }
}

} // namespace
