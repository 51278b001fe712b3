#include "appletctl/commands.h"
#include "appletctl/loading.h"
#include "appletctl/text.h"

namespace appletctl {

Report checkConfiguration(Context& context, const Words& words) {
    requireBoard(context.options(),
                 "check"); // the virtual one: without it no format and no memory size is known
    const std::string& file = fileOf(words);
    Work work(context, {});
    work.report.document["file"] = toUtf8(file.c_str());
    FileKeys keys(context.options());
    addFindings(work, loadAndCompare(work, keys, file, context.options(), {}));
    if (!work.isRefused()) work.report.text += "A load of " + shownFile(file) + " loses nothing.\n";
    return work.report;
}

} // namespace appletctl
