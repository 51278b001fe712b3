// Without memory: a call ends with std::bad_alloc or a code that says so; nothing leaks, no lock stays taken, and the
// next call works. Each allocation of the calls below fails, alone and with all that follow.

#include "support/counted_malloc.h"
#include "support/every_call.h"
#include "support/temporary_folder.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <new>
#include <thread>

namespace {

using namespace support;

constexpr int left = 1; // for a code: the call was left by an exception

const auto nothing = [](Grabber&) {};
const auto bringUp = [](Grabber& grabber) { ASSERT_EQ(grabber.bringUp(1).error, FG_OK); };

/** A call that lacks memory. */
struct Row {
    std::string name;
    std::function<int(Grabber&)> perform;
    std::vector<int> codes = {};                   /**< that tell of the lack, besides the exception */
    std::function<void(Grabber&, int)> check = {}; /**< what is there after this code */
    std::function<void(Grabber&)> prepare = bringUp;
    int answer = FG_OK; /**< with enough memory */
    long stride = 1;    /**< from position to position, behind the 200th */
};

class OutOfMemory : public AppletTest {
protected:
    void SetUp() override {
        if (!mallocIsCounted) GTEST_SKIP() << "the sanitizer owns malloc";
    }

    /** What is made once is there when the attempt is repeated; a leak comes again. */
    template <typename Attempt> static bool expectNothingHeld(Attempt attempt) {
        const auto heldNow = [] { return std::pair(liveBlocks(), held()); };
        auto before = heldNow();
        const bool result = attempt();
        if (heldNow() == before) return result;
        before = heldNow();
        attempt();
        EXPECT_EQ(heldNow(), before) << "blocks; files, boards, designs, handles, texts";
        return result;
    }

    /** Performs the call with a shortage, and once more without. False if it needs fewer than `k` allocations. */
    bool attempt(const Row& row, long k, Shortage shortage) {
        Grabber grabber;
        board.log_kinds(grabber.device, 0);
        row.prepare(grabber);
        int code = left;
        bool struck = false;
        {
            const ScarceMemory scarce(k, shortage);
            try {
                code = row.perform(grabber);
            } catch (const std::bad_alloc&) {
            }
            struck = scarce.struck();
        }
        const bool isSaid = code == left || std::ranges::find(row.codes, code) != row.codes.end();
        EXPECT_TRUE(code == row.answer || (struck && isSaid)) << code;
        if (row.check) row.check(grabber, code);
        if (grabber.handle.object != nullptr) {
            std::jthread([&] { EXPECT_EQ(grabber.value<std::uint32_t>(FG_WIDTH), 1024u); }).join();
        }
        EXPECT_EQ(row.perform(grabber), row.answer) << "the next call";
        if (grabber.handle.object != nullptr) {
            grabber.set(12345, 0u); // is logged, which binds the dispatcher
            grabber.free();
        }
        EXPECT_FALSE(isLoaded("libcommon-logging-dispatcher.so")) << "the library counts a user that is none";
        return struck;
    }

