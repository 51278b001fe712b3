#include "appletctl/base/output.h"

#include "appletctl/base/text.h"

#include <langinfo.h>
#include <locale.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <new>
#include <string_view>

namespace appletctl {

namespace {

struct Mode {
    bool isPlain = false;
    std::string colour = "auto";
};

/** Of the process, set once by its command line. */
Mode& mode() {
    static Mode of;
    return of;
}

bool isUtf8Locale() {
    const locale_t user = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (user == nullptr) return false;
    const bool isUtf8 = std::string_view(nl_langinfo_l(CODESET, user)) == "UTF-8";
    freelocale(user);
    return isUtf8;
}

} // namespace

void setOutputMode(const Options& options) { mode() = {options.plain, options.colour}; }

bool isCapableTerminal(int fileDescriptor) {
    if (mode().isPlain) return false;
    const char* terminal = std::getenv("TERM");
    const bool dumb = terminal == nullptr || std::string_view(terminal) == "dumb";
    return isatty(fileDescriptor) == 1 && !dumb;
}

Style Style::forStream(int fileDescriptor) {
    Style style;
    const char* const refused = std::getenv("NO_COLOR"); // set, and to something
    style.m_colour = mode().colour == "auto"
                         ? isCapableTerminal(fileDescriptor) && (refused == nullptr || *refused == '\0')
                         : mode().colour == "always" && !mode().isPlain;
    return style;
}

bool canDrawUnicode(int fileDescriptor) { return isCapableTerminal(fileDescriptor) && isUtf8Locale(); }

std::string Style::painted(const char* attributes, const std::string& text) const {
    if (!m_colour) return text;
    return std::string("\033[") + attributes + "m" + text + "\033[0m";
}

std::string Table::render(const Style& style) const {
    if (mode().isPlain) {
        std::string lines;
        for (const Line& line : m_lines)
            if (line.kind != Kind::heading) lines += join(line.cells, "\t") + '\n';
        return lines;
    }
    std::vector<std::size_t> widths;
    for (const Line& line : m_lines) {
        if (line.kind == Kind::heading) continue;
        widths.resize(std::max(widths.size(), line.cells.size()));
        for (std::size_t i = 0; i < line.cells.size(); ++i)
            widths[i] = std::max(widths[i], displayWidth(line.cells[i]));
    }
    std::string text;
    for (const Line& line : m_lines) {
        if (line.kind == Kind::heading) {
            if (&line != &m_lines.front()) text += '\n';
            text += style.heading(line.cells.front()) + '\n';
            continue;
        }
        std::string row;
        for (std::size_t i = 0; i < line.cells.size(); ++i) {
            row += "  " + line.cells[i];
            row.append(widths[i] - displayWidth(line.cells[i]), ' ');
        }
        row.erase(row.find_last_not_of(' ') + 1);
        text += (line.kind == Kind::titles ? style.faint(row) : row) + '\n';
    }
    return text;
}

std::string documentText(const Report& report, const std::string& command, int indent) {
    nlohmann::ordered_json document = {{"schema", "appletctl/2"}, {"command", command}};
    document["done"] = report.exitCode == exitDone;
    if (report.document.is_object()) document.update(report.document); // null where a command adds nothing
    return document.dump(indent, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
}

bool writeOut(const std::string& text) {
    std::cout << text << std::flush;
    return !std::cout.fail();
}

int print(const Report& report, const std::string& command, const Options& options) {
    const bool isSilent = report.isPrinted || (options.quiet && !options.json);
    const bool isWritten =
        isSilent || writeOut(options.json ? documentText(report, command, 2) : report.text);
    const bool isRead = isWritten || errno != EPIPE;
    const std::string name = Style::forStream(STDERR_FILENO).alarm("appletctl:");
    for (const std::string& problem : report.problems)
        std::cerr << name << ' ' << problem << '\n';
    for (const std::string& note : report.notes)
        if (options.verbose) std::cerr << "appletctl: " << note << '\n';
    if (!isWritten) {
        if (isRead) std::cerr << name << " the output could not be written\n";
        return exitRefused;
    }
    return report.exitCode;
}

std::string internalError(const std::exception& error) {
    if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) return "there is not enough memory";
    return std::string("internal error, please report it with the command line: ") + error.what();
}

Report failureReport(const char* kind, const std::string& words, ExitCode exitCode) {
    return {.document = {{"error", {{"kind", kind}, {"message", words}}}},
            .text = "",
            .problems = {words},
            .exitCode = exitCode};
}

} // namespace appletctl
