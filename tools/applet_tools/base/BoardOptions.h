/** Selects the applet and the board. */
#ifndef APPLET_TOOLS_BASE_BOARDOPTIONS_H
#define APPLET_TOOLS_BASE_BOARDOPTIONS_H

#include <string>

namespace applet_tools {

enum class BoardKind { virtualBoard, system };

/** How to open a live applet. */
struct BoardOptions {
    BoardKind board = BoardKind::virtualBoard;
    std::string bridge;   /**< library that opens a board of the system */
    std::string applet;   /**< library to load; empty: the one next to the program */
    bool offline = false; /**< an instance without a board */
    bool look = false;    /**< bring the applet up without writing to the board */
    /** Sets a virtual board up from the station file that the environment variable VBOARD_STATION names. */
    bool takesStationOfEnvironment = true;
    /** Program that runs the scratch board (see runScratchBoard); empty: a copy of this process. */
    std::string scratchProgram{};

    bool isVirtual() const { return board == BoardKind::virtualBoard && !offline; }
    bool isOnSystem() const { return board == BoardKind::system && !offline; }
    bool operator==(const BoardOptions&) const = default;
};

} // namespace applet_tools

#endif
