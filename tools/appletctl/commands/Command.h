/** The row of a command: all that the command line, the help and the completion need to know of it. Each command
 *  defines its row in its own source file. */
#ifndef APPLETCTL_COMMANDS_COMMAND_H
#define APPLETCTL_COMMANDS_COMMAND_H

#include "appletctl/base/output.h"
#include "appletctl/commands/Context.h"

#include <string>
#include <string_view>

namespace CLI {
class App;
}

namespace appletctl {

/** The first word of commands that consist of two. */
struct CommandGroup {
    const char* name;
    const char* help;
};

/** A command line without the program's name, and what it is good for. */
struct Example {
    const char* line;
    const char* help;
};

struct Command {
    enum class Kind {
        plain,
        prefix,  /**< its words are another command line */
        session, /**< has a command line for itself: no line of a shell or a scenario */
        local    /**< the same, and always carried out by the program itself, never by a station */
    };
    /** What its words do to the live board. */
    enum class Sets {
        nothing,
        assignments, /**< those among its words */
        always,
        afterOwnQuestion /**< the command asks by itself */
    };
    /** Whether its first word is a file. */
    enum class File {
        none,
        read,
        readUnlessAssignment, /**< a word with = is an assignment */
        write
    };
    static constexpr std::size_t mostExamples = 4;

    const CommandGroup* group = nullptr; /**< null at the top */
    const char* name;
    const char* help;
    const char* argument = nullptr; /**< what its words are, or null if it takes none */
    const char* argumentHelp = nullptr;
    const char* form = nullptr; /**< of its words in the usage line; null where the argument says it */
    Example examples[mostExamples] = {};
    File file = File::none;
    const char* fileSuffix = ""; /**< of the files that its words name: ".mcf" */
    int mostFiles = 1;           /**< so many of its first words may be files */
    int fewest = 0, most = 0;    /**< number of words; most -1: any number */
    /** UsageError and the failures leave it as exceptions. */
    Report (*run)(Context&, const Words&);
    Context::Scratch scratch = Context::Scratch::none;
    void (*addOptions)(CLI::App& command, Options& options) = nullptr; /**< its own ones */
    Kind kind = Kind::plain;
    Sets sets = Sets::nothing;
    bool showsValues = false; /**< takes --with and --from */
    bool takesLong = false;   /**< others may look at the board meanwhile (see Context::pause) */
    bool takesWithToScratch =
        false; /**< answers --with on the scratch board too, so beside a board of the system */
    std::string (*moreHelp)() = nullptr; /**< behind its words in the help */
    bool showsWrites = false;            /**< "trace" need not add them to its text */
};

/** What its words are: "NAME=VALUE"; empty if it takes none. */
inline std::string_view kindOf(const Command& command) {
    return command.argument != nullptr ? command.argument : "";
}

/** True for what a line of a shell or a scenario can be. */
inline bool isForLines(const Command& command) {
    return command.kind != Command::Kind::session && command.kind != Command::Kind::local;
}

/** For programs, not for people. */
inline bool isHidden(const Command& command) { return std::string_view(command.name).starts_with("__"); }

/** "lut show". */
inline std::string fullName(const Command& command) {
    return (command.group != nullptr ? std::string(command.group->name) + " " : "") + command.name;
}

/** Runs another command, of that full name, with its default options. */
Report runCommandNamed(Context& context, std::string_view name, const Words& words);

} // namespace appletctl

#endif
