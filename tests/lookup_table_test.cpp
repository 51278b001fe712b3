// Lookup table: element records and files; what the cache holds against what the board was sent.
#include "support/applet_fixture.h"
#include "support/temporary_folder.h"

#include <algorithm>
#include <array>

namespace {

using namespace support;

using Table = std::vector<std::uint32_t>;
using Tables = std::array<Table, 3>; // red, green, blue

constexpr std::uint32_t size = 16384;
constexpr int oneElement = FG_PARAM_FIELD_INT, aRun = FG_PARAM_FIELD_ACCESS;
constexpr int ids[] = {FG_LUT_VALUE_RED, FG_LUT_VALUE_GREEN, FG_LUT_VALUE_BLUE};

std::string content(std::size_t colour) {
    return std::string("Device1_Process0_LookupTable_") + "RGB"[colour] + "_LUTcontent";
}
std::string sent(std::size_t colour, std::uint32_t first, std::uint32_t count) {
    return "set " + content(colour) + " field " + std::to_string(first) + "+" + std::to_string(count);
}
const Lines allSent = {sent(0, 0, size), sent(1, 0, size), sent(2, 0, size)};

Table ramp(std::uint32_t first, std::uint32_t step, std::uint32_t count = size) {
    Table table(count);
    for (std::uint32_t i = 0; i < count; ++i)
        table[i] = (first + i * step) % 65536;
    return table;
}

class LookupTable : public ParameterTest {
protected:
    int read(int id, std::uint32_t first, std::uint32_t count, void* values, int vtype = 2) {
        FieldParameterAccess record{vtype, first, count, values};
        return grabber.get(id, &record, 0, aRun);
    }
    int write(int id, std::uint32_t first, std::uint32_t count, void* values, int vtype = 2) {
        return grabber.set(id, FieldParameterAccess{vtype, first, count, values}, 0, aRun);
    }
    void fill(Tables tables) {
        for (std::size_t c = 0; c < 3; ++c)
            EXPECT_EQ(write(ids[c], 0, size, tables[c].data()), FG_OK);
        clearLog();
    }
    void expectTables(const Tables& caches, const Tables& onBoard) {
        Table table(size);
        for (std::size_t c = 0; c < 3; ++c) {
            EXPECT_EQ(read(ids[c], 0, size, table.data()), FG_OK);
            EXPECT_TRUE(table == caches[c]) << "cache of " << content(c);
            EXPECT_EQ(board.peek_field(grabber.device, content(c).c_str(), 0, size, table.data()), VBOARD_OK);
            EXPECT_TRUE(table == onBoard[c]) << content(c);
        }
    }
    void expectTables(const Tables& everywhere) { expectTables(everywhere, everywhere); }
};

TEST_F(LookupTable, ElementsAndRuns) {
    constexpr std::uint32_t guard = 0xabadcafe;
    Tables expected = {ramp(1, 1), ramp(2, 3), ramp(5, 7)};
    fill(expected);
    std::uint32_t value = 65535 - 36; // the last one of all is the largest
    for (std::size_t c = 0; c < 3; ++c) {
        for (const int tag : {oneElement, 2, 5, 0}) // every tag but that of a run
            for (const std::uint32_t index : {0u, 16383u, value % size}) {
                clearLog();
                EXPECT_EQ(grabber.set(ids[c], FieldParameterInt_s{++value, index}, 0, tag), 0);
                EXPECT_EQ(log(), Lines{sent(c, index, 1)});
                expected[c][index] = value;
                FieldParameterInt_s element{0, index};
                EXPECT_EQ(grabber.get(ids[c], &element, 0, tag), 0);
                EXPECT_EQ(element.value, value);
            }
        for (const auto& [first, count, vtype] :
             {std::tuple{0u, size, 1}, {16383u, 1u, 1}, {100u, 200u, 2}, {size, 0u, 2}}) {
            Table values(count + 2, guard), back = values;
            for (std::uint32_t i = 0; i < count; ++i)
                expected[c][first + i] = values[i + 1] = (first + 3 * i) % 65536;
            clearLog();
            EXPECT_EQ(write(ids[c], first, count, &values[1], vtype), 0);
            EXPECT_EQ(log(), Lines{sent(c, first, count)});
            if (first == size) continue;
            EXPECT_EQ(read(ids[c], first, count, &back[1], vtype), 0);
            EXPECT_TRUE(back == values);
        }
        setAll({{FG_LUT_TYPE, 0}}); // which does not matter
    }
    // Only the first element is looked at; the others are stored as they come.
    Table values = {1, 70000};
    EXPECT_EQ(write(FG_LUT_VALUE_GREEN, 10, 2, values.data()), 0);
    EXPECT_EQ(write(FG_LUT_VALUE_GREEN, 10, 0, &values[1]), 0); // with no element, not that either
    std::copy_n(values.begin(), 2, &expected[1][10]);
    // Records of single elements reach the board alone.
    Tables onBoard = expected;
    onBoard[0][100] = 9, onBoard[0][101] = 8;
    FieldParameterInt_s records[] = {{9, 0}, {8, 1}};
    EXPECT_EQ(write(FG_LUT_VALUE_RED, 100, 2, records, oneElement), 0);
    expectTables(expected, onBoard);
}

TEST_F(LookupTable, WhatIsRefused) {
    const Tables old = {ramp(5, 3), ramp(5, 3), ramp(5, 3)};
    fill(old);
    Table small(size + 1, 1), large(2, 65536);
    for (const int id : ids) {
        for (FieldParameterInt_s bad : {FieldParameterInt_s{1, size}, {1, ~0u}, {65536, 0}, {65536, size}}) {
            EXPECT_EQ(grabber.set(id, bad, 0, oneElement), FG_ERR_OUT_OF_RANGE) << bad.index;
            const std::uint32_t untouched = bad.value;
            if (bad.index >= size) {
                EXPECT_EQ(grabber.get(id, &bad, 0, oneElement), FG_ERR_INVALID_ARGUMENT);
                EXPECT_EQ(bad.value, untouched);
            }
        }
        for (const auto& [first, count] :
             {std::pair{0u, size + 1}, {1u, size}, {size, 1u}, {~0u, 1u}, {1u, ~0u}, {size + 1, 0u}}) {
            for (const int vtype : {2, 5, oneElement}) // the bounds come first
                EXPECT_EQ(write(id, first, count, small.data(), vtype), FG_ERR_OUT_OF_RANGE) << first;
            EXPECT_EQ(read(id, first, count, small.data()), FG_ERR_INVALID_ARGUMENT) << first;
        }
        EXPECT_EQ(read(id, size, 0, small.data()), FG_ERR_INVALID_ARGUMENT);
        for (const std::uint32_t count : {1u, 2u})
            for (const int vtype : {2, oneElement})
                EXPECT_EQ(write(id, 0, count, large.data(), vtype), FG_ERR_OUT_OF_RANGE);
        for (const int vtype : {-1, 0, 3, 4, 5, 6, 22, aRun})
            EXPECT_EQ(write(id, 0, 2, large.data(), vtype), FG_ERR_INVALID_ARGUMENT) << vtype;
        for (const int vtype : {1, 2, oneElement})
            EXPECT_EQ(write(id, 0, 1, nullptr, vtype), FG_ERR_INVALID_ARGUMENT);
        for (const int vtype : {1, 2, 3, 4, 5})
            EXPECT_EQ(read(id, 0, 1, nullptr, vtype), FG_ERR_INVALID_ARGUMENT);
    }
    EXPECT_EQ(log(), Lines{});
    expectTables(old);
}

TEST_F(LookupTable, WideElementsAreReadAsPairs) {
    using Wide = std::vector<std::uint64_t>;
    constexpr std::uint64_t guard = 0xabadcafe12345678;
    const Table table = ramp(7, 5);
    fill({table, table, table});
    for (const int vtype : {3, 4, 5}) {
        for (const auto& [first, count] : {std::pair{0u, 8192u}, {8191u, 1u}, {100u, 50u}, {8192u, 0u}}) {
            Wide wide(count + 2, guard), expected = wide;
            for (std::uint32_t i = 0; i < count; ++i)
                expected[i + 1] = table[2 * (first + i)] | std::uint64_t{table[2 * (first + i) + 1]} << 32;
            EXPECT_EQ(read(FG_LUT_VALUE_RED, first, count, &wide[1], vtype), 0) << first;
            EXPECT_TRUE(wide == expected) << vtype << " " << first;
        }
        Wide untouched(size, guard);
        for (const auto& [first, count] : {std::pair{8192u, 1u}, {8191u, 2u}, {0u, 8193u}, {size - 1, 1u}})
            EXPECT_EQ(read(FG_LUT_VALUE_RED, first, count, untouched.data(), vtype), FG_ERR_INVALID_ARGUMENT);
        for (const int unknown : {0, 6, 22, aRun, oneElement, -1}) // what no width belongs to copies nothing
            EXPECT_EQ(read(FG_LUT_VALUE_RED, 0, 8, untouched.data(), unknown), 0);
        EXPECT_TRUE(untouched == Wide(size, guard));
    }
}

class LutFiles : public LookupTable {
protected:
    static std::string section(const char* name, const Table& table) {
        const char id = name[0] == 'r' ? '0' : name[0] == 'g' ? '1' : '2';
        std::string text = std::string("\n\n[") + name + "]\n\nid=" + id +
                           ";\nnrOfElements=" + std::to_string(table.size()) + ";\nformat=0;\nnumber=0;\n";
        for (std::size_t i = 0; i < table.size(); ++i)
            text += std::to_string(i) + "," + std::to_string(table[i]) + ";\n";
        return text;
    }
    static std::string threeTables(const Tables& tables) {
        return "# Lut data file v1.1" + section("red", tables[0]) + section("green", tables[1]) +
               section("blue", tables[2]);
    }
    /** All three of the board's tables are sent the blue one. */
    void expectLoaded(const Tables& tables) { expectTables(tables, {tables[2], tables[2], tables[2]}); }
    int load(const std::string& content) {
        writeFile(given, content);
        clearLog();
        return setText(FG_LUT_CUSTOM_FILE, given);
    }
    const TemporaryFolder folder;
    const std::string given = folder / "given.lut", saved = folder / "saved.anything";
};

TEST_F(LutFiles, WhatIsSavedIsLoaded) {
    Table formula(size);
    EXPECT_EQ(read(FG_LUT_VALUE_RED, 0, size, formula.data()), FG_OK);
    const Tables tables = {ramp(1, 3), ramp(100, 7), ramp(9999, 11)};
    fill(tables);
    EXPECT_EQ(setText(FG_LUT_SAVE_FILE, saved), 0);
    EXPECT_EQ(text(FG_LUT_SAVE_FILE), saved);
    EXPECT_TRUE(fileBytes(saved) == threeTables(tables));
    // Under the formula a file is only remembered, even one that does not exist.
    setAll({{FG_LUT_TYPE, 3}});
    for (const std::string& name : {folder / "missing.lut", saved})
        EXPECT_EQ(setText(FG_LUT_CUSTOM_FILE, name), 0);
    EXPECT_EQ(text(FG_LUT_CUSTOM_FILE), saved);
    expectTables({formula, formula, formula});
    clearLog();
    setAll({{FG_LUT_TYPE, 0}});
    EXPECT_EQ(log(), allSent);
    expectLoaded(tables);
    // The empty name stands for no file.
    clearLog();
    EXPECT_EQ(setText(FG_LUT_CUSTOM_FILE, "") + setText(FG_LUT_SAVE_FILE, ""), 0);
    EXPECT_EQ(log(), Lines{});
    EXPECT_EQ(text(FG_LUT_CUSTOM_FILE) + text(FG_LUT_SAVE_FILE), "");
}

TEST_F(LutFiles, WhatCannotBeOpenedOrWritten) {
    const Tables old = {ramp(3, 3), ramp(3, 3), ramp(3, 3)};
    fill(old);
    const std::string missing = folder / "missing.lut";
    ASSERT_EQ(setText(FG_LUT_CUSTOM_FILE, missing), 0);
    EXPECT_EQ(set(FG_LUT_TYPE, 0u), FG_ERR_FILE_TYPE);
    EXPECT_EQ(record(FG_LUT_CUSTOM_FILE)->access, 1u);
    ASSERT_EQ(setText(FG_LUT_CUSTOM_FILE, ""), 0);
    setAll({{FG_LUT_TYPE, 0}});
    ASSERT_EQ(load(threeTables(old)), 0);
    clearLog();
    EXPECT_EQ(setText(FG_LUT_CUSTOM_FILE, missing), FG_ERR_FILE_TYPE);
    EXPECT_EQ(text(FG_LUT_CUSTOM_FILE), given);
    EXPECT_EQ(log(), Lines{});
    expectTables(old);
    // The board's refusal comes after the cache has the file's tables.
    grabber.fail(content(2), -4711);
    EXPECT_EQ(load(threeTables({Table{1}, Table{2}, Table{3}})), -4711);
    EXPECT_EQ(log(), (Lines{allSent[0], allSent[1], allSent[2] + " = -4711"}));
    std::uint32_t first = 0;
    EXPECT_EQ(read(FG_LUT_VALUE_GREEN, 0, 1, &first), 0);
    EXPECT_EQ(first, 2u);
}

TEST_F(LutFiles, FilesThatHoldLessOrMoreThanThreeTables) {
    const Table old = ramp(3, 3), zeros(size), full = ramp(8, 9), longer = ramp(5, 5, size + 100);
    setAll({{FG_LUT_TYPE, 0}});
    const auto with = [](Table table, const Table& start) {
        std::copy(start.begin(), start.end(), table.begin());
        return table;
    };
    const std::pair<std::string, Tables> rows[] = {
        {"", {old, old, old}},
        {threeTables({Table{1, 2}, Table{3, 4}, Table{5, 6}}),
         {with(old, {1, 2}), with(old, {3, 4}), with(old, {5, 6})}},
        {section("red", full), {full, zeros, zeros}},
        {threeTables({longer, full, longer}), {ramp(5, 5), full, ramp(5, 5)}},
        {"nrOfElements=-1;\n[red]\n0,5;\n", {with(zeros, {5}), zeros, zeros}}};
    for (const auto& [content, tables] : rows) {
        SCOPED_TRACE(content.substr(0, 80));
        fill({old, old, old});
        EXPECT_EQ(load(content), 0);
        EXPECT_EQ(log(), allSent);
        expectLoaded(tables);
    }
}

} // namespace
