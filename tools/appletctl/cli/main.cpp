/** appletctl: shows and sets the parameters of the applet. */
#include "applet_tools/base/files.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/print.h"
#include "appletctl/cli/execute.h"

#include <iostream>

int main(int argc, char** argv) {
    using namespace appletctl;
    try {
        openStandardStreams();
        const Words words(argv + 1, argv + argc);
        const Request request = parseCommandLine(words);
        setOutputMode(request.options);
        return print(execute(request, words), nameOf(request), request.options);
    } catch (const std::exception& error) {
        // execute() turns failures into reports; only failures of parsing and printing arrive here.
        std::cerr << "appletctl: " << internalError(error) << '\n';
        return exitUnavailable;
    }
}
