#include "applet_tools/answers/loading.h"

#include "applet_tools/applet/access_log.h"
#include "applet_tools/applet/assignments.h"
#include "applet_tools/applet/hardware_values.h"
#include "applet_tools/applet/published_limits.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/refusal.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace applet_tools {
namespace {

/** Why a load rejects a file with this header; empty if the header is valid. */
std::string headerTrouble(const ConfigurationFile& asked, FileKeys& keys) {
    const auto type = asked.header().value("Typ");
    const auto ours = keys.defaults().header().value("Typ");
    if (type && ours && *type != *ours)
        return "it is a file of the applet " + quotedText(*type) + ", not of " + inQuotes(*ours);
    std::vector<std::string> missing;
    for (const auto& line : keys.defaults().header())
        if (!asked.header().find(line.key) && keys.isReadByLoad(line.key)) missing.emplace_back(line.key);
    return missing.empty() ? "" : "its header lacks " + join(missing, ", ");
}

/** The value of the text; with the text itself if a load reads another value from it or changes its sign. */
std::string askedText(const Parameter& parameter, const std::string& text) {
    const std::string value = fileValueText(parameter, text);
    const auto exact = valueInFile(parameter, text), read = valueOfLoad(parameter, text);
    if (!exact && read) return value + " (read as " + valueWithUnit(parameter, *read) + ")";
    const bool isUnlike = parameter.kind() == REGISTER_KIND_UINT && text.starts_with('-') && exact;
    return isUnlike ? value + " (" + text + " in the file)" : value;
}

/** Checks the values of a file one by one, on the board that has loaded it. */
class Judge {
public:
    Judge(ScratchSession& session, const std::string& path, const ConfigurationFile& asked,
          const ConfigurationFile& state)
        : m_session(session)
        , m_path(path)
        , m_asked(asked)
        , m_state(state) {}

    /** The finding for a line of the file; empty if its value is set and the setter accepts it. */
    std::optional<Finding> judge(const ConfigurationFile::Line& line) {
        const std::string key(line.key), asked(line.value);
        const Parameter& wanted = m_session.parameters().find(key);
        const std::string is = m_state.value(key).value_or("");
        const std::optional<Value> value = valueInFile(wanted, asked), read = valueOfLoad(wanted, asked);
        if (!value && wanted.kind() == REGISTER_KIND_DOUBLE && asked == is)
            return Finding{"unreadable", key,
                           key + ": the file has " + fileValueText(wanted, asked) +
                               ", which is not a number; no limit stops it, so the board receives it"};
        if (!read || (!value && asked == is)) return std::nullopt;
        const bool isComputed = isIgnored(wanted, line);
        if (value && isComputed) return std::nullopt;
        const bool isKept = value ? isSameValue(wanted, asked, is) : valueInFile(wanted, is) == read;
        const std::string now = ", after the load it is " + fileValueText(wanted, is);
        const std::string change = key + ": the file has " + askedText(wanted, asked) + now;
        const int code = isComputed ? FG_OK : writeValue(m_session.instance(), {&wanted}, *read);
        if (code != FG_OK) return refusal(wanted, asked, *read, code, isKept ? "" : change);
        if (!value)
            return Finding{"unreadable", key,
                           key + ": the file has " + fileValueText(wanted, asked) + now + ": " +
                               readingInWords(wanted, asked)};
        if (isKept && !nearestStep(wanted, *value)) return std::nullopt;
        if (isKept)
            return Finding{"rounded", key,
                           key + ": the file has " + askedText(wanted, asked) +
                               requestedAndActual(wanted, *value, *value),
                           false};
        if (const auto taken = valueInFile(wanted, is); taken && areNeighbours(wanted, *value, *taken))
            return std::nullopt;
        if (isSameValue(wanted, onTrial(key), is)) {
            const std::string why = countingOf(wanted);
            return Finding{"rounded", key,
                           change + (why.empty() ? ", as close as the setter comes to it" : ": " + why),
                           false};
        }
        if (wanted.kind() == REGISTER_KIND_STRING && asked.starts_with(is))
            return Finding{"cut", key, change + ": a load ends a text at its first = ; or '"};
        return Finding{"unapplied", key,
                       change + ": a load does not apply it, so set " + key + "=" +
                           exactValueText(wanted, *value) + " afterwards"};
    }

private:
    /** The text that a save would write now. */
    std::string onTrial(std::string_view key) {
        return stateOf(m_session.instance()).value(key).value_or("");
    }

