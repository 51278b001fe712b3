// Settings: each file of tests/data/settings is a list of commands with the expected answers. The answer to a
// set is its code, all design accesses up to its last write, and every other change that a client
// can see: values and published limits. SETTINGS_RENEW=1 writes the files again from the library's
// answers; review the difference.
//
//   restart [NAME VALUE]...     a new handle on a board with its start values, but for these of the design
//   restart failing NAME CODE   the same with failing accesses of a parameter
//   poke NAME VALUE             changes a value of the design; a text in quotes
//   then NAME VALUE             the value that the next read of it leaves
//   fail NAME CODE              accesses of a parameter of the design fail; 0: no longer
//   fail K CODE                 the K-th access of the next set fails
//   lack NAME, alias NEW NAME   from the next restart on; restore: takes both back
//   mark                        published maxima that can move become 7777, to see which ones a set refreshes
//   set NAME VALUE...           sets the values one after the other. 1.5+ is the next number above 1.5, 1.5- the one
//                               below; max, max+4, max- count from the published maximum; most is the largest
//                               multiple in it
//   file NAME VALUE             loads the present state, then with this value: which accesses came (+) and went (-)
//   saved NAME...               the lines of a save
//   write FILE LINE...          makes a file; a line 0..9,7; is ten lines, 0,7; to 9,7;
//   same NAME                   sets the present value again
//   take NAME VALUE...          only which of the values are taken
//   range NAME FIRST LAST       sets all whole numbers of the range, and some beyond it
//   get NAME..., limits NAME    values; published limits
//   table NAME CONTENT          elements of a table, as the applet and the board have them
//   quiet on|off, short on|off  no answers; answers without the accesses
#include "support/applet_fixture.h"
#include "support/temporary_folder.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <optional>
#include <sstream>

namespace {

using namespace support;

constexpr std::uint32_t mark = 7777;
constexpr std::uint32_t tableSize = 16384;
constexpr const char* movingMaxima[] = {"FG_SENSORWIDTH",
                                        "FG_SENSORHEIGHT",
                                        "FG_WIDTH",
                                        "FG_HEIGHT",
                                        "FG_XOFFSET",
                                        "FG_YOFFSET",
                                        "FG_CAMERASIMULATOR_WIDTH",
                                        "FG_CAMERASIMULATOR_LINE_GAP",
                                        "FG_CAMERASIMULATOR_HEIGHT",
                                        "FG_CAMERASIMULATOR_FRAME_GAP",
                                        "FG_CAMERASIMULATOR_LINERATE",
                                        "FG_CAMERASIMULATOR_FRAMERATE",
                                        "FG_DEBUGOUTPIXEL"};

/** Leaves out the name of the design's image path. */
std::string designName(const std::string& name) {
    const bool isFull = name.starts_with("Device") || name.starts_with("FG_CAM");
    return isFull ? name : "Device1_Process0_" + name;
}

std::string shortened(std::string line) {
    for (const char* prefix : {"Device1_Process0_", "Device1_"})
        if (const auto at = line.find(prefix); at != std::string::npos) line.erase(at, std::strlen(prefix));
    return line;
}

template <typename Number> std::string numberText(Number value) {
    std::array<char, 32> digits{};
    return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr};
}

/** "1.5", and "1.5+" and "1.5-", its neighbours. */
double number(const std::string& text) {
    const double value = std::strtod(text.c_str(), nullptr);
    constexpr double infinity = std::numeric_limits<double>::infinity();
    if (text.ends_with('+')) return std::nextafter(value, infinity);
    return text.ends_with('-') ? std::nextafter(value, -infinity) : value;
}

bool isArray(const RegisterInfo& record) {
    return record.kind == REGISTER_KIND_UINT_FIELD || record.kind == REGISTER_KIND_UINT64_FIELD;
}

/** Words of a line; a text in single quotes is one word. */
Lines wordsOf(const std::string& line) {
    Lines words;
    std::istringstream stream(line);
    for (std::string word; stream >> word;) {
        while (word.front() == '\'' && (word.size() == 1 || word.back() != '\'')) {
            std::string more;
            if (!std::getline(stream, more, '\'')) break;
            word += more + '\'';
        }
        words.push_back(word);
    }
    return words;
}

