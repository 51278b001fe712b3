// What is accepted now, and which parameter sets each limit: asked of the setters on the scratch board.

#include "applet_tools/base/text.h"
#include "applet_tools/scratch/limit_causes.h"
#include "applet_tools/scratch/measured_range.h"
#include "applet_tools/scratch/refusal.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/jobs.h"
#include "appletctl/commands/reports.h"
#include "appletctl/commands/shared_options.h"

#include "vexo/fg_errors.h"

#include <unistd.h>

#include <algorithm>
#include <set>

namespace appletctl {
namespace {

using nlohmann::ordered_json;

template <typename Number> std::string rangeInWords(const Number& minimum, const Number& maximum) {
    return numberText(minimum) + " to " + numberText(maximum);
}

/** An end of a range, rounded inwards: what is shown is accepted. */
std::string endInWords(const Parameter& parameter, const Value& limit, End end) {
    const auto* number = std::get_if<double>(&limit);
    if (number == nullptr) return valueText(parameter, limit);
    return numberText(end == End::maximum ? roundedDown(*number) : roundedUp(*number));
}

std::string inWords(const Parameter& parameter, const MeasuredRange& range) {
    std::string text = endInWords(parameter, range.minimum, End::minimum) + " to " +
                       endInWords(parameter, range.maximum, End::maximum);
    if (range.step > 1) text += " in steps of " + numberText(range.step);
    if (!parameter.unit().empty()) text += " " + parameter.unit();
    return range.step == 0 && range.minimum != range.maximum ? text + ", any value in between" : text;
}

/** The answer for one parameter. */
class LimitsReport {
public:
    LimitsReport(Probe& probe, const Subject& subject) : m_probe(probe), m_subject(subject) {
        const Parameter& parameter = probe.at(subject.place);
        table.addSubject(subject.isWholeArray ? parameter.name : subject.in(probe).name());
        row = {{"name", parameter.name}, {"unit", parameter.unit()}, {"access", accessWord(parameter)}};
        tellValue();
        if (parameter.kind() == REGISTER_KIND_ENUM)
            tellEntries();
        else if (parameter.kind() == REGISTER_KIND_STRING)
            tellText();
        else
            tellRange();
    }

    Table table;
    ordered_json row;

private:
    const Parameter& parameter() const { return m_probe.at(m_subject.place); }

    void tellValue() {
        const ParameterState& facts = m_probe.facts(m_subject.place);
        const std::string value = facts.error == FG_OK ? valueWithUnit(parameter(), facts.value)
                                                       : "- (" + codeInWords(facts.error) + ")";
        table.addRow({"now", value + ", " + accessWord(parameter())});
        if (facts.error == FG_OK) addValue(row, {&parameter()}, facts.value);
        if (const std::uint32_t count = elementCount(parameter()); count > 0) {
            table.addRow({"elements", rangeInWords(0u, count - 1)});
            row["elements"] = count;
        }
    }

    void tellText() {
        const int code = m_probe.answer({m_subject.place, m_probe.facts(m_subject.place).value});
        if (code != FG_OK) return tellRefused(code);
        table.addRow({"accepted",
                      "any text without a line break; a parameter that names a file is refused where "
                      "the file cannot be opened"});
        row["accepted"] = {{"text", true}};
    }

    void tellRefused(int code) {
        table.addRow(
            {"accepted", code == FG_ERR_NOT_AVAILABLE
                             ? "nothing: it is always read-only, since it is measured, or fixed by the design"
                             : "nothing that was tried: " + codeInWords(code)});
        row["accepted"] = nullptr;
        row["error"] = codeAsJson(code);
    }

    void tellEntries() {
        row["entries"] = ordered_json::array();
        for (const Entry& entry : entriesOf(parameter())) {
            const int code = m_probe.answer({m_subject.place, entry.value});
            ordered_json told = {{"value", entry.value},
                                 {"symbol", entry.symbol},
                                 {"label", entry.label},
                                 {"accepted", code == FG_OK}};
            std::string words = "accepted";
            if (code != FG_OK) {
                told["error"] = codeAsJson(code);
                words = "refused: " + codeInWords(code) + waysTo(entry.value, told);
            }
            table.addRow({entryName(entry) + " (" + numberText(entry.value) + ")", words});
            row["entries"].push_back(std::move(told));
        }
        m_probe.restore();
    }

    /** "; accepted with A=1 or B=2". */
    std::string waysTo(const Value& value, ordered_json& told) {
        const std::vector<std::string> words = m_probe.words(m_probe.waysTo(m_subject.place, [&] {
            return m_probe.answer({m_subject.place, value}) == FG_OK;
        }));
        if (!words.empty()) told["acceptedWith"] = words;
        return words.empty() ? "" : "; accepted with " + join(words, " or ");
    }

