#include "applet_tools/applet/events.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/terminal.h"
#include "appletctl/commands/Command.h"

#include <unistd.h>

#include <optional>

namespace appletctl {
namespace {

/** The data of an event with that mask; none for an event that the applet only forwards. */
std::optional<FgEventRecord> recordOf(const applet_host::AppletFunctions& applet, std::uint64_t mask) {
    constexpr int versionWithWideMask = 2;
    FgEventRecord record{};
    if (applet.Info(FG_INFO_EVENT_RECORD, 0, versionWithWideMask, &mask, &record) != FG_OK)
        return std::nullopt;
    return record;
}

Report listEvents(Context& context, const Words&) {
    requireBoard(context.options(), "events");
    Instance& instance = context.instance();
    Report report;
    auto& events = report.document["events"] = nlohmann::ordered_json::array();
    Table table;
    table.setTitles({"NAME", "MASK", "DATA", "VALUE"});
    for (const auto& [mask, name] : eventsOf(instance)) {
        const std::optional<FgEventRecord> record = recordOf(instance.applet(), mask);
        const std::string dataName = record ? toUtf8(record->name) : "-";
        table.addRow(
            {printable(name), hexText(mask), printable(dataName), record ? numberText(record->value) : "-"});
        nlohmann::ordered_json row = {{"name", name}, {"mask", mask}, {"data", nullptr}};
        if (record) row["data"] = {{"name", dataName}, {"value", record->value}};
        events.push_back(std::move(row));
    }
    report.text = table.render(Style::forStream(STDOUT_FILENO));
    return report;
}

} // namespace

extern const Command eventsCommand;
const Command eventsCommand = {
    .name = "events",
    .help = "Show the events of the design: names, masks and data",
    .examples = {{"events", "names and masks"}},
    .run = listEvents,
    .showsValues = true,
};

} // namespace appletctl
