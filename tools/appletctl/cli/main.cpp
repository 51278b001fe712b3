/** appletctl: shows and sets the parameters of the applet. */
#include "appletctl/base/files.h"
#include "appletctl/cli/execute.h"

int main(int argc, char** argv) {
    using namespace appletctl;
    openStandardStreams();
    const Request request = parseCommandLine(Words(argv + 1, argv + argc));
    setOutputMode(request.options);
    return print(execute(request), nameOf(request), request.options);
}
