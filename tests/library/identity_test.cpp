// Names, indices and ids of parameters; names and masks of events.

#include "support/applet_fixture.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

namespace {

using namespace support;

bool isFound(const char* name) { return name != nullptr; }
bool isFound(int id) { return id > 0; }
bool isFound(std::uint64_t mask) { return mask != 0; }

std::string textOf(const char* name) { return isFound(name) ? name : ""; }

/** The result of a look-up. Its success or refusal becomes the last error. */
template <typename LookUp, typename Key> auto ask(Grabber& grabber, LookUp lookUp, Key key) {
    EXPECT_EQ(grabber.set(FG_WIDTH, 3u), FG_ERR_OUT_OF_RANGE) << "an error that no look-up gives";
    const auto answer = lookUp(grabber.fg(), key);
    EXPECT_EQ(grabber.lastError(), isFound(answer) ? FG_OK : FG_ERR_INVALID_ARGUMENT);
    return answer;
}

class Identity : public AppletTest {
protected:
    std::string nameAt(Grabber& grabber, int index) {
        return textOf(ask(grabber, applet.Fg_getParameterName, index));
    }
    std::string eventOf(Grabber& grabber, std::uint64_t mask) {
        return textOf(ask(grabber, applet.Fg_getEventName, mask));
    }
    int idAt(Grabber& grabber, int index) { return ask(grabber, applet.Fg_getParameterId, index); }
    int idOf(Grabber& grabber, const char* name) {
        return ask(grabber, applet.Fg_getParameterIdByName, name);
    }
    std::uint64_t maskOf(Grabber& grabber, const std::string& name) {
        return ask(grabber, applet.Fg_getEventMask, name.c_str());
    }
};

TEST_F(Identity, ParametersInOrder) {
    Grabber grabber(0);
    ASSERT_EQ(grabber.set(FG_WIDTH, 1022u), FG_ERR_GRANULARITY);
    EXPECT_EQ(applet.Fg_getNrOfParameter(grabber.fg()), 164);
    EXPECT_EQ(grabber.lastError(), FG_ERR_GRANULARITY) << "counting stores nothing";

    const auto rows = dataRows("parameter_index.txt");
    ASSERT_EQ(rows.size(), 164u);
    for (const Lines& row : rows) {
        const int index = std::stoi(row[0]), id = std::stoi(row[2]);
        EXPECT_EQ(nameAt(grabber, index), row[1]);
        EXPECT_EQ(idAt(grabber, index), id) << row[1];
        EXPECT_EQ(idOf(grabber, row[1].c_str()), id) << row[1];
    }
    for (const int index : {-1, 164, 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(nameAt(grabber, index), "");
        EXPECT_EQ(idAt(grabber, index), FG_ERR_INVALID_ARGUMENT);
    }
    for (const char* name :
         {static_cast<const char*>(nullptr), "", "fg_timeout", "FG_TIMEOUT ", "FG_TIMEOU", "FG_PARAM_DESCR"})
        EXPECT_EQ(idOf(grabber, name), FG_ERR_INVALID_ARGUMENT) << (name != nullptr ? name : "null");
}

/** The parameters below a top-level group, by name. */
std::map<std::string, const RegisterInfo*> below(Grabber& grabber, const std::string& label) {
    RegisterInfo* group = host().applet().Fg_getParameterInfo(grabber.fg(), 0);
    while (label != group->displayName)
        group = group->next;
    std::map<std::string, const RegisterInfo*> all;
    std::set<std::string> labels;
    for (int i = 0; i < group->value.group.childCount; ++i) {
        RegisterInfo* child = group->value.group.children[i];
        forEachRecord(child, [&](RegisterInfo& record) { all[record.name] = &record; });
        EXPECT_TRUE(labels.insert(child->displayName).second) << "twice: " << child->displayName;
    }
    return all;
}

TEST_F(Identity, RegistersAndDesignParametersFollowTheParameters) {
    setVariable("VEXO_ENABLE_DRA", "1");
    setVariable("VEXO_ENABLE_DLOOMA", "1");
    Grabber grabber;
    board.log_kinds(grabber.device, VBOARD_RESOLVE);
    grabber.bringUp(1);
    const Lines resolved = grabber.log();
    board.log_kinds(grabber.device, VBOARD_SET);
    const auto direct = below(grabber, "Direct Register Access");
    const auto design = below(grabber, "Direct LOOM Access");
    const std::map<int, std::uint64_t> maxima = {
        {1, 1}, {8, 255}, {32, 4294967295}, {33, 8589934591}, {64, ~std::uint64_t{0}}};
    // The runtime is asked for each name once for the ids and once more for the indices.
    const auto again = std::find(resolved.begin() + 1, resolved.end(), resolved.front());
    ASSERT_GE(again - resolved.begin(), std::ssize(design));
    ASSERT_GE(resolved.end() - again, again - resolved.begin());
    EXPECT_TRUE(std::equal(resolved.begin(), again, again));
    int index = 164;
    for (const Register& reg : registers()) {
        const std::string name = "DRA_" + reg.name;
        SCOPED_TRACE(name);
        EXPECT_EQ(nameAt(grabber, index), name);
        EXPECT_EQ(idAt(grabber, index++), 1000000 + reg.id);
        EXPECT_EQ(idOf(grabber, name.c_str()), 1000000 + reg.id);

        const RegisterInfo& record = *direct.at(name);
        EXPECT_EQ(record.displayName, reg.name + " (" + std::to_string(reg.bits) + ")");
        EXPECT_EQ(std::tuple(record.id, record.access, record.paramClass, record.published),
                  std::tuple(1000000 + reg.id, reg.writable ? 7u : 1u, 1, 1));
        EXPECT_EQ(record.unit, nullptr);
        const auto expectLimits = [&](const auto& limits) {
            EXPECT_EQ(limits.minimum, 0u);
            EXPECT_EQ(limits.increment, 1u);
            EXPECT_EQ(limits.maximum, maxima.at(reg.bits));
        };
        EXPECT_EQ(record.kind, reg.bits > 32 ? REGISTER_KIND_UINT64 : REGISTER_KIND_UINT);
        reg.bits > 32 ? expectLimits(record.value.u64) : expectLimits(record.value.u32);
    }
    EXPECT_EQ(direct.size(), static_cast<std::size_t>(index - 164));
    EXPECT_EQ(applet.Fg_getNrOfParameter(grabber.fg()), index + static_cast<int>(design.size()));
    // Design parameters are sorted by name; each has a name and an index but no id, which the number in the
    // record leads to. Arrays are not offered.
    for (const auto& [name, record] : design) {
        EXPECT_EQ(nameAt(grabber, index), name);
        EXPECT_EQ(idAt(grabber, index++), FG_ERR_INVALID_ARGUMENT) << name;
        EXPECT_EQ(idOf(grabber, name.c_str()), FG_ERR_INVALID_ARGUMENT) << name;
    }
    EXPECT_EQ(nameAt(grabber, index), "");
    EXPECT_FALSE(design.contains("DLOOMA_Device1_Process0_LookupTable_R_LUTcontent"));
    const std::string length = "Device1_Process0_Buffer_0_XLength";
    grabber.clearLog();
    EXPECT_EQ(grabber.set(design.at("DLOOMA_" + length)->id, 77u), 0);
    EXPECT_EQ(grabber.log(), Lines{"set " + length + " u32 77"});
}

/** The design's events as the loader lists them. */
std::vector<TslEvent> designEvents() {
    fpga_design* const design = lastDesign();
    const auto eventOf = designLoader<decltype(TslGetEvent)>("TslGetEvent");
    std::vector<TslEvent> events;
    while (const TslEvent* event = eventOf(design, static_cast<int>(events.size())))
        events.push_back(*event);
    return events;
}

/** Query for the record of an event; "name value description" or the refusal. */
std::string recordOf(std::uint64_t mask, int version) {
    FgEventRecord record{"untouched", 77, "untouched"};
    const bool byReference = version >= 2;
    const int result = host().applet().Info(5120, byReference ? 12345 : static_cast<int>(mask), version,
                                            byReference ? &mask : nullptr, &record);
    if (result != 0) return std::to_string(result);
    return std::string(record.name) + " " + std::to_string(record.value) + " " + record.description;
}

TEST_F(Identity, EventsByNameAndByMask) {
    AppletLog log(4);
    Grabber grabber(1);
    EXPECT_EQ(log.take(), Lines{});
    const auto events = designEvents();
    std::map<std::string, Lines> rows; // by the design's name
    for (const Lines& row : dataRows("events.txt"))
        rows[row[1]] = row;
    for (std::size_t i = 0; i < events.size(); ++i) {
        const std::uint64_t mask = std::uint64_t{1} << i;
        const bool isPublic = events[i].publication == 1;
        const std::string name = events[i].name;
        SCOPED_TRACE(name);
        EXPECT_EQ(maskOf(grabber, name), isPublic ? mask : 0);
        if (!rows.contains(name)) {
            EXPECT_EQ(eventOf(grabber, mask), isPublic ? name : "");
            EXPECT_EQ(recordOf(mask, 2), "-2070");
            continue;
        }
        const Lines row = rows.extract(name).mapped();
        const std::string record = row[2] + " " + row[3] + " ";
        EXPECT_EQ(maskOf(grabber, row[0]), mask);
        EXPECT_EQ(eventOf(grabber, mask), row[0]);
        EXPECT_EQ(recordOf(mask, 2), record);
        if (i >= 31) continue;
        EXPECT_EQ(recordOf(mask, 0), record + "untouched");
        EXPECT_EQ(recordOf(mask, 1), record);
    }
    EXPECT_TRUE(rows.empty());
    for (const std::uint64_t mask :
         {std::uint64_t{0}, std::uint64_t{3}, std::uint64_t{1} << 63, ~std::uint64_t{0}}) {
        EXPECT_EQ(eventOf(grabber, mask), "") << mask;
        EXPECT_EQ(recordOf(mask, 2), "-2070") << mask;
    }
    for (const char* name : {"", "FG_OVERFLOW_CAM1", "fg_overflow_cam0"})
        EXPECT_EQ(maskOf(grabber, name), 0u) << name;
    EXPECT_EQ(applet.Fg_getEventMask(grabber.fg(), nullptr), 0u);
    EXPECT_EQ(applet.Info(5120, 1, 0, nullptr, nullptr), FG_ERR_INVALID_ARGUMENT);
}

TEST_F(Identity, NumericMasksAreSignExtended) {
    Grabber grabber(1);
    std::uint64_t bit31 = std::uint64_t{1} << 31;
    const auto number = static_cast<int>(bit31);
    ASSERT_NE(recordOf(bit31, 2), "-2070") << "an event of the applet's own is wanted at bit 31";
    FgEventRecord record{"untouched", 77, nullptr};
    EXPECT_EQ(applet.Info(5120, number, 0, nullptr, &record), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(applet.Info(5120, number, 2, nullptr, &record), FG_ERR_INVALID_ARGUMENT) << "no reference";
    EXPECT_EQ(applet.Info(5120, number, 1, &bit31, &record), FG_ERR_INVALID_ARGUMENT) << "not yet heeded";
    EXPECT_STREQ(record.name, "untouched");
    EXPECT_EQ(applet.Info(5120, number, 3, &bit31, &record), 0);
}

TEST_F(Identity, OnlyTheFirst65EventsAreVisible) {
    Grabber usual(1);
    const int own = static_cast<int>(designEvents().size());
    board.extra_events(66 - own); // a list of 66
    Grabber grabber(1);
    ASSERT_EQ(designEvents().size(), 66u);
    const auto extra = [&](int index) { return "Extra" + std::to_string(index - own); };
    EXPECT_EQ(maskOf(grabber, extra(63)), std::uint64_t{1} << 63);
    EXPECT_EQ(eventOf(grabber, std::uint64_t{1} << 63), extra(63));
    // The mask doubles and has overflowed at the 65th event, which gets 0. The 66th is not visible at all.
    EXPECT_STREQ(applet.Fg_getEventName(grabber.fg(), 0), extra(64).c_str());
    EXPECT_EQ(applet.Fg_getEventMask(grabber.fg(), extra(64).c_str()), 0u);
    EXPECT_EQ(grabber.lastError(), 0) << "entered";
    EXPECT_EQ(maskOf(grabber, extra(65)), 0u);
}

TEST_F(Identity, MissingEventsAreLoggedAndTheOthersMoveUp) {
    const auto rows = dataRows("events.txt");
    Grabber usual(1);
    const std::uint64_t firstMask = maskOf(usual, rows[0][0]);
    const std::string firstRecord = recordOf(firstMask, 2);
    Lines expected;
    for (std::size_t i = 0; i < rows.size(); i += 2) {
        ASSERT_EQ(board.lack_event(rows[i][1].c_str(), true), VBOARD_OK) << rows[i][1];
        expected.push_back(
            AppletLog::line(4, "cannot retrieve event id for internal event: '" + rows[i][1] + "'"));
    }
    AppletLog log(4);
    Grabber grabber(1);
    EXPECT_EQ(log.take(), expected);
    const auto events = designEvents();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        std::uint64_t mask = 0;
        for (std::size_t k = 0; k < events.size(); ++k)
            if (rows[i][1] == events[k].name) mask = std::uint64_t{1} << k;
        EXPECT_EQ(mask == 0, i % 2 == 0);
        EXPECT_EQ(maskOf(grabber, rows[i][0]), mask) << rows[i][0];
    }
    // The record of a mask is the one of its first event.
    EXPECT_NE(eventOf(grabber, firstMask), rows[0][0]);
    EXPECT_EQ(recordOf(firstMask, 2), firstRecord);
}

} // namespace
