// Real runs of appletctl: what it prints where, its exit codes and its documents.

#include "support/appletctl_program.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace appletctl_program;

TEST(AppletctlList, IsOneAlignedTableWithGroups) {
    const Outcome outcome = run({"list", "*SENSOR*"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "  NAME             VALUE  UNIT   ACCESS  LIMITS OR ENTRIES\n"
                           "\n"
                           "Sensor Geometry\n"
                           "  FG_SENSORWIDTH   1024   pixel  rw      4 to 16384 in steps of 4\n"
                           "  FG_SENSORHEIGHT  1024   pixel  rw      1 to 1398101\n");
    // A two-byte unit counts as the two characters that it shows.
    EXPECT_TRUE(contains(run({"list", "lineperiode"}).out,
                         "\n  FG_LINEPERIODE  200    µs    rw+     0.512 to 2097.144 in steps of 0.008\n"));
}

TEST(AppletctlList, TellsEveryParameterOnce) {
    std::set<std::string> names;
    int enumerations = 0;
    const json told = document({"list"});
    for (const json& parameter : told["parameters"]) {
        EXPECT_TRUE(names.insert(parameter["name"]).second);
        int answers = 0;
        for (const char* member : {"value", "elements", "error", "notRead"})
            answers += parameter.contains(member) ? 1 : 0;
        EXPECT_EQ(answers, 1) << parameter;
        if (parameter.value("kind", "") == "Enum" && !parameter["entries"].empty()) ++enumerations;
    }
    EXPECT_EQ(names.size(), 164u);
    EXPECT_EQ(enumerations, 74);
}

TEST(AppletctlList, ReadsWhatClearsWhenReadOnlyByItsName) {
    EXPECT_TRUE(contains(run({"list", "overflow"}).out, "  FG_OVERFLOW  (clears when read)"));
    EXPECT_EQ(document({"list", "FILLLEVEL"})["parameters"][0]["notRead"], "clears FG_OVERFLOW when read");
    EXPECT_EQ(document({"list", "fg_overflow"})["parameters"][0]["value"], 0);
}

TEST(AppletctlGet, FindsNamesInAnyFormAndOffersTheClosest) {
    for (const char* name : {"FG_WIDTH", "fg_width", "WIDTH", "width"}) {
        const Outcome outcome = run({"get", name});
        EXPECT_EQ(outcome.out, "FG_WIDTH = 1024 pixel\n") << name;
        EXPECT_EQ(outcome.exitCode, 0) << name;
    }
    EXPECT_EQ(run({"get", "LINEEXPOSURE", "VANTAGEPOINT", "NR_OF_PROCESSES", "TSL_FILE"})
                  .out.find("FG_LINEEXPOSURE = 19 µs\nFG_VANTAGEPOINT = FG_VANTAGEPOINT_TOP_LEFT (0)\n"
                            "FG_NR_OF_PROCESSES = 1\n"),
              0u);
    const Outcome misspelt = run({"get", "FG_WIDTH", "FG_SENSORWIDHT"});
    EXPECT_EQ(misspelt.exitCode, 2);
    EXPECT_EQ(misspelt.out, "") << "a misspelt name stops before anything is read";
    EXPECT_TRUE(contains(misspelt.err, "'FG_SENSORWIDHT'; did you mean FG_SENSORWIDTH")) << misspelt.err;
}

TEST(AppletctlSet, TakesNumbersAndEntries) {
    const std::pair<const char*, const char*> cases[] = {
        {"FG_WIDTH=0x800", "FG_WIDTH = 2048 pixel\n"},
        {"FG_LINEPERIODE=150.4", "FG_LINEPERIODE = 150.4 µs\n"},
        {"FG_LINEPERIODE=0.1504 ms", "FG_LINEPERIODE = 150.4 µs\n"},
        {"FG_LINEPERIODE=1504e-1us", "FG_LINEPERIODE = 150.4 µs\n"},
        {"FG_WIDTH=64px", "FG_WIDTH = 64 pixel\n"},
        {"FG_TIMEOUT=2000ms", "FG_TIMEOUT = 2 seconds\n"},
        {"FG_VANTAGEPOINT=3", "FG_VANTAGEPOINT = FG_VANTAGEPOINT_BOTTOM_RIGHT (3)\n"},
        {"FG_VANTAGEPOINT=Bottom-Right", "FG_VANTAGEPOINT = FG_VANTAGEPOINT_BOTTOM_RIGHT (3)\n"},
        {"vantagepoint=vantagepoint_bottom_right", "FG_VANTAGEPOINT = FG_VANTAGEPOINT_BOTTOM_RIGHT (3)\n"},
    };
    for (const auto& [assignment, expected] : cases) {
        const Outcome outcome = run({"set", assignment});
        EXPECT_EQ(outcome.out, expected) << assignment;
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    }
}

TEST(AppletctlSet, TakesTextsAndWideNumbers) {
    const std::string path = "a \"b\"\\=c\x1b[31m\xc2\x9b\xe9";
    EXPECT_EQ(run({"set", "FG_DEBUGFILE=" + path, "FG_DEBUGFILE="}).out,
              "FG_DEBUGFILE = \"a \\\"b\\\"\\\\=c\\x1b[31mÂ\\xc2\\x9bé\"\nFG_DEBUGFILE = \"\"\n");
    const Outcome pixel =
        run({"set", "FG_DEBUGWRITEPIXEL=0x1FFFFFFFFFFFFFF", "FG_DEBUGWRITEPIXEL=144115188075855872"});
    EXPECT_EQ(pixel.out, "FG_DEBUGWRITEPIXEL = 144115188075855871\n");
    EXPECT_TRUE(contains(pixel.err, "the present limits are 0 to 144115188075855871")) << pixel.err;
}

TEST(AppletctlSet, ReachesElementsOfArrays) {
    const std::string red = "FG_LUT_VALUE_RED";
    EXPECT_EQ(run({"get", red + "[1..2]", "lut_value_red[0x3ffe..]"}).out,
              red + "[1] = 4\n" + red + "[2] = 8\n" + red + "[16382] = 65531\n" + red + "[16383] = 65535\n");
    const std::string design = "  set Device1_Process0_LookupTable_R_LUTcontent field ";
    EXPECT_EQ(run({"trace", "set", red + "[100]=5", red + "[98..101]=0xffff"}).out,
              red + "[100] = 5\n" + design + "100+1\n" + red + "[98..101] = 65535\n" + design + "98+4\n");
    const json told = document({"set", red + "[5]=1", red + "[4..6]=9", red + "[6]=65536"})["assignments"];
    EXPECT_EQ(std::tuple(told[0]["index"], told[0]["value"]), std::tuple(5, 1));
    EXPECT_EQ(std::tuple(told[1]["first"], told[1]["values"]), std::tuple(4, json({9, 9, 9})));
    EXPECT_EQ(told[2]["error"]["code"], -6000);
    EXPECT_EQ(told[2]["value"], 9);
    EXPECT_EQ(document({"get", red + "[..]"})["parameters"][0]["values"].size(), 16384u);
}

TEST(AppletctlSet, StopsAtTheFirstRefusal) {
    const Words arguments{"set", "FG_WIDTH=2048", "FG_WIDTH=20000", "FG_HEIGHT=5"};
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.out, "FG_WIDTH = 2048 pixel\n");
    EXPECT_EQ(
        outcome.err,
        "appletctl: FG_WIDTH=20000 was refused: -6000, value out of range; the present limits are "
        "4 to 16384 in steps of 4 pixel; the maximum is fixed; the nearest accepted value is 16384 pixel\n"
        "appletctl: not set after that: FG_HEIGHT\n");
    const json told = document(arguments);
    EXPECT_EQ(told["done"], false);
    ASSERT_EQ(told["assignments"].size(), 2u);
    EXPECT_EQ(told["assignments"][0]["value"], 2048);
    EXPECT_EQ(told["assignments"][1]["error"]["code"], -6000);
    EXPECT_EQ(told["assignments"][1]["maximum"], 16384);
    EXPECT_EQ(told["assignments"][1]["value"], 2048);
    EXPECT_EQ(told["notSet"], json({"FG_HEIGHT"}));
}

