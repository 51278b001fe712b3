/** The description of a command, used by the command line, the help and the completion. Each command
 *  defines its row in its own source file. */
#ifndef APPLETCTL_COMMANDS_COMMAND_H
#define APPLETCTL_COMMANDS_COMMAND_H

#include "appletctl/base/Report.h"
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

/** A command line without the program's name, and its purpose. */
struct Example {
    const char* line;
    const char* help;
};

struct Command {
    enum class Kind {
        plain,
        prefix,  /**< its words are another command line */
        session, /**< needs a command line of its own: not allowed in a shell or a scenario */
        local,   /**< the same, and always executed by the program itself, never by a station */
        ofShell  /**< a word of the shell itself, which the shell executes: only there */
    };
    /** The effect of its words on the live board. */
    enum class Sets {
        nothing,
        assignments, /**< the assignments among its words */
        always,
        afterOwnQuestion /**< the command asks the user itself */
    };
    /** Whether its first word is a file. */
    enum class File {
        none,
        read,
        readUnlessAssignment, /**< a word with = is an assignment */
        write
    };
    static constexpr std::size_t mostExamples = 4;

    const CommandGroup* group = nullptr; /**< null for a top-level command */
    const char* name;
    const char* help;
    const char* argument = nullptr; /**< name of its words, or null if it takes none */
    const char* argumentHelp = nullptr;
    const char* form = nullptr; /**< its words in the usage line; null if the argument's name is enough */
    Example examples[mostExamples] = {};
    File file = File::none;
    const char* fileSuffix = ""; /**< of the files that its words name: ".mcf" */
    int mostFiles = 1;           /**< maximum number of leading words that are files */
    int fewest = 0, most = 0;    /**< number of words; most -1: unlimited */
    /** Throws UsageError and the failures. Null for a word of the shell itself. */
    Report (*run)(Context&, const Words&) = nullptr;
    Context::Scratch scratch = Context::Scratch::none;
    void (*addOptions)(CLI::App& command, Options& options) = nullptr; /**< adds the command's own options */
    Kind kind = Kind::plain;
    Sets sets = Sets::nothing;
    bool showsValues = false; /**< takes --with and --from */
    bool takesLong = false;   /**< other commands may read the board meanwhile (see Context::pause) */
    /** Answers --with on the scratch board too, so it is allowed on a board of the system. */
    bool takesWithToScratch = false;
    std::string (*moreHelp)() = nullptr; /**< shown after its words in the help */
    bool acquires = false;               /**< may start an acquisition, or replace the board */
    bool managesStations = false;        /**< starts, lists or ends stations, so none can execute it */
    bool showsWrites = false;            /**< the text already has the writes, so "trace" does not add them */
    /** Refuses a board that is not virtual, before the applet starts on it. */
    bool isForVirtualBoard = false;
    /** The uses that open no live board, as the help names them: "for two files"; empty: all; null: none. */
    const char* withoutBoard = nullptr;
};

/** The name of its words: "NAME=VALUE"; empty if it takes none. */
inline std::string_view kindOf(const Command& command) {
    return command.argument != nullptr ? command.argument : "";
}

/** True for commands allowed in a line of a shell or a scenario. */
inline bool isForLines(const Command& command) {
    return command.kind != Command::Kind::session && command.kind != Command::Kind::local;
}

/** For use by programs; hidden in the help. */
inline bool isHidden(const Command& command) { return std::string_view(command.name).starts_with("__"); }

/** "lut show". */
inline std::string fullName(const Command& command) {
    return (command.group != nullptr ? std::string(command.group->name) + " " : "") + command.name;
}

/** How it is called: "appletctl lut show", "undo". */
inline std::string calledName(const Command& command) {
    return (command.kind == Command::Kind::ofShell ? "" : "appletctl ") + fullName(command);
}

/** Runs the command with that full name and default options. */
Report runCommandNamed(Context& context, std::string_view name, const Words& words);

} // namespace appletctl

#endif
