// Limits of the station's cost. Each figure is compared with a baseline of the same run: other load on the
// machine hardly changes a ratio.
//   station_ratios [--check]    with --check the exit code is 1 if a figure is beyond its bound
// APPLETCTL_PROGRAM is the program's path.

#include "applet_host/AppletHost.h"
#include "station_work.h"

#include "vexo/fg_parameters.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <thread>

namespace {

using Work = std::function<void()>;

constexpr int rounds = 15;

double secondsOf(const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Least {
    double first = std::numeric_limits<double>::infinity(), second = first;
    double ratio() const { return first / second; }
};

/** The least times of both, measured alternately. */
Least leastOf(const Work& first, const Work& second, int times = rounds) {
    Least least;
    for (int i = 0; i < times; ++i) {
        least.first = std::min(least.first, secondsOf(first));
        least.second = std::min(least.second, secondsOf(second));
    }
    return least;
}

/** The figures measured so far. */
class Figures {
public:
    void atMost(const std::string& what, double figure, double bound, const char* unit) {
        add(what, figure, bound, "at most", unit, figure <= bound);
    }
    void atLeast(const std::string& what, double figure, double bound, const char* unit) {
        add(what, figure, bound, "at least", unit, figure >= bound);
    }
    bool areKept() const { return m_areKept; }

private:
    void add(const std::string& what, double figure, double bound, const char* word, const char* unit,
             bool isKept) {
        std::printf("%-58s %8.3f %-14s %s %g%s\n", what.c_str(), figure, unit, word, bound,
                    isKept ? "" : "   BEYOND");
        std::fflush(stdout);
        m_areKept = m_areKept && isKept;
    }
    bool m_areKept = true;
};

// ---- Pictures

void addRenderers(Figures& figures) {
    for (const std::uint32_t bits : {8U, 16U, 10U, 12U, 14U}) {
        const station::Record record = pictureRecord(bits, true);
        std::vector<std::uint8_t> bytes(record.bytes());
        station::Renderer renderer;
        LookUps lookUps(bits, true);
        const Least least = leastOf([&] { renderer.render(record, bytes); }, [&] { lookUps.run(); });
        const bool isPacked = bits % 8 != 0;
        figures.atMost("a picture of BGR" + std::to_string(bits) + (isPacked ? "p" : ""), least.ratio(),
                       isPacked ? 2 : 1.5, "of look-ups");
    }
}

/** How much faster two threads do the work twice than one does: 2 where the machine has two whole cores. */
double gainOfTwoThreads(const Work& work) {
    const Least least = leastOf(work, [&] {
        std::thread other(work);
        work();
        other.join();
    });
    return 2 * least.ratio();
}

/** Renderers share nothing, so they gain from a second thread what look-ups gain. */
void addTwoRenderers(Figures& figures) {
    constexpr int pictures = 8;
    const station::Record record = pictureRecord(8, true);
    const double renderers = gainOfTwoThreads([&] {
        station::Renderer renderer;
        std::vector<std::uint8_t> bytes(record.bytes());
        for (int i = 0; i < pictures; ++i)
            renderer.render(record, bytes);
    });
    const double lookUps = gainOfTwoThreads([] {
        LookUps own(8, true);
        for (int i = 0; i < pictures; ++i)
            own.run();
    });
    std::printf("%-58s %8.3f times one's\n", "two threads of look-ups", lookUps);
    std::printf("%-58s %8.3f times one's\n", "two threads of renderers", renderers);
    figures.atLeast("two threads of renderers", renderers / lookUps, 0.9, "of look-ups");
}

// ---- Time

void addTime(Figures& figures) {
    constexpr std::int32_t rate = 70'000;
    constexpr double everyStep = 3;
    const auto seconds = [](station::Tick count, std::int32_t lines) {
        return Work([=] { simulate(count, lines, everyStep); });
    };
    constexpr int few = 5;
    const Least ten = leastOf(seconds(10, rate), seconds(1, rate), few);
    figures.atMost("a second of 70,000 lines", 1e3 * ten.second, 50, "ms");
    figures.atMost("ten such seconds, each", ten.ratio() / 10, 1.25, "of one");
    const Least hundred = leastOf(seconds(100, rate), seconds(1, rate), 2);
    figures.atMost("a hundred such seconds, each", hundred.ratio() / 100, 1.25, "of one");
    const Least sparse = leastOf(seconds(100, rate / 100), seconds(1, rate), few);
    figures.atMost("as many lines in a hundred seconds", sparse.ratio(), 1.25, "of one second");
}

// ---- Accesses

/** Sets and reads of the applet that go through to the board. */
void access(applet_host::Session& session) {
    constexpr int times = 2'000;
    const applet_host::AppletFunctions& applet = session.host.applet();
    for (int i = 0; i < times; ++i) {
        double exposure = i % 2 == 0 ? 10 : 20;
        std::uint32_t level = 0;
        applet.Fg_setParameterWithType(session.fg(), FG_LINEEXPOSURE, &exposure, 0, FG_PARAM_DOUBLE);
        applet.Fg_getParameterWithType(session.fg(), FG_FILLLEVEL, &level, 0, FG_PARAM_UINT32);
    }
}

void addAccesses(Figures& figures) {
    const applet_host::AppletHost host;
    applet_host::Session without(host), with(host);
    host.board().advance(with.device, 1000); // from now on the board has a station
    const Least least = leastOf([&] { access(with); }, [&] { access(without); }, 10 * rounds);
    figures.atMost("an access while no time moves", least.ratio(), 1.1, "without station");
}

// ---- Memory

/** Peak memory in KiB of a run that takes `pictures` pictures, for their digests or as the pages of a file; 0 if it
 *  fails. */
double peakOfGrab(const char* pictures, const char* file = nullptr) {
    const char* const arguments[] = {"appletctl",
                                     "grab",
                                     pictures,
                                     "FG_CAMERASIMULATOR_ENABLE=1",
                                     "FG_HEIGHT=128",
                                     file != nullptr ? "-q" : "--hash",
                                     file != nullptr ? "-o" : nullptr,
                                     file,
                                     nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = -1;
    const int error =
        posix_spawn(&child, APPLETCTL_PROGRAM, &actions, nullptr,
                    // The texts stay as they are. NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast)
                    const_cast<char* const*>(arguments), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = -1;
    rusage usage{};
    if (error != 0 || wait4(child, &status, 0, &usage) != child || status != 0) return 0;
    return static_cast<double>(usage.ru_maxrss);
}

void addMemory(Figures& figures) {
    const auto ratio = [](double thousand, double two) {
        return two > 0 && thousand > 0 ? thousand / two : std::numeric_limits<double>::infinity();
    };
    figures.atMost("peak memory of 'grab 1000'", ratio(peakOfGrab("1000"), peakOfGrab("2")), 1.05,
                   "of 'grab 2'");
    const std::string pages = "/tmp/station_ratios-" + std::to_string(getpid()) + ".tiff";
    figures.atMost("the same into the pages of a TIFF",
                   ratio(peakOfGrab("1000", pages.c_str()), peakOfGrab("2", pages.c_str())), 1.05,
                   "of 'grab 2'");
    unlink(pages.c_str());
}

} // namespace

int main(int count, char** arguments) {
    const bool isCheck = count == 2 && std::string_view(arguments[1]) == "--check";
    if (count > 1 && !isCheck) {
        std::fprintf(stderr, "usage: station_ratios [--check]\n");
        return 2;
    }
    Figures figures;
    addRenderers(figures);
    addTwoRenderers(figures);
    addTime(figures);
    addAccesses(figures);
    addMemory(figures);
    return isCheck && !figures.areKept() ? 1 : 0;
}
