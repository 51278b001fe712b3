// Every access of a set or a get fails in turn, once or from then on, in every mode that changes the
// accesses: the code is returned, the value is kept, and the same call without a fault works as usual.

#include "support/applet_fixture.h"
#include "support/faults.h"
#include "support/temporary_folder.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <map>
#include <set>

namespace {

using namespace support;

/** A value as bytes: a number widened to 8 bytes, a text, or words of a table. */
using Bytes = std::string;

template <typename T> Bytes bytesOf(T number) {
    Bytes bytes(sizeof(std::uint64_t), '\0');
    std::memcpy(bytes.data(), &number, sizeof number);
    return bytes;
}

Bytes words(const std::vector<std::uint32_t>& elements) {
    return {reinterpret_cast<const char*>(elements.data()), elements.size() * sizeof elements[0]};
}

/** A parameter and its values: the sweep changes it from the first value to each of the others. */
struct Parameter {
    int id;
    std::string name;
    int kind; /**< of its record in the tree */
    std::vector<Bytes> values{};

    bool isText() const { return kind == REGISTER_KIND_STRING; }
    bool isTable() const { return kind == REGISTER_KIND_UINT_FIELD; }
};

/** Settings that change what later sets and gets access. */
struct Mode {
    const char* name;
    std::vector<std::pair<int, std::uint32_t>> steps{};
    bool pixelFrequency = false; /**< of the simulator: no set leads there, only a file */
};

const Mode modes[] = {
    {"as started"},
    {"top right", {{FG_WIDTH, 500}, {FG_HEIGHT, 100}, {FG_VANTAGEPOINT, FG_VANTAGEPOINT_TOP_RIGHT}}},
    {"bottom left", {{FG_WIDTH, 500}, {FG_HEIGHT, 100}, {FG_VANTAGEPOINT, FG_VANTAGEPOINT_BOTTOM_LEFT}}},
    {"bottom right", {{FG_WIDTH, 500}, {FG_HEIGHT, 100}, {FG_VANTAGEPOINT, FG_VANTAGEPOINT_BOTTOM_RIGHT}}},
    {"right aligned", {{FG_BITALIGNMENT, FG_RIGHT_ALIGNED}}},
    {"custom shift", {{FG_BITALIGNMENT, FG_CUSTOM_BIT_SHIFT_MODE}}},
    {"simulator at a frame rate", {{FG_CAMERASIMULATOR_SELECT_MODE, FG_FRAMERATE}}},
    {"simulator at a pixel frequency", {}, true},
    {"image selection", {{FG_IMG_SELECT_PERIOD, 9}}},
    {"table from a file", {{FG_LUT_TYPE, LUT_TYPE_CUSTOM}}},
    {"lines triggered", {{FG_LINETRIGGERMODE, ASYNC_TRIGGER}, {FG_SHAFTENCODERON, 1}}},
    {"lines gated", {{FG_LINETRIGGERMODE, ASYNC_GATED}}},
    {"lines controlled and gated", {{FG_LINETRIGGERMODE, GRABBER_CONTROLLED_GATED}}},
    {"images triggered", {{FG_IMGTRIGGERMODE, ASYNC_TRIGGER}}},
    {"images in several buffers", {{FG_IMGTRIGGERMODE, ASYNC_TRIGGER_MULTIFRAME}}},
    {"images gated", {{FG_IMGTRIGGERMODE, ASYNC_GATED}}},
    {"images gated in several buffers", {{FG_IMGTRIGGERMODE, ASYNC_GATED_MULTIFRAME}}},
    {"debug point that injects", {{FG_DEBUGSOURCE, 1}}},
    {"last debug point", {{FG_DEBUGSOURCE, 2}}},
};

/** Values that a get shows once an access of the set was tried, or has succeeded, although a later one fails:
 * applied changes read back. */
const struct {
    int id;
    const char* access;
    bool tried;
} readBackAsApplied[] = {
    {FG_CAMERASIMULATOR_WIDTH, "CameraSimulator_Size_ImageWidth", true},
    {FG_CAMERASIMULATOR_LINE_GAP, "CameraSimulator_Size_ImageWidth", true},
    {FG_CAMERASIMULATOR_FRAME_GAP, "CameraSimulator_Size_ImageHeight", true},
    {FG_CAMERASIMULATOR_LINERATE, "SequenceLength_ImageWidth", false},
    {FG_CAMERASIMULATOR_FRAMERATE, "SequenceLength_ImageWidth", false},
    {FG_DIGIO_OUTPUT, "SelectGPO_Select3_Polarity_Invert", false},
};

bool showsAlready(int id, const Lines& faultFree, std::size_t k) {
    for (const auto& [applied, name, tried] : readBackAsApplied) {
        const auto isIt = [&, wanted = name](const std::string& access) { return isWriteOf(access, wanted); };
        const auto at = static_cast<std::size_t>(std::ranges::find_if(faultFree, isIt) - faultFree.begin());
        if (applied == id && k > (tried ? at : at + 1)) return true;
    }
    return false;
}

/** The number of a set's own accesses. */
std::size_t ownAccesses(int id, int code, const Lines& faultFree) {
    if (code != FG_OK) return faultFree.size(); // ends with a refusal, so without a refresh
    return id == FG_DEBUGSOURCE ? 2 : support::ownAccesses(faultFree); // also reads the number of points
}

/** The code that a caller gets: for debug points and for silenced branches not the design's own code. */
int codeOf(const std::string& access) {
    const bool isHidden =
        access.find("_Debug_") != std::string::npos || access.find("_EnableTrash_") != std::string::npos;
    return isHidden ? FG_ERR_UNRESOLVED : injectedCode;
}

class FaultSweep : public AppletTest {
protected:
    FaultSweep() {
        for (const Lines& row : dataRows("read_only_ids.txt"))
            m_readOnly.insert(std::stoi(row[0]));
    }

