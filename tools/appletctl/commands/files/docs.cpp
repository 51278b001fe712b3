// The documentation of all parameters, made from the tree: an HTML page, and manual pages.

#include "applet_tools/applet/files/MemoryFile.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/layout.h"
#include "appletctl/base/report_text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/HelpPage.h"
#include "appletctl/commands/files/documented.h"

#include <CLI/CLI.hpp>

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace appletctl {
namespace {

/** Escapes the text for the manual page's source. */
std::string plain(std::string_view text) {
    std::string marked;
    for (const char c : printable(text)) {
        constexpr std::string_view marks = "_*\\#[]|-~<.";
        if (marks.find(c) != std::string_view::npos) marked += '\\';
        marked += c;
    }
    return marked;
}

constexpr const char* manualTail =
    "# FILES\n\n"
    "*\\*.mcf*\n\tConfiguration files: values of parameters in sections, as the applet saves and loads "
    "them.\n\n"
    "*\\*.lut*\n\tTables of the lookup table, by colour.\n\n"
    "*\\*.scenario*\n\tScenarios: steps and what is expected of them, one a line.\n\n"
    "*$XDG\\_RUNTIME\\_DIR/appletctl*\n\tSockets and logs of the running stations; without that variable "
    "*/tmp/appletctl\\-UID*.\n\n"
    "*$XDG\\_STATE\\_HOME/appletctl/history*\n\tThe history of the shell; without that variable below "
    "*~/.local/state*.\n\n"
    "# ENVIRONMENT\n\n"
    "*APPLET\\_UNDER\\_TEST*\n\tAnother applet library; *--applet* goes before it.\n\n"
    "*APPLETCTL\\_STATION*\n\tThe running station that carries commands out; *--station* goes before it.\n\n"
    "*COLUMNS*\n\tThe width of a line, where the output is not a terminal.\n\n"
    "*NO\\_COLOR*, *TERM*\n\tNo colour when the first is set or the second is *dumb*.\n\n"
    "*VBOARD\\_STATION*\n\tA station file: what is around each virtual board that is opened.\n\n";

/** A list of terms with explanations. */
std::string terms(const std::vector<HelpEntry>& entries) {
    std::string text;
    for (const HelpEntry& entry : entries)
        text += "*" + plain(entry.name) + "*\n\t" + plain(entry.text) + "\n\n";
    return text;
}

std::string manualOfCommand(const Command& command, const HelpPage& page) {
    std::string text = "## " + plain(fullName(command)) + "\n\n*" + plain(page.usage) + "*\n\n" +
                       plain(page.description) + "\n\n" + terms(page.words) + terms(page.options);
    constexpr std::size_t literalWidth = 46; // of 60 columns, indented as the pages are
    if (!page.details.empty()) text += "```\n" + wrapped(page.details, literalWidth) + "```\n\n";
    return text + plain(page.effect) + "\n\n";
}

std::string manualOfProgram(const Program& program) {
    const HelpPage all = program.helpOf(nullptr);
    std::string text =
        "appletctl(1)\n\n# NAME\n\nappletctl \\- shows and sets the parameters of the applet\n\n"
        "# SYNOPSIS\n\n*appletctl* [OPTIONS] COMMAND ...\n\n# DESCRIPTION\n\n";
    text += plain(all.description) + "\n\n" + plain(boardNotes) + "\n\n" + plain(accessWords) +
            "\n\n# OPTIONS\n\nOf all commands:\n\n" + terms(all.options) + "# COMMANDS\n\n";
    std::vector<HelpEntry> examples = all.examples;
    for (const Command* command : program.commands) {
        if (isHidden(*command)) continue;
        const HelpPage page = program.helpOf(command);
        text += manualOfCommand(*command, page);
        examples.insert(examples.end(), page.examples.begin(), page.examples.end());
    }
    text += "# EXAMPLES\n\n" + terms(examples) + "# EXIT STATUS\n\n";
    for (const ExitCodeMeaning& one : exitCodes)
        text += std::string("*") + one.code + "*\n\t" + plain(one.meaning) + ".\n\n";
    return text + manualTail + "# SEE ALSO\n\n*appletctl\\-parameters*(7)\n";
}

std::string manualOfParameters(const std::vector<Documented>& rows) {
    std::string text =
        "appletctl-parameters(7)\n\n# NAME\n\nappletctl\\-parameters \\- the parameters of the applet\n\n"
        "# DESCRIPTION\n\nIn the order of the applet's groups.\n\n";
    std::string group;
    for (const Documented& row : rows) {
        const std::string path = row.parameter->path();
        if (path != group) text += "# " + plain(path) + "\n\n";
        group = path;
        text += "*" + plain(row.parameter->name) + "* " + plain(row.parameter->label()) + "\n\n";
        if (!row.explanation.empty()) text += plain(row.explanation) + "\n\n";
        for (const DocumentedLine& line : row.lines)
            text += std::string("- ") + plain(line.title) + ": " + plain(line.text) + "\n";
        text += "\n";
    }
    return text + "# SEE ALSO\n\n*appletctl*(1)\n";
}

/** Runs scdoc to make a manual page from its source. */
void writeManual(const std::string& file, const std::string& source) {
    const MemoryFile in, out;
    in.write(source);
    lseek(in.descriptor(), 0, SEEK_SET);
    const pid_t child = fork();
    if (child < 0) throw Failure(std::string("scdoc cannot be started: ") + std::strerror(errno));
    if (child == 0) {
        dup2(in.descriptor(), STDIN_FILENO);
        dup2(out.descriptor(), STDOUT_FILENO);
        execlp("scdoc", "scdoc", nullptr);
        _exit(127);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) == 127)
        throw Unavailable("manual pages are made by scdoc, and it is not installed: apt-get install scdoc");
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw Failure("scdoc could not make " + shownFile(file));
    writeFile(file, out.text());
}

void noteFile(Report& report, const std::string& file) {
    report.document["files"].push_back(toUtf8(file));
    report.text += writtenLine(file);
}

struct DocsOptions {
    std::optional<std::string> htmlFile;  /**< --html */
    std::optional<std::string> manFolder; /**< --man */
};

void addDocsOptions(CLI::App& command, Options& options) {
    auto& own = options.own<DocsOptions>();
    command.add_option("--html", own.htmlFile, "Page to write")->type_name("FILE");
    command.add_option("--man", own.manFolder, "Folder for the manual pages")->type_name("DIR");
}

Report writeDocs(Context& context, const Words&) {
    const auto& options = context.options().of<DocsOptions>();
    if (!options.htmlFile && !options.manFolder)
        throw UsageError("give --html FILE or --man DIR: what to write");
    if ((options.htmlFile && options.htmlFile->empty()) || (options.manFolder && options.manFolder->empty()))
        throw UsageError("the name is empty");
    const std::vector<Documented> rows = documentedParameters(context);
    Report report;
    report.document["parameters"] = rows.size();
    report.document["files"] = nlohmann::ordered_json::array();
    if (options.htmlFile) {
        writeFile(*options.htmlFile, documentationPage(rows));
        noteFile(report, *options.htmlFile);
    }
    if (!options.manFolder) return report;
    std::error_code error;
    std::filesystem::create_directories(*options.manFolder, error);
    if (error) throw Failure(shownFile(*options.manFolder) + " cannot be created: " + error.message());
    const std::pair<const char*, std::string> manuals[] = {
        {"appletctl.1", manualOfProgram(context.program())},
        {"appletctl-parameters.7", manualOfParameters(rows)}};
    for (const auto& [name, source] : manuals) {
        const std::string file = std::filesystem::path(*options.manFolder) / name;
        writeManual(file, source);
        noteFile(report, file);
    }
    return report;
}

} // namespace

extern const Command docsCommand;
const Command docsCommand = {
    .name = "docs",
    .help = "Write the documentation of all parameters",
    .examples = {{"docs --html parameters.html", "a page"}, {"docs --man man", "manual pages"}},
    .run = writeDocs,
    .scratch = Context::Scratch::wanted,
    .addOptions = addDocsOptions,
    .showsValues = true,
};

} // namespace appletctl
