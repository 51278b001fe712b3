/** Real runs of appletctl. */
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

/** Becomes appletctl, with these settings ("NAME=VALUE", or "NAME" to take one away) in the environment. */
[[noreturn]] void become(const Words& arguments, const Words& environment);

/** An environment with registers that read 5, fail, read 9 and then 2. */
extern const Words scriptedRegisters;

/** Waits for the end of a child; a signal counts from 128 on. */
int exitCodeOf(pid_t child);

/** All that was written to the file, which is closed. */
std::string contents(std::FILE* file);

/** What the program prints that reads this file. `prepare` is called in its process, before it starts. */
Outcome run(const Words& arguments, const Words& environment = {}, const char* input = "/dev/null",
            const std::function<void()>& prepare = {});

/**
 * What the program prints on a terminal on which the lines are typed, each one behind the next prompt, and
 * its exit code.
 */
Outcome converse(const Words& arguments, const Words& environment, const std::string& prompt,
                 const Words& lines, unsigned short columns = 0);

/** What the program prints on a terminal of that width; 0: one that does not tell its width. */
std::string onTerminal(const Words& arguments, const Words& environment, unsigned short columns = 0);

/** The document of a command with --json. */
json document(Words arguments, const Words& environment = {});

bool contains(const std::string& text, const std::string& part);

} // namespace appletctl_program

#endif
