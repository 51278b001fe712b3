// The input is a station file. Either it is refused with a printable message, or the virtual board accepts
// all that it describes, and time advances.

#include "applet_host/AppletHost.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/station/StationFile.h"
#include "invariants.h"

namespace {

using applet_tools::StationFile;
using fuzz::require;

std::optional<StationFile> stationFrom(const std::string& text) {
    try {
        return applet_tools::parseStation(text, "");
    } catch (const applet_tools::UsageError& error) {
        const std::string_view message = error.what();
        require(!message.empty() && message.size() < 2000, "a message says what is wrong");
        require(std::ranges::none_of(message, [](char c) { return c >= 0 && c < ' '; }),
                "a message disturbs no terminal");
        return std::nullopt;
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const applet_host::AppletHost host(applet_host::Locations::beside());
    auto station = stationFrom({reinterpret_cast<const char*>(data), size});
    if (!station) return 0;
    if (station->scene) station->scene->image.clear(); // a file that exists on one machine only
    station->clock.reset();
    const applet_host::BoardFunctions& board = host.board();
    LOOMdevice* const device = board.open();
    connectStation(board, device, *station); // the board must accept whatever the reader accepts
    require(board.advance(device, 1000) == 1000, "time passes");
    board.close(device);
    return 0;
}
