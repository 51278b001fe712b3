// Image selector, white balance, buffer status.

#include "support/applet_fixture.h"

#include <cmath>
#include <limits>

namespace {

using namespace support;

const std::string period = "ImageSelector_FG_IMG_SELECT_PERIOD_Divisor";
const std::string phase = "ImageSelector_FG_IMG_SELECT_PHASE_Number";
constexpr double infinity = std::numeric_limits<double>::infinity();

using ImageStages = ParameterTest;

TEST_F(ImageStages, ThePhaseStaysBelowThePeriod) {
    expectRefused(FG_IMG_SELECT, 1u); // the period is 1
    for (const std::uint32_t value : {0u, 257u, 0x10001u, ~0u})
        expectRefused(FG_IMG_SELECT_PERIOD, value);
    expectAccepted(FG_IMG_SELECT_PERIOD, 256u, {written(period, 256)});
    for (const std::uint32_t value : {256u, 0x10000u, ~0u})
        expectRefused(FG_IMG_SELECT, value);
    expectAccepted(FG_IMG_SELECT, 255u, {written(phase, 255)});
    expectRefused(FG_IMG_SELECT_PERIOD, 255u);
    expectAccepted(FG_IMG_SELECT, 5u, {written(phase, 5)});
    for (const std::uint32_t value : {5u, 1u})
        expectRefused(FG_IMG_SELECT_PERIOD, value);
    expectAccepted(FG_IMG_SELECT_PERIOD, 6u, {written(period, 6)});
    expectRefused(FG_IMG_SELECT, 6u);
    expectAccepted(FG_IMG_SELECT, 0u, {written(phase, 0)});
    expectAccepted(FG_IMG_SELECT_PERIOD, 1u, {written(period, 1)});
}

TEST_F(ImageStages, GainsGoToTheirColourAsTheyCome) {
    const std::pair<int, std::string> gains[] = {
        {FG_SCALINGFACTOR_RED, "Red"}, {FG_SCALINGFACTOR_BLUE, "Blue"}, {FG_SCALINGFACTOR_GREEN, "Green"}};
    double own = 1.5;
    for (const auto& [id, colour] : gains) {
        // The last lies off the grid of 2^-10.
        for (const double value : {0.0, -0.0, 3.9990234375, own += 0.1})
            expectAccepted(id, value, {written("WhiteBalance_White_" + colour + "Coefficient", value)});
        for (const double value : {-std::numeric_limits<double>::denorm_min(), -1.0, 3.9990234376,
                                   std::nextafter(3.9990234375, infinity), infinity, -infinity})
            expectRefused(id, value);
    }
    own = 1.5;
    for (const auto& [id, colour] : gains)
        EXPECT_EQ(get<double>(id), own += 0.1) << colour;
}

class BufferStatus : public ParameterTest {
protected:
    static std::string level(int channel) {
        return "Device1_Process0_Buffer_0_DRAM_DRAM_A_" + std::to_string(channel) + "_FillLevel";
    }
    void poke(std::int64_t statusValue, const std::vector<std::int64_t>& levels) {
        board.poke_int(grabber.device, status.c_str(), statusValue);
        for (int channel = 0; channel < 3; ++channel)
            board.poke_int(grabber.device, level(channel).c_str(), levels[static_cast<std::size_t>(channel)]);
    }
    const std::string status = "Device1_Process0_OverflowOccurred_Status";
};

TEST_F(BufferStatus, TheFullestChannelCountsUnlessImagesWereLost) {
    struct {
        std::int64_t status;
        std::vector<std::int64_t> levels;
        std::uint32_t result;
    } const rows[] = {{0, {10, 70, 30}, 70},   {0, {90, 70, 30}, 90},       {0, {1, 2, 99}, 99},
                      {0, {0, 0, 0}, 0},       {2, {10, 20, 30}, 30},       {0xffffffff, {5, 4, 3}, 5},
                      {0, {101, 7, 250}, 250}, {0, {0xffffffff, 1, 0}, ~0u}};
    for (const auto& row : rows) {
        poke(row.status, row.levels);
        clearLog();
        EXPECT_EQ(get<std::uint32_t>(FG_FILLLEVEL), row.result);
        Lines reads = {"get " + status + " u32 " + std::to_string(row.status)};
        for (int channel = 0; channel < 3; ++channel)
            reads.push_back("get " + level(channel) + " u32 " +
                            std::to_string(row.levels[static_cast<std::size_t>(channel)]));
        EXPECT_EQ(log(), reads);
    }
    poke(1, {10, 70, 30});
    clearLog();
    EXPECT_EQ(get<std::uint32_t>(FG_FILLLEVEL), 100u);
    EXPECT_EQ(log(), Lines{"get " + status + " u32 1"});
    // The flag is gone with its first reader, whoever that is.
    EXPECT_EQ(get<std::uint32_t>(FG_OVERFLOW), 0u);
    EXPECT_EQ(get<std::uint32_t>(FG_FILLLEVEL), 70u);
    poke(1, {10, 70, 30});
    EXPECT_EQ(get<std::uint32_t>(FG_OVERFLOW), 1u);
    EXPECT_EQ(get<std::uint32_t>(FG_FILLLEVEL), 70u);
}

TEST_F(BufferStatus, AFailedReadLeavesTheCallersValue) {
    for (const auto& [name, ids] : {std::pair{status, std::vector<int>{FG_FILLLEVEL, FG_OVERFLOW}},
                                    {level(0), {FG_FILLLEVEL}},
                                    {level(1), {FG_FILLLEVEL}},
                                    {level(2), {FG_FILLLEVEL}}}) {
        grabber.fail(name, -4711);
        for (const int id : ids) {
            std::uint32_t value = 12345;
            EXPECT_EQ(grabber.get(id, &value), -4711) << name;
            EXPECT_EQ(lastError(), -4711);
            EXPECT_EQ(value, 12345u);
        }
        grabber.fail(name, 0);
    }
    for (const int id : {FG_FILLLEVEL, FG_OVERFLOW})
        EXPECT_EQ(set(id, 0u), FG_ERR_NOT_AVAILABLE);
}

} // namespace
