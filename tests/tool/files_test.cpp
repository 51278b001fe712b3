// Files that appletctl reads and writes under adverse conditions: a full disk, a signal, a truncated file.

#include "support/appletctl_program.h"
#include "support/sanitizers.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

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

    const support::TemporaryFolder folder;
    const std::string saved = folder / "saved.mcf";
};

TEST_F(AppletctlFiles, ReportAFailedFileInMemory) {
    for (const Words& arguments :
         {Words{"diff", saved, "--live"}, Words{"plan", saved}, Words{"load", saved}, Words{"check", saved},
          Words{"xml", "--portable"}, Words{"describe", "width"}}) {
        const Outcome outcome = run(arguments, {}, "/dev/null", fillDisk);
        EXPECT_EQ(outcome.exitCode, 3) << arguments[0] << outcome.out;
        EXPECT_TRUE(contains(outcome.err, "a file in memory cannot be made: File too large\n"))
            << outcome.err;
    }
}

TEST_F(AppletctlFiles, AreWrittenCompletelyOrNotAtAll) {
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
    // Devices and pipes are written to in place, and a missing folder loses nothing.
    const Outcome printed = run({"report", "-o", "/dev/stdout"});
    EXPECT_TRUE(printed.out.starts_with("Report of appletctl\n"));
    EXPECT_TRUE(printed.out.ends_with("\"/dev/stdout\" written\n"));
    EXPECT_TRUE(contains(run({"xml", "-o", "/dev/full"}).err, "No space left on device"));
    EXPECT_TRUE(
        contains(run({"save", folder / "no/x.mcf"}).err, "cannot be written: no file can be made in"));
}

TEST_F(AppletctlFiles, AreCompleteDuringConcurrentWrites) {
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

TEST_F(AppletctlFiles, AreRemovedOnSignals) {
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
    std::string text = support::fileBytes(saved);
    for (int i = 0; i < 1'000'000; ++i)
        text += "KEY" + std::to_string(i) + "=1024;\n"; // 16 MB
    support::writeFile(folder / "grown.mcf", text);
    const auto inLittleMemory = [] {
        if (!underAddressSanitizer && !underThreadSanitizer) limit(RLIMIT_AS, 150'000'000);
    };
    for (const Words& arguments :
         {Words{"check", folder / "grown.mcf"}, Words{"diff", folder / "grown.mcf", saved}}) {
        const Outcome outcome = run(arguments, {}, "/dev/null", inLittleMemory);
        EXPECT_LT(outcome.exitCode, 2) << outcome.err;
    }
}

} // namespace