/** Expands a word of the command `write` to lines of the file. */
std::string fileLinesOf(const std::string& word) {
    const std::size_t dots = word.find("..");
    if (dots == std::string::npos) return word + '\n';
    std::string lines;
    for (int i = std::stoi(word); i <= std::stoi(word.substr(dots + 2)); ++i)
        lines += std::to_string(i) + word.substr(word.find(',')) + '\n';
    return lines;
}

class Settings : public ParameterTest, public testing::WithParamInterface<std::string> {
protected:
    void SetUp() override { std::filesystem::current_path(m_folder / "."); }
    void TearDown() override {
        std::filesystem::current_path(m_before);
        ParameterTest::TearDown();
    }
    /** Of all records with a value, in the order of the tree. */
    std::vector<RegisterInfo*> records() {
        std::vector<RegisterInfo*> found;
        forEachRecord(tree(), [&](RegisterInfo& record) { found.push_back(&record); });
        return found;
    }

    RegisterInfo* recordOf(const std::string& name) {
        return record(applet.Fg_getParameterIdByName(grabber.fg(), name.c_str()));
    }

    /** Calls `use` with a number of the record's type. */
    template <typename Use> static auto withNumber(const RegisterInfo& record, Use use) {
        switch (record.kind) {
        case REGISTER_KIND_DOUBLE:
            return use(double{});
        case REGISTER_KIND_INT:
            return use(std::int32_t{});
        case REGISTER_KIND_INT64:
            return use(std::int64_t{});
        case REGISTER_KIND_UINT64:
            return use(std::uint64_t{});
        default:
            return use(std::uint32_t{});
        }
    }
    /** The value as text, or the code of the failure. */
    std::string read(const RegisterInfo& record) {
        if (record.kind == REGISTER_KIND_STRING) {
            std::array<char, 8192> buffer{};
            const int code = grabber.get(record.id, buffer.data(), 0, FG_PARAM_TEXT);
            return code == FG_OK ? "'" + std::string(buffer.data()) + "'" : std::to_string(code);
        }
        return withNumber(record, [&](auto value) {
            const int code = grabber.get(record.id, &value, 0, tagOf<decltype(value)>);
            return code == FG_OK ? numberText(value) : "fails with " + std::to_string(code);
        });
    }
    int write(const RegisterInfo& record, const std::string& value) {
        if (record.kind == REGISTER_KIND_STRING) return setText(record.id, value.substr(1, value.size() - 2));
        return withNumber(record, [&](auto native) {
            using Native = decltype(native);
            if constexpr (std::is_floating_point_v<Native>)
                return set(record.id, number(value));
            else
                return set(record.id, static_cast<Native>(value.starts_with('-')
                                                              ? std::stoll(value)
                                                              : static_cast<long long>(std::stoull(value))));
        });
    }
    static std::string limits(const RegisterInfo& record) {
        const auto inWords = [](const auto& area) {
            return numberText(area.minimum) + " to " + numberText(area.maximum);
        };
        if (record.kind == REGISTER_KIND_DOUBLE) return inWords(record.value.f64);
        if (record.kind == REGISTER_KIND_UINT) return inWords(record.value.u32);
        return record.kind == REGISTER_KIND_INT ? inWords(record.value.i32) : "";
    }
    /** All that a client can read without side effects: values, limits and access by name. */
    using Seen = std::map<std::string, std::string>;
    Seen look() {
        board.log_kinds(grabber.device, 0);
        Seen seen;
        for (const RegisterInfo* record : m_records) {
            const std::string name = record->name;
            const bool readsEatFlags = record->id == FG_OVERFLOW || record->id == FG_FILLLEVEL ||
                                       record->id == FG_CAMSTATUS_EXTENDED;
            if (!isArray(*record) && !readsEatFlags) seen[name + " reads"] = read(*record);
            seen[name + " limits"] = limits(*record);
            seen[name + " access"] = std::to_string(record->access);
        }
        board.log_kinds(grabber.device, VBOARD_SET | VBOARD_GET);
        return seen;
    }

