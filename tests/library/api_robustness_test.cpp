// Invalid calls: bad handles, unknown ids next to known ones with any tag and DMA channel, unknown
// queries, texts that could break a parser. Buffers have exactly the size that is passed.

#include "support/applet_fixture.h"
#include "support/sanitizers.h"
#include "support/temporary_folder.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <map>
#include <optional>
#include <random>
#include <set>

namespace {

using namespace support;

/** A caller's buffer of this size that detects writes outside of it. */
class GuardedBuffer {
public:
    explicit GuardedBuffer(std::size_t size) : m_bytes(size + 2 * guard, filler), m_size(size) {}
    GuardedBuffer(const void* value, std::size_t size) : GuardedBuffer(size) {
        std::memcpy(data(), value, size);
    }
    template <typename T> static GuardedBuffer of(const T& value) {
        return GuardedBuffer(&value, sizeof value);
    }

    unsigned char* data() { return m_bytes.data() + guard; }
    template <typename T> T as() {
        T value;
        std::memcpy(&value, data(), sizeof value);
        return value;
    }
    bool operator==(const GuardedBuffer&) const = default;
    bool isGuarded() const {
        return std::ranges::all_of(m_bytes, [&, i = std::size_t{0}](unsigned char byte) mutable {
            const bool isInside = i >= guard && i < guard + m_size;
            ++i;
            return isInside || byte == filler;
        });
    }

private:
    static constexpr unsigned char filler = 0xa5;
    static constexpr std::size_t guard = underAddressSanitizer ? 0 : 32; // which guards the block itself
    std::vector<unsigned char> m_bytes;
    std::size_t m_size;
};

constexpr int lowest = std::numeric_limits<int>::min(), highest = std::numeric_limits<int>::max();

// ---- Ids, tags, DMA channels

struct Parameter {
    std::string name;
    std::string kind; /**< as in the tree; the runtime's own parameters are in no tree */
    bool isReadOnly = false;

    bool isWord() const { return kind == "UInt" || kind == "Enum" || kind == "Int"; }
    bool isText() const { return kind == "String" || kind == "Description"; }
};

std::map<int, Parameter> knownParameters() {
    std::map<int, Parameter> known;
    for (const Lines& row : dataRows("parameter_index.txt"))
        known[std::stoi(row[2])] = {row[1], "Runtime"};
    known[FG_NR_OF_PROCESSES].kind = "UInt";
    known[FG_PARAM_DESCR] = {"FG_PARAM_DESCR", "Description"};
    for (const Lines& row : dataRows("parameter_tree.txt")) { // ID NAME | label | kind | ...
        if (row.size() < 2 || !row[1].starts_with("FG_")) continue;
        const auto label = std::find(row.begin(), row.end(), "|");
        known[std::stoi(row[0])].kind = *(std::find(label + 1, row.end(), "|") + 1);
    }
    for (const Lines& row : dataRows("read_only_ids.txt"))
        known[std::stoi(row[0])].isReadOnly = true;
    return known;
}

class AnyId : private AppletLog, public ParameterTest {
protected:
    AnyId() : AppletLog(4) {}

