// Run time of appletctl from start to end.
//   start_up_bench
// APPLETCTL_PROGRAM is the program's path.

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

using Words = std::vector<std::string>;

/** Runs the program with its output thrown away; its exit code. */
int run(Words arguments) {
    std::string program = "appletctl";
    std::vector<char*> argv{program.data()};
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_WRONLY, 0);
    pid_t child = -1;
    const int error = posix_spawn(&child, APPLETCTL_PROGRAM, &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) return -1;
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void startUp(benchmark::State& state, const Words& arguments) {
    for (auto _ : state)
        if (run(arguments) != 0) state.SkipWithError("the program failed");
}

const Words commandLines[] = {
    {"--version"},
    {"completion", "bash"},
    {"__complete", "--", "get", "FG_SENSOR"},
    {"__complete", "--", "set", "FG_VANTAGEPOINT="},
    {"get", "FG_WIDTH"},
    {"list"},
    {"set", "FG_WIDTH=2048"},
    {"plan", "FG_WIDTH=2048"},
    // In a separate folder, one after the other: the first one writes the file that others read.
    {"save", "station.mcf", "FG_WIDTH=2048"},
    {"load", "station.mcf"},
    {"check", "station.mcf"},
    {"diff", "station.mcf", "FG_WIDTH=2048"},
    {"lint"},
    {"plan", "station.mcf"},
    {"xml", "--portable"},
    {"lut", "save", "table.lut"},
    {"docs", "--html", "parameters.html"},
    {"report", "-o", "report.txt"},
};

/** Changes the working directory to a folder. */
class WorkFolder {
public:
    WorkFolder() {
        std::filesystem::create_directory(m_path);
        std::filesystem::current_path(m_path);
    }
    ~WorkFolder() {
        std::filesystem::current_path("/");
        std::filesystem::remove_all(m_path);
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

private:
    const std::filesystem::path m_path =
        std::filesystem::temp_directory_path() / ("start-up-bench-" + std::to_string(getpid()));
};

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    for (const Words& arguments : commandLines) {
        std::string name;
        for (const std::string& argument : arguments)
            name += (name.empty() ? "" : " ") + argument;
        benchmark::RegisterBenchmark(name.c_str(), startUp, arguments)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    }
    const WorkFolder folder;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
