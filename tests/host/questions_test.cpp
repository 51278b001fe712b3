// Limits, reasons and plans: they hold on the board, and their words are those of appletctl.

#include "open_station.h"

#include "vexo/fg_errors.h"

#include <nlohmann/json.hpp>

#include <csignal>
#include <filesystem>
#include <fstream>

namespace {

using nlohmann::json;

struct Questions : OpenStation {
    Questions() { station.set({"FG_WIDTH=2048", "FG_XOFFSET=64"}); }
};

TEST_F(Questions, LimitsAreWhatSettersAccept) {
    for (const char* name : {"FG_WIDTH", "FG_XOFFSET", "FG_HEIGHT", "FG_LINEPERIODE"}) {
        SCOPED_TRACE(name);
        const vexo::Parameter parameter = station[name];
        const auto range = parameter.limits().range;
        ASSERT_TRUE(range);
        const double now = parameter.get<double>();
        for (const double accepted : {range->minimum, range->maximum})
            EXPECT_EQ(vexo_set_double(handle, parameter.id(), accepted), VEXO_OK) << accepted;
        EXPECT_LT(vexo_set_double(handle, parameter.id(), range->maximum + std::max(range->step, 1.0)), 0);
        parameter = now;
    }
    const vexo::Answer answer = station["FG_XOFFSET"].limits("FG_XOFFSET=0 FG_WIDTH=8192");
    EXPECT_EQ(answer.range->maximum, 8192) << "with the assumed width";
    EXPECT_EQ(json::parse(answer.json)["parameters"][0]["setBy"][0]["parameter"], "FG_WIDTH");
    EXPECT_EQ(station.get<int>("FG_WIDTH"), 2048);
    EXPECT_FALSE(station["FG_VANTAGEPOINT"].limits().range);
}

TEST_F(Questions, ARefusalNamesLimitCauseAndNearest) {
    EXPECT_EQ(vexo_set_int(handle, id("FG_XOFFSET"), 14338), FG_ERR_OUT_OF_RANGE);
    EXPECT_STREQ(
        vexo_last_error(),
        "FG_XOFFSET=14338 was refused: -6000, value out of range; the present limits are 0 to 14336 in "
        "steps of 4 pixel; the maximum is set by FG_WIDTH (16380 with FG_WIDTH=4); the nearest accepted "
        "value is 14336 pixel");
    const json details = json::parse(vexo_last_details());
    EXPECT_EQ(details["symbol"], "FG_ERR_OUT_OF_RANGE");
    EXPECT_EQ(details["limit"]["maximum"], 14336);
    EXPECT_EQ(details["nearest"]["value"], 14336);
    EXPECT_EQ(details["setBy"][0]["parameter"], "FG_WIDTH");
    EXPECT_EQ(station.get<int>("FG_XOFFSET"), 64);
    vexo_answer* answer = nullptr;
    EXPECT_EQ(vexo_ask_limits(handle, "FG_HEIGHT", "FG_WIDTH=512 FG_XOFFSET=20000", nullptr, &answer),
              FG_ERR_OUT_OF_RANGE);
    const json assumed = json::parse(vexo_last_details());
    EXPECT_EQ(assumed["requested"]["value"], 20000) << "an assumption is refused as a set is";
    EXPECT_EQ(assumed["limit"]["maximum"], 15872);
    EXPECT_EQ(assumed["nearest"]["value"], 15872);
    EXPECT_TRUE(station["FG_XOFFSET"].limits("FG_FORMAT='Color 48bit'").range);
    const json why = json::parse(station["FG_XOFFSET"].why("14338").json);
    EXPECT_EQ(why["answers"][0]["nearest"]["value"], 14336);
}

TEST_F(Questions, APlanIsWhatASetDoes) {
    const vexo::Answer plan = station.plan({"FG_WIDTH=4096", "FG_XOFFSET=128", "FG_HEIGHT=0", "FG_WIDTH=8"});
    const json rows = json::parse(plan.json)["assignments"];
    ASSERT_EQ(rows.size(), 3U) << "the refused one is the last";
    EXPECT_EQ(rows[0]["value"], 4096);
    EXPECT_FALSE(rows[0]["writes"].empty());
    EXPECT_EQ(rows[2]["error"]["code"], FG_ERR_OUT_OF_RANGE);
    EXPECT_EQ(station.get<int>("FG_WIDTH"), 2048);
    station.set({"FG_WIDTH=4096"});
    for (const json& move : rows[0]["moves"])
        if (move["parameter"] == "FG_XOFFSET") {
            EXPECT_EQ(move["to"]["maximum"], station["FG_XOFFSET"].range().maximum) << move;
        }
}

TEST_F(Questions, DoubtfulSettingsAreFound) {
    station.set({"FG_SENSORWIDTH=1024"});
    EXPECT_NE(station.lint().text.find("outside the sensor"), std::string::npos);
}

/** The ids of the processes that this one has started. */
std::vector<pid_t> children() {
    std::vector<pid_t> ids;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream list(task.path() / "children");
        for (pid_t id = 0; list >> id;)
            ids.push_back(id);
    }
    return ids;
}

TEST_F(Questions, AnEndedScratchBoardIsReplaced) {
    EXPECT_TRUE(children().empty()) << "nothing was asked yet";
    EXPECT_TRUE(station["FG_WIDTH"].limits().range);
    ASSERT_EQ(children().size(), 1U);
    ::kill(children().front(), SIGKILL);
    EXPECT_THROW(station["FG_WIDTH"].limits(), vexo::Error);
    EXPECT_EQ(vexo_last_code(), VEXO_ERR_FAILED) << vexo_last_error();
    EXPECT_TRUE(station["FG_WIDTH"].limits().range);
}

TEST(Stations, LeaveNothingBehind) {
    const auto descriptors = [] {
        const std::filesystem::directory_iterator files("/proc/self/fd");
        return std::distance(begin(files), end(files));
    };
    const auto before = descriptors();
    for (int i = 0; i < 3; ++i) {
        const vexo::Station station = vexo::Station::virtualBoard();
        EXPECT_TRUE(station["FG_WIDTH"].limits().range);
    }
    EXPECT_EQ(descriptors(), before);
    EXPECT_TRUE(children().empty());
}

} // namespace
