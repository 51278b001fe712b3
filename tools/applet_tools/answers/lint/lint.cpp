// Valid but suspicious settings. The rules run on a scratch board, where they can try values.

#include "applet_tools/answers/lint/lint.h"

#include "applet_tools/answers/lint/load_findings.h"
#include "applet_tools/answers/lint/rules.h"
#include "applet_tools/applet/files/MemoryFile.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/message_rows.h"

#include "vexo/fg_errors.h"

#include <string>

namespace applet_tools {
namespace {

using Rule = void (*)(LintState& state);

constexpr Rule rules[] = {
    lint_rules::unfitTiming,       lint_rules::offTheGrid,       lint_rules::phaseAboveDownscale,
    lint_rules::outsideTheSensor,  lint_rules::unlikeTables,     lint_rules::customTableWithoutFile,
    lint_rules::untriggeredCamera, lint_rules::flashNowhere,     lint_rules::imageTrigger,
    lint_rules::sharedInputs,      lint_rules::simulatorOrDebug,
    lint_rules::refusedIfSetAgain, // last, since it tries values
    lint_rules::withoutEffect,
};

/** Loads the file; does not restore the board. */
LoadOutcome tryLoad(ScratchSession& session, FileKeys& keys, const std::string& file) {
    LoadOutcome outcome = loadAndCompare(session, keys, file);
    if (outcome.code == FG_ERR_FILE_TYPE)
        throw UsageError(shownFile(file) +
                         " cannot be loaded: it must exist, and .mcf must be part of its name");
    return outcome;
}

} // namespace

Lint lint(ScratchSession& session, const std::string& file) {
    LoadOutcome outcome;
    const MemoryFile readByLoad; // loaded instead of the file, which may be large
    const auto goBack = [&] {
        session.rewind();
        if (!file.empty()) loadConfiguration(session.instance(), readByLoad.configurationPath());
    };
    if (!file.empty()) {
        FileKeys keys(session);
        outcome = tryLoad(session, keys, file);
        readByLoad.write(textForLoad(requiredTextOfFile(file), keys.defaults()));
        goBack();
    }
    LintState state(session, goBack, file, keptNames(outcome));
    for (const Rule rule : rules)
        rule(state);
    if (!file.empty()) addLosses(state, outcome, file, ConfigurationFile(readByLoad.text()));
    return {outcome.code, state.findings()};
}

json asJson(const LintFinding& finding) {
    return {{"rule", finding.rule},
            {"names", finding.names},
            {"values", finding.values},
            {"why", finding.why},
            {"advice", finding.advice}};
}

template <> struct MessageRows<LintFinding> {
    using Record = LintFinding;
    static constexpr auto rows = std::tuple(&Record::rule, &Record::names, &Record::texts, &Record::values,
                                            &Record::why, &Record::advice);
};
template <> struct MessageRows<Lint> {
    static constexpr auto rows = std::tuple(&Lint::loaded, &Lint::findings);
};

json lintJob(ScratchSession& session, const json& arguments) {
    return toMessage(lint(session, arguments.value("file", "")));
}

Lint askLint(LiveSession& live, const std::string& file) {
    return recordFrom<Lint>(live.scratch().ask("lint", {{"file", file}}));
}

} // namespace applet_tools
