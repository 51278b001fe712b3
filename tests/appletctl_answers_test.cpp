// What appletctl answers from its scratch board: each answer is held against what the applet does when it is asked.

#include "support/appletctl_program.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace {

using namespace appletctl_program;

std::string textOf(const json& number) {
    return number.is_string() ? number.get<std::string>() : number.dump();
}

Words with(const Words& before, const Words& command) {
    Words arguments = command;
    for (const std::string& assignment : before)
        arguments.insert(arguments.end(), {"--with", assignment});
    return arguments;
}

/** The exit code of a set behind others. */
int setAfter(Words before, const std::string& assignment) {
    before.insert(before.begin(), "set");
    before.push_back(assignment);
    return run(before).exitCode;
}

const json* rowOf(const json& rows, const char* member, const std::string& value) {
    for (const json& row : rows)
        if (row[member] == value) return &row;
    return nullptr;
}

TEST(AppletctlLimits, AreThoseThatASetKeepsTo) {
    const std::pair<const char*, Words> cases[] = {
        {"FG_WIDTH", {}},
        {"FG_WIDTH", {"FG_XOFFSET=1024"}},
        {"FG_WIDTH", {"FG_VANTAGEPOINT=1"}},
        {"FG_HEIGHT", {"FG_VANTAGEPOINT=2"}},
        {"FG_SENSORWIDTH", {"FG_VANTAGEPOINT=1", "FG_WIDTH=512"}},
        {"FG_LINEEXPOSURE", {"FG_LINEPERIODE=100"}},
        {"FG_CAMERASIMULATOR_LINERATE", {}},
        {"FG_DIGIO_OUTPUT", {}},
    };
    for (const auto& [name, before] : cases) {
        const json told = document(with(before, {"limits", name}))["parameters"][0];
        const json& accepted = told["accepted"];
        for (const char* end : {"minimum", "maximum"})
            EXPECT_EQ(setAfter(before, std::string(name) + "=" + textOf(accepted[end])), 0) << name << told;
        if (accepted.contains("step")) {
            const auto step = accepted["step"].get<std::int64_t>();
            const auto behind = accepted["maximum"].get<std::int64_t>() + step;
            EXPECT_NE(setAfter(before, std::string(name) + "=" + std::to_string(behind)), 0) << told;
        }
        for (const json& mover : told["setBy"]) {
            if (mover.contains("design")) continue; // no set reaches it
            Words then = before;
            then.push_back(mover["with"]);
            EXPECT_EQ(setAfter(then, std::string(name) + "=" + textOf(mover["becomes"])), 0) << mover;
            EXPECT_NE(setAfter(before, std::string(name) + "=" + textOf(mover["becomes"])), 0) << mover;
        }
    }
    const json width = document({"limits", "FG_WIDTH", "--with", "FG_XOFFSET=1024"})["parameters"][0];
    EXPECT_EQ(width["setBy"], json::parse(R"([{"limit": "maximum", "parameter": "FG_XOFFSET",
                                               "with": "FG_XOFFSET=0", "becomes": 16384}])"));
}

