/** What the command line says besides the words of a command. */
#ifndef APPLETCTL_BASE_OPTIONS_H
#define APPLETCTL_BASE_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

namespace appletctl {

using Words = std::vector<std::string>;

enum class BoardKind { virtualBoard, system };

struct Options {
    // Of all commands.
    BoardKind board = BoardKind::virtualBoard; /**< --board */
    std::string bridge;                        /**< --bridge: library that opens a board of the system */
    std::string applet; /**< --applet: library to load instead of the one beside the program */
    bool offline = false;
    bool json = false;
    bool plain = false;          /**< --plain: tables as lines of cells, no colour, no drawing */
    std::string colour = "auto"; /**< --color: auto, always or never */
    bool quiet = false;          /**< -q: errors only */
    bool verbose = false;        /**< -v: notes on what was done to answer */

    // Of single commands.
    bool trace = false;        /**< the command stands behind "trace" */
    bool anyOrder = false;     /**< --any-order of "set" */
    bool verify = false;       /**< --verify of "set" */
    bool yes = false;          /**< --yes of "apply" */
    bool areAllWrites = false; /**< --all of "plan" and "apply": with the writes that change nothing */
    bool strict = false;       /**< --strict of "load" */
    bool live = false;         /**< --live of "diff": with the parameters as well */
    Words with;                /**< --with of "limits", "why", "deps": set on the scratch board before */
    bool dot = false;          /**< --dot of "deps" and "route" */
    std::optional<std::string> outFile;   /**< -o of "xml" and "report" */
    bool isPortable = false;              /**< --portable of "xml" */
    bool isChecked = false;               /**< --check of "xml" */
    std::optional<std::string> svgFile;   /**< --svg of "timing" */
    std::optional<std::string> vcdFile;   /**< --vcd of "timing" */
    std::optional<std::string> htmlFile;  /**< --html of "docs" */
    std::optional<std::string> manFolder; /**< --man of "docs" */
    bool onlyChanged = false;             /**< --changed of "list" */
    bool onlyWritable = false;            /**< --writable of "list" */
    std::string group;                    /**< --group of "list": part of the group's labels */
    Words columns;                        /**< -f of "list" */
    bool areGroups = false;               /**< -g of "get" and "watch": the names are groups */
    bool isRaw = false;                   /**< --raw of "get": bare values */
    std::string lutChannel = "all";       /**< --channel of "lut show": red, green, blue or all */
    int watchInterval = 1000;             /**< --interval of "watch": milliseconds from round to round */
    int watchCount = 0;                   /**< --count of "watch": rounds; 0: no end */
    std::string watchFailIf;              /**< --fail-if of "watch": a condition (see Condition) */
    std::string watchAlarmIf;             /**< --alarm-if of "watch": the same */
    bool watchLostLines = false;          /**< --lost-lines of "watch": an alarm when lines are lost */
    bool watchRate = false;               /**< --rate of "watch": the change per second */
    std::string junitFile;                /**< --junit of "run"; empty: none */
    bool failFast = false;                /**< --fail-fast of "run" */
    bool keepGoing = false;               /**< -k of "shell" */
};

} // namespace appletctl

#endif
