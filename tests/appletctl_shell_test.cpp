// Scenarios, the shell, completion, conditions of a watch: real runs of appletctl.

#include "support/appletctl_program.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xpath.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using namespace appletctl_program;

/** Runs in a folder of its own, whose files it names without a path. */
class InFolder : public testing::Test {
protected:
    void SetUp() override { std::filesystem::current_path(folder / "."); }
    void TearDown() override { std::filesystem::current_path(before); }

    const std::filesystem::path before = std::filesystem::current_path();
    const support::TemporaryFolder folder;
};

// ---- Conditions

TEST(AppletctlWatchCondition, EndsTheWatchWhenItHolds) {
    const std::pair<const char*, int> cases[] = {
        {"FG_WIDTH == 1024", 1},
        {"width!=1024", 0},
        {"FG_WIDTH >= 1025 || FG_HEIGHT <= 1024", 1},
        {"FG_WIDTH > 1024 || FG_HEIGHT < 1024", 0},
        // && binds closer than ||
        {"FG_WIDTH == 1024 || FG_WIDTH == 1 && FG_HEIGHT == 1", 1},
        {"FG_WIDTH == 1 && FG_HEIGHT == 1024 || FG_HEIGHT == 2", 0},
        {"(FG_WIDTH == 1024 || FG_WIDTH == 1) && FG_HEIGHT == 1", 0},
        {"((FG_WIDTH==1)||(FG_WIDTH==1024&&(FG_HEIGHT==1024)))", 1},
        {"FG_LINEPERIODE < 0.3ms", 1},
        {"FG_LINETRIGGERMODE == GRABBER_CONTROLLED && FG_LINEEXPOSURE <= 19", 1},
        {"FG_LUT_VALUE_RED[2] == 8", 1},
        {"FG_PROCESSING_OFFSET < -0.5", 0},
        {"FG_DEBUGFILE == ''", 1},
    };
    for (const auto& [condition, exitCode] : cases) {
        const Outcome outcome = run({"watch", "FG_WIDTH", "--count", "1", "--fail-if", condition});
        EXPECT_EQ(outcome.exitCode, exitCode) << condition << outcome.err;
        EXPECT_EQ(contains(outcome.err, condition), exitCode == 1) << outcome.err;
        EXPECT_EQ(json::parse(outcome.out)["done"], exitCode == 0);
    }
}

TEST(AppletctlWatchCondition, PointsAtWhatIsWrong) {
    const std::pair<const char*, const char*> cases[] = {
        {" ", "at its end (character 2): the name of a parameter is wanted"},
        {"FG_WIDTH => 3", "at '=> 3' (character 10): one of != < <= == > >= is wanted"},
        {"FG_WIDTH > ", "at its end (character 12): a value is wanted"},
        {"FG_WIDTH > 3 and FG_HEIGHT > 3", "at 'and FG_HEIGHT > 3' (character 14): && or || is wanted"},
        {"FG_WIDTH > 3 &&", "the name of a parameter is wanted"},
        {"FG_DEBUGFILE == 'x", "the quote is not closed"},
        {"(FG_WIDTH > 3", "at its end (character 14): &&, || or a closing parenthesis is wanted"},
        {"FG_WIDTH > 3)", "at ')' (character 13): this parenthesis was not opened"},
        {"()", "at ')' (character 2): the name of a parameter is wanted"},
        {"FG_WIDHT > 3", "did you mean FG_WIDTH"},
        {"FG_WIDTH > 3.5", "'3.5' is not a whole number"},
        {"FG_LUT_VALUE_RED[1..2] == 4", "one element is compared at a time"},
        {"FG_LUT_VALUE_RED == 4", "name the elements"},
    };
    for (const auto& [condition, expected] : cases) {
        const Outcome outcome =
            run({"watch", "FG_WIDTH", "--count", "1", "--fail-if=" + std::string(condition)});
        EXPECT_EQ(outcome.exitCode, 2) << condition;
        EXPECT_TRUE(contains(outcome.err, expected)) << outcome.err;
    }
}

// ---- Scenarios

using AppletctlRun = InFolder;