TEST(AppletctlLimits, TellsEntriesArraysAndWhatHasNone) {
    const json told = document({"limits", "FG_VANTAGEPOINT", "FG_LUT_VALUE_RED", "FG_CAMSTATUS",
                                "FG_LINETRIGGERMODE", "--with", "FG_WIDTH=2048"})["parameters"];
    EXPECT_EQ(told[0]["entries"][0]["accepted"], true);
    const json& right = told[0]["entries"][1];
    EXPECT_EQ(right["error"]["code"], -6000);
    const json ways = right["acceptedWith"];
    EXPECT_NE(std::find(ways.begin(), ways.end(), "FG_WIDTH=1024"), ways.end()) << ways;
    EXPECT_NE(std::find(ways.begin(), ways.end(), "FG_SENSORWIDTH=2048"), ways.end()) << ways;
    EXPECT_EQ(told[1]["elements"], 16384);
    EXPECT_EQ(told[1]["accepted"]["maximum"], 65535);
    EXPECT_EQ(told[2]["error"]["code"], -12);
    for (const json& entry : told[3]["entries"])
        EXPECT_EQ(entry["accepted"], true);
    EXPECT_EQ(run({"limits", "FG_WIDTH", "--with", "FG_WIDTH=3"}).exitCode, 1);
    const json frames =
        document({"limits", "FG_SENSORHEIGHT", "FG_HEIGHT", "--with", "FG_VANTAGEPOINT=2"})["parameters"];
    const json* memory = rowOf(frames[0]["setBy"], "limit", "maximum");
    for (const json& cause : frames[0]["setBy"])
        if (cause.contains("design")) memory = &cause;
    EXPECT_TRUE(contains((*memory).value("design", ""), "_Imp_DRAM_Ram")) << frames[0];
    EXPECT_EQ(frames[1]["fixed"], json({"minimum"}));
    const json offline = document({"--offline", "limits", "FG_WIDTH"});
    EXPECT_EQ(offline["parameters"][0]["accepted"]["maximum"], 16384);
    EXPECT_EQ(offline["assumed"][0], "design");
}

TEST(AppletctlWhy, NamesTheChangesThatFree) {
    const auto isOneOf = [](const json& ways, const char* way) {
        return std::find(ways.begin(), ways.end(), way) != ways.end();
    };
    const json source = document({"why", "FG_LINETRIGGERINSRC"})["answers"][0];
    EXPECT_EQ(source["writable"], false);
    EXPECT_TRUE(isOneOf(source["writableWith"], "FG_LINETRIGGERMODE=ASYNC_TRIGGER")) << source;
    const json mode = document({"why", "FG_SHAFTENCODERMODE"})["answers"][0];
    EXPECT_TRUE(isOneOf(mode["writableWith"], "FG_LINETRIGGERMODE=ASYNC_TRIGGER FG_SHAFTENCODERON=FG_ON") ||
                isOneOf(mode["writableWith"], "FG_SHAFTENCODERON=FG_ON"))
        << mode;
    EXPECT_EQ(document({"why", "FG_SYSTEMMONITOR_FPGA_TEMPERATURE"})["answers"][0]["hasSetter"], false);
    // What is said to free a value does.
    const std::tuple<Words, const char*> refused[] = {{{"FG_XOFFSET=1024"}, "FG_WIDTH=16384"},
                                                      {{"FG_VANTAGEPOINT=1"}, "FG_SENSORWIDTH=512"},
                                                      {{"FG_LINEPERIODE=100"}, "FG_LINEEXPOSURE=150"}};
    for (const auto& [before, assignment] : refused) {
        const json answer = document(with(before, {"why", assignment}))["answers"][0];
        EXPECT_EQ(answer["accepted"], false);
        ASSERT_FALSE(answer["acceptedWith"].empty()) << answer;
        for (const json& way : answer["acceptedWith"]) {
            Words then = before;
            std::istringstream steps(way.get<std::string>());
            for (std::string step; steps >> step;)
                then.push_back(step);
            EXPECT_EQ(setAfter(then, assignment), 0) << way;
        }
    }
    EXPECT_TRUE(contains(run({"why", "FG_WIDTH=1023"}).out, "nearest        1020 pixel"))
        << run({"why", "FG_WIDTH=1023"}).out;
}

