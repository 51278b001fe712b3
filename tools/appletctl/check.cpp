#include "appletctl/commands.h"
#include "appletctl/loading.h"
#include "appletctl/text.h"

namespace appletctl {

Report checkConfiguration(const Options& options, const Words& words) {
    requireBoard(options, "check"); // the virtual one: without it no format and no memory size is known
    const std::string& file = fileOf(words);
    Work work(options, {});
    work.report.document["file"] = toUtf8(file.c_str());
    FileKeys keys(options);
    addFindings(work, loadAndCompare(work, keys, file, options, {}));
    if (!work.isRefused()) work.report.text += "A load of " + shownFile(file) + " loses nothing.\n";
    return work.report;
}

} // namespace appletctl
