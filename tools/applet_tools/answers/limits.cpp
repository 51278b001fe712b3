#include "applet_tools/answers/limits.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/scratch/message_rows.h"
#include "applet_tools/scratch/probe/refusal.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <set>
#include <utility>

namespace applet_tools {
namespace {

using nlohmann::ordered_json;

Value zeroLike(const Value& number) {
    return std::visit([](const auto& native) { return Value(std::decay_t<decltype(native)>{}); }, number);
}

bool isOtherGrid(const MeasuredRange& range, const Limits& published) {
    constexpr double leastIncrement = 1e-15; // a smaller increment does not count as a grid
    if (range.step == 0) {
        const auto* increment = std::get_if<double>(&published.increment);
        return increment != nullptr && *increment > leastIncrement;
    }
    const std::uint64_t step = rankOf(published.increment) - rankOf(zeroLike(published.increment));
    return std::max<std::uint64_t>(step, 1) != range.step;
}

/** Measures the limits of one parameter. */
class Inquiry {
public:
    Inquiry(Probe& probe, const Subject& subject) : m_probe(probe), m_subject(subject) {}

    AcceptedValues answer() {
        const Target target = m_subject.in(m_probe);
        const ParameterState& state = m_probe.state(m_subject.index);
        m_answer = {.parameter = parameter().name,
                    .subject = m_subject.isWholeArray ? parameter().name : target.name(),
                    .elements = m_subject.elements,
                    .access = accessWord(parameter())};
        m_answer.now = {.error = state.error, .value = state.value};
        if (m_subject.elements && !m_subject.isWholeArray) m_answer.now.value = elementNow(target);
        if (parameter().kind() == REGISTER_KIND_ENUM)
            askEntries();
        else if (parameter().kind() == REGISTER_KIND_STRING)
            m_answer.isText = isPresentValueTaken();
        else
            askRange();
        return std::move(m_answer);
    }

private:
    const Parameter& parameter() const { return m_probe.at(m_subject.index); }

    Value elementNow(const Target& target) {
        const Value value = readValue(m_probe.session().instance(), target).value;
        const auto* elements = std::get_if<Elements>(&value);
        return elements != nullptr && elements->size() == 1 ? Value(elements->front()) : value;
    }

    /** Records the code of a refusal. */
    bool isPresentValueTaken() {
        m_answer.refusal = m_probe.answer({m_subject.index, m_probe.state(m_subject.index).value});
        return m_answer.refusal == FG_OK;
    }

    void askEntries() {
        for (const Entry& entry : entriesOf(parameter())) {
            const Change change{m_subject.index, entry.value};
            EntryAnswer answer{.entry = entry, .code = m_probe.answer(change)};
            if (answer.code != FG_OK)
                answer.acceptedWith = m_probe.words(
                    m_probe.waysTo({m_subject.index, [&] { return m_probe.answer(change) == FG_OK; }}));
            m_answer.entries.push_back(std::move(answer));
        }
        m_probe.restore();
    }

    void askRange() {
        m_answer.range = measuredRange(m_probe, m_subject.in(m_probe));
        m_probe.restore();
        PublishedRange published{limitsOf(parameter())};
        if (published.limits) published.words = limitsText(parameter());
        if (!m_answer.range) {
            isPresentValueTaken();
            m_answer.published = published;
            return;
        }
        if (isOtherThan(published.limits)) m_answer.published = published;
        m_answer.ofMinimum = causesOf(m_probe, m_subject, *m_answer.range, End::minimum);
        m_answer.ofMaximum = causesOf(m_probe, m_subject, *m_answer.range, End::maximum);
    }

    bool isOtherThan(const std::optional<Limits>& published) const {
        const MeasuredRange& range = *m_answer.range;
        return !published || published->minimum != range.minimum || published->maximum != range.maximum ||
               (!m_subject.elements && isOtherGrid(range, *published));
    }