TEST(AppletctlDeps, AreMeasuredInBothDirections) {
    const json told = document({"deps", "FG_LINEPERIODE"});
    const json* exposure = rowOf(told["moves"], "parameter", "FG_LINEEXPOSURE");
    ASSERT_NE(exposure, nullptr) << told;
    EXPECT_EQ((*exposure)["what"], "limits");
    EXPECT_EQ(told["writes"], json({"Device1_Process0_Trigger_Trigger_ExsyncPeriod"}));
    EXPECT_NE(rowOf(document({"deps", "FG_LINEEXPOSURE"})["movedBy"], "parameter", "FG_LINEPERIODE"),
              nullptr);
    const json mode = document({"deps", "FG_LINETRIGGERMODE"});
    EXPECT_EQ((*rowOf(mode["moves"], "parameter", "FG_LINETRIGGERINSRC"))["to"], "rw+");
    const json vantage = *rowOf(document({"deps", "FG_WIDTH"})["moves"], "parameter", "FG_VANTAGEPOINT");
    EXPECT_NE(rowOf(vantage["from"], "symbol", "FG_VANTAGEPOINT_TOP_LEFT"), nullptr) << "the present entry";
    EXPECT_NE(rowOf(vantage["to"], "symbol", "FG_VANTAGEPOINT_TOP_LEFT"), nullptr) << vantage;
    EXPECT_EQ(rowOf(vantage["to"], "symbol", "FG_VANTAGEPOINT_TOP_RIGHT"), nullptr) << vantage;
    EXPECT_NE(rowOf(document({"deps", "FG_PROCESSING_GAIN"})["moves"], "parameter", "FG_LUT_VALUE_GREEN"),
              nullptr);
    const std::string dot = run({"deps", "FG_LINEPERIODE", "--dot"}).out;
    EXPECT_TRUE(dot.starts_with("digraph dependencies {\n") && dot.ends_with("}\n"));
    EXPECT_TRUE(contains(dot, "\"FG_LINEPERIODE\" -> \"FG_LINEEXPOSURE\" [label=\"limits\"];")) << dot;
}

class AppletctlPlan : public testing::Test {
protected:
    std::string written(const char* name, const std::string& text) const {
        support::writeFile(folder / name, text);
        return folder / name;
    }

    std::string saved(const Words& assignments) const {
        Words arguments{"save", folder / "saved.mcf"};
        arguments.insert(arguments.end(), assignments.begin(), assignments.end());
        EXPECT_EQ(run(arguments).exitCode, 0);
        return arguments[1];
    }

    const support::TemporaryFolder folder;
};

