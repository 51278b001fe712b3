#include "applet_tools/answers/loading/loading.h"

#include "applet_tools/answers/loading/lines.h"
#include "applet_tools/answers/loading/refused_values.h"
#include "applet_tools/applet/access_log.h"
#include "applet_tools/applet/files/MemoryFile.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/scratch/message_rows.h"

#include "vexo/fg_errors.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace applet_tools {
namespace {

constexpr const char* carriageReturns = "its lines must not end in a carriage return";

Finding nothingLoaded(int code, const std::string& why) {
    return {FindingKind::file, "", "nothing was loaded: " + codeInWords(code) + "; " + why};
}

/** Why nothing of the file was loaded; empty if something was. */
std::string whyNothing(int code, const ConfigurationFile& asked, FileKeys& keys, bool areKeysMissing) {
    if (code == FG_OK) return "";
    const std::string trouble = headerTrouble(asked, keys);
    return !trouble.empty() || areKeysMissing ? trouble : carriageReturns;
}

/** The findings for the keys of the file. */
std::vector<Finding> findingsFor(ScratchSession& session, FileKeys& keys, int code,
                                 const ConfigurationFile& whole, const LoadedFile& file) {
    std::vector<Finding> findings = missingKeys(file, keys, session.parameters());
    const std::string nothing = whyNothing(code, file.asked, keys, !findings.empty());
    if (!nothing.empty()) return {nothingLoaded(code, nothing)};
    for (Finding& finding : examineLines(session, keys, whole, file))
        findings.push_back(std::move(finding));
    return findings;
}

/** The board before a load, and the design after it. */
struct BoardAtLoad {
    const ConfigurationFile& before;
    const DesignSnapshot& loaded;
};

/** What the load has lost of the file. */
std::vector<Finding> examine(ScratchSession& session, FileKeys& keys, const std::string& path,
                             const std::string& shownName, const LoadOutcome& outcome,
                             const BoardAtLoad& board) {
    if (outcome.code == FG_ERR_FILE_TYPE)
        return {nothingLoaded(outcome.code, "the file must exist, and .mcf must be part of its name")};
    std::optional<ConfigurationFile> whole(ConfigurationFile::read(path)); // may be large
    const ConfigurationFile asked(textForLoad(whole->text(), keys.defaults()));
    const ConfigurationFile state(outcome.state);
    const MemoryFile readByLoad; // used for the trials
    readByLoad.write(asked.text());
    const std::string trialPath = readByLoad.configurationPath();
    std::vector<Finding> findings =
        findingsFor(session, keys, outcome.code, *whole, {trialPath, asked, state});
    whole.reset();
    if (std::ranges::none_of(findings, &Finding::isRefusal)) return findings;
    const std::vector<std::string> outcomes =
        outcomesOf(session, asked, board.before, board.loaded, findings);
    session.rewind();
    loadConfiguration(session.instance(), trialPath);
    addCauses(session, shownName, asked, findings);
    for (std::size_t i = 0; i < outcomes.size(); ++i)
        findings[i].message += outcomes[i];
    return findings;
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
    return isTaken || isMissingOnly ? "" : carriageReturns;
}

LoadOutcome loadAndCompare(ScratchSession& session, FileKeys& keys, const std::string& file,
                           const std::string& name) {
    Instance& instance = session.instance();
    const ConfigurationFile before = stateOf(instance);
    const DesignSnapshot unloaded(session);
    takeAccessLog(instance);
    LoadOutcome outcome;
    outcome.code = loadConfiguration(instance, file);
    outcome.writes = takeAccessLog(instance);
    const DesignSnapshot loaded(session);
    outcome.changes = unloaded.changesTo(loaded);
    outcome.states = statesOf(instance, session.parameters());
    outcome.state = stateOf(instance).text();
    outcome.findings = examine(session, keys, file, name.empty() ? file : name, outcome, {before, loaded});
    return outcome;
}

bool LoadCheck::losesNothing() const { return std::ranges::none_of(findings, &Finding::isLoss); }

template <> struct MessageRows<Finding> {
    using Record = Finding;
    static constexpr auto rows = std::tuple(&Record::kind, &Record::key, &Record::message, &Record::isLoss,
                                            &Record::reached, &Record::isExamined, &Record::followsFrom);
};

json checkJob(ScratchSession& session, const json& arguments) {
    FileKeys keys(session);
    const auto file = arguments.at("file").get<std::string>();
    const MemoryFile copy;
    const auto text = arguments.find("text");
    const bool isCopied = text != arguments.end();
    if (isCopied) copy.write(bytesOf(*text));
    const LoadOutcome outcome =
        loadAndCompare(session, keys, isCopied ? copy.configurationPath() : file, file);
    return {
        {"findings", toMessage(outcome.findings)}, {"code", outcome.code}, {"state", asBytes(outcome.state)}};
}

namespace {

LoadCheck checkFrom(ScratchBoard& scratch, const json& arguments) {
    const json answer = scratch.ask("check", arguments);
    return {recordFrom<std::vector<Finding>>(answer["findings"]), answer["code"].get<int>(),
            ConfigurationFile(bytesOf(answer["state"]))};
}

} // namespace

LoadCheck askCheck(ScratchBoard& scratch, const std::string& file) {
    return checkFrom(scratch, {{"file", file}});
}

LoadCheck askCheck(ScratchBoard& scratch, const std::string& file, const ConfigurationFile& written) {
    return checkFrom(scratch, {{"file", file}, {"text", asBytes(written.text())}});
}

} // namespace applet_tools