    Probe& m_probe;
    Subject m_subject;
    AcceptedValues m_answer;
};

ordered_json entriesAsJson(const std::vector<EntryAnswer>& entries) {
    ordered_json rows = ordered_json::array();
    for (const auto& [entry, code, acceptedWith] : entries) {
        ordered_json row = {{"value", entry.value},
                            {"symbol", entry.symbol},
                            {"label", entry.label},
                            {"accepted", code == FG_OK}};
        if (code != FG_OK) row["error"] = codeAsJson(code);
        if (!acceptedWith.empty()) row["acceptedWith"] = acceptedWith;
        rows.push_back(std::move(row));
    }
    return rows;
}

void addAccepted(ordered_json& row, const AcceptedValues& answer) {
    if (answer.isText) {
        row["accepted"] = {{"text", true}};
    } else if (!answer.range) {
        row["accepted"] = nullptr;
        row["error"] = codeAsJson(answer.refusal);
    } else {
        row["accepted"] = {{"minimum", numberAsJson(answer.range->minimum)},
                           {"maximum", numberAsJson(answer.range->maximum)}};
        if (answer.range->step > 0) row["accepted"]["step"] = answer.range->step;
        row["differs"] = answer.published.has_value();
    }
}

void addPublished(ordered_json& row, const AcceptedValues& answer) {
    if (!answer.published || !answer.published->limits) return;
    const Limits& limits = *answer.published->limits;
    row["published"] = {{"minimum", numberAsJson(limits.minimum)}, {"maximum", numberAsJson(limits.maximum)}};
    if (!answer.elements) row["published"]["increment"] = numberAsJson(limits.increment);
}

void addCauses(ordered_json& row, const LimitCauses& causes, End end) {
    for (const auto& cause : asJson(causes, end))
        row["setBy"].push_back(cause);
    if (!fixedInWords(causes, end).empty()) row["fixed"].push_back(nameOf(end));
}

} // namespace

Subject subjectOf(const Probe& probe, const Target& target) {
    const std::uint32_t count = elementCount(*target.parameter);
    const bool isWholeArray = count > 0 && !target.elements;
    return {probe.indexOf(*target.parameter),
            isWholeArray ? std::optional(ElementRange{0, 0}) : target.elements, isWholeArray};
}

AcceptedValues acceptedValues(Probe& probe, const Subject& subject) {
    return Inquiry(probe, subject).answer();
}

ordered_json asJson(const AcceptedValues& answer, const Parameter& parameter) {
    ordered_json row = {{"name", answer.parameter}, {"unit", parameter.unit()}, {"access", answer.access}};
    if (answer.now.error == FG_OK) addReading(row, {&parameter, answer.elements}, answer.now);
    if (const std::uint32_t count = elementCount(parameter); count > 0) row["elements"] = count;
    if (parameter.kind() == REGISTER_KIND_ENUM) {
        row["entries"] = entriesAsJson(answer.entries);
        return row;
    }
    addAccepted(row, answer);
    addPublished(row, answer);
    if (!answer.range) return row;
    row["setBy"] = ordered_json::array();
    row["fixed"] = ordered_json::array();
    addCauses(row, answer.ofMinimum, End::minimum);
    addCauses(row, answer.ofMaximum, End::maximum);
    return row;
}

template <> struct MessageRows<Widening> {
    static constexpr auto rows = std::tuple(&Widening::parameter, &Widening::with, &Widening::limit);
};
template <> struct MessageRows<DesignCause> {
    static constexpr auto rows = std::tuple(&DesignCause::parameter, &DesignCause::value);
};
template <> struct MessageRows<LimitCauses> {
    static constexpr auto rows =
        std::tuple(&LimitCauses::parameters, &LimitCauses::design, &LimitCauses::isEndOfType);
};
template <> struct MessageRows<MeasuredRange> {
    static constexpr auto rows =
        std::tuple(&MeasuredRange::minimum, &MeasuredRange::maximum, &MeasuredRange::step);
};
template <> struct MessageRows<Limits> {
    static constexpr auto rows = std::tuple(&Limits::minimum, &Limits::maximum, &Limits::increment);
};
template <> struct MessageRows<PublishedRange> {
    static constexpr auto rows = std::tuple(&PublishedRange::limits, &PublishedRange::words);
};
template <> struct MessageRows<Entry> {
    static constexpr auto rows = std::tuple(&Entry::value, &Entry::symbol, &Entry::label);
};
template <> struct MessageRows<EntryAnswer> {
    static constexpr auto rows =
        std::tuple(&EntryAnswer::entry, &EntryAnswer::code, &EntryAnswer::acceptedWith);
};
template <> struct MessageRows<ElementRange> {
    static constexpr auto rows = std::tuple(&ElementRange::first, &ElementRange::last);
};
template <> struct MessageRows<AcceptedValues> {
    using Record = AcceptedValues;
    static constexpr auto rows =
        std::tuple(&Record::parameter, &Record::subject, &Record::elements, &Record::access, &Record::now,
                   &Record::isText, &Record::entries, &Record::refusal, &Record::range, &Record::published,
                   &Record::ofMinimum, &Record::ofMaximum);
};

json limitsJob(ScratchSession& session, const json& arguments) {
    startFrom(session, arguments.at("with").get<Words>());
    Probe probe(session);
    std::vector<Subject> subjects;
    std::set<std::string> seen;
    for (const Target& target : findTargets(session.parameters(), arguments.at("names").get<Words>()))
        if (seen.insert(target.name()).second) subjects.push_back(subjectOf(probe, target));
    json answers = json::array();
    for (const Subject& subject : subjects) {
        session.reportProgress(answers.size(), subjects.size());
        answers.push_back(toMessage(acceptedValues(probe, subject)));
    }
    return answers;
}

std::vector<AcceptedValues> askAcceptedValues(LiveSession& live, const Words& names,
                                              const Words& assignments) {
    const std::set<std::string>& notMeasured = live.notMeasured();
    std::vector<AcceptedValues> answers;
    for (const json& message : live.scratch().ask("limits", {{"names", names}, {"with", assignments}})) {
        AcceptedValues& answer = answers.emplace_back(recordFrom<AcceptedValues>(message));
        answer.now.isMeasured = !notMeasured.contains(answer.parameter);
    }
    return answers;
}

} // namespace applet_tools