TEST_F(AppletctlPlan, TellsWhatASetWrites) {
    const Words assignments{"FG_WIDTH=2048", "FG_XOFFSET=64"};
    Words plan{"plan"}, trace{"trace", "set"};
    for (Words* words : {&plan, &trace})
        words->insert(words->end(), assignments.begin(), assignments.end());
    const json planned = document(plan)["assignments"], done = document(trace)["assignments"];
    ASSERT_EQ(planned.size(), 2u);
    for (std::size_t i = 0; i < planned.size(); ++i)
        EXPECT_EQ(planned[i]["writes"], done[i]["writes"]);
    EXPECT_EQ(planned[1]["changes"],
              json::parse(
                  R"([{"parameter": "Device1_Process0_Buffer_0_SensorWidth", "before": 2048, "after": 2112},
                              {"parameter": "Device1_Process0_Buffer_0_XOffset", "before": 0, "after": 64}])"));
    EXPECT_EQ((*rowOf(planned[1]["moves"], "parameter", "FG_WIDTH"))["to"],
              json({{"minimum", 4}, {"maximum", 16320}}));
    const Outcome refused = run({"plan", "FG_XOFFSET=1024", "FG_WIDTH=16384"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(
        contains(refused.err, "; the nearest accepted value is 15360 pixel; accepted with FG_XOFFSET=0\n"))
        << refused.err;
    // A dry run leaves the files alone.
    const std::string table = folder / "table.lut";
    EXPECT_EQ(run({"plan", "FG_LUT_SAVE_FILE=" + table}).exitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(table));
}

TEST_F(AppletctlPlan, OfAFileIsTheLoad) {
    const std::string file = saved({"FG_WIDTH=2048", "FG_LINEPERIODE=150.4"});
    const json planned = document({"plan", file}), loaded = document({"trace", "load", file});
    json writes = json::array();
    for (const json& access : loaded["accesses"])
        if (access["access"] == "set") writes.push_back(access);
    EXPECT_EQ(planned["writes"], writes);
    EXPECT_NE(rowOf(planned["changes"], "parameter", "Device1_Process0_Buffer_0_XLength"), nullptr)
        << planned;
    EXPECT_EQ(planned["differences"][0]["after"]["value"], 2048);
    // A person sees what changes, under the parameter that does it; with --all what is written again, too.
    const char* const change = "  FG_WIDTH\n    Device1_Process0_Buffer_0_";
    const char* const again = "    set Device1_Process0_Buffer_0_PixelFormat u32 8\n";
    const std::string changes = run({"plan", file}).out, all = run({"plan", file, "--all"}).out;
    EXPECT_TRUE(contains(changes, change) && !contains(changes, again)) << changes;
    EXPECT_TRUE(contains(changes, " writes repeat what the design holds")) << changes;
    EXPECT_TRUE(contains(all, change) && contains(all, again)) << all;
}

TEST_F(AppletctlPlan, IsAppliedAfterAYes) {
    const Words apply{"apply", "FG_WIDTH=2048"};
    EXPECT_EQ(run(apply).exitCode, 2) << "there is no terminal to ask on";
    EXPECT_TRUE(contains(run({"apply", "FG_WIDTH=2048", "--yes"}).out, "FG_WIDTH = 2048 pixel\n"));
    EXPECT_EQ(run({"apply", "FG_WIDTH=3", "--yes"}).exitCode, 1);
    const Outcome yes = talk(apply, {}, "y\n"), no = talk(apply, {}, "\n");
    EXPECT_EQ(std::pair(yes.exitCode, no.exitCode), std::pair(0, 1));
    EXPECT_TRUE(contains(yes.out, "apply? [y/N]")) << yes.out;
    EXPECT_TRUE(contains(no.out, "nothing was applied")) << no.out;
}

TEST(AppletctlSet, FindsAnOrderInWhichAllPass) {
    const Words assignments{"FG_VANTAGEPOINT=1", "FG_WIDTH=4096", "FG_SENSORWIDTH=4096", "FG_XOFFSET=0"};
    Words inOrder{"set"}, anyOrder{"set", "--any-order"};
    for (Words* words : {&inOrder, &anyOrder})
        words->insert(words->end(), assignments.begin(), assignments.end());
    EXPECT_EQ(run(inOrder).exitCode, 1);
    const json told = document(anyOrder);
    EXPECT_EQ(told["done"], true);
    EXPECT_EQ(told["order"].size(), assignments.size());
    Words again{"set"};
    for (const json& word : told["order"])
        again.push_back(word);
    EXPECT_EQ(run(again).exitCode, 0);
    const Outcome stuck = run({"set", "--any-order", "FG_WIDTH=8192", "FG_VANTAGEPOINT=1", "FG_XOFFSET=3"});
    EXPECT_EQ(stuck.exitCode, 1);
    EXPECT_EQ(stuck.out, "");
    EXPECT_TRUE(contains(stuck.err, "FG_XOFFSET=3 passes in no order: -7080")) << stuck.err;
}

TEST(AppletctlSet, VerifiesWhatTheDesignHolds) {
    EXPECT_TRUE(contains(run({"set", "--verify", "FG_WIDTH=2048", "FG_LINEPERIODE=100"}).out,
                         "Verified: all values read back, and the design holds what it should.\n"));
    // What the hardware makes of a value is said, and is no fault; a value that a later assignment moves is one.
    const Outcome taken =
        run({"set", "--verify", "FG_CAMERASIMULATOR_LINERATE=7000", "FG_LINEPERIODE=100.003",
             "FG_SCALINGFACTOR_RED=1.5001", "FG_CAMERASIMULATOR_WIDTH=33"});
    EXPECT_EQ(taken.exitCode, 0) << taken.err;
    for (const char* part :
         {"FG_CAMERASIMULATOR_LINERATE = 7000.25200", " Hz (requested 7000; the simulator counts whole",
          "FG_LINEPERIODE = 100.003 µs (the trigger counts in steps of 0.008 µs: actual 100 µs)\n",
          "(gains have steps of 1/1024: actual 1.5)\n", "FG_CAMERASIMULATOR_WIDTH = 64 pixel (requested 33; ",
          "Verified"})
        EXPECT_TRUE(contains(taken.out, part)) << part << taken.out;
    const json rate =
        document({"set", "--verify", "FG_CAMERASIMULATOR_LINERATE=5000", "FG_CAMERASIMULATOR_FRAMERATE=2"});
    ASSERT_EQ(rate["unverified"].size(), 1u) << rate;
    EXPECT_EQ(rate["unverified"][0]["name"], "FG_CAMERASIMULATOR_LINERATE");
    EXPECT_EQ(rate["done"], false);
}

TEST(AppletctlReset, BringsEverythingBackToTheStart) {
    // From the right a width of 1024 pixels has to come before the sensor's.
    const Words changed{"FG_SENSORWIDTH=4096", "FG_VANTAGEPOINT=1", "FG_WIDTH=4096", "FG_LINETRIGGERMODE=2",
                        "FG_PROCESSING_GAIN=2"};
    Words all{"reset"}, width{"reset", "FG_WIDTH"};
    for (Words* words : {&all, &width})
        words->insert(words->end(), changed.begin(), changed.end());
    const json told = document(all);
    EXPECT_EQ(told["done"], true) << told;
    for (const char* name : {"FG_SENSORWIDTH", "FG_VANTAGEPOINT", "FG_WIDTH", "FG_LINETRIGGERMODE"})
        EXPECT_NE(rowOf(told["reset"], "name", name), nullptr) << name;
    EXPECT_TRUE(run(width).out.ends_with("FG_WIDTH: 4096 -> 1024 pixel\n"));
    EXPECT_EQ(run({"reset"}).out, "All of them hold their defaults.\n");
    EXPECT_EQ(run({"reset", "FG_WIDTH"}).out, "FG_WIDTH holds its default, 1024 pixel.\n");
    const Outcome measured = run({"reset", "FG_DIGIO_INPUT"});
    EXPECT_EQ(measured.exitCode, 1);
    EXPECT_TRUE(contains(measured.err, "FG_DIGIO_INPUT has no default: it is measured")) << measured.err;
    EXPECT_EQ(run({"reset", "FG_NOTHING"}).exitCode, 2);
}

TEST_F(AppletctlPlan, TracesAnyCommandAndComparesLogs) {
    const json told = document({"trace", "get", "FG_CAMSTATUS"});
    EXPECT_EQ(told["command"], "trace get");
    ASSERT_FALSE(told["accesses"].empty());
    EXPECT_EQ(told["accesses"][0]["access"], "get") << told["accesses"];
    const std::string one = written("a.txt", run({"trace", "set", "FG_WIDTH=2048"}).out);
    const std::string same = written("b.txt", run({"trace", "set", "FG_WIDTH=2048"}).out);
    const std::string other = written("c.txt", run({"trace", "set", "FG_WIDTH=1024"}).out);
    EXPECT_EQ(run({"trace", "diff", one, same}).exitCode, 0);
    const Outcome differs = run({"trace", "diff", one, other});
    EXPECT_EQ(differs.exitCode, 1);
    EXPECT_TRUE(contains(differs.out, "-6  set Device1_Process0_Buffer_0_XLength u32 2048\n")) << differs.out;
    EXPECT_TRUE(contains(differs.out, "+6  set Device1_Process0_Buffer_0_XLength u32 1024\n")) << differs.out;
    EXPECT_EQ(run({"trace", "diff", written("a.json", run({"--json", "trace", "get", "FG_WIDTH"}).out),
                   written("b.json", run({"trace", "get", "--json", "FG_WIDTH"}).out)})
                  .exitCode,
              0);
    const std::string none = written("d.txt", run({"trace", "get", "FG_WIDTH"}).out);
    EXPECT_EQ(run({"trace", "diff", none, none}).out, "The accesses are the same.\n");
    const std::string garbage = written("e.txt", std::string("\0\xff\n", 3));
    for (const Words& wrong :
         {Words{"trace"}, Words{"trace", "nothing"}, Words{"trace", "trace", "diff", "a", "b"},
          Words{"trace", "diff", one}, Words{"trace", "diff", one, "/nowhere"},
          Words{"trace", "diff", garbage, garbage}, Words{"trace", "get", "FG_WIDTH", "--offline"}})
        EXPECT_EQ(run(wrong).exitCode, 2) << wrong.back();
}

TEST_F(AppletctlPlan, LoadsStrictlyOrTellsWhatReachedTheBoard) {
    const std::string file = saved({});
    std::string text = support::fileBytes(file);
    EXPECT_EQ(run({"load", "--strict", file}).exitCode, 0);
    text.replace(text.find("FG_WIDTH=1024"), 13, "FG_WIDTH=1022");
    const std::string refused = written("refused.mcf", text);
    const Outcome strict = run({"load", "--strict", refused});
    EXPECT_EQ(strict.exitCode, 1);
    EXPECT_FALSE(contains(strict.out, "NOW")) << strict.out;
    EXPECT_TRUE(contains(strict.err, "--strict: nothing was loaded")) << strict.err;
    const json finding = document({"load", refused})["findings"][0];
    EXPECT_EQ(finding["kind"], "kept");
    EXPECT_NE(rowOf(finding["reached"], "parameter", "Device1_Process0_Buffer_0_XLength"), nullptr)
        << finding;
    for (const Words& check : {Words{"check", refused}, Words{"check", "--offline", refused}})
        EXPECT_EQ(run(check).exitCode, 1);
    EXPECT_EQ(run({"check", file, "--applet", "/nowhere/libx.so"}).exitCode, 3);
    const json columns = document({"diff", file, refused, "--live", "FG_WIDTH=64"})["differences"];
    EXPECT_EQ(columns, json::parse(R"([{"name": "FG_WIDTH", "unit": "pixel", "first": {"value": 1024},
                                        "second": {"value": 1022}, "now": {"value": 64}}])"));
}

TEST(AppletctlSystemBoard, AnswersThroughTheLibrariesOfTheLoader) {
    const Words environment{"LD_LIBRARY_PATH=" VIRTUAL_BOARD_DIR};
    const Words commands[] = {{"limits", "FG_WIDTH"},
                              {"why", "FG_LINETRIGGERINSRC"},
                              {"deps", "FG_LINEPERIODE"},
                              {"plan", "FG_WIDTH=64"},
                              {"set", "--yes", "--verify", "FG_WIDTH=64"},
                              {"reset", "--yes"},
                              {"route"}};
    for (Words command : commands) {
        const std::string here = run(command).out;
        command.insert(command.end(), {"--board", "system"});
        const Outcome there = run(command, environment);
        EXPECT_EQ(there.out, here) << command.front() << there.err;
        EXPECT_EQ(there.exitCode, 0) << command.front();
    }
    // Nothing writes without agreement, and --look writes nothing at all.
    const std::pair<Words, const char*> refused[] = {
        {{"set", "FG_WIDTH=64"}, "say --yes"},
        {{"route", "FG_WIDTH=64"}, "say --yes"},
        {{"get", "FG_WIDTH", "--with", "FG_WIDTH=64"}, "leave --board and --look out"},
        {{"set", "--yes", "--look", "FG_WIDTH=64"}, "--look only looks"},
    };
    for (auto [command, expected] : refused) {
        command.insert(command.end(), {"--board", "system"});
        const Outcome outcome = run(command, environment);
        EXPECT_EQ(outcome.exitCode, 2) << expected;
        EXPECT_TRUE(contains(outcome.err, expected)) << outcome.err;
    }
    const char* const height = "DLOOMA_Device1_Process0_Buffer_0_SensorHeight";
    const Words design{"VEXO_ENABLE_DLOOMA=on"};
    EXPECT_EQ(run({"get", "--raw", height}, design).out, "1\n");
    EXPECT_EQ(run({"get", "--raw", height, "--look"}, design).out, "1024\n") << "as the board powers up";
}

} // namespace
