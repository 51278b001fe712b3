// Enumerations of the image path, image selector, white balance, buffer status.

#include "support/applet_fixture.h"

#include <array>
#include <cmath>
#include <limits>
#include <map>

namespace {

using namespace support;

constexpr double infinity = std::numeric_limits<double>::infinity();

using ImageStages = ParameterTest;

TEST_F(ImageStages, EachEntryOfAnEnumerationHasItsWrites) {
    EXPECT_EQ(get<std::uint32_t>(FG_LINEORDER), 0u) << "the design's own stands until it is set";
    std::map<int, std::vector<Choice>> choices;
    for (const Lines& row :
         dataRows("image_path_choices.txt")) { // id, name, value, written names and numbers
        Choice& choice = choices[std::stoi(row[0])].emplace_back();
        choice.value = static_cast<std::uint32_t>(std::stoul(row[2]));
        for (std::size_t i = 3; i < row.size(); i += 2)
            choice.writes.push_back(written(row[i], std::stoi(row[i + 1])));
    }
    for (const auto& [id, entries] : choices)
        expectChoices(id, entries);
}

TEST_F(ImageStages, ThePhaseStaysBelowThePeriod) {
    constexpr int phase = FG_IMG_SELECT, period = FG_IMG_SELECT_PERIOD;
    const struct {
        int id;
        std::uint32_t value;
        bool isTaken;
    } rows[] = {{phase, 1, false},    {period, 0, false},  {period, 257, false}, {period, 0x10001, false},
                {period, ~0u, false}, {period, 256, true}, {phase, 256, false},  {phase, 0x10000, false},
                {phase, ~0u, false},  {phase, 255, true},  {period, 255, false}, {phase, 5, true},
                {period, 5, false},   {period, 1, false},  {period, 6, true},    {phase, 6, false},
                {phase, 0, true},     {period, 1, true}};
    for (const auto& [id, value, isTaken] : rows) {
        const std::string name = id == phase ? "PHASE_Number" : "PERIOD_Divisor";
        if (isTaken)
            expectAccepted(id, value, {written("ImageSelector_FG_IMG_SELECT_" + name, value)});
        else
            expectRefused(id, value);
    }
}

TEST_F(ImageStages, GainsGoToTheirColourAsTheyCome) {
    for (const auto& [id, colour] : {std::pair{FG_SCALINGFACTOR_RED, "Red"},
                                     {FG_SCALINGFACTOR_BLUE, "Blue"},
                                     {FG_SCALINGFACTOR_GREEN, "Green"}}) {
        const std::string name = std::string("WhiteBalance_White_") + colour + "Coefficient";
        for (const double value : {0.0, -0.0, 3.9990234375, 1.6}) // the last lies off the grid of 2^-10
            expectAccepted(id, value, {written(name, value)});
        expectAllRefused(id, {-std::numeric_limits<double>::denorm_min(), -1.0,
                              std::nextafter(3.9990234375, infinity), infinity, -infinity});
    }
}

TEST_F(ImageStages, TheFullestChannelCountsUnlessImagesWereLost) {
    const std::string dram = "Buffer_0_DRAM_DRAM_A_";
    const std::string names[] = {"OverflowOccurred_Status", dram + "0_FillLevel", dram + "1_FillLevel",
                                 dram + "2_FillLevel"};
    const struct {
        std::array<std::uint32_t, 4> design;
        std::uint32_t result;
    } rows[] = {{{0, 10, 70, 30}, 70}, {{0, 90, 70, 30}, 90}, {{0, 1, 2, 99}, 99},
                {{2, 10, 20, 30}, 30}, {{~0u, 5, 4, 3}, 5},   {{0, 101, 7, 250}, 250},
                {{0, ~0u, 1, 0}, ~0u}, {{1, 10, 70, 30}, 100}};
    for (const auto& [design, result] : rows) {
        Lines reads;
        for (std::size_t i = 0; i < 4; ++i) {
            poke(names[i], design[i]);
            if (i == 0 || design[0] != 1)
                reads.push_back("get Device1_Process0_" + names[i] + " u32 " + std::to_string(design[i]));
        }
        clearLog();
        EXPECT_EQ(get<std::uint32_t>(FG_FILLLEVEL), result);
        EXPECT_EQ(log(), reads);
    }
    // The flag is gone with its first reader, whoever that is.
    EXPECT_EQ(get<std::uint32_t>(FG_OVERFLOW), 0u);
    EXPECT_EQ(get<std::uint32_t>(FG_FILLLEVEL), 70u);
    poke(names[0], 1);
    EXPECT_EQ(get<std::uint32_t>(FG_OVERFLOW), 1u);
    EXPECT_EQ(get<std::uint32_t>(FG_FILLLEVEL), 70u);
}

} // namespace
