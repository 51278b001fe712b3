#include "appletctl/applet/access_log.h"

#include "appletctl/base/output.h"
#include "appletctl/base/text.h"

#include <sstream>

namespace appletctl {
namespace {

std::string logLine(Instance& instance, std::size_t index) {
    std::string line(256, '\0');
    int length = VBOARD_TOO_SMALL;
    while ((length = instance.board().log_line(instance.device(), index, line.data(), line.size())) ==
           VBOARD_TOO_SMALL)
        line.resize(line.size() * 2);
    line.resize(length < 0 ? 0 : static_cast<std::size_t>(length));
    return printable(toUtf8(line.c_str()));
}

void logKinds(Instance& instance, unsigned kinds) {
    instance.board().log_kinds(instance.device(), kinds);
    instance.board().log_clear(instance.device());
}

} // namespace

void logWrites(Instance& instance) { logKinds(instance, VBOARD_SET | VBOARD_REGISTER_WRITE); }

void logAccesses(Instance& instance) {
    logKinds(instance, VBOARD_SET | VBOARD_GET | VBOARD_REGISTER_WRITE | VBOARD_REGISTER_READ);
}

std::string accessLine(const std::string& line) {
    std::vector<std::string> cells;
    std::istringstream words(line);
    for (std::string word; words >> word;)
        cells.push_back(word);
    return lineOf(cells, "  " + line);
}

std::vector<std::string> takeWrites(Instance& instance) {
    std::vector<std::string> lines;
    const std::size_t count = instance.board().log_size(instance.device());
    for (std::size_t i = 0; i < count; ++i)
        lines.push_back(logLine(instance, i));
    instance.board().log_clear(instance.device());
    return lines;
}

} // namespace appletctl
