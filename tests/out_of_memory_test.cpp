// Without memory: a call ends with std::bad_alloc or a told code; nothing leaks, no lock stays taken, and the
// next call works. Each allocation of the calls below fails, alone and with all that follow.

#include "support/applet_fixture.h"
#include "support/counted_malloc.h"
#include "support/temporary_folder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <new>
#include <thread>

namespace {

using namespace support;

constexpr int left = 1; // for a code: the call was left by an exception

/** A call that lacks memory. */
struct Call {
    const char* name;
    std::function<void(Grabber&)> prepare;
    std::function<int(Grabber&)> perform;
    std::vector<int> codes = {};                   /**< that tell of the lack, besides the exception */
    std::function<void(Grabber&, int)> check = {}; /**< what is there after this code */
    int answer = FG_OK;                            /**< with enough memory */
    long stride = 1;                               /**< from position to position, behind the 200th */
};

class OutOfMemory : public AppletTest {
protected:
    void SetUp() override {
        if (!mallocIsCounted) GTEST_SKIP() << "the sanitizer owns malloc";
    }

    /** Blocks of memory, open files and what the board has given out. */
    static std::array<long, 6> heldNow() {
        const std::filesystem::directory_iterator files("/proc/self/fd");
        const long open = std::distance(begin(files), end(files));
        return {liveBlocks(), open, live("boards"), live("designs"), live("handles"), live("strings")};
    }
    /** What is made once is there when the attempt is repeated; a leak comes again. */
    template <typename Attempt> static bool expectNothingHeld(Attempt attempt) {
        auto before = heldNow();
        const bool result = attempt();
        auto after = heldNow();
        if (after == before) return result;
        before = heldNow();
        attempt();
        after = heldNow();
        EXPECT_EQ(after, before) << "blocks, files, boards, designs, handles, texts";
        return result;
    }

    /** Performs the call with a shortage, and once more without. False if it needs fewer than `k` allocations. */
    bool attempt(const Call& call, long k, Shortage shortage) {
        Grabber grabber;
        board.log_kinds(grabber.device, 0);
        call.prepare(grabber);
        int code = left;
        bool struck = false;
        {
            const ScarceMemory scarce(k, shortage);
            try {
                code = call.perform(grabber);
            } catch (const std::bad_alloc&) {
            }
            struck = scarce.struck();
        }
        const bool isTold = code == left || std::ranges::find(call.codes, code) != call.codes.end();
        EXPECT_TRUE(code == call.answer || (struck && isTold)) << code;
        if (call.check) call.check(grabber, code);
        if (grabber.handle.object != nullptr) {
            std::jthread([&] { EXPECT_EQ(grabber.value<std::uint32_t>(FG_WIDTH), 1024u); }).join();
        }
        EXPECT_EQ(call.perform(grabber), call.answer) << "the next call";
        if (grabber.handle.object != nullptr) {
            grabber.set(12345, 0u); // is logged, which binds the dispatcher
            grabber.free();
        }
        EXPECT_FALSE(isLoaded("libcommon-logging-dispatcher.so")) << "the library counts a user that is none";
        return struck;
    }

    void sweep(const std::vector<Call>& calls) {
        for (const Call& call : calls)
            for (const Shortage shortage : {Shortage::once, Shortage::fromThenOn}) {
                bool struck = true;
                for (long k = 1; struck && !HasFailure(); k += k < 200 ? 1 : call.stride) {
                    SCOPED_TRACE(testing::Message()
                                 << call.name << ", allocation " << k
                                 << (shortage == Shortage::once ? " alone" : " and all that follow"));
                    struck = expectNothingHeld([&] { return attempt(call, k, shortage); });
                    m_positions += struck;
                }
            }
    }

