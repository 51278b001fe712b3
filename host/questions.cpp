// Questions that the scratch board answers.

#include "applet_tools/answers/answer_rows.h"
#include "applet_tools/answers/lint/lint.h"
#include "applet_tools/answers/loading/loading.h"
#include "applet_tools/answers/plan.h"
#include "applet_tools/applet/assignments.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "host/Station.h"

#include <algorithm>
#include <optional>

using namespace host;
using nlohmann::ordered_json;

struct vexo_answer {
    std::string text, json;
};

namespace {

using applet_tools::Words;

std::string linesOf(const std::string& subject, const applet_tools::Rows& rows) {
    std::size_t width = 0;
    for (const auto& row : rows)
        width = std::max(width, row.front().size());
    std::string text = subject;
    for (const auto& row : rows)
        text += "\n  " + row.front() + std::string(width + 2 - row.front().size(), ' ') + row.back();
    return text;
}

/** Answers a question with a text and a document. */
template <typename Ask> int answered(vexo_station* station, vexo_answer** answer, const Ask& ask) noexcept {
    if (answer == nullptr) return failNull("the pointer for the answer");
    return onLocked(station, [&](vexo_station& own) {
        auto made = std::make_unique<vexo_answer>();
        ordered_json document = ordered_json::object();
        ask(own, made->text, document);
        made->json = document.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
        *answer = made.release();
    });
}

/** Checks the names before the scratch board is asked, which does not distinguish an unknown name from other errors. */
const Words& read(vexo_station& station, const Words& words) {
    const applet_tools::ParameterList& parameters = station.live.parameters();
    for (const std::string& word : words)
        if (applet_tools::isAssignment(word))
            parseAssignments(parameters, {word});
        else
            findTarget(parameters, word);
    return words;
}

Words with(vexo_station& station, const char* assignments) {
    if (assignments == nullptr) return {};
    const applet_tools::WordLine line = applet_tools::splitLine(assignments);
    if (line.isOpen)
        throw applet_tools::UsageError(applet_tools::inQuotedWord(assignments) + ": " +
                                       applet_tools::unfinishedLine);
    return read(station, line.words);
}

/** The accepted range; empty if it is not a number, or no number is accepted. */
std::optional<vexo_range> rangeOf(const applet_tools::AcceptedValues& answer) {
    if (!answer.range) return std::nullopt;
    return vexo_range{.minimum = asDouble(answer.range->minimum),
                      .maximum = asDouble(answer.range->maximum),
                      .step = static_cast<double>(answer.range->step)};
}

} // namespace

const char* vexo_answer_text(const vexo_answer* answer) {
    return answer != nullptr ? answer->text.c_str() : "";
}
const char* vexo_answer_json(const vexo_answer* answer) {
    return answer != nullptr ? answer->json.c_str() : "{}";
}
void vexo_answer_free(vexo_answer* answer) { delete answer; }

int vexo_ask_limits(vexo_station* station, const char* name, const char* assumed, vexo_range* range,
                    vexo_answer** answer) {
    if (name == nullptr) return failNull("the name");
    if (applet_tools::isAssignment(name))
        return guarded([&]() -> int {
            throw Error(VEXO_ERR_VALUE,
                        applet_tools::inQuotedWord(name) +
                            " is an assignment, but a name is expected; what is assumed to be "
                            "set is an argument of its own");
        });
    std::optional<vexo_range> found;
    const int code =
        answered(station, answer, [&](vexo_station& own, std::string& text, ordered_json& document) {
            const auto answers = askAcceptedValues(asking(own), read(own, {name}), with(own, assumed));
            const applet_tools::AcceptedValues& accepted = answers.front();
            const applet_tools::Parameter& parameter = own.live.parameters().find(accepted.parameter);
            text = linesOf(accepted.subject, rowsOf(accepted, parameter));
            document["parameters"] = {asJson(accepted, parameter)};
            found = rangeOf(accepted);
        });
    if (code != VEXO_OK || range == nullptr) return code;
    if (!found) return fail(VEXO_ERR_KIND, std::string(name) + " accepts no range of numbers");
    *range = *found;
    return VEXO_OK;
}

int vexo_ask_why(vexo_station* station, const char* question, const char* assumed, vexo_answer** answer) {
    if (question == nullptr) return failNull("the question");
    return answered(station, answer, [&](vexo_station& own, std::string& text, ordered_json& document) {
        auto& rows = document["answers"] = ordered_json::array();
        const auto add = [&](const auto& reason) {
            const applet_tools::Parameter& parameter = own.live.parameters().find(reason.parameter);
            text += (text.empty() ? "" : "\n") + linesOf(reason.subject, rowsOf(reason, parameter));
            if constexpr (requires { reason.document; })
                rows.push_back(reason.document);
            else
                rows.push_back(asJson(reason, findTarget(own.live.parameters(), reason.subject)));
        };
        for (const applet_tools::WhyAnswer& reason :
             askWhy(asking(own), read(own, {question}), with(own, assumed)))
            std::visit(add, reason);
    });
}

int vexo_ask_plan(vexo_station* station, const char* const* assignments, size_t count, vexo_answer** answer) {
    if (assignments == nullptr && count > 0) return failNull("the list of assignments");
    return answered(station, answer, [&](vexo_station& own, std::string& text, ordered_json& document) {
        applet_tools::AssignmentsPlan plan = askPlan(asking(own), read(own, wordsOf(assignments, count)));
        text = plan.words;
        document["assignments"] = std::move(plan.rows);
        if (!plan.notSet.empty()) document["notSet"] = plan.notSet;
    });
}

int vexo_ask_check(vexo_station* station, const char* file, vexo_answer** answer) {
    if (file == nullptr) return failNull("the name of the file");
    return answered(station, answer, [&](vexo_station& own, std::string& text, ordered_json& document) {
        requireReadable(file);
        const applet_tools::LoadCheck check = askCheck(asking(own).scratch(), file);
        document["code"] = check.code;
        document["findings"] = asJson(check.findings);
        for (const applet_tools::Finding& finding : check.findings)
            text += (text.empty() ? "" : "\n") + finding.message;
        if (text.empty()) text = "a load of " + applet_tools::shownFile(file) + " loses nothing";
    });
}

int vexo_ask_lint(vexo_station* station, vexo_answer** answer) {
    return answered(station, answer, [&](vexo_station& own, std::string& text, ordered_json& document) {
        auto& rows = document["findings"] = ordered_json::array();
        for (const applet_tools::LintFinding& finding : askLint(asking(own), "").findings) {
            rows.push_back(ordered_json(asJson(finding)));
            text += (text.empty() ? "" : "\n") + finding.rule + ": " +
                    applet_tools::join(finding.texts, ", ") + "\n  " + finding.why + "\n  " + finding.advice;
        }
        if (text.empty()) text = "nothing suspicious";
    });
}
