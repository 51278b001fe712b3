#include "appletctl/loading.h"

#include "appletctl/limits.h"
#include "appletctl/text.h"

#include <algorithm>

namespace appletctl {
namespace {

int load(Instance& instance, const std::string& file) {
    return instance.applet().Fg_loadConfig(instance.fg(), file.c_str());
}

/** Why a load takes nothing from a file of this header; empty if the header is as it should be. */
std::string headerTrouble(const ConfigurationFile& asked, FileKeys& keys) {
    const auto type = asked.headerValue("Typ");
    const auto ours = keys.defaults().headerValue("Typ");
    if (type && ours && *type != *ours)
        return "it is a file of the applet " + inQuotes(toUtf8(type->c_str())) + ", not of " +
               inQuotes(*ours);
    std::vector<std::string> missing;
    for (const auto& line : keys.defaults().header())
        if (!asked.headerValue(line.key) && keys.isReadByLoad(line.key)) missing.push_back(line.key);
    return missing.empty() ? "" : "its header lacks " + join(missing, ", ");
}

/** Judges the values of a file one by one. The setters are asked on an instance of its own, where the same file
 *  was loaded; nothing is set at the caller's. */
class Judge {
public:
    Judge(const std::string& path, const ConfigurationFile& asked, const ConfigurationFile& state,
          const Options& options, const Words& assignments)
        : m_path(path)
        , m_asked(asked)
        , m_state(state)
        , m_context(options)
        , m_trial(m_context, assignments) {
        load(m_trial.instance, m_path);
    }

    /** What came of a line of the file; nothing if its value holds now and the setter agrees. */
    std::optional<Finding> judge(const ConfigurationFile::Line& line) {
        const std::string& key = line.key;
        const std::string& asked = line.value;
        const Parameter& wanted = m_trial.parameters.find(key);
        const std::string is = m_state.value(key).value_or("");
        const bool isKept = isSameValue(wanted, asked, is);
        const std::string change = key + ": the file has " + fileValueText(wanted, asked) +
                                   ", after the load it is " + fileValueText(wanted, is);
        const std::optional<Value> value = valueInFile(wanted, asked);
        if (!value && !isKept)
            return Finding{"unreadable", key, change + ": a load reads decimal numbers with a point"};
        if (!value || isComputed(wanted, line)) return std::nullopt;
        const int code = writeValue(m_trial.instance, {&wanted}, *value);
        if (code != FG_OK) return refusal(wanted, *value, code, isKept ? "" : change);
        if (isKept) return std::nullopt;
        if (isSameValue(wanted, onTrial(key), is))
            return Finding{"rounded", key, change + ", as close as the setter comes to it", false};
        if (wanted.kind() == REGISTER_KIND_STRING && asked.starts_with(is))
            return Finding{"cut", key, change + ": a load ends a text at its first = ; or '"};
        return Finding{"unapplied", key,
                       change + ": a load does not apply it, so set " + key + "=" +
                           valueText(wanted, *value) + " afterwards"};
    }

private:
    /** What a save on the trial instance would write now. */
    std::string onTrial(const std::string& key) { return stateOf(m_trial.instance).value(key).value_or(""); }

    /** True for a rate that the present mode computes from other parameters, whatever the file says. */
    bool isComputed(const Parameter& parameter, const ConfigurationFile::Line& line) {
        if (parameter.kind() != REGISTER_KIND_DOUBLE || accessWord(parameter) != "ro") return false;
        const TemporaryFile other;
        other.write(m_asked.textWith(line, line.key + "=-12345.678;\n"));
        const std::string before = onTrial(line.key);
        load(m_trial.instance, other.path());
        const bool isUnmoved = onTrial(line.key) == before;
        load(m_trial.instance, m_path);
        return isUnmoved;
    }

