// How appletctl lays out what it prints: within the terminal, as records with --plain, with progress.

#include "support/appletctl_program.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace appletctl_program;

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::size_t widthOf(const std::string& line) {
    return static_cast<std::size_t>(
        std::ranges::count_if(line, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

/** True for one word behind blanks, which cannot be broken. */
bool isOneWord(const std::string& line) {
    const std::size_t begin = line.find_first_not_of(' ');
    return begin == std::string::npos || line.find(' ', begin) == std::string::npos;
}

TEST(AppletctlLayout, KeepsToTheWidth) {
    const Words commands[] = {
        {"list"},
        {"list", "-f", "name,value,limits,label,group"},
        {"describe", "FG_LINETRIGGERMODE", "FG_TRIGGEROUT_GPO_0_SOURCE"},
        {"limits", "FG_WIDTH", "FG_VANTAGEPOINT", "--with", "FG_WIDTH=2048"},
        {"why", "FG_SHAFTENCODERMODE"},
        {"deps", "FG_WIDTH"},
        {"plan", "FG_WIDTH=2048"},
        {"set", "FG_VANTAGEPOINT=Top-Right", "FG_WIDTH=20000"},
        {"route"},
        {"timing"},
        {"lut", "show"},
        {"lint", "FG_LINEEXPOSURE=150", "FG_LINEPERIODE=100.003"},
        {"info"},
        {"events"},
        {"xml", "--check"},
        {"limits", "--help"},
    };
    for (const std::size_t width : {60u, 80u})
        for (const Words& command : commands) {
            const Outcome outcome = run(command, {"COLUMNS=" + std::to_string(width)});
            EXPECT_FALSE(outcome.out.empty());
            for (const std::string& line : linesOf(outcome.out + outcome.err))
                EXPECT_TRUE(widthOf(line) <= width || isOneWord(line)) << width << ": " << line;
        }
    // What is not for a person is not folded.
    const std::string document = run({"xml"}).out;
    EXPECT_EQ(run({"xml"}, {"COLUMNS=60"}).out, document);
    EXPECT_EQ(run({"list", "--plain"}, {"COLUMNS=60"}).out, run({"list", "--plain"}).out);
}

TEST(AppletctlLayout, FoldsThenDropsThenStacks) {
    const std::tuple<const char*, Words, const char*> cases[] = {
        {"60",
         {"describe", "FG_WIDTH"},
         "  text     Image width of the acquisition ROI independent of\n           the camera ROI.\n"},
        {"80",
         {"list", "linetriggermode"},
         "\n    GRABBER_CONTROLLED        rw      GRABBER_CONTROLLED, ASYNC_TRIGGER,\n"},
        {"40",
         {"list", "*SENSORWIDTH"},
         "\n  FG_SENSORWIDTH  1024   pixel  rw\n  (too narrow for: LIMITS OR ENTRIES)\n"},
        {"60", {"timing"}, "  ExSync      |_________| |_________| |_________\n"},
        {"60",
         {"get", "--help"},
         "Parameters, in any case, with or\n                            without FG_\n"},
        {"30",
         {"list", "*SENSORWIDTH", "-f", "name,value,limits"},
         "  FG_SENSORWIDTH\n    value: 1024\n    limits or entries: 4 to\n      16384 in steps of 4\n"},
    };
    for (const auto& [width, arguments, expected] : cases) {
        const std::string out = run(arguments, {std::string("COLUMNS=") + width}).out;
        EXPECT_TRUE(contains(out, expected)) << out;
    }
}

TEST(AppletctlLayout, TakesTheWidthFromTheTerminal) {
    const Words environment{"TERM=xterm", "LC_ALL=C", "NO_COLOR=1"};
    const std::string narrow = onTerminal({"timing"}, environment, 60);
    const std::string wide = onTerminal({"timing"}, environment, 200);
    if (narrow.empty()) GTEST_SKIP() << "this machine gives no pseudo-terminal";
    const auto widest = [](const std::string& text) {
        std::size_t most = 0;
        for (const std::string& line : linesOf(text))
            most = std::max(most, widthOf(line) - 1); // a terminal ends it with a carriage return
        return most;
    };
    EXPECT_LE(widest(narrow), 60u) << narrow;
    EXPECT_GT(widest(wide), 120u) << wide;
}

TEST(AppletctlPlain, IsRecordsThatNameTheirSubject) {
    const support::TemporaryFolder folder;
    const std::string file = folder / "station.mcf";
    ASSERT_EQ(run({"save", file, "FG_WIDTH=2048"}).exitCode, 0);
    const std::tuple<Words, const char*> cases[] = {
        {{"get", "FG_WIDTH", "FG_VANTAGEPOINT"},
         "FG_WIDTH\t1024\tpixel\nFG_VANTAGEPOINT\tFG_VANTAGEPOINT_TOP_LEFT\t\n"},
        {{"set", "FG_WIDTH=2048", "--verify"}, "FG_WIDTH\t2048\tpixel\n"},
        {{"reset", "FG_WIDTH=2048"}, "FG_WIDTH\t2048\tpixel\nFG_WIDTH\t2048\t1024\tpixel\n"},
        {{"list", "--changed"}, "NAME\tVALUE\tUNIT\tACCESS\tLIMITS OR ENTRIES\n"},
        {{"lint"}, ""},
        {{"plan", file}, "\nchange\tFG_WIDTH\tDevice1_Process0_Buffer_0_XLength\t1024\t2048\n"},
        {{"trace", "set", "FG_WIDTH=2048"}, "set\tDevice1_Process0_Buffer_0_XLength\tu32\t2048\n"},
    };
    for (const auto& [arguments, expected] : cases) {
        Words plain{"--plain"};
        plain.insert(plain.end(), arguments.begin(), arguments.end());
        const std::string out = run(plain).out;
        EXPECT_TRUE(std::string_view(expected).empty() ? out.empty() : contains(out, expected)) << out;
    }
    const Words subjects{"FG_WIDTH", "FG_VANTAGEPOINT"};
    for (const char* command : {"limits", "why", "describe"}) {
        const auto lines = linesOf(run({"--plain", command, subjects[0], subjects[1]}).out);
        EXPECT_GE(lines.size(), 4u) << command;
        for (const std::string& line : lines)
            EXPECT_TRUE(line.starts_with(subjects[0] + '\t') || line.starts_with(subjects[1] + '\t')) << line;
    }
    for (const Words& drawn : {Words{"timing"}, Words{"lut", "show"}})
        for (const std::string& line : linesOf(run([&] {
                                                   Words plain = drawn;
                                                   plain.emplace_back("--plain");
                                                   return plain;
                                               }())
                                                   .out))
            EXPECT_TRUE(contains(line, "\t")) << line;
}

TEST(AppletctlProgress, IsSeenOnATerminalAndGoneAtTheEnd) {
    Words limits{"limits"};
    const json listed = document({"list"});
    for (const json& parameter : listed["parameters"])
        if (!parameter.contains("notRead")) limits.push_back(parameter["name"]);
    const Words environment{"TERM=xterm", "LC_ALL=C", "NO_COLOR=1"};
    const std::string shown = onTerminal(limits, environment, 80);
    const std::size_t last = shown.rfind("working");
    ASSERT_NE(last, std::string::npos) << shown.substr(0, 200);
    EXPECT_TRUE(contains(shown, " of " + std::to_string(limits.size() - 1) + ", "));
    EXPECT_NE(shown.find("\r\033[K", last), std::string::npos) << "erased";
    limits.emplace_back("--plain");
    EXPECT_FALSE(contains(onTerminal(limits, environment, 80), "working"));
}

} // namespace
