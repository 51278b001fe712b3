// Lookup tables: records of elements; the cache and the data sent to the board. For files see data/settings.
#include "support/applet_fixture.h"

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

Table ramp(std::uint32_t first, std::uint32_t step) {
    Table table(size);
    for (std::uint32_t i = 0; i < size; ++i)
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
    // Only the first element is checked; the others are stored unchecked.
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

TEST_F(LookupTable, RefusedElementsAndRuns) {
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
            for (const int vtype : {2, 5, oneElement}) // the bounds are checked first
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
        for (const int unknown : {0, 6, 22, aRun, oneElement, -1}) // unknown widths copy nothing
            EXPECT_EQ(read(FG_LUT_VALUE_RED, 0, 8, untouched.data(), unknown), 0);
        EXPECT_TRUE(untouched == Wide(size, guard));
    }
}

} // namespace
