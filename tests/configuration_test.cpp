// Configuration files through the exported functions: what a save tells, what a load does with each key, and
// what either makes of files that are none.

#include "support/applet_fixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace support;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr int injected = -4711;

/** Read back from counters that other values set. */
const char* const simulatorRates[] = {"FG_CAMERASIMULATOR_LINERATE", "FG_CAMERASIMULATOR_FRAMERATE"};

/** The lines of a file, at first those of the file that a normal start saves. */
class File {
public:
    explicit File(Lines lines = dataLines("saved_state.mcf")) : m_lines(std::move(lines)) {}
    File& set(const std::string& key, const std::string& value) {
        *find(key) = key + "=" + value + ";";
        return *this;
    }
    File& without(const std::string& key) {
        m_lines.erase(find(key));
        return *this;
    }
    std::string value(const std::string& key) {
        const std::string& line = *find(key);
        return line.substr(key.size() + 1, line.size() - key.size() - 2);
    }
    std::string text(const char* end = "\n") const {
        std::string all;
        for (const std::string& line : m_lines)
            all += line + end;
        return all;
    }
    Lines parameters() const {
        Lines names;
        for (const std::string& line : m_lines)
            if (line.starts_with("FG_")) names.push_back(line.substr(0, line.find('=')));
        return names;
    }

private:
    Lines::iterator find(const std::string& key) {
        const auto found =
            std::ranges::find_if(m_lines, [&](auto& line) { return line.starts_with(key + "="); });
        if (found == m_lines.end()) throw std::runtime_error("no key " + key);
        return found;
    }
    Lines m_lines;
};

/** The accesses of a load, by the parameters whose setters make them. */
using Sections = std::vector<std::pair<std::string, Lines>>;

void replace(Sections& sections, const std::string& from, const std::string& to) {
    for (auto& [name, lines] : sections)
        std::ranges::replace(lines, from, to);
}

/** The setters of a load run as those of a start do. */
Sections startSections() {
    Sections sections;
    for (const std::string& line : dataLines("start_up_writes.txt")) {
        if (line.starts_with("# "))
            sections.push_back({line.substr(2), {}});
        else
            sections.back().second.push_back(line);
    }
    sections.erase(sections.begin()); // what a start asks the design about itself
    return sections;
}

/** A rate is saved as it reads back, with a half step; what 12 digits of it give may be the step before. */
Sections savedStateSections() {
    Sections sections = startSections();
    const std::string step =
        " Device1_Process0_CameraSimulator_PixelFrequency_SequenceLength_ImageWidth u32 ";
    for (const std::string access : {"set", "get"})
        replace(sections, access + step + "12207", access + step + "12206");
    return sections;
}

Lines joined(const Sections& sections, const std::string& butNot = "") {
    Lines all;
    for (const auto& [name, lines] : sections)
        if (name != butNot) all.insert(all.end(), lines.begin(), lines.end());
    return all;
}

/** The accesses when the k-th, or each from it on, fails: the setter ends there, the next one runs. */
Lines failing(const Sections& sections, std::size_t k, int how) {
    Lines all;
    std::size_t count = 0;
    for (const auto& [name, lines] : sections) {
        bool refreshes = false;
        for (std::string line : lines) {
            ++count;
            const bool fails = count == k || (count > k && how == VBOARD_FROM_THEN_ON);
            const bool reads = line.starts_with("get ");
            if (fails && reads) line.erase(line.rfind(' ')); // a failed get has no value
            all.push_back(fails ? line + " = " + std::to_string(injected) : line);
            if (fails && !refreshes) break;
            // Behind its first read of the rate, this one only refreshes limits.
            refreshes = refreshes || (reads && name == "FG_CAMERASIMULATOR_SELECT_MODE");
        }
    }
    return all;
}

/** The design as its parameters were written last, without what a file does not hold: tables, the branches
 * that a refused format has silenced, and the rates. */
