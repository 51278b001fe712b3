// The published tree of parameters, record by record, against the listing in tests/data.

#include "support/applet_fixture.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace {

using namespace support;

std::string shortest(double value) {
    char text[64];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

/** Bytes beyond ASCII as \xHH. */
std::string plain(const char* text) {
    std::string result = text != nullptr ? "" : "(null)";
    for (; text != nullptr && *text != '\0'; ++text) {
        char hex[5];
        std::snprintf(hex, sizeof hex, "\\x%02X", static_cast<unsigned char>(*text));
        result += static_cast<signed char>(*text) > 0 ? std::string(1, *text) : hex;
    }
    return result;
}

template <typename Area> std::string range(const Area& area) {
    return std::to_string(area.minimum) + ".." + std::to_string(area.maximum) + " +" +
           std::to_string(area.increment);
}

std::string kindAndLimits(const RegisterInfo& record) {
    const RegisterInfoValue& value = record.value;
    switch (record.kind) {
    case 1:
        return "UInt | " + range(value.u32);
    case 3:
        return "Enum | ";
    case 5:
        return "String | \"" + plain(value.string.text) + '"';
    case 6:
        return "Double | " + shortest(value.f64.minimum) + ".." + shortest(value.f64.maximum) + " +" +
               shortest(value.f64.increment);
    case 7:
        return "UIntField | " + std::to_string(value.u32Field.minimum) + ".." +
               std::to_string(value.u32Field.maximum) + " x" + std::to_string(value.u32Field.elementCount);
    case 9:
        return "UInt64 | " + range(value.u64);
    case 11:
        return "Int | " + range(value.i32);
    case 12:
        return "Int64 | " + range(value.i64);
    default:
        return "kind " + std::to_string(record.kind);
    }
}

/** Renders a tree and checks the properties that are the same in all records. */
class Listing {
public:
    explicit Listing(RegisterInfo* root) {
        RegisterInfo* previous = nullptr;
        for (RegisterInfo* record = root; record != nullptr; previous = record, record = record->next) {
            EXPECT_EQ(record->previous, previous);
            render(*record, 0, 0, nullptr);
        }
    }
    Lines lines;
    int groups = 0;
    int parameters = 0;

private:
    void add(int depth, const std::string& text) {
        lines.push_back(std::string(2 * static_cast<std::size_t>(depth), ' ') + text);
    }

    void render(RegisterInfo& record, int index, int depth, const RegisterInfo* parent) {
        const std::string label = plain(record.displayName);
        SCOPED_TRACE(label);
        EXPECT_EQ(record.index, index);
        EXPECT_EQ(record.depth, depth);
        EXPECT_EQ(plain(record.parentName), parent != nullptr ? plain(parent->displayName) : "(null)");
        EXPECT_EQ(record.port, 0);
        EXPECT_EQ(record.structSize, 216);
        EXPECT_EQ(record.version, 3);
        EXPECT_TRUE(record.description == nullptr && record.toolTip == nullptr &&
                    record.genICamName == nullptr && record.invalidatingNames == nullptr);
        EXPECT_TRUE(parent == nullptr || (record.next == nullptr && record.previous == nullptr));
        if (record.kind == REGISTER_KIND_GROUP)
            renderGroup(record, depth, label);
        else
            renderParameter(record, depth, label);
    }

    void renderGroup(RegisterInfo& record, int depth, const std::string& label) {
        ++groups;
        EXPECT_TRUE(record.name == nullptr && record.unit == nullptr);
        EXPECT_TRUE(record.id == 0 && record.access == 0 && record.paramClass == 0 && record.published == 0);
        add(depth, '[' + label + ']');
        for (int i = 0; i < record.value.group.childCount; ++i)
            render(*record.value.group.children[i], i, depth + 1, &record);
    }

    void renderParameter(const RegisterInfo& record, int depth, const std::string& label) {
        ++parameters;
        EXPECT_EQ(record.published, 1);
        add(depth, std::to_string(record.id) + ' ' + plain(record.name) + " | " + label + " | " +
                       kindAndLimits(record) + " | access " + std::to_string(record.access) + " class " +
                       std::to_string(record.paramClass) + " | " + plain(record.unit));
        if (record.kind != REGISTER_KIND_ENUM) return;
        const auto& entries = record.value.enumeration;
        for (int i = 0; i < entries.entryCount; ++i) {
            EXPECT_TRUE(record.enumEntryDescriptions[i] == nullptr &&
                        record.enumEntryToolTips[i] == nullptr && record.enumEntryGenICamNames[i] == nullptr);
            add(depth + 1, "= " + std::to_string(entries.values[i]) + ' ' + plain(entries.symbolicNames[i]) +
                               " | " + plain(entries.labels[i]));
        }
    }
};

/** The listing as the catalogue makes it, or with the changes made by the start's defaults. */
Lines expectedTree(bool afterStart) {
    Lines tree = dataLines("parameter_tree.txt");
    if (!afterStart) return tree;
    for (const std::string& changed : dataLines("tree_after_start.txt")) {
        const std::string key = changed.substr(0, changed.find(" |")) + " |"; // id and name
        int found = 0;
        for (std::string& line : tree) {
            const std::size_t indent = line.find_first_not_of(' ');
            if (line.compare(indent, key.size(), key) != 0) continue;
            line = line.substr(0, indent) + changed;
            ++found;
        }
        EXPECT_EQ(found, 1) << key;
    }
    return tree;
}

class SlaveTreeTest : public ParameterTest {
protected:
    SlaveTreeTest() : ParameterTest(1) {}
};

TEST_F(SlaveTreeTest, IsTheCatalogue) {
    const Listing listing(tree());
    EXPECT_EQ(listing.lines, expectedTree(false));
    EXPECT_EQ(listing.groups, 31);
    EXPECT_EQ(listing.parameters, 157);
}

class TreeTest : public ParameterTest {};

TEST_F(TreeTest, ShowsWhatTheDefaultsChanged) { EXPECT_EQ(Listing(tree()).lines, expectedTree(true)); }

TEST_F(TreeTest, OfflineInstance) {
    void* instance = nullptr;
    ASSERT_EQ(applet.Info(4864, 0, 0, nullptr, &instance), 0);
    RegisterInfo* root = nullptr;
    ASSERT_EQ(applet.Info(4880, 0, 0, instance, &root), 0);
    Lines expected = expectedTree(true);
    // Without a design there are no output formats, so no format is ever set to limit the shift.
    const auto shift = std::find_if(expected.begin(), expected.end(), [](const std::string& line) {
        return line.find("FG_CUSTOM_BIT_SHIFT_RIGHT") != std::string::npos;
    });
    ASSERT_NE(shift, expected.end());
    shift->replace(shift->find("0..7"), 4, "0..15");
    EXPECT_EQ(Listing(root).lines, expected);
    EXPECT_EQ(applet.Info(4896, 0, 0, instance, nullptr), 0);
}

TEST_F(TreeTest, BelongsToItsHandle) {
    Grabber other(0);
    ASSERT_EQ(set(FG_LINEPERIODE, 123.0), 0);
    EXPECT_EQ(Listing(applet.Fg_getParameterInfo(other.fg(), 0)).lines, expectedTree(true));
    EXPECT_EQ(record(FG_LINEEXPOSURE)->value.f64.maximum, 123.0);
}

} // namespace
