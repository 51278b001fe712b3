// Lookup table: the formula, element records, files; what the cache holds against what the board was sent.

#include "support/applet_fixture.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <numeric>
#include <sstream>
#include <unistd.h>

namespace {

using namespace support;
namespace fs = std::filesystem;

using Table = std::vector<std::uint32_t>;
constexpr std::uint32_t size = 16384;
constexpr int oneElement = FG_PARAM_FIELD_INT, aRun = FG_PARAM_FIELD_ACCESS;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

struct Colour {
    int id;
    std::string content; // of the design
};
const Colour colours[] = {{FG_LUT_VALUE_RED, "LookupTable_R_LUTcontent"},
                          {FG_LUT_VALUE_GREEN, "LookupTable_G_LUTcontent"},
                          {FG_LUT_VALUE_BLUE, "LookupTable_B_LUTcontent"}};

std::string sent(const Colour& colour, std::uint32_t first, std::uint32_t count) {
    return "set Device1_Process0_" + colour.content + " field " + std::to_string(first) + "+" +
           std::to_string(count);
}
const Lines allSent = {sent(colours[0], 0, size), sent(colours[1], 0, size), sent(colours[2], 0, size)};

struct Processing {
    double offset = 0, gain = 1, gamma = 1;
    std::uint32_t invert = 0;
};

/** The formula, step by step. */
Table formula(const Processing& p) {
    Table table(size);
    const double exponent = p.gamma != 0 ? 1.0 / p.gamma : std::copysign(infinity, p.gamma);
    for (std::uint32_t i = 0; i < size; ++i) {
        const double y = (i / 16383.0 + p.offset) * p.gain;
        std::int32_t entry = 0;
        if (!(y < 0)) {
            const double scaled = 0.5 + std::pow(y, exponent) * 65535;
            const bool fits = scaled > -2147483649.0 && scaled < 2147483648.0;
            entry = fits ? static_cast<std::int32_t>(scaled) : std::numeric_limits<std::int32_t>::min();
        }
        if (p.invert == 1) entry = static_cast<std::int32_t>(65535u - static_cast<std::uint32_t>(entry));
        table[i] = static_cast<std::uint32_t>(std::clamp(entry, 0, 65535));
    }
    return table;
}

Table ramp(std::uint32_t first, std::uint32_t step) {
    Table table(size);
    for (std::uint32_t i = 0; i < size; ++i)
        table[i] = (first + i * step) % 65536;
    return table;
}

class LookupTable : public ParameterTest {
protected:
    template <typename T = std::uint32_t>
    int access(bool toApplet, int id, std::uint32_t first, std::uint32_t count, T* values, int vtype = 2) {
        FieldParameterAccess record{vtype, first, count, values};
        return toApplet ? applet.Fg_setParameterWithType(grabber.fg(), id, &record, 0, aRun)
                        : applet.Fg_getParameterWithType(grabber.fg(), id, &record, 0, aRun);
    }
    template <typename T>
    int read(int id, std::uint32_t first, std::uint32_t count, T* values, int vtype = 2) {
        return access(false, id, first, count, values, vtype);
    }
    int write(int id, std::uint32_t first, std::uint32_t count, std::uint32_t* values, int vtype = 2) {
        return access(true, id, first, count, values, vtype);
    }
    int writeOne(int id, std::uint32_t index, std::uint32_t value, int tag = oneElement) {
        return grabber.set(id, FieldParameterInt_s{value, index}, 0, tag);
    }
    Table cache(int id) {
        Table table(size, 99999);
        EXPECT_EQ(read(id, 0, size, table.data()), FG_OK);
        return table;
    }
    Table onBoard(const Colour& colour) {
        Table table(size);
        EXPECT_EQ(board.peek_field(grabber.device, ("Device1_Process0_" + colour.content).c_str(), 0, size,
                                   table.data()),
                  VBOARD_OK);
        return table;
    }
    void expectEverywhere(const Table& table) {
        for (const Colour& colour : colours) {
            EXPECT_TRUE(cache(colour.id) == table) << colour.content;
            EXPECT_TRUE(onBoard(colour) == table) << colour.content;
        }
    }
    void fill(int id, Table table) { ASSERT_EQ(write(id, 0, size, table.data()), FG_OK); }
    int setProcessing(const Processing& p) {
        for (const auto& [id, value] : {std::pair{FG_PROCESSING_OFFSET, p.offset},
                                        {FG_PROCESSING_GAIN, p.gain},
                                        {FG_PROCESSING_GAMMA, p.gamma}})
            if (const int code = set(id, value)) return code;
        return set(FG_PROCESSING_INVERT, p.invert);
    }
    const std::vector<int> processing = {FG_PROCESSING_GAIN, FG_PROCESSING_GAMMA, FG_PROCESSING_OFFSET,
                                         FG_PROCESSING_INVERT};
};

TEST_F(LookupTable, FollowsTheFormulaEntryForEntry) {
    expectEverywhere(formula({})); // from the start
    const Processing settings[] = {
        {.invert = 1},
        {.gain = 0},
        {.offset = -1},
        {.gamma = 2.2},
        {.gamma = 0.45, .invert = 1},
        {.gamma = 0},
        {.gamma = -0.0},
        {.gamma = 0, .invert = 1},
        {.gamma = -1},
        {.gamma = -2.2, .invert = 1},
        {.gamma = 1000},
        {.gamma = -1000},
        {.gain = 2},
        {.gain = 2, .invert = 1},
        {.offset = 0.25, .gain = 1.5, .gamma = 1.7},
        {.offset = -0.5, .gain = 16384, .gamma = 0.5},              // beyond 32 bits
        {.offset = -0.5, .gain = 16384, .gamma = 0.5, .invert = 1}, // still 0
        {.offset = 1, .gain = 16384},                               // 2147450880.5 at the most
        {.offset = 1, .gain = 0.5, .gamma = -0.001, .invert = 1},
    };
    for (const Processing& p : settings) {
        SCOPED_TRACE(testing::Message() << p.offset << " " << p.gain << " " << p.gamma << " " << p.invert);
        ASSERT_EQ(setProcessing(p), 0);
        expectEverywhere(formula(p));
    }
}

TEST_F(LookupTable, RangesOfTheFormula) {
    const std::tuple<int, double, double> ranges[] = {{FG_PROCESSING_OFFSET, -1.0, 1.0},
                                                      {FG_PROCESSING_GAIN, 0.0, 16384.0},
                                                      {FG_PROCESSING_GAMMA, -1000.0, 1000.0}};
    for (const auto& [id, least, most] : ranges) {
        for (const double value : {least, most, (least + most) / 2})
            expectAccepted(id, value, allSent);
        for (const double value : {std::nextafter(least, -infinity), std::nextafter(most, infinity),
                                   most + 0.5, infinity, -infinity})
            expectRefused(id, value);
    }
    expectChoices(FG_PROCESSING_INVERT, {{1, allSent}, {0, allSent}});
    // Not a number ends as the lowest number, which is 0 in the table, if it is taken at all.
    const std::pair<int, Processing> notNumbers[] = {{FG_PROCESSING_OFFSET, {.offset = nan}},
                                                     {FG_PROCESSING_GAIN, {.gain = nan}},
                                                     {FG_PROCESSING_GAMMA, {.gamma = nan}}};
    for (const auto& [id, p] : notNumbers) {
        ASSERT_EQ(setProcessing({}), 0);
        const bool isTaken = set(id, nan) == FG_OK;
        expectEverywhere(isTaken ? formula(p) : formula({}));
    }
}

TEST_F(LookupTable, EnableAndTypeOpenTheFormulaOrTheFile) {
    using Access = std::vector<std::uint32_t>;
    const std::string enabled = "LookupTable_EnableLUT_Value";
    const auto expectAccess = [&](std::uint32_t formulaAccess, std::uint32_t file) {
        EXPECT_EQ(accessOf(processing), Access(4, formulaAccess));
        EXPECT_EQ(accessOf({FG_LUT_CUSTOM_FILE}), Access{file});
    };
    expectAccess(1, 1);
    expectAccepted(FG_LUT_ENABLE, 1u, {written(enabled, 1)});
    expectAccess(7, 1);
    expectAccepted(FG_LUT_TYPE, 0u, {}); // no file is named: nothing to load
    expectAccess(1, 7);
    expectAccepted(FG_PROCESSING_GAIN, 2.0, {}); // kept for later
    expectAccepted(FG_LUT_ENABLE, 0u, {written(enabled, 0)});
    expectAccess(1, 7);
    expectAccepted(FG_LUT_ENABLE, 1u, {written(enabled, 1)});
    expectAccess(1, 7);
    expectEverywhere(formula({}));
    expectAccepted(FG_LUT_TYPE, 3u, allSent);
    expectAccess(7, 1);
    expectEverywhere(formula({.gain = 2}));
    for (const std::uint32_t value : {1u, 2u, 4u, 256u, ~0u})
        expectRefused(FG_LUT_TYPE, value);
    for (const std::uint32_t value : {2u, 0x100u, ~0u})
        expectRefused(FG_LUT_ENABLE, value);
    expectAccess(7, 1);

    // A failed write of the switch comes after the access, one of the tables before it.
    grabber.fail("Device1_Process0_" + enabled, -4711);
    expectRefused(FG_LUT_ENABLE, 0u, -4711, {written(enabled, 0) + " = -4711"});
    expectAccess(1, 1);
    ASSERT_EQ(set(FG_LUT_TYPE, 0u), 0);
    grabber.fail("Device1_Process0_" + colours[1].content, -4711);
    expectRefused(FG_LUT_TYPE, 3u, -4711, {allSent[0], allSent[1] + " = -4711"});
    expectAccess(1, 7);
    grabber.fail("Device1_Process0_" + colours[1].content, 0);

    for (const auto& [id, value] :
         {std::pair{FG_LUT_IMPLEMENTATION_TYPE, 0u}, {FG_LUT_IN_BITS, 14u}, {FG_LUT_OUT_BITS, 16u}}) {
        EXPECT_EQ(get<std::uint32_t>(id), value);
        EXPECT_EQ(set(id, value), FG_ERR_NOT_AVAILABLE);
    }
}

TEST_F(LookupTable, OneElement) {
    Table expected[] = {formula({}), formula({}), formula({})};
    std::uint32_t value = 1000;
    for (std::size_t c = 0; c < 3; ++c) {
        // Every tag but that of a run takes this record, and the type of the table does not matter.
        for (const int tag : {oneElement, 2, 5, 0}) {
            for (const std::uint32_t index : {0u, 16383u, value % size}) {
                clearLog();
                EXPECT_EQ(writeOne(colours[c].id, index, ++value, tag), 0);
                EXPECT_EQ(log(), Lines{sent(colours[c], index, 1)});
                expected[c][index] = value;
                FieldParameterInt_s element{0, index};
                EXPECT_EQ(grabber.get(colours[c].id, &element, 0, tag), 0);
                EXPECT_EQ(element.value, value);
                EXPECT_EQ(element.index, index);
            }
        }
        EXPECT_EQ(writeOne(colours[c].id, 7, 65535), 0);
        expected[c][7] = 65535;
        ASSERT_EQ(set(FG_LUT_TYPE, 0u), 0);
    }
    const auto expectUnchanged = [&] {
        for (std::size_t c = 0; c < 3; ++c) {
            EXPECT_TRUE(cache(colours[c].id) == expected[c]);
            EXPECT_TRUE(onBoard(colours[c]) == expected[c]);
        }
    };
    expectUnchanged();
    clearLog();
    for (const auto& [index, bad] :
         {std::pair{16384u, 1u}, {~0u, 1u}, {0u, 65536u}, {3u, ~0u}, {16384u, 65536u}}) {
        EXPECT_EQ(writeOne(FG_LUT_VALUE_RED, index, bad), FG_ERR_OUT_OF_RANGE) << index;
        EXPECT_EQ(lastError(), FG_ERR_OUT_OF_RANGE);
    }
    for (const std::uint32_t index : {16384u, 16385u, ~0u}) {
        FieldParameterInt_s element{4711, index};
        EXPECT_EQ(grabber.get(FG_LUT_VALUE_BLUE, &element, 0, oneElement), FG_ERR_INVALID_ARGUMENT);
        EXPECT_EQ(element.value, 4711u);
    }
    EXPECT_EQ(log(), Lines{});
    for (const Colour& colour : colours) {
        grabber.fail("Device1_Process0_" + colour.content, -4711);
        EXPECT_EQ(writeOne(colour.id, 5, 77), -4711);
        EXPECT_EQ(lastError(), -4711);
    }
    expectUnchanged();
}

TEST_F(LookupTable, RunsOfElements) {
    constexpr std::uint32_t guard = 0xabadcafe;
    for (std::size_t c = 0; c < 3; ++c) {
        Table expected = cache(colours[c].id);
        for (const int vtype : {FG_PARAM_INT32, FG_PARAM_UINT32}) {
            struct {
                std::uint32_t first, count;
            } const runs[] = {{0, size}, {0, 1}, {16383, 1}, {100, 200}, {16000, 384}, {size, 0}, {0, 0}};
            for (const auto& [first, count] : runs) {
                SCOPED_TRACE(testing::Message() << first << "+" << count);
                Table values(count + 2, guard);
                for (std::uint32_t i = 0; i < count; ++i)
                    expected[first + i] = values[i + 1] =
                        (first + 3 * i + static_cast<std::uint32_t>(vtype)) % 65536;
                clearLog();
                EXPECT_EQ(write(colours[c].id, first, count, values.data() + 1, vtype), 0);
                EXPECT_EQ(log(), Lines{sent(colours[c], first, count)});
                EXPECT_TRUE(cache(colours[c].id) == expected);
                EXPECT_TRUE(onBoard(colours[c]) == expected);
                if (first == size) continue;
                Table back(count + 2, guard);
                EXPECT_EQ(read(colours[c].id, first, count, back.data() + 1, vtype), 0);
                EXPECT_TRUE(back == values);
            }
        }
    }
    // Only the first element is looked at; the others are stored as they come.
    Table values = {1, 70000};
    EXPECT_EQ(write(FG_LUT_VALUE_GREEN, 10, 2, values.data()), 0);
    EXPECT_EQ(cache(FG_LUT_VALUE_GREEN)[11], 70000u);
    EXPECT_EQ(onBoard(colours[1])[11], 70000u);
    values = {70000, 1};
    EXPECT_EQ(write(FG_LUT_VALUE_GREEN, 10, 0, values.data()), 0); // with no element, not that either
}

TEST_F(LookupTable, RunsOfRecordsGoToTheBoardAlone) {
    FieldParameterInt_s records[] = {{9, 0}, {8, 1}};
    EXPECT_EQ(access(true, FG_LUT_VALUE_RED, 100, 2, records, oneElement), 0);
    EXPECT_EQ(logToLastWrite(), Lines{sent(colours[0], 100, 2)});
    Table expected = formula({});
    EXPECT_TRUE(cache(FG_LUT_VALUE_RED) == expected);
    expected[100] = 9;
    expected[101] = 8;
    EXPECT_TRUE(onBoard(colours[0]) == expected);
}

TEST_F(LookupTable, RunsThatAreRefused) {
    for (const Colour& colour : colours)
        fill(colour.id, ramp(5, 3));
    Table values(size + 1, 1);
    struct {
        std::uint32_t first, count;
        int vtype;
        std::uint32_t element;
        int code;
    } const writes[] = {
        {0, size + 1, 2, 1, FG_ERR_OUT_OF_RANGE},  {1, size, 2, 1, FG_ERR_OUT_OF_RANGE},
        {size, 1, 2, 1, FG_ERR_OUT_OF_RANGE},      {size + 1, 0, 2, 1, FG_ERR_OUT_OF_RANGE},
        {~0u, 1, 2, 1, FG_ERR_OUT_OF_RANGE},       {1, ~0u, 2, 1, FG_ERR_OUT_OF_RANGE},
        {0, 2, 2, 65536, FG_ERR_OUT_OF_RANGE},     {0, 2, oneElement, 65536, FG_ERR_OUT_OF_RANGE},
        {size, 1, 5, 1, FG_ERR_OUT_OF_RANGE}, // the bounds come first
        {0, 2, 5, 65536, FG_ERR_INVALID_ARGUMENT}, {0, 1, 0, 1, FG_ERR_INVALID_ARGUMENT},
        {0, 1, 3, 1, FG_ERR_INVALID_ARGUMENT},     {0, 1, 4, 1, FG_ERR_INVALID_ARGUMENT},
        {0, 1, 6, 1, FG_ERR_INVALID_ARGUMENT},     {0, 1, 22, 1, FG_ERR_INVALID_ARGUMENT},
        {0, 1, aRun, 1, FG_ERR_INVALID_ARGUMENT},  {0, 1, -1, 1, FG_ERR_INVALID_ARGUMENT}};
    clearLog();
    for (const Colour& colour : colours) {
        for (const auto& row : writes) {
            SCOPED_TRACE(testing::Message() << row.first << "+" << row.count << " of type " << row.vtype);
            values[0] = row.element;
            EXPECT_EQ(write(colour.id, row.first, row.count, values.data(), row.vtype), row.code);
            EXPECT_EQ(lastError(), row.code);
        }
        for (const int vtype : {1, 2, oneElement})
            EXPECT_EQ(write(colour.id, 0, 1, nullptr, vtype), FG_ERR_INVALID_ARGUMENT);
        for (const int vtype : {1, 2, 3, 4, 5})
            EXPECT_EQ(read<std::uint32_t>(colour.id, 0, 1, nullptr, vtype), FG_ERR_INVALID_ARGUMENT);
        const std::pair<std::uint32_t, std::uint32_t> outside[] = {{size, 0}, {0, size + 1}, {1, size},
                                                                   {~0u, 1},  {1, ~0u},      {size, 1}};
        for (const auto& [first, count] : outside)
            EXPECT_EQ(read(colour.id, first, count, values.data()), FG_ERR_INVALID_ARGUMENT) << first;
    }
    EXPECT_EQ(log(), Lines{});
    expectEverywhere(ramp(5, 3));

    // A failed write leaves the cache as it was.
    values[0] = 9;
    for (const Colour& colour : colours) {
        grabber.fail("Device1_Process0_" + colour.content, -4711);
        for (const int vtype : {1, 2, oneElement})
            EXPECT_EQ(write(colour.id, 3, 500, values.data(), vtype), -4711);
    }
    expectEverywhere(ramp(5, 3));
}

TEST_F(LookupTable, WideElementsAreReadAsPairs) {
    fill(FG_LUT_VALUE_RED, ramp(7, 5));
    constexpr std::uint64_t guard = 0xabadcafe12345678;
    const Table table = cache(FG_LUT_VALUE_RED);
    for (const int vtype : {3, 4, 5}) {
        for (const auto& [first, count] : {std::pair{0u, 8192u}, {8191u, 1u}, {100u, 50u}, {8192u, 0u}}) {
            std::vector<std::uint64_t> wide(count + 2, guard), expected(count + 2, guard);
            for (std::uint32_t i = 0; i < count; ++i)
                expected[i + 1] = table[2 * (first + i)] | std::uint64_t{table[2 * (first + i) + 1]} << 32;
            EXPECT_EQ(read(FG_LUT_VALUE_RED, first, count, wide.data() + 1, vtype), 0) << first;
            EXPECT_TRUE(wide == expected) << vtype << " " << first;
        }
        std::vector<std::uint64_t> wide(size, guard);
        for (const auto& [first, count] :
             {std::pair{8192u, 1u}, {8191u, 2u}, {0u, 8193u}, {0u, size}, {size - 1, 1u}})
            EXPECT_EQ(read(FG_LUT_VALUE_RED, first, count, wide.data(), vtype), FG_ERR_INVALID_ARGUMENT)
                << first;
        EXPECT_EQ(std::count(wide.begin(), wide.end(), guard), size);
    }
    // What no width belongs to copies nothing.
    for (const int vtype : {0, 6, 22, aRun, oneElement, -1}) {
        Table untouched(8, 4711);
        EXPECT_EQ(read(FG_LUT_VALUE_RED, 0, 8, untouched.data(), vtype), 0);
        EXPECT_EQ(untouched, Table(8, 4711));
    }
}

class LutFiles : public LookupTable {
protected:
    LutFiles() : folder(fs::temp_directory_path() / ("lut-test-" + std::to_string(getpid()))) {
        fs::create_directories(folder);
    }
    ~LutFiles() override { fs::remove_all(folder); }

