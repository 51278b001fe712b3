// APPLETCTL_PROGRAM is the path of the program.
#include "support/appletctl_program.h"

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace appletctl_program {

const Words scriptedRegisters{"VEXO_ENABLE_DRA=on", "LD_PRELOAD=" SCRIPTED_REGISTERS,
                              "ASAN_OPTIONS=verify_asan_link_order=0"};

void become(const Words& arguments, const Words& environment) {
    unsetenv("COLUMNS"); // that of the tests' own terminal
    for (const std::string& setting : environment) {
        const std::size_t equals = setting.find('=');
        if (equals == std::string::npos)
            unsetenv(setting.c_str());
        else
            setenv(setting.substr(0, equals).c_str(), setting.substr(equals + 1).c_str(), 1);
    }
    std::vector<char*> argv{const_cast<char*>("appletctl")};
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    execv(APPLETCTL_PROGRAM, argv.data());
    _exit(127);
}

int exitCodeOf(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string contents(std::FILE* file) {
    std::string text;
    std::rewind(file);
    for (int c; (c = std::fgetc(file)) != EOF;)
        text += static_cast<char>(c);
    std::fclose(file);
    return text;
}

Outcome run(const Words& arguments, const Words& environment, const char* input,
            const std::function<void()>& prepare) {
    std::FILE* out = std::tmpfile();
    std::FILE* err = std::tmpfile();
    const pid_t child = fork();
    if (child == 0) {
        dup2(open(input, O_RDONLY | O_CLOEXEC), STDIN_FILENO);
        dup2(fileno(out), STDOUT_FILENO);
        dup2(fileno(err), STDERR_FILENO);
        if (prepare) prepare();
        become(arguments, environment);
    }
    const int exitCode = exitCodeOf(child);
    return {exitCode, contents(out), contents(err)};
}

Outcome converse(const Words& arguments, const Words& environment, const std::string& prompt,
                 const Words& lines, unsigned short columns, unsigned short rows) {
    int terminal = -1;
    const winsize size{.ws_row = rows, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
    const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
    if (child == 0) become(arguments, environment);
    std::string text;
    std::size_t answered = 0, typed = 0; // up to where the text was answered, and by how many lines
    char buffer[4096];
    for (ssize_t count; (count = read(terminal, buffer, sizeof buffer)) > 0;) {
        text.append(buffer, static_cast<std::size_t>(count));
        const std::size_t found = text.find(prompt, answered);
        if (found == std::string::npos || typed == lines.size()) continue;
        answered = found + prompt.size();
        const std::string& line = lines[typed++];
        if (write(terminal, line.data(), line.size()) < 0) break;
    }
    close(terminal);
    return {exitCodeOf(child), text, ""};
}

std::string onTerminal(const Words& arguments, const Words& environment, unsigned short columns,
                       unsigned short rows) {
    return converse(arguments, environment, "", {}, columns, rows).out;
}

json document(Words arguments, const Words& environment) {
    arguments.insert(arguments.begin(), "--json");
    return json::parse(run(arguments, environment).out);
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace appletctl_program
