// What is accepted now, and which parameter sets each limit: asked of the setters on the scratch board.

#include "appletctl/base/text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/jobs.h"
#include "appletctl/commands/shared_options.h"
#include "appletctl/scratch/measured_range.h"
#include "appletctl/scratch/reports.h"

#include "vexo/fg_errors.h"

#include <unistd.h>

#include <algorithm>

namespace appletctl {
namespace {

using nlohmann::ordered_json;

/** A single change of another parameter, and the limit that there is then. */
struct Widening {
    Change change;
    Value limit;
};

/** What the limits of a parameter are looked up by, over new instances. */
struct Subject {
    std::size_t place;
    std::optional<ElementRange> elements;

    Target in(const Probe& probe) const { return {&probe.at(place), elements}; }
};

bool isWider(const Value& a, const Value& b, End end) {
    return end == End::maximum ? rankOf(a) > rankOf(b) : rankOf(a) < rankOf(b);
}

/** For each parameter that sets this end of the range, the change that moves it farthest out. */
std::vector<Widening> wideningsOf(Probe& probe, const Subject& subject, const MeasuredRange& range, End end) {
    std::vector<Widening> widenings;
    const auto behind = firstBehind(range, end);
    if (!behind) return widenings;
    const auto isTaken = [&] {
        const Value value = subject.elements ? Elements{std::get<std::uint32_t>(*behind)} : *behind;
        return probe.answer(subject.in(probe), value) == FG_OK;
    };
    for (std::size_t place = 0; place < probe.count(); ++place) {
        if (place == subject.place) continue;
        std::optional<Widening> best;
        for (const Value& value : probe.otherValues(place)) {
            probe.tryChange({place, value}, [&] {
                if (!isTaken()) return;
                const auto wider = measuredRange(probe, subject.in(probe));
                if (wider && (!best || isWider(endOf(*wider, end), best->limit, end)))
                    best = {{place, value}, endOf(*wider, end)};
            });
        }
        probe.restore();
        if (best) widenings.push_back(*best);
    }
    return widenings;
}

template <typename Number> std::string rangeInWords(const Number& minimum, const Number& maximum) {
    return numberText(minimum) + " to " + numberText(maximum);
}

std::string inWords(const Parameter& parameter, const MeasuredRange& range) {
    std::string text = valueText(parameter, range.minimum) + " to " + valueText(parameter, range.maximum);
    if (range.step > 1) text += " in steps of " + numberText(range.step);
    if (!parameter.unit().empty()) text += " " + parameter.unit();
    return range.step == 0 && range.minimum != range.maximum ? text + ", on no grid" : text;
}

/** A number as a member of a document. */
ordered_json asJson(const Value& number) {
    return std::visit(
        [](const auto& native) -> ordered_json {
            if constexpr (std::is_arithmetic_v<std::decay_t<decltype(native)>>)
                return native;
            else
                return nullptr;
        },
        number);
}

/** The answer for one parameter. */
class LimitsReport {
public:
    LimitsReport(Probe& probe, const Subject& subject) : m_probe(probe), m_subject(subject) {
        const Parameter& parameter = probe.at(subject.place);
        table.addHeading(subject.in(probe).name());
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
        table.addRow({"accepted", "nothing: " + codeInWords(code)});
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
                words = codeInWords(code) + waysTo(entry.value, told);
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
        row["accepted"] = {{"minimum", asJson(range->minimum)}, {"maximum", asJson(range->maximum)}};
        if (range->step > 0) row["accepted"]["step"] = range->step;
        const bool differs = !published || published->minimum != range->minimum ||
                             published->maximum != range->maximum || isOtherGrid(*range, *published);
        row["differs"] = differs;
        if (differs) tellPublished(published);
        row["setBy"] = ordered_json::array();
        for (const auto& [end, name] :
             {std::pair(End::minimum, "minimum"), std::pair(End::maximum, "maximum")})
            for (const Widening& widening : wideningsOf(m_probe, m_subject, *range, end))
                tellWidening(name, widening);
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
        row["published"] = {{"minimum", asJson(published->minimum)}, {"maximum", asJson(published->maximum)}};
        if (!m_subject.elements) row["published"]["increment"] = asJson(published->increment);
    }

    void tellWidening(const char* name, const Widening& widening) {
        const std::string words = m_probe.words(widening.change);
        table.addRow({name, "set by " + m_probe.at(widening.change.place).name + ": " +
                                valueText(parameter(), widening.limit) + " with " + words});
        row["setBy"].push_back({{"limit", name},
                                {"parameter", m_probe.at(widening.change.place).name},
                                {"with", words},
                                {"becomes", asJson(widening.limit)}});
    }

    Probe& m_probe;
    Subject m_subject;
};

/** Of an array the first element stands for all. */
Subject subjectOf(const Probe& probe, const Target& target) {
    const std::uint32_t count = elementCount(*target.parameter);
    const std::uint32_t first = target.elements ? target.elements->first : 0;
    return {probe.placeOf(*target.parameter),
            count > 0 ? std::optional(ElementRange{first, first}) : std::nullopt};
}

} // namespace

json limitsJob(ScratchSession& session, const json& arguments) {
    Report report;
    auto& rows = report.document["parameters"] = ordered_json::array();
    startFrom(session, arguments);
    Probe probe(session);
    std::vector<Subject> subjects;
    for (const Target& target : findTargets(session.parameters(), arguments.at("names").get<Words>()))
        subjects.push_back(subjectOf(probe, target));
    for (const Subject& subject : subjects) {
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
    .fewest = 1,
    .most = -1,
    .run = showLimits,
    .scratch = Context::Scratch::wanted,
    .addOptions = addWith,
};

} // namespace appletctl
