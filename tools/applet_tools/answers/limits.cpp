#include "applet_tools/answers/limits.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/scratch/refusal.h"

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
        const ParameterState& state = m_probe.state(m_subject.place);
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
    const Parameter& parameter() const { return m_probe.at(m_subject.place); }

    Value elementNow(const Target& target) {
        const Value value = readValue(m_probe.session().instance(), target).value;
        const auto* elements = std::get_if<Elements>(&value);
        return elements != nullptr && elements->size() == 1 ? Value(elements->front()) : value;
    }

    /** Records the code of a refusal. */
    bool isPresentValueTaken() {
        m_answer.refusal = m_probe.answer({m_subject.place, m_probe.state(m_subject.place).value});
        return m_answer.refusal == FG_OK;
    }

    void askEntries() {
        for (const Entry& entry : entriesOf(parameter())) {
            const Change change{m_subject.place, entry.value};
            EntryAnswer answer{.entry = entry, .code = m_probe.answer(change)};
            if (answer.code != FG_OK)
                answer.acceptedWith = m_probe.words(
                    m_probe.waysTo({m_subject.place, [&] { return m_probe.answer(change) == FG_OK; }}));
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
    return {probe.placeOf(*target.parameter),
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

namespace {

json asMessage(const LimitCauses& causes) {
    json parameters = json::array(), design = json::array();
    for (const auto& [parameter, with, limit] : causes.parameters)
        parameters.push_back({{"parameter", parameter}, {"with", with}, {"limit", asTypedMessage(limit)}});
    for (const auto& [parameter, value] : causes.design)
        design.push_back({{"parameter", parameter}, {"value", value}});
    return {{"parameters", parameters}, {"design", design}, {"isEndOfType", causes.isEndOfType}};
}

LimitCauses causesFrom(const json& message) {
    LimitCauses causes;
    for (const json& row : message["parameters"])
        causes.parameters.push_back({row["parameter"].get<std::string>(), row["with"].get<std::string>(),
                                     fromTypedMessage(row["limit"])});
    for (const json& row : message["design"])
        causes.design.push_back({row["parameter"].get<std::string>(), row["value"].get<std::string>()});
    causes.isEndOfType = message["isEndOfType"].get<bool>();
    return causes;
}

json asMessage(const MeasuredRange& range) {
    return {{"minimum", asTypedMessage(range.minimum)},
            {"maximum", asTypedMessage(range.maximum)},
            {"step", range.step}};
}

MeasuredRange rangeFrom(const json& message) {
    return {fromTypedMessage(message["minimum"]), fromTypedMessage(message["maximum"]),
            message["step"].get<std::uint64_t>()};
}

json asMessage(const PublishedRange& published) {
    json message = {{"words", published.words}};
    if (const auto& limits = published.limits)
        message["limits"] = {asTypedMessage(limits->minimum), asTypedMessage(limits->maximum),
                             asTypedMessage(limits->increment)};
    return message;
}

PublishedRange publishedFrom(const json& message) {
    PublishedRange published{std::nullopt, message["words"].get<std::string>()};
    if (const auto limits = message.find("limits"); limits != message.end())
        published.limits = Limits{fromTypedMessage((*limits)[0]), fromTypedMessage((*limits)[1]),
                                  fromTypedMessage((*limits)[2])};
    return published;
}

json asMessage(const std::vector<EntryAnswer>& entries) {
    json rows = json::array();
    for (const auto& [entry, code, acceptedWith] : entries)
        rows.push_back({{"value", entry.value},
                        {"symbol", entry.symbol},
                        {"label", entry.label},
                        {"code", code},
                        {"acceptedWith", acceptedWith}});
    return rows;
}

std::vector<EntryAnswer> entriesFrom(const json& rows) {
    std::vector<EntryAnswer> entries;
    for (const json& row : rows)
        entries.push_back({{row["value"].get<std::int32_t>(), row["symbol"].get<std::string>(),
                            row["label"].get<std::string>()},
                           row["code"].get<int>(),
                           row["acceptedWith"].get<Words>()});
    return entries;
}

json asMessage(const AcceptedValues& answer) {
    json message = {{"parameter", answer.parameter},
                    {"subject", answer.subject},
                    {"access", answer.access},
                    {"error", answer.now.error},
                    {"now", asTypedMessage(answer.now.value)},
                    {"isText", answer.isText},
                    {"entries", asMessage(answer.entries)},
                    {"refusal", answer.refusal},
                    {"ofMinimum", asMessage(answer.ofMinimum)},
                    {"ofMaximum", asMessage(answer.ofMaximum)}};
    if (answer.elements) message["elements"] = {answer.elements->first, answer.elements->last};
    if (answer.range) message["range"] = asMessage(*answer.range);
    if (answer.published) message["published"] = asMessage(*answer.published);
    return message;
}

AcceptedValues answerFrom(const json& message) {
    AcceptedValues answer{.parameter = message["parameter"].get<std::string>(),
                          .subject = message["subject"].get<std::string>(),
                          .access = message["access"].get<std::string>()};
    answer.now = {.error = message["error"].get<int>(), .value = fromTypedMessage(message["now"])};
    answer.isText = message["isText"].get<bool>();
    answer.entries = entriesFrom(message["entries"]);
    answer.refusal = message["refusal"].get<int>();
    answer.ofMinimum = causesFrom(message["ofMinimum"]);
    answer.ofMaximum = causesFrom(message["ofMaximum"]);
    if (const auto elements = message.find("elements"); elements != message.end())
        answer.elements = {(*elements)[0].get<std::uint32_t>(), (*elements)[1].get<std::uint32_t>()};
    if (message.contains("range")) answer.range = rangeFrom(message["range"]);
    if (message.contains("published")) answer.published = publishedFrom(message["published"]);
    return answer;
}

} // namespace

json limitsJob(ScratchSession& session, const json& arguments) {
    startFrom(session, arguments.at("with").get<Words>());
    Probe probe(session);
    std::vector<Subject> subjects;
    std::set<std::string> seen;
    for (const Target& target : findTargets(session.parameters(), arguments.at("names").get<Words>()))
        if (seen.insert(target.name()).second) subjects.push_back(subjectOf(probe, target));
    json answers = json::array();
    for (const Subject& subject : subjects) {
        session.tellProgress(answers.size(), subjects.size());
        answers.push_back(asMessage(acceptedValues(probe, subject)));
    }
    return answers;
}

std::vector<AcceptedValues> askAcceptedValues(LiveSession& live, const Words& names,
                                              const Words& assignments) {
    const std::set<std::string>& notMeasured = live.notMeasured();
    std::vector<AcceptedValues> answers;
    for (const json& message : live.scratch().ask("limits", {{"names", names}, {"with", assignments}})) {
        AcceptedValues& answer = answers.emplace_back(answerFrom(message));
        answer.now.isMeasured = !notMeasured.contains(answer.parameter);
    }
    return answers;
}

} // namespace applet_tools
