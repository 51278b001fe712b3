// Real runs of appletctl: what it says of a state beyond its values.

#include "support/appletctl_program.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

using namespace appletctl_program;

json findingsOf(Words words) {
    words.insert(words.begin(), "lint");
    return document(words)["findings"];
}

TEST(AppletctlLint, FindsWhatIsLegalButDoubtful) {
    struct Case {
        Words assignments;
        const char* rule;
        Words names;
        const char* advice;
    };
    const Case cases[] = {
        {{"FG_LINEEXPOSURE=150", "FG_LINEPERIODE=100"},
         "exposure",
         {"FG_LINEEXPOSURE", "FG_LINEPERIODE"},
         "Set FG_LINEEXPOSURE=100 or less"},
        {{"FG_LINETRIGGERDELAY=50", "FG_LINEPERIODE=40"},
         "delay",
         {"FG_LINETRIGGERDELAY", "FG_LINEPERIODE"},
         "FG_LINETRIGGERDELAY=40 or less"},
        {{"FG_LINEPERIODE=100.003"}, "grid", {"FG_LINEPERIODE"}, "Set FG_LINEPERIODE=100"},
        {{"FG_SCALINGFACTOR_RED=1.5001"}, "grid", {"FG_SCALINGFACTOR_RED"}, "Set FG_SCALINGFACTOR_RED=1.5"},
        {{"FG_LINETRIGGERMODE=ASYNC_TRIGGER", "FG_LINE_DOWNSCALE=2", "FG_LINE_DOWNSCALEINIT=3"},
         "phase",
         {"FG_LINE_DOWNSCALEINIT", "FG_LINE_DOWNSCALE"},
         "FG_LINE_DOWNSCALEINIT=2 or less"},
        {{"FG_WIDTH=2048"},
         "sensor",
         {"FG_XOFFSET", "FG_WIDTH", "FG_SENSORWIDTH", "FG_VANTAGEPOINT"},
         "Set FG_SENSORWIDTH"},
        {{"FG_YOFFSET=1"}, "sensor", {"FG_YOFFSET", "FG_HEIGHT", "FG_SENSORHEIGHT", "FG_VANTAGEPOINT"}, ""},
        {{"FG_LUT_VALUE_RED[5]=1"},
         "tables",
         {"FG_LUT_VALUE_RED", "FG_LUT_VALUE_GREEN", "FG_LUT_VALUE_BLUE"},
         "lut show"},
        {{"FG_LUT_ENABLE=FG_ON", "FG_PROCESSING_GAIN=4"},
         "clipping",
         {"FG_LUT_VALUE_RED", "FG_LUT_VALUE_GREEN", "FG_LUT_VALUE_BLUE"},
         "lut show"},
        {{"FG_LUT_ENABLE=FG_ON", "FG_LUT_TYPE=LUT_TYPE_CUSTOM"},
         "table-file",
         {"FG_LUT_TYPE", "FG_LUT_CUSTOM_FILE"},
         "LUT_TYPE_PROCESSING"},
        {{"FG_TRIGGERCAMERA_SOURCE=GND"},
         "camera-trigger",
         {"FG_TRIGGERCAMERA_SOURCE"},
         "FG_SIGNAL_CAM0_EXSYNC"},
        {{"FG_EXSYNCON=FG_OFF"},
         "camera-trigger",
         {"FG_EXSYNCON", "FG_TRIGGERCAMERA_SOURCE"},
         "FG_EXSYNCON=FG_ON"},
        {{"FG_TRIGGEROUT_GPO_0_SOURCE=GND", "FG_TRIGGEROUT_FRONT_GPO_0_SOURCE=GND"},
         "flash",
         {"FG_FLASHON"},
         "FG_SIGNAL_CAM0_FLASH"},
        {{"FG_STROBEPULSEDELAY=1024"},
         "flash",
         {"FG_STROBEPULSEDELAY", "FG_HEIGHT"},
         "FG_STROBEPULSEDELAY=1023 or less"},
        {{"FG_IMGTRIGGERMODE=ASYNC_TRIGGER", "FG_IMGTRIGGERON=FG_OFF"},
         "image-trigger",
         {"FG_IMGTRIGGERON", "FG_IMGTRIGGERMODE"},
         "FG_IMGTRIGGERON=FG_ON"},
        {{"FG_IMGTRIGGERMODE=ASYNC_TRIGGER_MULTIFRAME", "FG_IMGTRIGGER_ASYNC_HEIGHT=1500"},
         "trigger-height",
         {"FG_IMGTRIGGER_ASYNC_HEIGHT", "FG_HEIGHT"},
         "a multiple of FG_HEIGHT"},
        {{"FG_LINETRIGGERMODE=ASYNC_TRIGGER", "FG_SHAFTENCODERON=FG_ON",
          "FG_SHAFTENCODERINSRC=TRGINSRC_GPI_1"},
         "shared-input",
         {"FG_LINETRIGGERINSRC", "FG_SHAFTENCODERINSRC"},
         "the input of track B"},
        {{"FG_CAMERASIMULATOR_ENABLE=1"}, "simulator", {"FG_CAMERASIMULATOR_ENABLE"}, "FG_CAMPORT"},
        {{"FG_DEBUGOUTENABLE=FG_ON"}, "debug", {"FG_DEBUGOUTENABLE"}, "FG_OFF"},
        // The published access tells that a mode takes no notice.
        {{"FG_SHAFTENCODERMODE=FILTER_X4"}, "no-effect", {"FG_SHAFTENCODERMODE"}, "why FG_SHAFTENCODERMODE"},
        // A constant level has no polarity: the board receives the same.
        {{"FG_TRIGGEROUT_GPO_4_POLARITY=FG_LOW"}, "no-effect", {"FG_TRIGGEROUT_GPO_4_POLARITY"}, "why"},
        {{"FG_CAMERASIMULATOR_WIDTH=512", "FG_CAMERASIMULATOR_PATTERN=FG_VERTICAL"},
         "no-effect",
         {"FG_CAMERASIMULATOR_WIDTH", "FG_CAMERASIMULATOR_PATTERN"},
         "FG_CAMERASIMULATOR_ENABLE"},
    };
    for (const Case& c : cases) {
        const json findings = findingsOf(c.assignments);
        ASSERT_EQ(findings.size(), 1u) << c.rule << findings.dump(1);
        EXPECT_EQ(findings[0]["rule"], c.rule);
        EXPECT_EQ(findings[0]["names"], json(c.names)) << c.rule;
        EXPECT_EQ(findings[0]["values"].size(), c.names.size()) << c.rule;
        EXPECT_TRUE(contains(findings[0]["advice"], c.advice)) << findings[0];
    }
}

