#include "serve/http/routes/parameter_api.h"

#include "applet_tools/answers/order.h"
#include "applet_tools/applet/assignments.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/ValuesBefore.h"
#include "applet_tools/scratch/probe/refusal.h"
#include "serve/http/protocol/Query.h"

#include "vexo/fg_errors.h"

#include <algorithm>

namespace serve {
namespace {

using namespace applet_tools;

constexpr std::size_t mostSettings = 200;

/** Finds on the scratch board why an assignment was refused, and the remedies. */
HttpError refusalOf(LiveSession& live, const AssignmentResult& result) {
    const Assignment& assignment = result.assignment;
    const Parameter& parameter = *assignment.target.parameter;
    const std::string name = assignment.target.name();
    Words clauses = refusalClauses(result);
    Json members;
    members["name"] = name;
    members["result"] = codeAsJson(result.code);
    if (const auto limits = limitsOf(parameter))
        members["limit"] = {{"minimum", numberAsJson(limits->minimum)},
                            {"maximum", numberAsJson(limits->maximum)},
                            {"step", numberAsJson(limits->increment)}};
    const Suggestion suggestion = askSuggestion(live, assignment, result.code);
    members["advice"] = join(suggestion.clauses, "; ");
    clauses.insert(clauses.end(), suggestion.clauses.begin(), suggestion.clauses.end());
    members["clauses"] = clauses;
    Json ways = Json::array();
    if (const auto nearest = suggestion.members.find("nearest"); nearest != suggestion.members.end()) {
        const Json& value = nearest->at("value");
        members["nearest"] = value;
        ways.push_back(remedyOf({name + "=" + valueWord(value)}));
    }
    for (Words way : suggestion.ways) {
        const std::string text = join(way, " ");
        way.push_back(name + "=" + assignment.text); // so that one request sets all of them
        ways.push_back(remedyOf(way));
        ways.back()["text"] = text;
    }
    members["waysOut"] = std::move(ways);
    if (const auto setBy = suggestion.members.find("setBy"); setBy != suggestion.members.end()) {
        Json& names = members["limit"]["setBy"] = Json::array();
        for (const Json& row : *setBy)
            if (row.contains("parameter")) names.push_back(row.at("parameter"));
    }
    return {status::conflict, "refused", join(clauses, "; "), std::move(members)};
}

/** Clients of the page may not write files on this machine. */
void refuseFiles(LiveSession& live, const Words& words) {
    for (const Assignment& assignment : parseAssignments(live.parameters(), words))
        if (assignment.target.parameter->writesFile())
            throw HttpError(status::forbidden, "forbidden",
                            "a set of " + assignment.target.name() +
                                " writes a file on the station's machine: use 'appletctl set' there");
}

/** Applies them in another order if this one is refused. */
Json applyInAnyOrder(SharedStation& station, const Words& words) {
    try {
        return applyAll(station, words);
    } catch (const HttpError&) {
        const Ordering ordering = askOrder(*station.access.live, words);
        if (!ordering.isComplete) throw;
        return applyAll(station, ordering.words);
    }
}

} // namespace

Json applyAll(SharedStation& station, const Words& words) {
    LiveSession& live = *station.access.live;
    refuseFiles(live, words);
    ValuesBefore before(live, words);
    Json settings = Json::array();
    std::optional<HttpError> refusal;
    const auto after = [&](const AssignmentResult& result) {
        if (result.code != FG_OK) {
            // The suggestion may change the records, so the values are restored by name.
            refusal.emplace(refusalOf(live, result));
            return;
        }
        const Parameter& parameter = *result.assignment.target.parameter;
        const bool isRead = result.actual.error == FG_OK;
        settings.push_back(
            {{"name", result.assignment.target.name()},
             {"requested", asJson(result.assignment.value)},
             {"actual", isRead ? asJson(result.actual.value) : Json()},
             {"shown", isRead ? Json(toUtf8(valueWithUnit(parameter, result.actual.value))) : Json()}});
    };
    applyAssignments(live.instance(), live.parameters(), words, {.after = after});
    if (!refusal) return settings;
    if (words.size() > 1) before.restore();
    throw HttpError(*refusal);
}

Json runChange(SharedStation& station, const std::string& text, const std::function<Json()>& work) {
    ++station.sets;
    try {
        return station.commands.run(Work::changes, [&] {
            Json answer;
            const std::vector<ParameterState> before = station.parameters.states();
            station.access.change(text, [&] { answer = work(); });
            answer["changes"] = station.parameters.changesSince(before, false).values;
            station.noteChanges();
            return answer;
        });
    } catch (const Busy&) {
        throw;
    } catch (...) {
        ++station.refusedSets;
        throw;
    }
}

HttpAnswer listParameters(SharedStation& station, const HttpRequest& request, const std::string&) {
    const Query query(request);
    const Words names = query.list("names");
    const bool onlyChanged = query.flag("changed");
    return jsonAnswer(station.commands.run(Work::reads, [&] {
        std::vector<Target> targets;
        for (const std::string& name : names)
            targets.push_back(station.parameters.targetOf(name));
        if (names.empty())
            for (const Parameter& parameter : station.access.live->parameters().all())
                targets.push_back({&parameter});
        Json rows = Json::array();
        for (const Target& target : targets)
            if (!onlyChanged || station.parameters.isChanged(target))
                rows.push_back(station.parameters.documentOf(target));
        return Json{{"parameters", std::move(rows)}};
    }));
}

HttpAnswer showParameter(SharedStation& station, const HttpRequest&, const std::string& name) {
    return jsonAnswer(station.commands.run(
        Work::reads, [&] { return station.parameters.documentOf(station.parameters.targetOf(name)); }));
}

HttpAnswer setParameter(SharedStation& station, const HttpRequest& request, const std::string& name) {
    const Json body = bodyOf(request, {"value"});
    if (!body.contains("value"))
        throw HttpError(status::badRequest, "invalid",
                        R"(the body has no member "value": {"value": 2048} is expected)");
    const std::string word = name + "=" + valueWord(body.at("value"));
    return jsonAnswer(runChange(station, "set " + asShellWord(word), [&] {
        static_cast<void>(station.parameters.targetOf(name)); // an unknown name is not an invalid value
        Json answer = applyAll(station, {word}).at(0);
        return answer;
    }));
}

HttpAnswer setSeveral(SharedStation& station, const HttpRequest& request, const std::string&) {
    const Json body = bodyOf(request, {"settings", "anyOrder"});
    Words words;
    if (body.contains("settings") && body.at("settings").is_array())
        for (const Json& setting : body.at("settings")) {
            const bool isSetting = setting.is_object() && setting.contains("name") &&
                                   setting.at("name").is_string() && setting.contains("value");
            if (!isSetting)
                throw HttpError(status::badRequest, "invalid",
                                R"(a setting is {"name": "FG_WIDTH", "value": 2048})");
            requireMembers(setting, {"name", "value"}, "a setting");
            words.push_back(setting.at("name").get<std::string>() + "=" + valueWord(setting.at("value")));
        }
    if (words.empty() || words.size() > mostSettings)
        throw HttpError(
            status::badRequest, "invalid",
            R"(the body has no settings, or too many: {"settings": [{"name": "FG_WIDTH", "value": 2048}]})"
            " with 1 to " +
                std::to_string(mostSettings) + " of them is expected");
    const Json anyOrder = body.value("anyOrder", Json(false));
    if (!anyOrder.is_boolean())
        throw HttpError(status::badRequest, "invalid",
                        "anyOrder is " + shortened(anyOrder.dump(), 40) + ": true or false is expected");
    return jsonAnswer(runChange(station, "set " + joinWords(words), [&] {
        return Json{{"settings",
                     anyOrder == Json(true) ? applyInAnyOrder(station, words) : applyAll(station, words)}};
    }));
}

} // namespace serve
