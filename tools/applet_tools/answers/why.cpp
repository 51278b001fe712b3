#include "applet_tools/answers/why.h"

#include "applet_tools/answers/dependencies.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/message_rows.h"

#include "vexo/fg_errors.h"

namespace applet_tools {
namespace {

bool isWritable(std::uint32_t access) { return (access & REGISTER_ACCESS_WRITE) != 0; }

std::vector<std::string> waysToWrite(Probe& probe, std::size_t index) {
    return probe.words(probe.waysTo({index, [&] { return isWritable(probe.currentState(index).access); }}));
}

std::vector<std::string> waysToLock(Probe& probe, std::size_t index) {
    std::vector<std::string> ways;
    for (const Change& change :
         probe.changesFor({index, [&] { return !isWritable(probe.currentState(index).access); }}))
        ways.push_back(probe.words(change));
    return ways;
}

} // namespace

RefusalAnswer whyRefused(Probe& probe, const Assignment& assignment) {
    const Parameter& parameter = *assignment.target.parameter;
    const std::size_t index = probe.indexOf(parameter);
    const std::string name = assignment.target.name();
    const int code = probe.answer(assignment.target, assignment.value);
    RefusalAnswer answer{
        parameter.name,
        name + "=" + printable(assignment.text),
        {{"name", name}, {"requested", requestedAsJson(assignment)}, {"accepted", code == FG_OK}},
        code};
    if (code == FG_OK) {
        if (accessWord(parameter) != "ro") return answer;
        answer.writableWith = waysToWrite(probe, index);
        answer.document["writableWith"] = *answer.writableWith;
        if (!isNumber(assignment.value)) return answer;
        const std::vector<Movement> moves = movesOf(probe, {index, assignment.value});
        for (const Movement& movement : moves)
            answer.moves.push_back(inWords(movement));
        answer.document["moves"] = asJson(moves);
        return answer;
    }
    answer.refusal = refusalInWords(parameter, assignment.value, code);
    answer.document["error"] = codeAsJson(code);
    answer.causes = findCauses(probe, assignment);
    addCauses(answer.document, probe.at(index), answer.causes);
    return answer;
}

AccessAnswer whyReadOnly(Probe& probe, const Target& target) {
    const std::size_t index = probe.indexOf(*target.parameter);
    const ParameterState state = probe.state(index);
    AccessAnswer answer{.parameter = target.parameter->name,
                        .subject = target.name(),
                        .access = accessWord(*target.parameter),
                        .isWritable = isWritable(state.access)};
    answer.now = target.elements ? readValue(probe.session().instance(), target)
                                 : ReadResult{.error = state.error, .value = state.value};
    if (answer.isWritable) {
        answer.changedWith = waysToLock(probe, index);
        return answer;
    }
    const int code = elementCount(probe.at(index)) > 0 ? FG_OK : probe.answer({index, state.value});
    answer.hasSetter = code != FG_ERR_NOT_AVAILABLE;
    if (answer.hasSetter) answer.changedWith = waysToWrite(probe, index);
    return answer;
}

nlohmann::ordered_json asJson(const AccessAnswer& answer, const Target& target) {
    nlohmann::ordered_json document = {
        {"name", answer.subject}, {"access", answer.access}, {"writable", answer.isWritable}};
    if (answer.now.error == FG_OK) addReading(document, target, answer.now);
    if (!answer.isWritable) document["hasSetter"] = answer.hasSetter;
    if (answer.hasSetter) document[answer.isWritable ? "readOnlyWith" : "writableWith"] = answer.changedWith;
    if (!answer.missingFile.empty()) document["missingFile"] = toUtf8(answer.missingFile);
    return document;
}

template <> struct MessageRows<RefusalCauses> {
    using Record = RefusalCauses;
    static constexpr auto rows =
        std::tuple(&Record::isTried, &Record::limit, &Record::setBy, &Record::nearest, &Record::ways);
};
template <> struct MessageRows<RefusalAnswer> {
    using Record = RefusalAnswer;
    static constexpr auto rows =
        std::tuple(&Record::parameter, &Record::subject, &Record::document, &Record::code, &Record::refusal,
                   &Record::causes, &Record::writableWith, &Record::moves);
};
template <> struct MessageRows<AccessAnswer> {
    using Record = AccessAnswer;
    static constexpr auto rows =
        std::tuple(&Record::parameter, &Record::subject, &Record::access, &Record::isWritable,
                   &Record::hasSetter, &Record::now, &Record::changedWith);
};

namespace {

json answerTo(Probe& probe, const std::string& word) {
    const ParameterList& parameters = probe.session().parameters();
    return isAssignment(word) ? toMessage(whyRefused(probe, parseAssignments(parameters, {word}).front()))
                              : toMessage(whyReadOnly(probe, findTarget(parameters, word)));
}

} // namespace

json whyJob(ScratchSession& session, const json& arguments) {
    startFrom(session, arguments.at("with").get<Words>());
    Probe probe(session);
    const auto words = arguments.at("words").get<Words>();
    json answers = json::array();
    for (const std::string& word : words) {
        session.reportProgress(answers.size(), words.size());
        answers.push_back(answerTo(probe, word));
        probe.restore();
    }
    return answers;
}

namespace {

json ask(LiveSession& live, const Words& words, const Words& with) {
    return live.scratch().ask("why", {{"words", words}, {"with", with}});
}

/** The changes that make a text writable once it names no file, if they are refused because of that file. */
Words waysWithoutFile(LiveSession& live, const std::string& name, const std::string& file, Words with) {
    if (file.empty() || textOfFile(file)) return {};
    with.push_back(name + "=" + file);
    if (!recordFrom<AccessAnswer>(ask(live, {name}, with).front()).changedWith.empty()) return {};
    with.back() = name + "=";
    return recordFrom<AccessAnswer>(ask(live, {name}, with).front()).changedWith;
}

RefusalAnswer withMissingFile(LiveSession& live, RefusalAnswer answer, const Words& with) {
    const Parameter& parameter = live.parameters().find(answer.parameter);
    if (!answer.writableWith || parameter.kind() != REGISTER_KIND_STRING) return answer;
    const std::string file = answer.document["requested"]["value"].get<std::string>();
    const Words ways = waysWithoutFile(live, answer.parameter, file, with);
    if (ways.empty()) return answer;
    answer.writableWith = ways;
    answer.missingFile = file;
    answer.document["writableWith"] = ways;
    answer.document["missingFile"] = toUtf8(file);
    return answer;
}

AccessAnswer withMissingFile(LiveSession& live, AccessAnswer answer, const Words& with) {
    const auto* file = std::get_if<std::string>(&answer.now.value);
    if (answer.isWritable || !answer.hasSetter || !answer.changedWith.empty() || file == nullptr)
        return answer;
    answer.changedWith = waysWithoutFile(live, answer.parameter, *file, with);
    if (!answer.changedWith.empty()) answer.missingFile = *file;
    return answer;
}

} // namespace

std::vector<WhyAnswer> askWhy(LiveSession& live, const Words& words, const Words& with) {
    const std::set<std::string>& notMeasured = live.notMeasured();
    const json messages = ask(live, words, with);
    std::vector<WhyAnswer> answers;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (isAssignment(words[i])) {
            answers.emplace_back(withMissingFile(live, recordFrom<RefusalAnswer>(messages.at(i)), with));
            continue;
        }
        AccessAnswer answer = withMissingFile(live, recordFrom<AccessAnswer>(messages.at(i)), with);
        answer.now.isMeasured = !notMeasured.contains(answer.parameter);
        answers.emplace_back(std::move(answer));
    }
    return answers;
}

} // namespace applet_tools
