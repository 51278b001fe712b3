#include "device/board/station_file.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/station/StationFile.h"
#include "base/Error.h"

#include <algorithm>

namespace producer {
namespace {

/** A number, or the name of an entry. */
std::optional<std::int64_t> entryFrom(const Parameter& parameter, const std::string& text) {
    const auto found = std::ranges::find(parameter.entries, text, &applet_host::Entry::name);
    if (found != parameter.entries.end()) return found->value;
    return applet_tools::wholeNumber<std::int64_t>(text);
}

std::optional<Value> valueFrom(const Parameter& parameter, const std::string& text) {
    switch (parameter.kind) {
    case REGISTER_KIND_STRING:
        return text;
    case REGISTER_KIND_DOUBLE:
        return applet_tools::floatingNumber(text);
    case REGISTER_KIND_ENUM:
        return entryFrom(parameter, text);
    default:
        return applet_tools::wholeNumber<std::int64_t>(text);
    }
}

void assign(const BoardStation& station, const std::string& assignment) {
    const std::size_t sign = assignment.find('=');
    const std::string name = assignment.substr(0, sign), text = assignment.substr(sign + 1);
    const Parameter* const parameter = station.find(name);
    if (parameter == nullptr)
        throw Error(GC_ERR_INVALID_VALUE, "VBOARD_STATION: parameters: the applet has no " + name);
    const auto value = valueFrom(*parameter, text);
    if (!value)
        throw Error(GC_ERR_INVALID_VALUE, "VBOARD_STATION: parameters: " + name + " takes no value " + text);
    station.set(*parameter, *value);
}

} // namespace

bool setUpStationFile(BoardStation& station) {
    try {
        const auto file = applet_tools::stationOfEnvironment();
        if (!file) return false;
        auto machine = *file;
        machine.clock.reset(); // the producer has its own: VBOARD_CLOCK
        connectStation(station.board(), station.device(), machine);
        for (const std::string& assignment : machine.parameters)
            assign(station, assignment);
        return true;
    } catch (const applet_tools::UsageError& error) {
        throw Error(GC_ERR_INVALID_VALUE, error.what());
    } catch (const applet_tools::Failure& error) {
        throw Error(GC_ERR_IO, error.what());
    }
}

} // namespace producer