TEST(AppletctlLint, IsSilentOnAGoodState) {
    const Words states[] = {
        {},
        // A camera of this size, read from the left: the size is no matter of the board there.
        {"FG_WIDTH=2048", "FG_SENSORWIDTH=2048"},
        {"FG_LINETRIGGERMODE=ASYNC_TRIGGER", "FG_LINETRIGGERINSRC=TRGINSRC_GPI_3", "FG_LINEEXPOSURE=500"},
        {"FG_LINEPERIODE=100.008", "FG_TIMEOUT=5", "FG_PIXELFORMAT=RGB12", "FG_DIGIO_OUTPUT=0"},
        {"FG_LUT_ENABLE=FG_ON", "FG_PROCESSING_GAIN=1.005", "FG_LUT_SAVE_FILE="},
    };
    for (const Words& state : states) {
        Words words = {"lint"};
        words.insert(words.end(), state.begin(), state.end());
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.out << outcome.err;
        EXPECT_TRUE(contains(outcome.out, "Nothing doubtful.\n")) << outcome.out;
    }
}

TEST(AppletctlLint, FindsValuesThatTheirLimitsHaveLeft) {
    const json bottom =
        document({"set", "FG_VANTAGEPOINT=FG_VANTAGEPOINT_BOTTOM_LEFT", "FG_SENSORHEIGHT=1024"});
    const std::string height = bottom["assignments"][1]["maximum"].dump();
    const json findings = findingsOf(
        {"FG_VANTAGEPOINT=FG_VANTAGEPOINT_BOTTOM_LEFT", "FG_SENSORHEIGHT=" + height, "FG_PIXELFORMAT=RGB16"});
    Words names;
    for (const json& finding : findings) {
        EXPECT_EQ(finding["rule"], "limits") << finding;
        names.push_back(finding["names"][0]);
    }
    EXPECT_EQ(names, (Words{"FG_SENSORWIDTH", "FG_SENSORHEIGHT", "FG_WIDTH"})) << findings.dump(1);
}