std::string designState(const Grabber& grabber) {
    std::map<std::string, std::string> last;
    for (const std::string& line : grabber.log())
        if (line.starts_with("set ")) last[line.substr(4, line.find(' ', 4) - 4)] = line + '\n';
    std::erase_if(last, [](const auto& entry) {
        const auto holds = [&](const char* part) { return entry.first.find(part) != std::string::npos; };
        return holds("_LUTcontent") || holds("_VirtualTrash_") || holds("_PixelFrequency_");
    });
    std::string all;
    for (const auto& [name, line] : last)
        all += line;
    return all;
}

int set(Grabber& grabber, const std::string& name, const std::string& value) {
    const auto& applet = host().applet();
    const int id = applet.Fg_getParameterIdByName(grabber.fg(), name.c_str());
    if (value.starts_with('\'')) {
        const std::string text = value.substr(1, value.size() - 2);
        return applet.Fg_setParameterWithType(grabber.fg(), id, text.c_str(), 0, FG_PARAM_TEXT);
    }
    if (value.find('.') != value.npos) return grabber.set(id, std::stod(value));
    return grabber.set(id, static_cast<std::uint32_t>(std::stol(value)));
}

class ConfigurationTest : public AppletTest {
protected:
    ConfigurationTest() { std::filesystem::create_directory(m_folder); }
    ~ConfigurationTest() override { std::filesystem::remove_all(m_folder); }