    /** `least` is nine tenths of the positions there were when the sweep was written. */
    void expectPositions(int least) {
        EXPECT_GE(m_positions, least) << "less is swept than was";
        RecordProperty("positions", std::to_string(m_positions));
    }

private:
    int m_positions = 0;
};

const auto nothing = [](Grabber&) {};
const auto bringUp = [](Grabber& grabber) { ASSERT_EQ(grabber.bringUp(1).error, FG_OK); };

/** A bring-up, after the end of what an earlier one has made. */
int broughtUp(Grabber& grabber, int flags) {
    if (grabber.handle.object != nullptr) grabber.free();
    return grabber.bringUp(flags).error;
}

TEST_F(OutOfMemory, ObjectsComeUpOrNothingStays) {
    sweep({
        {"bring-up", nothing, [](Grabber& grabber) { return broughtUp(grabber, 0); }, {FG_ERR_UNRESOLVED}},
        {"bring-up of a slave",
         nothing,
         [](Grabber& grabber) { return broughtUp(grabber, 1); },
         {FG_ERR_UNRESOLVED}},
        {"object without a board", nothing,
         [&](Grabber&) {
             void* object = nullptr;
             const int code = applet.Info(FG_INFO_CREATE_OFFLINE, 0, 0, nullptr, &object);
             return object != nullptr ? applet.Info(FG_INFO_DESTROY_OFFLINE, 0, 0, object, nullptr) : code;
         }},
    });
    expectPositions(1465);
}

TEST_F(OutOfMemory, WithDirectAccessAndLogLines) {
    setVariable("VEXO_ENABLE_DRA", "1");
    setVariable("VEXO_ENABLE_DLOOMA", "1");
    const AppletLog log(0);
    const std::string name(100, 'x');
    sweep({
        {.name = "bring-up",
         .prepare = nothing,
         .perform = [](Grabber& grabber) { return broughtUp(grabber, 0); },
         .codes = {FG_ERR_UNRESOLVED},
         .stride = 17},
        {"refused id",
         bringUp,
         [](Grabber& grabber) { return grabber.set(12345, 0u); },
         {},
         {},
         FG_ERR_INVALID_ARGUMENT},
        {"unknown name",
         bringUp,
         [&](Grabber& grabber) { return applet.Fg_getParameterIdByName(grabber.fg(), name.c_str()); },
         {},
         {},
         FG_ERR_INVALID_ARGUMENT},
        {"unknown event", bringUp,
         [&](Grabber& grabber) {
             return static_cast<int>(applet.Fg_getEventMask(grabber.fg(), name.c_str()));
         }},
    });
    expectPositions(866);
}

TEST_F(OutOfMemory, CallsEndOrLeaveAndTheNextOneWorks) {
    const TemporaryFolder folder;
    const std::string saved = folder / "saved.mcf", table = folder / "table.lut";
    const auto setText = [&](Grabber& grabber, int id, const std::string& text) {
        return applet.Fg_setParameterWithType(grabber.fg(), id, text.c_str(), 0, FG_PARAM_TEXT);
    };
    const auto handedOut = [&](Grabber& grabber, int id) {
        alignas(char*) char place[64] = "FG_WIDTH";
        const int code = grabber.get(id, place, 0, FG_PARAM_ALLOCATED_STRING);
        if (code != FG_OK) return code;
        char* text = nullptr;
        std::memcpy(&text, place, sizeof text);
        return applet.Fg_freeParameterStringWithType(grabber.fg(), id, text, 0, FG_PARAM_ALLOCATED_STRING);
    };
    {
        Grabber grabber(1);
        ASSERT_EQ(applet.Fg_saveConfig(grabber.fg(), saved.c_str()), FG_OK);
        ASSERT_EQ(setText(grabber, FG_LUT_SAVE_FILE, table), FG_OK);
    }
    const Lines savedLines = fileLines(saved);
    std::string document(200000, '\0');
    std::vector<std::uint32_t> run(1000, 7);
    const std::string longText(300, 'x');
    const int design = directId("Device1_Process0_AppletProperties_AppletUid");
    const auto expectOldText = [&](int id) {
        return [id](Grabber& grabber, int code) {
            char text[512] = "?";
            EXPECT_EQ(grabber.get(id, text, 0, FG_PARAM_TEXT), FG_OK);
            EXPECT_EQ(*text == '\0', code == left) << text;
        };
    };

    sweep({
        {"text", bringUp, [&](Grabber& grabber) { return handedOut(grabber, FG_APPLET_ID); }},
        {"text of the runtime", bringUp, [&](Grabber& grabber) { return handedOut(grabber, design); }},
        {"description", bringUp, [&](Grabber& grabber) { return handedOut(grabber, FG_PARAM_DESCR); }},
        {"tree", bringUp,
         [&](Grabber& grabber) {
             return applet.Fg_getParameterInfo(grabber.fg(), 0) != nullptr ? FG_OK : -1;
         }},
        {"document",
         [&](Grabber& grabber) {
             bringUp(grabber);
             document.assign(document.size(), '\0');
         },
         [&](Grabber& grabber) {
             unsigned long size = document.size();
             return applet.Fg_getParameterInfoXML(grabber.fg(), 0, document.data(), &size);
         },
         {},
         [&](Grabber&, int code) {
             EXPECT_EQ(document.find_first_not_of('\0') == document.npos, code == left) << "half a document";
         }},
        {"save",
         bringUp,
         [&](Grabber& grabber) { return applet.Fg_saveConfig(grabber.fg(), saved.c_str()); },
         {FG_ERR_SAVE_CONFIG},
         [&](Grabber&, int code) {
             // A key without memory is left out; every line that is there is whole.
             if (code != FG_OK) return;
             for (const std::string& line : fileLines(saved))
                 EXPECT_NE(std::ranges::find(savedLines, line), savedLines.end()) << line;
         }},
        {"load",
         bringUp,
         [&](Grabber& grabber) { return applet.Fg_loadConfig(grabber.fg(), saved.c_str()); },
         {FG_ERR_LOAD_CONFIG, FG_ERR_FILE_TYPE}},
        {"load of a table",
         [&](Grabber& grabber) {
             bringUp(grabber);
             ASSERT_EQ(grabber.set(FG_LUT_TYPE, std::uint32_t{LUT_TYPE_CUSTOM}), FG_OK);
         },
         [&](Grabber& grabber) { return setText(grabber, FG_LUT_CUSTOM_FILE, table); },
         {FG_ERR_FILE_TYPE, FG_ERR_SAVE_CONFIG}},
        {"save of a table",
         bringUp,
         [&](Grabber& grabber) { return setText(grabber, FG_LUT_SAVE_FILE, table); },
         {FG_ERR_SAVE_CONFIG}},
        {"run of a table", bringUp,
         [&](Grabber& grabber) {
             return grabber.set(FG_LUT_VALUE_RED, FieldParameterAccess{2, 0, 1000, run.data()}, 0,
                                FG_PARAM_FIELD_ACCESS);
         }},
        {"set of a text",
         bringUp,
         [&](Grabber& grabber) { return setText(grabber, FG_LUT_CUSTOM_FILE, longText); },
         {},
         expectOldText(FG_LUT_CUSTOM_FILE)},
        {"text of the design",
         bringUp,
         [&](Grabber& grabber) { return setText(grabber, FG_DEBUGFILE, longText); },
         {},
         expectOldText(FG_DEBUGFILE)},
        {"nested save", bringUp,
         [&](Grabber& grabber) { return setText(grabber, FG_DEBUGSAVECONFIG, saved); }},
    });
    expectPositions(2039);
}

} // namespace