TEST(AppletctlLint, LooksAtWhatALoadOfAFileGives) {
    const support::TemporaryFolder folder;
    const std::string file = folder / "station.mcf";
    run({"save", file, "FG_LINEEXPOSURE=150", "FG_LINEPERIODE=100"});
    const Outcome outcome = run({"lint", file});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_TRUE(
        contains(run({"timing", "FG_LINEPERIODE=10"}).out, "exposure: The exposure is longer than the line"));
    EXPECT_EQ(outcome.out.find("exposure: FG_LINEEXPOSURE = 150 µs, FG_LINEPERIODE = 100 µs\n    "), 0u)
        << outcome.out;
    std::string text = support::fileBytes(file);
    text.replace(text.find("FG_LINEEXPOSURE=150"), 19, "FG_LINEEXPOSURE=50");
    support::writeFile(file, text);
    EXPECT_EQ(run({"lint", file}).out, "Nothing doubtful.\n");
    for (const char* period : {"nan", "1e300"}) { // a load stores both
        std::string bad = text;
        bad.replace(bad.find("FG_LINEPERIODE=100"), 18, std::string("FG_LINEPERIODE=") + period);
        support::writeFile(file, bad);
        const json findings = findingsOf({file});
        ASSERT_EQ(findings.size(), 1u) << period << findings.dump(1);
        EXPECT_EQ(findings[0]["rule"], "limits") << period;
    }
    // A rate is told as a load gives it, and a key as the file has it.
    for (const auto& [edit, told] :
         {std::pair("FG_CAMERASIMULATOR_LINERATE=1048.568;",
                    "FG_CAMERASIMULATOR_LINERATE = 1048.57414887 Hz"),
          {"fg_height=7;",
           "fg_height is unknown and was ignored; did you mean FG_HEIGHT? A load takes it in capitals"},
          {"FG_HEIGHT =7;", "\"FG_HEIGHT \" is unknown and was ignored; did you mean FG_HEIGHT?"}}) {
        std::string bad = text;
        bad.replace(bad.find("FG_CAMERASIMULATOR_LINERATE"), 0, std::string(edit) + '\n');
        support::writeFile(file, bad);
        EXPECT_TRUE(contains(run({"lint", file}).out, told)) << run({"lint", file}).out;
    }
    EXPECT_EQ(run({"lint", folder / "none.mcf"}).exitCode, 2);
    EXPECT_EQ(run({"lint", file, "FG_WIDTH=4"}).exitCode, 2);
}

TEST(AppletctlList, ChoosesColumnsAndParameters) {
    const std::tuple<Words, const char*> cases[] = {
        {{"list", "sensorwidth", "-f", "name,id,role,default,label"},
         "NAME\tID\tIN A FILE\tDEFAULT\tLABEL\nFG_SENSORWIDTH\t200220\trestored\t1024\tSensor Width\n"},
        {{"list", "--group", "roi", "-f", "name"}, "NAME\nFG_WIDTH\nFG_HEIGHT\nFG_XOFFSET\nFG_YOFFSET\n"},
        {{"list", "linetrigger", "--writable", "-f", "name,access"},
         "NAME\tACCESS\nFG_LINETRIGGERMODE\trw\nFG_LINETRIGGERDEBOUNCING\trw+\nFG_LINETRIGGERDELAY\trw+\n"},
        {{"list", "--changed", "-f", "name"}, "NAME\n"},
        {{"list", "debugsourc?", "-f", "name,role"}, "NAME\tIN A FILE\nFG_DEBUGSOURCE\treader\n"},
        {{"list", "lineorder", "-f", "name,role"}, "NAME\tIN A FILE\nFG_LINEORDER\tnone\n"},
    };
    for (const auto& [arguments, expected] : cases) {
        Words plain = arguments;
        plain.emplace_back("--plain");
        EXPECT_EQ(run(plain).out, expected);
    }
    EXPECT_EQ(run({"list", "--changed"}).out, "No parameter differs from its default.\n");
    EXPECT_EQ(run({"list", "-f", "name,shoe"}).exitCode, 2);
    EXPECT_EQ(run({"list", "--group", "no such group"}).exitCode, 2);
}

TEST(AppletctlGet, TakesGroupsAndGivesBareValues) {
    EXPECT_EQ(run({"get", "-g", "roi"}).out,
              "FG_WIDTH = 1024 pixel\nFG_HEIGHT = 1024 pixel\nFG_XOFFSET = 0 pixel\nFG_YOFFSET = 0 pixel\n");
    EXPECT_FALSE(contains(run({"get", "-g", "Overflow"}).out, "FG_OVERFLOW")) << "a read would clear it";
    EXPECT_EQ(
        run({"get", "--raw", "FG_LINETRIGGERMODE", "FG_LINEPERIODE", "FG_TSL_FILE", "FG_LUT_VALUE_RED[2..3]"})
            .out,
        "1\n200\nGrab_TwinLaneLineColor.tsl\n8\n12\n");
    EXPECT_EQ(run({"get", "-g", "no such group"}).exitCode, 2);
}

} // namespace