    std::string in(const std::string& name) const { return m_folder / name; }
    static std::string bytes(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /** A handle on a board whose memory has the widths that start_up_writes.txt tells. */
    void start(Grabber& grabber, int flags = 0) {
        for (const auto& [name, value] : {std::pair{"DRAM_DRAM_A_0_Imp_DRAM_RamAddressWidth", 24},
                                          {"DRAM_DRAM_A_0_Imp_DRAM_RamDataWidth", 512},
                                          {"LinkPixelSpace_Parallelism", 32}}) {
            const std::string full = std::string("Device1_Process0_Buffer_0_") + name;
            ASSERT_EQ(board.poke_int(grabber.device, full.c_str(), value), VBOARD_OK);
        }
        ASSERT_EQ(grabber.bringUp(flags).error, FG_OK);
        grabber.clearLog();
    }
    void expectCode(Grabber& grabber, int result, int expected, int lastError) {
        EXPECT_EQ(result, expected);
        EXPECT_EQ(grabber.lastError(), lastError);
    }
    void load(Grabber& grabber, const std::string& text, int expected = FG_OK) {
        const std::string path = in("loaded.mcf");
        std::ofstream(path, std::ios::binary) << text;
        expectCode(grabber, applet.Fg_loadConfig(grabber.fg(), path.c_str()), expected, expected);
    }
    File save(Grabber& grabber) {
        const std::string path = in("saved.mcf");
        expectCode(grabber, applet.Fg_saveConfig(grabber.fg(), path.c_str()), FG_OK, FG_OK);
        Lines lines;
        std::ifstream file(path);
        for (std::string line; std::getline(file, line);)
            lines.push_back(line);
        return File(lines);
    }

    /** Parameters, each with values as a file has them, doubles with a point. The first is not the start's;
     * some are refused, always or beside their neighbours. */
    const std::vector<Lines> settable = dataRows("settable_values.txt");
    /** Parameters that a save tells and a load does not ask for. */
    const Lines savedOnly = dataLines("saved_only.txt");

private:
    const std::filesystem::path m_folder =
        std::filesystem::temp_directory_path() / ("configuration-test-" + std::to_string(getpid()));
};

TEST_F(ConfigurationTest, StartIsSavedToTheByte) {
    const std::string expected = bytes(std::string(TEST_DATA_DIR) + "/saved_state.mcf");
    Grabber grabber;
    start(grabber);
    for (const char* name : {"a.mcf", "a.mcf.bak"}) {
        expectCode(grabber, applet.Fg_saveConfig(grabber.fg(), in(name).c_str()), FG_OK, FG_OK);
        EXPECT_EQ(bytes(in(name)), expected);
    }
    // This setter comes back to the applet through the runtime, inside its own call, and hides the result.
    expectCode(grabber, set(grabber, "FG_DEBUGSAVECONFIG", "'" + in("nested.mcf") + "'"), FG_OK, FG_OK);
    EXPECT_EQ(bytes(in("nested.mcf")), expected);
    expectCode(grabber, set(grabber, "FG_DEBUGSAVECONFIG", "'" + in("none/a.mcf") + "'"), FG_OK, FG_OK);
}

TEST_F(ConfigurationTest, LoadRunsTheSettersInOrder) {
    File lean;
    for (const char* key : {"ConfigFileVersion", "Version", "LoadAppletId"})
        lean.without(key);
    for (const std::string& key : savedOnly)
        lean.without(key);
    lean.set("Hersteller", "'somebody'").set("AktivePort", "7"); // only have to be there
    for (const File& file : {File(), lean}) {
        for (const int flags : {0, 1}) {
            Grabber grabber;
            start(grabber, flags);
            load(grabber, file.text());
            EXPECT_EQ(grabber.log(), joined(savedStateSections())) << flags;
        }
    }
}

TEST_F(ConfigurationTest, EachMissingKeyIsLostAlone) {
    File changed;
    for (const Lines& row : settable)
        changed.set(row[0], row[1]);
    changed.set("FG_DIGIO_OUTPUT", "-1"); // else it sets two of the outputs
    Lines required = changed.parameters();
    for (const std::string& key : savedOnly)
        std::erase(required, key);
    ASSERT_EQ(required.size(), 99u);

    Grabber grabber;
    start(grabber);
    File old = save(grabber);
    load(grabber, changed.text());
    const File all = save(grabber);
    for (const std::string& key : required) {
        Grabber other;
        start(other);
        load(other, File(changed).without(key).text(), FG_ERR_LOAD_CONFIG);
        File expected = all, saved = save(other);
        if (key != "FG_DIGIO_OUTPUT") expected.set(key, old.value(key)); // follows from the outputs
        for (const char* rate : simulatorRates)
            expected.set(rate, saved.value(rate));
        EXPECT_EQ(saved.text(), expected.text()) << key;
    }
    // A number with "Error" in it counts as missing, a text does not.
    load(grabber, File().set("FG_WIDTH", "'Error'").text(), FG_ERR_LOAD_CONFIG);
    load(grabber, File().set("FG_DEBUGFILE", "'Error'").text());
    EXPECT_EQ(save(grabber).value("FG_DEBUGFILE"), "'Error'");
}

TEST_F(ConfigurationTest, RefusedValueIsKeptButNotWritten) {
    const std::string buffer = "set Device1_Process0_Buffer_0_";
    const std::string camera =
        "set Device1_Process1_Trigger_OutputMapping_CamTrigger0_SelectTrigger_SelectSignal_Select u32 ";
    const struct {
        std::string name, value, readBack;
        std::vector<std::pair<std::string, std::string>> passedOn; // what other setters write instead
    } cases[] = {
        {"FG_WIDTH",
         "1022",
         "1022",
         {{buffer + "XLength u32 1024", buffer + "XLength u32 1022"},
          {buffer + "SensorWidth u32 1024", buffer + "SensorWidth u32 1022"}}},
        {"FG_TRIGGERCAMERA_SOURCE", "2100", "2100", {{camera + "1", camera + "33"}}},
        {"FG_TRIGGEROUT_GPO_0_SOURCE", "2100", "2002", {}}, // outputs answer with what is applied
        {"FG_TIMEOUT", "1", "1", {}},
        {"FG_CUSTOM_BIT_SHIFT_RIGHT", "8", "8", {}},
        {"FG_EXSYNCON", "2", "2", {}},
        {"FG_LINEEXPOSURE", "200.008", "200.008", {}},
        {"FG_LINE_DOWNSCALE", "256", "256", {}},
        {"FG_SHAFTENCODER_COMPENSATION_COUNT", "1048576", "0", {}},
        {"FG_SCALINGFACTOR_RED", "4", "4", {}},
    };
    for (const auto& row : cases) {
        Grabber grabber;
        start(grabber);
        Sections expected = savedStateSections();
        for (const auto& [from, to] : row.passedOn)
            replace(expected, from, to);
        load(grabber, File().set(row.name, row.value).text());
        EXPECT_EQ(grabber.log(), joined(expected, row.name)) << row.name;
        EXPECT_EQ(save(grabber).value(row.name), row.readBack) << row.name;
    }
}

TEST_F(ConfigurationTest, SimulatorComesBackInPart) {
    // The pixel frequency mode, which its setter refuses after a part of its writes, stays.
    Grabber grabber;
    start(grabber);
    Sections expected = savedStateSections();
    const auto mode =
        std::ranges::find(expected, "FG_CAMERASIMULATOR_SELECT_MODE", &Sections::value_type::first);
    mode->second.resize(5); // itself and both sizes
    mode->second[0].back() = '0';
    load(grabber, File().set("FG_CAMERASIMULATOR_SELECT_MODE", "0").text());
    EXPECT_EQ(grabber.log(), joined(expected));
    File saved = save(grabber);
    EXPECT_EQ(saved.value("FG_CAMERASIMULATOR_SELECT_MODE"), "0");
    EXPECT_EQ(saved.value("FG_CAMERASIMULATOR_ACTIVE"), "1");
    EXPECT_EQ(saved.value("FG_CAMERASIMULATOR_PASSIVE"), "1999");

    // The width does not reach the design, and a line rate may come back a step higher.
    for (const auto& [rate, asRead, again] : {std::tuple{10000.0, "10000.400016", "10000.400016"},
                                              {12500.0, "12500.6250313", "12501.8752813"},
                                              {40000.0, "40006.4010242", "40019.2092204"}}) {
        Grabber from, to;
        start(from);
        start(to);
        ASSERT_EQ(from.set(FG_CAMERASIMULATOR_WIDTH, 2017u), FG_OK);
        ASSERT_EQ(from.set(FG_CAMERASIMULATOR_LINERATE, rate), FG_OK);
        File file = save(from);
        EXPECT_EQ(file.value("FG_CAMERASIMULATOR_WIDTH"), "2048");
        EXPECT_EQ(file.value("FG_CAMERASIMULATOR_LINERATE"), asRead);
        load(to, file.text());
        file = save(to);
        EXPECT_EQ(file.value("FG_CAMERASIMULATOR_WIDTH"), "1024");
        EXPECT_EQ(file.value("FG_CAMERASIMULATOR_LINERATE"), again);
    }
}

TEST_F(ConfigurationTest, WhatSettersTookComesBack) {
    std::mt19937 random(5);
    Grabber to(0); // has what it loaded before
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(round);
        Grabber from(0);
        File expected;
        for (int i = 0; i < 150; ++i) {
            const Lines& row = settable[random() % settable.size()];
            const std::string& value = row[1 + random() % (row.size() - 1)];
            if (set(from, row[0], value) != FG_OK) continue;
            expected.set(row[0], value.substr(0, value.size() - (value.ends_with(".0") ? 2 : 0)));
        }
        File saved = save(from);
        for (const std::string key : {"FG_DIGIO_OUTPUT", simulatorRates[0], simulatorRates[1]})
            expected.set(key, saved.value(key)); // follow from others
        ASSERT_EQ(saved.text(), expected.text());
        to.clearLog();
        load(to, saved.text());
        File again = save(to);
        for (const char* rate : simulatorRates)
            again.set(rate, saved.value(rate));
        ASSERT_EQ(again.text(), saved.text());
        ASSERT_EQ(designState(to), designState(from));
    }
}