    /** `change` is empty for a value that reads back although it was refused. */
    static Finding refusal(const Parameter& parameter, const Value& value, int code,
                           const std::string& change) {
        const std::string why = refusalInWords(parameter, value, code);
        if (!change.empty()) return {"refused", parameter.name, change + ": refused: " + why};
        return {"kept", parameter.name,
                parameter.name + ": " + valueWithUnit(parameter, value) + " was refused: " + why +
                    ". It reads back all the same, and setters of other parameters work with it"};
    }

    const std::string& m_path;
    const ConfigurationFile& m_asked;
    const ConfigurationFile& m_state;
    Context m_context;
    Work m_trial;
};

std::vector<Finding> missingKeys(const ConfigurationFile& asked, const ConfigurationFile& state,
                                 FileKeys& keys, const ParameterList& parameters) {
    std::vector<Finding> findings;
    for (const auto& line : keys.defaults().values()) {
        if (asked.value(line.key) || !keys.isReadByLoad(line.key)) continue;
        const std::string is = state.value(line.key).value_or("");
        findings.push_back(
            {"missing", line.key,
             line.key + " is missing: it stays as it was, " + fileValueText(parameters.find(line.key), is)});
    }
    return findings;
}

std::string whyUnknown(const ParameterList& parameters, const std::string& key) {
    try {
        return "no load reads " + parameters.find(key).name;
    } catch (const UsageError& error) {
        return error.what();
    }
}

} // namespace

FileKeys::FileKeys(const Options& options) : m_instance(options), m_defaults(stateOf(m_instance)) {}

bool FileKeys::isReadByLoad(const std::string& key) {
    const auto* line = ConfigurationFile::find(m_defaults.header(), key);
    if (line == nullptr) line = ConfigurationFile::find(m_defaults.values(), key);
    if (line == nullptr) return false;
    m_trial.write(m_defaults.textWith(*line, ""));
    return load(m_instance, m_trial.path()) != FG_OK;
}

std::vector<Finding> loadAndCompare(Work& work, FileKeys& keys, const std::string& file,
                                    const Options& options, const Words& assignments) {
    const int code = load(work.instance, file);
    const auto notLoaded = [&](const std::string& why) {
        return Finding{"file", "", "nothing was loaded: " + codeInWords(code) + "; " + why};
    };
    if (code == FG_ERR_FILE_TYPE)
        return {notLoaded("the file must exist, and .mcf must be part of its name")};
    const ConfigurationFile asked = ConfigurationFile::read(file);
    if (code != FG_OK)
        if (const std::string why = headerTrouble(asked, keys); !why.empty()) return {notLoaded(why)};
    const ConfigurationFile state = stateOf(work.instance);
    std::vector<Finding> findings = missingKeys(asked, state, keys, work.parameters);
    if (code != FG_OK && findings.empty()) return {notLoaded("its lines must not end in a carriage return")};

    Judge judge(file, asked, state, options, assignments);
    for (const auto& line : asked.values()) {
        if (ConfigurationFile::find(keys.defaults().values(), line.key) == nullptr) {
            findings.push_back({"unknown", line.key,
                                printable(toUtf8(line.key.c_str())) +
                                    " was ignored: " + whyUnknown(work.parameters, line.key)});
        } else if (&line != ConfigurationFile::find(asked.values(), line.key)) {
            findings.push_back(
                {"repeated", line.key, line.key + " stands there again: only the first one counts"});
        } else {
            const std::optional<Finding> finding = judge.judge(line);
            if (finding && keys.isReadByLoad(line.key)) findings.push_back(*finding);
        }
    }
    return findings;
}

void addFindings(Work& work, const std::vector<Finding>& findings) {
    auto& rows = work.report.document["findings"] = nlohmann::ordered_json::array();
    for (const Finding& finding : findings) {
        rows.push_back({{"kind", finding.kind},
                        {"name", toUtf8(finding.key.c_str())},
                        {"isLoss", finding.isLoss},
                        {"message", finding.message}});
        if (finding.isLoss)
            work.refuse(finding.message);
        else
            work.report.text += finding.message + '\n';
    }
}

} // namespace appletctl
