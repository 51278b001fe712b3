// Routing of a parameter access: ranges of ids, widths, refusals and their log lines, ownership of texts.

#include "support/applet_fixture.h"

#include <algorithm>
#include <cstring>
#include <set>

namespace {

using namespace support;

constexpr int anyRegister = FG_DIRECT_REGISTER_BASE;
constexpr int anyParameter = FG_DIRECT_PARAMETER_BASE;

class Routing : public AppletTest {
protected:
    int freeText(Grabber& owner, int id, void* text, int dma = 0, int tag = FG_PARAM_ALLOCATED_STRING) {
        return applet.Fg_freeParameterStringWithType(owner.fg(), id, text, dma, tag);
    }

    AppletLog log{4};
    /** The argument of a get of FG_PARAM_DESCR: a name as input; a text or a pointer as output. */
    alignas(8) char buffer[1024] = "";
};

TEST_F(Routing, IdsServedByTheRuntime) {
    Grabber grabber(0);
    std::uint32_t word = 0;
    EXPECT_EQ(grabber.get(FG_NR_OF_PROCESSES, &word, -5), 0) << "the DMA channel is not heeded";
    EXPECT_EQ(word, 1u);

    for (const auto& [id, expected] :
         {std::pair{601, 500u}, {3050, 1}, {3060, 1}, {3080, 0}, {3090, 0}, {5210, 3145728}}) {
        const std::string get = "get #" + std::to_string(id);
        grabber.clearLog();
        EXPECT_EQ(grabber.get(id, &word, 1), FG_ERR_INVALID_ARGUMENT) << "before the runtime is asked";
        EXPECT_EQ(grabber.value<std::uint32_t>(id), expected);
        EXPECT_EQ(grabber.value<double>(id), expected) << "the tag goes to the runtime";
        const std::string value = std::to_string(expected);
        EXPECT_EQ(grabber.log(), (Lines{get + " u32 " + value, get + " f64 " + value}));
    }
}

TEST_F(Routing, RegistersAreReadAndWrittenInTheirWidth) {
    setVariable("VEXO_ENABLE_DRA", "on");
    Grabber grabber(0);
    constexpr std::uint64_t pattern = 0x8123'4567'89ab'cdef, filler = 0xaaaa'aaaa'aaaa'aaaa;
    std::uint64_t word = filler;
    std::set<int> kinds; // the width, negative if read-only
    for (const Register& reg : registers()) {
        SCOPED_TRACE(reg.name);
        kinds.insert(reg.writable ? reg.bits : -reg.bits);
        const bool wide = reg.bits > 32;
        const std::uint64_t fits = ~std::uint64_t{0} >> (64 - reg.bits);
        grabber.poke(reg.name, static_cast<std::int64_t>(pattern & fits));
        word = filler;
        EXPECT_EQ(grabber.get(anyRegister + reg.id, &word, 7, FG_PARAM_UINT32), 0);
        EXPECT_EQ(word, wide ? pattern & fits : (filler & ~std::uint64_t{0xffffffff}) | (pattern & fits));

        // A short word is zero-extended. Bytes after it are not read: the address sanitizer checks that.
        const std::uint64_t sent = 0x5'0000'0001 & fits;
        grabber.clearLog();
        const int result = wide ? grabber.set(anyRegister + reg.id, sent, 7, FG_PARAM_DOUBLE)
                                : grabber.set(anyRegister + reg.id, std::uint32_t{1}, 7, FG_PARAM_DOUBLE);
        std::string write = "write " + reg.name + (wide ? " u64 " + std::to_string(sent) : " u32 1");
        if (!reg.writable) write += " = " + std::to_string(result);
        EXPECT_EQ(result == 0, reg.writable);
        EXPECT_EQ(grabber.log(), Lines{write});
        EXPECT_EQ(grabber.lastError(), result);

        grabber.fail(reg.name, -2222);
        word = filler;
        EXPECT_EQ(grabber.get(anyRegister + reg.id, &word), -2222);
        EXPECT_EQ(grabber.lastError(), -2222);
        EXPECT_EQ(word, filler);
    }
    EXPECT_TRUE(std::ranges::includes(kinds, std::set{-64, -1, 1, 8, 32, 33, 64}));
    // The end of the range is still a register id, though the board has no such register; the base is not.
    EXPECT_LT(grabber.get(anyParameter, &word), 0);
    EXPECT_LT(grabber.set(anyParameter, word), 0);
    EXPECT_EQ(log.take(), Lines{});
    EXPECT_EQ(grabber.get(anyRegister, &word), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(log.take(),
              Lines{AppletLog::line(4, "trying to get unknown SDK parameter '1000000' on process 0!")});
}

TEST_F(Routing, DesignParametersArePassedToTheRuntimeUnchanged) {
    setVariable("VEXO_ENABLE_DRA", "on"); // does not affect this range
    const std::string length = "Device1_Process0_Buffer_0_XLength";
    const std::string mirror = "Device1_Process0_Buffer_0_YMirror";
    const std::string period = "Device1_Process0_Trigger_Trigger_ExsyncPeriod";
    const int lengthId = directId(length), periodId = directId(period);
    Grabber grabber(1);
    grabber.clearLog();
    EXPECT_EQ(grabber.set(lengthId, 77u), 0); // no logic of the library: 77 is not a multiple of 4
    EXPECT_EQ(grabber.value<std::uint32_t>(lengthId), 77u);
    EXPECT_EQ(grabber.set(directId(mirror), std::int32_t{1}), 0);
    EXPECT_EQ(grabber.set(periodId, 123.5), 0);
    EXPECT_EQ(grabber.value<double>(periodId), 123.5);
    EXPECT_EQ(grabber.log(),
              (Lines{"set " + length + " u32 77", "get " + length + " u32 77", "set " + mirror + " i32 1",
                     "set " + period + " f64 123.5", "get " + period + " f64 123.5"}));
    EXPECT_EQ(grabber.value<std::uint32_t>(FG_WIDTH), 1024u) << "the applet's own value stays";

    grabber.fail(length, -2222);
    EXPECT_EQ(grabber.set(lengthId, 4u), -2222);
    EXPECT_EQ(grabber.lastError(), -2222);
    std::uint32_t word = 0;
    EXPECT_EQ(grabber.get(anyParameter + 1, &word), FG_ERR_INVALID_ARGUMENT) << "the runtime's own refusal";
}

TEST_F(Routing, DescriptionsOfAllParameters) {
    Grabber grabber(0);
    Lines rows = dataLines("descriptions.txt");
    ASSERT_EQ(rows.size(), 164u);
    for (const char* unknown : {"FG_NONE", "", "fg_width", "FG_WIDTH ", "FG_PARAM_DESCR"})
        rows.push_back(std::string(unknown) + "\t-");
    for (const std::string& row : rows) {
        const std::string of = row.substr(0, row.find('\t')), text = row.substr(row.find('\t') + 1);
        EXPECT_EQ(grabber.get(FG_PARAM_DESCR, std::strcpy(buffer, of.c_str()), 0, FG_PARAM_TEXT), 0);
        EXPECT_EQ(buffer, text) << of;
        std::strcpy(buffer, of.c_str());
        EXPECT_EQ(grabber.get(FG_PARAM_DESCR, buffer, 0, FG_PARAM_ALLOCATED_STRING), 0);
        char* handedOut = nullptr;
        std::memcpy(&handedOut, buffer, sizeof handedOut);
        EXPECT_EQ(handedOut, text) << of;
    } // those not freed are released with the object
}

TEST_F(Routing, TextsBelongToTheObjectUntilFreedOnce) {
    Grabber grabber(0), other(0);
    const auto description = [&] {
        char* text = std::strcpy(buffer, "FG_WIDTH");
        EXPECT_EQ(grabber.get(FG_PARAM_DESCR, text, 0, FG_PARAM_ALLOCATED_STRING), 0);
        std::memcpy(&text, buffer, sizeof text);
        return text;
    };
    char *const first = description(), *const second = description();
    for (char* text : {static_cast<char*>(nullptr), second + 1})
        EXPECT_EQ(freeText(grabber, FG_PARAM_DESCR, text), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(grabber.lastError(), FG_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(freeText(other, FG_PARAM_DESCR, first), FG_ERR_INVALID_ARGUMENT);
    ASSERT_EQ(grabber.set(FG_WIDTH, 1022u), FG_ERR_GRANULARITY);
    for (const int tag : {1, 2, 6, 0, -22, 4096})
        EXPECT_EQ(freeText(grabber, FG_PARAM_DESCR, first, 5, tag), FG_ERR_STRING_TAG) << tag;
    EXPECT_EQ(freeText(grabber, 12345, first), 0) << "any id of this applet's own";
    EXPECT_EQ(grabber.lastError(), FG_ERR_GRANULARITY) << "neither stores anything";
    EXPECT_EQ(freeText(grabber, FG_PARAM_DESCR, first), FG_ERR_INVALID_ARGUMENT) << "twice";

    // A text of the runtime is returned to it: of a design parameter, or of an id that the runtime serves. For
    // the latter nothing is stored.
    const int uid = directId("Device1_Process0_AppletProperties_AppletUid");
    const int strings = live("strings");
    for (const int id : {uid, 601, 3050, 3060, 3070, 3080, 3090, 5210}) {
        char* text = nullptr;
        ASSERT_EQ(grabber.get(uid, &text, 0, FG_PARAM_ALLOCATED_STRING), 0);
        EXPECT_EQ(live("strings"), strings + 1);
        ASSERT_EQ(grabber.set(FG_WIDTH, 1022u), FG_ERR_GRANULARITY);
        EXPECT_EQ(freeText(grabber, id, text), 0) << id;
        EXPECT_EQ(live("strings"), strings) << id;
        EXPECT_EQ(grabber.lastError(), id == uid ? 0 : FG_ERR_GRANULARITY) << id;
        EXPECT_EQ(freeText(grabber, id, nullptr), FG_ERR_INVALID_ARGUMENT) << "the runtime's own refusal";
        EXPECT_EQ(grabber.lastError(), id == uid ? FG_ERR_INVALID_ARGUMENT : FG_ERR_GRANULARITY) << id;
    }
    // Unlike set and get, the function throws the code for an unknown DMA channel to its caller.
    for (const int id : {FG_PARAM_DESCR, FG_NR_OF_DMAS})
        EXPECT_THROW(freeText(grabber, id, second, 5), int) << id;
}

} // namespace