TEST_F(ConfigurationTest, TextsAndDigitsAreCut) {
    Grabber grabber;
    start(grabber);
    const std::string text(3000, 'a');
    ASSERT_EQ(grabber.set(FG_SCALINGFACTOR_RED, 1.0 / 3), FG_OK);
    ASSERT_EQ(set(grabber, "FG_LUT_CUSTOM_FILE", "'" + text + "'"), FG_OK);
    ASSERT_EQ(set(grabber, "FG_DEBUGFILE", "'a=b'"), FG_OK);
    File saved = save(grabber);
    EXPECT_EQ(saved.value("FG_LUT_CUSTOM_FILE"), "'" + text.substr(0, 1023) + "'");
    load(grabber, saved.text());
    saved = save(grabber);
    EXPECT_EQ(saved.value("FG_LUT_CUSTOM_FILE"),
              "'" + text.substr(0, 255 - 20) + "'"); // the rest of its line
    EXPECT_EQ(saved.value("FG_DEBUGFILE"), "'a'");
    EXPECT_EQ(grabber.value<double>(FG_SCALINGFACTOR_RED), 0.333333333333);
}

TEST_F(ConfigurationTest, GettersAreAskedAndOneThatFailsCostsItsLine) {
    const std::string simulator = "Device1_Process0_CameraSimulator_", trigger = "Device1_Process1_Trigger_";
    const std::pair<std::string, Lines> cases[] = {
        {"Device1_Process0_Camera_Debug_OperationMode", {"FG_DEBUGINENABLE", "FG_DEBUGOUTENABLE"}},
        {"Device1_Process0_Camera_Debug_DebugFile", {"FG_DEBUGFILE"}},
        {simulator + "PixelFrequency_SequenceLength_ImageWidth", {simulatorRates[0], simulatorRates[1]}},
        {"Device1_Process0_Trigger_Trigger_EncoderCompensationCount", {"FG_SHAFTENCODER_COMPENSATION_COUNT"}},
        {trigger + "Inputs_InputStatus_Status", {"FG_DIGIO_INPUT"}},
        {trigger + "Analyzer_Analyzer1_PeriodMin", {"FG_SIGNAL_ANALYZER_1_PERIOD_MIN"}},
        {trigger + "Analyzer_Difference_Status", {"FG_SIGNAL_ANALYZER_PULSE_COUNT_DIFFERENCE"}},
    };
    Grabber grabber;
    start(grabber);
    for (const auto& [name, keys] : cases) {
        grabber.fail(name, injected);
        File expected;
        for (const std::string& key : keys)
            expected.without(key);
        EXPECT_EQ(save(grabber).text(), expected.text()) << name;
        grabber.fail(name, 0);
    }
    const std::string analyzer = trigger + "Analyzer_", period = analyzer + "Analyzer0_PeriodMax",
                      count = analyzer + "Analyzer0_PulseCountSignal_Status",
                      difference = analyzer + "Difference_Status";
    ASSERT_EQ(board.poke_double(grabber.device, period.c_str(), 34359738.36), VBOARD_OK);
    ASSERT_EQ(board.poke_int(grabber.device, count.c_str(), 4294967295), VBOARD_OK);
    ASSERT_EQ(board.poke_int(grabber.device, difference.c_str(), 0x100000000), VBOARD_OK);
    EXPECT_EQ(save(grabber).text(), File()
                                        .set("FG_SIGNAL_ANALYZER_0_PERIOD_MAX", "34359738.36")
                                        .set("FG_SIGNAL_ANALYZER_0_PULSE_COUNT", "-1")
                                        .set("FG_SIGNAL_ANALYZER_PULSE_COUNT_DIFFERENCE", "-4294967296")
                                        .text());
}

