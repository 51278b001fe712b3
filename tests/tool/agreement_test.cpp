// appletctl's answers on a state are consistent: undo restores it, lint and check agree, advice is accepted.

#include "support/appletctl_program.h"
#include "support/sanitizers.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <regex>
#include <set>
#include <span>
#include <sstream>
#include <utility>

namespace {

using namespace appletctl_program;

constexpr bool sanitized = underAddressSanitizer || underThreadSanitizer; // ten times slower

/** The output of a shell with these lines as input. */
Outcome shell(const Words& lines, const Words& options = {}, const Words& environment = {}) {
    const support::TemporaryFolder folder;
    std::string script;
    for (const std::string& line : lines)
        script += line + '\n';
    support::writeFile(folder / "script", script);
    Words words = options;
    words.insert(words.end(), {"shell", "-k"});
    return run(words, environment, (folder / "script").c_str());
}

struct Parameter {
    std::string name, kind;
    json values; // entries, or numbers at, near and beyond the limits
};

/** All parameters in a configuration file except measurements, and values to set. */
std::vector<Parameter> savedParameters(const std::string& file) {
    std::vector<Parameter> parameters;
    const std::string text = support::fileBytes(file);
    const std::regex measured(".*(_CLEAR|_PULSE_COUNT|_PERIOD_.*|_DIFFERENCE|_ACTIVE|_PASSIVE|_INPUT)");
    const json listed = document({"list"})["parameters"];
    for (const json& row : listed) {
        Parameter parameter{row["name"], row.value("kind", ""), json::array()};
        if (!contains(text, '\n' + parameter.name + '=') || std::regex_match(parameter.name, measured))
            continue;
        for (const json& entry : row.value("entries", json::array()))
            parameter.values.push_back(entry["value"]);
        // A refused mode changes the access of others: undo cannot restore such a state.
        if (parameter.name == "FG_CAMERASIMULATOR_SELECT_MODE") parameter.values.erase(0);
        const bool isNumber = parameter.kind == "UInt" || parameter.kind == "Double";
        if (isNumber && row.contains("minimum")) {
            const double low = row["minimum"], high = std::max(low, row["maximum"].get<double>());
            for (const double value : {low, low + 3, (low + high) / 4, high, high + 1, 100.003})
                parameter.values.push_back(parameter.kind == "UInt" ? json(static_cast<std::uint32_t>(value))
                                                                    : json(value));
        }
        if (!parameter.values.empty()) parameters.push_back(std::move(parameter));
    }
    return parameters;
}

class Chance {
public:
    std::size_t below(std::size_t end) { return m_engine() % end; }
    std::string assignment(const std::vector<Parameter>& parameters) {
        const Parameter& parameter = parameters[below(parameters.size())];
        return parameter.name + "=" + parameter.values[below(parameter.values.size())].dump();
    }

private:
    std::mt19937 m_engine{20}; // NOLINT: the same numbers in each run
};

/** The lines of a shell's output from one mark to the next. */
Words between(const std::string& text, const std::string& mark) {
    Words parts;
    for (std::size_t at = text.find(mark); at != std::string::npos;) {
        const std::size_t begin = at + mark.size();
        at = text.find(mark, begin);
        parts.push_back(text.substr(begin, at - begin));
    }
    return parts;
}

TEST(AppletctlUndo, RestoresValuesAccessAndDesignAfterAnySet) {
    const support::TemporaryFolder folder;
    const std::string plain = folder / "plain.mcf", stale = folder / "stale.mcf",
                      table = folder / "table.lut";
    run({"save", plain});
    run({"save", stale, "FG_LINEEXPOSURE=150", "FG_LINEPERIODE=100", "FG_CAMERASIMULATOR_LINERATE=5000"});
    run({"lut", "save", table, "FG_LUT_ENABLE=ON", "FG_PROCESSING_GAIN=2"});
    const std::string change = " FG_DIGIO_OUTPUT=2"; // so that each command has an effect
    const Words others = {"load " + plain + change,
                          "load " + stale + change,
                          "reset" + change,
                          "apply --yes FG_WIDTH=512 FG_LINETRIGGERMODE=ASYNC_TRIGGER" + change,
                          "lut load " + table + change,
                          "set FG_LUT_VALUE_RED[..]=7" + change,
                          "set FG_LINETRIGGERMODE=ASYNC_TRIGGER FG_LINE_DOWNSCALE=4 FG_SHAFTENCODERON=ON "
                          "FG_SHAFTENCODERMODE=FILTER_X4" +
                              change,
                          "set FG_LINEPERIODE=300 FG_LINEEXPOSURE=250 FG_LINEPERIODE=60" + change,
                          "set" + change + " FG_CAMERASIMULATOR_SELECT_MODE=FG_PIXEL_FREQUENCY"};
    const std::vector<Parameter> parameters = savedParameters(plain);
    ASSERT_GT(parameters.size(), 80u);
    Chance chance;
    const auto command = [&](bool isUndone) {
        if (chance.below(3) == 0) return others[chance.below(others.size() - (isUndone ? 0 : 1))];
        std::string line = "set" + change;
        for (std::size_t count = 1 + chance.below(3); count > 0; --count)
            line += " " + chance.assignment(parameters);
        return line;
    };
    const std::string mark = "FG_TSL_FILE = \"Grab_TwinLaneLineColor.tsl\"\n";
    const Words look = {"get FG_TSL_FILE", "list -f name,access,value --plain", "lut show --plain"};
    Words lines, commands;
    for (int i = 0; i < (sanitized ? 8 : 40); ++i) {
        lines.insert(lines.end(), {command(false), "set FG_DIGIO_OUTPUT=1"});
        lines.insert(lines.end(), look.begin(), look.end());
        commands.push_back(command(true));
        lines.insert(lines.end(), {commands.back(), "get FG_TSL_FILE", "undo"});
        lines.insert(lines.end(), look.begin(), look.end());
        lines.emplace_back("get FG_TSL_FILE");
    }
    const Outcome outcome = shell(lines, {}, {"VEXO_ENABLE_DLOOMA=1"});
    const Words parts = between(outcome.out, mark); // before, the command, after, the next command
    ASSERT_EQ(parts.size(), 4 * commands.size()) << outcome.err;
    for (std::size_t i = 0; i < commands.size(); ++i) {
        std::istringstream before(parts[4 * i]), after(parts[4 * i + 2]);
        for (std::string was, is; std::getline(before, was) && std::getline(after, is);)
            EXPECT_EQ(was, is) << commands[i];
    }
    EXPECT_FALSE(contains(outcome.err, "not as before")) << outcome.err;
}

/** The keys that a command reports as refused. */
std::set<std::string> refusedBy(const json& findings, const std::set<std::string>& kinds, const char* kind) {
    std::set<std::string> names;
    for (const json& finding : findings)
        if (kinds.contains(finding[kind]))
            names.insert(finding.contains("names") ? finding["names"][0] : finding["name"]);
    return names;
}

/**
 * A saved file in which a third of the numbers, from the first, second or third one on, have another text.
 * Of parameters with names that differ only in a digit, such as those of the outputs, only the first is edited:
 * for each refusal the commands search for accepted values.
 */
std::string spoilt(const std::string& saved, std::size_t third, const std::function<std::string()>& text) {
    std::istringstream lines(saved);
    const std::regex numberLine("(FG_\\w+=)[-0-9.]+;"), digit("[0-9]");
    std::set<std::string> families;
    std::string edited;
    for (std::string line; std::getline(lines, line); edited += line + '\n') {
        std::smatch parts;
        if (!std::regex_match(line, parts, numberLine)) continue;
        const std::size_t number = families.size();
        const bool isFirst = families.insert(std::regex_replace(parts.str(1), digit, "#")).second;
        if (isFirst && number % 3 == third) line = parts.str(1) + text() + ";";
    }
    EXPECT_GT(families.size(), 60u);
    return edited;
}

TEST(AppletctlLint, AgreesWithCheckOnWhatALoadRefuses) {
    const support::TemporaryFolder folder;
    const std::string file = folder / "edited.mcf";
    run({"save", file});
    const std::string saved = support::fileBytes(file);
    // A load reads a number from the beginning of any text, and whole ones in 32 bits.
    const Words odd = {
        "20000.5", "100.003",     "1e9",        "0.1",    "4294967295", "-0.5",
        "-3.7",    "2147483648",  "3000000000", "99999x", "0x7d0",      "1e-3",
        "+77777",  "-2147483649", "0099999",    "8,5",    "",           "18446744073709551615"};
    Chance chance;
    const auto oddText = [&] { return odd[chance.below(odd.size())]; };
    const std::pair<std::size_t, std::function<std::string()>> rounds[] = {
        {0, [] { return "-5"; }}, {0, oddText}, {1, [] { return "99999"; }}, {1, oddText}, {2, oddText}};
    std::size_t refusals = 0;
    for (const auto& [third, text] : std::span(rounds).first(sanitized ? 2 : std::size(rounds))) {
        support::writeFile(file, spoilt(saved, third, text));
        SCOPED_TRACE(support::fileBytes(file));
        const json linted = document({"lint", file})["findings"];
        const auto refused = refusedBy(document({"check", file})["findings"], {"refused", "kept"}, "kind");
        std::set<std::string> named;
        for (const json& finding : linted)
            named.insert(finding["names"].begin(), finding["names"].end());
        refusals += refused.size();
        for (const std::string& key : refused)
            EXPECT_TRUE(named.contains(key)) << "lint is silent on " << key;
        for (const std::string& key : refusedBy(linted, {"limits"}, "rule"))
            EXPECT_TRUE(refused.contains(key)) << "check is silent on " << key;
    }
    EXPECT_GT(refusals, sanitized ? 10u : 25u);
}

/** Every NAME=VALUE that an answer suggests. */
Words advisedIn(const json& answer) {
    Words advice;
    const std::regex assignment("FG_\\w+(\\[\\d+\\])?=[^\\s,;]+");
    const auto addFrom = [&](const std::string& text) {
        std::string line = "set";
        for (std::sregex_iterator at(text.begin(), text.end(), assignment), end; at != end; ++at)
            line += " " + at->str();
        if (line != "set") advice.push_back(line);
    };
    const json flat = answer.flatten();
    for (const auto& [path, value] : flat.items())
        if (std::regex_search(path, std::regex("/(advice|acceptedWith/\\d+|writableWith/\\d+)$")) &&
            value.is_string())
            addFrom(value);
    return advice;
}

TEST(AppletctlAdvice, IsAcceptedByTheSetters) {
    const support::TemporaryFolder folder;
    const Words situations = {
        "set FG_XOFFSET=64",
        "set FG_LINEEXPOSURE=150 FG_LINEPERIODE=100 FG_LINETRIGGERDELAY=99.9999",
        "set FG_LINETRIGGERMODE=ASYNC_TRIGGER FG_LINE_DOWNSCALE=2 FG_LINE_DOWNSCALEINIT=3",
        "set FG_STROBEPULSEDELAY=1024 FG_LUT_ENABLE=ON FG_PROCESSING_GAIN=4",
        "set FG_TRIGGERCAMERA_SOURCE=GND FG_EXSYNCON=OFF FG_IMGTRIGGERMODE=ASYNC_TRIGGER FG_IMGTRIGGERON=OFF",
        "set FG_CAMERASIMULATOR_ENABLE=1 FG_DEBUGOUTENABLE=ON FG_VANTAGEPOINT=FG_VANTAGEPOINT_BOTTOM_LEFT",
    };
    const Words questions = {"lint",
                             "set FG_WIDTH=20000",
                             "set FG_LINEEXPOSURE=1500",
                             "set FG_IMG_SELECT=3",
                             "set FG_CAMERASIMULATOR_SELECT_MODE=FG_LINERATE",
                             "set FG_CAMERASIMULATOR_LINERATE=1e9",
                             "limits FG_CAMERASIMULATOR_SELECT_MODE",
                             "set FG_CAMERASIMULATOR_WIDTH=294920",
                             "limits FG_WIDTH FG_LINEEXPOSURE FG_YOFFSET",
                             "why FG_SHAFTENCODERMODE FG_IMGTRIGGERINSRC FG_WIDTH=20000 FG_IMG_SELECT=9",
                             "plan FG_LINETRIGGERDELAY=1000"};
    Words states;
    for (const std::string& situation : situations)
        states.push_back(situation);
    for (const char* edit :
         {"FG_LINEEXPOSURE=0.1", "FG_LINEPERIODE=0.3", "FG_LINETRIGGERDELAY=-0.01", "FG_LINEPERIODE=3000",
          "FG_SCALINGFACTOR_RED=3.9999", "FG_WIDTH=1022", "FG_IMG_SELECT=200", "FG_PROCESSING_GAMMA=99999",
          "FG_LINE_DOWNSCALEINIT=9999", "FG_CAMERASIMULATOR_LINERATE=\"x\""}) {
        const std::string file = folder / ("edit" + std::to_string(states.size()) + ".mcf");
        run({"save", file});
        const std::string name = std::string(edit).substr(0, std::string(edit).find('='));
        support::writeFile(file,
                           std::regex_replace(support::fileBytes(file), std::regex("\n" + name + "=[^\n]*"),
                                              "\n" + std::string(edit) + ";"));
        states.push_back("load " + file);
    }
    std::size_t tried = 0;
    for (std::size_t i = 0; i < states.size(); i += sanitized ? 6 : 1) {
        const std::string& state = states[i];
        Words lines = {state};
        lines.insert(lines.end(), questions.begin(), questions.end());
        std::istringstream answers(shell(lines, {"--json"}).out);
        Words trials = {"get FG_WIDTH"}, asked;
        json answer;
        answers >> answer; // of the state itself
        for (const std::string& question : questions) {
            answers >> answer;
            for (const std::string& advice : advisedIn(answer)) {
                trials.insert(trials.end(), {"reset", state, advice});
                asked.push_back(question + ": " + advice);
            }
        }
        std::istringstream outcomes(shell(trials, {"--json"}).out);
        outcomes >> answer;
        for (const std::string& what : asked) {
            for (int step = 0; step < 3; ++step) // reset, state, advice
                outcomes >> answer;
            EXPECT_TRUE(answer["done"].get<bool>()) << state << "; " << what << "\n" << answer;
            ++tried;
        }
    }
    EXPECT_GT(tried, sanitized ? 10u : 100u);
}

} // namespace
