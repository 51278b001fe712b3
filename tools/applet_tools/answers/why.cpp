#include "applet_tools/answers/why.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"

#include "vexo/fg_errors.h"

namespace appletctl {
namespace {

bool isWritable(std::uint32_t access) { return (access & REGISTER_ACCESS_WRITE) != 0; }

std::vector<std::string> waysToWrite(Probe& probe, std::size_t place) {
    return probe.words(probe.waysTo(place, [&] { return isWritable(probe.currentState(place).access); }));
}

std::vector<std::string> waysToLock(Probe& probe, std::size_t place) {
    std::vector<std::string> ways;
    for (const Change& change :
         probe.changesFor(place, [&] { return !isWritable(probe.currentState(place).access); }))
        ways.push_back(probe.words(change));
    return ways;
}

} // namespace

RefusalAnswer whyRefused(Probe& probe, const Assignment& assignment) {
    const Parameter& parameter = *assignment.target.parameter;
    const std::size_t place = probe.placeOf(parameter);
    const std::string name = assignment.target.name();
    const int code = probe.answer(assignment.target, assignment.value);
    RefusalAnswer answer{
        parameter.name,
        name + "=" + printable(toUtf8(assignment.text.c_str())),
        {{"name", name}, {"requested", requestedAsJson(assignment)}, {"accepted", code == FG_OK}},
        code};
    if (code == FG_OK) {
        if (accessWord(parameter) != "ro") return answer;
        answer.writableWith = waysToWrite(probe, place);
        answer.document["writableWith"] = *answer.writableWith;
        return answer;
    }
    answer.refusal = refusalInWords(parameter, assignment.value, code);
    answer.document["error"] = codeAsJson(code);
    answer.causes = findCauses(probe, assignment);
    addCauses(answer.document, probe.at(place), answer.causes);
    return answer;
}

AccessAnswer whyReadOnly(Probe& probe, const Target& target) {
    const std::size_t place = probe.placeOf(*target.parameter);
    const ParameterState facts = probe.facts(place);
    AccessAnswer answer{.parameter = target.parameter->name,
                        .subject = target.name(),
                        .access = accessWord(*target.parameter),
                        .isWritable = isWritable(facts.access)};
    answer.now = target.elements ? readValue(probe.session().instance(), target)
                                 : ReadResult{.error = facts.error, .value = facts.value};
    auto& document = answer.document;
    document = {{"name", answer.subject}, {"access", answer.access}, {"writable", answer.isWritable}};
    if (answer.now.error == FG_OK) addValue(document, target, answer.now.value);
    if (answer.isWritable) {
        answer.changedWith = waysToLock(probe, place);
        document["readOnlyWith"] = answer.changedWith;
        return answer;
    }
    const int code = elementCount(probe.at(place)) > 0 ? FG_OK : probe.answer({place, facts.value});
    answer.hasSetter = code != FG_ERR_NOT_AVAILABLE;
    document["hasSetter"] = answer.hasSetter;
    if (!answer.hasSetter) return answer;
    answer.changedWith = waysToWrite(probe, place);
    document["writableWith"] = answer.changedWith;
    return answer;
}

} // namespace appletctl
