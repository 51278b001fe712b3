#include "appletctl/background.h"

#include "appletctl/ConfigurationFile.h"
#include "appletctl/errors.h"
#include "appletctl/jobs.h"

#include "vexo/fg_errors.h"

#include <algorithm>

namespace appletctl {
namespace {

/** What a configuration file has to do with a parameter. There is no list of keys here: what is saved is seen
 *  in a file, and a load fails without a key that it reads. */
class RolesInFile {
public:
    explicit RolesInFile(Instance& instance, const ParameterList& parameters) : m_instance(instance) {
        // So that the loads need neither compute tables nor read a file of tables.
        writeValue(instance, {&parameters.find("FG_LUT_CUSTOM_FILE")}, std::string());
        writeValue(instance, {&parameters.find("FG_LUT_TYPE")}, static_cast<std::int32_t>(LUT_TYPE_CUSTOM));
        m_state.emplace(stateOf(instance));
    }

    const char* of(const std::string& name) {
        const auto* line = ConfigurationFile::find(m_state->values(), name);
        if (line == nullptr) return "none";
        m_file.write(m_state->textWith(*line, ""));
        const int code = m_instance.applet().Fg_loadConfig(m_instance.fg(), m_file.path().c_str());
        return code == FG_OK ? "reader" : "restored";
    }

private:
    Instance& m_instance;
    std::optional<ConfigurationFile> m_state;
    TemporaryFile m_file;
};

bool isSettable(Trial& trial, const Target& target) {
    if (!target.parameter->effectOfWriting().empty()) return true;
    const Reading reading = readValue(trial.instance(), target);
    return writeValue(trial.instance(), target, reading.value) != FG_ERR_NOT_AVAILABLE;
}

} // namespace

json backgroundJob(Trial& trial, const json& arguments) {
    const json& defaults = trial.defaults();
    const auto names = arguments.at("names").get<std::vector<std::string>>();
    json backgrounds = json::object();
    for (const std::string& name : names) {
        backgrounds[name]["start"] = defaults.value(name, json());
        backgrounds[name]["settable"] = isSettable(trial, trial.target(name));
    }
    if (!arguments.at("roles").get<bool>()) return backgrounds;
    RolesInFile roles(trial.instance(), trial.parameters());
    for (const std::string& name : names)
        backgrounds[name]["fileRole"] = roles.of(name);
    return backgrounds;
}

std::map<std::string, Background>
backgroundOf(Context& context, const std::vector<const Parameter*>& parameters, FileRoles roles) {
    std::vector<std::string> names;
    for (const Parameter* parameter : parameters)
        names.push_back(parameter->name);
    const json answer =
        context.scratch().ask("background", {{"names", names}, {"roles", roles == FileRoles::asked}});
    std::map<std::string, Background> backgrounds;
    for (const Parameter* parameter : parameters) {
        const json& told = answer.at(parameter->name);
        Background& background = backgrounds[parameter->name];
        if (!told.at("start").is_null()) background.start = fromMessage(wholeOf(*parameter), told["start"]);
        background.isSettable = told.at("settable").get<bool>();
        background.fileRole = told.value("fileRole", "");
    }
    return backgrounds;
}

std::string fileRoleInWords(const std::string& role) {
    if (role == "restored") return "saved, and restored by a load";
    if (role == "reader") return "saved for the reader of the file: a load leaves it aside";
    return role.empty() ? "" : "not saved";
}

} // namespace appletctl
