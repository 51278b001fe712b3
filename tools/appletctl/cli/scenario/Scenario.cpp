#include "appletctl/cli/scenario/Scenario.h"

#include "applet_tools/applet/Condition.h"
#include "applet_tools/applet/access_log.h"
#include "applet_tools/applet/assignments.h"
#include "applet_tools/applet/events.h"
#include "applet_tools/applet/files/ConfigurationFile.h"
#include "applet_tools/applet/published_limits.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "applet_tools/base/words.h"
#include "applet_tools/station/signals.h"
#include "appletctl/cli/execute.h"
#include "appletctl/cli/registry.h"
#include "appletctl/cli/scenario/station_steps.h"
#include "appletctl/cli/scenario/step_words.h"
#include "appletctl/cli/usage_errors.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/assignment_report.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <sstream>

namespace appletctl {
namespace {

int codeOf(const std::string& word) {
    if (const auto code = codeFrom(word)) return *code;
    throw UsageError(inQuotedWord(word) + " is neither a number nor a code such as FG_ERR_OUT_OF_RANGE");
}

// ---- Steps that check something.

void lookAtCondition(ScenarioRunner& runner, const Step& step) {
    requireMeasured(runner.context(), Condition(runner.parameters(), step.rest));
}

std::string expectValue(ScenarioRunner& runner, const Step& step) {
    const Condition condition(runner.parameters(), step.rest);
    Words are;
    const auto read = [&](const Target& target) {
        ReadResult reading = readValue(runner.instance(), target);
        are.push_back(target.name() + (reading.error == FG_OK
                                           ? " = " + valueWithUnit(*target.parameter, reading.value)
                                           : " cannot be read: " + codeInWords(reading.error)));
        return reading;
    };
    return condition.holds(read) ? "" : join(are, ", ");
}

void lookAtName(ScenarioRunner& runner, const Step& step) { runner.parameters().find(step.words[0]); }

void checkLimit(const Words& words) {
    checkOneOf(words[1], {"minimum", "maximum", "increment"});
    relationFrom(words[2]);
    numberFrom(words[3]);
}

std::string expectLimit(ScenarioRunner& runner, const Step& step) {
    const Parameter& parameter = runner.parameters().find(step.words[0]);
    nlohmann::ordered_json described;
    addDescription(described, parameter);
    const auto limit = described.find(step.words[1]);
    if (limit == described.end()) return parameter.name + " has no " + step.words[1];
    const bool holds = relationFrom(step.words[2]).holds(limit->get<double>() <=> numberFrom(step.words[3]));
    return holds ? "" : "the " + step.words[1] + " of " + parameter.name + " is " + limit->dump();
}

void checkAccess(const Words& words) { checkOneOf(words[1], {"ro", "rw", "rw+"}); }

std::string expectAccess(ScenarioRunner& runner, const Step& step) {
    const Parameter& parameter = runner.parameters().find(step.words[0]);
    const std::string access = accessWord(parameter);
    return access == step.words[1] ? "" : parameter.name + " is " + access;
}

void checkCode(const Words& words) { codeOf(words[0]); }

void lookAtAssignment(ScenarioRunner& runner, const Step& step) {
    parseAssignments(runner.parameters(), {step.words[1]});
}

std::string expectCode(ScenarioRunner& runner, const Step& step) {
    runner.forgetWrites();
    const Report report = reportAssignments(runner.context(), {step.words[1]});
    const auto& assignment = report.document["assignments"][0];
    const int code = assignment.contains("error") ? assignment["error"]["code"].get<int>() : int{FG_OK};
    if (code == codeOf(step.words[0])) return "";
    return code == FG_OK ? "it was accepted" : join(report.problems, "; ");
}

void lookAtWrite(ScenarioRunner& runner, const Step& step) { runner.requireKnownEnd(step.words[0]); }

void lookAtBoard(ScenarioRunner& runner, const Step&) { runner.board(); }

std::string expectWrite(ScenarioRunner& runner, const Step& step) {
    if (runner.findWrite(step.words[0], step.words[1])) return "";
    const Words left = runner.writesLeft();
    return left.empty() ? "nothing was written" : "the writes were: " + join(left, ", ");
}

std::string expectNoWrite(ScenarioRunner& runner, const Step&) {
    const Words left = runner.writesLeft();
    return left.empty() ? "" : "the writes were: " + join(left, ", ");
}

void checkEvent(const Words& words) {
    relationFrom(words[1]);
    numberFrom(words[2]);
}

std::uint64_t maskOf(ScenarioRunner& runner, const std::string& name) {
    runner.board();
    return eventMask(runner.instance(), name);
}

void lookAtEvent(ScenarioRunner& runner, const Step& step) { maskOf(runner, step.words[0]); }

std::string expectEvent(ScenarioRunner& runner, const Step& step) {
    const std::uint64_t mask = maskOf(runner, step.words[0]);
    const std::int64_t count = runner.instance().applet().Fg_getStatusEx(
        runner.instance().fg(), VBOARD_STATUS_EVENTS, static_cast<std::intptr_t>(mask), 0, nullptr);
    const bool holds =
        relationFrom(step.words[1]).holds(static_cast<double>(count) <=> numberFrom(step.words[2]));
    return holds ? "" : "it was raised " + numberText(count) + " times";
}

void checkExit(const Words& words) { wholeFrom<int>(words[0]); }

std::string runCommand(ScenarioRunner& runner, Request request, int expected) {
    runner.forgetWrites();
    if (runner.context().isTraced()) request.options.trace = false; // the trace of the run has its accesses
    const Report report = execute(request, runner.context());
    std::vector<std::string> traced;
    for (const auto& access : report.document.value("accesses", nlohmann::ordered_json::array()))
        traced.push_back(loggedLine(access));
    runner.addWrites(traced);
    if (report.exitCode == expected) return "";
    const std::string code = "it ended with " + numberText(static_cast<int>(report.exitCode));
    return report.problems.empty() ? code : code + ": " + join(report.problems, "; ");
}

std::string expectExit(ScenarioRunner& runner, const Step& step) {
    return runCommand(runner, step.request, wholeFrom<int>(step.words[0]));
}

// ---- Steps that act on the virtual board.

/** Access 0 with code 0 clears the failures; one of them alone would have no effect. */
void checkFailAccess(const Words& words) {
    const bool isNone = wholeFrom<unsigned>(words[0]) == 0;
    const bool isSuccess = codeOf(words[1]) == FG_OK;
    if (isNone != isSuccess)
        throw UsageError((isNone ? "accesses are counted from 1, so none would fail"
                                 : "the code 0 is that of success, so the access would not fail") +
                         std::string("; 'fail access 0 0' ends the failures"));
    if (words.size() > 2) checkOneOf(words[2], {"once", "always"});
}

std::string failAccess(ScenarioRunner& runner, const Step& step) {
    const bool isOnce = step.words.size() < 3 || step.words[2] == "once";
    runner.board().fail_access(runner.instance().device(), wholeFrom<unsigned>(step.words[0]),
                               codeOf(step.words[1]), isOnce ? VBOARD_ONCE : VBOARD_FROM_THEN_ON);
    return "";
}

void checkFailName(const Words& words) { codeOf(words[1]); }

/** The parameter of the design or register with this name, or the only one with a name that ends so. */
void lookAtDesignName(ScenarioRunner& runner, const Step& step) { runner.requireKnown(step.words[0]); }

std::string failName(ScenarioRunner& runner, const Step& step) {
    runner.failName(step.words[0], codeOf(step.words[1]));
    return "";
}

std::string removeParameter(ScenarioRunner& runner, const Step& step) {
    runner.removeFromDesign(step.words[0]);
    return "";
}

std::string raiseEvent(ScenarioRunner& runner, const Step& step) {
    if (runner.board().raise_event(runner.instance().device(), step.words[0].c_str()) == VBOARD_OK) return "";
    throw UsageError("the design has no event " + inQuotes(step.words[0]));
}

std::optional<double> notFiniteNumber(const std::string& word) {
    using Limits = std::numeric_limits<double>;
    if (word == "nan") return Limits::quiet_NaN();
    if (word == "inf") return Limits::infinity();
    if (word == "-inf") return -Limits::infinity();
    return std::nullopt;
}

[[noreturn]] void refuseType(const std::string& value, const std::string& full) {
    throw UsageError(inQuotes(value) + " is not a value of the type of " + full);
}

void lookAtPoke(ScenarioRunner& runner, const Step& step) {
    runner.requireKnown(step.words[0]);
    const std::string full = runner.designName(step.words[0]);
    const std::string& value = step.words[1];
    const auto kind = runner.kindOf(full);
    if (kind == REGISTER_KIND_STRING || wholeNumber<std::int64_t>(value) || floatingNumber(value) ||
        (kind == REGISTER_KIND_DOUBLE && notFiniteNumber(value)))
        return;
    refuseType(value, full);
}

std::string poke(ScenarioRunner& runner, const Step& step) {
    const auto& board = runner.board();
    LOOMdevice* device = runner.instance().device();
    const std::string full = runner.designName(step.words[0]);
    const char* name = full.c_str();
    const std::string& value = step.words[1];
    int result = VBOARD_UNKNOWN;
    if (const auto whole = wholeNumber<std::int64_t>(value))
        result = board.poke_int(device, name, *whole);
    else if (const auto number = floatingNumber(value))
        result = board.poke_double(device, name, *number);
    else if (const auto special = notFiniteNumber(value);
             special && runner.kindOf(full) == REGISTER_KIND_DOUBLE)
        result = board.poke_double(device, name, *special);
    if (result == VBOARD_UNKNOWN) result = board.poke_text(device, name, value.c_str());
    if (result == VBOARD_OK) return "";
    if (result != VBOARD_UNKNOWN) throw Failure("there is no memory left for " + inQuotes(value));
    runner.requireKnown(step.words[0]);
    refuseType(value, full);
}

constexpr StepKind kinds[] = {
    {"section", "TITLE", 1, 1, false, nullptr, nullptr, nullptr},
    {"expect value", "NAME OPERATOR VALUE [&& ...]", 1, -1, false, nullptr, lookAtCondition, expectValue},
    {"expect limit", "NAME minimum|maximum|increment OPERATOR NUMBER", 4, 4, false, checkLimit, lookAtName,
     expectLimit},
    {"expect access", "NAME ro|rw|rw+", 2, 2, false, checkAccess, lookAtName, expectAccess},
    {"expect code", "CODE NAME=VALUE", 2, 2, false, checkCode, lookAtAssignment, expectCode},
    {"expect write", "DESIGN_PARAMETER VALUE", 2, 2, false, nullptr, lookAtWrite, expectWrite},
    {"expect no write", "", 0, 0, false, nullptr, lookAtBoard, expectNoWrite},
    {"expect event", "EVENT OPERATOR NUMBER", 3, 3, false, checkEvent, lookAtEvent, expectEvent},
    {"expect exit", "CODE COMMAND...", 2, -1, true, checkExit, nullptr, expectExit},
    {"expect frame", "[PICTURE] FIELD OPERATOR VALUE", 3, 4, false, checkFrame, lookAtBoard, expectFrame},
    {"expect signal", "SIGNAL period|width|gap|rate|pulses|level OPERATOR VALUE", 4, 4, false, checkSignal,
     lookAtBoard, expectSignal},
    {"expect pixel", "X,Y OPERATOR BLUE,GREEN,RED", 3, 3, false, checkPixel, lookAtBoard, expectPixel},
    {"expect loss", "LOSS OPERATOR NUMBER", 3, 3, false, checkLoss, lookAtBoard, expectLoss},
    {"advance", "TIME", 1, 1, false, checkAdvance, lookAtBoard, advanceStation},
    {"wave", "INPUT WAVE", 2, 2, false, checkWave, lookAtBoard, connectStationWave},
    {"station", "FILE", 1, 1, false, checkStation, lookAtBoard, setUpStationFile},
    {"camera", "off | WIDTH [exposure TIME] [rate HZ]", 1, 5, false, checkCamera, lookAtBoard, attachCamera},
    {"belt", "SPEED[..SPEED][/TIME][,...] [encoder INPUT,INPUT STEP] [barrier INPUT AHEAD]", 1, 7, false,
     checkBelt, lookAtBoard, startBelt},
    {"scene", "chart|FILE [pixel LENGTH] [object PLACE,LENGTH]...", 1, -1, false, checkScene, lookAtBoard,
     putScene},
    {"acquire", "start|stop", 1, 1, false, checkAcquire, lookAtBoard, acquire},
    {"grab", "[N] [FILE] [within TIME]", 0, 4, false, checkGrab, lookAtBoard, grab},
    {"fail access", "K CODE [once|always]", 2, 3, false, checkFailAccess, lookAtBoard, failAccess},
    {"fail name", "DESIGN_PARAMETER CODE", 2, 2, false, checkFailName, lookAtDesignName, failName},
    {"lack", "DESIGN_PARAMETER", 1, 1, false, nullptr, lookAtDesignName, removeParameter},
    {"raise", "EVENT", 1, 1, false, nullptr, lookAtEvent, raiseEvent},
    {"poke", "DESIGN_PARAMETER VALUE", 2, 2, false, nullptr, lookAtPoke, poke},
};

std::string usageOf(const StepKind& kind) {
    std::string usage = std::string(kind.name) + (*kind.form != '\0' ? " " : "") + kind.form;
    constexpr std::string_view anyLoss = "LOSS";
    if (const std::size_t position = usage.find(anyLoss); position != std::string::npos)
        usage.replace(position, anyLoss.size(), join(lossNames(), "|"));
    return usage;
}

std::size_t wordCount(const StepKind& kind) {
    return static_cast<std::size_t>(std::ranges::count(std::string_view(kind.name), ' ')) + 1;
}

bool beginsWith(const Words& words, const StepKind& kind) {
    const std::size_t count = wordCount(kind);
    return words.size() >= count &&
           join(Words(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(count)), " ") == kind.name;
}

/** The kinds of steps with names similar to the beginning of the words; empty if there are none. */
Words nearestKinds(const Words& words) {
    std::size_t least = mostTypos(words.front());
    Words nearest;
    for (const StepKind& kind : kinds) {
        const std::size_t count = wordCount(kind);
        if (count > words.size()) continue;
        const auto end = words.begin() + static_cast<std::ptrdiff_t>(count);
        const std::size_t distance = editDistance(join(Words(words.begin(), end), " "), kind.name);
        if (distance > least) continue;
        if (distance < least) nearest.clear();
        least = distance;
        nearest.push_back("'" + std::string(kind.name) + "'");
    }
    return nearest;
}

/** Appends a reference to the list of steps. */
std::string withSteps(const std::string& why) {
    return why + (why.ends_with('?') ? " See" : "; see") + " 'appletctl run --help'";
}

/** The kind of the step; null for a command. Throws UsageError for an incomplete kind. */
const StepKind* kindOf(const Words& words) {
    bool isHalf = false;
    for (const StepKind& kind : kinds) {
        if (beginsWith(words, kind)) return &kind;
        isHalf |= std::string_view(kind.name).starts_with(words.front() + " ");
    }
    if (!isHalf) return nullptr;
    throw UsageError(withSteps("the words after " + inQuotedWord(words.front()) + " are unknown" +
                               didYouMean(nearestKinds(words))));
}

Request requestOf(const Words& words, Options options) {
    options.quiet = true;
    options.json = false;
    Request request = parseLine(words, options);
    if (request.command != nullptr) return request;
    const std::string why =
        request.outcome.problems.empty() ? "this asks for help" : request.outcome.problems.front();
    const bool isCommand = std::ranges::any_of(
        allCommands(), [&](const Command* command) { return words.front() == command->name; });
    const std::string near = isCommand ? "" : didYouMean(nearestKinds(words));
    throw UsageError(
        withSteps(near.empty() ? why : "there is no step or command " + inQuotedWord(words.front()) + near));
}

Step parseStep(const std::string& text, const WordLine& line, const Options& options) {
    if (line.isOpen) throw UsageError(unfinishedLine);
    if (text.find('\0') != std::string::npos)
        throw UsageError("the line has a NUL character, where a text would end");
    Step step{.line = 0,
              .section = {},
              .text = toUtf8(textFrom(text, line, 0)),
              .kind = kindOf(line.words),
              .words = {},
              .rest = {},
              .request = {}};
    if (step.kind == nullptr) {
        step.request = requestOf(line.words, options);
        return step;
    }
    const StepKind& kind = *step.kind;
    const std::size_t own = wordCount(kind);
    step.words.assign(line.words.begin() + static_cast<std::ptrdiff_t>(own), line.words.end());
    step.rest = textFrom(text, line, own);
    const int count = static_cast<int>(step.words.size());
    if (count < kind.fewest || (kind.most >= 0 && count > kind.most))
        throw UsageError("the form is '" + usageOf(kind) + "'");
    if (kind.check != nullptr) kind.check(step.words);
    if (kind.isForCommand) step.request = requestOf(behindFirst(step.words), options);
    return step;
}

} // namespace

std::string scenarioSteps() {
    std::string text =
        "Steps, one per line; # begins a comment:\n  COMMAND with its words, which must succeed\n";
    for (const StepKind& kind : kinds)
        text += "  " + usageOf(kind) + '\n';
    return text;
}

namespace {

[[noreturn]] void refuseLine(const std::string& file, std::size_t number, const std::string& text,
                             const UsageError& error) {
    throw UsageError(toUtf8(file) + ":" + numberText(number) + ": " + shortened(printable(text), 200) + ": " +
                     error.what());
}

} // namespace

void checkSteps(ScenarioRunner& runner, const std::string& file, const std::vector<Step>& steps) {
    for (const Step& step : steps)
        try {
            if (step.kind != nullptr && step.kind->look != nullptr) step.kind->look(runner, step);
        } catch (const UsageError& error) {
            refuseLine(file, step.line, step.text, error);
        }
}

std::vector<Step> readScenario(const std::string& file, const Options& options) {
    const std::string text = requiredTextOfFile(file);
    std::vector<Step> steps;
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF"; // some editors write one
    std::istringstream lines(text.starts_with(byteOrderMark) ? text.substr(byteOrderMark.size()) : text);
    std::string section, content;
    for (std::size_t number = 1; std::getline(lines, content); ++number) {
        const WordLine line = splitLine(content);
        if (line.words.empty()) continue;
        try {
            Step step = parseStep(content, line, options);
            step.line = number;
            if (step.kind != nullptr && step.kind->run == nullptr) {
                section = toUtf8(step.words.front());
                continue;
            }
            step.section = section;
            steps.push_back(std::move(step));
        } catch (const UsageError& error) {
            refuseLine(file, number, textFrom(content, line, 0), error);
        }
    }
    if (steps.empty()) throw UsageError(shownFile(file) + " has no steps");
    return steps;
}

std::string runStep(ScenarioRunner& runner, const Step& step) {
    try {
        if (step.kind != nullptr) return step.kind->run(runner, step);
        return runCommand(runner, step.request, exitDone);
    } catch (const std::exception& error) {
        return error.what();
    }
}

} // namespace appletctl
