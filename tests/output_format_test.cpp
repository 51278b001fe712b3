// Output format: which input is selected, which branches are silenced, how far the pixels are shifted, and
// what the design must tell for it.

#include "support/applet_fixture.h"

namespace {

using namespace support;

const std::string inputs = "OutputFormat_FG_FORMAT_";
const std::string inputName = inputs + "Input", inputFlag = inputs + "InputFlag";

std::string trash(int input, int enable) {
    return written("OutputFormat_Convert" + std::to_string(input) + "_VirtualTrash_EnableTrash_Value",
                   enable);
}

/** The writes that silence all branches but one; input 4 cannot be silenced. */
Lines silenced(int selected) {
    Lines lines;
    for (int i = 0; i < 4; ++i)
        lines.push_back(trash(i, i != selected));
    return lines;
}

/** All that a format writes. */
Lines switched(int selected, std::uint32_t shift) {
    Lines lines = silenced(selected);
    lines.push_back(written("OutputFormat_DynamicShift_Shift_Value", shift));
    lines.push_back(written(inputs + "SelectSource", selected));
    return lines;
}

struct Format {
    std::uint32_t value;
    int input;
    std::uint32_t bits;
};
constexpr Format formats[] = {{2, 0, 8}, {5, 1, 10}, {7, 2, 12}, {9, 3, 14}, {6, 4, 16}};

enum Alignment : std::uint32_t { right = 0, left = 1, custom = 2 };

class OutputFormatTest : public ParameterTest {
protected:
    /** The formats that a design offers, as many as it was told of. */
    std::vector<std::uint32_t> offered() {
        std::vector<std::uint32_t> values;
        for (const Format& format : formats)
            if (set(FG_FORMAT, format.value) == FG_OK) values.push_back(format.value);
        return values;
    }
    const std::vector<std::uint32_t> all = {2, 5, 7, 9, 6};
};

TEST_F(OutputFormatTest, LeftAndRightShiftAlike) {
    for (const std::uint32_t alignment : {left, right}) {
        ASSERT_EQ(set(FG_BITALIGNMENT, alignment), 0);
        std::vector<Choice> choices;
        for (const Format& format : formats)
            choices.push_back({format.value, switched(format.input, 16 - format.bits)});
        expectChoices(FG_FORMAT, choices);
        for (const Format& format : formats) {
            ASSERT_EQ(set(FG_FORMAT, format.value), 0);
            EXPECT_EQ(maximum(FG_CUSTOM_BIT_SHIFT_RIGHT), format.bits - 1);
            EXPECT_EQ(get<std::uint32_t>(FG_PIXELDEPTH), 16u);
            const Lines writes = switched(format.input, 16 - format.bits);
            expectAccepted(FG_CUSTOM_BIT_SHIFT_RIGHT, format.bits - 1, writes); // kept for later
            expectAccepted(FG_CUSTOM_BIT_SHIFT_RIGHT, 0u, writes);
            expectChoices(FG_BITALIGNMENT, {{right, writes}, {custom, writes}, {left, writes}});
            ASSERT_EQ(set(FG_BITALIGNMENT, alignment), 0);
        }
    }
}

TEST_F(OutputFormatTest, CustomShiftGoesUpToTheWidthOfTheComponent) {
    for (const Format& format : formats) {
        ASSERT_EQ(set(FG_BITALIGNMENT, std::uint32_t{left}), 0);
        ASSERT_EQ(set(FG_FORMAT, format.value), 0);
        ASSERT_EQ(set(FG_CUSTOM_BIT_SHIFT_RIGHT, 0u), 0);
        ASSERT_EQ(set(FG_BITALIGNMENT, std::uint32_t{custom}), 0);
        for (std::uint32_t shift = format.bits; shift-- > 0;)
            expectAccepted(FG_CUSTOM_BIT_SHIFT_RIGHT, shift,
                           switched(format.input, shift + 16 - format.bits));
        for (const std::uint32_t shift : {format.bits, 16u, 0x80000000u, ~0u})
            expectRefused(FG_CUSTOM_BIT_SHIFT_RIGHT, shift);
    }
}

TEST_F(OutputFormatTest, AShiftTooFarForTheNewFormatSilencesItsBranchesAndRefusesIt) {
    ASSERT_EQ(set(FG_FORMAT, 6u), 0);
    ASSERT_EQ(set(FG_BITALIGNMENT, std::uint32_t{custom}), 0);
    expectAccepted(FG_CUSTOM_BIT_SHIFT_RIGHT, 15u, switched(4, 15));
    expectRefused(FG_FORMAT, 2u, FG_ERR_OUT_OF_RANGE, silenced(0));
    EXPECT_EQ(maximum(FG_CUSTOM_BIT_SHIFT_RIGHT), 15u);
    // Under another alignment the format is taken; then the way back to the custom shift is barred.
    ASSERT_EQ(set(FG_BITALIGNMENT, std::uint32_t{left}), 0);
    expectAccepted(FG_FORMAT, 2u, switched(0, 8));
    expectRefused(FG_BITALIGNMENT, std::uint32_t{custom}, FG_ERR_OUT_OF_RANGE, silenced(0));
    EXPECT_EQ(get<std::uint32_t>(FG_CUSTOM_BIT_SHIFT_RIGHT), 15u);
    EXPECT_EQ(maximum(FG_CUSTOM_BIT_SHIFT_RIGHT), 7u);
    expectAccepted(FG_CUSTOM_BIT_SHIFT_RIGHT, 7u, switched(0, 8));
    expectAccepted(FG_BITALIGNMENT, std::uint32_t{custom}, switched(0, 15));
    // One bit is enough.
    ASSERT_EQ(set(FG_FORMAT, 5u), 0);
    expectAccepted(FG_CUSTOM_BIT_SHIFT_RIGHT, 8u, switched(1, 14));
    expectRefused(FG_FORMAT, 2u, FG_ERR_OUT_OF_RANGE, silenced(0));
}

TEST_F(OutputFormatTest, AFormatThatTheDesignLacks) {
    restart([&] { tell(inputName + "1", "FG_GRAY"); });
    for (const std::uint32_t alignment : {left, right, custom}) {
        ASSERT_EQ(set(FG_BITALIGNMENT, alignment), 0);
        expectRefused(FG_FORMAT, 5u, FG_ERR_OUT_OF_RANGE, silenced(-1));
    }
    EXPECT_EQ(maximum(FG_CUSTOM_BIT_SHIFT_RIGHT), 7u);
    expectAccepted(FG_FORMAT, 6u, switched(4, 0));
}

TEST_F(OutputFormatTest, NamesOfInputs) {
    Lines known = {"FG_YUV422_8", "FG_YCBCR422_8", "FG_RGBA8", "FG_BGRA8", "FG_COL24", "FG_COL30",
                   "FG_COL36",    "FG_COL42",      "FG_COL48", "FG_GRAY",  "FG_MONO8"};
    for (const std::string family :
         {"FG_BGR", "FG_RGB", "FG_BAYERGR", "FG_BAYERRG", "FG_BAYERGB", "FG_BAYERBG", "FG_GRAY", "FG_MONO"})
        for (const std::string depth : {"8", "10", "12", "14", "16"})
            if (family + depth != "FG_GRAY8") known.push_back(family + depth);
    const auto offeredWith = [&](const std::string& name) {
        restart([&] { tell(inputName + "3", name); });
        return offered();
    };
    for (const std::string& name : known) {
        const bool isFourth = name == "FG_COL42" || name == "FG_BGR14";
        EXPECT_EQ(offeredWith(name), isFourth ? all : std::vector<std::uint32_t>({2, 5, 7, 6})) << name;
    }
    // What comes after an unknown input is not reached, the values of the simulator neither.
    for (const std::string name : {"", "FG_GRAY8", "FG_MONO", "FG_COL42 ", " FG_COL42", "fg_col42", "FG_COL4",
                                   "FG_COL422", "FG_RGBA16"})
        EXPECT_EQ(offeredWith(name), (std::vector<std::uint32_t>{2, 5, 7})) << name;
    EXPECT_EQ(doubleMaximum(FG_CAMERASIMULATOR_PIXEL_FREQUENCY), -1.0);
    EXPECT_EQ(offeredWith("FG_COL42"), all);
    EXPECT_EQ(doubleMaximum(FG_CAMERASIMULATOR_PIXEL_FREQUENCY), 3999.9999999999995);

    // Each synonym has its width, which the shift shows.
    const char* synonyms[] = {"FG_BGR8", "FG_BGR10", "FG_BGR12", "FG_BGR14", "FG_BGR16"};
    const char* names[] = {"FG_COL24", "FG_COL30", "FG_COL36", "FG_COL42", "FG_COL48"};
    for (const auto& told : {synonyms, names}) {
        restart([&] {
            for (int i = 0; i < 5; ++i)
                tell(inputName + std::to_string(i), told[i]);
        });
        for (const Format& format : formats)
            expectAccepted(FG_FORMAT, format.value, switched(format.input, 16 - format.bits));
    }
}

TEST_F(OutputFormatTest, NumbersOfInputsAndBitsComeFromTheirFirstCharacters) {
    const std::vector<std::pair<std::string, std::size_t>> counts = {
        {"5", 5},  {"05", 5}, {"3", 3}, {"03", 3}, {"0", 0},  {"00", 0}, {"", 0},   {"123", 1},
        {"50", 5}, {"-1", 0}, {"x", 5}, {"x9", 5}, {"~~", 5}, {"!", 0},  {" 4", 0}, {"4 ", 5}};
    for (const auto& [digits, count] : counts) {
        restart([&, told = digits] { tell(inputs + "NoOfInputs", told); });
        EXPECT_EQ(offered(), std::vector<std::uint32_t>(all.begin(), all.begin() + static_cast<long>(count)))
            << digits;
    }
    // Always two characters; of a shorter text the end counts as a digit too. A shift below 0 wraps.
    struct {
        const char* text;
        int bits;
    } const widths[] = {{"16", 16}, {"24", 24}, {"160", 16}, {"10", 10}, {"8", 32}, {"", -528},
                        {"00", 0},  {"99", 99}, {"x", 672},  {"/9", -1}, {"/:", 0}};
    for (const auto& width : widths) {
        SCOPED_TRACE(width.text);
        restart([&] { tell(inputs + "MaxBits", width.text); });
        for (const Format& format : formats) {
            const int bits = static_cast<int>(format.bits), shift = width.bits - bits;
            ASSERT_EQ(set(FG_BITALIGNMENT, std::uint32_t{left}), 0);
            expectAccepted(FG_FORMAT, format.value,
                           switched(format.input, static_cast<std::uint32_t>(shift)));
            ASSERT_EQ(set(FG_CUSTOM_BIT_SHIFT_RIGHT, 0u), 0);
            for (int extra = 0; extra < bits; ++extra) {
                ASSERT_EQ(set(FG_BITALIGNMENT, std::uint32_t{right}), 0);
                ASSERT_EQ(set(FG_CUSTOM_BIT_SHIFT_RIGHT, static_cast<std::uint32_t>(extra)), 0);
                const bool fits = extra + shift >= 0 && extra + shift < width.bits;
                EXPECT_EQ(set(FG_BITALIGNMENT, std::uint32_t{custom}), fits ? FG_OK : FG_ERR_OUT_OF_RANGE)
                    << format.value << " + " << extra;
            }
        }
    }
}

TEST_F(OutputFormatTest, MoreThanNineInputs) {
    const std::string device = "Device1_Process0_";
    const auto alias = [&](const std::string& name, const std::string& of) {
        ASSERT_EQ(board.alias_parameter((device + name).c_str(), of.c_str()), VBOARD_OK) << name;
    };
    // Input 9 and 10 are a second and a third FG_COL24, input 11 is a second FG_COL48.
    for (const auto& [i, like] : {std::pair{5, 1}, {6, 2}, {7, 3}, {8, 4}, {9, 0}, {10, 0}, {11, 4}}) {
        alias(inputName + std::to_string(i), device + inputName + std::to_string(like));
        alias(inputFlag + std::to_string(i), device + inputFlag + (i < 10 ? "4" : "0"));
    }
    // Beyond 9 the branch's name goes on behind the digits.
    const std::string tenth = "Device2_LinkMonitor_Enable",
                      eleventh = device + "Trigger_Trigger_SoftwareTrgInput";
    alias("OutputFormat_Convert:_VirtualTrash_EnableTrash_Value", tenth);
    alias("OutputFormat_Convert;_VirtualTrash_EnableTrash_Value", eleventh);
    const auto expected = [&](int silencedFirst, int enableTenth, int enableEleventh, int shift,
                              int selected) {
        Lines lines = silenced(silencedFirst);
        lines.push_back("set " + tenth + " u32 " + std::to_string(enableTenth));
        lines.push_back("set " + eleventh + " u32 " + std::to_string(enableEleventh));
        lines.push_back(written("OutputFormat_DynamicShift_Shift_Value", shift));
        lines.push_back(written(inputs + "SelectSource", selected));
        return lines;
    };
    restart([&] { tell(inputs + "NoOfInputs", "12"); });
    expectAccepted(FG_FORMAT, 6u, expected(-1, 1, 0, 0, 11)); // the last match is selected
    expectAccepted(FG_FORMAT, 2u, expected(0, 0, 1, 8, 10));
    expectAccepted(FG_FORMAT, 5u, expected(1, 1, 1, 6, 5));
    restart([&] { tell(inputs + "NoOfInputs", "11"); });
    Lines ten = expected(-1, 1, 0, 0, 8);
    ten.erase(ten.begin() + 5);
    expectAccepted(FG_FORMAT, 6u, ten);
}

TEST_F(OutputFormatTest, TextsOfAnyLength) {
    const std::string longText(4000, '1');
    restart([&] {
        tell(inputs + "NoOfInputs", "5" + longText);
        tell(inputs + "MaxBits", "16" + longText);
        tell(inputFlag + "4", "0" + longText);
        tell(inputFlag + "1", longText);
    });
    EXPECT_EQ(offered(), all);
    expectAccepted(FG_FORMAT, 5u, switched(1, 6));
    for (const std::size_t length : {127u, 128u, 200u, 4000u}) {
        restart([&] { tell(inputName + "2", "FG_BGR12" + longText.substr(0, length)); });
        EXPECT_EQ(offered(), (std::vector<std::uint32_t>{2, 5})) << length;
    }
}

TEST_F(OutputFormatTest, ADiscoveryThatFailsKeepsWhatItHasRead) {
    const auto failing = [&](const std::string& name) {
        restart([&] { grabber.fail("Device1_Process0_" + name, -4711); });
        grabber.fail("Device1_Process0_" + name, 0);
        return offered();
    };
    using Values = std::vector<std::uint32_t>;
    // The format is told before the flag, so that it is there without a branch to silence.
    EXPECT_EQ(failing(inputName + "0"), Values());
    EXPECT_EQ(failing(inputFlag + "0"), Values{2});
    EXPECT_EQ(failing(inputName + "3"), (Values{2, 5, 7}));
    EXPECT_EQ(failing(inputFlag + "3"), (Values{2, 5, 7, 9}));
    expectAccepted(FG_FORMAT, 9u,
                   {trash(0, 1), trash(1, 1), trash(2, 1),
                    written("OutputFormat_DynamicShift_Shift_Value", 2),
                    written(inputs + "SelectSource", 3)});
    EXPECT_EQ(failing(inputs + "NoOfInputs"), Values());
    EXPECT_EQ(failing(inputs + "MaxBits"), all);
    expectAccepted(FG_FORMAT, 2u, switched(0, static_cast<std::uint32_t>(-528 - 8)));

    ASSERT_EQ(board.lack_parameter(("Device1_Process0_" + inputName + "3").c_str(), true), VBOARD_OK);
    restart([] {});
    EXPECT_EQ(offered(), (Values{2, 5, 7}));
}

TEST_F(OutputFormatTest, ABranchThatCannotBeSilenced) {
    // The first of the design's own codes is no concern of the caller's.
    const std::string branch = "Device1_Process0_OutputFormat_Convert1_VirtualTrash_EnableTrash_Value";
    grabber.fail(branch, -4711);
    for (const std::uint32_t value : {2u, 5u, 6u})
        expectRefused(FG_FORMAT, value, FG_ERR_UNRESOLVED,
                      {trash(0, value != 2), trash(1, value != 5) + " = -4711"});
    expectRefused(FG_BITALIGNMENT, std::uint32_t{right}, FG_ERR_UNRESOLVED,
                  {trash(0, 0), trash(1, 1) + " = -4711"});
    expectRefused(FG_CUSTOM_BIT_SHIFT_RIGHT, 3u, FG_ERR_UNRESOLVED, {trash(0, 0), trash(1, 1) + " = -4711"});

    ASSERT_EQ(board.lack_parameter(branch.c_str(), true), VBOARD_OK);
    restart([] {});
    expectRefused(FG_FORMAT, 6u, FG_ERR_UNRESOLVED, {trash(0, 1), "set #0 u32 1 = -2070"});
}

} // namespace