TEST_F(ConfigurationTest, FailingAccessEndsItsOwnSetterOnly) {
    Grabber grabber;
    start(grabber);
    const Sections sections = savedStateSections();
    const std::string file = File().text();
    for (const int how : {VBOARD_ONCE, VBOARD_FROM_THEN_ON}) {
        for (std::size_t k = 1; k <= joined(sections).size(); ++k) {
            SCOPED_TRACE(testing::Message() << "access " << k << " how " << how);
            board.fail_access(grabber.device, static_cast<unsigned>(k), injected, how);
            grabber.clearLog();
            load(grabber, file);
            ASSERT_EQ(grabber.log(), failing(sections, k, how));
        }
    }
}

TEST_F(ConfigurationTest, WhatIsNoFileGivesItsCodes) {
    const std::string fifo = in("fifo.mcf"), folder = in("folder.mcf"), other = in("state.txt");
    const std::string none = in("none.mcf"), nowhere = in("none/a.mcf");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    ASSERT_EQ(mkdir(folder.c_str(), 0700), 0);
    std::ofstream(other) << File().text();
    Grabber grabber;
    start(grabber);
    const int before = dup(STDERR_FILENO); // the lowest free one
    close(before);
    for (const char* path :
         {fifo.c_str(), none.c_str(), nowhere.c_str(), other.c_str(), "", static_cast<const char*>(nullptr)})
        expectCode(grabber, applet.Fg_loadConfig(grabber.fg(), path), FG_ERR_FILE_TYPE, FG_ERR_LOAD_CONFIG);
    expectCode(grabber, applet.Fg_loadConfig(grabber.fg(), folder.c_str()), FG_ERR_LOAD_CONFIG,
               FG_ERR_LOAD_CONFIG);
    for (const char* path : {fifo.c_str(), folder.c_str(), nowhere.c_str(), other.c_str(), "",
                             static_cast<const char*>(nullptr)})
        expectCode(grabber, applet.Fg_saveConfig(grabber.fg(), path), FG_ERR_SAVE_CONFIG, FG_ERR_SAVE_CONFIG);
    EXPECT_EQ(bytes(other), File().text());
    EXPECT_EQ(grabber.log(), Lines{});
    const int after = dup(STDERR_FILENO);
    close(after);
    EXPECT_EQ(after, before);
}

