// The tree of parameter descriptions as a class: layout by raw offsets, links, guards, ownership.

#include "catalogue/Fg_ParameterInfo.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>
#include <malloc.h>
#include <new>
#include <string>
#include <tuple>
#include <vector>

namespace {

template <typename T> T at(const RegisterInfo* record, std::size_t offset) {
    T value;
    std::memcpy(&value, reinterpret_cast<const char*>(record) + offset, sizeof value);
    return value;
}

std::string textAt(const RegisterInfo* record, std::size_t offset) {
    const char* text = at<const char*>(record, offset);
    return text != nullptr ? text : "(null)";
}

/** Expected bytes of a value area, offsets 40 to 79 of the record; zero where nothing is put. */
struct Area {
    std::array<unsigned char, 40> bytes{};
    template <typename T> Area& put(std::size_t offset, T value) {
        std::memcpy(bytes.data() + offset - 40, &value, sizeof value);
        return *this;
    }
};

std::array<unsigned char, 40> areaOf(const RegisterInfo* record) {
    return at<std::array<unsigned char, 40>>(record, 40);
}

class ParameterInfoTest : public testing::Test {
protected:
    Fg_ParameterInfo tree{2};
    RegisterInfo* group = tree.addGroupInfo(0, nullptr, "Group");

    RegisterInfo* number(const char* name, RegisterInfo* parent, int port = 0) {
        return tree.addInfoUInt(parent, "Number", name, 1, 9, 2, 7, 2, 1, "pixel", 4711, port);
    }
    RegisterInfo* choice(int entries) {
        return tree.addInfoEnum(group, "Choice", "FG_CHOICE", entries, 3, 1, 1, "", 9, 0);
    }
    static std::vector<RegisterInfo*> childrenOf(const RegisterInfo* parent) {
        auto* const* children = at<RegisterInfo* const*>(parent, 48);
        return {children, children + at<std::int32_t>(parent, 40)};
    }
};

TEST_F(ParameterInfoTest, RecordKeepsPrivateCopiesAtTheirOffsets) {
    std::string label = "Width", name = "FG_WIDTH", unit = "pixel";
    RegisterInfo* inner = tree.addGroupInfo(0, group, "Inner", "INNER", 5);
    RegisterInfo* record =
        tree.addInfoUInt(inner, label.c_str(), name.c_str(), 0, 0, 0, 7, 2, 6, unit.c_str(), 4711, 0);
    label = name = unit = "changed";
    const std::pair<std::size_t, int> numbers[] = {{0, 1},  {24, 7},  {28, 2},    {32, 6}, {36, 4711},
                                                   {96, 2}, {120, 0}, {128, 216}, {132, 3}};
    for (const auto& [offset, number] : numbers)
        EXPECT_EQ(at<std::int32_t>(record, offset), number) << offset;
    const std::tuple<RegisterInfo*, std::size_t, const char*> texts[] = {
        {record, 8, "Width"}, {record, 16, "FG_WIDTH"}, {record, 104, "Inner"}, {record, 112, "pixel"},
        {inner, 16, "INNER"}, {group, 16, "(null)"},    {group, 104, "(null)"}, {group, 112, "(null)"}};
    for (const auto& [of, offset, text] : texts)
        EXPECT_EQ(textAt(of, offset), text) << offset;
    EXPECT_EQ(at<std::int32_t>(inner, 32), 5);
    EXPECT_EQ(at<std::int32_t>(tree.addGroupInfo(1, nullptr, "Other port"), 120), 1);
    RegisterInfo* bare = tree.create(0, 1, "Bare", nullptr, 1, 1, 1, 1, "");
    EXPECT_EQ(textAt(bare, 16), "(null)");
    EXPECT_EQ(textAt(bare, 112), ""); // an empty unit stays a text
}

TEST_F(ParameterInfoTest, ValueAreaOfEveryKind) {
    using u32 = std::uint32_t;
    using i32 = std::int32_t;
    using u64 = std::uint64_t;
    using i64 = std::int64_t;
    const std::uint64_t big = 0x1122334455667788;
    const std::int64_t low = -0x1122334455667788;
    struct {
        const RegisterInfo* record;
        int kind;
        Area area;
    } const rows[] = {
        {tree.addInfoUInt(group, "", "", 4, 4294967295u, 8, 1, 1, 1, "", 1, 0), 1,
         Area().put(40, u32(4)).put(44, u32(4294967295u)).put(48, u32(8))},
        {tree.addInfoInt(group, "", "", -7, 9, 2, 1, 1, 1, "", 1, 0), 11,
         Area().put(40, i32(-7)).put(44, i32(9)).put(48, i32(2))},
        {tree.addInfoUInt64(group, "", "", 3, big, 5, 1, 1, 1, "", 1, 0), 9,
         Area().put(40, u64(3)).put(48, big).put(56, u64(5))},
        {tree.addInfoInt64(group, "", "", low, 6, 7, 1, 1, 1, "", 1, 0), 12,
         Area().put(40, low).put(48, i64(6)).put(56, i64(7))},
        {tree.addInfoDouble(group, "", "", 0.512, 2097.144, 0.008, 1, 1, 1, "", 1, 0), 6,
         Area().put(40, 0.512).put(48, 2097.144).put(56, 0.008)},
        {tree.addInfoUIntField(group, "", "", 77, 4, 4294967295u, 8, 1, 1, 1, "", 1, 0), 7,
         Area().put(40, u32(4)).put(44, u32(4294967295u)).put(48, i32(77)).put(56, u32(4))},
        {tree.addInfoIntField(group, "", "", 77, -4, 5, 8, 1, 1, 1, "", 1, 0), 13,
         Area().put(40, i32(-4)).put(44, i32(5)).put(48, i32(77)).put(56, i32(-4))},
        {tree.addInfoUInt64Field(group, "", "", 77, 3, big, 8, 1, 1, 1, "", 1, 0), 10,
         Area().put(40, u64(3)).put(48, big).put(56, i32(77)).put(64, u64(3))},
        {tree.addInfoInt64Field(group, "", "", 77, low, 6, 8, 1, 1, 1, "", 1, 0), 14,
         Area().put(40, low).put(48, i64(6)).put(56, i32(77)).put(64, low)},
        {tree.addInfoDoubleField(group, "", "", 77, -0.5, 1.5, 8.0, 1, 1, 1, "", 1, 0), 8,
         Area().put(40, -0.5).put(48, 1.5).put(56, i32(77)).put(64, -0.5)},
        {tree.addInfoString(group, "", "", nullptr, 1, 1, 1, "", 1, 0), 5, Area()},
        {tree.addGroupInfo(0, group, ""), 0, Area()},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(at<std::int32_t>(row.record, 0), row.kind);
        EXPECT_EQ(areaOf(row.record), row.area.bytes) << "kind " << row.kind;
    }
    EXPECT_EQ(textAt(tree.addInfoString(group, "", "", "*.lut", 1, 1, 1, "", 1, 0), 48), "*.lut");
}

TEST_F(ParameterInfoTest, EnumerationEntriesAreReplacedInPlace) {
    RegisterInfo* record = choice(2);
    EXPECT_EQ(at<std::int32_t>(record, 0), 3);
    EXPECT_EQ(at<std::int32_t>(record, 40), 2);
    auto* labels = at<char**>(record, 48);
    auto* values = at<std::int32_t*>(record, 56);
    auto* symbols = at<char**>(record, 72);
    for (const std::size_t texts : {48u, 72u, 192u, 200u, 208u})
        EXPECT_EQ(at<char**>(record, texts)[1], nullptr);

    EXPECT_EQ(tree.addEnumNameValue(record, 1, "Red", -5, "FG_RED"), 0);
    EXPECT_EQ(tree.addEnumNameValue(record, 1, "Green", 6, nullptr), 0);
    EXPECT_STREQ(labels[1], "Green");
    EXPECT_EQ(values[1], 6);
    EXPECT_EQ(symbols[1], nullptr);
    EXPECT_EQ(labels[0], nullptr);

    using Setter = void (Fg_ParameterInfo::*)(RegisterInfo*, int, const char*);
    const std::pair<std::size_t, Setter> texts[] = {{192, &Fg_ParameterInfo::setEnumEntryDescription},
                                                    {200, &Fg_ParameterInfo::setEnumEntryToolTip},
                                                    {208, &Fg_ParameterInfo::setEnumEntryGenICamName}};
    for (const auto& [offset, set] : texts) {
        auto* entries = at<char**>(record, offset);
        (tree.*set)(record, 0, "one");
        (tree.*set)(record, 0, "two");
        (tree.*set)(record, 1, "other");
        EXPECT_STREQ(entries[0], "two");
        (tree.*set)(record, 1, "");
        EXPECT_EQ(entries[1], nullptr);
        for (const int outside : {-1, 2, std::numeric_limits<int>::max()})
            (tree.*set)(record, outside, "lost");
    }

    for (const int outside : {-1, 2, std::numeric_limits<int>::max()})
        EXPECT_EQ(tree.addEnumNameValue(record, outside, "x", 1, "x"), -500);
    for (RegisterInfo* none : {choice(0), choice(-3), group, static_cast<RegisterInfo*>(nullptr)})
        EXPECT_EQ(tree.addEnumNameValue(none, 0, "x", 1, "x"), -500);
}

TEST_F(ParameterInfoTest, ChildrenAreNumberedAndOnlyGroupsHaveAny) {
    RegisterInfo* first = number("FG_A", group);
    RegisterInfo* inner = tree.addGroupInfo(0, group, "Inner");
    RegisterInfo* deep = number("FG_C", inner);
    EXPECT_EQ(childrenOf(group), (std::vector{first, inner}));
    EXPECT_EQ(at<std::int32_t>(first, 4), 0);
    EXPECT_EQ(at<std::int32_t>(inner, 4), 1);
    EXPECT_EQ(at<std::int32_t>(group, 56), 2);
    EXPECT_EQ(at<std::int32_t>(deep, 96), 2);
    EXPECT_EQ(at<RegisterInfo*>(inner, 80), nullptr); // children are in no chain

    RegisterInfo* astray = number("FG_D", first); // below a number: in no tree, still owned
    ASSERT_NE(astray, nullptr);
    EXPECT_EQ(areaOf(first), Area().put(40, 1).put(44, 9).put(48, 2).bytes);
    EXPECT_EQ(at<std::int32_t>(astray, 96), 0);
    EXPECT_EQ(textAt(astray, 104), "(null)");
    tree.add(astray, inner);
    std::vector expected{deep, astray};
    EXPECT_EQ(childrenOf(inner), expected);
    while (expected.size() < 100)
        expected.push_back(number("FG_E", inner));
    EXPECT_EQ(childrenOf(inner), expected); // though the array grew several times
}

TEST_F(ParameterInfoTest, TopLevelChainOfEachPort) {
    RegisterInfo* second = tree.addGroupInfo(0, nullptr, "Second");
    RegisterInfo* third = number("FG_A", group);
    tree.add(third, 0); // a child that moves up loses its place below
    EXPECT_EQ(at<std::int32_t>(third, 96), 0);
    EXPECT_EQ(textAt(third, 104), "(null)");

    EXPECT_EQ(tree.getRegisterInfo(0), group);
    RegisterInfo* previous = nullptr;
    for (RegisterInfo* each : {group, second, third, static_cast<RegisterInfo*>(nullptr)}) {
        EXPECT_EQ(tree.getNextRegisterInfo(previous, 0), each);
        if (each != nullptr) {
            EXPECT_EQ(at<RegisterInfo*>(each, 88), previous);
        }
        previous = each;
    }
    EXPECT_EQ(tree.getRegisterInfo(1), nullptr);
    for (const int outside : {2, -1}) {
        EXPECT_EQ(tree.getRegisterInfo(outside), nullptr);
        EXPECT_EQ(tree.getNextRegisterInfo(group, outside), nullptr);
    }
}

TEST_F(ParameterInfoTest, ClosedAndUnknownPortsTakeNothing) {
    RegisterInfo* other = tree.addGroupInfo(1, nullptr, "Other");
    tree.finalize(1);
    for (const auto& [parent, port] : {std::pair{other, 1}, {group, 2}, {group, -1}}) {
        EXPECT_EQ(tree.addGroupInfo(port, parent, "G"), nullptr);
        EXPECT_EQ(tree.addGroupInfo(port, nullptr, "G", "G", 1), nullptr);
        EXPECT_EQ(tree.addInfoEnum(parent, "", "", 1, 1, 1, 1, "", 1, port), nullptr);
        EXPECT_EQ(number("FG_A", parent, port), nullptr);
        EXPECT_EQ(tree.addInfoString(parent, "", "", "", 1, 1, 1, "", 1, port), nullptr);
        EXPECT_EQ(tree.addInfoDoubleField(parent, "", "", 1, 1, 1, 1, 1, 1, 1, "", 1, port), nullptr);
    }
    EXPECT_EQ(number("FG_A", nullptr), nullptr);
    EXPECT_EQ(at<std::int32_t>(other, 40), 0);
    EXPECT_NE(number("FG_A", group), nullptr); // the open port stays open
    EXPECT_EQ(tree.getRegisterInfo(1), other); // the closed one stays readable
    other->access = 7;

    tree.destroy(1);
    EXPECT_NE(tree.getRegisterInfo(1), nullptr); // the root is left to init
    tree.init(1);                                // opens it again, empty
    EXPECT_EQ(tree.getRegisterInfo(1), nullptr);
    EXPECT_NE(tree.addGroupInfo(1, nullptr, "Fresh"), nullptr);
    for (const int outside : {2, -1}) {
        tree.init(outside);
        tree.destroy(outside);
        tree.finalize(outside);
    }
    EXPECT_EQ(tree.getRegisterInfo(0), group);
}

TEST_F(ParameterInfoTest, TextsAndMarksOfARecord) {
    using Setter = void (Fg_ParameterInfo::*)(RegisterInfo*, const char*);
    const std::pair<std::size_t, Setter> texts[] = {{136, &Fg_ParameterInfo::setDescription},
                                                    {144, &Fg_ParameterInfo::setToolTip},
                                                    {152, &Fg_ParameterInfo::setGenICamName}};
    RegisterInfo* record = number("FG_A", group);
    for (const auto& [offset, set] : texts) {
        EXPECT_EQ(textAt(record, offset), "(null)");
        (tree.*set)(record, "one");
        (tree.*set)(record, at<const char*>(record, offset)); // copied before it is replaced
        EXPECT_EQ(textAt(record, offset), "one");
        (tree.*set)(record, "");
        EXPECT_EQ(textAt(record, offset), "(null)");
        (tree.*set)(record, "two");
        (tree.*set)(record, nullptr);
        EXPECT_EQ(textAt(record, offset), "(null)");
        (tree.*set)(record, "left to the tree");
        (tree.*set)(nullptr, "nobody");
    }
    tree.setGenICamVisibility(record, -2);
    tree.setGenICamStreamable(record, true);
    tree.setGenICamType(record, 5);
    EXPECT_EQ(at<std::int32_t>(record, 160), -2);
    EXPECT_EQ(at<std::int32_t>(record, 164), 1); // the reserved bytes behind it stay 0
    EXPECT_EQ(at<std::int32_t>(record, 184), 5);
}

TEST_F(ParameterInfoTest, InvalidatingNamesGrowOnlyBeyondAFullArray) {
    RegisterInfo* record = number("FG_A", group);
    const auto count = [&] { return at<std::uint32_t>(record, 176); };
    const auto capacity = [&] { return at<std::uint32_t>(record, 180); };
    tree.addInvalidatingName(record, nullptr);
    tree.addInvalidatingName(record, "");
    EXPECT_EQ(count(), 0u);
    EXPECT_EQ(at<char**>(record, 168), nullptr);

    // A count equal to the capacity does not make it grow, a capacity below the count doubles it.
    std::vector<std::uint32_t> capacities;
    for (int i = 1; i <= 10; ++i) {
        tree.addInvalidatingName(record, ("N" + std::to_string(i)).c_str());
        capacities.push_back(capacity());
    }
    EXPECT_EQ(capacities, (std::vector<std::uint32_t>{0, 1, 2, 4, 4, 8, 8, 8, 8, 16}));
    EXPECT_EQ(count(), 10u);
    for (std::uint32_t i = 0; i < 10; ++i)
        EXPECT_EQ(at<char**>(record, 168)[i], "N" + std::to_string(i + 1));

    tree.setInvalidatingNameCapacity(record, 3); // lower: ignored
    EXPECT_EQ(capacity(), 16u);
    tree.setInvalidatingNameCapacity(record, 40);
    EXPECT_EQ(capacity(), 40u);
    EXPECT_EQ(count(), 10u);
    EXPECT_STREQ(at<char**>(record, 168)[9], "N10");
    EXPECT_EQ(at<char**>(record, 168)[39], nullptr);
}

TEST(ParameterInfo, TakesAnyNumberOfPorts) {
    EXPECT_THROW(Fg_ParameterInfo{-1}, std::bad_array_new_length);
    EXPECT_THROW(Fg_ParameterInfo{std::numeric_limits<int>::min()}, std::bad_array_new_length);
    Fg_ParameterInfo none{0};
    EXPECT_EQ(none.getRegisterInfo(0), nullptr);
    EXPECT_EQ(none.addGroupInfo(0, nullptr, "G"), nullptr);
}

TEST(ParameterInfo, NothingIsLeftBehind) {
    const auto buildAndDrop = [] {
        Fg_ParameterInfo tree{1};
        RegisterInfo* group = tree.addGroupInfo(0, nullptr, "Group", "G", 1);
        RegisterInfo* text = tree.addInfoString(group, "Text", "FG_T", "value", 1, 1, 1, "unit", 1, 0);
        RegisterInfo* choice = tree.addInfoEnum(text, "Choice", "FG_E", 1, 1, 1, 1, "", 2, 0);
        tree.addEnumNameValue(choice, 0, "Label", 1, "SYMBOL");
        tree.setEnumEntryDescription(choice, 0, "description");
        tree.setEnumEntryToolTip(choice, 0, "tip");
        tree.setEnumEntryGenICamName(choice, 0, "Name");
        tree.setDescription(text, "description");
        tree.setDescription(text, "another one");
        tree.setToolTip(text, "tip");
        tree.setGenICamName(text, "Name");
        tree.add(text, tree.addGroupInfo(0, group, "Another parent"));
        tree.addInvalidatingName(text, "FG_OTHER");
        tree.addInvalidatingName(text, "FG_ANOTHER");
        tree.init(0);
        tree.addInfoUInt(tree.addGroupInfo(0, nullptr, "G"), "N", "FG_N", 0, 0, 0, 1, 1, 1, "", 1, 0);
    };
    buildAndDrop();
    const auto before = mallinfo2().uordblks;
    for (int i = 0; i < 1000; ++i)
        buildAndDrop();
    EXPECT_LT(mallinfo2().uordblks, before + 1000 * 2); // one lost text would be 24 bytes each time
}

} // namespace
