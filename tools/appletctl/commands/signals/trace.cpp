#include "appletctl/commands/signals/trace.h"

#include "appletctl/applet/ConfigurationFile.h"
#include "appletctl/base/text.h"
#include "appletctl/commands/Command.h"

#include <algorithm>
#include <sstream>

namespace appletctl {
namespace {

using nlohmann::ordered_json;
using Lines = std::vector<std::string>;

constexpr const char* accessKinds[] = {"set ", "get ", "write ", "read "};

bool isAccess(const std::string& line) {
    return std::ranges::any_of(accessKinds, [&](const char* kind) { return line.starts_with(kind); });
}

Lines accessesOfText(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        line.erase(0, line.find_first_not_of(' '));
        if (isAccess(line)) lines.push_back(line);
    }
    return lines;
}

/** The accesses in a file that "trace" has written, as text or as JSON. */
Lines accessesOfFile(const std::string& file) {
    const auto text = textOfFile(file);
    if (!text) throw UsageError(inQuotes(toUtf8(file.c_str())) + " is no file that can be read");
    const auto document = ordered_json::parse(*text, nullptr, false);
    if (!document.is_object()) return accessesOfText(*text);
    if (!document.contains("accesses") || !document["accesses"].is_array())
        throw UsageError(inQuotes(toUtf8(file.c_str())) +
                         " is no document of 'trace': it has no \"accesses\"");
    Lines lines;
    for (const auto& line : document["accesses"])
        if (line.is_string()) lines.push_back(line.get<std::string>());
    return lines;
}

/** A line that only one side has. */
struct OneSided {
    const char* side;
    std::size_t number; // in that side's log, from 1
    std::string line;
};

/** What is left of both when the longest sequence that both have is taken out. */
std::vector<OneSided> differencesOf(const Lines& a, const Lines& b) {
    std::size_t head = 0, tail = 0;
    while (head < a.size() && head < b.size() && a[head] == b[head])
        ++head;
    while (head + tail < a.size() && head + tail < b.size() &&
           a[a.size() - 1 - tail] == b[b.size() - 1 - tail])
        ++tail;
    const std::size_t rows = a.size() - head - tail, columns = b.size() - head - tail;
    constexpr std::size_t mostCells = 50'000'000;
    if (rows * columns > mostCells) throw UsageError("the logs differ in too many places to be compared");
    std::vector<std::vector<std::uint32_t>> common(rows + 1, std::vector<std::uint32_t>(columns + 1));
    for (std::size_t i = rows; i-- > 0;)
        for (std::size_t j = columns; j-- > 0;)
            common[i][j] = a[head + i] == b[head + j] ? common[i + 1][j + 1] + 1
                                                      : std::max(common[i + 1][j], common[i][j + 1]);
    std::vector<OneSided> differences;
    for (std::size_t i = 0, j = 0; i < rows || j < columns;) {
        if (i < rows && j < columns && a[head + i] == b[head + j]) {
            ++i, ++j;
        } else if (j == columns || (i < rows && common[i + 1][j] >= common[i][j + 1])) {
            differences.push_back({"first", head + i + 1, a[head + i]});
            ++i;
        } else {
            differences.push_back({"second", head + j + 1, b[head + j]});
            ++j;
        }
    }
    return differences;
}

} // namespace

std::vector<std::string> writesOf(const std::vector<std::string>& accesses) {
    Lines writes;
    for (const std::string& line : accesses)
        if (line.starts_with("set ") || line.starts_with("write ")) writes.push_back(line);
    return writes;
}

std::string writtenParameter(const std::string& line) {
    std::string kind, name;
    std::istringstream(line) >> kind >> name;
    return name;
}

Report traceRun(Context& context, bool isShownByCommand, const std::function<Report()>& run) {
    requireBoard(context.options(), "trace");
    if (!context.instance().host()->isVirtual())
        throw UsageError(
            "'trace' needs the virtual board, which logs what reaches it: leave --board out; 'plan' "
            "shows what a change would write to the board of the system");
    context.startTrace();
    Report report = run();
    context.takeAccesses();
    report.document["accesses"] = context.accesses();
    if (isShownByCommand) return report;
    std::string text;
    for (const std::string& line : context.accesses())
        text += "  " + line + '\n';
    if (report.isPrinted && !context.options().json) writeOut(text);
    report.text += text;
    return report;
}

namespace {

Report compareTraces(Context&, const Words& files) {
    if (files.size() != 2) throw UsageError("'trace diff' compares two files that 'trace' has written");
    Report report;
    auto& rows = report.document["differences"] = ordered_json::array();
    for (const OneSided& one : differencesOf(accessesOfFile(files[0]), accessesOfFile(files[1]))) {
        const bool isFirst = std::string_view(one.side) == "first";
        report.text += (isFirst ? "-" : "+") + numberText(one.number) + "  " + printable(one.line) + '\n';
        rows.push_back({{"side", one.side}, {"number", one.number}, {"access", one.line}});
        report.exitCode = exitDifferent;
    }
    if (rows.empty()) report.text = "The accesses are the same.\n";
    return report;
}

} // namespace

extern const Command traceCommand;
const Command traceCommand = {
    .name = "trace",
    .help = "Show what a command does to the design; or compare two such logs: trace diff FILE FILE",
    .argument = "COMMAND",
    .argumentHelp = "A command with its words",
    .most = -1,
    .run = compareTraces,
    .kind = Command::Kind::prefix,
};

} // namespace appletctl