TEST_F(ConfigurationTest, FileOfSomethingElseChangesNothing) {
    Grabber grabber;
    start(grabber);
    File file;
    file.set("FG_TIMEOUT", "5").set("FG_WIDTH", "512");
    for (const std::string& text :
         {File(file).without("Hersteller").text(),
          File(file).set("Hersteller", "'Typhoon'").text(), // the first line with "Typ" in it
          File(file).without("Typ").text(), File(file).set("Typ", "'Grab_TwinLaneLineColor2'").text(),
          File(file).set("Typ", "'grab_TwinLaneLineColor'").text(), File(file).set("Typ", "").text(),
          File(file).without("AktivePort").text(), File(file).set("AktivePort", "'Error'").text(),
          "AktivePort=0;\n" + File(file).without("AktivePort").text(),
          file.text("\r\n"), // the header's own line is sought with its end
          std::string(), std::string(1 << 20, '\0'), std::string(1 << 20, '=')})
        load(grabber, text, FG_ERR_LOAD_CONFIG);
    EXPECT_EQ(grabber.log(), Lines{});
    EXPECT_EQ(save(grabber).text(), File().text());
}

TEST_F(ConfigurationTest, FullDiskIsToldInTheLogOnly) {
    const std::string full = in("full.mcf");
    ASSERT_EQ(symlink("/dev/full", full.c_str()), 0);
    AppletLog log(5);
    Grabber grabber;
    start(grabber);
    save(grabber);
    log.take();
    save(grabber);
    EXPECT_EQ(log.take(), Lines{});
    expectCode(grabber, applet.Fg_saveConfig(grabber.fg(), full.c_str()), FG_OK, FG_OK);
    EXPECT_THAT(log.take(), ElementsAre(AllOf(StartsWith(AppletLog::line(5, "")), HasSubstr(full))));
}

} // namespace
