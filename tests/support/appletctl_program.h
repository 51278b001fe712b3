/** Runs of the real appletctl. */
#ifndef APPLETCTL_PROGRAM_H
#define APPLETCTL_PROGRAM_H

#include <nlohmann/json.hpp>

#include <sys/types.h>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace appletctl_program {

using Words = std::vector<std::string>;
using nlohmann::json;

struct Outcome {
    int exitCode;
    std::string out;
    std::string err;
};

/** Executes appletctl in this process, with these settings ("NAME=VALUE", or "NAME" to unset) in the
 *  environment. */
[[noreturn]] void become(const Words& arguments, const Words& environment);

/** An environment with registers that read 5, then fail, then read 9 and 2. */
extern const Words scriptedRegisters;

/** Waits for the end of a child; returns 128 plus the number of a signal that ended it. */
int exitCodeOf(pid_t child);

/** The content of the file; closes it. */
std::string contents(std::FILE* file);

/** The output of the program with this file as input. `prepare` is called in its process, before it starts. */
Outcome run(const Words& arguments, const Words& environment = {}, const char* input = "/dev/null",
            const std::function<void()>& prepare = {});

/**
 * The output of the program on a terminal, with each of the lines typed after the next prompt, and
 * its exit code.
 */
Outcome converse(const Words& arguments, const Words& environment, const std::string& prompt,
                 const Words& lines, unsigned short columns = 0, unsigned short rows = 0);

/** The output of the program on a terminal of that size; 0: one that does not report it. */
std::string onTerminal(const Words& arguments, const Words& environment, unsigned short columns = 0,
                       unsigned short rows = 0);

/** The document of a command with --json. */
json document(Words arguments, const Words& environment = {});

bool contains(const std::string& text, const std::string& part);

} // namespace appletctl_program

#endif
