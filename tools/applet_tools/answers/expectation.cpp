#include "applet_tools/answers/expectation.h"

#include "applet_tools/applet/access_log.h"
#include "applet_tools/applet/assignments.h"
#include "applet_tools/scratch/DesignSnapshot.h"

#include "vexo/fg_errors.h"

#include <set>

namespace applet_tools {

Expectation expectationOf(ScratchSession& session, const Words& assignments) {
    Expectation expected{json::object(), json::array()};
    const auto take = [&](const AssignmentResult& result) {
        if (result.code != FG_OK) return;
        expected.taken.push_back(result.actual.error == FG_OK ? asMessage(result.actual.value) : json());
    };
    applyAssignments(session.instance(), session.parameters(), assignments, {.after = take});
    std::set<std::string> written;
    for (const std::string& line : takeAccessLog(session.instance()))
        written.insert(loggedAccess(line).parameter);
    const DesignSnapshot picture(session);
    for (const auto& [name, number] : picture.numbers())
        if (written.contains(name)) expected.design[name] = numberAsJson(number);
    for (const auto& [name, elements] : picture.arrays())
        if (written.contains(name)) expected.design[name] = elements;
    return expected;
}

json expectJob(ScratchSession& session, const json& arguments) {
    const Expectation expected = expectationOf(session, arguments.at("assignments").get<Words>());
    return {{"design", expected.design}, {"taken", expected.taken}};
}

Expectation askExpectation(LiveSession& live, const Words& assignments) {
    const json answer = live.scratch().ask("expect", {{"assignments", assignments}});
    return {answer["design"], answer["taken"]};
}

} // namespace applet_tools
