// Out of memory: a call ends with std::bad_alloc or an error code; nothing leaks, no lock is held, and the
// next call works. Each allocation of the calls below fails, once or with all later ones.

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

constexpr int left = 1; // code for a call that was left by an exception

const auto nothing = [](Grabber&) {};
const auto bringUp = [](Grabber& grabber) { ASSERT_EQ(grabber.bringUp(1).error, FG_OK); };

/** A call to test without memory. */
struct Row {
    std::string name;
    std::function<int(Grabber&)> perform;
    std::vector<int> codes = {};                   /**< that report the failure, besides the exception */
    std::function<void(Grabber&, int)> check = {}; /**< checks the state after this code */
    std::function<void(Grabber&)> prepare = bringUp;
    int answer = FG_OK; /**< with enough memory */
    long stride = 1;    /**< between positions, after the 200th */
};

class OutOfMemory : public AppletTest {
protected:
    void SetUp() override {
        if (!mallocIsCounted) GTEST_SKIP() << "the sanitizer owns malloc";
    }

    /** One-time allocations exist when the attempt is repeated; a leak occurs again. */
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

    /** Makes the call with a failure, and once more without. False if it needs fewer than `k` allocations. */
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
            grabber.set(12345, 0u); // logs, which binds the dispatcher
            grabber.free();
        }
        EXPECT_FALSE(isLoaded("libcommon-logging-dispatcher.so")) << "the library counts a user that is none";
        return struck;
    }

    /** `least` is nine tenths of the number of positions, as last counted. */
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

/** A bring-up, after freeing an earlier handle. */
auto broughtUp(int flags) {
    return [flags](Grabber& grabber) {
        if (grabber.handle.object != nullptr) grabber.free();
        return grabber.bringUp(flags).error;
    };
}

int setText(Grabber& grabber, int id, const std::string& text) {
    return host().applet().Fg_setParameterWithType(grabber.fg(), id, text.c_str(), 0, FG_PARAM_TEXT);
}

/** Reads an allocated text and frees it. */
auto handedOut(int id) {
    return [id](Grabber& grabber) {
        alignas(char*) char buffer[64] = "FG_WIDTH";
        const int code = grabber.get(id, buffer, 0, FG_PARAM_ALLOCATED_STRING);
        if (code != FG_OK) return code;
        char* text = nullptr;
        std::memcpy(&text, buffer, sizeof text);
        return host().applet().Fg_freeParameterStringWithType(grabber.fg(), id, text, 0,
                                                              FG_PARAM_ALLOCATED_STRING);
    };
}

/** Sets a long text; the old one must survive an exception. */
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

TEST_F(OutOfMemory, BringUpSucceedsOrLeavesNothing) {
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

TEST_F(OutOfMemory, DirectAccessAndLogLines) {
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

TEST_F(OutOfMemory, EveryExportedFunctionReturnsOrThrowsAndTheNextCallWorks) {
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
    sweep(rows, 1674);
}

TEST_F(OutOfMemory, SavesLoadsAndDocumentsAreCompleteOrFail) {
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
        // A key without memory is left out; every written line is complete.
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

TEST_F(OutOfMemory, BoardControlFunctionsReturnACode) {
    const std::string longName(100, 'x'), text = "Device1_Process0_AppletProperties_AppletUid";
    const auto none = [](bool isThere) { return isThere ? FG_OK : int{VBOARD_NO_MEMORY}; };
    const auto opened = [&](Grabber&) {
        LOOMdevice* another = board.open();
        board.close(another);
        return none(another != nullptr);
    };
    const auto reset = [&](Grabber& grabber) { // all or nothing
        board.poke_text(grabber.device, text.c_str(), "x");
        board.poke_int(grabber.device, "Device1_Process0_Buffer_0_XLength", 5);
        board.reset(grabber.device);
        std::int64_t width = 0;
        board.peek_int(grabber.device, "Device1_Process0_Buffer_0_XLength", &width);
        return none(width == 1024);
    };
    const auto named = [&](Grabber& grabber) {
        int code = board.alias_parameter(longName.c_str(), text.c_str());
        code = std::min(code, board.poke_text(grabber.device, text.c_str(), longName.c_str()));
        code = std::min(code, board.poke_after_read(grabber.device, "Device1_Process0_Buffer_0_XMirror", 1));
        code = std::min(code, board.raise_event(grabber.device, "Device1_Process0_Overflow_Overflow"));
        std::uint32_t entry = 0;
        const char* table = "Device1_Process0_LookupTable_R_LUTcontent";
        code = std::min(code, board.peek_field(grabber.device, table, 0, 1, &entry));
        board.restore_design();
        return code;
    };
    // On a station: actions that need memory may not have happened.
    const auto pictures = [&](Grabber& grabber) {
        LOOMdevice* const device = grabber.device;
        board.poke_int(device, "Device1_Process0_OutputFormat_Debug_OperationMode", 1);
        board.poke_int(device, "Device1_Process0_OutputFormat_Convert0_VirtualTrash_EnableTrash_Value", 0);
        vboard_frames* memory = board.memory(device, 2, 3145728, VBOARD_RING);
        if (memory == nullptr) return int{VBOARD_NO_MEMORY};
        int code = FG_OK;
        try { // the applet's own requirement
            code = applet.Fg_AcquireEx(grabber.fg(), 0, 0, 0, memory);
        } catch (const std::bad_alloc&) {
            code = VBOARD_NO_MEMORY;
        }
        const vboard_edge edges[2] = {{1, true}, {900, false}};
        const vboard_speed speeds[2] = {{1000, 100'000, 200'000}, {1000, 0, 0}};
        const std::uint16_t pixel[3] = {1, 2, 3};
        vboard_record record{};
        vboard_event event{};
        const auto note = [&](std::int64_t result) { code = std::min(code, static_cast<int>(result)); };
        note(board.clock(device, 0));
        note(board.wave_edges(device, 1, false, edges, 2));
        note(board.wave_encoder(device, 2, 3, speeds, 2));
        note(board.inject(device, VBOARD_OUTPUT, 1, 1, pixel));
        const std::uint64_t before = board.now(device);
        if (board.advance(device, 100'000) != before + 100'000) note(VBOARD_NO_MEMORY);
        note(board.frame(memory, 1, &record));
        note(board.next_event(device, &event));
        note(board.signals(device, 1, 0, 100'000, nullptr, 0, nullptr));
        board.memory_free(memory);
        return code;
    };
    const std::vector<int> lack = {VBOARD_NO_MEMORY};
    const auto noException = [](Grabber&, int code) { EXPECT_NE(code, left); };
    sweep({{"open", opened, lack, noException, nothing},
           {"reset", reset, lack, noException, nothing},
           {"names and texts", named, lack, noException, nothing},
           {"pictures", pictures, {VBOARD_NO_MEMORY, VBOARD_GONE, VBOARD_UNKNOWN}, noException}},
          192);
}

} // namespace
