// A start, a save and a load are many calls in a row, of which one that fails ends itself alone: every access
// of them fails in turn, once or from then on.

#include "support/applet_fixture.h"
#include "support/faults.h"
#include "support/temporary_folder.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

namespace {

using namespace support;

/** One call of the row: its fault-free accesses, and how many of them end it when they fail. */
struct Call {
    std::string name;
    Lines accesses;
    std::size_t own;
};
using Calls = std::vector<Call>;

/** What is expected of a row of calls, one access of which fails. */
struct Outcome {
    Lines log;
    std::set<std::string> broken; /**< the calls that ended early */
};

const std::string resolving = "resolving"; /**< the call that asks for the ids of the design's parameters */

Outcome outcomeOf(const Calls& calls, std::size_t k, int how) {
    Outcome outcome;
    std::set<std::string> lost; // what got no id
    std::size_t before = 0;
    for (const auto& [name, accesses, own] : calls) {
        for (std::size_t i = 0; i < accesses.size(); ++i) {
            const std::string &line = accesses[i], subject = firstWords(line, 2);
            const bool laterToo = how == VBOARD_FROM_THEN_ON && before + i + 1 > k;
            const bool fails = laterToo || before + i + 1 == k;
            const bool isStray = lost.contains(subject.substr(subject.find(' ') + 1));
            if (!fails && !isStray) {
                outcome.log.push_back(line);
                continue;
            }
            const Lines rest(accesses.begin() + static_cast<std::ptrdiff_t>(i), accesses.end());
            if (isStray)
                outcome.log.push_back(strayAccess(line, fails ? injectedCode : int{FG_ERR_INVALID_ARGUMENT}));
            else if (name == resolving)
                outcome.log.push_back(failedAccess(line));
            else
                outcome.log = outcome.log + cutAt(rest, 1, how);
            if (name == resolving) {
                lost.insert(subject.substr(subject.find(' ') + 1));
            } else if (i < own) {
                outcome.broken.insert(name);
                break;
            }
        }
        before += accesses.size();
    }
    return outcome;
}

std::size_t sizeOf(const Calls& calls) {
    std::size_t all = 0;
    for (const Call& call : calls)
        all += call.accesses.size();
    return all;
}

/** Lines that do not hang on what a start learns from the design: debug points and output formats. */
Lines withoutDiscovered(const Lines& log) {
    Lines rest;
    for (const std::string& line : log) {
        const auto holds = [&](const char* part) { return line.find(part) != std::string::npos; };
        if (!holds("Debug") && !holds("OutputFormat_") && !holds(" #")) rest.push_back(line);
    }
    return rest;
}

std::array<int, 4> liveObjects() {
    return {live("boards"), live("designs"), live("handles"), live("strings")};
}

class SessionFaults : public AppletTest {
protected:
    void start(Grabber& grabber) {
        board.log_kinds(grabber.device, ~0u);
        grabber.fitRam().bringUp();
    }
    /** The fault-free accesses of a row of setters, by the listing of those of a start. It has other values,
     * and no look-ups of names: each belongs to what follows it. */
    Calls callsOf(const Lines& faultFree, const Sections& sections) {
        Calls calls;
        std::size_t at = 0;
        for (const auto& [name, accesses] : sections) {
            Call& call = calls.emplace_back(Call{name, {}, 0});
            for (const std::string& listed : accesses) {
                while (at < faultFree.size() && faultFree[at].starts_with("resolve "))
                    call.accesses.push_back(faultFree[at++]);
                if (at == faultFree.size()) break;
                EXPECT_EQ(firstWords(faultFree[at], 2), firstWords(listed, 2));
                call.accesses.push_back(faultFree[at++]);
            }
            call.own = ownAccesses(call.accesses);
        }
        EXPECT_EQ(at, faultFree.size());
        return calls;
    }
    /** `least` is how many positions there were when the sweep was written. */
    template <typename Body> void forEachPosition(std::size_t accesses, std::size_t least, Body body) {
        std::size_t positions = 0;
        for (const int how : {VBOARD_ONCE, VBOARD_FROM_THEN_ON}) {
            for (std::size_t k = 1; k <= accesses; ++k) {
                SCOPED_TRACE(testing::Message() << "access " << k << " how " << how);
                body(k, how);
                ++positions;
            }
        }
        EXPECT_GE(positions, least) << "less is swept than was";
        RecordProperty("positions", std::to_string(positions));
    }
    /** A call with a fault: its result, the last error, and what the board saw. */
    template <typename Function> Lines logOfFault(Grabber& grabber, std::size_t k, int how, Function call) {
        grabber.clearLog();
        board.fail_access(grabber.device, static_cast<unsigned>(k), injectedCode, how);
        EXPECT_EQ(call(), FG_OK);
        EXPECT_EQ(grabber.lastError(), FG_OK);
        const Lines log = grabber.log();
        board.fail_access(grabber.device, 0, 0, VBOARD_ONCE);
        m_otherThread.run(
            [&] { EXPECT_EQ(grabber.value<std::uint32_t>(FG_NR_OF_DMAS), 1u); }); // needs the lock
        return log;
    }
    Lines savedBy(Grabber& grabber) {
        EXPECT_EQ(applet.Fg_saveConfig(grabber.fg(), m_file.c_str()), FG_OK);
        return fileLines(m_file);
    }
    int load(Grabber& grabber, const Lines& lines) {
        std::string text;
        for (const std::string& line : lines)
            text += line + '\n';
        writeFile(m_file, text);
        return applet.Fg_loadConfig(grabber.fg(), m_file.c_str());
    }
    static std::string keyOf(const std::string& line) { return line.substr(0, line.find('=')); }

private:
    const TemporaryFolder m_folder;
    const std::string m_file = m_folder / "state.mcf";
    OtherThread m_otherThread;
};

TEST_F(SessionFaults, BringUp) {
    const auto before = liveObjects();
    {
        Grabber grabber;
        start(grabber);
        const Lines faultFree = grabber.log();
        const std::size_t names = dataLines("design_parameters.txt").size();
        const auto behindNames = faultFree.begin() + static_cast<std::ptrdiff_t>(names);
        Calls calls = callsOf(Lines(behindNames, faultFree.end()), startUpSections());
        calls.insert(calls.begin(), Call{resolving, Lines(faultFree.begin(), behindNames), names});
        calls[1].own = calls[1].accesses.size();
        const std::size_t discovered = names + calls[1].own;
        ASSERT_EQ(grabber.free(), FG_OK);

        forEachPosition(faultFree.size(), 816, [&](std::size_t k, int how) {
            board.reset(grabber.device);
            grabber.fitRam();
            const Outcome expected = outcomeOf(calls, k, how);
            const Lines log = logOfFault(grabber, k, how, [&] { return grabber.bringUp().error; });
            ASSERT_NE(grabber.handle.object, nullptr);
            const auto fault = static_cast<std::ptrdiff_t>(k);
            ASSERT_GE(log.size(), k);
            const bool learnsAll = k > discovered || (k <= names && how == VBOARD_ONCE);
            if (learnsAll) {
                EXPECT_EQ(difference(log, expected.log), "");
            } else { // what else is asked and written then hangs on what was learnt
                EXPECT_TRUE(std::equal(log.begin(), log.begin() + fault, expected.log.begin()));
                EXPECT_EQ(difference(withoutDiscovered(log), withoutDiscovered(expected.log)), "");
            }
            EXPECT_EQ(grabber.free(), FG_OK);
            board.reset(grabber.device);
            start(grabber);
            EXPECT_EQ(grabber.error, FG_OK);
            EXPECT_EQ(difference(grabber.log(), faultFree), "");
            EXPECT_EQ(grabber.free(), FG_OK);
        });
    }
    EXPECT_EQ(liveObjects(), before);
}

TEST_F(SessionFaults, SaveLosesTheLinesOfTheGettersThatFail) {
    Grabber grabber;
    start(grabber);
    const Lines whole = savedBy(grabber);
    Calls calls; // a save asks what the gets ask
    for (const std::string& line : whole) {
        if (!line.starts_with("FG_")) continue;
        const std::string key = keyOf(line);
        const int id = applet.Fg_getParameterIdByName(grabber.fg(), key.c_str());
        const bool isText = line.find('\'') != line.npos;
        std::uint64_t room[1024];
        grabber.clearLog();
        EXPECT_EQ(grabber.get(id, room, 0, isText ? FG_PARAM_TEXT : FG_PARAM_UINT32), FG_OK) << key;
        calls.push_back({key, grabber.log(), grabber.log().size()});
    }
    forEachPosition(sizeOf(calls), 38, [&](std::size_t k, int how) {
        const Outcome expected = outcomeOf(calls, k, how);
        Lines saved, lines = whole;
        const auto save = [&] { return saved = savedBy(grabber), FG_OK; };
        EXPECT_EQ(difference(logOfFault(grabber, k, how, save), expected.log), "");
        std::erase_if(lines, [&](const auto& line) { return expected.broken.contains(keyOf(line)); });
        EXPECT_EQ(difference(saved, lines), "");
        EXPECT_EQ(difference(savedBy(grabber), whole), "");
    });
}

TEST_F(SessionFaults, LoadGoesOnAndKeepsTheValuesOfTheFile) {
    Grabber grabber;
    start(grabber);
    Lines file = dataLines("saved_state.mcf");
    const std::map<std::string, std::string> other = {
        {"FG_PIXELFORMAT", "1029"},      {"FG_WIDTH", "512"},       {"FG_HEIGHT", "256"},
        {"FG_SCALINGFACTOR_RED", "0.5"}, {"FG_LINEEXPOSURE", "20"}, {"FG_IMGTRIGGERMODE", "6"}};
    for (std::string& line : file)
        if (const auto found = other.find(keyOf(line)); found != other.end())
            line = found->first + '=' + found->second + ';';
    ASSERT_EQ(load(grabber, file), FG_OK);
    grabber.clearLog();
    ASSERT_EQ(load(grabber, file), FG_OK);
    const Lines faultFree = grabber.log();
    Sections sections = startUpSections();
    sections.erase(sections.begin()); // what a start asks the design about itself
    const Calls calls = callsOf(faultFree, sections);
    const auto isRate = [](const std::string& line) { // what is read back from counters
        return line.starts_with("FG_CAMERASIMULATOR_LINERATE") ||
               line.starts_with("FG_CAMERASIMULATOR_FRAMERATE");
    };
    Lines values = savedBy(grabber);
    std::erase_if(values, isRate);
    forEachPosition(faultFree.size(), 444, [&](std::size_t k, int how) {
        ASSERT_EQ(load(grabber, dataLines("saved_state.mcf")), FG_OK);
        const auto loadFile = [&] { return load(grabber, file); };
        EXPECT_EQ(difference(logOfFault(grabber, k, how, loadFile), outcomeOf(calls, k, how).log), "");
        Lines kept = savedBy(grabber);
        std::erase_if(kept, isRate);
        EXPECT_EQ(difference(kept, values), "");
        grabber.clearLog();
        EXPECT_EQ(load(grabber, file), FG_OK);
        EXPECT_EQ(difference(grabber.log(), faultFree), "");
    });
}

} // namespace