    std::string file(const std::string& name) const { return (folder / name).string(); }
    std::string fileOf(const std::string& content) const {
        std::ofstream(file("given.lut")) << content;
        return file("given.lut");
    }
    static std::string contentOf(const std::string& path) {
        std::ostringstream content;
        content << std::ifstream(path).rdbuf();
        return content.str();
    }
    static std::string section(const std::string& name, const Table& table, int id) {
        std::string text = "\n\n[" + name + "]\n\nid=" + std::to_string(id) +
                           ";\nnrOfElements=" + std::to_string(table.size()) + ";\nformat=0;\nnumber=0;\n";
        for (std::size_t i = 0; i < table.size(); ++i)
            text += std::to_string(i) + "," + std::to_string(table[i]) + ";\n";
        return text;
    }
    static std::string threeTables(const Table& red, const Table& green, const Table& blue) {
        return "# Lut data file v1.1" + section("red", red, 0) + section("green", green, 1) +
               section("blue", blue, 2);
    }
    void expectCaches(const Table& red, const Table& green, const Table& blue) {
        EXPECT_TRUE(cache(FG_LUT_VALUE_RED) == red);
        EXPECT_TRUE(cache(FG_LUT_VALUE_GREEN) == green);
        EXPECT_TRUE(cache(FG_LUT_VALUE_BLUE) == blue);
        for (const Colour& colour : colours) // it is the blue one that all three are sent
            EXPECT_TRUE(onBoard(colour) == blue) << colour.content;
    }
    /** A load under the custom type. */
    int load(const std::string& path) {
        clearLog();
        return setText(FG_LUT_CUSTOM_FILE, path);
    }
    const fs::path folder;
};

TEST_F(LutFiles, WhatIsSavedIsLoaded) {
    const Table red = ramp(1, 3), green = ramp(100, 7), blue = ramp(9999, 11);
    fill(FG_LUT_VALUE_RED, red);
    fill(FG_LUT_VALUE_GREEN, green);
    fill(FG_LUT_VALUE_BLUE, blue);
    clearLog();
    EXPECT_EQ(setText(FG_LUT_SAVE_FILE, file("saved.anything")), 0);
    EXPECT_EQ(text(FG_LUT_SAVE_FILE), file("saved.anything"));
    EXPECT_TRUE(contentOf(file("saved.anything")) == threeTables(red, green, blue));
    EXPECT_EQ(log(), Lines{});

    // Under the formula a file is only remembered, even one that does not exist.
    ASSERT_EQ(set(FG_LUT_TYPE, 3u), 0);
    for (const char* name : {"missing.lut", "saved.anything"}) {
        EXPECT_EQ(load(file(name)), 0);
        EXPECT_EQ(text(FG_LUT_CUSTOM_FILE), file(name));
    }
    expectEverywhere(formula({}));
    expectAccepted(FG_LUT_TYPE, 0u, allSent);
    expectCaches(red, green, blue);
    ASSERT_EQ(set(FG_LUT_TYPE, 3u), 0);
    expectEverywhere(formula({}));
    ASSERT_EQ(set(FG_LUT_TYPE, 0u), 0);
    expectCaches(red, green, blue);

    // The empty name stands for no file, and the same name may be given again.
    EXPECT_EQ(load(""), 0);
    EXPECT_EQ(setText(FG_LUT_SAVE_FILE, ""), 0);
    EXPECT_EQ(log(), Lines{});
    EXPECT_EQ(text(FG_LUT_CUSTOM_FILE) + text(FG_LUT_SAVE_FILE), "");
    EXPECT_EQ(load(file("saved.anything")), 0);
    EXPECT_EQ(log(), allSent);
}

TEST_F(LutFiles, WhatCannotBeOpened) {
    const Table old = ramp(3, 3);
    for (const Colour& colour : colours)
        fill(colour.id, old);
    ASSERT_EQ(setText(FG_LUT_SAVE_FILE, file("good.lut")), 0);
    for (const std::string& path :
         {folder.string(), file("no/such/folder.lut"), file(std::string(5000, 'x'))}) {
        EXPECT_EQ(setText(FG_LUT_SAVE_FILE, path), FG_ERR_SAVE_CONFIG) << path.substr(0, 80);
        EXPECT_EQ(lastError(), FG_ERR_SAVE_CONFIG);
        EXPECT_EQ(text(FG_LUT_SAVE_FILE), file("good.lut"));
    }
    ASSERT_EQ(setText(FG_LUT_CUSTOM_FILE, file("missing.lut")), 0);
    expectRefused(FG_LUT_TYPE, 0u, FG_ERR_FILE_TYPE);
    EXPECT_EQ(accessOf({FG_LUT_CUSTOM_FILE}), std::vector<std::uint32_t>{1});
    ASSERT_EQ(setText(FG_LUT_CUSTOM_FILE, ""), 0);
    ASSERT_EQ(set(FG_LUT_TYPE, 0u), 0);
    ASSERT_EQ(load(file("good.lut")), 0);
    for (const std::string& path :
         {file("missing.lut"), file("no/such/folder.lut"), file(std::string(5000, 'x'))}) {
        EXPECT_EQ(load(path), FG_ERR_FILE_TYPE) << path.substr(0, 80);
        EXPECT_EQ(lastError(), FG_ERR_FILE_TYPE);
        EXPECT_EQ(text(FG_LUT_CUSTOM_FILE), file("good.lut"));
        EXPECT_EQ(log(), Lines{});
    }
    expectEverywhere(old);

    // The board's refusal comes after the cache has the file's tables.
    const std::string other = fileOf(threeTables({1}, {2}, {3}));
    grabber.fail("Device1_Process0_" + colours[2].content, -4711);
    EXPECT_EQ(load(other), -4711);
    EXPECT_EQ(text(FG_LUT_CUSTOM_FILE), file("good.lut"));
    EXPECT_EQ(log(), (Lines{allSent[0], allSent[1], allSent[2] + " = -4711"}));
    EXPECT_EQ(cache(FG_LUT_VALUE_GREEN)[0], 2u);
}

TEST_F(LutFiles, FilesThatHoldLessOrMoreThanThreeTables) {
    const Table old = ramp(3, 3), zeros(size), full = ramp(8, 9);
    ASSERT_EQ(set(FG_LUT_TYPE, 0u), 0);
    const auto with = [](Table table, const Table& start) {
        std::copy_n(start.begin(), std::min(start.size(), table.size()), table.begin());
        return table;
    };
    Table longer = ramp(5, 5);
    longer.resize(size + 100, 6);
    const struct {
        const char* what;
        std::string content;
        Table red, green, blue;
    } rows[] = {
        {"empty", "", old, old, old},
        {"no keys", "# Lut data file v1.1\n\n[red]\n\n0,5;\n1,6;\n", old, old, old},
        {"garbage", std::string("\0\1\2;=,,\n\n\xff\xfe", 12), old, old, old},
        {"three short tables", threeTables({1, 2}, {3, 4}, {5, 6}), with(old, {1, 2}), with(old, {3, 4}),
         with(old, {5, 6})},
        {"red alone", "#" + section("red", full, 0), full, zeros, zeros},
        {"longer tables", threeTables(longer, full, longer), ramp(5, 5), full, ramp(5, 5)},
        {"negative count", "nrOfElements=-1;\n[red]\n0,5;\n", with(zeros, {5}), zeros, zeros},
        {"spaces", "nrOfElements = 2;\n[red]\n0, 11;\n1, 12;\n[blue]\n0 ,1;\n0, 13;\n1,14;\n",
         with(old, {11, 12}), with(old, {0, 0}), with(old, {13, 14})},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        for (const Colour& colour : colours)
            fill(colour.id, old);
        EXPECT_EQ(load(fileOf(row.content)), 0);
        EXPECT_EQ(log(), allSent);
        expectCaches(row.red, row.green, row.blue);
    }
    // A folder can be opened, and holds nothing.
    for (const Colour& colour : colours)
        fill(colour.id, old);
    EXPECT_EQ(load(folder.string()), 0);
    expectCaches(old, old, old);
}

TEST_F(LutFiles, ManyLoadsKeepNoFileOpen) {
    ASSERT_EQ(set(FG_LUT_TYPE, 0u), 0);
    const std::string given = fileOf(threeTables({1}, {2}, {3}));
    const auto openFiles = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    const auto before = openFiles();
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(load(given), 0);
        ASSERT_EQ(load(file("missing")), FG_ERR_FILE_TYPE);
        ASSERT_EQ(setText(FG_LUT_SAVE_FILE, folder.string()), FG_ERR_SAVE_CONFIG);
    }
    EXPECT_EQ(openFiles(), before);
}

} // namespace