TEST(AppletctlSet, SaysWhyAValueWasRefused) {
    const std::pair<Words, const char*> cases[] = {
        {{"FG_WIDTH=1022"},
         "-7080, value not on the parameter's grid; the present limits are 4 to 16384 in steps"},
        {{"FG_LINETRIGGERINSRC=8"}, "-6000, value out of range; the entries are TRGINSRC_GPI_0 (0), "},
        {{"FG_CAMSTATUS=1"}, "-12, read-only, or not available in the runtime; the parameter is read-only"},
        // The limits move with the neighbours, and a neighbour may stand against a value within them.
        {{"FG_XOFFSET=1024", "FG_WIDTH=16384"}, "the present limits are 4 to 15360 in steps of 4 pixel"},
        {{"FG_VANTAGEPOINT=1", "FG_SENSORWIDTH=512"},
         "it keeps to the published limits, 4 to 16384 in steps of 4 pixel; the minimum is set by "
         "FG_VANTAGEPOINT"},
        {{"FG_WIDTH=2048", "FG_VANTAGEPOINT=1"},
         "it is an entry that is not accepted now; accepted with FG_SENSORWIDTH=2048 or FG_WIDTH=1024"},
        {{"FG_XOFFSET=64", "FG_WIDTH=20000"},
         "; the maximum is set by FG_XOFFSET (16384 with FG_XOFFSET=0); "},
        {{"FG_VANTAGEPOINT=2", "FG_SENSORHEIGHT=40000"},
         " and the memory of the board; the nearest accepted value is 32257 pixel"},
        {{"FG_CAMERASIMULATOR_SELECT_MODE=FG_PIXEL_FREQUENCY"},
         "not accepted now; no change of another parameter that was tried makes it accepted"},
        {{"FG_LUT_VALUE_RED[3]=70000"}, "; the nearest accepted value is 65535"},
        {{"FG_CAMERASIMULATOR_PIXEL_FREQUENCY=100"}, "its setter refuses every value that was tried"},
    };
    for (const auto& [assignments, expected] : cases) {
        Words arguments{"set"};
        arguments.insert(arguments.end(), assignments.begin(), assignments.end());
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 1) << assignments.back();
        EXPECT_TRUE(contains(outcome.err, assignments.back() + " was refused: ")) << outcome.err;
        EXPECT_TRUE(contains(outcome.err, expected)) << outcome.err;
    }
    // So does every command that takes assignments.
    const support::TemporaryFolder folder;
    const std::string file = folder / "x.mcf";
    for (const Words& command :
         {Words{"reset"}, Words{"route"}, Words{"lint"}, Words{"timing"}, Words{"report"},
          Words{"lut", "show"}, Words{"save", file}, Words{"plan"}, Words{"limits", "FG_HEIGHT", "--with"}}) {
        Words arguments = command;
        arguments.push_back("FG_WIDTH=2");
        EXPECT_TRUE(contains(run(arguments).err, "; the nearest accepted value is 4 pixel"))
            << command.front();
    }
}

TEST(AppletctlSet, SaysWhatAValueWaitsFor) {
    const Words words{"set", "FG_LINE_DOWNSCALE=4"};
    const std::string told = run(words).out;
    EXPECT_TRUE(contains(told, "FG_LINE_DOWNSCALE has no effect yet: it is read-only until "
                               "FG_LINETRIGGERMODE=ASYNC_TRIGGER or "))
        << told;
    EXPECT_FALSE(
        document({"set", "FG_LINE_DOWNSCALE=4", "FG_LINETRIGGERMODE=ASYNC_TRIGGER"}).contains("waiting"));
}

