#include "appletctl/base/report_text.h"

#include "applet_tools/base/text.h"
#include "applet_tools/base/words.h"
#include "appletctl/base/layout.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/terminal.h"

namespace appletctl {

namespace {

std::string withoutEmptyLines(const std::string& text) {
    std::string lines;
    for (const char c : text)
        if (c != '\n' || (!lines.empty() && lines.back() != '\n')) lines += c;
    return lines;
}

} // namespace

std::string lineOf(const std::vector<std::string>& cells, const std::string& text) {
    return (isPlainOutput() ? join(cells, "\t") : text) + '\n';
}

std::string writtenLine(const std::string& file) {
    return lineOf({"written", printable(file)}, shownFile(file) + " written");
}

std::string forPerson(std::string text) { return isPlainOutput() ? std::string() : std::move(text); }

std::string laidOut(const Report& report) {
    if (report.isVerbatim) return report.text;
    return isPlainOutput() ? withoutEmptyLines(report.text) : wrapped(report.text, outputWidth());
}

std::string documentText(const Report& report, const std::string& command, int indent) {
    nlohmann::ordered_json document = {{"schema", "appletctl/2"}, {"command", command}};
    document["done"] = report.exitCode == exitDone;
    if (report.document.is_object()) document.update(report.document); // null where a command adds nothing
    return document.dump(indent, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
}

} // namespace appletctl
