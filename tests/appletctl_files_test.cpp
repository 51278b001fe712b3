// Files that appletctl reads and writes when something is in the way: no room, a signal, a file that is cut off.

#include "support/appletctl_program.h"
#include "support/sanitizers.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <set>

namespace {

using namespace appletctl_program;
namespace fs = std::filesystem;

std::set<std::string> namesIn(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.insert(entry.path().filename());
    return names;
}

void limit(decltype(RLIMIT_FSIZE) resource, rlim_t most) {
    const rlimit limits{most, most};
    setrlimit(resource, &limits);
}

/** Each write beyond this size fails, as on a full disk. */
void fillDisk() {
    std::signal(SIGXFSZ, SIG_IGN);
    limit(RLIMIT_FSIZE, 200);
}

class AppletctlFiles : public testing::Test {
protected:
    void SetUp() override { run({"save", saved, "FG_WIDTH=2048"}); }

    /** The saved file with more lines at its end. */
    std::string grown(std::size_t lines, const std::function<std::string(std::size_t)>& lineAt) const {
        std::string text = support::fileBytes(saved);
        for (std::size_t i = 0; i < lines; ++i)
            text += lineAt(i);
        support::writeFile(folder / "grown.mcf", text);
        return folder / "grown.mcf";
    }

    const support::TemporaryFolder folder;
    const std::string saved = folder / "saved.mcf";
};

TEST_F(AppletctlFiles, NeedNoTemporaryFolder) {
    const std::pair<Words, const char*> commands[] = {
        {{"diff", saved, "--live"}, "FG_WIDTH  2048 pixel"},
        {{"plan", saved}, "XLength: 1024 -> 2048\n"},
        {{"load", saved}, "1024 pixel  2048 pixel"},
        {{"check", saved}, "loses nothing.\n"},
        {{"xml", "--portable"}, "</RegisterDescription>"},
        {{"describe", "width"}, "saved, and restored by a load"},
    };
    for (const auto& [arguments, answer] : commands) {
        const Outcome outcome = run(arguments, {"TMPDIR=/nowhere"});
        EXPECT_TRUE(contains(outcome.out, answer)) << arguments[0] << outcome.out << outcome.err;
        // Without memory for the applet's state either, there is no answer.
        const Outcome none = run(arguments, {}, "/dev/null", fillDisk);
        EXPECT_EQ(none.exitCode, 3) << arguments[0] << none.out;
        EXPECT_TRUE(contains(none.err, "a file in memory cannot be made: File too large\n")) << none.err;
    }
}

TEST_F(AppletctlFiles, AreWrittenAsAWholeOrNotAtAll) {
    support::writeFile(folder / "x.scenario", "set FG_WIDTH=512\n");
    const std::string file = folder / "out/x";
    fs::create_directory(folder / "out");
    const std::pair<Words, const char*> writers[] = {
        {{"save", file + ".mcf"}, "[Kamerasektion]\n"},
        {{"lut", "save", file + ".lut"}, "# Lut data file v1.1\n"},
        {{"lut", "plot", file + ".svg"}, "<svg"},
        {{"timing", "--svg", file + ".svg"}, "<svg"},
        {{"timing", "--vcd", file + ".vcd"}, "$enddefinitions"},
        {{"xml", "-o", file + ".xml"}, "<?xml"},
        {{"docs", "--html", file + ".html"}, "<!DOCTYPE"},
        {{"report", "-o", file + ".txt"}, "Report of appletctl\n"},
        {{"run", folder / "x.scenario", "--junit", file + ".xml"}, "<?xml"},
    };
    for (const auto& [arguments, part] : writers) {
        const std::string& target = arguments[0] == "run" ? arguments[3] : arguments.back();
        const std::string name = fs::path(target).filename();
        support::writeFile(folder / name, "precious");
        fs::permissions(folder / name, fs::perms(0640));
        fs::create_symlink("../" + name, target);
        EXPECT_NE(run(arguments, {}, "/dev/null", fillDisk).exitCode, 0) << target;
        EXPECT_EQ(support::fileBytes(folder / name), "precious") << target;
        EXPECT_EQ(run(arguments).exitCode, 0) << target;
        EXPECT_TRUE(contains(support::fileBytes(target), part)) << target;
        EXPECT_TRUE(fs::is_symlink(target));
        EXPECT_EQ(fs::status(target).permissions(), fs::perms(0640)) << target;
        fs::remove(target);
        fs::remove(folder / name);
    }
    EXPECT_EQ(namesIn(folder / ""), (std::set<std::string>{"out", "saved.mcf", "x.scenario"}));
    // What is no file is written to, and a missing folder loses nothing.
    const Outcome printed = run({"report", "-o", "/dev/stdout"});
    EXPECT_TRUE(printed.out.starts_with("Report of appletctl\n"));
    EXPECT_TRUE(printed.out.ends_with("\"/dev/stdout\" written\n"));
    EXPECT_TRUE(contains(run({"xml", "-o", "/dev/full"}).err, "No space left on device"));
    EXPECT_TRUE(
        contains(run({"save", folder / "no/x.mcf"}).err, "cannot be written: no file can be made in"));
}

TEST_F(AppletctlFiles, AreWholeWhileOthersWriteThem) {
    const std::string whole = support::fileBytes(saved);
    const pid_t writers[] = {fork(), fork()};
    for (const pid_t writer : writers)
        if (writer == 0) {
            for (int i = 0; i < 5; ++i)
                run({"save", saved, "FG_WIDTH=2048"});
            _exit(0);
        }
    int running = 2, looks = 0;
    for (; running > 0; ++looks) {
        ASSERT_EQ(support::fileBytes(saved), whole) << looks;
        if (waitpid(-1, nullptr, WNOHANG) > 0) --running;
    }
    EXPECT_GT(looks, 10);
}

TEST_F(AppletctlFiles, AreNotLeftBehindBySignals) {
    fs::create_directory(folder / "tmp");
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGKILL})
        for (const int milliseconds : {10, 20, 40, 80, 160}) {
            const pid_t child = fork();
            if (child == 0)
                become({"--quiet", "xml", "--portable", "-o", folder / "x.xml"},
                       {"TMPDIR=" + folder / "tmp"});
            usleep(static_cast<useconds_t>(milliseconds) * 1000);
            kill(child, signal);
            exitCodeOf(child);
            std::set<std::string> names = namesIn(folder / "");
            names.erase("x.xml"); // of a run that was done before
            if (signal != SIGKILL) {
                EXPECT_EQ(names, (std::set<std::string>{"saved.mcf", "tmp"}));
            }
        }
    EXPECT_EQ(namesIn(folder / "tmp"), std::set<std::string>{});
}