    /** The caller's value of a parameter for a tag: the present value, in its own width. */
    GuardedBuffer valueOf(int id, int tag) {
        const Parameter* parameter = find(id);
        if (parameter == nullptr) return GuardedBuffer(std::string(32, '\0').data(), 32);
        if (parameter->kind == "UIntField" && tag == FG_PARAM_FIELD_ACCESS) {
            static FieldParameterAccess run; // static, so that its padding is 0: it is compared as well
            run.vtype = FG_PARAM_UINT32;
            run.count = 1;
            run.values = &element;
            return GuardedBuffer::of(run);
        }
        if (parameter->kind == "UIntField") return GuardedBuffer::of(FieldParameterInt_s{element, 0});
        if (parameter->kind == "Description") return GuardedBuffer("-\0\0\0\0\0\0", 8);
        if (parameter->isText()) {
            const std::string value = text(id);
            return {value.c_str(), value.size() + 1};
        }
        GuardedBuffer value(parameter->isWord() ? 4 : 8);
        EXPECT_EQ(grabber.get(id, value.data()), FG_OK);
        return value;
    }
    /** A buffer for it. */
    GuardedBuffer bufferFor(int id, int tag) {
        const Parameter* parameter = find(id);
        const std::size_t least = tag == FG_PARAM_INT64 || tag == FG_PARAM_UINT64 ? 8 : 4;
        if (parameter == nullptr) return GuardedBuffer(least);
        if (parameter->kind == "UIntField" || parameter->kind == "Description") return valueOf(id, tag);
        if (parameter->isText() && tag != FG_PARAM_ALLOCATED_STRING)
            return GuardedBuffer(std::max(text(id).size() + 1, least));
        return GuardedBuffer(parameter->isWord() ? least : 8);
    }
    void expectTold(int code, const Lines& lines) {
        EXPECT_EQ(lastError(), code);
        EXPECT_EQ(take(), lines);
    }
    void get(int id, int tag, int dma) {
        GuardedBuffer buffer = bufferFor(id, tag), untouched = buffer;
        if (tag == FG_PARAM_INT64 || tag == FG_PARAM_UINT64) std::memset(untouched.data(), 0, 8);
        clearLog();
        const int code = grabber.get(id, buffer.data(), dma, tag);

        const Parameter* parameter = find(id);
        const bool isRefused = id != FG_NR_OF_PROCESSES && (parameter == nullptr || dma != 0);
        const bool isNumber = tag >= FG_PARAM_INT32 && tag <= FG_PARAM_DOUBLE;
        if (isRefused || parameter->kind != "Runtime" ||
            isNumber) { // other results of the runtime are its own
            EXPECT_EQ(code, isRefused ? FG_ERR_INVALID_ARGUMENT : FG_OK);
        }
        EXPECT_TRUE(buffer.isGuarded() && (code == FG_OK || buffer == untouched));
        EXPECT_TRUE(!isRefused || id > FG_DIRECT_PARAMETER_BASE || log().empty());
        const bool isLogged = parameter == nullptr && dma == 0 && id <= FG_DIRECT_PARAMETER_BASE;
        expectTold(code, isLogged ? unknown("get", id) : Lines{});
        if (code == FG_OK && tag == FG_PARAM_ALLOCATED_STRING && parameter->isText()) {
            EXPECT_EQ(applet.Fg_freeParameterStringWithType(grabber.fg(), id, buffer.as<char*>(), 0, tag),
                      FG_OK);
        }
    }
    int set(int id, int tag, int dma) {
        GuardedBuffer value = valueOf(id, tag);
        const GuardedBuffer untouched = value;
        clearLog();
        const int code = applet.Fg_setParameterWithType(grabber.fg(), id, value.data(), dma, tag);

        const Parameter* parameter = find(id);
        const bool isKnown = parameter != nullptr && dma == 0;
        EXPECT_TRUE((isKnown && !parameter->isReadOnly) || id > FG_DIRECT_PARAMETER_BASE || log().empty());
        Lines lines;
        if (!isKnown) {
            EXPECT_EQ(code, FG_ERR_INVALID_ARGUMENT);
            if (dma == 0 && id <= FG_DIRECT_PARAMETER_BASE) lines = unknown("set", id);
        } else if (parameter->isReadOnly) {
            EXPECT_EQ(code, FG_ERR_NOT_AVAILABLE);
            lines = {
                line(4, "trying to set read-only SDK parameter '" + parameter->name + "' on process 0!")};
        } else { // some refuse their present value, but none is unknown
            EXPECT_TRUE(code != FG_ERR_NOT_AVAILABLE && code != FG_ERR_INVALID_ARGUMENT) << code;
        }
        EXPECT_EQ(value, untouched);
        expectTold(code, lines);
        return code;
    }
    void freeText(int id, int tag, int dma) {
        GuardedBuffer notOurs(8);
        const GuardedBuffer untouched = notOurs;
        int code = FG_OK;
        bool isThrown = false;
        try {
            code = applet.Fg_freeParameterStringWithType(grabber.fg(), id, notOurs.data(), dma, tag);
        } catch (int thrown) {
            code = thrown;
            isThrown = true;
        }
        const bool isTagged = tag == FG_PARAM_ALLOCATED_STRING;
        EXPECT_EQ(code, isTagged ? FG_ERR_INVALID_ARGUMENT : FG_ERR_STRING_TAG);
        EXPECT_EQ(isThrown, isTagged && dma != 0 && id <= FG_DIRECT_PARAMETER_BASE);
        EXPECT_EQ(notOurs, untouched);
    }
    const Parameter* find(int id) const {
        const auto found = known.find(id);
        return found != known.end() ? &found->second : nullptr;
    }
    static Lines unknown(const std::string& verb, int id) {
        return {line(4, "trying to " + verb + " unknown SDK parameter '" + std::to_string(id) +
                            "' on process 0!")};
    }