    /** A new handle in a mode, its parameters, and the tables that a file parameter names. */
    void enter(const Mode& mode) {
        m_grabber = std::make_unique<Grabber>();
        board.log_kinds(device(), ~0u);
        ASSERT_EQ(m_grabber->fitRam(18).bringUp().error, FG_OK);
        m_records.clear();
        forEachRecord(applet.Fg_getParameterInfo(fg(), 0),
                      [this](RegisterInfo& record) { m_records[record.id] = &record; });
        m_parameters.clear();
        for (const Lines& row : dataRows("parameter_index.txt")) {
            const auto record = m_records.find(std::stoi(row[2])); // some are not in the tree
            const int kind = record != m_records.end() ? record->second->kind : REGISTER_KIND_UINT;
            m_parameters.push_back({std::stoi(row[2]), row[1], kind});
        }
        const Parameter& tables = parameter(FG_LUT_CUSTOM_FILE);
        for (const std::string element : {"0,1;", "0,2;"}) {
            const Bytes path = textsOf(tables)[element == "0,2;"];
            writeFile(path, "nrOfElements=1;\n[red]\n" + element + "\n[green]\n" + element + "\n[blue]\n" +
                                element);
            ASSERT_EQ(set(tables, path), FG_OK);
        }
        if (mode.pixelFrequency) loadPixelFrequencyMode();
        for (const auto& [id, value] : mode.steps)
            ASSERT_EQ(m_grabber->set(id, value), FG_OK) << id;
        for (Parameter& parameter : m_parameters)
            if (!m_readOnly.contains(parameter.id)) parameter.values = valuesFor(parameter);
    }

