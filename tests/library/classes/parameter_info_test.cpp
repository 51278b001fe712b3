// The class for the tree of parameter descriptions: cases that the applet's own tree does not have. That tree is
// compared as a whole. The address sanitizer checks for leaks.
#include "catalogue/Fg_ParameterInfo.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <vector>

namespace {

/** A text of a record, which may be null. */
std::string textOf(const char* text) { return text != nullptr ? text : "(null)"; }

class ParameterInfoTest : public testing::Test {
protected:
    RegisterInfo* number(const char* name, RegisterInfo* parent, int port = 0) {
        return tree.addInfoUInt(parent, "Number", name, 1, 9, 2, 7, 2, 1, "pixel", 4711, port);
    }
    RegisterInfo* choice(int entries) {
        return tree.addInfoEnum(group, "Choice", "FG_CHOICE", entries, 3, 1, 1, "", 9, 0);
    }
    static std::vector<RegisterInfo*> childrenOf(const RegisterInfo* parent) {
        const auto& of = parent->value.group;
        return {of.children, of.children + of.childCount};
    }
    /** Checks that the value area has the fields of `expected` and is zero elsewhere. */
    template <typename Area>
    void expectArea(const RegisterInfo* record, int kind, Area RegisterInfoValue::*area,
                    const Area& expected) {
        RegisterInfoValue whole;
        std::memset(&whole, 0, sizeof whole);
        whole.*area = expected;
        EXPECT_EQ(record->kind, kind);
        EXPECT_EQ(std::memcmp(&record->value, &whole, sizeof whole), 0) << "kind " << kind;
    }
    Fg_ParameterInfo tree{2};
    RegisterInfo* group = tree.addGroupInfo(0, nullptr, "Group");
};

TEST_F(ParameterInfoTest, CopiesTextsAndStoresEveryKindOfArray) {
    std::string label = "Width", name = "FG_WIDTH", unit = "pixel";
    RegisterInfo* inner = tree.addGroupInfo(0, group, "Inner", "INNER", 5);
    RegisterInfo* record =
        tree.addInfoUInt(inner, label.c_str(), name.c_str(), 0, 0, 0, 7, 2, 6, unit.c_str(), 4711, 0);
    label = name = unit = "changed";
    for (const auto& [text, expected] : {std::pair{record->displayName, "Width"},
                                         {record->name, "FG_WIDTH"},
                                         {record->unit, "pixel"},
                                         {record->parentName, "Inner"},
                                         {inner->name, "INNER"},
                                         {group->name, "(null)"}})
        EXPECT_EQ(textOf(text), expected);
    EXPECT_EQ(record->published, 6);
    EXPECT_EQ(inner->published, 5);
    EXPECT_EQ(tree.addGroupInfo(1, nullptr, "Other port")->port, 1);
    RegisterInfo* bare = tree.create(0, 1, nullptr, nullptr, 1, 1, 1, 1, "");
    EXPECT_EQ(textOf(bare->displayName) + textOf(bare->name) + textOf(bare->unit), "(null)");
    using Value = RegisterInfoValue;
    const std::int64_t low = -0x1122334455667788;
    const std::uint64_t big = 0x1122334455667788;
    expectArea(tree.addInfoUInt64(group, "", "", 3, big, 5, 1, 1, 1, "", 1, 0), REGISTER_KIND_UINT64,
               &Value::u64, {3, big, 5, 0});
    expectArea(tree.addInfoIntField(group, "", "", 77, -4, 5, 8, 1, 1, 1, "", 1, 0), REGISTER_KIND_INT_FIELD,
               &Value::i32Field, {-4, 5, 77, 0, -4});
    expectArea(tree.addInfoUInt64Field(group, "", "", 77, 3, big, 8, 1, 1, 1, "", 1, 0),
               REGISTER_KIND_UINT64_FIELD, &Value::u64Field, {3, big, 77, 0, 3});
    expectArea(tree.addInfoInt64Field(group, "", "", 77, low, 6, 8, 1, 1, 1, "", 1, 0),
               REGISTER_KIND_INT64_FIELD, &Value::i64Field, {low, 6, 77, 0, low});
    expectArea(tree.addInfoDoubleField(group, "", "", 77, -0.5, 1.5, 8.0, 1, 1, 1, "", 1, 0),
               REGISTER_KIND_DOUBLE_FIELD, &Value::f64Field, {-0.5, 1.5, 77, 0, -0.5});
}

TEST_F(ParameterInfoTest, EntriesAreReplacedInPlaceAndOnlyInsideTheEnumeration) {
    RegisterInfo* record = choice(2);
    const auto& entries = record->value.enumeration;
    EXPECT_EQ(tree.addEnumNameValue(record, 1, "Red", -5, "FG_RED"), 0);
    EXPECT_EQ(tree.addEnumNameValue(record, 1, "Green", 6, nullptr), 0);
    EXPECT_STREQ(entries.labels[1], "Green");
    EXPECT_EQ(entries.values[1], 6);
    EXPECT_EQ(entries.symbolicNames[1], nullptr);
    EXPECT_EQ(entries.labels[0], nullptr);
    using Setter = void (Fg_ParameterInfo::*)(RegisterInfo*, int, const char*);
    const std::pair<char**, Setter> texts[] = {
        {record->enumEntryDescriptions, &Fg_ParameterInfo::setEnumEntryDescription},
        {record->enumEntryToolTips, &Fg_ParameterInfo::setEnumEntryToolTip},
        {record->enumEntryGenICamNames, &Fg_ParameterInfo::setEnumEntryGenICamName}};
    for (const auto& [of, set] : texts) {
        for (const int outside : {-1, 2, std::numeric_limits<int>::max()})
            (tree.*set)(record, outside, "lost");
        (tree.*set)(record, 0, "one");
        (tree.*set)(record, 0, "two");
        (tree.*set)(record, 1, "other");
        EXPECT_STREQ(of[0], "two");
        (tree.*set)(record, 1, "");
        EXPECT_EQ(of[1], nullptr);
    }
    for (const int outside : {-1, 2, std::numeric_limits<int>::max()})
        EXPECT_EQ(tree.addEnumNameValue(record, outside, "x", 1, "x"), -500);
    for (RegisterInfo* none : {choice(0), choice(-3), group, static_cast<RegisterInfo*>(nullptr)})
        EXPECT_EQ(tree.addEnumNameValue(none, 0, "x", 1, "x"), -500);
}

TEST_F(ParameterInfoTest, OnlyGroupsHaveChildrenAndChildrenMayMoveUp) {
    RegisterInfo* astray =
        number("FG_D", number("FG_A", group)); // below a number: in no tree, but still owned
    ASSERT_NE(astray, nullptr);
    EXPECT_EQ(textOf(astray->parentName), "(null)");
    RegisterInfo* inner = tree.addGroupInfo(0, group, "Inner");
    std::vector expected{astray};
    tree.add(astray, inner);
    while (expected.size() < 100)
        expected.push_back(number("FG_E", inner));
    EXPECT_EQ(childrenOf(inner), expected); // although the array grew several times
    tree.add(astray, 0);
    EXPECT_EQ(astray->depth, 0);
    EXPECT_EQ(textOf(astray->parentName), "(null)");
    EXPECT_EQ(tree.getNextRegisterInfo(nullptr, 0), group);
    EXPECT_EQ(tree.getNextRegisterInfo(group, 0), astray);
    EXPECT_EQ(astray->previous, group);
    EXPECT_EQ(tree.getNextRegisterInfo(astray, 0), nullptr);
}

TEST_F(ParameterInfoTest, ClosedAndUnknownPortsAcceptNothing) {
    RegisterInfo* other = tree.addGroupInfo(1, nullptr, "Other");
    tree.finalize(1);
    for (const auto& [parent, port] : {std::pair{other, 1}, {group, 2}, {group, -1}}) {
        EXPECT_EQ(tree.addGroupInfo(port, parent, "G"), nullptr);
        EXPECT_EQ(tree.addInfoEnum(parent, "", "", 1, 1, 1, 1, "", 1, port), nullptr);
        EXPECT_EQ(number("FG_A", parent, port), nullptr);
        EXPECT_EQ(tree.addInfoString(parent, "", "", "", 1, 1, 1, "", 1, port), nullptr);
        EXPECT_EQ(tree.addInfoDoubleField(parent, "", "", 1, 1, 1, 1, 1, 1, 1, "", 1, port), nullptr);
    }
    EXPECT_EQ(number("FG_A", nullptr), nullptr);
    EXPECT_TRUE(childrenOf(other).empty());
    EXPECT_NE(number("FG_A", group), nullptr); // the open port stays open
    tree.destroy(1);
    EXPECT_EQ(tree.getRegisterInfo(1), other); // init owns the root
    tree.init(1);                              // opens it again, empty
    EXPECT_EQ(tree.getRegisterInfo(1), nullptr);
    EXPECT_NE(tree.addGroupInfo(1, nullptr, "Fresh"), nullptr);
    for (const int outside : {2, -1}) {
        tree.init(outside);
        tree.destroy(outside);
        tree.finalize(outside);
        EXPECT_EQ(tree.getRegisterInfo(outside), nullptr);
        EXPECT_EQ(tree.getNextRegisterInfo(group, outside), nullptr);
    }
    for (const int wrong : {-1, std::numeric_limits<int>::min()})
        EXPECT_THROW(Fg_ParameterInfo{wrong}, std::bad_array_new_length);
    EXPECT_EQ(Fg_ParameterInfo{0}.addGroupInfo(0, nullptr, "G"), nullptr);
}

TEST_F(ParameterInfoTest, TextsMarksAndInvalidatingNamesOfARecord) {
    using Setter = void (Fg_ParameterInfo::*)(RegisterInfo*, const char*);
    RegisterInfo* record = number("FG_A", group);
    const std::pair<char * RegisterInfo::*, Setter> texts[] = {
        {&RegisterInfo::description, &Fg_ParameterInfo::setDescription},
        {&RegisterInfo::toolTip, &Fg_ParameterInfo::setToolTip},
        {&RegisterInfo::genICamName, &Fg_ParameterInfo::setGenICamName}};
    for (const auto& [text, set] : texts) {
        (tree.*set)(record, "one");
        (tree.*set)(record, record->*text); // copied before it is replaced
        EXPECT_EQ(textOf(record->*text), "one");
        for (const char* none : {"", static_cast<const char*>(nullptr)}) {
            (tree.*set)(record, "two");
            (tree.*set)(record, none);
            EXPECT_EQ(record->*text, nullptr);
        }
        (tree.*set)(nullptr, "no node");
    }
    tree.setGenICamVisibility(record, -2);
    tree.setGenICamStreamable(record, true);
    tree.setGenICamType(record, 5);
    EXPECT_EQ(record->genICamVisibility, -2);
    EXPECT_TRUE(record->genICamStreamable);
    EXPECT_EQ(record->genICamType, 5);
    tree.addInvalidatingName(record, nullptr);
    tree.addInvalidatingName(record, "");
    EXPECT_EQ(record->invalidatingNames, nullptr);
    // The array does not grow when the count equals the capacity; with a larger count the capacity is doubled.
    std::vector<std::uint32_t> capacities;
    for (int i = 1; i <= 10; ++i) {
        tree.addInvalidatingName(record, ("N" + std::to_string(i)).c_str());
        capacities.push_back(record->invalidatingNameCapacity);
    }
    EXPECT_EQ(capacities, (std::vector<std::uint32_t>{0, 1, 2, 4, 4, 8, 8, 8, 8, 16}));
    for (const std::uint32_t capacity : {3u, 40u}) { // a smaller one is ignored
        tree.setInvalidatingNameCapacity(record, capacity);
        EXPECT_EQ(record->invalidatingNameCapacity, std::max(16u, capacity));
    }
    EXPECT_EQ(record->invalidatingNameCount, 10u);
    for (std::uint32_t i = 0; i < 10; ++i)
        EXPECT_EQ(record->invalidatingNames[i], "N" + std::to_string(i + 1));
    EXPECT_EQ(record->invalidatingNames[39], nullptr);
}

} // namespace