    /** True for a rate that the present mode computes from other parameters, so that the file's value is
     *  ignored. */
    bool isIgnored(const Parameter& parameter, const ConfigurationFile::Line& line) {
        if (parameter.kind() != REGISTER_KIND_DOUBLE || accessWord(parameter) != "ro") return false;
        const MemoryFile other;
        other.write(m_asked.textWith(line, parameter.name + "=-12345.678;\n"));
        const std::string before = onTrial(line.key);
        loadConfiguration(m_session.instance(), other.configurationPath());
        const bool isUnmoved = onTrial(line.key) == before;
        loadConfiguration(m_session.instance(), m_path);
        return isUnmoved;
    }

    /** `change` is empty for a value that reads back although it was refused. */
    Finding refusal(const Parameter& parameter, const std::string& asked, const Value& value, int code,
                    const std::string& change) {
        const std::string why = refusalInWords(parameter, value, code);
        if (!change.empty()) return {"refused", parameter.name, change + ": refused: " + why};
        return {"kept", parameter.name,
                parameter.name + ": " + askedText(parameter, asked) + " was refused: " + why};
    }

    ScratchSession& m_session;
    const std::string& m_path;
    const ConfigurationFile& m_asked;
    const ConfigurationFile& m_state;
};

std::vector<Finding> missingKeys(const ConfigurationFile& asked, const ConfigurationFile& state,
                                 FileKeys& keys, const ParameterList& parameters) {
    std::vector<Finding> findings;
    for (const auto& line : keys.defaults().values()) {
        if (asked.values().find(line.key) || !keys.isReadByLoad(line.key)) continue;
        const std::string key(line.key), is = state.value(key).value_or("");
        findings.push_back(
            {"missing", key,
             key + " is missing: it stays as it was, " + fileValueText(parameters.find(key), is)});
    }
    return findings;
}

/** "; did you mean FG_WIDTH?" for an unknown key; empty if no known key is similar. */
std::string nearestKey(const ParameterList& parameters, const std::string& key) {
    const std::size_t begin = key.find_first_not_of(" \t");
    if (begin == std::string::npos) return "";
    const std::string word = key.substr(begin, key.find_last_not_of(" \t") + 1 - begin);
    try {
        return didYouMean({parameters.find(word).name}) +
               " A load takes it in capitals and without blanks only";
    } catch (const UnknownName& error) {
        return didYouMean(error.nearest);
    } catch (const UsageError&) { // several have that label
        return "";
    }
}

Finding unknownKey(const ParameterList& parameters, std::string_view key) {
    constexpr std::size_t mostBytes = 100;
    const std::string name = shortened(toUtf8(std::string(key).c_str()), mostBytes);
    const std::string shown =
        name.find_first_of(" \t") != std::string::npos ? inQuotes(name) : printable(name);
    const bool isParameter =
        std::ranges::find(parameters.all(), key, &Parameter::name) != parameters.all().end();
    if (isParameter) return {"unknown", name, shown + " was ignored: no load reads it"};
    return {"unknown", name, shown + " is unknown and was ignored" + nearestKey(parameters, name)};
}

} // namespace

FileKeys::FileKeys(ScratchSession& session)
    : m_instance(session.options(), session.instance().host())
    , m_defaults(stateOf(m_instance)) {}

bool FileKeys::isReadByLoad(std::string_view key) {
    auto line = m_defaults.header().find(key);
    if (!line) line = m_defaults.values().find(key);
    if (!line) return false;
    m_file.write(m_defaults.textWith(*line, ""));
    return loadConfiguration(m_instance, m_file.configurationPath()) != FG_OK;
}

