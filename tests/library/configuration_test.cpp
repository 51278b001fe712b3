// Configuration files through the exported functions: the contents of a save, the effect of each key in a load,
// and loads of files of another kind.

#include "support/applet_fixture.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <random>
#include <stdexcept>
#include <unistd.h>

namespace {

using namespace support;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const char* const simulatorRates[] = {"FG_CAMERASIMULATOR_LINERATE", "FG_CAMERASIMULATOR_FRAMERATE"};

/** The lines of a file; initially those saved after a normal start. */
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

private:
    Lines::iterator find(const std::string& key) {
        const auto found =
            std::ranges::find_if(m_lines, [&](auto& line) { return line.starts_with(key + "="); });
        if (found == m_lines.end()) throw std::runtime_error("no key " + key);
        return found;
    }
    Lines m_lines;
};

void replace(Sections& sections, const std::string& from, const std::string& to) {
    for (auto& [name, lines] : sections)
        std::ranges::replace(lines, from, to);
}

/** A load of the saved state runs the same setters as a start. */
Sections savedStateSections() {
    Sections sections = startUpSections();
    sections.erase(sections.begin()); // the queries of a start about the design
    // A rate is saved as it reads back, with half a step; rounding to 12 digits may give the previous step.
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

/** The design's parameters as written last, without those that a file does not hold: tables, the branches
 * silenced by a refused format, and the rates. */
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

class ConfigurationTest : public AppletTest {
protected:
    /** A handle on a board as start_up_writes.txt has it. */
    void start(Grabber& grabber, int flags = 0) {
        ASSERT_EQ(grabber.fitRam().bringUp(flags).error, FG_OK);
        grabber.clearLog();
    }
    void expectCode(Grabber& grabber, int result, int expected, int lastError) {
        EXPECT_EQ(result, expected);
        EXPECT_EQ(grabber.lastError(), lastError);
    }
    void load(Grabber& grabber, const std::string& text, int expected = FG_OK) {
        const std::string path = folder / "loaded.mcf";
        writeFile(path, text);
        expectCode(grabber, applet.Fg_loadConfig(grabber.fg(), path.c_str()), expected, expected);
    }
    File save(Grabber& grabber) {
        const std::string path = folder / "saved.mcf";
        expectCode(grabber, applet.Fg_saveConfig(grabber.fg(), path.c_str()), FG_OK, FG_OK);
        return File(fileLines(path));
    }
    /** A save without the rates, which are read back from counters that depend on other values. */
    void expectSaved(Grabber& grabber, File expected) {
        File saved = save(grabber);
        for (const char* rate : simulatorRates)
            expected.set(rate, saved.value(rate));
        ASSERT_EQ(saved.text(), expected.text());
    }

    /** Parameters that a save writes and a load does not read. */
    const Lines savedOnly = dataLines("saved_only.txt");
    const TemporaryFolder folder;
};

TEST_F(ConfigurationTest, StartValuesAreSavedByteForByte) {
    const std::string expected = fileBytes(std::string(TEST_DATA_DIR) + "/saved_state.mcf");
    Grabber grabber;
    start(grabber);
    for (const char* name : {"a.mcf", "a.mcf.bak"}) {
        expectCode(grabber, applet.Fg_saveConfig(grabber.fg(), (folder / name).c_str()), FG_OK, FG_OK);
        EXPECT_EQ(fileBytes(folder / name), expected);
    }
    // This setter calls the applet again through the runtime, inside its own call, and ignores the result.
    expectCode(grabber, grabber.setByName("FG_DEBUGSAVECONFIG", "'" + (folder / "nested.mcf") + "'"), FG_OK,
               FG_OK);
    EXPECT_EQ(fileBytes(folder / "nested.mcf"), expected);
    expectCode(grabber, grabber.setByName("FG_DEBUGSAVECONFIG", "'" + (folder / "none/a.mcf") + "'"), FG_OK,
               FG_OK);
}

TEST_F(ConfigurationTest, LoadRunsTheSettersInOrder) {
    File lean;
    for (const char* key : {"ConfigFileVersion", "Version", "LoadAppletId"})
        lean.without(key);
    for (const std::string& key : savedOnly)
        lean.without(key);
    lean.set("Hersteller", "'somebody'").set("AktivePort", "7"); // need only exist
    for (const File& file : {File(), lean}) {
        for (const int flags : {0, 1}) {
            Grabber grabber;
            start(grabber, flags);
            load(grabber, file.text());
            EXPECT_EQ(grabber.log(), joined(savedStateSections())) << flags;
        }
    }
}

TEST_F(ConfigurationTest, MissingKeyAffectsOnlyItsParameter) {
    Grabber grabber;
    start(grabber);
    load(grabber, File().text());
    int required = 0;
    for (const std::string& line : dataLines("saved_state.mcf")) {
        const std::string key = line.substr(0, line.find('='));
        if (!key.starts_with("FG_") || std::ranges::count(savedOnly, key) != 0) continue;
        ++required;
        grabber.clearLog();
        load(grabber, File().without(key).text(), FG_ERR_LOAD_CONFIG);
        EXPECT_EQ(grabber.log(), joined(savedStateSections(), key)) << key;
        expectSaved(grabber, File());
    }
    EXPECT_EQ(required, 99);
    // A number with "Error" in it counts as missing, a text does not.
    load(grabber, File().set("FG_WIDTH", "'Error'").text(), FG_ERR_LOAD_CONFIG);
    load(grabber, File().set("FG_DEBUGFILE", "'Error'").text());
    EXPECT_EQ(save(grabber).value("FG_DEBUGFILE"), "'Error'");
}

TEST_F(ConfigurationTest, SavedValuesAreRestored) {
    // Values as in a file, doubles with a point; some are refused, always or with these neighbours.
    Grabber to(0); // has what it loaded before
    const std::vector<Lines> settable = dataRows("settable_values.txt");
    std::mt19937 random(5);
    for (int round = 0; round < 200; ++round) {
        SCOPED_TRACE(round);
        Grabber from(0);
        File expected;
        for (int i = 0; i < 150; ++i) {
            const Lines& row = settable[random() % settable.size()];
            const std::string& value = row[1 + random() % (row.size() - 1)];
            if (from.setByName(row[0], value) != FG_OK) continue;
            expected.set(row[0], value.ends_with(".0") ? value.substr(0, value.size() - 2) : value);
        }
        const File saved = save(from);
        expected.set("FG_DIGIO_OUTPUT", File(saved).value("FG_DIGIO_OUTPUT")); // follows from the outputs
        expectSaved(from, expected);
        to.clearLog();
        load(to, saved.text());
        expectSaved(to, saved);
        EXPECT_EQ(designState(to), designState(from));
    }
}

TEST_F(ConfigurationTest, TextsAndDigitsAreTruncated) {
    Grabber grabber;
    start(grabber);
    const std::string text(3000, 'a');
    ASSERT_EQ(grabber.set(FG_SCALINGFACTOR_RED, 1.0 / 3), FG_OK);
    ASSERT_EQ(grabber.setByName("FG_LUT_CUSTOM_FILE", "'" + text + "'"), FG_OK);
    ASSERT_EQ(grabber.setByName("FG_DEBUGFILE", "'a=b'"), FG_OK);
    File saved = save(grabber);
    EXPECT_EQ(saved.value("FG_LUT_CUSTOM_FILE"), "'" + text.substr(0, 1023) + "'");
    load(grabber, saved.text());
    saved = save(grabber);
    EXPECT_EQ(saved.value("FG_LUT_CUSTOM_FILE"),
              "'" + text.substr(0, 255 - 20) + "'"); // the rest of its line
    EXPECT_EQ(saved.value("FG_DEBUGFILE"), "'a'");
    EXPECT_EQ(grabber.value<double>(FG_SCALINGFACTOR_RED), 0.333333333333);
}

TEST_F(ConfigurationTest, ThrowingGetterLosesOnlyItsLine) {
    Grabber grabber;
    start(grabber);
    Lines saved;
    for (vboard_access_function* thrower :
         {+[](void*) { throw -5; }, +[](void*) { throw std::bad_alloc(); }, +[](void*) { throw "text"; }}) {
        board.on_access(grabber.device, thrower, nullptr); // while the design is queried
        saved.push_back(save(grabber).text());
        board.on_access(grabber.device, nullptr, nullptr);
    }
    EXPECT_EQ(saved, Lines(3, saved[0]));
    EXPECT_THAT(saved[0], AllOf(HasSubstr("FG_WIDTH="), HasSubstr("FG_CUSTOM_SIGNAL_EVENT_1_POLARITY="),
                                Not(HasSubstr("FG_DEBUGFILE=")), Not(HasSubstr("FG_DIGIO_INPUT="))));
}

TEST_F(ConfigurationTest, ForeignFileChangesNothing) {
    Grabber grabber;
    start(grabber);
    const File file = File().set("FG_TIMEOUT", "5").set("FG_WIDTH", "512");
    for (const std::string& text :
         {File(file).without("Hersteller").text(),
          File(file).set("Hersteller", "'Typhoon'").text(), // the first line with "Typ" in it
          File(file).without("Typ").text(), File(file).set("Typ", "'Grab_TwinLaneLineColor2'").text(),
          File(file).set("Typ", "").text(), File(file).without("AktivePort").text(),
          file.text("\r\n"), // the header's own line is sought with its end
          std::string(), std::string(1 << 20, '\0')})
        load(grabber, text, FG_ERR_LOAD_CONFIG);
    EXPECT_EQ(grabber.log(), Lines{});
    EXPECT_EQ(save(grabber).text(), File().text());
}

TEST_F(ConfigurationTest, FullDiskIsReportedOnlyInTheLog) {
    const std::string full = folder / "full.mcf";
    ASSERT_EQ(symlink("/dev/full", full.c_str()), 0);
    AppletLog log(5);
    Grabber grabber;
    start(grabber);
    save(grabber);
    EXPECT_THAT(log.take(), Not(Contains(HasSubstr("saved.mcf"))));
    expectCode(grabber, applet.Fg_saveConfig(grabber.fg(), full.c_str()), FG_OK, FG_OK);
    EXPECT_THAT(log.take(), ElementsAre(AllOf(StartsWith(AppletLog::line(5, "")), HasSubstr(full))));
}

} // namespace
