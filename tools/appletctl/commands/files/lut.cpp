// The commands for the lookup tables. Assignments on the command line are applied first.

#include "applet_tools/applet/files/LutTables.h"
#include "applet_tools/applet/files/MemoryFile.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/report_text.h"
#include "appletctl/base/terminal.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/files/curve.h"
#include "appletctl/commands/shared_options.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

namespace appletctl {
namespace {

constexpr CommandGroup lutGroup = {"lut", "Show, draw, save and load the lookup table"};

constexpr const char* blueOnTheBoard =
    "The board receives the table of blue for all three colours. The applet keeps all three, and "
    "FG_LUT_VALUE_RED, FG_LUT_VALUE_GREEN and FG_LUT_VALUE_BLUE read what it keeps.\n";

std::string clippedText(const Elements& entries, const std::optional<ElementRange>& range) {
    if (!range) return "-";
    return numberText(range->first) + ".." + numberText(range->last) + " at " +
           numberText(entries[range->first]);
}

/** Rows of text for all colours, and whether the colours are equal. */
std::string statisticsText(const LutTables& tables) {
    Table text;
    text.setTitles({"COLOUR", "MINIMUM", "MAXIMUM", "DISTINCT", "COURSE", "CLIPPED AT START",
                    "CLIPPED AT END", "BOARD"});
    text.setDispensable({"DISTINCT", "COURSE"});
    for (const LutTable& table : tables.colours) {
        const LutStatistics statistics = statisticsOf(table.entries, tables.largest);
        const std::string board = boardInWords(tables, table);
        text.addRow({table.colour, numberText(statistics.minimum), numberText(statistics.maximum),
                     numberText(statistics.distinct), statistics.course,
                     clippedText(table.entries, statistics.atStart),
                     clippedText(table.entries, statistics.atEnd), board.empty() ? "-" : board});
    }
    return text.render(Style::forStream(STDOUT_FILENO)) +
           forPerson(tables.areEqual() ? "The three colours are equal.\n" : "The three colours differ.\n");
}

LutTables tablesOf(CommandRun& run) { return readLutTables(run.instance, run.parameters); }

bool isCustom(CommandRun& run) { return run.settings.is("FG_LUT_TYPE", LUT_TYPE_CUSTOM); }

/** The settings that the tables depend on, and the type for which each has an effect. */
struct Setting {
    const char* name;
    bool underProcessing, underCustom;
};

constexpr Setting settings[] = {
    {"FG_LUT_ENABLE", true, true},         {"FG_LUT_TYPE", true, true},
    {"FG_LUT_CUSTOM_FILE", false, true},   {"FG_PROCESSING_OFFSET", true, false},
    {"FG_PROCESSING_GAIN", true, false},   {"FG_PROCESSING_GAMMA", true, false},
    {"FG_PROCESSING_INVERT", true, false},
};

/** The effective settings: "FG_LUT_ENABLE = FG_OFF, FG_LUT_TYPE = ...". */
std::string settingsText(CommandRun& run) {
    const bool custom = isCustom(run);
    std::vector<std::string> texts;
    for (const Setting& setting : settings) {
        if (!(custom ? setting.underCustom : setting.underProcessing)) continue;
        texts.push_back(std::string(setting.name) + " = " +
                        valueText(run.parameters.find(setting.name), run.settings.value(setting.name)));
    }
    return join(texts, ", ");
}

/** All settings by name. */
nlohmann::ordered_json settingsAsJson(CommandRun& run) {
    nlohmann::ordered_json object;
    for (const Setting& setting : settings)
        object[setting.name] =
            valueAsJson({&run.parameters.find(setting.name)}, run.settings.value(setting.name));
    return object;
}

/** Makes the applet load its tables from a file. A refused file changes nothing. */
int load(CommandRun& run, const std::string& file) {
    // While the tables come from the formula, the name is only remembered and read when the type is set. The
    // other order would leave the type at LUT_TYPE_CUSTOM, and going back would compute the tables again.
    const bool wasCustom = isCustom(run);
    const Value before = run.settings.value("FG_LUT_CUSTOM_FILE");
    const int refusal = run.set("FG_LUT_CUSTOM_FILE", file);
    if (refusal != FG_OK || wasCustom) return refusal;
    const int result = run.set("FG_LUT_TYPE", static_cast<std::int32_t>(LUT_TYPE_CUSTOM));
    if (result != FG_OK) run.set("FG_LUT_CUSTOM_FILE", before);
    return result;
}

std::string refusedFile(CommandRun& run, const std::string& parameter, const std::string& file, int code) {
    return refusalInWords(run.parameters.find(parameter), file, code);
}

bool haveSameEntries(const LutTables& a, const LutTables& b) {
    for (std::size_t i = 0; i < a.colours.size(); ++i)
        if (a.colours[i].entries != b.colours[i].entries) return false;
    return true;
}

/** The file that an instance of the applet saves for these tables. Another instance than the user's, so that
 *  FG_LUT_SAVE_FILE is not changed. */
std::string fileTextOf(Options options, const LutTables& tables) {
    options.offline = true;
    Context other(options);
    CommandRun saving(other, {});
    for (const LutTable& table : tables.colours) {
        const Target all = findTarget(saving.parameters, std::string(table.parameter) + "[..]");
        if (const int code = writeValue(saving.instance, all, table.entries); code != FG_OK)
            throw Failure("the tables cannot be saved: " + codeInWords(code));
    }
    const MemoryFile file;
    if (const int code = saving.set("FG_LUT_SAVE_FILE", file.path()); code != FG_OK)
        throw Failure("the tables cannot be saved: " + codeInWords(code));
    return file.text();
}

/** The members that are common to the documents of the group's commands. */
void addDocument(CommandRun& run, const LutTables& tables) {
    run.report.document["settings"] = settingsAsJson(run);
    run.report.document["lut"] = statisticsAsJson(tables);
}

void addCurves(Report& report, const LutTables& tables, const std::string& colour) {
    const bool braille = canDrawUnicode(STDOUT_FILENO);
    const bool oneForAll = colour == "all" && tables.areEqual();
    for (const LutTable& table : tables.colours) {
        if (colour != "all" && colour != table.colour) continue;
        const std::string title = oneForAll ? "red, green and blue" : table.colour;
        report.text += '\n' + title + '\n' + curveText(table.entries, tables.largest, braille, outputWidth());
        if (oneForAll) return;
    }
}

struct LutShowOptions {
    std::string channel = "all"; /**< --channel: red, green, blue or all */
};

void addLutChannel(CLI::App& command, Options& options) {
    command
        .add_option("--channel", options.own<LutShowOptions>().channel,
                    "Channel to draw: red, green, blue or all")
        ->check(CLI::IsMember({"red", "green", "blue", "all"}));
}

Report showLut(Context& context, const Words& assignments) {
    CommandRun run(context, assignments);
    if (run.isRefused()) return run.report;
    const LutTables tables = tablesOf(run);
    addDocument(run, tables);
    run.report.text += forPerson(settingsText(run) + "\n");
    if (run.settings.is("FG_LUT_ENABLE", FG_OFF))
        run.report.text +=
            forPerson("The lookup table is off: images pass unchanged, so nothing is clipped in them. With "
                      "FG_LUT_ENABLE=FG_ON it does this:\n");
    run.report.text += forPerson("\n") + statisticsText(tables);
    if (!isPlainOutput()) addCurves(run.report, tables, context.options().of<LutShowOptions>().channel);
    return run.report;
}

} // namespace

extern const Command lutShowCommand;
const Command lutShowCommand = {
    .group = &lutGroup,
    .name = "show",
    .help = "Show a summary of the tables, and a curve",
    .argument = "NAME=VALUE",
    .argumentHelp = "Assignments to execute first",
    .examples = {{"lut show", "curve and statistics"},
                 {"lut show FG_PROCESSING_GAMMA=2 --channel red", "of one colour"}},
    .most = -1,
    .run = showLut,
    .scratch = Context::Scratch::wanted,
    .addOptions = addLutChannel,
    .sets = Command::Sets::assignments,
    .showsValues = true,
};

namespace {

Report saveLut(Context& context, const Words& words) {
    const std::string& file = fileOf(words);
    requireEnding(file, ".lut", "a lookup table");
    CommandRun run(context, behindFirst(words));
    if (run.isRefused()) return run.report;
    const LutTables tables = tablesOf(run);
    addDocument(run, tables);
    run.report.document["file"] = toUtf8(file);
    writeFile(file, fileTextOf(context.options(), tables));
    run.report.text += lineOf({"written", toUtf8(file)},
                              shownFile(file) + ": three tables of " +
                                  numberText(tables.colours.front().entries.size()) + " entries written");
    return run.report;
}

} // namespace

extern const Command lutSaveCommand;
const Command lutSaveCommand = {
    .group = &lutGroup,
    .name = "save",
    .help = "Save the tables to a .lut file",
    .argument = "FILE",
    .argumentHelp = "File to write, then assignments to execute first",
    .form = "FILE [NAME=VALUE...]",
    .examples = {{"lut save gamma2.lut FG_PROCESSING_GAMMA=2", "the tables of this gamma"}},
    .file = Command::File::write,
    .fileSuffix = ".lut",
    .fewest = 1,
    .most = -1,
    .run = saveLut,
    .scratch = Context::Scratch::wanted,
    .sets = Command::Sets::assignments,
    .showsValues = true,
};

namespace {

Report loadLut(Context& context, const Words& words) {
    const std::string& file = fileOf(words);
    const LutFile content = lookAtLutFile(file, lutLimits(context.parameters()));
    if (!content.trouble.empty()) throw Failure(shownFile(file) + " was not loaded: " + content.trouble);
    CommandRun run(context, behindFirst(words));
    if (run.isRefused()) return run.report;
    const LutTables before = tablesOf(run);
    const int code = load(run, file);
    const LutTables tables = tablesOf(run);
    const bool isChanged = !haveSameEntries(before, tables);
    addDocument(run, tables);
    run.report.document["file"] = toUtf8(file);
    run.report.document["changed"] = isChanged;
    const std::size_t size = tables.colours.front().entries.size();
    const std::size_t kept = size - std::min<std::size_t>(content.elements, size);
    run.report.document["kept"] = code == FG_OK ? kept : size;
    if (code != FG_OK) {
        run.refuse(shownFile(file) + " was not loaded, " +
                   (isChanged ? "but the applet's tables have changed: " : "and nothing was changed: ") +
                   refusedFile(run, "FG_LUT_CUSTOM_FILE", file, code));
        return run.report;
    }
    run.report.text +=
        forPerson(shownFile(file) +
                  (isChanged ? " was loaded.\n"
                             : " was loaded and changed no entry" +
                                   std::string(kept < size ? ": it holds the same tables.\n" : ".\n")));
    if (kept > 0)
        run.report.text += forPerson("It has " + numberText(content.elements) + " of " + numberText(size) +
                                     " entries of each table: the others keep their values.\n");
    run.report.text +=
        forPerson(settingsText(run) + "\n\n") + statisticsText(tables) + forPerson(blueOnTheBoard);
    return run.report;
}

} // namespace

extern const Command lutLoadCommand;
const Command lutLoadCommand = {
    .group = &lutGroup,
    .name = "load",
    .help = "Load the tables from a .lut file",
    .argument = "FILE",
    .argumentHelp = "File to read, then assignments to execute first",
    .form = "FILE [NAME=VALUE...]",
    .examples = {{"lut load gamma2.lut", "and say what the tables are like"}},
    .file = Command::File::read,
    .fileSuffix = ".lut",
    .fewest = 1,
    .most = -1,
    .run = loadLut,
    .scratch = Context::Scratch::wanted,
    .sets = Command::Sets::always,
    .showsValues = true,
};

namespace {

Report plotLut(Context& context, const Words& words) {
    const std::string& file = fileOf(words);
    requireEnding(file, ".svg", "an SVG picture");
    CommandRun run(context, behindFirst(words));
    if (run.isRefused()) return run.report;
    const LutTables tables = tablesOf(run);
    addDocument(run, tables);
    run.report.document["file"] = toUtf8(file);
    writeFile(file, curvesAsSvg(tables, settingsText(run)));
    run.report.text += writtenLine(file);
    return run.report;
}

} // namespace

extern const Command lutPlotCommand;
const Command lutPlotCommand = {
    .group = &lutGroup,
    .name = "plot",
    .help = "Draw the curves of all colours as SVG",
    .argument = "FILE",
    .argumentHelp = "File to write, .svg, then assignments to execute first",
    .form = "FILE [NAME=VALUE...]",
    .examples = {{"lut plot curve.svg FG_PROCESSING_GAIN=1.5", "the curves as a picture"}},
    .file = Command::File::write,
    .fewest = 1,
    .most = -1,
    .run = plotLut,
    .scratch = Context::Scratch::wanted,
    .sets = Command::Sets::assignments,
    .showsValues = true,
};

} // namespace appletctl