namespace {

/** The findings for all lines of the file; `asked` holds the keys that a load reads. */
std::vector<Finding> judgeLines(ScratchSession& session, FileKeys& keys, const ConfigurationFile& whole,
                                const std::string& file, const ConfigurationFile& asked,
                                const ConfigurationFile& state) {
    constexpr std::size_t mostUnknown = 20;
    std::vector<Finding> findings;
    std::size_t unknown = 0, done = 0;
    Judge judge(session, file, asked, state);
    for (const auto& line : whole.values()) {
        session.tellProgress(done++, whole.values().size());
        if (!keys.defaults().values().find(line.key)) {
            if (++unknown <= mostUnknown) findings.push_back(unknownKey(session.parameters(), line.key));
            continue;
        }
        if (line.count > 1)
            findings.push_back({"repeated", std::string(line.key),
                                std::string(line.key) + " is in the file " + numberText(line.count) +
                                    " times: only the first line counts"});
        const auto read = asked.values().find(line.key);
        const std::optional<Finding> finding = read ? judge.judge(*read) : std::nullopt;
        if (finding && keys.isReadByLoad(line.key)) findings.push_back(*finding);
    }
    if (unknown > mostUnknown)
        findings.push_back(
            {"unknown", "",
             numberText(unknown - mostUnknown) + " more keys that no load reads were ignored"});
    return findings;
}

bool isRefusal(const Finding& finding) { return finding.kind == "refused" || finding.kind == "kept"; }

using KeySet = std::set<std::string, std::less<>>;

/** The keys of the refused values that are accepted in the present state. */
KeySet acceptedNow(ScratchSession& session, const ConfigurationFile& asked,
                   const std::vector<Finding>& findings) {
    KeySet accepted;
    for (const Finding& finding : findings) {
        if (!isRefusal(finding)) continue;
        const Parameter& parameter = session.parameters().find(finding.key);
        const auto value = valueOfLoad(parameter, asked.value(finding.key).value_or(""));
        if (value && parameter.kind() != REGISTER_KIND_STRING &&
            writeValue(session.instance(), {&parameter}, *value) == FG_OK)
            accepted.insert(finding.key);
    }
    return accepted;
}

/** Describes the changes of the design that a refused value causes, and adds them to the finding. To find
 *  them it loads the same file again with the previous value. */
std::string reachedInWords(ScratchSession& session, const ConfigurationFile& asked,
                           const ConfigurationFile& before, const DesignSnapshot& loaded, Finding& finding,
                           const std::function<void()>& lookWithout) {
    const auto line = asked.values().find(finding.key), old = before.values().find(finding.key);
    if (!line || !old || !isRefusal(finding)) return "";
    const MemoryFile other;
    other.write(asked.textWith(*line, old->text));
    session.rewind();
    loadConfiguration(session.instance(), other.configurationPath());
    const std::vector<DesignChange> reached = DesignSnapshot(session).changesTo(loaded);
    lookWithout();
    if (reached.empty()) return "; nothing of it has reached the board";
    finding.reached = asJson(reached);
    std::vector<std::string> words;
    words.reserve(reached.size());
    for (const DesignChange& change : reached)
        words.push_back(change.parameter + " " + afterInWords(change) + " (" + beforeInWords(change) +
                        " without it)");
    return "; the board has received it: " + join(words, ", ");
}

/** Names the cause of each value that is refused only because of another refused one. `freed` has the values that are
 *  accepted without that of a key. Two values that free each other are both causes. */
void markFollowers(std::vector<Finding>& findings, const std::map<std::string, KeySet>& freed) {
    const auto frees = [&](const std::string& cause, const std::string& key) {
        const auto found = freed.find(cause);
        return found != freed.end() && found->second.contains(key);
    };
    const auto follows = [&](const std::string& key, const std::string& cause) {
        return frees(cause, key) && !frees(key, cause);
    };
    for (Finding& finding : findings) {
        const auto cause = std::ranges::find_if(freed, [&](const auto& one) {
            const bool isFirst = std::ranges::none_of(
                freed, [&](const auto& other) { return follows(one.first, other.first); });
            return isFirst && follows(finding.key, one.first);
        });
        if (!isRefusal(finding) || cause == freed.end()) continue;
        finding.followsFrom = cause->first;
        finding.message += "; that follows from the refusal of " + cause->first;
    }
}

/** The consequence of each refused value; empty for the other findings. Names the causes of refusals that follow from
 *  others. */
std::vector<std::string> outcomesOf(ScratchSession& session, const ConfigurationFile& asked,
                                    const ConfigurationFile& before, const DesignSnapshot& loaded,
                                    std::vector<Finding>& findings) {
    std::vector<std::string> outcomes;
    std::map<std::string, KeySet> freed;
    bool isExplained = false; // the meaning of a kept value is the same for all, so it is said once
    for (Finding& finding : findings) {
        session.tellProgress(outcomes.size(), findings.size());
        std::string& words = outcomes.emplace_back();
        if (finding.kind == "kept")
            words =
                std::string("; it reads back nevertheless") +
                (std::exchange(isExplained, true) ? "" : ", and setters of other parameters work with it");
        words += reachedInWords(session, asked, before, loaded, finding,
                                [&] { freed[finding.key] = acceptedNow(session, asked, findings); });
    }
    markFollowers(findings, freed);
    return outcomes;
}

/** A refused value of the file and the index of its finding. */
struct RefusedValue {
    Finding* finding;
    Assignment assignment;
};

/** The refused values for which a cause can be looked for. */
std::vector<RefusedValue> refusedValues(const ScratchSession& session, const ConfigurationFile& asked,
                                        std::vector<Finding>& findings) {
    std::vector<RefusedValue> refused;
    for (Finding& finding : findings) {
        if (!isRefusal(finding) || !finding.followsFrom.empty() || !asked.values().find(finding.key))
            continue;
        const Parameter& parameter = session.parameters().find(finding.key);
        const std::string text = asked.value(finding.key).value_or("");
        const auto value = valueOfLoad(parameter, text);
        if (value && parameter.kind() != REGISTER_KIND_STRING)
            refused.push_back({&finding, {{&parameter}, text, *value}});
    }
    return refused;
}

/** Adds the cause of the limit, the nearest value and possible changes to the first refusals, in the state
 *  after the load. For the others it names the command that finds them. */
void addCauses(ScratchSession& session, const std::string& file, const ConfigurationFile& asked,
               std::vector<Finding>& findings) {
    session.keep();
    constexpr std::size_t most = 5; // each takes many trials
    const std::vector<RefusedValue> refused = refusedValues(session, asked, findings);
    if (refused.empty()) return;
    std::vector<Assignment> assignments;
    for (std::size_t i = 0; i < refused.size(); ++i) {
        const auto& [finding, assignment] = refused[i];
        if (i < most) {
            assignments.push_back(assignment);
            continue;
        }
        finding->isExamined = false;
        finding->message += "; the cause was looked for with the first " + numberText(most) +
                            " refused values only, so ask 'appletctl why " + finding->key + "=" +
                            exactValueText(*assignment.target.parameter, assignment.value) + " --from " +
                            asShellWord(file) + "'";
    }
    Probe probe(session);
    const std::vector<Suggestion> suggestions = suggestionsFor(probe, assignments);
    for (std::size_t i = 0; i < suggestions.size(); ++i)
        refused[i].finding->message += suggestions[i].words();
}

/** Why nothing of the file was loaded; empty if something was. */
std::optional<Finding> wholeFileFinding(int code, const ConfigurationFile& asked, FileKeys& keys,
                                        bool areKeysMissing) {
    if (code == FG_OK) return std::nullopt;
    std::string why = headerTrouble(asked, keys);
    if (why.empty() && !areKeysMissing) why = "its lines must not end in a carriage return";
    if (why.empty()) return std::nullopt;
    return Finding{"file", "", "nothing was loaded: " + codeInWords(code) + "; " + why};
}

} // namespace

