#include "applet_tools/answers/routes.h"

#include "applet_tools/applet/access_log.h"
#include "applet_tools/base/errors.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <sstream>

namespace applet_tools {
namespace {

void setOnScratch(ScratchSession& session, const json& wanted) {
    const Target target = session.target(wanted.at("name").get<std::string>());
    const int code = writeValue(session.instance(), target, fromMessage(target, wanted.at("value")));
    if (code != FG_OK)
        throw Failure(target.name() + " cannot be set on a scratch board: " + codeInWords(code));
}

/** Reads "set Device1_... u32 3". */
DesignWrite writeIn(const std::string& line) {
    std::string kind, width;
    DesignWrite write{{}, 0};
    std::istringstream(line) >> kind >> write.parameter >> width >> write.value;
    return write;
}

} // namespace

json routesJob(ScratchSession& session, const json& groups) {
    json answer = json::array();
    for (const json& group : groups) {
        takeWrites(session.instance());
        for (const json& wanted : group)
            setOnScratch(session, wanted);
        // Either parameter of a pair writes both of the design's, so only the last write to each counts.
        DesignWrites writes;
        for (const std::string& line : takeWrites(session.instance())) {
            const DesignWrite write = writeIn(line);
            const auto known = std::ranges::find(writes, write.parameter, &DesignWrite::parameter);
            if (known != writes.end())
                known->value = write.value;
            else
                writes.push_back(write);
        }
        json& rows = answer.emplace_back(json::array());
        for (const DesignWrite& write : writes)
            rows.push_back({{"parameter", write.parameter}, {"value", write.value}});
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
    std::vector<DesignWrites> writes;
    for (const json& rows : live.bareScratch().ask("routes", wanted)) {
        DesignWrites& ofGroup = writes.emplace_back();
        for (const json& row : rows)
            ofGroup.push_back({row["parameter"].get<std::string>(), row["value"].get<std::int64_t>()});
    }
    return writes;
}

} // namespace applet_tools
