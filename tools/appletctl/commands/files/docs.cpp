// The documentation of all parameters, made from the tree: a page, and manual pages.

#include "appletctl/applet/published_limits.h"
#include "appletctl/base/text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/draw/svg.h"
#include "appletctl/scratch/defaults_and_roles.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

namespace appletctl {
namespace {

/** A line of what is told of a parameter. */
struct Line {
    const char* title;
    std::string text;
};

/** All parameters in the order of the tree, with what is told of them. */
struct Documented {
    const Parameter* parameter;
    std::string explanation;
    std::vector<Line> lines; // without empty ones
};

std::vector<Documented> documented(Context& context) {
    std::vector<const Parameter*> parameters;
    for (const Parameter& parameter : context.parameters().all())
        parameters.push_back(&parameter);
    const auto defaultsAndRoles = backgroundOf(context, parameters, FileRoles::asked);
    std::vector<Documented> all;
    for (const Parameter* parameter : parameters) {
        const DefaultAndRole& known = defaultsAndRoles.at(parameter->name);
        std::vector<Line> lines = {
            {"id", numberText(parameter->id)},
            {"kind", kindName(*parameter)},
            {"unit", parameter->unit()},
            {"access", known.isSettable ? "settable" : "read-only"},
            {"default", known.isSettable && known.start ? valueText(*parameter, *known.start) : ""},
            {"limits at the start", limitsText(*parameter)},
            {"entries", entriesText(*parameter)},
            {"configuration file", fileRoleInWords(known.fileRole)},
            {"reading", parameter->effectOfReading()},
            {"setting", parameter->effectOfWriting()},
        };
        std::erase_if(lines, [](const Line& line) { return line.text.empty(); });
        all.push_back({parameter, explanationOf(context.instance(), *parameter), std::move(lines)});
    }
    return all;
}

constexpr const char* pageHead = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>Parameters</title>
<style>
body { font-family: sans-serif; margin: 2em auto; max-width: 60em; padding: 0 1em; line-height: 1.4; }
header { position: sticky; top: 0; background: #fff; padding: 0.5em 0; border-bottom: 1px solid #ddd; }
input { font-size: 1.1em; padding: 0.3em; width: 20em; }
h2 { color: #555; font-size: 1.1em; margin-top: 2em; }
h3 { margin: 1.5em 0 0.2em; }
h3 small { color: #777; font-weight: normal; }
dl { display: grid; grid-template-columns: 11em auto; margin: 0.3em 0; gap: 0 1em; font-size: 0.9em; }
dt { color: #777; } dd { margin: 0; }
</style>
</head>
<body>
)";

constexpr const char* pageTail = R"(<script>
const search = document.getElementById("search");
function show() {
  const words = search.value.toLowerCase().split(/\s+/);
  for (const group of document.querySelectorAll("section")) {
    let any = false;
    for (const parameter of group.querySelectorAll("article")) {
      const text = parameter.textContent.toLowerCase();
      parameter.hidden = !words.every(word => text.includes(word));
      any = any || !parameter.hidden;
    }
    group.hidden = !any;
  }
}
search.addEventListener("input", show);
show();
</script>
</body>
</html>
)";

std::string article(const Documented& row) {
    const std::string name = svg::escaped(row.parameter->name);
    std::string text = "<article" + svg::attribute("id", name) + ">\n<h3>" + name + " <small>" +
                       svg::escaped(row.parameter->label()) + "</small></h3>\n";
    if (!row.explanation.empty()) text += "<p>" + svg::escaped(row.explanation) + "</p>\n";
    text += "<dl>\n";
    for (const Line& line : row.lines)
        text += std::string("<dt>") + line.title + "</dt><dd>" + svg::escaped(line.text) + "</dd>\n";
    return text + "</dl>\n</article>\n";
}

std::string page(const std::vector<Documented>& rows) {
    std::string text = pageHead;
    text += "<header><h1>Parameters</h1>\n<input id=\"search\" type=\"search\" placeholder=\"name, text, "
            "unit, ...\" "
            "autofocus></header>\n";
    std::string group;
    for (const Documented& row : rows) {
        const std::string path = row.parameter->path();
        if (path != group || &row == &rows.front()) {
            text += (&row == &rows.front() ? "" : "</section>\n");
            text += "<section>\n<h2>" + svg::escaped(path) + "</h2>\n";
        }
        group = path;
        text += article(row);
    }
    return text + "</section>\n" + pageTail;
}

/** Text as the manual page's source takes it: none of its characters marks anything. */
std::string plain(std::string_view text) {
    std::string marked;
    for (const char c : printable(text)) {
        constexpr std::string_view marks = "_*\\#[]|-~<.";
        if (marks.find(c) != std::string_view::npos) marked += '\\';
        marked += c;
    }
    return marked;
}

std::string literal(const std::string& text) { return "```\n" + text + "```\n\n"; }

std::string manualOfProgram(const Program& program) {
    std::string text =
        "appletctl(1)\n\n# NAME\n\nappletctl \\- shows and sets the parameters of the applet\n\n"
        "# SYNOPSIS\n\n*appletctl* [OPTIONS] COMMAND ...\n\n# DESCRIPTION\n\n";
    text += literal(program.helpOf(nullptr)) + "# COMMANDS\n\n";
    for (const Command* command : program.commands)
        text += "## " + plain(fullName(*command)) + "\n\n" + literal(program.helpOf(command));
    return text + "# SEE ALSO\n\n*appletctl\\-parameters*(7)\n";
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
        for (const Line& line : row.lines)
            text += std::string("- ") + plain(line.title) + ": " + plain(line.text) + "\n";
        text += "\n";
    }
    return text + "# SEE ALSO\n\n*appletctl*(1)\n";
}

/** Lets scdoc make a manual page of its source. */
void writeManual(const std::string& file, const std::string& source) {
    std::FILE* const in = std::tmpfile();
    std::FILE* const out = std::fopen(file.c_str(), "wb");
    if (in == nullptr || out == nullptr) throw Failure(inQuotes(toUtf8(file.c_str())) + " cannot be written");
    std::fwrite(source.data(), 1, source.size(), in);
    std::rewind(in);
    const pid_t child = fork();
    if (child == 0) {
        dup2(fileno(in), STDIN_FILENO);
        dup2(fileno(out), STDOUT_FILENO);
        execlp("scdoc", "scdoc", nullptr);
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    std::fclose(in);
    std::fclose(out);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return;
    std::filesystem::remove(file);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 127)
        throw Unavailable("manual pages are made by scdoc, and it is not installed: apt-get install scdoc");
    throw Failure("scdoc could not make " + inQuotes(toUtf8(file.c_str())));
}

void noteFile(Report& report, const std::string& file) {
    report.document["files"].push_back(toUtf8(file.c_str()));
    report.text += inQuotes(toUtf8(file.c_str())) + " written\n";
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
        throw UsageError("say what is to be written: --html FILE or --man DIR");
    if ((options.htmlFile && options.htmlFile->empty()) || (options.manFolder && options.manFolder->empty()))
        throw UsageError("the name is empty");
    const std::vector<Documented> rows = documented(context);
    Report report;
    report.document["parameters"] = rows.size();
    report.document["files"] = nlohmann::ordered_json::array();
    if (options.htmlFile) {
        writeFile(*options.htmlFile, page(rows));
        noteFile(report, *options.htmlFile);
    }
    if (!options.manFolder) return report;
    std::filesystem::create_directories(*options.manFolder);
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
    .run = writeDocs,
    .scratch = Context::Scratch::wanted,
    .addOptions = addDocsOptions,
};

} // namespace appletctl
