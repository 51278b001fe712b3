#include "applet_tools/answers/routes.h"

#include "applet_tools/applet/access_log.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/scratch/message_rows.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <string_view>

namespace applet_tools {
namespace {

void setOnScratch(ScratchSession& session, const json& wanted) {
    const Target target = session.target(wanted.at("name").get<std::string>());
    const int code = writeValue(session.instance(), target, fromMessage(target, wanted.at("value")));
    if (code != FG_OK)
        throw Failure(target.name() + " cannot be set on a scratch board: " + codeInWords(code));
}

DesignWrite writeIn(const std::string& line) {
    const LoggedAccess access = loggedAccess(line);
    return {access.parameter, wholeNumber<std::int64_t>(access.value).value_or(0)};
}

} // namespace

std::vector<SignalRoute> routesOf(const ParameterList& parameters) {
    constexpr std::string_view suffix = "_SOURCE";
    std::vector<SignalRoute> routes;
    for (const Parameter& parameter : parameters.all()) {
        if (!parameter.name.ends_with(suffix)) continue;
        const std::string output = parameter.name.substr(0, parameter.name.size() - suffix.size());
        const auto polarity = std::ranges::find(parameters.all(), output + "_POLARITY", &Parameter::name);
        if (polarity != parameters.all().end()) routes.push_back({output, {&parameter}, {&*polarity}});
    }
    return routes;
}

template <> struct MessageRows<DesignWrite> {
    static constexpr auto rows = std::tuple(&DesignWrite::parameter, &DesignWrite::value);
};

json routesJob(ScratchSession& session, const json& groups) {
    json answer = json::array();
    for (const json& group : groups) {
        takeAccessLog(session.instance());
        for (const json& wanted : group)
            setOnScratch(session, wanted);
        // Either parameter of a pair writes both of the design's, so only the last write to each counts.
        DesignWrites writes;
        for (const std::string& line : takeAccessLog(session.instance())) {
            const DesignWrite write = writeIn(line);
            const auto known = std::ranges::find(writes, write.parameter, &DesignWrite::parameter);
            if (known != writes.end())
                known->value = write.value;
            else
                writes.push_back(write);
        }
        answer.push_back(toMessage(writes));
    }
    return answer;
}

std::vector<DesignWrites> askWrites(LiveSession& live, const std::vector<std::vector<Target>>& groups) {
    json wanted = json::array();
    for (const std::vector<Target>& group : groups) {
        json& values = wanted.emplace_back(json::array());
        for (const Target& target : group)
            values.push_back(
                {{"name", target.parameter->name}, {"value", asMessage(valueOf(live.instance(), target))}});
    }
    return recordFrom<std::vector<DesignWrites>>(live.bareScratch().ask("routes", wanted));
}

} // namespace applet_tools