    void answer(const std::string& line) {
        if (!m_isQuiet) m_answers.push_back("  " + line);
    }
    void answerAccesses(const Lines& lines) {
        for (const std::string& line : lines)
            if (!m_isShort) answer("  " + shortened(line));
    }

    /** The value for a word of a command. */
    static std::string resolved(const RegisterInfo& record, const std::string& word) {
        const auto& limits = record.value.u32;
        if (word == "most") return std::to_string(limits.maximum / limits.increment * limits.increment);
        if (!word.starts_with("max")) return word;
        const std::string rest = word.substr(3);
        if (record.kind == REGISTER_KIND_DOUBLE)
            return numberText(number(numberText(record.value.f64.maximum) + rest));
        const auto offset = rest.empty() ? 0 : std::stoi(rest);
        return std::to_string(limits.maximum + static_cast<std::uint32_t>(offset));
    }

    /** One set: the value, its code, the accesses, and the changes. */
    void setOne(RegisterInfo& record, const std::string& word) {
        const std::string value = resolved(record, word);
        const Seen before = look();
        clearLog();
        if (m_failing) board.fail_access(grabber.device, m_failing->first, m_failing->second, VBOARD_ONCE);
        const int code = write(record, value);
        if (m_failing) board.fail_access(grabber.device, 0, 0, VBOARD_ONCE);
        m_failing.reset();
        EXPECT_EQ(lastError(), code) << record.name;
        const Lines accesses = logToLastWrite();
        const Seen after = look();
        answer(value + (code == FG_OK ? "" : " refused " + std::to_string(code)));
        answerAccesses(accesses);
        const std::string own = std::string(record.name) + " reads";
        for (const auto& [what, text] : after)
            if (what != own && before.at(what) != text) answer("  " + what + ' ' + text);
        if (after.at(own) != (code == FG_OK ? value : before.at(own)))
            answer("  " + own + ' ' + after.at(own));
    }

    void setRange(RegisterInfo& record, std::int64_t first, std::int64_t last) {
        std::map<int, Lines> refused;
        const auto tryOne = [&](const std::string& value) {
            clearLog();
            const int code = write(record, value);
            const Lines accesses = logToLastWrite();
            if (code != FG_OK) {
                EXPECT_EQ(accesses, Lines{}) << record.name << '=' << value;
                refused[code].push_back(value);
                return;
            }
            answer(value);
            answerAccesses(accesses);
        };
        for (std::int64_t value = first; value <= last; ++value)
            tryOne(std::to_string(value));
        for (const std::int64_t value : {first + 0x10000, std::int64_t{0x80000000}, std::int64_t{0xffffffff}})
            tryOne(std::to_string(value));
        for (const auto& [code, values] : refused)
            answer(std::to_string(values.size()) + " others refused " + std::to_string(code));
    }

    Lines accessesOfALoad() {
        clearLog();
        EXPECT_EQ(applet.Fg_loadConfig(grabber.fg(), "state.mcf"), FG_OK);
        return log();
    }
    void loadWith(const std::string& name, const std::string& value) {
        ASSERT_EQ(applet.Fg_saveConfig(grabber.fg(), "state.mcf"), FG_OK);
        Lines went = accessesOfALoad();
        std::string text = fileBytes("state.mcf");
        const std::size_t begin = text.find("\n" + name + "=") + name.size() + 2;
        writeFile("state.mcf", text.replace(begin, text.find(';', begin) - begin, value));
        for (const std::string& line : accessesOfALoad())
            if (const auto usual = std::ranges::find(went, line); usual != went.end())
                went.erase(usual);
            else
                answer("+ " + shortened(line));
        for (const std::string& line : went)
            answer("- " + shortened(line));
    }

