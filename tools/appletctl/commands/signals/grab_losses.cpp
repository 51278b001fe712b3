#include "appletctl/commands/signals/grab_losses.h"

#include "applet_tools/base/numbers.h"
#include "applet_tools/station/signals.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/report_text.h"
#include "appletctl/base/terminal.h"

#include <unistd.h>

namespace appletctl {
namespace {

std::string tableText(const std::vector<std::int64_t>& counts) {
    Table table;
    table.setTitles({"LOST", "TIMES", "WHAT IT IS", "WHAT HELPS"});
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const LossKind& kind = lossKinds()[i];
        table.addRow({kind.name, numberText(counts[i]), kind.what, kind.advice});
    }
    return table.render(Style::forStream(STDOUT_FILENO));
}

nlohmann::ordered_json asJson(const std::vector<std::int64_t>& counts) {
    auto losses = nlohmann::ordered_json::object();
    for (std::size_t i = 0; i < counts.size(); ++i)
        losses[lossKinds()[i].name] = counts[i];
    return losses;
}

/** A kind of loss that occurred. */
void addLoss(CommandRun& run, const GrabOptions& own, const LossKind& kind, std::int64_t count) {
    const std::string words = std::string(kind.what) + ": " + numberText(count) + "; " + kind.advice;
    if (own.isStrict)
        run.fail(words);
    else if (!own.isForProgram() && !own.wantsLosses)
        run.report.text += lineOf({"lost", kind.name, numberText(count)}, words + ".");
}

} // namespace

void addLosses(CommandRun& run, const GrabOptions& own, const std::vector<std::int64_t>& before) {
    std::vector<std::int64_t> counts = lossesOf(run.instance);
    for (std::size_t i = 0; i < counts.size(); ++i)
        counts[i] -= before[i];
    run.report.document["losses"] = asJson(counts);
    for (std::size_t i = 0; i < counts.size(); ++i)
        if (counts[i] > 0) addLoss(run, own, lossKinds()[i], counts[i]);
    if (own.wantsLosses && !own.isForProgram()) run.report.text += '\n' + tableText(counts);
}

} // namespace appletctl