    void sweepSet(const Parameter& p, const Bytes& from, const Bytes& to) {
        if (set(p, from) != FG_OK) return;
        m_grabber->clearLog();
        const int usual = set(p, to);
        const Lines faultFree = m_grabber->log();
        if (!isNew(p, faultFree)) {
            set(p, from);
            return;
        }
        m_sweptIds.insert(p.id);
        const std::size_t end = state(faultFree);
        const Bytes reached = read(p);
        ASSERT_EQ(set(p, from), FG_OK);
        const Bytes old = read(p);
        const std::size_t own = ownAccesses(p.id, usual, faultFree);
        forEachPosition(faultFree.size(), [&](std::size_t k, int how) {
            SCOPED_TRACE(p.name + ": " + faultFree[k - 1]);
            ASSERT_EQ(set(p, from), FG_OK);
            m_grabber->clearLog();
            board.fail_access(device(), static_cast<unsigned>(k), injectedCode, how);
            const int code = k <= own ? codeOf(faultFree[k - 1]) : FG_OK;
            EXPECT_EQ(set(p, to), code);
            EXPECT_EQ(m_grabber->lastError(), code);
            const Lines seen = m_grabber->log();
            board.fail_access(device(), 0, 0, VBOARD_ONCE);
            Bytes shown;
            m_otherThread.run([&] { shown = read(p); }); // needs the lock
            if (k <= own) {
                EXPECT_EQ(difference(seen, cutAt(faultFree, k, how)), "");
                EXPECT_TRUE(shown == (showsAlready(p.id, faultFree, k) ? reached : old));
            } else {
                EXPECT_TRUE(shown == reached);
            }
            EXPECT_EQ(set(p, to), usual);
            EXPECT_EQ(m_grabber->lastError(), usual);
            EXPECT_EQ(state(faultFree), end);
        });
        ASSERT_EQ(set(p, from), FG_OK);
    }

    void sweepGet(const Parameter& p) {
        if (p.isTable()) return; // served from the object
        m_grabber->clearLog();
        const Bytes usual = read(p);
        const Lines faultFree = m_grabber->log();
        if (!isNew(p, faultFree)) return;
        forEachPosition(faultFree.size(), [&](std::size_t k, int how) {
            SCOPED_TRACE(p.name + ": " + faultFree[k - 1]);
            m_grabber->clearLog();
            board.fail_access(device(), static_cast<unsigned>(k), injectedCode, how);
            const int code = codeOf(faultFree[k - 1]);
            std::uint64_t value = guard;
            EXPECT_EQ(
                m_grabber->get(p.id, &value, 0, p.isText() ? FG_PARAM_ALLOCATED_STRING : FG_PARAM_INT32),
                code);
            EXPECT_EQ(m_grabber->lastError(), code);
            EXPECT_EQ(value, guard);
            EXPECT_EQ(m_grabber->log(), cutAt(faultFree, k, how));
            board.fail_access(device(), 0, 0, VBOARD_ONCE);
            Bytes again;
            m_otherThread.run([&] { again = read(p); });
            EXPECT_TRUE(again == usual);
            EXPECT_EQ(m_grabber->lastError(), FG_OK);
        });
    }

    const std::vector<Parameter>& parameters() const { return m_parameters; }
    bool isSettable(const Parameter& p) const { return !m_readOnly.contains(p.id); }
    bool isSwept(const Parameter& p) const { return m_sweptIds.contains(p.id); }
    std::size_t positions() const { return m_positions; }

private:
    static constexpr std::uint32_t tableSize = 16384;
    static constexpr std::uint64_t guard = 0xa5a5a5a5a5a5a5a5;

    Fg_Struct* fg() { return m_grabber->fg(); }
    LOOMdevice* device() { return m_grabber->device; }

    const Parameter& parameter(int id) const { return *std::ranges::find(m_parameters, id, &Parameter::id); }

