#include "appletctl/assignments.h"
#include "appletctl/text.h"

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

/** The accesses since the last call. */
std::vector<std::string> takeLog(Instance& instance) {
    std::vector<std::string> lines;
    const std::size_t count = instance.board().log_size(instance.device());
    for (std::size_t i = 0; i < count; ++i)
        lines.push_back(logLine(instance, i));
    instance.board().log_clear(instance.device());
    return lines;
}

} // namespace

Report setParameters(const Options& options, const Words& assignments) {
    Instance instance(options);
    return carryOut(instance, ParameterList(instance), assignments);
}

Report traceSet(const Options& options, const Words& assignments) {
    if (options.offline)
        throw UsageError("'trace set' needs a board, and --offline has none: leave --offline out");
    Instance instance(options);
    instance.board().log_kinds(instance.device(), VBOARD_SET | VBOARD_REGISTER_WRITE);
    return carryOut(instance, ParameterList(instance), assignments, [&] { return takeLog(instance); });
}

} // namespace appletctl
