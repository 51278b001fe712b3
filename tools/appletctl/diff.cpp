#include "appletctl/differences.h"
#include "appletctl/text.h"

namespace appletctl {
namespace {

/** A word with an equals sign is an assignment; the first one is a file in any case. */
bool isSecondFile(const Words& words) { return words.size() > 1 && words[1].find('=') == std::string::npos; }

Report compare(const Options& options, const Words& words) {
    const std::string& first = fileOf(words);
    const bool areTwoFiles = isSecondFile(words);
    if (areTwoFiles && words.size() > 2)
        throw UsageError("two files are compared with each other: no assignments, and no third file");
    if (!areTwoFiles) requireBoard(options, "diff");
    const ConfigurationFile a = ConfigurationFile::read(first);
    Work work(options, areTwoFiles ? Words{} : behindFirst(words));
    if (work.isRefused()) {
        work.report.exitCode = exitTrouble;
        return work.report;
    }
    const ConfigurationFile b = areTwoFiles ? ConfigurationFile::read(words[1]) : stateOf(work.instance);
    FileKeys keys(options);
    const std::size_t count = addDifferences(
        work.report, {printable(toUtf8(first.c_str())), "first", &a},
        {areTwoFiles ? printable(toUtf8(words[1].c_str())) : "NOW", areTwoFiles ? "second" : "now", &b},
        work.parameters, keys);
    if (count == 0)
        work.report.text += "The values are the same.\n";
    else
        work.report.exitCode = exitDifferent;
    return work.report;
}

} // namespace

Report compareConfigurations(const Options& options, const Words& words) {
    try {
        return compare(options, words);
    } catch (const UsageError&) {
        throw;
    } catch (const std::exception& error) { // 1 would mean a difference
        return failureReport("failure", error.what(), exitTrouble);
    }
}

} // namespace appletctl