    int set(const Parameter& p, const Bytes& value) {
        if (p.isTable() && value.size() == sizeof(std::uint32_t)) {
            FieldParameterInt_s element{0, tableSize - 1};
            std::memcpy(&element.value, value.data(), sizeof element.value);
            return m_grabber->set(p.id, element, 0, FG_PARAM_FIELD_INT);
        }
        if (p.isTable()) {
            std::vector<std::uint32_t> elements(value.size() / sizeof(std::uint32_t));
            std::memcpy(elements.data(), value.data(), value.size());
            const FieldParameterAccess run{FG_PARAM_UINT32, 100, static_cast<std::uint32_t>(elements.size()),
                                           elements.data()};
            return m_grabber->set(p.id, run, 0, FG_PARAM_FIELD_ACCESS);
        }
        const int tag = p.isText() ? FG_PARAM_TEXT : FG_PARAM_UINT32;
        return applet.Fg_setParameterWithType(fg(), p.id, value.c_str(), 0, tag);
    }
    void readTable(const Parameter& p) {
        FieldParameterAccess run{FG_PARAM_UINT32, 0, tableSize, m_table.data()};
        EXPECT_EQ(m_grabber->get(p.id, &run, 0, FG_PARAM_FIELD_ACCESS), FG_OK);
    }
    std::string tableDigest() const {
        const std::string_view bytes(reinterpret_cast<const char*>(m_table.data()),
                                     tableSize * sizeof m_table[0]);
        return std::to_string(std::hash<std::string_view>()(bytes));
    }
    Bytes read(const Parameter& p) {
        if (p.isTable()) {
            readTable(p);
            return words(m_table);
        }
        std::uint64_t value = 0;
        EXPECT_EQ(m_grabber->get(p.id, &value, 0, p.isText() ? FG_PARAM_ALLOCATED_STRING : FG_PARAM_INT32),
                  FG_OK)
            << p.name;
        if (!p.isText()) return bytesOf(value);
        auto* handedOut = std::bit_cast<char*>(value);
        Bytes text = handedOut;
        EXPECT_EQ(applet.Fg_freeParameterStringWithType(fg(), p.id, handedOut, 0, FG_PARAM_ALLOCATED_STRING),
                  FG_OK);
        return text;
    }

    std::vector<Bytes> textsOf(const Parameter& p) const {
        return {m_folder / (p.name + "-a.mcf.lut"), m_folder / (p.name + "-b.mcf.lut")};
    }
    template <typename Limits> static std::vector<Bytes> near(const Bytes& present, const Limits& limits) {
        return {present, bytesOf(limits.minimum), bytesOf(limits.minimum + limits.increment),
                bytesOf(limits.maximum)};
    }
    std::vector<Bytes> valuesFor(const Parameter& p) {
        switch (p.id) {        // properties that are not in the tree
        case FG_LUT_SAVE_FILE: // writes a long file without any access
            return {};
        case FG_DIGIO_OUTPUT:
            return {bytesOf(3), bytesOf(2)};
        case FG_CAMERASIMULATOR_LINERATE:
            return {bytesOf(10000.0), bytesOf(5000.0)};
        case FG_CAMERASIMULATOR_FRAMERATE:
            return {bytesOf(10.0), bytesOf(5.0)};
        case FG_CAMERASIMULATOR_HEIGHT: // a frame rate that is left half changed allows fewer lines
            return {bytesOf(1024), bytesOf(512)};
        }
        if (p.isTable()) return {words({7, 8, 9}), words({1, 2, 3}), words({5})};
        if (p.isText()) return textsOf(p);
        const RegisterInfoValue& value = m_records.at(p.id)->value;
        const Bytes present = read(p);
        switch (p.kind) {
        case REGISTER_KIND_DOUBLE:
            return near(present, value.f64);
        case REGISTER_KIND_UINT64:
            return near(present, value.u64);
        case REGISTER_KIND_UINT:
            return near(present, value.u32);
        }
        std::vector<Bytes> entries = {present};
        for (int i = 0; i < value.enumeration.entryCount; ++i) {
            const Bytes entry = bytesOf(value.enumeration.values[i]);
            if (entry != present || value.enumeration.entryCount == 1) entries.push_back(entry);
        }
        return entries;
    }

    /** Whether there is an access to the runtime that was not made before. */
    bool isNew(const Parameter& p, const Lines& accesses) {
        std::string all = p.name;
        for (const std::string& access : accesses)
            all += '\n' + access;
        return !accesses.empty() && m_seen.insert(all).second;
    }
    template <typename Body> void forEachPosition(std::size_t accesses, Body body) {
        for (const int how : {VBOARD_ONCE, VBOARD_FROM_THEN_ON}) {
            for (std::size_t k = 1; k <= accesses; ++k) {
                SCOPED_TRACE(how == VBOARD_ONCE ? "once" : "from then on");
                body(k, how);
                ++m_positions;
            }
        }
    }