std::string wholeFileTrouble(ScratchSession& session, FileKeys& keys, const ConfigurationFile& asked) {
    if (std::string trouble = headerTrouble(asked, keys); !trouble.empty()) return trouble;
    const MemoryFile file;
    file.write(asked.text());
    const bool isTaken = loadConfiguration(session.instance(), file.configurationPath()) == FG_OK;
    const bool isMissingOnly =
        !isTaken && std::ranges::any_of(keys.defaults().values(), [&](const auto& line) {
            return !asked.values().find(line.key) && keys.isReadByLoad(line.key);
        });
    return isTaken || isMissingOnly ? "" : "its lines must not end in a carriage return";
}

LoadOutcome loadAndCompare(ScratchSession& session, FileKeys& keys, const std::string& file,
                           const std::string& name) {
    LoadOutcome outcome;
    const ConfigurationFile before = stateOf(session.instance());
    const DesignSnapshot picture(session);
    takeWrites(session.instance());
    outcome.code = loadConfiguration(session.instance(), file);
    outcome.writes = takeWrites(session.instance());
    const DesignSnapshot loaded(session);
    outcome.changes = picture.changesTo(loaded);
    outcome.states = statesOf(session.instance(), session.parameters());
    const ConfigurationFile state = stateOf(session.instance());
    outcome.state = state.text();
    if (outcome.code == FG_ERR_FILE_TYPE) {
        outcome.findings = {{"file", "",
                             "nothing was loaded: " + codeInWords(outcome.code) +
                                 "; the file must exist, and .mcf must be part of its name"}};
        return outcome;
    }
    std::optional<ConfigurationFile> whole(ConfigurationFile::read(file)); // may be large
    const ConfigurationFile asked(textForLoad(whole->text(), keys.defaults()));
    const MemoryFile readByLoad; // used for the trials
    readByLoad.write(asked.text());
    outcome.findings = missingKeys(asked, state, keys, session.parameters());
    if (const auto trouble = wholeFileFinding(outcome.code, asked, keys, !outcome.findings.empty())) {
        outcome.findings = {*trouble};
        return outcome;
    }
    for (Finding& finding : judgeLines(session, keys, *whole, readByLoad.configurationPath(), asked, state))
        outcome.findings.push_back(std::move(finding));
    whole.reset();
    const std::vector<std::string> outcomes = outcomesOf(session, asked, before, loaded, outcome.findings);
    if (std::ranges::none_of(outcome.findings, isRefusal)) return outcome;
    session.rewind();
    loadConfiguration(session.instance(), readByLoad.configurationPath());
    addCauses(session, name.empty() ? file : name, asked, outcome.findings);
    for (std::size_t i = 0; i < outcomes.size(); ++i)
        outcome.findings[i].message += outcomes[i];
    return outcome;
}