    /** `least` is nine tenths of the positions there were when the sweep was written. */
    void sweep(const std::vector<Row>& rows, int least) {
        int positions = 0;
        for (const Row& row : rows)
            for (const Shortage shortage : {Shortage::once, Shortage::fromThenOn}) {
                bool struck = true;
                for (long k = 1; struck && !HasFailure(); k += k < 200 ? 1 : row.stride) {
                    SCOPED_TRACE(testing::Message()
                                 << row.name << ", allocation " << k
                                 << (shortage == Shortage::once ? " alone" : " and all that follow"));
                    struck = expectNothingHeld([&] { return attempt(row, k, shortage); });
                    positions += struck;
                }
            }
        EXPECT_GE(positions, least) << "less is swept than was";
        RecordProperty("positions", std::to_string(positions));
    }
};

/** A bring-up, after the end of what an earlier one has made. */
auto broughtUp(int flags) {
    return [flags](Grabber& grabber) {
        if (grabber.handle.object != nullptr) grabber.free();
        return grabber.bringUp(flags).error;
    };
}

int setText(Grabber& grabber, int id, const std::string& text) {
    return host().applet().Fg_setParameterWithType(grabber.fg(), id, text.c_str(), 0, FG_PARAM_TEXT);
}

/** Asks for an allocated text and gives it back. */
auto handedOut(int id) {
    return [id](Grabber& grabber) {
        alignas(char*) char place[64] = "FG_WIDTH";
        const int code = grabber.get(id, place, 0, FG_PARAM_ALLOCATED_STRING);
        if (code != FG_OK) return code;
        char* text = nullptr;
        std::memcpy(&text, place, sizeof text);
        return host().applet().Fg_freeParameterStringWithType(grabber.fg(), id, text, 0,
                                                              FG_PARAM_ALLOCATED_STRING);
    };
}

/** A set of a long text, which leaves the old one if it is left. */
Row longText(const char* name, int id) {
    return {name,
            [id](Grabber& grabber) { return setText(grabber, id, std::string(300, 'x')); },
            {},
            [id](Grabber& grabber, int code) {
                char text[512] = "?";
                EXPECT_EQ(grabber.get(id, text, 0, FG_PARAM_TEXT), FG_OK);
                EXPECT_EQ(*text == '\0', code == left) << text;
            }};
}

TEST_F(OutOfMemory, ObjectsComeUpOrNothingStays) {
    const auto offline = [&](Grabber&) {
        void* object = nullptr;
        const int code = applet.Info(FG_INFO_CREATE_OFFLINE, 0, 0, nullptr, &object);
        return object != nullptr ? applet.Info(FG_INFO_DESTROY_OFFLINE, 0, 0, object, nullptr) : code;
    };
    sweep({{"bring-up", broughtUp(0), {FG_ERR_UNRESOLVED}, {}, nothing},
           {"bring-up of a slave", broughtUp(1), {FG_ERR_UNRESOLVED}, {}, nothing},
           {"object without a board", offline, {}, {}, nothing}},
          1465);
}

TEST_F(OutOfMemory, WithDirectAccessAndLogLines) {
    setVariable("VEXO_ENABLE_DRA", "1");
    setVariable("VEXO_ENABLE_DLOOMA", "1");
    const AppletLog log(0);
    const std::string name(100, 'x');
    const auto id = [&](Grabber& grabber) {
        return applet.Fg_getParameterIdByName(grabber.fg(), name.c_str());
    };
    const auto event = [&](Grabber& grabber) {
        return static_cast<int>(applet.Fg_getEventMask(grabber.fg(), name.c_str()));
    };
    const auto refused = [](Grabber& grabber) { return grabber.set(12345, 0u); };
    sweep({{"bring-up", broughtUp(0), {FG_ERR_UNRESOLVED}, {}, nothing, FG_OK, 17},
           {"refused id", refused, {}, {}, bringUp, FG_ERR_INVALID_ARGUMENT},
           {"unknown name", id, {}, {}, bringUp, FG_ERR_INVALID_ARGUMENT},
           {"unknown event", event}},
          866);
}

TEST_F(OutOfMemory, EveryExportedFunctionEndsOrLeavesAndTheNextCallWorks) {
    const TemporaryFolder folder;
    const std::map<std::string, std::vector<int>> codes = {
        {"Fg_saveConfig", {FG_ERR_SAVE_CONFIG}}, {"Fg_loadConfig", {FG_ERR_LOAD_CONFIG, FG_ERR_FILE_TYPE}}};
    const auto prepare = [&](Grabber& grabber) {
        bringUp(grabber);
        for (const Forwarder& forwarder : forwarders())
            board.answer(grabber.device, forwarder.name, answered);
    };
    std::vector<Row> rows;
    for (const Call& call : everyCall(folder / "saved.mcf")) {
        const auto found = codes.find(call.function);
        rows.push_back({call.function,
                        [call](Grabber& grabber) { return static_cast<int>(call.call(grabber.fg())); },
                        found != codes.end() ? found->second : std::vector<int>{},
                        {},
                        prepare,
                        static_cast<int>(call.usual)});
    }
    sweep(rows, 2008);
}

TEST_F(OutOfMemory, NothingIsHalfDone) {
    const TemporaryFolder folder;
    const std::string saved = folder / "saved.mcf", table = folder / "table.lut";
    {
        Grabber grabber(1);
        ASSERT_EQ(applet.Fg_saveConfig(grabber.fg(), saved.c_str()), FG_OK);
        ASSERT_EQ(setText(grabber, FG_LUT_SAVE_FILE, table), FG_OK);
    }
    const Lines savedLines = fileLines(saved);
    std::string document(200000, '\0');
    const auto makeDocument = [&](Grabber& grabber) {
        unsigned long size = document.size();
        document.assign(size, '\0');
        return applet.Fg_getParameterInfoXML(grabber.fg(), 0, document.data(), &size);
    };
    const auto expectWholeDocument = [&](Grabber&, int code) {
        EXPECT_EQ(document.find_first_not_of('\0') == document.npos, code == left) << "half a document";
    };
    const auto save = [&](Grabber& grabber) { return applet.Fg_saveConfig(grabber.fg(), saved.c_str()); };
    const auto expectWholeLines = [&](Grabber&, int code) {
        // A key without memory is left out; every line that is there is whole.
        if (code != FG_OK) return;
        for (const std::string& line : fileLines(saved))
            EXPECT_NE(std::ranges::find(savedLines, line), savedLines.end()) << line;
    };
    const auto withTablesOfAFile = [&](Grabber& grabber) {
        bringUp(grabber);
        ASSERT_EQ(grabber.set(FG_LUT_TYPE, std::uint32_t{LUT_TYPE_CUSTOM}), FG_OK);
    };
    const auto loadTable = [&](Grabber& grabber) { return setText(grabber, FG_LUT_CUSTOM_FILE, table); };
    const auto saveTable = [&](Grabber& grabber) { return setText(grabber, FG_LUT_SAVE_FILE, table); };
    const auto setRun = [](Grabber& grabber) {
        std::uint32_t run[1000] = {};
        return grabber.set(FG_LUT_VALUE_RED, FieldParameterAccess{2, 0, 1000, run}, 0, FG_PARAM_FIELD_ACCESS);
    };
    sweep({{"text", handedOut(FG_APPLET_ID)},
           {"text of the runtime", handedOut(directId("Device1_Process0_AppletProperties_AppletUid"))},
           {"description", handedOut(FG_PARAM_DESCR)},
           {"document", makeDocument, {}, expectWholeDocument},
           {"save", save, {FG_ERR_SAVE_CONFIG}, expectWholeLines},
           {"load of a table", loadTable, {FG_ERR_FILE_TYPE, FG_ERR_SAVE_CONFIG}, {}, withTablesOfAFile},
           {"save of a table", saveTable, {FG_ERR_SAVE_CONFIG}},
           {"run of a table", setRun},
           longText("set of a text", FG_LUT_CUSTOM_FILE),
           longText("text of the design", FG_DEBUGFILE)},
          1650);
}

} // namespace