    void showTable(const RegisterInfo& record, const std::string& content) {
        const auto show = [&](const std::string& title, const std::vector<std::uint32_t>& table) {
            std::uint64_t hash = 14695981039346656037u;
            std::string line = title + ':';
            for (std::uint32_t i = 0; i < table.size(); ++i) {
                hash = (hash ^ table[i]) * 1099511628211u;
                if (i % 2048 == 0 || i + 1 == table.size()) line += ' ' + std::to_string(table[i]);
            }
            answer(line + " hash " + std::to_string(hash));
        };
        std::vector<std::uint32_t> table(tableSize);
        FieldParameterAccess run{FG_PARAM_UINT32, 0, tableSize, table.data()};
        EXPECT_EQ(grabber.get(record.id, &run, 0, FG_PARAM_FIELD_ACCESS), FG_OK);
        show("applet", table);
        EXPECT_EQ(board.peek_field(grabber.device, designName(content).c_str(), 0, tableSize, table.data()),
                  VBOARD_OK);
        show("board", table);
    }

    void pokeOne(const std::string& name, const std::string& value) {
        const std::string full = designName(name);
        const bool isText = value.starts_with('\'');
        const bool isFraction = !isText && value.find('.') != std::string::npos;
        const int code =
            isText ? board.poke_text(grabber.device, full.c_str(), value.substr(1, value.size() - 2).c_str())
            : isFraction ? board.poke_double(grabber.device, full.c_str(), number(value))
                         : board.poke_int(grabber.device, full.c_str(), std::stoll(value));
        ASSERT_EQ(code, VBOARD_OK) << name;
    }

    void restartWith(const Lines& words) {
        restart([&] {
            if (words.size() > 1 && words[1] == "failing")
                grabber.fail(designName(words.at(2)), std::stoi(words.at(3)));
            else
                for (std::size_t i = 1; i + 1 < words.size(); i += 2)
                    pokeOne(words[i], words[i + 1]);
        });
        m_records = records();
    }

    void markMaxima() {
        for (const char* moving : movingMaxima) {
            RegisterInfo& record = *recordOf(moving);
            if (record.kind == REGISTER_KIND_DOUBLE)
                record.value.f64.maximum = mark;
            else
                record.value.u32.maximum = mark;
        }
    }

    void showSaved(const Lines& keys) {
        ASSERT_EQ(applet.Fg_saveConfig(grabber.fg(), "state.mcf"), FG_OK);
        for (const std::string& line : fileLines("state.mcf"))
            if (std::ranges::count(keys, line.substr(0, line.find('='))) != 0) answer(line);
    }

    void getOne(const std::string& name) {
        clearLog();
        const std::string value = read(*recordOf(name));
        answer(value);
        answerAccesses(log());
    }

    /** The words of a line, the command first. */
    using Run = void (*)(Settings& settings, const Lines& words);

