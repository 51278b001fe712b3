#include "applet_tools/scratch/defaults_and_roles.h"

#include "applet_tools/applet/Effort.h"
#include "applet_tools/applet/access_log.h"
#include "applet_tools/applet/files/ConfigurationFile.h"
#include "applet_tools/applet/files/MemoryFile.h"
#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/text.h"

#include "vexo/fg_errors.h"

#include <algorithm>

namespace applet_tools {
namespace {

/** A parameter's role in a configuration file. There is no list of keys here: saved keys are found in
 *  a file, and a key is read if a load fails without it. */
class RolesInFile {
public:
    explicit RolesInFile(Instance& instance, const ParameterList& parameters) : m_instance(instance) {
        // So that the loads neither compute tables nor read a file of tables.
        writeValue(instance, {&parameters.find("FG_LUT_CUSTOM_FILE")}, std::string());
        writeValue(instance, {&parameters.find("FG_LUT_TYPE")}, static_cast<std::int32_t>(LUT_TYPE_CUSTOM));
        m_state.emplace(stateOf(instance));
    }

    const char* of(const std::string& name) {
        const auto line = m_state->values().find(name);
        if (!line) return "none";
        m_file.write(m_state->textWith(*line, ""));
        ++effort().loads;
        const int code =
            m_instance.applet().Fg_loadConfig(m_instance.fg(), m_file.configurationPath().c_str());
        return code == FG_OK ? "reader" : "restored";
    }

private:
    Instance& m_instance;
    std::optional<ConfigurationFile> m_state;
    MemoryFile m_file;
};

bool isSettable(ScratchSession& session, const Target& target) {
    if (!target.parameter->effectOfWriting().empty()) return true;
    const ReadResult reading = readValue(session.instance(), target);
    return writeValue(session.instance(), target, reading.value) != FG_ERR_NOT_AVAILABLE;
}

} // namespace

json fromBoardJob(ScratchSession& session, const json&) {
    Instance& instance = session.instance();
    logAccesses(instance);
    json names = json::array();
    for (const Parameter& parameter : session.parameters().all()) {
        readValue(instance, {&parameter});
        if (!takeAccessLog(instance).empty()) names.push_back(parameter.name);
    }
    return names;
}

json defaultsAndRolesJob(ScratchSession& session, const json& arguments) {
    const json& defaults = session.defaults();
    const auto names = arguments.at("names").get<std::vector<std::string>>();
    json defaultsAndRoles = json::object();
    for (const std::string& name : names) {
        defaultsAndRoles[name]["start"] = defaults.value(name, json());
        defaultsAndRoles[name]["settable"] = isSettable(session, session.target(name));
    }
    if (!arguments.at("roles").get<bool>()) return defaultsAndRoles;
    RolesInFile roles(session.instance(), session.parameters());
    for (std::size_t done = 0; const std::string& name : names) {
        session.reportProgress(done++, names.size());
        defaultsAndRoles[name]["fileRole"] = roles.of(name);
    }
    return defaultsAndRoles;
}

std::map<std::string, DefaultAndRole>
defaultsAndRolesOf(LiveSession& live, const std::vector<const Parameter*>& parameters, FileRoles roles) {
    std::vector<std::string> names;
    names.reserve(parameters.size());
    for (const Parameter* parameter : parameters)
        names.push_back(parameter->name);
    const json answer =
        live.scratch().ask("defaultsAndRoles", {{"names", names}, {"roles", roles == FileRoles::asked}});
    std::map<std::string, DefaultAndRole> defaultsAndRoles;
    for (const Parameter* parameter : parameters) {
        const json& row = answer.at(parameter->name);
        DefaultAndRole& known = defaultsAndRoles[parameter->name];
        known.isSettable = row.at("settable").get<bool>();
        if (known.isSettable && !row.at("start").is_null())
            known.start = fromMessage(wholeOf(*parameter), row["start"]);
        known.fileRole = row.value("fileRole", "");
    }
    return defaultsAndRoles;
}

bool isChanged(LiveSession& live, const Parameter& parameter, const DefaultAndRole& known, const Value& now) {
    if (!known.start || *known.start == now || isComputedRate(parameter)) return false;
    const LoadHistory& loads = live.instance().loads();
    const bool isLoaded = !loads.texts.empty() && !loads.setSince.contains(parameter.id);
    return !isLoaded || !areNeighbours(parameter, *known.start, now);
}

nlohmann::ordered_json changedSettings(LiveSession& live) {
    std::vector<const Parameter*> parameters;
    for (const Parameter& parameter : live.parameters().all())
        if (parameter.effectOfReading().empty()) parameters.push_back(&parameter);
    const auto known = defaultsAndRolesOf(live, parameters, FileRoles::unasked);
    nlohmann::ordered_json changed = nlohmann::ordered_json::object();
    for (const Parameter* parameter : parameters) {
        const Target target = wholeOf(*parameter);
        const ReadResult reading = live.read(target);
        if (reading.error != FG_OK || !reading.isMeasured ||
            !isChanged(live, *parameter, known.at(parameter->name), reading.value))
            continue;
        const bool isArray = elementCount(*parameter) > 0;
        changed[parameter->name] =
            valueAsJson({parameter}, isArray ? emptyValue({parameter}) : reading.value);
    }
    return changed;
}

std::string fileRoleInWords(const std::string& role) {
    if (role == "restored") return "saved, and read by a load";
    if (role == "reader") return "saved for the reader of the file: a load leaves it aside";
    return role.empty() ? "" : "not saved";
}

json defaultsJob(ScratchSession& session, const json&) {
    Instance& instance = session.instance();
    json defaults = json::array();
    const int count = instance.applet().Fg_getNrOfParameter(instance.fg());
    for (int i = 0; i < count; ++i) {
        const char* name = instance.applet().Fg_getParameterName(instance.fg(), i);
        const auto& all = session.parameters().all();
        const auto found = std::ranges::find(all, toUtf8(name), &Parameter::name);
        if (found == all.end() || !found->effectOfReading().empty() || found->writesFile()) continue;
        const ReadResult reading = readValue(instance, wholeOf(*found));
        if (reading.error != FG_OK) continue;
        // Without a setter the value is not a default: it is measured or fixed.
        if (writeValue(instance, wholeOf(*found), reading.value) == FG_ERR_NOT_AVAILABLE) continue;
        defaults.push_back({{"name", found->name}, {"value", asMessage(reading.value)}});
    }
    return defaults;
}

} // namespace applet_tools