    void tellRange() {
        const auto range = measuredRange(m_probe, m_subject.in(m_probe));
        m_probe.restore();
        const auto published = limitsOf(parameter());
        if (!range) {
            tellRefused(m_probe.answer({m_subject.place, m_probe.facts(m_subject.place).value}));
            return tellPublished(published);
        }
        table.addRow({"accepted", inWords(parameter(), *range)});
        row["accepted"] = {{"minimum", numberAsJson(range->minimum)},
                           {"maximum", numberAsJson(range->maximum)}};
        if (range->step > 0) row["accepted"]["step"] = range->step;
        const bool differs = !published || published->minimum != range->minimum ||
                             published->maximum != range->maximum || isOtherGrid(*range, *published);
        row["differs"] = differs;
        if (differs) tellPublished(published);
        row["setBy"] = ordered_json::array();
        row["fixed"] = ordered_json::array();
        const LimitCauses ofMinimum = causesOf(m_probe, m_subject, *range, End::minimum);
        const LimitCauses ofMaximum = causesOf(m_probe, m_subject, *range, End::maximum);
        tellCauses(End::minimum, ofMinimum);
        tellCauses(End::maximum, ofMaximum);
        tellFixed(fixedInWords(ofMinimum), fixedInWords(ofMaximum));
    }

    /** An array has no published grid. */
    bool isOtherGrid(const MeasuredRange& range, const Limits& published) const {
        if (m_subject.elements) return false;
        if (range.step == 0)
            return std::get_if<double>(&published.increment) != nullptr &&
                   std::get<double>(published.increment) > 1e-15;
        return std::max<std::uint64_t>(rankOf(published.increment) - rankOf(zeroLike(published.increment)),
                                       1) != range.step;
    }

    static Value zeroLike(const Value& number) {
        return std::visit([](const auto& native) { return Value(std::decay_t<decltype(native)>{}); }, number);
    }

    void tellPublished(const std::optional<Limits>& published) {
        table.addRow({"published", published ? limitsText(parameter()) : "no limits that say anything"});
        if (!published) return;
        row["published"] = {{"minimum", numberAsJson(published->minimum)},
                            {"maximum", numberAsJson(published->maximum)}};
        if (!m_subject.elements) row["published"]["increment"] = numberAsJson(published->increment);
    }

    void tellCauses(End end, const LimitCauses& causes) {
        const char* title = nameOf(end);
        for (const Widening& widening : causes.parameters)
            table.addRow({title, "set by " + m_probe.at(widening.change.place).name + ": " +
                                     endInWords(parameter(), widening.limit, end) + " with " +
                                     m_probe.words(widening.change)});
        for (const DesignCause& cause : causes.design)
            table.addRow({title, "set by " + inWords(cause)});
        for (const auto& cause : asJson(m_probe, causes, end))
            row["setBy"].push_back(cause);
        if (!fixedInWords(causes).empty()) row["fixed"].push_back(title);
    }

    void tellFixed(const std::string& minimum, const std::string& maximum) {
        if (!minimum.empty() && minimum == maximum) {
            table.addRow({"both limits", minimum});
            return;
        }
        if (!minimum.empty()) table.addRow({"minimum", minimum});
        if (!maximum.empty()) table.addRow({"maximum", maximum});
    }

    Probe& m_probe;
    Subject m_subject;
};

/** Of an array the first element stands for all. */
Subject subjectOf(const Probe& probe, const Target& target) {
    const std::uint32_t count = elementCount(*target.parameter);
    const std::uint32_t first = target.elements ? target.elements->first : 0;
    return {probe.placeOf(*target.parameter),
            count > 0 ? std::optional(ElementRange{first, first}) : std::nullopt,
            count > 0 && !target.elements};
}

} // namespace

json limitsJob(ScratchSession& session, const json& arguments) {
    layOutAsAsked(arguments);
    Report report;
    auto& rows = report.document["parameters"] = ordered_json::array();
    startFrom(session, arguments.at("with").get<Words>());
    Probe probe(session);
    std::vector<Subject> subjects;
    std::set<std::string> seen;
    for (const Target& target : findTargets(session.parameters(), arguments.at("names").get<Words>()))
        if (seen.insert(target.name()).second) subjects.push_back(subjectOf(probe, target));
    for (const Subject& subject : subjects) {
        session.tellProgress(rows.size(), subjects.size());
        LimitsReport answer(probe, subject);
        report.text +=
            (report.text.empty() ? "" : "\n") + answer.table.render(Style::forStream(STDOUT_FILENO));
        rows.push_back(std::move(answer.row));
    }
    return asMessage(report);
}

namespace {

Report showLimits(Context& context, const Words& names) {
    return askScratch(context, "limits",
                      {{"names", names}, {"with", context.options().of<WithOption>().assignments}});
}

} // namespace

extern const Command limitsCommand;
const Command limitsCommand = {
    .name = "limits",
    .help = "Show what is accepted now, and which parameter sets each limit",
    .argument = "NAME",
    .argumentHelp = "Parameters, or elements of one",
    .examples = {{"limits FG_WIDTH", "what is accepted, and what sets it"},
                 {"limits FG_WIDTH --with FG_XOFFSET=1024", "the same with another offset"}},
    .fewest = 1,
    .most = -1,
    .run = showLimits,
    .scratch = Context::Scratch::wanted,
    .showsValues = true,
    .takesWithToScratch = true,
};

} // namespace appletctl