/** The scenario that the documentation shows. */
std::string documentedScenario() {
    const std::string page = support::fileBytes(SOURCE_DIR "/docs/scenarios.md");
    const std::string begin = "```scenario\n";
    const std::size_t start = page.find(begin) + begin.size();
    return page.substr(start, page.find("```", start) - start);
}

/** The number of nodes that an expression finds in a file; -1 if it is no XML. */
int countInXml(const std::string& file, const char* expression) {
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(xmlReadFile(file.c_str(), nullptr, 0),
                                                                  xmlFreeDoc);
    if (document == nullptr) return -1;
    const std::unique_ptr<xmlXPathContext, decltype(&xmlXPathFreeContext)> context(
        xmlXPathNewContext(document.get()), xmlXPathFreeContext);
    const std::unique_ptr<xmlXPathObject, decltype(&xmlXPathFreeObject)> found(
        xmlXPathEvalExpression(reinterpret_cast<const xmlChar*>(expression), context.get()),
        xmlXPathFreeObject);
    return found == nullptr || found->nodesetval == nullptr ? 0 : found->nodesetval->nodeNr;
}

TEST_F(AppletctlRun, PassesTheScenarioOfTheDocumentation) {
    support::writeFile("station.scenario", documentedScenario());
    const Outcome outcome = run({"run", "station.scenario", "--junit", "report.xml"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out;
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(outcome.out.ends_with(" steps: 21 ok, 0 failed\n")) << outcome.out;
    EXPECT_EQ(
        countInXml("report.xml", "/testsuites/testsuite[@tests='21' and @failures='0']/testcase[not(*)]"),
        21);
    EXPECT_EQ(countInXml("report.xml", "//testcase[@classname='station.Geometry']"), 5);
}

TEST_F(AppletctlRun, TellsWhatWasExpectedAndWhatWas) {
    const std::pair<const char*, const char*> steps[] = {
        {"set FG_WIDTH=20000", "FG_WIDTH=20000 was refused: -6000"},
        {"expect value FG_WIDTH == 512 && FG_HEIGHT == 1", "FG_WIDTH = 1024 pixel"},
        {"expect value FG_WIDHT == 512", "did you mean FG_WIDTH"},
        {"expect limit FG_WIDTH maximum < 16384", "the maximum of FG_WIDTH is 16384"},
        {"expect limit FG_DEBUGFILE maximum < 16384", "FG_DEBUGFILE has no maximum"},
        {"expect access FG_WIDTH ro", "FG_WIDTH is rw"},
        {"expect code -6000 FG_WIDTH=1024", "it was accepted"},
        {"expect code -6000 FG_WIDTH=1022", "-7080"},
        {"expect no write", ""},
        {"set FG_WIDTH=2048", ""},
        {"expect write XLength 2048", ""},
        {"expect write SensorWidth 2048", "what was written is: set Device1_Process0_Buffer_0_XOffset u32 0"},
        {"expect no write", "there was: set Device1_Process0_Buffer_0_XOffset u32 0"},
        {"expect exit 0 load \"no <file>.mcf\"",
         "it ended with 2: \"no <file>.mcf\" is no file that can be read"},
        {"fail access 1 -2010", ""},
        {"set FG_WIDTH=64", "-2010"},
        {"set FG_WIDTH=64", ""},
        {"fail access 1 -2010 always", ""},
        {"set FG_WIDTH=128", "-2010"},
        {"set FG_WIDTH=128", "-2010"},
        {"fail access 0 0", ""},
        {"fail name XLength -2011", ""},
        {"set FG_WIDTH=128", "-2011"},
        {"fail name XLength 0", ""},
        {"fail name SensorWidht 5",
         "the design has no parameter or register \"SensorWidht\"; did you mean SensorWidth or "},
        {"fail name Select 5", "parameters of the design end with \"Select\", such as Device1_"},
        {"fail name NoSuchName 5", "the design has no parameter or register"},
        {"poke NoSuchName 5", "the design has no parameter or register"},
        {"raise NoSuchName", "the design has no event"},
        {"expect event NoSuchName == 0", "there is no event"},
        {"expect event FG_OVERFLOW_CAM0 == 2", "it was raised 0 times"},
    };
    std::string scenario = "section \"Odd <&> \\\"words\\\"\"\n";
    for (const auto& [step, message] : steps)
        scenario += std::string(step) + '\n';
    support::writeFile("odd.scenario", scenario);
    const Outcome outcome = run({"--json", "run", "odd.scenario", "--junit", "report.xml"});
    EXPECT_EQ(outcome.exitCode, 1);
    const json told = json::parse(outcome.out);
    ASSERT_EQ(told["steps"].size(), std::size(steps));
    int failed = 0;
    for (std::size_t i = 0; i < std::size(steps); ++i) {
        const auto& [step, message] = steps[i];
        const bool fails = *message != '\0';
        failed += fails ? 1 : 0;
        EXPECT_EQ(told["steps"][i]["line"], i + 2);
        EXPECT_EQ(told["steps"][i]["step"], step);
        EXPECT_EQ(told["steps"][i]["outcome"], fails ? "failed" : "passed") << told["steps"][i];
        EXPECT_TRUE(contains(told["steps"][i].value("message", ""), message)) << told["steps"][i];
        EXPECT_EQ(contains(outcome.err, "odd.scenario:" + std::to_string(i + 2) + ": "), fails)
            << outcome.err;
    }
    EXPECT_EQ(told["failed"], failed);
    EXPECT_EQ(
        countInXml("report.xml", "//testcase[@classname='odd.Odd <&> \"words\"']/failure[@message!='']"),
        failed);

    const json fast = document({"run", "odd.scenario", "--fail-fast", "--junit", "report.xml"});
    EXPECT_EQ(std::tuple(fast["failed"], fast["skipped"]), std::tuple(1, std::size(steps) - 1));
    const int skipped = static_cast<int>(std::size(steps)) - 1;
    EXPECT_EQ(countInXml("report.xml", "//testsuite/testcase/skipped"), skipped);
}

TEST_F(AppletctlRun, SaysInTimeThatItsReportCannotBeWritten) {
    support::writeFile("one.scenario", "set FG_WIDTH=512\n");
    const Outcome early = run({"run", "one.scenario", "--junit", "no/report.xml"});
    EXPECT_EQ(early.exitCode, 1);
    EXPECT_EQ(early.out, "");
    const Outcome late = run({"run", "one.scenario", "--junit", "/dev/full"});
    EXPECT_EQ(late.exitCode, 1);
    EXPECT_TRUE(late.out.ends_with("1 steps: 1 ok, 0 failed\n")) << late.out;
    EXPECT_TRUE(contains(late.err, "\"/dev/full\" cannot be written: No space left on device")) << late.err;
}

TEST_F(AppletctlRun, RefusesWhatIsNoStepBeforeAnythingIsDone) {
    const std::pair<const char*, const char*> cases[] = {
        {"expect", "possible are 'expect value NAME OPERATOR VALUE [&& ...]', 'expect limit "},
        {"expect limit FG_WIDTH maximum 5",
         "the form is 'expect limit NAME minimum|maximum|increment OPERATOR NUMBER'"},
        {"expect limit FG_WIDTH most == 5", "'most' is none of minimum, maximum, increment"},
        {"expect limit FG_WIDTH max == 5", "; did you mean maximum?"},
        {"expect limits FG_WIDTH maximum == 5", "; did you mean 'expect limit'?"},
        {"expekt value FG_WIDTH == 5", "there is no step or command 'expekt'; did you mean 'expect value'?"},
        {"expect limit FG_WIDTH maximum = 5", "'=' is none of != < <= == > >="},
        {"expect access FG_WIDTH wr", "'wr' is none of ro, rw, rw+"},
        {"expect code FG_ERR_NONE FG_WIDTH=5", "'FG_ERR_NONE' is neither a number nor a code"},
        {"fail access x -2010", "'x' is no whole number"},
        {"st FG_WIDTH=5",
         "there is no command 'st'; did you mean 'set'?; a step is a command, or one of 'section TITLE', "},
        {"set --board system FG_WIDTH=5", "the board is chosen before"},
        {"expect exit 0 run other", "'run' does not work within another command"},
        {"set 'FG_WIDTH=5", "a quote is not closed"},
    };
    for (const auto& [step, message] : cases) {
        support::writeFile("wrong.scenario", "save done.mcf # first\n\n" + std::string(step));
        const Outcome outcome = run({"run", "wrong.scenario"});
        EXPECT_EQ(outcome.exitCode, 2) << step;
        EXPECT_TRUE(contains(outcome.err, "appletctl: wrong.scenario:3: " + std::string(step) + ": "))
            << outcome.err;
        EXPECT_TRUE(contains(outcome.err, message)) << outcome.err;
    }
    EXPECT_FALSE(std::filesystem::exists("done.mcf"));
    EXPECT_EQ(run({"run", "none.scenario"}).exitCode, 2);
    support::writeFile("empty.scenario", "# nothing\n");
    EXPECT_TRUE(contains(run({"run", "empty.scenario"}).err, "has no steps"));
}

// ---- The shell

using AppletctlShell = InFolder;

/** Hands the lines to a shell by a file. */
Outcome shellOn(const std::string& lines, Words arguments = {}) {
    support::writeFile("lines", lines);
    arguments.insert(arguments.begin(), "shell");
    return run(arguments, {}, "lines");
}

TEST_F(AppletctlShell, KeepsItsBoardAndTakesChangesBack) {
    const Outcome outcome = shellOn("set FG_WIDTH=2048 FG_XOFFSET=64 # a comment\n"
                                    "get FG_WIDTH\n\n"
                                    "set \"FG_DEBUGFILE=it's\" FG_DEBUG'FILE'=a\\ b\n"
                                    "set FG_PROCESSING_GAMMA=2\n"
                                    "get 'FG_LUT_VALUE_RED[100]'\n"
                                    "undo\nundo\nget FG_DEBUGFILE FG_WIDTH 'FG_LUT_VALUE_RED[100]'\nundo\n"
                                    "exit\nget FG_HEIGHT\n");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(
        contains(outcome.out, "FG_WIDTH = 2048 pixel\nFG_XOFFSET = 64 pixel\nFG_WIDTH = 2048 pixel\n"));
    EXPECT_TRUE(contains(outcome.out, "FG_DEBUGFILE = \"it's\"\nFG_DEBUGFILE = \"a b\"\n"));
    EXPECT_TRUE(
        contains(outcome.out, "FG_DEBUGFILE = \"\"\nFG_WIDTH = 2048 pixel\nFG_LUT_VALUE_RED[100] = 400\n"))
        << outcome.out;
    EXPECT_TRUE(outcome.out.ends_with("Undone: set FG_WIDTH=2048 FG_XOFFSET=64 # a comment\n"
                                      "FG_WIDTH = 1024 pixel\nFG_XOFFSET = 0 pixel\n"))
        << outcome.out;
}

TEST_F(AppletctlShell, EndsWithTheFirstLineThatFails) {
    const std::tuple<const char*, int, const char*> cases[] = {
        {"get FG_WIDTH\nset FG_WIDTH=3\nget FG_HEIGHT\n", 1, "line 2: FG_WIDTH=3 was refused"},
        {"get FG_WIDHT\nset FG_WIDTH=3\n", 2, "line 1: there is no parameter"},
        {"undo\n", 2, "there is nothing to undo"},
        {"get 'FG_WIDTH\n", 2, "a quote is not closed"},
        {"get FG_WIDTH --offline\n", 2, "the board is chosen before"},
        {"shell\n", 2, "'shell' does not work within another command"},
    };
    for (const auto& [lines, exitCode, message] : cases) {
        const Outcome outcome = shellOn(lines);
        EXPECT_EQ(outcome.exitCode, exitCode) << lines;
        EXPECT_TRUE(contains(outcome.err, message)) << outcome.err;
        EXPECT_FALSE(contains(outcome.out, "FG_HEIGHT"));
    }
    const Outcome all = shellOn("set FG_WIDTH=3\nget nothing\nget FG_HEIGHT\n", {"-k"});
    EXPECT_EQ(all.exitCode, 1);
    EXPECT_EQ(all.out, "FG_HEIGHT = 1024 pixel\n");
    // Each line has a document of its own.
    std::istringstream documents(shellOn("set FG_WIDTH=64\nundo\n", {"--json"}).out);
    json set, undone;
    documents >> set >> undone;
    EXPECT_EQ(std::tuple(set["command"], undone["command"]), std::tuple("set", "undo"));
    EXPECT_EQ(std::pair(undone["parameters"][0]["value"], undone["undone"]),
              std::pair(json(1024), json("set FG_WIDTH=64")));
}

TEST_F(AppletctlShell, CompletesAndRemembersOnATerminal) {
    const Words environment{"TERM=xterm", "NO_COLOR=1", "XDG_STATE_HOME=" + folder / "state"};
    const auto typed = [&](const Words& lines) {
        return converse({"shell"}, environment, "appletctl> ", lines);
    };
    const Outcome first = typed({"get FG_SENSORW\t\n", "watch FG_WIDTH --interval 10 --count 2\n",
                                 "set linetriggermode=async_t\t\n", "get linetriggermode\n", "exit\n"});
    EXPECT_EQ(first.exitCode, 0);
    EXPECT_TRUE(contains(first.out, "FG_SENSORWIDTH = 1024 pixel")) << first.out;
    EXPECT_TRUE(contains(first.out, "FG_LINETRIGGERMODE = ASYNC_TRIGGER (2)")) << first.out;
    EXPECT_TRUE(contains(first.out, "round 2, ")) << first.out;
    const Outcome second = typed({"\x1b[A\x1b[A\n", "exit\n"}); // two lines up in the history
    EXPECT_TRUE(contains(second.out, "FG_LINETRIGGERMODE = GRABBER_CONTROLLED (1)")) << second.out;
}

// ---- Completion

TEST(AppletctlCompletion, OffersWhatTheLastWordCanBecome) {
    const std::tuple<Words, std::vector<const char*>, std::vector<const char*>> cases[] = {
        {{""}, {"list\t", "lut\t", "shell\t"}, {"__complete", "show"}},
        {{"lut", "s"}, {"show\t", "save\t"}, {"list", "set\t"}},
        {{"--json", "ge"}, {"get\t"}, {"set"}},
        {{"get", "FG_SENSORW"}, {"FG_SENSORWIDTH\t"}, {"FG_SENSORHEIGHT", "="}},
        {{"get", "FG_WIDTH", "sensorw"}, {"SENSORWIDTH\t"}, {"FG_SENSORWIDTH"}},
        {{"set", "FG_VANT"}, {"FG_VANTAGEPOINT=\t"}, {}},
        {{"set", "FG_VANTAGEPOINT=FG_VANTAGEPOINT_B"},
         {"FG_VANTAGEPOINT=FG_VANTAGEPOINT_BOTTOM_RIGHT\t"},
         {"TOP"}},
        {{"save", "fg_no_such_file"}, {}, {"FG_"}},
        {{"save", "file.mcf", "FG_WID"}, {"FG_WIDTH="}, {}},
        {{"--color", "a"}, {"auto", "always"}, {"never"}},
        {{"list", "--board=s"}, {"--board=system"}, {"virtual"}},
        {{"watch", "FG_WIDTH", "--"}, {"--interval\t", "--json\t"}, {"--channel"}},
        {{"lut", "show", "--channel", ""}, {"red", "blue"}, {"FG_"}},
        {{"completion", "b"}, {"bash\n"}, {"zsh"}},
        {{"limits", "FG_WIDTH", "--with", "FG_XOF"}, {"FG_XOFFSET=\t"}, {}},
        {{"list", "--group", "roi"}, {"ROI"}, {"FG_"}},
        {{"list", "-f", "name,val"}, {"name,value\n"}, {"unit"}},
        {{"watch", "FG_WIDTH", "--fail-if", "FG_WIDTH >"}, {"FG_WIDTH >=\n"}, {"<"}},
        {{"set", "FG_WIDTH="}, {"FG_WIDTH=4\tsmallest", "FG_WIDTH=16384\tlargest"}, {}},
        {{"load", "/nowhere/"}, {}, {"FG_"}},
        {{"help", "lu"}, {"lut\t"}, {"list"}},
        {{"nonsense", "x"}, {}, {"list"}},
    };
    for (const auto& [words, offered, others] : cases) {
        Words arguments{"__complete", "--"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_EQ(outcome.out.empty(), offered.empty()) << words.back() << outcome.out;
        for (const char* expected : offered)
            EXPECT_TRUE(contains("\n" + outcome.out, "\n" + std::string(expected)))
                << expected << " in " << outcome.out;
        for (const char* other : others)
            EXPECT_FALSE(contains(outcome.out, other)) << other << " in " << outcome.out;
    }
}

/** What a command of another program prints. */
std::string printedBy(const std::string& command) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string text;
    for (int c; (c = std::fgetc(pipe.get())) != EOF;)
        text += static_cast<char>(c);
    return text;
}

TEST(AppletctlCompletion, WorksInBash) {
    // The words as bash parts them, and what stands in the place of the last one.
    const std::pair<const char*, const char*> cases[] = {
        {"ge", "get\n"},
        {"get FG_SENSORW", "FG_SENSORWIDTH\n"},
        {"set FG_VANTAGEPOINT = Bot", ""},
        {"set FG_VANTAGEPOINT = FG_VANTAGEPOINT_BOTTOM_R", "FG_VANTAGEPOINT_BOTTOM_RIGHT\n"},
        {"set FG_VANTAGEPOINT =", "FG_VANTAGEPOINT_TOP_LEFT\n"},
        {"set FG_WIDTH = 5 FG_VANT", "FG_VANTAGEPOINT=\n"},
        {"list --color = al", "always\n"},
    };
    for (const auto& [words, expected] : cases) {
        const std::string script =
            std::string("compopt() { :; }; source <(" APPLETCTL_PROGRAM " completion bash); "
                        "COMP_WORDS=(" APPLETCTL_PROGRAM " ") +
            words +
            "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _appletctl; "
            "[ ${#COMPREPLY[@]} -eq 0 ] || printf \"%s\\n\" \"${COMPREPLY[@]}\"";
        const std::string printed = printedBy("bash -c '" + script + "'");
        EXPECT_TRUE(printed.starts_with(expected) && (*expected != '\0' || printed.empty()))
            << words << ": " << printed;
    }
}

TEST(AppletctlCompletion, IsUnderstoodByTheShells) {
    for (const std::string shell : {"bash", "zsh", "fish"}) {
        if (printedBy("command -v " + shell).empty()) continue;
        EXPECT_EQ(printedBy(APPLETCTL_PROGRAM " completion " + shell + " | " + shell + " -n 2>&1"), "")
            << shell;
    }
}

// ---- What holds for all commands

TEST_F(AppletctlShell, IsSilentWhenNobodyReads) {
    support::writeFile("lines", "get FG_WIDTH\nget FG_WIDTH\n");
    support::writeFile("steps", "set FG_WIDTH=64\nset FG_WIDTH=128\n");
    for (const std::string command :
         {"list", "shell < lines", "run steps", "watch FG_WIDTH --interval 1", "lut show"})
        EXPECT_EQ(printedBy("bash -c '{ sleep 0.2; " APPLETCTL_PROGRAM " " + command +
                            " 2> err; } | true; cat err'"),
                  "")
            << command;
    EXPECT_EQ(printedBy("bash -c '{ sleep 0.2; " APPLETCTL_PROGRAM
                        " run steps; echo $? > code; } | true; cat code'"),
              "0\n");
}

TEST(AppletctlConventions, SayWhatIsPossible) {
    const std::pair<Words, const char*> cases[] = {
        {{"--board", "foo", "list"}, "--board takes one of virtual, system, and 'foo' is none"},
        {{"list", "--color=blue"}, "--color takes one of auto, always, never, and 'blue' is none"},
        {{"watch", "FG_WIDTH", "--intervall", "5"},
         "there is no option '--intervall'; did you mean '--interval'?"},
        {{"watch", "FG_WIDTH", "--interval", "-5"}, "and '-5' is none"},
        {{"completion", "csh"}, "'csh' is none"},
    };
    for (const auto& [arguments, expected] : cases) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << expected;
        EXPECT_TRUE(contains(outcome.err, expected)) << outcome.err;
    }
    EXPECT_TRUE(run({"set", "FG_PROCESSING_OFFSET=-0.25"}).out.starts_with("FG_PROCESSING_OFFSET = -0.25\n"));
}

} // namespace