    /** A digest of all readable values, the published tree, and the design. */
    std::size_t state(const Lines& accesses) {
        std::string all;
        for (const Parameter& p : m_parameters)
            all += p.isTable() ? (readTable(p), tableDigest()) : read(p);
        for (const auto& [id, record] : m_records) {
            all += std::to_string(record->access);
            if (record->kind == REGISTER_KIND_UINT) all += bytesOf(record->value.u32.maximum);
            if (record->kind == REGISTER_KIND_DOUBLE) all += bytesOf(record->value.f64.maximum);
        }
        Lines names = m_designParameters;
        for (const std::string& access : accesses)
            if (access.starts_with("set ")) names.push_back(access.substr(4, access.find(' ', 4) - 4));
        for (const std::string& name : names) {
            double number = 0;
            if (board.peek_double(device(), name.c_str(), &number) == VBOARD_OK)
                all += bytesOf(number);
            else if (board.peek_field(device(), name.c_str(), 0, tableSize, m_table.data()) == VBOARD_OK)
                all += tableDigest();
        }
        return std::hash<std::string>()(all);
    }

    void loadPixelFrequencyMode() {
        const std::string path = m_folder / "mode.mcf", key = "FG_CAMERASIMULATOR_SELECT_MODE=";
        ASSERT_EQ(applet.Fg_saveConfig(fg(), path.c_str()), FG_OK);
        std::string text = fileBytes(path);
        text.replace(text.find(key + '1'), key.size() + 1, key + '0');
        writeFile(path, text);
        ASSERT_EQ(applet.Fg_loadConfig(fg(), path.c_str()), FG_OK);
        ASSERT_EQ(m_grabber->value<std::uint32_t>(FG_CAMERASIMULATOR_SELECT_MODE), FG_PIXEL_FREQUENCY);
    }

    const Lines m_designParameters = dataLines("design_parameters.txt");
    std::set<int> m_readOnly;
    const TemporaryFolder m_folder;
    OtherThread m_otherThread;
    std::unique_ptr<Grabber> m_grabber;
    std::map<int, RegisterInfo*> m_records;
    std::vector<Parameter> m_parameters;
    std::set<std::string> m_seen;
    std::set<int> m_sweptIds;
    std::vector<std::uint32_t> m_table = std::vector<std::uint32_t>(tableSize);
    std::size_t m_positions = 0;
};

TEST_F(FaultSweep, EverySetInEveryMode) {
    for (const Mode& mode : modes) {
        SCOPED_TRACE(mode.name);
        ASSERT_NO_FATAL_FAILURE(enter(mode));
        for (const Parameter& p : parameters())
            for (std::size_t i = 1; i < p.values.size(); ++i)
                ASSERT_NO_FATAL_FAILURE(sweepSet(p, p.values[0], p.values[i])) << p.name;
    }
    Lines notSwept;
    for (const Parameter& p : parameters())
        if (isSettable(p) && !isSwept(p)) notSwept.push_back(p.name);
    // Stored in the object; always refused; written to a file.
    EXPECT_EQ(notSwept, (Lines{"FG_TIMEOUT", "FG_CAMERASIMULATOR_PIXEL_FREQUENCY", "FG_LUT_SAVE_FILE"}));
    EXPECT_GE(positions(), 4894u) << "less is swept than was";
    RecordProperty("positions", std::to_string(positions()));
}

TEST_F(FaultSweep, EveryGetInEveryMode) {
    for (const Mode& mode : modes) {
        SCOPED_TRACE(mode.name);
        ASSERT_NO_FATAL_FAILURE(enter(mode));
        for (const Parameter& p : parameters())
            sweepGet(p);
    }
    EXPECT_GE(positions(), 182u) << "less is swept than was";
    RecordProperty("positions", std::to_string(positions()));
}

} // namespace
