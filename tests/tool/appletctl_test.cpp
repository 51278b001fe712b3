// Cases that transcripts (tests/data/appletctl) cannot cover: all commands, changing readings, signals.

#include "support/appletctl_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <sstream>
#include <string>
#include <unistd.h>
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

/** True for a single indented word, which cannot be broken. */
bool isOneWord(const std::string& line) {
    const std::size_t begin = line.find_first_not_of(' ');
    return begin == std::string::npos || line.find(' ', begin) == std::string::npos;
}

TEST(AppletctlLayout, KeepsWithinTheWidth) {
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
}

TEST(AppletctlWatch, ContinuesAfterAFailedRead) {
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

/** Starts a watch with rounds a day apart, waits for its first line, applies an action to it or to the pipe
 *  that it writes to, and returns the outcome. */
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

TEST(AppletctlWatch, EndsQuietlyOnASignalOrAClosedPipe) {
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

} // namespace
