// appletctl on a terminal: colours, widths, progress, questions, the shell's keys, a watch that redraws.

#include "support/appletctl_program.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <sstream>
#include <unistd.h>

namespace {

using namespace appletctl_program;

const Words plainTerminal{"TERM=xterm", "LC_ALL=C", "NO_COLOR=1"};

class AppletctlTerminal : public testing::Test {
protected:
    void SetUp() override {
        const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
        if (terminal < 0) GTEST_SKIP() << "this machine gives no pseudo-terminal";
        close(terminal);
    }
};

TEST_F(AppletctlTerminal, IsColouredUnlessDisabled) {
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

TEST_F(AppletctlTerminal, LimitsTheWidth) {
    const auto widest = [](unsigned short columns) {
        std::istringstream lines(onTerminal({"timing"}, plainTerminal, columns));
        std::size_t most = 0;
        for (std::string line; std::getline(lines, line);)
            most = std::max(most, line.size() - 1); // a terminal ends it with a carriage return
        return most;
    };
    EXPECT_LE(widest(60), 60u);
    EXPECT_GT(widest(200), 120u);
}

TEST_F(AppletctlTerminal, ShowsProgressUntilTheEnd) {
    Words questions{"why"};
    const json listed = document({"list"});
    for (int times = 0; times < 5; ++times) // so that it takes longer than half a second
        for (const json& parameter : listed["parameters"])
            questions.push_back(parameter["name"]);
    const std::string shown = onTerminal(questions, plainTerminal, 80);
    const std::size_t last = shown.rfind("working");
    ASSERT_NE(last, std::string::npos) << shown.substr(0, 200);
    EXPECT_TRUE(contains(shown, " of " + std::to_string(questions.size() - 1) + ", "));
    EXPECT_NE(shown.find("\r\033[K", last), std::string::npos) << "erased";
    const Outcome interrupted = converse(questions, plainTerminal, "working", {"\x03"}, 80);
    EXPECT_EQ(interrupted.exitCode, 128 + SIGINT);
    EXPECT_NE(interrupted.out.find("\r\033[K", interrupted.out.rfind("working")), std::string::npos)
        << "erased by Ctrl-C";
    questions.emplace_back("--plain");
    EXPECT_FALSE(contains(onTerminal(questions, plainTerminal, 80), "working"));
}

TEST_F(AppletctlTerminal, PromptsBeforeAnApply) {
    const Words apply{"apply", "FG_WIDTH=2048"};
    const std::string question = "apply? [y/N]";
    const Outcome yes = converse(apply, {}, question, {"y\n"}), no = converse(apply, {}, question, {"\n"});
    EXPECT_EQ(std::pair(yes.exitCode, no.exitCode), std::pair(0, 1));
    EXPECT_TRUE(contains(no.out, "nothing was applied")) << no.out;
}

TEST_F(AppletctlTerminal, PromptsBeforeWritesToASystemBoard) {
    const auto library = document({"info"})["boardLibrary"].get<std::string>();
    const Words environment{"LD_LIBRARY_PATH=" + library.substr(0, library.rfind('/')), "TERM=xterm",
                            "NO_COLOR=1"};
    const Outcome no =
        converse({"set", "FG_WIDTH=2048", "--board", "system"}, environment, "[y/N]", {"\n"}, 30);
    EXPECT_EQ(no.exitCode, 1);
    std::istringstream lines(no.out);
    for (std::string line; std::getline(lines, line);)
        EXPECT_LE(line.size(), 31u) << line; // with the carriage return
    EXPECT_TRUE(contains(no.out, "nothing was set")) << no.out;
}

TEST_F(AppletctlTerminal, ShellHasCompletionAndHistory) {
    const support::TemporaryFolder folder;
    const Words environment{"TERM=xterm", "NO_COLOR=1", "XDG_STATE_HOME=" + folder / "state"};
    const auto typed = [&](const Words& lines) {
        return converse({"shell"}, environment, "appletctl> ", lines);
    };
    const Outcome first = typed({"get FG_SENSORW\t\n", "watch FG_WIDTH --interval 10 --count 2\n",
                                 "set linetriggermode=async_t\t\n", "get linetriggermode\n", "exit\n"});
    EXPECT_EQ(first.exitCode, 0);
    for (const char* part :
         {"FG_SENSORWIDTH = 1024 pixel", "FG_LINETRIGGERMODE = ASYNC_TRIGGER (2)", "round 2, "})
        EXPECT_TRUE(contains(first.out, part)) << part << first.out;
    const Outcome second = typed({"\x1b[A\x1b[A\n", "exit\n"}); // two lines up in the history
    EXPECT_TRUE(contains(second.out, "FG_LINETRIGGERMODE = GRABBER_CONTROLLED (1)")) << second.out;
}

TEST_F(AppletctlTerminal, IsRedrawnByAWatch) {
    const Words arguments{"watch", "dra_fanlevel", "--interval", "10", "--count", "4"};
    Words environment = scriptedRegisters;
    environment.insert(environment.end(), plainTerminal.begin(), plainTerminal.end());
    const std::string shown = onTerminal(arguments, environment);
    EXPECT_TRUE(contains(shown, "\033[3A\r\033[J")) << "over the three lines of the round before";
    EXPECT_TRUE(contains(shown, "  DRA_FanLevel  2            2        9        -#_\r\n  round 4, "))
        << shown;
    EXPECT_TRUE(contains(onTerminal({"watch", "-g", "Digital I/O", "--count", "1"}, plainTerminal),
                         " parameters are not shown: too few lines)"));
    const unsigned short columns = 20;
    for (const unsigned short rows : std::initializer_list<unsigned short>{2, 3, 5})
        EXPECT_TRUE(contains(onTerminal({"watch", "width", "--count", "1"}, plainTerminal, columns, rows),
                             "  FG_WIDTH  1024\r\n"))
            << rows << " lines: the value goes before all else";
    environment.push_back("TERM=dumb");
    EXPECT_FALSE(contains(onTerminal(arguments, environment), "\033["));
}

} // namespace
