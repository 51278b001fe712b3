// Output format: which input is selected, which branches are silenced, how far the pixels are shifted, and
// what the design must tell for it.

#include "support/applet_fixture.h"

namespace {

using namespace support;

using Values = std::vector<std::uint32_t>;

const std::string device = "Device1_Process0_", inputs = "OutputFormat_FG_FORMAT_";
const std::string inputName = inputs + "Input", inputFlag = inputs + "InputFlag";

std::string branch(const std::string& input) {
    return "OutputFormat_Convert" + input + "_VirtualTrash_EnableTrash_Value";
}
std::string trash(int input, int enable) { return written(branch(std::to_string(input)), enable); }

/** The writes that silence all branches but one; input 4 cannot be silenced. */
Lines silenced(int selected) {
    return {trash(0, selected != 0), trash(1, selected != 1), trash(2, selected != 2),
            trash(3, selected != 3)};
}
Lines shifted(std::uint32_t shift, int selected) {
    return {written("OutputFormat_DynamicShift_Shift_Value", shift),
            written(inputs + "SelectSource", selected)};
}
/** All that a format writes. */
Lines switched(int selected, std::uint32_t shift) { return silenced(selected) + shifted(shift, selected); }

struct Format {
    std::uint32_t value;
    int input;
    std::uint32_t bits;
};
constexpr Format formats[] = {{2, 0, 8}, {5, 1, 10}, {7, 2, 12}, {9, 3, 14}, {6, 4, 16}};
const Values all = {2, 5, 7, 9, 6};

enum Alignment : std::uint32_t { right = 0, left = 1, custom = 2 };

class OutputFormatTest : public ParameterTest {
protected:
    /** The formats that a design offers, in the order of its inputs. */
    Values offered() {
        Values values;
        for (const Format& format : formats)
            if (set(FG_FORMAT, format.value) == FG_OK) values.push_back(format.value);
        return values;
    }
    Values offeredWith(const std::string& name, const std::string& text) {
        restart([&] { tell(name, text); });
        return offered();
    }
};

TEST_F(OutputFormatTest, LeftAndRightShiftAlikeAndCustomUpToTheWidthOfTheComponent) {
    for (const std::uint32_t alignment : {left, right}) {
        setAll({{FG_BITALIGNMENT, alignment}});
        std::vector<Choice> choices;
        for (const Format& format : formats)
            choices.push_back({format.value, switched(format.input, 16 - format.bits)});
        expectChoices(FG_FORMAT, choices);
    }
    for (const Format& format : formats) {
        setAll({{FG_BITALIGNMENT, right}, {FG_FORMAT, format.value}});
        EXPECT_EQ(maximum(FG_CUSTOM_BIT_SHIFT_RIGHT), format.bits - 1);
        EXPECT_EQ(get<std::uint32_t>(FG_PIXELDEPTH), 16u);
        const Lines writes = switched(format.input, 16 - format.bits);
        expectAccepted(FG_CUSTOM_BIT_SHIFT_RIGHT, format.bits - 1, writes); // kept for later
        expectAccepted(FG_CUSTOM_BIT_SHIFT_RIGHT, 0u, writes);
        expectChoices(FG_BITALIGNMENT, {{right, writes}, {left, writes}, {custom, writes}});
        for (std::uint32_t shift = format.bits; shift-- > 0;)
            expectAccepted(FG_CUSTOM_BIT_SHIFT_RIGHT, shift,
                           switched(format.input, shift + 16 - format.bits));
        expectAllRefused(FG_CUSTOM_BIT_SHIFT_RIGHT, {format.bits, 16u, 0x80000000u, ~0u});
    }
}

TEST_F(OutputFormatTest, AShiftTooFarForTheNewFormatSilencesItsBranchesAndRefusesIt) {
    setAll({{FG_FORMAT, 6}, {FG_BITALIGNMENT, custom}});
    expectSteps(
        {{FG_CUSTOM_BIT_SHIFT_RIGHT, 15, switched(4, 15)}, {FG_FORMAT, 2, silenced(0), FG_ERR_OUT_OF_RANGE}});
    EXPECT_EQ(maximum(FG_CUSTOM_BIT_SHIFT_RIGHT), 15u);
    // Under another alignment the format is taken; then the way back to the custom shift is barred.
    setAll({{FG_BITALIGNMENT, left}});
    expectSteps(
        {{FG_FORMAT, 2, switched(0, 8)}, {FG_BITALIGNMENT, custom, silenced(0), FG_ERR_OUT_OF_RANGE}});
    EXPECT_EQ(get<std::uint32_t>(FG_CUSTOM_BIT_SHIFT_RIGHT), 15u);
    EXPECT_EQ(maximum(FG_CUSTOM_BIT_SHIFT_RIGHT), 7u);
    expectSteps({{FG_CUSTOM_BIT_SHIFT_RIGHT, 7, switched(0, 8)},
                 {FG_BITALIGNMENT, custom, switched(0, 15)},
                 {FG_FORMAT, 5, switched(1, 13)},
                 {FG_CUSTOM_BIT_SHIFT_RIGHT, 8, switched(1, 14)},
                 {FG_FORMAT, 2, silenced(0), FG_ERR_OUT_OF_RANGE}}); // one bit is enough
}

TEST_F(OutputFormatTest, NamesOfInputs) {
    Lines known = {"FG_YUV422_8", "FG_YCBCR422_8", "FG_RGBA8", "FG_BGRA8", "FG_COL24", "FG_COL30",
                   "FG_COL36",    "FG_COL42",      "FG_COL48", "FG_GRAY",  "FG_MONO8"};
    for (const std::string family :
         {"FG_BGR", "FG_RGB", "FG_BAYERGR", "FG_BAYERRG", "FG_BAYERGB", "FG_BAYERBG", "FG_GRAY", "FG_MONO"})
        for (const std::string depth : {"8", "10", "12", "14", "16"})
            if (family + depth != "FG_GRAY8") known.push_back(family + depth);
    for (const std::string& name : known) {
        const bool isFourth = name == "FG_COL42" || name == "FG_BGR14";
        EXPECT_EQ(offeredWith(inputName + "3", name), isFourth ? all : (Values{2, 5, 7, 6})) << name;
    }
    expectRefused(FG_FORMAT, 9u, FG_ERR_OUT_OF_RANGE, silenced(-1)); // even so
    // What comes after an unknown input is not reached, the values of the simulator neither.
    for (const std::string& name : Lines{"", "FG_GRAY8", "FG_MONO", "FG_COL42 ", " FG_COL42", "fg_col42",
                                         "FG_COL4", "FG_COL422", "FG_RGBA16", std::string(4000, '1')}) {
        EXPECT_EQ(offeredWith(inputName + "3", name), (Values{2, 5, 7})) << name;
        EXPECT_EQ(doubleMaximum(FG_CAMERASIMULATOR_PIXEL_FREQUENCY), -1.0);
    }
    restart([&] { // each synonym has its width, which the shift shows; a flag is its first character
        for (const Format& format : formats)
            tell(inputName + std::to_string(format.input), "FG_BGR" + std::to_string(format.bits));
        tell(inputFlag + "4", "0" + std::string(4000, '1'));
        tell(inputFlag + "1", std::string(4000, '1'));
    });
    for (const Format& format : formats)
        expectAccepted(FG_FORMAT, format.value, switched(format.input, 16 - format.bits));
}

TEST_F(OutputFormatTest, NumbersOfInputsAndBitsComeFromTheirFirstCharacters) {
    const std::string longText(4000, '1');
    const std::pair<std::string, int> counts[] = {
        {"5", 5},  {"05", 5},  {"3", 3},  {"03", 3}, {"0", 0},           {"00", 0},
        {"", 0},   {"123", 1}, {"50", 5}, {"-1", 0}, {"x", 5},           {"x9", 5},
        {"~~", 5}, {"!", 0},   {" 4", 0}, {"4 ", 5}, {"5" + longText, 5}};
    for (const auto& [digits, count] : counts)
        EXPECT_EQ(offeredWith(inputs + "NoOfInputs", digits), Values(all.begin(), all.begin() + count))
            << digits;
    // Always two characters; of a shorter text the end counts as a digit too. A shift below 0 wraps.
    const std::pair<std::string, int> widths[] = {{"16", 16}, {"24", 24}, {"160", 16}, {"10", 10},
                                                  {"8", 32},  {"", -528}, {"00", 0},   {"99", 99},
                                                  {"x", 672}, {"/9", -1}, {"/:", 0},   {"16" + longText, 16}};
    for (const auto& [text, width] : widths) {
        SCOPED_TRACE(text);
        restart([&, told = text] { tell(inputs + "MaxBits", told); });
        for (const Format& format : formats) {
            const int shift = width - static_cast<int>(format.bits);
            setAll({{FG_BITALIGNMENT, left}});
            expectAccepted(FG_FORMAT, format.value,
                           switched(format.input, static_cast<std::uint32_t>(shift)));
            for (std::uint32_t extra = 0; extra < format.bits; ++extra) {
                setAll({{FG_BITALIGNMENT, right}, {FG_CUSTOM_BIT_SHIFT_RIGHT, extra}});
                const int places = static_cast<int>(extra) + shift;
                const bool fits = places >= 0 && places < width;
                EXPECT_EQ(set(FG_BITALIGNMENT, std::uint32_t{custom}), fits ? FG_OK : FG_ERR_OUT_OF_RANGE)
                    << format.value << " + " << extra;
            }
        }
    }
}

TEST_F(OutputFormatTest, MoreThanNineInputs) {
    const auto alias = [&](const std::string& name, const std::string& of) {
        ASSERT_EQ(board.alias_parameter((device + name).c_str(), of.c_str()), VBOARD_OK) << name;
    };
    // Input 9 and 10 are a second and a third FG_COL24, input 11 is a second FG_COL48.
    for (const auto& [i, like] : {std::pair{5, 1}, {6, 2}, {7, 3}, {8, 4}, {9, 0}, {10, 0}, {11, 4}}) {
        alias(inputName + std::to_string(i), device + inputName + std::to_string(like));
        alias(inputFlag + std::to_string(i), device + inputFlag + (i < 10 ? "4" : "0"));
    }
    // Beyond 9 the branch's name goes on behind the digits.
    const std::string tenth = "Device2_LinkMonitor_Enable", eleventh = "Trigger_Trigger_SoftwareTrgInput";
    alias(branch(":"), tenth);
    alias(branch(";"), device + eleventh);
    const auto further = [&](int enableTenth, int enableEleventh) {
        return Lines{"set " + tenth + " u32 " + std::to_string(enableTenth),
                     written(eleventh, enableEleventh)};
    };
    restart([&] { tell(inputs + "NoOfInputs", "12"); });
    expectSteps({{FG_FORMAT, 6, silenced(-1) + further(1, 0) + shifted(0, 11)}, // the last match
                 {FG_FORMAT, 2, silenced(0) + further(0, 1) + shifted(8, 10)},
                 {FG_FORMAT, 5, silenced(1) + further(1, 1) + shifted(6, 5)}});
    restart([&] { tell(inputs + "NoOfInputs", "11"); });
    expectAccepted(FG_FORMAT, 6u, silenced(-1) + Lines{further(1, 0)[0]} + shifted(0, 8));
}

TEST_F(OutputFormatTest, ADiscoveryThatFailsKeepsWhatItHasRead) {
    // The format is told before the flag, so that it is there without a branch to silence.
    const std::pair<std::string, Values> rows[] = {
        {inputName + "0", {}},       {inputFlag + "0", {2}},    {inputName + "3", {2, 5, 7}},
        {inputs + "NoOfInputs", {}}, {inputs + "MaxBits", all}, {inputFlag + "3", {2, 5, 7, 9}}};
    for (const auto& [name, values] : rows) {
        restart([&, failing = name] { grabber.fail(device + failing, -4711); });
        EXPECT_EQ(offered(), values) << name;
        grabber.fail(device + name, 0);
    }
    expectAccepted(FG_FORMAT, 9u, Lines{trash(0, 1), trash(1, 1), trash(2, 1)} + shifted(2, 3));
}

TEST_F(OutputFormatTest, ABranchThatCannotBeSilenced) {
    ASSERT_EQ(board.lack_parameter((device + branch("1")).c_str(), true), VBOARD_OK);
    restart([] {});
    expectRefused(FG_FORMAT, 6u, FG_ERR_UNRESOLVED, {trash(0, 1), "set #0 u32 1 = -2070"});
}

} // namespace