nlohmann::ordered_json asJson(const std::vector<Finding>& findings) {
    auto rows = nlohmann::ordered_json::array();
    for (const Finding& finding : findings) {
        nlohmann::ordered_json row = {{"kind", finding.kind},
                                      {"name", toUtf8(finding.key.c_str())},
                                      {"isLoss", finding.isLoss},
                                      {"message", finding.message}};
        if (!finding.reached.is_null()) row["reached"] = finding.reached;
        if (!finding.followsFrom.empty()) row["followsFrom"] = finding.followsFrom;
        rows.push_back(std::move(row));
    }
    return rows;
}

bool LoadCheck::losesNothing() const { return std::ranges::none_of(findings, &Finding::isLoss); }

json checkJob(ScratchSession& session, const json& arguments) {
    FileKeys keys(session);
    const auto file = arguments.at("file").get<std::string>();
    const MemoryFile copy;
    const auto text = arguments.find("text");
    const bool isCopied = text != arguments.end();
    if (isCopied) copy.write(bytesOf(*text));
    const LoadOutcome outcome =
        loadAndCompare(session, keys, isCopied ? copy.configurationPath() : file, file);
    json findings = json::array();
    for (const Finding& finding : outcome.findings)
        findings.push_back({{"kind", finding.kind},
                            {"key", finding.key},
                            {"message", finding.message},
                            {"isLoss", finding.isLoss},
                            {"isExamined", finding.isExamined},
                            {"followsFrom", finding.followsFrom},
                            {"reached", finding.reached.dump()}}); // keeps the member order
    return {{"findings", std::move(findings)}, {"code", outcome.code}, {"state", asBytes(outcome.state)}};
}

namespace {

LoadCheck checkFrom(ScratchBoard& scratch, const json& arguments) {
    const json answer = scratch.ask("check", arguments);
    LoadCheck check{{}, answer["code"].get<int>(), ConfigurationFile(bytesOf(answer["state"]))};
    for (const json& row : answer["findings"])
        check.findings.push_back({row["kind"].get<std::string>(), row["key"].get<std::string>(),
                                  row["message"].get<std::string>(), row["isLoss"].get<bool>(),
                                  nlohmann::ordered_json::parse(row["reached"].get<std::string>()),
                                  row["isExamined"].get<bool>(), row["followsFrom"].get<std::string>()});
    return check;
}

} // namespace

LoadCheck askCheck(ScratchBoard& scratch, const std::string& file) {
    return checkFrom(scratch, {{"file", file}});
}

LoadCheck askCheck(ScratchBoard& scratch, const std::string& file, const ConfigurationFile& written) {
    return checkFrom(scratch, {{"file", file}, {"text", asBytes(written.text())}});
}

} // namespace applet_tools
