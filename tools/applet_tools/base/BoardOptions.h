/** Which applet, and on which board. */
#ifndef APPLET_TOOLS_BASE_BOARDOPTIONS_H
#define APPLET_TOOLS_BASE_BOARDOPTIONS_H

#include <string>

namespace applet_tools {

enum class BoardKind { virtualBoard, system };

/** How a live applet is opened. */
struct BoardOptions {
    BoardKind board = BoardKind::virtualBoard;
    std::string bridge;   /**< library that opens a board of the system */
    std::string applet;   /**< library to load instead of the one beside the program; empty: that one */
    bool offline = false; /**< an instance without a board */
    bool look = false;    /**< bring the applet up without writing to the board */

    bool operator==(const BoardOptions&) const = default;
};

} // namespace applet_tools

#endif