TEST_F(AppletctlFiles, MayBeLong) {
    // Each line of a key that is there already costs its bytes, and no finding.
    const std::string repeated = grown(200'000, [](std::size_t) { return "FG_WIDTH=1024;\n"; }); // 3 MB
    const auto inLittleMemory = [] {
        if (!underAddressSanitizer && !underThreadSanitizer) limit(RLIMIT_AS, 150'000'000);
    };
    for (const Words& arguments : {Words{"--json", "check", repeated}, Words{"diff", repeated, saved}}) {
        const Outcome outcome = run(arguments, {}, "/dev/null", inLittleMemory);
        EXPECT_LT(outcome.exitCode, 2) << outcome.err;
        EXPECT_LT(outcome.out.size(), 2000u) << arguments[0];
        if (arguments[0] == "diff") {
            EXPECT_EQ(outcome.out, "The values are the same.\n");
        }
    }
    EXPECT_TRUE(
        contains(run({"check", repeated}).err, "FG_WIDTH is in the file 200001 times: only the first"));
    // Of unknown keys the first ones are named and the others counted.
    const std::string unknown = grown(1000, [](std::size_t i) { return "K" + std::to_string(i) + "=1;\n"; });
    const json findings = document({"check", unknown})["findings"];
    EXPECT_LT(findings.size(), 30u);
    EXPECT_TRUE(contains(findings.dump(), "980 more keys that no load reads were ignored"));
}

TEST(AppletctlStart, SaysInOneLineWhatIsNoLibrary) {
    const support::TemporaryFolder folder;
    const fs::path library = fs::path(VIRTUAL_BOARD_DIR).parent_path() / "libGrab_TwinLaneLineColor.so";
    const std::string cut = folder / "libGrab_TwinLaneLineColor.so";
    const auto reason = [](const Outcome& outcome) {
        EXPECT_EQ(outcome.exitCode, 3) << outcome.err;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        return outcome.err;
    };
    const std::string whole = support::fileBytes(library);
    for (const std::size_t part : {std::size_t{0}, std::size_t{30}, whole.size() / 2, whole.size() - 1}) {
        support::writeFile(cut, whole.substr(0, part));
        for (const Outcome& outcome :
             {run({"--applet", cut, "info"}), run({"plan", "FG_WIDTH=4"}, {"APPLET_UNDER_TEST=" + cut})})
            EXPECT_TRUE(contains(reason(outcome), part == 0 ? "the file is empty" : "it is cut off")) << part;
    }
    EXPECT_TRUE(contains(reason(run({"list"}, {"APPLET_UNDER_TEST="})), "APPLET_UNDER_TEST is empty"));
    const std::string board = support::fileBytes(VIRTUAL_BOARD_DIR "/libvexo_hw.so");
    support::writeFile(folder / "libvexo_hw.so", board.substr(0, board.size() / 2));
    EXPECT_TRUE(contains(reason(run({"list", "--board", "system"}, {"LD_LIBRARY_PATH=" + folder / ""})),
                         "it is cut off"));
    const fs::path sdk = folder / "sdk";
    fs::create_directories(sdk / "lib64");
    fs::create_symlink(library, sdk / "lib64" / library.filename());
    const std::string dispatcher = (sdk / "lib64/libcommon-logging-dispatcher.so").string();
    const std::string log =
        support::fileBytes(library.parent_path().parent_path() / "lib64/libcommon-logging-dispatcher.so");
    support::writeFile(dispatcher, log.substr(0, log.size() / 2));
    const Outcome outcome =
        run({"--applet", (sdk / "lib64" / library.filename()).string(), "set", "FG_APPLET_ID=3"});
    EXPECT_TRUE(contains(reason(outcome), "which the applet logs through")) << outcome.err;
}

TEST(AppletctlStart, OpensTheStandardStreams) {
    const auto closed = [](int stream) {
        return [stream] {
            close(stream);
            alarm(20); // a shell that reads from the socket of its scratch board would never end
        };
    };
    EXPECT_EQ(run({"shell"}, {}, "/dev/null", closed(STDIN_FILENO)).exitCode, 0);
    const Outcome outcome = run({"limits", "FG_WIDTH"}, {}, "/dev/null", closed(STDOUT_FILENO));
    EXPECT_TRUE(contains(outcome.err, "the output could not be written")) << outcome.err;
}

} // namespace