    std::map<int, Parameter> known = knownParameters();
    std::uint32_t element = 0;
};

TEST_F(AnyId, AccessesWithEveryTagAndChannel) {
    ASSERT_EQ(known.size(), 165u);
    EXPECT_EQ(std::ranges::count_if(known, [](const auto& row) { return row.second.isReadOnly; }), 53);
    std::set<int> ids = {lowest, -1, 0, highest};
    for (const auto& [id, parameter] : known)
        ids.insert({id - 1, id, id + 1});
    // Direct access to registers is off: the first is unknown.
    for (const int base : {FG_DIRECT_REGISTER_BASE, FG_DIRECT_PARAMETER_BASE})
        ids.insert({base - 1, base, base + 1});

    for (const int id : ids)
        for (const int dma : {0, -1, 1}) {
            std::optional<int> taken; // the result for its own value: the tag must not matter
            for (const int tag :
                 {1, 2, 3, 4, 5, 6, 22, 4098, 4096, 0, -1, 7, 21, 23, 4095, 4097, 4099, lowest, highest}) {
                SCOPED_TRACE(testing::Message() << "id " << id << " DMA " << dma << " tag " << tag);
                EXPECT_EQ(applet.Fg_setParameterWithType(grabber.fg(), id, nullptr, dma, tag),
                          FG_ERR_INVALID_ARGUMENT);
                EXPECT_EQ(grabber.get(id, nullptr, dma, tag), FG_ERR_INVALID_ARGUMENT);
                expectTold(FG_ERR_INVALID_ARGUMENT, {});
                get(id, tag, dma);
                const int code = set(id, tag, dma);
                EXPECT_EQ(code, taken.value_or(code));
                taken = code;
                freeText(id, tag, dma);
                if (HasFailure()) return; // one report, not thousands
            }
        }
}

// ---- Queries

/** The bytes that a query stores in the caller's buffers. */
struct Stored {
    std::size_t in = 0, out = 0;
};

std::map<int, Stored> knownQuestions() {
    std::map<int, Stored> known;
    for (const Lines& row : dataRows("info_answers.txt"))
        known[std::stoi(row[0])] = {};
    for (const int code : {4352, 4880, 4896})
        known[code] = {};
    for (const std::string& line : dataLines("info_texts.txt"))
        known[std::stoi(line)] = {0, 8};
    known.insert(
        {{1041, {8, 8}}, {1042, {8, 8}}, {2304, {4, 0}}, {4144, {8, 0}}, {4160, {8, 0}}, {4864, {0, 8}}});
    known[5120] = {0, sizeof(FgEventRecord)};
    return known;
}

class Questions : public AppletTest {
protected:
    /** Calls with and without each buffer. Only the reported bytes may be stored. */
    void ask(int code, int arg1, int arg2, const Stored& stored, bool isKnown) {
        SCOPED_TRACE(testing::Message() << code << ' ' << arg1 << ' ' << arg2);
        int whole = 0;
        for (const bool hasIn : {true, false})
            for (const bool hasOut : {true, false}) {
                // A text for the query that reads one, and no object for those that take one.
                GuardedBuffer in = stored.in > 0 ? GuardedBuffer(stored.in) : GuardedBuffer("FG_HIGH", 8);
                GuardedBuffer out(stored.out > 0 ? stored.out : 8);
                const GuardedBuffer oldIn = in, oldOut = out;
                const int answer =
                    applet.Info(code, arg1, arg2, hasIn ? in.data() : nullptr, hasOut ? out.data() : nullptr);
                if (hasIn && hasOut) whole = answer;
                const bool needsIn = code == 4352 || code == 4880 || code == 4896;
                const bool needsOut = code == 4864 || code == 4880 || code == 5120;
                const bool lacks = (needsIn && !hasIn) || (needsOut && !hasOut);
                if (code != 5120 || lacks) { // the answer may already be in the buffer
                    EXPECT_EQ(answer, !isKnown ? FG_ERR_NOT_SUPPORTED
                                      : lacks  ? FG_ERR_INVALID_ARGUMENT
                                               : whole);
                }
                if (code == 4864 && hasOut) {
                    EXPECT_EQ(applet.Info(4896, 0, 0, out.as<void*>(), nullptr), FG_OK);
                }
                EXPECT_TRUE(stored.in > 0 && hasIn && answer == FG_OK ? in.isGuarded() && in != oldIn
                                                                      : in == oldIn);
                EXPECT_TRUE(stored.out > 0 && hasOut && answer == FG_OK ? out.isGuarded() && out != oldOut
                                                                        : out == oldOut);
            }
    }
};

TEST_F(Questions, KnownAndRandomCodesWithAndWithoutBuffers) {
    const Grabber grabber(1); // so that events are known
    const auto known = knownQuestions();
    ASSERT_EQ(known.size(), 40u);
    for (const auto& [code, stored] : known)
        for (const int arg1 : {0, 1, -1, 256, lowest, highest})
            for (const int arg2 : {0, 1, 2, -1, highest})
                if (code != 4864 || (arg1 == 0 && arg2 < 2)) ask(code, arg1, arg2, stored, true);

    std::mt19937 random(20221221);
    for (int round = 0; round < 10000;) {
        const auto wide = static_cast<int>(random());
        const int code = round % 2 == 0 ? wide : wide & 0x1fff; // half of them among the known
        if (known.contains(code)) continue;
        ask(code, static_cast<int>(random()), static_cast<int>(random()), {}, false);
        ++round;
    }
}

// ---- Texts

/** Texts of all lengths made of format specifiers, line ends and terminators. */
std::vector<std::string> hardTexts() {
    std::vector<std::string> all = {"", "%s%n%d%*c", "\n\r\t\x01", "\"'=;'", "[Port A]", "\xff\xfe"};
    for (const std::size_t length : {1023u, 1024u, 4096u, 700000u})
        for (const char* piece : {"%s%n", "\n", "';\"", "x"}) {
            std::string& text = all.emplace_back();
            while (text.size() < length)
                text += piece;
            text.resize(length);
        }
    return all;
}

class Texts : public ParameterTest {
protected:
    std::string bufferOf(int id, std::size_t size) {
        GuardedBuffer buffer(size + 1);
        EXPECT_EQ(grabber.get(id, buffer.data(), 0, FG_PARAM_TEXT), FG_OK);
        EXPECT_TRUE(buffer.isGuarded());
        return reinterpret_cast<const char*>(buffer.data());
    }
    /** An accepted text is read back unchanged, into a buffer of its size. */
    void expectKept(int id, const std::string& value) {
        EXPECT_EQ(setText(id, value), FG_OK);
        EXPECT_EQ(bufferOf(id, value.size()), value);
        EXPECT_EQ(text(id), value.substr(0, 655360));
    }
    const TemporaryFolder folder;
};

TEST_F(Texts, SpecialTextsAreNeitherFormattedNorTruncated) {
    for (const std::string& value : hardTexts()) {
        SCOPED_TRACE(value.substr(0, 20) + ", length " + std::to_string(value.size()));
        EXPECT_EQ(applet.Fg_getParameterIdByName(grabber.fg(), value.c_str()), FG_ERR_INVALID_ARGUMENT);
        EXPECT_EQ(applet.Fg_getEventMask(grabber.fg(), value.c_str()), 0u);
        GuardedBuffer name(value.c_str(), std::max<std::size_t>(value.size() + 1, 2)); // the answer is "-"
        EXPECT_EQ(applet.Info(FG_INFO_ENUM_VALUE, 0, 0, name.data(), nullptr), FG_ERR_INVALID_ARGUMENT);
        EXPECT_EQ(grabber.get(FG_PARAM_DESCR, name.data(), 0, FG_PARAM_TEXT), FG_OK);
        EXPECT_STREQ(reinterpret_cast<const char*>(name.data()), "-");
        EXPECT_TRUE(name.isGuarded());

        expectKept(FG_LUT_CUSTOM_FILE, value);
        expectKept(FG_DEBUGSAVECONFIG, value);
        expectKept(FG_DEBUGFILE, value);
        // With all of them in one text.
        const std::string state = folder / "state.mcf";
        EXPECT_EQ(applet.Fg_saveConfig(grabber.fg(), state.c_str()), FG_OK);
        EXPECT_EQ(applet.Fg_loadConfig(grabber.fg(), state.c_str()), FG_OK);
    }
}

} // namespace