    static const std::map<std::string, Run>& commands() {
        static const std::map<std::string, Run> rows = {
            {"quiet",
             [](Settings& settings, const Lines& words) { settings.m_isQuiet = words.at(1) == "on"; }},
            {"short",
             [](Settings& settings, const Lines& words) { settings.m_isShort = words.at(1) == "on"; }},
            {"restore", [](Settings& settings, const Lines&) { settings.board.restore_design(); }},
            {"lack",
             [](Settings& settings, const Lines& words) {
                 ASSERT_EQ(settings.board.lack_parameter(designName(words.at(1)).c_str(), true), VBOARD_OK);
             }},
            {"alias",
             [](Settings& settings, const Lines& words) {
                 ASSERT_EQ(settings.board.alias_parameter(designName(words.at(1)).c_str(),
                                                          designName(words.at(2)).c_str()),
                           VBOARD_OK);
             }},
            {"restart", [](Settings& settings, const Lines& words) { settings.restartWith(words); }},
            {"poke",
             [](Settings& settings, const Lines& words) { settings.pokeOne(words.at(1), words.at(2)); }},
            {"then",
             [](Settings& settings, const Lines& words) {
                 ASSERT_EQ(settings.board.poke_after_read(settings.grabber.device,
                                                          designName(words.at(1)).c_str(),
                                                          std::stoll(words.at(2))),
                           VBOARD_OK);
             }},
            {"fail",
             [](Settings& settings, const Lines& words) {
                 const int code = std::stoi(words.at(2));
                 if (std::isdigit(words.at(1).at(0)) != 0)
                     settings.m_failing = {std::stoi(words.at(1)), code};
                 else
                     settings.grabber.fail(designName(words.at(1)), code);
             }},
            {"mark", [](Settings& settings, const Lines&) { settings.markMaxima(); }},
            {"set",
             [](Settings& settings, const Lines& words) {
                 for (std::size_t i = 2; i < words.size(); ++i)
                     settings.setOne(*settings.recordOf(words.at(1)), words[i]);
             }},
            {"same",
             [](Settings& settings, const Lines& words) {
                 RegisterInfo& record = *settings.recordOf(words.at(1));
                 settings.setOne(record, settings.read(record));
             }},
            {"file",
             [](Settings& settings, const Lines& words) { settings.loadWith(words.at(1), words.at(2)); }},
            {"saved", [](Settings& settings, const Lines& words) { settings.showSaved(words); }},
            {"write",
             [](Settings&, const Lines& words) {
                 std::string text;
                 for (std::size_t i = 2; i < words.size(); ++i)
                     text += fileLinesOf(words[i]);
                 writeFile(words.at(1), text);
             }},
            {"take",
             [](Settings& settings, const Lines& words) {
                 std::string taken = "taken:";
                 for (std::size_t i = 2; i < words.size(); ++i)
                     if (settings.write(*settings.recordOf(words.at(1)), words[i]) == FG_OK)
                         taken += ' ' + words[i];
                 settings.answer(taken);
             }},
            {"limits", [](Settings& settings,
                          const Lines& words) { settings.answer(limits(*settings.recordOf(words.at(1)))); }},
            {"range",
             [](Settings& settings, const Lines& words) {
                 settings.setRange(*settings.recordOf(words.at(1)), std::stoll(words.at(2)),
                                   std::stoll(words.at(3)));
             }},
            {"get",
             [](Settings& settings, const Lines& words) {
                 for (std::size_t i = 1; i < words.size(); ++i)
                     settings.getOne(words[i]);
             }},
            {"table",
             [](Settings& settings, const Lines& words) {
                 settings.showTable(*settings.recordOf(words.at(1)), words.at(2));
             }},
        };
        return rows;
    }

    void run(const Lines& words) {
        const auto command = commands().find(words.at(0));
        ASSERT_NE(command, commands().end()) << "unknown command " << words.at(0);
        command->second(*this, words);
    }

    const std::filesystem::path m_before = std::filesystem::current_path();
    const TemporaryFolder m_folder;
    std::vector<RegisterInfo*> m_records;
    std::optional<std::pair<unsigned, int>> m_failing;
    bool m_isQuiet = false, m_isShort = false;
    Lines m_answers;
};

std::vector<std::string> files() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(TEST_DATA_DIR "/settings"))
        names.push_back(entry.path().stem());
    std::ranges::sort(names);
    return names;
}

TEST_P(Settings, AnswerAsListed) {
    const std::string file = "settings/" + GetParam() + ".txt";
    const Lines listed = dataLines(file);
    board.log_kinds(grabber.device, VBOARD_SET | VBOARD_GET);
    m_records = records();
    for (const std::string& line : listed) {
        if (line.starts_with(' ')) continue; // an answer
        m_answers.push_back(line);
        if (line.empty() || line[0] == '#') continue;
        ASSERT_NO_FATAL_FAILURE(run(wordsOf(line))) << line;
    }
    if (std::getenv("SETTINGS_RENEW") != nullptr) {
        std::ofstream out(std::string(TEST_DATA_DIR) + '/' + file);
        for (const std::string& line : m_answers)
            out << line << '\n';
        return;
    }
    std::string command;
    for (std::size_t i = 0; i < std::max(listed.size(), m_answers.size()); ++i) {
        const std::string expected = i < listed.size() ? listed[i] : "(the end)";
        const std::string answered = i < m_answers.size() ? m_answers[i] : "(the end)";
        if (!answered.starts_with(' ')) command = answered;
        ASSERT_EQ(answered, expected) << file << ':' << i + 1 << ", after: " << command;
    }
}

INSTANTIATE_TEST_SUITE_P(, Settings, testing::ValuesIn(files()), [](const auto& file) { return file.param; });

} // namespace
