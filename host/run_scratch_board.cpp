#include "host/run_scratch_board.h"

#include "applet_tools/jobs.h"
#include "applet_tools/scratch/ScratchBoard.h"

#include <cstdlib>
#include <exception>

int vexo_private_run_scratch_board(int count, char** arguments) {
    if (count != 3) return EXIT_FAILURE;
    try {
        return applet_tools::runScratchBoard(arguments[1], arguments[2], applet_tools::libraryJobs());
    } catch (const std::exception&) {
        return EXIT_FAILURE;
    }
}
