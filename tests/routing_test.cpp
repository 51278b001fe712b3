// The road of a parameter access: spaces of ids, widths, refusals and their log lines, ownership of texts.

#include "support/applet_fixture.h"

#include <cstdio>
#include <cstring>
#include <latch>
#include <map>
#include <set>
#include <thread>

namespace {

using namespace support;

constexpr int anyRegister = FG_DIRECT_REGISTER_BASE;
constexpr int anyParameter = FG_DIRECT_PARAMETER_BASE;
constexpr int paramDescr = 24114;

class Routing : public AppletTest {
protected:
    /** Log line of a refused access of this thread. */
    static Lines refusal(const std::string& text) { return {AppletLog::line(4, text)}; }
};

TEST_F(Routing, NullValuesAndUnknownIds) {
    AppletLog log(4);
    Grabber grabber;
    grabber.bringUp();
    log.take();
    std::uint32_t word = 7;
    for (const int id : {100, 12345, -1, 0, 1000001, 1999999, 2000000}) {
        const std::string number = std::to_string(id);
        for (const int tag : {2, 3}) {
            EXPECT_EQ(applet.Fg_setParameterWithType(grabber.fg(), id, nullptr, 0, tag),
                      FG_ERR_INVALID_ARGUMENT);
            EXPECT_EQ(applet.Fg_getParameterWithType(grabber.fg(), id, nullptr, 9, tag),
                      FG_ERR_INVALID_ARGUMENT);
        }
        EXPECT_EQ(log.take(), Lines{});
        EXPECT_EQ(grabber.lastError(), FG_ERR_INVALID_ARGUMENT);
        if (id == FG_WIDTH) continue;
        EXPECT_EQ(grabber.set(id, 1u), FG_ERR_INVALID_ARGUMENT);
        EXPECT_EQ(log.take(), refusal("trying to set unknown SDK parameter '" + number + "' on process 0!"));
        EXPECT_EQ(grabber.get(id, &word), FG_ERR_INVALID_ARGUMENT);
        EXPECT_EQ(log.take(), refusal("trying to get unknown SDK parameter '" + number + "' on process 0!"));
    }
    EXPECT_EQ(word, 7u);
    // Another DMA channel is refused first, and without a line.
    for (const int dma : {1, -1, 2147483647})
        for (const int id : {100, 12345, 2000, 3050, paramDescr}) {
            EXPECT_EQ(grabber.set(id, 512u, dma), FG_ERR_INVALID_ARGUMENT) << id;
            EXPECT_EQ(grabber.get(id, &word, dma), FG_ERR_INVALID_ARGUMENT) << id;
        }
    EXPECT_EQ(log.take(), Lines{});
    EXPECT_EQ(grabber.value<std::uint32_t>(FG_WIDTH), 1024u);
}

TEST_F(Routing, ReadOnlyParametersRefuseEveryValue) {
    AppletLog log(4);
    Grabber grabber;
    grabber.bringUp();
    grabber.clearLog();
    const auto rows = dataRows("read_only_ids.txt");
    ASSERT_EQ(rows.size(), 53u);
    for (const Lines& row : rows) {
        ASSERT_EQ(grabber.set(FG_TIMEOUT, 2u), 0);
        log.take();
        EXPECT_EQ(grabber.set(std::stoi(row[0]), std::uint64_t{1}, 0, FG_PARAM_UINT32), FG_ERR_NOT_AVAILABLE)
            << row[1];
        EXPECT_EQ(grabber.lastError(), FG_ERR_NOT_AVAILABLE);
        EXPECT_EQ(log.take(),
                  refusal("trying to set read-only SDK parameter '" + row[1] + "' on process 0!"));
    }
    EXPECT_EQ(grabber.log(), Lines{});
}

TEST_F(Routing, LastErrorIsThatOfTheLastAccess) {
    Grabber grabber;
    grabber.bringUp();
    std::uint32_t word = 0;
    EXPECT_EQ(grabber.set(FG_WIDTH, 1022u), FG_ERR_GRANULARITY);
    EXPECT_EQ(grabber.lastError(), FG_ERR_GRANULARITY);
    EXPECT_EQ(grabber.get(FG_WIDTH, &word), 0);
    EXPECT_EQ(grabber.lastError(), 0);
    EXPECT_EQ(grabber.get(12345, &word), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(grabber.lastError(), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(grabber.set(FG_TIMEOUT, 1u), FG_ERR_OUT_OF_RANGE);
    EXPECT_EQ(grabber.lastError(), FG_ERR_OUT_OF_RANGE);
    EXPECT_EQ(grabber.set(FG_TIMEOUT, 2u), 0);
    EXPECT_EQ(grabber.lastError(), 0);
}

TEST_F(Routing, WidthIsTheParametersOwnWhateverTheTagSays) {
    Grabber grabber;
    grabber.bringUp();
    // A floating point 2.0 read as a 32-bit word is 0: out of range; its bits, not its value, count.
    EXPECT_EQ(grabber.set(FG_TIMEOUT, 2.0, 0, FG_PARAM_DOUBLE), FG_ERR_OUT_OF_RANGE);
    EXPECT_EQ(grabber.set(FG_TIMEOUT, std::uint64_t{0xffffffff'00000003}, 0, FG_PARAM_UINT64), 0);
    EXPECT_EQ(grabber.set(FG_LINEEXPOSURE, 20.0, 0, FG_PARAM_UINT32), 0);
    for (const int tag : {0, 1, 2, 5, 6, 22, 4096}) {
        std::uint32_t words[2] = {7, 7};
        EXPECT_EQ(grabber.get(FG_TIMEOUT, words, 0, tag), 0);
        EXPECT_EQ(words[0], 3u);
        EXPECT_EQ(words[1], 7u);
        double exposure = 0;
        EXPECT_EQ(grabber.get(FG_LINEEXPOSURE, &exposure, 0, tag), 0);
        EXPECT_EQ(exposure, 20.0);
    }
}

TEST_F(Routing, IdsServedByTheRuntime) {
    Grabber grabber;
    grabber.bringUp();
    std::uint32_t word = 0;
    for (const int dma : {0, 1, -5}) {
        word = 0xffffffff;
        EXPECT_EQ(grabber.get(FG_NR_OF_PROCESSES, &word, dma), 0);
        EXPECT_EQ(word, 1u);
    }
    EXPECT_EQ(grabber.get(FG_NR_OF_PROCESSES, nullptr), FG_ERR_INVALID_ARGUMENT);

    const std::pair<int, std::uint32_t> served[] = {{601, 500}, {3050, 1},      {3060, 1}, {3080, 0},
                                                    {3090, 0},  {5210, 3145728}}; // by the virtual board
    for (const auto& [id, expected] : served) {
        const std::string get = "get #" + std::to_string(id) + " u32";
        grabber.clearLog();
        word = 77;
        EXPECT_EQ(grabber.get(id, &word, 1), FG_ERR_INVALID_ARGUMENT) << "before the runtime is asked";
        EXPECT_EQ(grabber.get(id, &word), 0) << id;
        EXPECT_EQ(word, expected) << id;
        double number = 77;
        EXPECT_EQ(grabber.get(id, &number, 0, FG_PARAM_DOUBLE), 0) << "the tag goes to the runtime";
        EXPECT_EQ(number, expected) << id;
        board.fail_access(grabber.device, 1, -2222, VBOARD_ONCE);
        EXPECT_EQ(grabber.get(id, &word), -2222);
        EXPECT_EQ(grabber.lastError(), -2222);
        const std::string value = " " + std::to_string(expected);
        EXPECT_EQ(grabber.log(),
                  (Lines{get + value, "get #" + std::to_string(id) + " f64" + value, get + " = -2222"}));
    }
}

TEST_F(Routing, RegistersAreReadAndWrittenInTheirWidth) {
    setVariable("VEXO_ENABLE_DRA", "on");
    AppletLog log(4);
    Grabber grabber;
    grabber.bringUp();
    log.take();
    constexpr std::uint64_t pattern = 0x8123'4567'89ab'cdef, filler = 0xaaaa'aaaa'aaaa'aaaa;
    std::set<int> widths;
    int refusing = 0;
    for (const Register& reg : registers()) {
        SCOPED_TRACE(reg.name);
        widths.insert(reg.bits);
        const bool wide = reg.bits > 32;
        const std::uint64_t fits = reg.bits < 64 ? (std::uint64_t{1} << reg.bits) - 1 : ~std::uint64_t{0};
        ASSERT_EQ(board.poke_int(grabber.device, reg.name.c_str(), static_cast<std::int64_t>(pattern & fits)),
                  VBOARD_OK);
        std::uint64_t word = filler;
        EXPECT_EQ(grabber.get(anyRegister + reg.id, &word, 7, FG_PARAM_UINT32), 0);
        EXPECT_EQ(word, wide ? pattern & fits : (filler & ~std::uint64_t{0xffffffff}) | (pattern & fits));

        // A short word is widened with zeros, whatever stands behind it.
        const std::uint64_t sent = wide ? 0x5'0000'0001 & fits : filler << 32 | 1;
        grabber.clearLog();
        const int result = grabber.set(anyRegister + reg.id, sent, 7, FG_PARAM_DOUBLE);
        Lines expected{"write " + reg.name + (wide ? " u64 " + std::to_string(sent) : " u32 1")};
        EXPECT_EQ(result == 0, reg.writable);
        if (result != 0) {
            expected[0] += " = " + std::to_string(result);
            ++refusing;
        }
        EXPECT_EQ(grabber.log(), expected);
        EXPECT_EQ(grabber.lastError(), result);

        board.fail_name(grabber.device, reg.name.c_str(), -2222);
        word = filler;
        EXPECT_EQ(grabber.get(anyRegister + reg.id, &word, 0, FG_PARAM_UINT32), -2222);
        EXPECT_EQ(word, filler);
        EXPECT_EQ(grabber.set(anyRegister + reg.id, sent), -2222);
        EXPECT_EQ(grabber.lastError(), -2222);
    }
    for (const int bits : {1, 8, 32, 33, 64})
        EXPECT_TRUE(widths.contains(bits)) << bits;
    EXPECT_GT(refusing, 0);

    // The upper end of the range is still a register, one that the board does not have; the base is none.
    std::uint64_t word = filler;
    EXPECT_LT(grabber.get(anyParameter, &word), 0);
    EXPECT_LT(grabber.set(anyParameter, word), 0);
    EXPECT_EQ(log.take(), Lines{}) << "a failed direct access is not logged";
    EXPECT_EQ(grabber.get(anyRegister, &word), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(log.take(), refusal("trying to get unknown SDK parameter '1000000' on process 0!"));
    EXPECT_EQ(word, filler);
}

TEST_F(Routing, RegistersAreUnknownWithoutTheSwitch) {
    Grabber grabber;
    grabber.bringUp();
    grabber.clearLog();
    std::uint64_t word = 7;
    for (const Register& reg : registers()) {
        EXPECT_EQ(grabber.get(anyRegister + reg.id, &word), FG_ERR_INVALID_ARGUMENT);
        EXPECT_EQ(grabber.set(anyRegister + reg.id, word), FG_ERR_INVALID_ARGUMENT);
    }
    EXPECT_EQ(grabber.get(anyParameter, &word), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(grabber.log(), Lines{});
}

TEST_F(Routing, DesignParametersAreHandedToTheRuntimeUnchanged) {
    setVariable("VEXO_ENABLE_DRA", "on"); // leaves this range alone
    Grabber grabber;
    board.log_kinds(grabber.device, VBOARD_RESOLVE);
    grabber.bringUp();
    std::map<std::string, int> ids;
    for (const std::string& line : grabber.log()) {
        char name[256];
        int id = 0;
        if (std::sscanf(line.c_str(), "resolve %255s = %d", name, &id) == 2) ids[name] = id;
    }
    board.log_kinds(grabber.device, VBOARD_SET | VBOARD_GET);
    grabber.clearLog();

    const std::string length = "Device1_Process0_Buffer_0_XLength";
    const std::string mirror = "Device1_Process0_Buffer_0_YMirror";
    const std::string period = "Device1_Process0_Trigger_Trigger_ExsyncPeriod";
    const std::string uid = "Device1_Process0_AppletProperties_AppletUid";
    const auto id = [&](const std::string& name) { return anyParameter + ids.at(name); };
    EXPECT_EQ(grabber.set(id(length), 77u), 0); // no logic of the library: 77 is no multiple of 4
    EXPECT_EQ(grabber.value<std::uint32_t>(id(length)), 77u);
    EXPECT_EQ(grabber.set(id(mirror), std::int32_t{1}), 0);
    EXPECT_EQ(grabber.set(id(period), 123.5), 0);
    EXPECT_EQ(grabber.value<double>(id(period)), 123.5);
    EXPECT_EQ(grabber.log(),
              (Lines{"set " + length + " u32 77", "get " + length + " u32 77", "set " + mirror + " i32 1",
                     "set " + period + " f64 123.5", "get " + period + " f64 123.5"}));
    EXPECT_EQ(grabber.value<std::uint32_t>(FG_WIDTH), 1024u) << "the applet's own value stays";

    board.fail_name(grabber.device, length.c_str(), -2222);
    EXPECT_EQ(grabber.set(id(length), 4u), -2222);
    EXPECT_EQ(grabber.lastError(), -2222);
    std::uint32_t word = 0;
    EXPECT_EQ(grabber.get(anyParameter + 1, &word), FG_ERR_INVALID_ARGUMENT) << "the runtime's own refusal";
    EXPECT_EQ(grabber.get(2147483647, &word), FG_ERR_INVALID_ARGUMENT);

    // A text that the runtime handed out goes back to it.
    const int strings = live("strings");
    char* text = nullptr;
    board.poke_text(grabber.device, uid.c_str(), "uid");
    EXPECT_EQ(grabber.get(id(uid), &text, 0, FG_PARAM_ALLOCATED_STRING), 0);
    EXPECT_STREQ(text, "uid");
    EXPECT_EQ(live("strings"), strings + 1);
    EXPECT_EQ(
        applet.Fg_freeParameterStringWithType(grabber.fg(), id(uid), text, 0, FG_PARAM_ALLOCATED_STRING), 0);
    EXPECT_EQ(live("strings"), strings);
    EXPECT_EQ(grabber.lastError(), 0);
}

/** The place of a get of FG_PARAM_DESCR: a name going in; a text or a pointer coming out. */
struct NamePlace {
    explicit NamePlace(const std::string& name) { std::strncpy(text, name.c_str(), sizeof text - 1); }
    char* pointer() const {
        char* out = nullptr;
        std::memcpy(&out, text, sizeof out);
        return out;
    }
    alignas(8) char text[1024] = "";
};

TEST_F(Routing, DescriptionsOfAllParameters) {
    Grabber grabber;
    grabber.bringUp();
    const Lines rows = dataLines("descriptions.txt");
    ASSERT_EQ(rows.size(), 164u);
    for (const std::string& row : rows) {
        const std::string name = row.substr(0, row.find('\t')), text = row.substr(row.find('\t') + 1);
        NamePlace buffer(name), pointer(name);
        EXPECT_EQ(grabber.get(paramDescr, buffer.text, 0, FG_PARAM_TEXT), 0);
        EXPECT_EQ(buffer.text, text) << name;
        EXPECT_EQ(grabber.get(paramDescr, pointer.text, 0, FG_PARAM_ALLOCATED_STRING), 0);
        EXPECT_STREQ(pointer.pointer(), text.c_str()) << name;
    } // those not freed go with the object
    for (const char* unknown : {"FG_NONE", "", "fg_width", "FG_PARAM_DESCR"}) {
        NamePlace buffer(unknown);
        EXPECT_EQ(grabber.get(paramDescr, buffer.text, 0, FG_PARAM_TEXT), 0);
        EXPECT_STREQ(buffer.text, "-") << unknown;
        EXPECT_EQ(grabber.lastError(), 0);
    }
}

TEST_F(Routing, TextsBelongToTheObjectUntilFreedOnce) {
    Grabber grabber, other;
    grabber.bringUp();
    other.bringUp();
    const auto release = [&](Grabber& owner, void* text, int id, int dma = 0) {
        return applet.Fg_freeParameterStringWithType(owner.fg(), id, text, dma, FG_PARAM_ALLOCATED_STRING);
    };
    NamePlace first("FG_WIDTH"), second("FG_WIDTH");
    ASSERT_EQ(grabber.get(paramDescr, first.text, 0, FG_PARAM_ALLOCATED_STRING), 0);
    ASSERT_EQ(grabber.get(paramDescr, second.text, 0, FG_PARAM_ALLOCATED_STRING), 0);
    ASSERT_NE(first.pointer(), second.pointer());

    char foreign[] = "text";
    for (void* text : {static_cast<void*>(foreign), static_cast<void*>(nullptr),
                       static_cast<void*>(second.pointer() + 1)}) {
        EXPECT_EQ(release(grabber, text, paramDescr), FG_ERR_INVALID_ARGUMENT);
        EXPECT_EQ(grabber.lastError(), FG_ERR_INVALID_ARGUMENT);
    }
    EXPECT_EQ(release(other, first.pointer(), paramDescr), FG_ERR_INVALID_ARGUMENT);

    ASSERT_EQ(grabber.set(FG_WIDTH, 1022u), FG_ERR_GRANULARITY);
    EXPECT_EQ(release(grabber, first.pointer(), 12345), 0) << "any id of this applet's own";
    EXPECT_EQ(grabber.lastError(), FG_ERR_GRANULARITY) << "a success stores nothing";
    EXPECT_EQ(release(grabber, first.pointer(), paramDescr), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(grabber.lastError(), FG_ERR_INVALID_ARGUMENT);

    // For these ids the runtime takes the text back, and nothing is stored.
    Grabber resolving;
    board.log_kinds(resolving.device, VBOARD_RESOLVE);
    resolving.bringUp(1);
    int uid = 0;
    for (const std::string& line : resolving.log())
        std::sscanf(line.c_str(), "resolve Device1_Process0_AppletProperties_AppletUid = %d", &uid);
    ASSERT_GT(uid, 0);
    const int strings = live("strings");
    for (const int id : {601, 3050, 3060, 3070, 3080, 3090, 5210}) {
        char* text = nullptr;
        ASSERT_EQ(grabber.get(anyParameter + uid, &text, 0, FG_PARAM_ALLOCATED_STRING), 0);
        ASSERT_EQ(grabber.set(FG_WIDTH, 1022u), FG_ERR_GRANULARITY);
        EXPECT_EQ(release(grabber, text, id), 0) << id;
        EXPECT_EQ(live("strings"), strings) << id;
        EXPECT_EQ(release(grabber, nullptr, id), FG_ERR_INVALID_ARGUMENT) << "the runtime's own refusal";
        EXPECT_EQ(grabber.lastError(), FG_ERR_GRANULARITY) << id;
    }

    // Unlike set and get, the code for an unknown DMA channel leaves the function as it was thrown.
    for (const int id : {paramDescr, 3050})
        try {
            release(grabber, second.pointer(), id, 5);
            ADD_FAILURE() << "nothing was thrown for id " << id;
        } catch (int code) {
            EXPECT_EQ(code, FG_ERR_INVALID_ARGUMENT);
        }
    EXPECT_EQ(release(grabber, second.pointer(), paramDescr), 0);
}

TEST_F(Routing, AccessesOfOneHandleRunOneAfterAnother) {
    Grabber grabber;
    grabber.bringUp();
    grabber.clearLog();
    ASSERT_EQ(grabber.set(FG_WIDTH, 1024u), 0);
    const Lines once = grabber.log();
    ASSERT_GT(once.size(), 1u) << "writes of two calls could not mix";
    // Two threads set alike: their writes must not mix in the board's log. A third one reads.
    constexpr int sets = 2000;
    grabber.clearLog();
    std::latch start(3);
    const auto setting = [&] {
        start.arrive_and_wait();
        for (int i = 0; i < sets; ++i)
            grabber.set(FG_WIDTH, 1024u);
    };
    std::thread first(setting), second(setting);
    start.arrive_and_wait();
    for (int i = 0; i < sets; ++i) {
        std::uint32_t word = 0;
        grabber.get(FG_WIDTH, &word);
        ASSERT_EQ(word, 1024u);
    }
    first.join();
    second.join();
    Lines expected;
    for (int i = 0; i < 2 * sets; ++i)
        expected.insert(expected.end(), once.begin(), once.end());
    EXPECT_TRUE(grabber.log() == expected);
}

} // namespace