TEST(Appletctl, CallsWrongUsageByName) {
    const std::pair<Words, const char*> cases[] = {
        {{}, "A command is required"},
        {{"lst"}, "there is no command 'lst'; did you mean 'list'?"},
        {{"info", "more"}, "more"},
        {{"get"}, "'get': NAME is missing; 'appletctl get --help' shows the usage"},
        {{"list", "no such thing"}, "'no such thing'"},
        {{"trace", "set", "FG_WIDTH=4", "--offline"}, "--offline has none"},
        {{"set", "FG_WIDTH"}, "'FG_WIDTH' is not of the form NAME=VALUE"},
        {{"set", "FG_WIDTH=12abc"}, "'12abc' is not a whole number from 0 to 4294967295"},
        {{"set", "FG_WIDTH=-4"}, "'-4' is not a whole number"},
        {{"set", "FG_WIDTH=4294967296"}, "'4294967296' is not a whole number"},
        {{"set", "FG_DIGIO_OUTPUT=-2147483649"}, "from -2147483648 to 2147483647"},
        {{"set", "FG_LINEPERIODE=nan"}, "'nan' is not a floating point number"},
        {{"set", "FG_VANTAGEPOINT=LEFT"},
         "did you mean FG_VANTAGEPOINT_TOP_LEFT (0) or FG_VANTAGEPOINT_BOTTOM_LEFT (2)? The entries are "},
        {{"set", "FG_IMGTRIGGERINSRC=SOFTWARE"}, "did you mean TRGINSOFTWARE (-1)? 'appletctl limits FG_IMG"},
        {{"set", "FG_TRIGGERCAMERA_SOURCE=CAM0_EXSYNC3"}, "did you mean FG_SIGNAL_CAM0_EXSYNC"},
        {{"set", "FG_WIDTH=12us"}, "the unit of the parameter is pixel, and 'us' does not convert to it"},
        {{"set", "FG_LINEPERIODE=10kHz"}, "; 10 kHz is a period of 100 µs"},
        {{"set", "FG_DIGIO_OUTPUT=3ms"}, "the parameter has no unit: give the number alone, as 3"},
        {{"set", "FG_TIMEOUT=1500ms"}, "'1.5' is not a whole number"},
        {{"set", "FG_LUT_VALUE_RED=1"}, "array of 16384 elements"},
        {{"set", "FG_LUT_VALUE_RED[3]=-1"}, "FG_LUT_VALUE_RED[3]=-1: '-1' is not a whole number"},
        {{"get", "FG_LUT_VALUE_RED[16384]"}, "has 16384 elements, 0 to 16383"},
        {{"get", "FG_LUT_VALUE_RED[0..16384]"}, "has 16384 elements, 0 to 16383"},
        {{"get", "FG_LUT_VALUE_RED[5..4]"}, "the first element stands behind the last one"},
        {{"get", "FG_LUT_VALUE_RED[1,2]"}, "the elements are named as [100], [100..110]"},
        {{"get", "FG_LUT_VALUE_RED[1"}, "lacks the ']'"},
        {{"get", "FG_WIDTH[0]"}, "FG_WIDTH[0]: the parameter is no array"},
        {{"plot"}, "did you mean 'lut plot'?"},
        {{"lut", "shw"}, "there is no command 'lut shw'; did you mean 'lut show'?"},
        {{"lut"}, "'lut' needs one of show, plot, save, load"},
        {{"help", "lut", "sho"}, "did you mean 'lut show'?"},
        {{"list", "a", "b"}, "'list' takes one PATTERN, and there is 'b' as well"},
        {{"get", "100"}, "did you mean FG_WIDTH?"},
        {{"get", "Exposure Time"}, "did you mean FG_LINEEXPOSURE?"},
        {{"plan", "FG_WIDTH"}, "'FG_WIDTH' is a parameter, and a file or an assignment is wanted"},
        {{"check", "/nowhere/a.mcf"}, "\"/nowhere/a.mcf\" is no file that can be read"},
        {{"get", "FG_WIDTH", "--from", "/nowhere/a.mcf"}, "\"/nowhere/a.mcf\" is no file that can be read"},
        {{"lut", "load", "/nowhere/a.lut"}, "\"/nowhere/a.lut\" is no file that can be read"},
        {{"list", "--bridge", "b.so"}, "give --board system as well"},
        {{"set", "FG_DEBUGFILE=x\ny"}, "a line of its own in a configuration file"},
        {{"save", "x.mcf", "--offline"}, "'save' needs a board"},
        {{"check", ""}, "the name of the file is empty"},
        {{"diff", "/nowhere/a.mcf"}, "\"/nowhere/a.mcf\" is no file that can be read"},
        {{"lut", "show", "--channel", "pink"},
         "--channel takes one of red, green, blue, all, and 'pink' is none"},
        {{"watch", "width", "--interval", "0"},
         "--interval takes a number from 1 to 86400000, and '0' is none"},
        {{"watch", "width", "--interval", "x"},
         "--interval takes a number from 1 to 86400000, and 'x' is none"},
        {{"watch", "width", "--interval"}, "--interval: its value is missing"},
        {{"limits", "width", "--with", "FG_WIDTH=4", "B=2"},
         "'B=2' is an assignment, and a name is wanted; give --with"},
        {{"get", std::string(100'000, 'x')}, "xx... (100000 bytes)'"},
        {{"set", "FG_WIDTH=" + std::string(100'000, 'x')}, "(100000 bytes): "},
        {{"trace", "diff", "a", "b", "--jsn"}, "there is no option '--jsn'; did you mean '--json'?"},
        {{"events", "--offline"}, "'events' needs a board"},
        {{"lut", "save", ""}, "the name of the file is empty"},
        {{"xml", "--out", ""}, "the name of the file is empty"},
        {{"lut", "plot", "table.lut"}, "does not end in .svg"},
        {{"lut", "save", "table.txt"}, "does not end in .lut"},
        {{"save", "x.txt"}, "has no .mcf in its name"},
        // The last of several is wrong: the first is not carried out.
        {{"trace", "set", "FG_WIDTH=4", "FG_HEIGHT=x"}, "'x' is not a whole number"},
    };
    for (const auto& [arguments, expected] : cases) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << expected;
        EXPECT_EQ(outcome.out, "") << expected;
        EXPECT_TRUE(contains(outcome.err, expected)) << outcome.err;
    }
}

TEST(AppletctlTrace, ShowsTheWritesOfEachAssignmentInOrder) {
    const Words arguments{"trace", "set", "FG_WIDTH=2048", "FG_VANTAGEPOINT=FG_VANTAGEPOINT_TOP_RIGHT"};
    const Outcome refused = run(arguments); // 2048 pixels do not fit into a sensor of 1024 from the right
    EXPECT_EQ(refused.exitCode, 1);
    const std::string buffer = "  set Device1_Process0_Buffer_0_";
    EXPECT_EQ(refused.out, "FG_WIDTH = 2048 pixel\n" + buffer + "SensorWidth u32 2048\n" + buffer +
                               "XMirror u32 0\n" + buffer + "YMirror i32 0\n" + buffer +
                               "SensorHeight u32 1\n" + buffer + "PixelFormat u32 8\n" + buffer +
                               "XLength u32 2048\n" + buffer + "XOffset u32 0\n");
    EXPECT_EQ(document(arguments)["assignments"][0]["writes"].size(), 7u);
    EXPECT_EQ(document(arguments)["assignments"][1]["writes"], json::array());
}

TEST(Appletctl, GivesTheXmlDocumentOutOrIntoAFile) {
    const std::string shown = run({"xml"}).out;
    EXPECT_TRUE(shown.starts_with("<?xml version=\"1.0\"") && shown.ends_with("</RegisterDescription>\n"));
    EXPECT_EQ(document({"xml"})["document"], shown);

    const std::string file =
        std::filesystem::temp_directory_path() / ("appletctl_" + std::to_string(getpid()) + ".xml");
    EXPECT_EQ(run({"xml", "--out", file}).out, '"' + file + "\" written\n");
    std::ostringstream written;
    written << std::ifstream(file, std::ios::binary).rdbuf();
    EXPECT_EQ(written.str(), shown);
    EXPECT_EQ(document({"xml", "--out", file})["bytes"], shown.size());
    std::filesystem::remove(file);

    const Outcome nowhere = run({"xml", "--out", file + "/none"});
    EXPECT_EQ(nowhere.exitCode, 1);
    EXPECT_TRUE(contains(nowhere.err, "cannot be written: no file can be made in its folder")) << nowhere.err;
}

class AppletctlLut : public testing::Test {
protected:
    void SetUp() override { std::filesystem::create_directory(folder); }
    void TearDown() override { std::filesystem::remove_all(folder); }

    /** A file whose first entries are these values for red, twice that for green, ten times for blue. */
    std::string fileWith(const std::vector<int>& entries) const {
        std::ofstream stream(folder / "in.lut");
        const std::pair<const char*, int> sections[] = {{"[red]", 1}, {"[green]", 2}, {"[blue]", 10}};
        for (const auto& [name, factor] : sections) {
            stream << name << "\nid=0;\nnrOfElements=" << entries.size() << ";\n";
            for (std::size_t i = 0; i < entries.size(); ++i)
                stream << i << ',' << factor * entries[i] << ";\n";
        }
        return folder / "in.lut";
    }

    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("appletctl_lut_" + std::to_string(getpid()));
};

TEST_F(AppletctlLut, TellsWhatTheTablesAreLike) {
    const json plain = document({"lut", "show"})["lut"];
    EXPECT_EQ(plain["equal"], true);
    EXPECT_EQ(plain["colours"][0],
              json::parse(R"({"colour": "red", "minimum": 0, "maximum": 65535, "distinct": 16384,
                  "course": "rising", "clippedAtStart": null, "clippedAtEnd": null, "board": "same"})"));
    const json steep = document({"lut", "show", "FG_PROCESSING_GAIN=2", "FG_PROCESSING_OFFSET=-0.25"});
    // 2 * (i / 16383 - 1/4) * 65535 rounds to 0 up to i = 4095, and reaches 65535 at three quarters.
    EXPECT_EQ(steep["lut"]["colours"][1]["clippedAtStart"],
              json({{"first", 0}, {"last", 4095}, {"value", 0}}));
    EXPECT_EQ(steep["lut"]["colours"][1]["clippedAtEnd"],
              json({{"first", 12288}, {"last", 16383}, {"value", 65535}}));
    EXPECT_EQ(steep["settings"]["FG_PROCESSING_GAIN"]["value"], 2);
    const json edited =
        document({"lut", "show", "FG_LUT_VALUE_GREEN[5000]=0", "FG_LUT_VALUE_BLUE[..]=9"})["lut"]["colours"];
    EXPECT_EQ(edited[1]["course"], "turns at entry 4999");
    EXPECT_EQ(std::tuple(edited[2]["course"], edited[2]["distinct"]), std::tuple("constant", 1));
}

TEST_F(AppletctlLut, LoadsAndSaysWhatTheBoardReceives) {
    const json told = document({"lut", "load", fileWith({7, 3, 5, 6})});
    EXPECT_EQ(told["settings"]["FG_LUT_TYPE"]["symbol"], "LUT_TYPE_CUSTOM");
    EXPECT_EQ(told["changed"], true);
    EXPECT_EQ(told["lut"]["colours"][0]["course"], "turns at entry 1");
    for (const std::size_t colour : {0u, 1u, 2u})
        EXPECT_EQ(told["lut"]["colours"][colour]["board"], colour == 2 ? "same" : "table of blue");
    EXPECT_TRUE(contains(run({"lut", "load", fileWith({1})}).out,
                         "The board receives the table of blue for all three colours"));
    EXPECT_TRUE(contains(run({"lut", "load", fileWith({})}).out, "changed no entry"));
}

TEST_F(AppletctlLut, RefusesWhatIsNoWholeTable) {
    const std::string whole = support::fileBytes(fileWith({7, 3, 5, 6}));
    const std::pair<std::string, const char*> cases[] = {
        {"", "it is no lookup table file"},
        {"garbage\n", "it is no lookup table file"},
        {whole.substr(0, whole.find("[blue]")), "the section [blue] is missing"},
        {whole.substr(0, whole.size() - 4), "[blue] has 3 of 4 elements"},
    };
    for (const auto& [text, message] : cases) {
        support::writeFile(folder / "bad.lut", text);
        const Outcome outcome = run({"lut", "load", folder / "bad.lut"});
        EXPECT_EQ(std::pair(outcome.exitCode, outcome.out), std::pair(1, std::string())) << message;
        EXPECT_TRUE(contains(outcome.err, message)) << outcome.err;
    }
    EXPECT_EQ(run({"lut", "load", "/dev/null"}).exitCode, 1);
    // When the board refuses a table, the applet is as before.
    support::writeFile(folder / "x.scenario",
                       "fail name Device1_Process0_LookupTable_B_LUTcontent -2010\nexpect exit 1 lut load " +
                           fileWith({7, 3}) +
                           "\nexpect value FG_LUT_CUSTOM_FILE == ''\n"
                           "expect value FG_LUT_TYPE == LUT_TYPE_PROCESSING\n");
    const Outcome outcome = run({"run", folder / "x.scenario"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out << outcome.err;
}

TEST_F(AppletctlLut, SavesWhatItLoadsAgain) {
    const std::string file = folder / "out.lut";
    const json saved = document({"lut", "save", file, "FG_PROCESSING_GAMMA=0.4", "FG_LUT_VALUE_BLUE[8]=77"});
    const json loaded = document({"lut", "load", file});
    ASSERT_EQ(saved["done"], true);
    for (json colour : saved["lut"]["colours"]) {
        json again = loaded["lut"]["colours"][colour["colour"] == "red"     ? 0
                                              : colour["colour"] == "green" ? 1
                                                                            : 2];
        colour.erase("board");
        again.erase("board");
        EXPECT_EQ(colour, again);
    }
}

TEST_F(AppletctlLut, DrawsCurves) {
    const std::string piped = run({"lut", "show"}, {"LC_ALL=C.UTF-8", "TERM=xterm"}).out;
    EXPECT_TRUE(contains(piped, "\nred, green and blue\n  65535 |")) << piped;
    EXPECT_TRUE(contains(piped, "\n      0 |**")) << piped;
    EXPECT_FALSE(
        contains(run({"lut", "show", "--channel", "blue", "FG_LUT_VALUE_BLUE[0]=1"}).out, "\nred\n"));
    const std::string table = folder / "a<&b.lut";
    const std::string file = folder / "curves.svg";
    ASSERT_EQ(run({"lut", "save", table, "FG_LUT_VALUE_RED[..]=65535"}).exitCode, 0);
    const Words custom{"FG_LUT_CUSTOM_FILE=" + table, "FG_LUT_TYPE=LUT_TYPE_CUSTOM"};
    ASSERT_EQ(run({"lut", "plot", file, custom[0], custom[1]}).exitCode, 0);
    std::ifstream stream(file);
    const std::string svg{std::istreambuf_iterator<char>(stream), {}};
    EXPECT_TRUE(contains(svg, "a&lt;&amp;b.lut")) << svg.substr(0, 1000);
    EXPECT_TRUE(contains(svg, "points=\"80,70 81,70 ")) << "red runs along the top";
    EXPECT_TRUE(contains(svg, ">bars: clipped, 16384 entries of red<"));
    EXPECT_TRUE(contains(svg, "y=\"66\"")) << "the settings take two lines";
    ASSERT_EQ(run({"lut", "plot", file, "FG_PROCESSING_GAIN=2"}).exitCode, 0);
    std::ifstream clipped(file);
    EXPECT_TRUE(
        contains({std::istreambuf_iterator<char>(clipped), {}}, ">bars: clipped, 8192 entries of red"));
    EXPECT_EQ(run({"lut", "plot", folder / "no" / "x.svg"}).exitCode, 1);
}

class AppletctlConfiguration : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directory(folder);
        ASSERT_EQ(run({"save", saved, "FG_WIDTH=2048", "FG_LINEPERIODE=150.4"}).exitCode, 0);
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    /** A copy of the saved file in which one text has become another. */
    std::string edited(const std::string& from, const std::string& to) const {
        std::ifstream in(saved);
        std::string text{std::istreambuf_iterator<char>(in), {}};
        const std::size_t place = text.find(from);
        EXPECT_NE(place, std::string::npos) << from;
        std::ofstream(folder / "edited.mcf") << text.replace(place, from.size(), to);
        return folder / "edited.mcf";
    }

    /** The findings of a check, without what was rounded only. */
    static json lossesOf(const std::string& file) {
        json losses = json::array();
        const json told = document({"check", file});
        for (const json& finding : told["findings"])
            if (finding["isLoss"]) losses.push_back(finding);
        return losses;
    }

    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("appletctl_mcf_" + std::to_string(getpid()));
    const std::string saved = folder / "saved.mcf";
};

TEST_F(AppletctlConfiguration, ComesBackAsItWasSaved) {
    const Outcome loaded = run({"load", saved});
    EXPECT_EQ(loaded.exitCode, 0) << loaded.err;
    EXPECT_EQ(loaded.err, "");
    EXPECT_TRUE(contains(loaded.out, "  FG_WIDTH        1024 pixel  2048 pixel\n"));
    EXPECT_TRUE(contains(loaded.out, "  FG_LINEPERIODE  200 µs      150.4 µs\n"));
    EXPECT_TRUE(
        contains(loaded.out, "rates move by one of its clock cycles: FG_CAMERASIMULATOR_LINERATE from "))
        << loaded.out;
    EXPECT_EQ(document({"save", saved})["values"], 114);
    EXPECT_TRUE(contains(run({"save", saved}).out, "All of them are defaults."));
    for (const char* command : {"load", "plan"})
        EXPECT_TRUE(
            run({command, saved}).out.starts_with("Nothing changes but the camera simulator's rates, by one"))
            << command;
    EXPECT_TRUE(contains(run({"check", edited("LINERATE=10240.4456642", "LINERATE=1048.568")}).out,
                         "loses nothing but these digits.\n"));
}

TEST_F(AppletctlConfiguration, TellsEachLossAndWhy) {
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
        {"FG_HEIGHT=1024;\n", "", "missing", "FG_HEIGHT is missing: it stays as it was, 1024 pixel"},
        {"FG_WIDTH=2048", "FG_WIDTH=1022", "kept", "1022 pixel was refused: -7080"},
        {"FG_LINETRIGGERMODE=1", "FG_LINETRIGGERMODE=77", "kept", "the entries are "},
        {"FG_PROCESSING_GAIN=1;", "FG_PROCESSING_GAIN=-1e9;", "kept", "-6000"},
        {"SIMULATOR_WIDTH=1024", "SIMULATOR_WIDTH=512", "unapplied", "set FG_CAMERASIMULATOR_WIDTH=512"},
        {"FG_LINEPERIODE=150.4", "FG_LINEPERIODE=150,4", "unreadable",
         "it is 150 µs: a load reads decimal numbers with a point"},
        {"FG_EXSYNCON=1", "FG_EXSYNCON=FG_ON", "unreadable",
         "the file has \"FG_ON\", after the load it is FG_OFF (0)"},
        {"FG_TIMEOUT=", "FG_TIMEOUT=7;\nFG_TIMEOUT=", "repeated", "FG_TIMEOUT is in the file 2 times"},
        {"FG_TIMEOUT=", "FG_TIMEOUT=7;\nFG_TIMEOUT=8;\nFG_TIMEOUT=", "repeated", "in the file 3 times"},
        {"FG_DEBUGFILE=''", "FG_DEBUGFILE='a;b'", "cut", "the file has \"a;b\", after the load it is \"a\""},
        {"[Port A]\n", "[Port A]\nFG_WIDHT=4;\n", "unknown", "did you mean FG_WIDTH"},
        {"Typ='Grab", "Typ='Grip", "file", "it is a file of the applet \"Grip_TwinLaneLineColor\""},
        {"Hersteller='Norvane AG';\n", "", "file", "its header lacks Hersteller"},
        {"[Kamerasektion]\n", "[Kamerasektion]\r\n", "file", "carriage return"},
    };
    for (const auto& [from, to, kind, message] : cases) {
        const json losses = lossesOf(edited(from, to));
        ASSERT_EQ(losses.size(), 1u) << from << losses;
        EXPECT_EQ(losses[0]["kind"], kind) << losses;
        // What a load takes nothing of is compared with nothing.
        const bool isWhole = std::string_view(kind) == "file";
        EXPECT_EQ(run({"diff", folder / "edited.mcf", saved}).exitCode == 2, isWhole) << from;
        if (isWhole || std::string_view(kind) == "unknown") {
            EXPECT_TRUE(contains(run({"lint", folder / "edited.mcf"}).out, message)) << from;
        }
        EXPECT_TRUE(contains(losses[0]["message"], message)) << losses;
    }
    EXPECT_EQ(run({"check", edited("FG_WIDTH=2048", "FG_WIDTH=1022")}).exitCode, 1);
    // A key behind a blank is another key.
    EXPECT_EQ(lossesOf(edited("FG_WIDTH=", " FG_WIDTH=")).size(), 2u);
    // The line rate follows from the width in this mode: it is not lost by itself.
    const std::string frames = folder / "frames.mcf";
    run({"save", frames, "FG_CAMERASIMULATOR_SELECT_MODE=FG_FRAMERATE", "FG_CAMERASIMULATOR_WIDTH=32"});
    EXPECT_EQ(lossesOf(frames).size(), 1u) << lossesOf(frames);
    // Neither spelling nor what a load does not read is a loss.
    EXPECT_EQ(lossesOf(edited("FG_LINEPERIODE=150.4;", "FG_LINEPERIODE=1.504e2")), json::array());
    EXPECT_EQ(lossesOf(edited("FG_DIGIO_INPUT=", "FG_DIGIO_INPUT=1")), json::array());
}

TEST_F(AppletctlConfiguration, SaysWhatASaveCannotKeep) {
    const Outcome outcome = run({"save", saved, "FG_CAMERASIMULATOR_WIDTH=512", "FG_DEBUGFILE=a'b"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_TRUE(contains(outcome.err, "FG_CAMERASIMULATOR_WIDTH=512 afterwards")) << outcome.err;
    EXPECT_TRUE(contains(outcome.err, "the file has \"a'b\", after the load it is \"a\"")) << outcome.err;
}

TEST_F(AppletctlConfiguration, ComparesValuesBySymbol) {
    const std::string other = edited("FG_LINETRIGGERMODE=1", "FG_DIGIO_INPUT=9;\nFG_LINETRIGGERMODE=2");
    const Outcome outcome = run({"diff", saved, other});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_TRUE(contains(outcome.out, "  FG_LINETRIGGERMODE  GRABBER_CONTROLLED (1)")) << outcome.out;
    EXPECT_FALSE(contains(outcome.out, "FG_DIGIO_INPUT")) << "is for the reader only";
    const json lacking = document({"diff", saved, edited("FG_WIDTH=2048;\n", "")})["differences"];
    EXPECT_EQ(lacking, json::parse(R"([{"name": "FG_WIDTH", "unit": "pixel",
                                        "first": {"value": 2048}, "second": null}])"));
    EXPECT_EQ(run({"diff", saved, edited("=2048;", "=2048")}).out, "The values are the same.\n");
    EXPECT_EQ(run({"diff", saved, "FG_WIDTH=2048", "FG_LINEPERIODE=150.4"}).exitCode, 0);
    EXPECT_EQ(run({"diff", saved}).exitCode, 1);
    for (const auto& [with, exitCode] : {std::pair<Words, int>{{"FG_WIDTH=3"}, 1},
                                         {{folder / "none.mcf"}, 2},
                                         {{"--applet", "/nowhere/libx.so"}, 3}}) {
        Words arguments{"diff", saved};
        arguments.insert(arguments.end(), with.begin(), with.end());
        EXPECT_EQ(run(arguments).exitCode, exitCode) << with.back();
    }
}

TEST_F(AppletctlConfiguration, IsTheStateThatACommandLooksAt) {
    // Values of a file, then assignments, for a command of each kind.
    const std::pair<Words, const char*> cases[] = {
        {{"get", "FG_WIDTH", "FG_HEIGHT"}, "FG_WIDTH = 2048 pixel\nFG_HEIGHT = 512 pixel\n"},
        {{"list", "width", "-f", "name,value", "--plain"}, "FG_WIDTH\t2048\n"},
        {{"limits", "FG_XOFFSET"}, "0 to 14336"},
        {{"diff", saved}, "512"},
        {{"trace", "set", "FG_WIDTH=64"}, "FG_WIDTH = 64 pixel"},
    };
    for (auto [arguments, expected] : cases) {
        if (arguments.front() != "trace")
            arguments.insert(arguments.end(), {"--from", saved, "--with", "FG_HEIGHT=512"});
        const Outcome outcome = run(arguments);
        EXPECT_TRUE(contains(outcome.out, expected)) << outcome.out << outcome.err;
    }
    // In a shell it is a copy: the board is as before.
    support::writeFile(folder / "lines", "get FG_WIDTH --with FG_WIDTH=64\nget FG_WIDTH\nundo\n");
    const Outcome shell = run({"shell"}, {}, (folder / "lines").c_str());
    EXPECT_EQ(shell.out, "FG_WIDTH = 64 pixel\nFG_WIDTH = 1024 pixel\n");
    EXPECT_TRUE(contains(shell.err, "nothing to undo")) << shell.err;
    EXPECT_EQ(run({"get", "FG_WIDTH", "--with", "FG_WIDTH=3"}).exitCode, 1);
}

TEST(AppletctlDescribe, TellsAllOfAParameter) {
    const Outcome outcome = run({"describe", "vantagepoint"});
    EXPECT_EQ(outcome.exitCode, 0);
    for (const char* expected : {"Vantage Point\n", "300112\n", "Sensor Geometry\n", "Enum\n",
                                 "FG_VANTAGEPOINT_BOTTOM_RIGHT = 3, Bottom-Right\n", "Use for mirroring."})
        EXPECT_TRUE(contains(outcome.out, expected)) << expected << outcome.out;
}

TEST(AppletctlInfo, TellsWhatTheLibraryIs) {
    const json told = document({"info"});
    EXPECT_EQ(told["name"], "Grab_TwinLaneLineColor");
    EXPECT_EQ(told["version"], "2.2.4.0");
    EXPECT_EQ(told["designImageBytes"], 7963963);
    EXPECT_EQ(told["iconBytes"], 4676);
    EXPECT_EQ(told["processes"], 1);
    EXPECT_TRUE(std::filesystem::exists(told["library"].get<std::string>()));
}

TEST(AppletctlEvents, TellsNamesMasksAndWhatComesWithThem) {
    const json told = document({"events"})["events"];
    EXPECT_EQ(told.size(), 33u) << "the design lists 34, one of which has no public name";
    EXPECT_EQ(told[3], json::parse(R"({"name": "FG_END_OF_LINE_CAM_PORT_0", "mask": 8,
                                       "data": {"name": "LineTransferEnd", "value": 0}})"));
    EXPECT_EQ(told[4],
              json::parse(R"({"name": "Device1_Process0_Camera_LinkLost", "mask": 16, "data": null})"));
    EXPECT_EQ(told.back()["mask"], 0x100000000);
    const std::string table = run({"events"}).out;
    EXPECT_TRUE(contains(table, "  FG_CUSTOM_SIGNAL_EVENT_1                       0x100000000  "
                                "CustomSignalEvent1             -1\n"))
        << table;
}

TEST(AppletctlRoute, ShowsWhatTheBoardHolds) {
    const json told = document({"route", "FG_TRIGGEROUT_GPO_3_SOURCE=FG_SIGNAL_GPI_1",
                                "FG_TRIGGEROUT_GPO_3_POLARITY=FG_LOW"})["routes"];
    EXPECT_EQ(told.size(), 15u);
    const std::string gpo3 = "Device1_Process1_Trigger_OutputMapping_SelectGPO_Select3_";
    const json expected = {
        {"output", "FG_TRIGGEROUT_GPO_3"},
        {"source", {{"value", 1011}, {"symbol", "FG_SIGNAL_GPI_1"}, {"label", "GPI 1"}}},
        {"polarity", {{"value", 0}, {"symbol", "FG_LOW"}, {"label", "Low Active"}}},
        {"select", {{"parameter", gpo3 + "SelectSignal_Select"}, {"board", 22}, {"expected", 22}}},
        {"invert", {{"parameter", gpo3 + "Polarity_Invert"}, {"board", 1}, {"expected", 1}}},
        {"agrees", true}};
    EXPECT_EQ(told[4], expected);
    // Written past the applet, which still takes the output for VCC.
    const Outcome changed =
        run({"route", "DLOOMA_" + gpo3 + "SelectSignal_Select=7"}, {"VEXO_ENABLE_DLOOMA=on"});
    EXPECT_EQ(changed.exitCode, 1);
    EXPECT_TRUE(contains(changed.out, "VCC                        FG_HIGH   7, not 0       1       no\n"))
        << changed.out;
    EXPECT_EQ(changed.err,
              "appletctl: the board does not hold what the applet writes for FG_TRIGGEROUT_GPO_3\n");
    EXPECT_EQ(document({"--offline", "route"})["routes"][0]["agrees"], nullptr);
    const json inputs =
        document({"route", "FG_IMGTRIGGERMODE=ASYNC_TRIGGER", "FG_IMGTRIGGERINSRC=4"})["inputs"];
    ASSERT_EQ(inputs.size(), 3u);
    EXPECT_EQ(std::pair(inputs[0]["source"]["symbol"], inputs[0]["inUse"]),
              std::pair(json("TRGINSRC_GPI_1"), json(false)));
    EXPECT_EQ(std::tuple(inputs[2]["input"], inputs[2]["inUse"], inputs[2]["agrees"]),
              std::tuple("image trigger", true, true));
    EXPECT_EQ(inputs[2]["select"]["board"], 4) << inputs[2];
}

/** Registers that read 5, fail, read 9 and then 2. */
const Words scriptedRegisters{"VEXO_ENABLE_DRA=on", "LD_PRELOAD=" SCRIPTED_REGISTERS,
                              "ASAN_OPTIONS=verify_asan_link_order=0"};

TEST(AppletctlWatch, GoesOnAfterAFailedRead) {
    const Words arguments{"watch", "dra_fanlevel", "--interval", "10", "--count", "4"};
    Words asText = arguments;
    asText.push_back("--plain");
    const Outcome text = run(asText, scriptedRegisters);
    EXPECT_EQ(text.exitCode, 0) << text.err;
    const char* const readings[] = {"5", "(-2010, a code of the runtime or the board)", "9", "2"};
    std::size_t end = 0;
    for (const std::string reading : readings) {
        end = text.out.find("\tDRA_FanLevel\t" + reading + "\t\n", end);
        ASSERT_NE(end, std::string::npos) << reading << " in " << text.out;
    }
    std::istringstream lines(run(arguments, scriptedRegisters).out); // into a file: documents
    std::vector<json> rounds;
    for (std::string line; std::getline(lines, line);)
        rounds.push_back(json::parse(line));
    ASSERT_EQ(rounds.size(), 4u);
    EXPECT_EQ(rounds[1]["parameters"][0]["error"]["code"], -2010);
    EXPECT_EQ(rounds[1]["done"], false);
    EXPECT_EQ(rounds[3]["parameters"][0]["value"], 2);
    Words withAlarm = asText;
    withAlarm.insert(withAlarm.end(),
                     {"--rate", "--alarm-if", "(DRA_FanLevel > 8 || FG_WIDTH == 4) && FG_WIDTH != 5"});
    const Outcome alarmed = run(withAlarm, scriptedRegisters);
    EXPECT_EQ(alarmed.exitCode, 0) << alarmed.err;
    EXPECT_TRUE(contains(alarmed.out, "\tALARM\n")) << alarmed.out;
    EXPECT_TRUE(contains(alarmed.out, "\tDRA_FanLevel\t2\t\t-")) << alarmed.out;
    EXPECT_GE(rounds[3]["seconds"], 0.03);
}

TEST(AppletctlWatch, RedrawsOnATerminal) {
    const Words arguments{"watch", "dra_fanlevel", "--interval", "10", "--count", "4"};
    Words environment = scriptedRegisters;
    environment.insert(environment.end(), {"TERM=xterm", "NO_COLOR=1", "LC_ALL=C"});
    const std::string shown = onTerminal(arguments, environment);
    EXPECT_TRUE(contains(shown, "\033[3A\r\033[J")) << "over the three lines of the round before";
    EXPECT_TRUE(contains(shown, "  DRA_FanLevel  2            2        9        -#_\r\n  round 4, "))
        << shown;
    environment.push_back("TERM=dumb");
    EXPECT_FALSE(contains(onTerminal(arguments, environment), "\033["));
}

/** Starts a watch whose rounds are a day apart, waits for its first line, does something to it or to the pipe
 *  that it writes to, and gives the outcome. */
template <typename Action> Outcome afterFirstLine(Action action) {
    int pipeEnds[2];
    std::FILE* err = std::tmpfile();
    EXPECT_EQ(pipe(pipeEnds), 0);
    const pid_t child = fork();
    if (child == 0) {
        dup2(pipeEnds[1], STDOUT_FILENO);
        dup2(fileno(err), STDERR_FILENO);
        close(pipeEnds[0]);
        close(pipeEnds[1]);
        become({"watch", "FG_WIDTH", "--interval", "86400000"}, {});
    }
    close(pipeEnds[1]);
    std::string line;
    for (char c = 0; c != '\n' && read(pipeEnds[0], &c, 1) == 1;)
        line += c;
    action(child, pipeEnds[0]);
    const int exitCode = exitCodeOf(child);
    close(pipeEnds[0]);
    return {exitCode, line, contents(err)};
}

TEST(AppletctlWatch, EndsQuietlyOnASignalOrWithItsReader) {
    const auto expectQuiet = [](const Outcome& outcome, int exitCode) {
        EXPECT_EQ(outcome.exitCode, exitCode);
        EXPECT_EQ(json::parse(outcome.out)["parameters"][0]["value"], 1024);
        EXPECT_EQ(outcome.err, "");
    };
    expectQuiet(afterFirstLine([](pid_t child, int) { kill(child, SIGINT); }), 130);
    expectQuiet(afterFirstLine([](pid_t child, int) { kill(child, SIGTERM); }), 130);
    const int unused = open("/dev/null", O_RDONLY);
    expectQuiet(afterFirstLine([&](pid_t, int reader) { dup2(unused, reader); }), 0); // closes the reader
    close(unused);
}

TEST(Appletctl, WorksWithoutABoard) {
    EXPECT_EQ(run({"--offline", "get", "FG_WIDTH"}).out, "FG_WIDTH = 1024 pixel\n");
    for (const char* command : {"get", "list", "describe"}) {
        const json told =
            document({"--offline", command, "FG_SYSTEMMONITOR_FPGA_TEMPERATURE"})["parameters"][0];
        EXPECT_EQ(std::pair(told["value"], told["measured"]), std::pair(json(nullptr), json(false)))
            << command;
    }
    EXPECT_EQ(run({"set", "FG_WIDTH=64", "--offline"}).out, "FG_WIDTH = 64 pixel\n");
    EXPECT_EQ(run({"--offline", "set", "FG_WIDTH=20000"}).exitCode, 1);
    EXPECT_EQ(document({"--offline", "list"})["parameters"].size(), 164u);
    // Registers are a board's.
    EXPECT_EQ(run({"list", "DRA_*"}, {"VEXO_ENABLE_DRA=on"}).exitCode, 0);
    EXPECT_EQ(run({"--offline", "list", "DRA_*"}, {"VEXO_ENABLE_DRA=on"}).exitCode, 2);
}

TEST(Appletctl, NamesTheFileThatItCannotLoad) {
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / "appletctl_test_no_library.so";
    std::ofstream(file) << "no library";
    // A design that is refused leaves the object behind, on purpose.
    const Words refused = {"__VEXO_FORCE_EXTERNAL_TSL=", "ASAN_OPTIONS=detect_leaks=0"};
    const std::tuple<Words, Words, const char*> cases[] = {
        {{"--applet", "/nowhere/libx.so"}, {}, "libx.so was looked for in /nowhere, and there is none"},
        {{"--applet", file.string()}, {}, "cannot be loaded: "},
        {{}, refused, "looked for the file Grab_TwinLaneLineColor.tsl"},
        {{}, refused, "-100, "},
    };
    for (const auto& [options, environment, expected] : cases) {
        Words arguments{"get", "FG_WIDTH"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const Outcome outcome = run(arguments, environment);
        EXPECT_EQ(outcome.exitCode, 3);
        EXPECT_TRUE(contains(outcome.err, expected)) << outcome.err;
    }
    std::filesystem::remove(file);
}

TEST(Appletctl, ReachesRegistersAndDesignParameters) {
    const Words environment{"VEXO_ENABLE_DRA=on", "VEXO_ENABLE_DLOOMA=yes"};
    int writable = 0;
    const json registers = document({"list", "DRA_*"}, environment)["parameters"];
    for (const json& reg : registers) {
        EXPECT_GT(reg["id"], 1000000);
        if (reg["access"] == "ro") continue;
        ++writable;
        const std::string name = reg["name"];
        EXPECT_EQ(run({"set", name + "=1"}, environment).out, name + " = 1\n");
        // The full width arrives, 64 bits too.
        const std::string most = std::to_string(reg["maximum"].get<std::uint64_t>());
        EXPECT_EQ(run({"set", name + "=" + most}, environment).out, name + " = " + most + "\n");
    }
    EXPECT_GT(writable, 0);
    const std::string name = "DLOOMA_Device1_Process0_Buffer_0_XLength";
    EXPECT_EQ(run({"get", name}, environment).out, name + " = 1024\n");
    EXPECT_EQ(run({"trace", "set", name + "=12"}, environment).out,
              name + " = 12\n  set Device1_Process0_Buffer_0_XLength u32 12\n");
    EXPECT_EQ(run({"get", name}, {"VEXO_ENABLE_DLOOMA"}).exitCode, 2);
}

TEST(Appletctl, ColoursOnlyATerminalAndNeverWithNoColor) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    if (terminal < 0) GTEST_SKIP() << "this machine gives no pseudo-terminal";
    close(terminal);
    const char* escape = "\033[";
    const Words show{"lut", "show"};
    EXPECT_TRUE(contains(onTerminal(show, {"TERM=xterm", "LC_ALL=C.UTF-8"}), "└─"));
    EXPECT_TRUE(contains(onTerminal(show, {"TERM=xterm", "LC_ALL=C"}), "+--"));
    for (const Words& call : {Words{"list", "FG_WIDTH"}, Words{"get", "nothing"}}) {
        EXPECT_TRUE(contains(onTerminal(call, {"TERM=xterm", "NO_COLOR"}), escape));
        EXPECT_FALSE(contains(onTerminal(call, {"TERM=xterm", "NO_COLOR=1"}), escape));
        EXPECT_FALSE(contains(onTerminal(call, {"TERM=dumb", "NO_COLOR"}), escape));
        EXPECT_FALSE(contains(run(call, {"TERM=xterm", "NO_COLOR"}).out, escape));
    }
}

} // namespace
