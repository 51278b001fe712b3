// A start, a save and a load consist of many calls, and a failing one affects only itself: every access of them
// fails in turn, once or from then on.
#include "support/applet_fixture.h"
#include "support/faults.h"
#include "support/temporary_folder.h"

#include <algorithm>

namespace {

using namespace support;

bool isSubsequence(const Lines& wanted, const Lines& log) {
    auto at = log.begin();
    return std::ranges::all_of(wanted, [&](const std::string& line) {
        at = std::find(at, log.end(), line);
        return at != log.end() && ++at != log.begin();
    });
}

class SessionFaults : public AppletTest {
protected:
    template <typename Body> void forEachPosition(std::size_t accesses, Body body) {
        for (const int how : {VBOARD_ONCE, VBOARD_FROM_THEN_ON})
            for (std::size_t k = 1; k <= accesses && !HasFailure(); ++k) {
                SCOPED_TRACE(testing::Message() << "access " << k << " how " << how);
                body(k, how);
            }
    }
    /** Makes a call with a fault and checks that another thread is served afterwards. Returns the board's
     *  log. */
    template <typename Function> Lines logOfFault(std::size_t k, int how, Function call) {
        grabber.clearLog();
        board.fail_access(grabber.device, static_cast<unsigned>(k), injectedCode, how);
        EXPECT_EQ(call(), FG_OK);
        EXPECT_EQ(grabber.lastError(), FG_OK);
        const Lines log = grabber.log();
        board.fail_access(grabber.device, 0, 0, VBOARD_ONCE);
        m_otherThread.run([&] { EXPECT_EQ(grabber.value<std::uint32_t>(FG_NR_OF_DMAS), 1u); });
        return log;
    }
    /** Fault-free accesses up to the failing one; all setters but the failing one are complete. */
    void expectOthers(const Lines& log, const Lines& faultFree, Sections::const_iterator section,
                      std::size_t k, int how) {
        const auto failed = faultFree.begin() + static_cast<std::ptrdiff_t>(k) - 1;
        ASSERT_GE(log.size(), k);
        EXPECT_TRUE(std::equal(faultFree.begin(), failed, log.begin()));
        EXPECT_EQ(log[k - 1], failedAccess(*failed));
        if (how != VBOARD_ONCE) return;
        auto end = faultFree.begin();
        while (end <= failed)
            end += std::ssize((section++)->second);
        EXPECT_TRUE(isSubsequence(Lines(end, faultFree.end()), log));
    }
    int bringUp() { return grabber.fitRam().bringUp().error; }
    int load() { return applet.Fg_loadConfig(grabber.fg(), TEST_DATA_DIR "/saved_state.mcf"); }
    Lines save() {
        EXPECT_EQ(applet.Fg_saveConfig(grabber.fg(), (m_folder / "saved.mcf").c_str()), FG_OK);
        return fileLines(m_folder / "saved.mcf");
    }

    const Sections sections = startUpSections();
    Grabber grabber;

private:
    const TemporaryFolder m_folder;
    OtherThread m_otherThread;
};

TEST_F(SessionFaults, BringUp) {
    ASSERT_EQ(bringUp(), FG_OK);
    const Lines faultFree = grabber.log();
    forEachPosition(faultFree.size(), [&](std::size_t k, int how) {
        EXPECT_EQ(grabber.free(), FG_OK);
        board.reset(grabber.device);
        const Lines log = logOfFault(k, how, [&] { return bringUp(); });
        // The first queries decide on later queries and writes.
        if (k > sections[0].second.size()) expectOthers(log, faultFree, sections.begin(), k, how);
        EXPECT_EQ(grabber.free(), FG_OK);
        board.reset(grabber.device);
        EXPECT_EQ(bringUp(), FG_OK);
        EXPECT_EQ(difference(grabber.log(), faultFree), "");
    });
}

TEST_F(SessionFaults, SaveOmitsTheLinesOfFailingGetters) {
    ASSERT_EQ(bringUp(), FG_OK);
    const Lines whole = save();
    grabber.clearLog();
    save();
    const std::size_t accesses = grabber.log().size();
    EXPECT_GE(accesses, 16u);
    forEachPosition(accesses, [&](std::size_t k, int how) {
        Lines saved;
        logOfFault(k, how, [&] { return saved = save(), FG_OK; });
        EXPECT_TRUE(isSubsequence(saved, whole));
        EXPECT_LT(saved.size(), whole.size());
        if (how == VBOARD_ONCE) {
            EXPECT_EQ(saved.size() + 1, whole.size());
        }
        EXPECT_EQ(difference(save(), whole), "");
    });
}

TEST_F(SessionFaults, LoadContinuesAndKeepsTheValuesOfTheFile) {
    ASSERT_EQ(bringUp(), FG_OK);
    ASSERT_EQ(load(), FG_OK);
    grabber.clearLog();
    ASSERT_EQ(load(), FG_OK);
    const Lines faultFree = grabber.log(), values = save();
    forEachPosition(faultFree.size(), [&](std::size_t k, int how) {
        for (const auto& [id, value] :
             {std::pair{FG_PIXELFORMAT, 1029u}, {FG_WIDTH, 512u}, {FG_HEIGHT, 256u}})
            EXPECT_EQ(grabber.set(id, value), FG_OK);
        expectOthers(logOfFault(k, how, [&] { return load(); }), faultFree, sections.begin() + 1, k, how);
        for (const std::string& line : save())
            EXPECT_TRUE(std::ranges::count(values, line) != 0 || line.starts_with("FG_CAMERASIMULATOR_"))
                << line;
        grabber.clearLog();
        EXPECT_EQ(load(), FG_OK);
        EXPECT_EQ(difference(grabber.log(), faultFree), "");
    });
}

} // namespace
