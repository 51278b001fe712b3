// What appletctl answers from its scratch board: each answer is held against what the applet does when it is asked.

#include "support/appletctl_program.h"

#include <gtest/gtest.h>

#include <sstream>
#include <tuple>

namespace {

using namespace appletctl_program;

std::string textOf(const json& number) {
    return number.is_string() ? number.get<std::string>() : number.dump();
}

Words with(const Words& before, const Words& command) {
    Words arguments = command;
    for (const std::string& assignment : before)
        arguments.insert(arguments.end(), {"--with", assignment});
    return arguments;
}

/** The exit code of a set behind others. */
int setAfter(Words before, const std::string& assignment) {
    before.insert(before.begin(), "set");
    before.push_back(assignment);
    return run(before).exitCode;
}

TEST(AppletctlLimits, AreThoseThatASetKeepsTo) {
    const std::pair<const char*, Words> cases[] = {
        {"FG_WIDTH", {}},
        {"FG_WIDTH", {"FG_XOFFSET=1024"}},
        {"FG_WIDTH", {"FG_VANTAGEPOINT=1"}},
        {"FG_HEIGHT", {"FG_VANTAGEPOINT=2"}},
        {"FG_SENSORWIDTH", {"FG_VANTAGEPOINT=1", "FG_WIDTH=512"}},
        {"FG_LINEEXPOSURE", {"FG_LINEPERIODE=100"}},
        {"FG_CAMERASIMULATOR_LINERATE", {}},
        {"FG_DIGIO_OUTPUT", {}},
    };
    for (const auto& [name, before] : cases) {
        const json told = document(with(before, {"limits", name}))["parameters"][0];
        const json& accepted = told["accepted"];
        for (const char* end : {"minimum", "maximum"})
            EXPECT_EQ(setAfter(before, std::string(name) + "=" + textOf(accepted[end])), 0) << name << told;
        if (accepted.contains("step")) {
            const auto step = accepted["step"].get<std::int64_t>();
            const auto behind = accepted["maximum"].get<std::int64_t>() + step;
            EXPECT_NE(setAfter(before, std::string(name) + "=" + std::to_string(behind)), 0) << told;
        }
        for (const json& mover : told["setBy"]) {
            if (mover.contains("design")) continue; // no set reaches it
            Words then = before;
            then.push_back(mover["with"]);
            EXPECT_EQ(setAfter(then, std::string(name) + "=" + textOf(mover["becomes"])), 0) << mover;
            EXPECT_NE(setAfter(before, std::string(name) + "=" + textOf(mover["becomes"])), 0) << mover;
        }
    }
}

TEST(AppletctlWhy, NamesChangesThatFreeAValue) {
    const std::tuple<Words, const char*> refused[] = {{{"FG_XOFFSET=1024"}, "FG_WIDTH=16384"},
                                                      {{"FG_VANTAGEPOINT=1"}, "FG_SENSORWIDTH=512"},
                                                      {{"FG_LINEPERIODE=100"}, "FG_LINEEXPOSURE=150"}};
    for (const auto& [before, assignment] : refused) {
        const json answer = document(with(before, {"why", assignment}))["answers"][0];
        EXPECT_EQ(answer["accepted"], false);
        ASSERT_FALSE(answer["acceptedWith"].empty()) << answer;
        for (const json& way : answer["acceptedWith"]) {
            Words then = before;
            std::istringstream steps(way.get<std::string>());
            for (std::string step; steps >> step;)
                then.push_back(step);
            EXPECT_EQ(setAfter(then, assignment), 0) << way;
        }
    }
}

} // namespace
