#include "appletctl/differences.h"
#include "appletctl/text.h"

namespace appletctl {
namespace {

/** A word with an equals sign is an assignment; the first one is a file in any case. */
bool isSecondFile(const Words& words) { return words.size() > 1 && words[1].find('=') == std::string::npos; }

} // namespace

Report compareConfigurations(Context& context, const Words& words) {
    const std::string& first = fileOf(words);
    const bool areTwoFiles = isSecondFile(words);
    if (areTwoFiles && words.size() > 2)
        throw UsageError("two files are compared with each other: no assignments, and no third file");
    if (!areTwoFiles) requireBoard(context.options(), "diff");
    const ConfigurationFile a = ConfigurationFile::read(first);
    Work work(context, areTwoFiles ? Words{} : behindFirst(words));
    if (work.isRefused()) return work.report;
    const ConfigurationFile b = areTwoFiles ? ConfigurationFile::read(words[1]) : stateOf(work.instance);
    FileKeys keys(context.options());
    const std::size_t count = addDifferences(
        work.report, {printable(toUtf8(first.c_str())), "first", &a},
        {areTwoFiles ? printable(toUtf8(words[1].c_str())) : "NOW", areTwoFiles ? "second" : "now", &b},
        work.parameters, keys);
    if (count == 0)
        work.report.text += "The values are the same.\n";
    else
        work.report.exitCode = exitRefused;
    return work.report;
}

} // namespace appletctl
