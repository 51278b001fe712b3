#include "appletctl/commands/signals/trace.h"

#include "applet_tools/applet/access_log.h"
#include "applet_tools/applet/files/ConfigurationFile.h"
#include "applet_tools/base/DocumentField.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/report_text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/lines.h"

#include <algorithm>
#include <span>
#include <sstream>
#include <string_view>

namespace appletctl {
namespace {

using nlohmann::ordered_json;
using Lines = std::vector<std::string>;

/** Represents the log of a command without accesses. */
constexpr const char* noAccess = "(no access to the design)";

constexpr std::string_view accessKinds[] = {"set", "get", "write", "read"};
constexpr std::string_view valueTypes[] = {"u32", "i32", "u64", "i64", "f64", "text", "field"};

bool isOneOf(std::span<const std::string_view> words, std::string_view word) {
    return std::ranges::find(words, word) != words.end();
}

/** The layout of a log line. "trace set" prints its assignments between the accesses, other commands print their
 *  text above all accesses. */
enum class LineKind { access, ofSet, text, none };

LineKind kindOf(const std::string& line) {
    const LoggedAccess words = loggedAccess(line);
    if (isOneOf(accessKinds, words.access))
        return isOneOf(valueTypes, words.type) ? LineKind::access : LineKind::none;
    if (printable(line) != line) return LineKind::none;
    const bool isOfSet = line.empty() || line == noAccess || line.starts_with("FG_") ||
                         line.starts_with("DRA_") || line.starts_with(designPrefix);
    return isOfSet ? LineKind::ofSet : LineKind::text;
}

/** Throws UsageError for a line that "trace" would not write. */
Lines accessesOfText(const std::string& text, const std::string& file) {
    Lines lines;
    std::istringstream stream(text);
    std::size_t number = 0;
    for (std::string line; std::getline(stream, line);) {
        ++number;
        std::ranges::replace(line, '\t', ' '); // between the cells of --plain
        line.erase(0, line.find_first_not_of(' '));
        const LineKind kind = kindOf(line);
        if (kind == LineKind::none || (kind == LineKind::text && !lines.empty())) {
            constexpr std::size_t mostBytes = 100;
            std::erase(line, '\0');
            throw UsageError(shownFile(file) + ", line " + numberText(number) + ": " +
                             inQuotes(shortened(toUtf8(line), mostBytes)) +
                             " is not a line of 'trace', such as 'set NAME u32 1024'");
        }
        if (kind == LineKind::access) lines.push_back(line);
    }
    return lines;
}

bool holdsNoAccess(const std::string& text) { return text.find(noAccess) != std::string::npos; }

/** Throws UsageError for a document that "trace" would not write. */
Lines accessesOfDocument(const std::string& text) {
    const ordered_json document = applet_tools::parseDocument(text);
    if (!document.is_object() || !document.contains("accesses") || !document["accesses"].is_array())
        throw UsageError("this is not a document of 'trace': it has no \"accesses\"");
    Lines lines;
    for (const auto& access : document["accesses"]) {
        const std::string line = access.is_object() ? loggedLine(access) : "";
        if (kindOf(line) != LineKind::access)
            throw UsageError(
                "this is not a document of 'trace': it has an access that 'trace' would not write");
        lines.push_back(line);
    }
    return lines;
}

/** The accesses in a file written by "trace", as text or as JSON. */
Lines accessesOfFile(const std::string& file) {
    const std::string text = requiredTextOfFile(file);
    if (const std::size_t begin = text.find_first_not_of(" \t\r\n");
        begin != std::string::npos && text[begin] == '{')
        try {
            return accessesOfDocument(text);
        } catch (const UsageError& error) {
            throw UsageError(shownFile(file) + ": " + error.what());
        }
    Lines accesses = accessesOfText(text, file);
    if (!accesses.empty() || holdsNoAccess(text)) return accesses;
    throw UsageError(shownFile(file) +
                     " is not output of 'trace': it has no line such as 'set NAME u32 1024'");
}

/** A line that is only on one side. */
struct OneSided {
    const char* side;
    std::size_t number; // in that side's log, from 1
    std::string line;
};

/** The lines of both that are not in their longest common subsequence. */
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

/** Traces during its life, also if the command throws: a shell goes on with the same board. */
class Trace {
public:
    explicit Trace(Context& context) : m_context(context) { context.startTrace(); }
    ~Trace() { stop(); }
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

    Words stop() { return std::exchange(m_isRunning, false) ? m_context.stopTrace() : Words(); }

private:
    Context& m_context;
    bool m_isRunning = true;
};

} // namespace

Report traceRun(Context& context, bool isShownByCommand, const std::function<Report()>& run) {
    requireBoard(context.options(), "trace");
    if (!context.host().isVirtual())
        throw UsageError(
            "'trace' needs the virtual board, which logs what reaches it: leave --board out; 'plan' "
            "shows what a change would write to the board of the system");
    Trace trace(context);
    Report report = run();
    const Words accesses = trace.stop();
    report.document["accesses"] = accessesAsJson(accesses);
    if (isShownByCommand && !accesses.empty()) return report;
    std::string text;
    for (const std::string& line : accesses)
        text += accessLine(line);
    if (text.empty()) {
        text = "  ";
        text.append(noAccess).append("\n");
        text = forPerson(text);
    }
    // Text that the command printed itself is already out; the accesses, or the document, follow.
    report.text = report.isPrinted ? text : report.text + text;
    report.isPrinted = false;
    return report;
}

namespace {

Report compareTraces(Context&, const Words& files) {
    if (files.size() != 2) throw UsageError("'trace diff' compares two files that 'trace' has written");
    Report report;
    auto& rows = report.document["differences"] = ordered_json::array();
    const Lines first = accessesOfFile(files[0]), second = accessesOfFile(files[1]);
    for (const OneSided& one : differencesOf(first, second)) {
        const bool isFirst = std::string_view(one.side) == "first";
        report.text += lineOf({one.side, numberText(one.number), printable(one.line)},
                              (isFirst ? "-" : "+") + numberText(one.number) + "  " + printable(one.line));
        rows.push_back(
            {{"side", one.side}, {"number", one.number}, {"access", accessesAsJson({one.line}).front()}});
        report.exitCode = exitDifferent;
    }
    if (rows.empty()) report.text = forPerson("The accesses are the same.\n");
    return report;
}

} // namespace

extern const Command traceCommand;
const Command traceCommand = {
    .name = "trace",
    .help = "Show the accesses of a command to the design, or compare two such logs",
    .argument = "COMMAND",
    .argumentHelp = "A command with its words; or diff and two files",
    .examples = {{"trace set FG_WIDTH=2048", "what it writes to the design"},
                 {"trace diff before.txt after.txt", "two logs"}},
    .most = -1,
    .run = compareTraces,
    .kind = Command::Kind::prefix,
    .isForVirtualBoard = true,
};

} // namespace appletctl
