// The commands around the lookup table. Assignments given with them are carried out first.

#include "appletctl/applet/LutTables.h"
#include "appletctl/base/text.h"
#include "appletctl/commands/Command.h"
#include "appletctl/draw/curve.h"
#include "appletctl/scratch/CommandRun.h"

#include <unistd.h>

namespace appletctl {
namespace {

constexpr CommandGroup lutGroup = {"lut", "Show, draw, save and load the lookup table"};

constexpr const char* blueOnTheBoard =
    "The board receives the table of blue for all three colours. The applet keeps all three, and "
    "FG_LUT_VALUE_RED, FG_LUT_VALUE_GREEN and FG_LUT_VALUE_BLUE read what it keeps.\n";

LutTables tablesOf(CommandRun& work) { return readLutTables(work.instance, work.parameters); }

bool isCustom(CommandRun& work) {
    return std::get<std::int32_t>(work.get("FG_LUT_TYPE")) == static_cast<std::int32_t>(LUT_TYPE_CUSTOM);
}

/** What decides on the tables, and under which type. */
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

/** The settings that have an effect now: "FG_LUT_ENABLE = FG_OFF, FG_LUT_TYPE = ...". */
std::string settingsText(CommandRun& work) {
    const bool custom = isCustom(work);
    std::vector<std::string> texts;
    for (const Setting& setting : settings) {
        if (!(custom ? setting.underCustom : setting.underProcessing)) continue;
        texts.push_back(std::string(setting.name) + " = " +
                        valueText(work.parameters.find(setting.name), work.get(setting.name)));
    }
    return join(texts, ", ");
}

/** All settings, enumerations by their symbols. */
nlohmann::ordered_json settingsAsJson(CommandRun& work) {
    nlohmann::ordered_json object;
    for (const Setting& setting : settings) {
        nlohmann::ordered_json row;
        addValue(row, {&work.parameters.find(setting.name)}, work.get(setting.name));
        object[setting.name] = row.contains("symbol") ? row["symbol"] : row["value"];
    }
    return object;
}

/** Makes the applet load its tables from a file. A file that is refused changes nothing. */
int load(CommandRun& work, const std::string& file) {
    // While the tables come from the formula, the name is only remembered and read when the type is set. The
    // other order would leave the type at LUT_TYPE_CUSTOM, and going back would compute the tables again.
    const bool wasCustom = isCustom(work);
    const Value before = work.get("FG_LUT_CUSTOM_FILE");
    const int refusal = work.set("FG_LUT_CUSTOM_FILE", file);
    if (refusal != FG_OK || wasCustom) return refusal;
    const int result = work.set("FG_LUT_TYPE", static_cast<std::int32_t>(LUT_TYPE_CUSTOM));
    if (result != FG_OK) work.set("FG_LUT_CUSTOM_FILE", before);
    return result;
}

std::string refusedFile(CommandRun& work, const std::string& parameter, const std::string& file, int code) {
    return refusalInWords(work.parameters.find(parameter), file, code);
}

bool haveSameEntries(const LutTables& a, const LutTables& b) {
    for (std::size_t i = 0; i < a.colours.size(); ++i)
        if (a.colours[i].entries != b.colours[i].entries) return false;
    return true;
}

/** True when another instance of the applet reads these tables from the file: the applet itself notices no
 *  failed write, such as on a full disk. */
bool readsBack(Options options, const std::string& file, const LutTables& tables) {
    options.offline = true;
    Context other(options);
    CommandRun scratch(other, {});
    for (const LutTable& table : tables.colours) {
        // Each entry another one than in the file, so that none can be right by chance.
        Elements others = table.entries;
        for (std::uint32_t& entry : others)
            entry = entry == 0 ? 1 : 0;
        const Target all = findTarget(scratch.parameters, std::string(table.parameter) + "[..]");
        if (writeValue(scratch.instance, all, others) != FG_OK) return false;
    }
    return load(scratch, file) == FG_OK && haveSameEntries(tablesOf(scratch), tables);
}

/** What every command of the group tells in its document. */
void addDocument(CommandRun& work, const LutTables& tables) {
    work.report.document["settings"] = settingsAsJson(work);
    work.report.document["lut"] = statisticsAsJson(tables);
}

void addCurves(Report& report, const LutTables& tables, const std::string& colour) {
    const bool braille = canDrawUnicode(STDOUT_FILENO);
    const bool oneForAll = colour == "all" && tables.areEqual();
    for (const LutTable& table : tables.colours) {
        if (colour != "all" && colour != table.colour) continue;
        const std::string title = oneForAll ? "red, green and blue" : table.colour;
        report.text += '\n' + title + '\n' + curveText(table.entries, tables.largest, braille);
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
    CommandRun work(context, assignments);
    if (work.isRefused()) return work.report;
    const LutTables tables = tablesOf(work);
    addDocument(work, tables);
    work.report.text += settingsText(work) + "\n\n" + statisticsText(tables);
    addCurves(work.report, tables, context.options().of<LutShowOptions>().channel);
    return work.report;
}

} // namespace

extern const Command lutShowCommand;
const Command lutShowCommand = {
    .group = &lutGroup,
    .name = "show",
    .help = "Show what the tables are like, and a curve",
    .argument = "NAME=VALUE",
    .argumentHelp = "Assignments to carry out before",
    .most = -1,
    .run = showLut,
    .addOptions = addLutChannel,
};

namespace {

Report saveLut(Context& context, const Words& words) {
    const std::string& file = fileOf(words);
    CommandRun work(context, behindFirst(words));
    if (work.isRefused()) return work.report;
    const LutTables tables = tablesOf(work);
    addDocument(work, tables);
    work.report.document["file"] = toUtf8(file.c_str());
    const int code = work.set("FG_LUT_SAVE_FILE", file);
    if (code != FG_OK)
        work.refuse(shownFile(file) +
                    " was not written: " + refusedFile(work, "FG_LUT_SAVE_FILE", file, code));
    else if (!readsBack(context.options(), file, tables))
        work.refuse(shownFile(file) +
                    " was written, but does not read back as the same tables: see whether the "
                    "disk is full");
    else
        work.report.text += shownFile(file) + ": three tables of " +
                            numberText(tables.colours.front().entries.size()) + " entries written\n";
    return work.report;
}

} // namespace

extern const Command lutSaveCommand;
const Command lutSaveCommand = {
    .group = &lutGroup,
    .name = "save",
    .help = "Save the tables to a .lut file",
    .argument = "FILE",
    .argumentHelp = "File to write, then assignments to carry out before",
    .fewest = 1,
    .most = -1,
    .run = saveLut,
};

namespace {

Report loadLut(Context& context, const Words& words) {
    const std::string& file = fileOf(words);
    CommandRun work(context, behindFirst(words));
    if (work.isRefused()) return work.report;
    const LutTables before = tablesOf(work);
    const int code = load(work, file);
    const LutTables tables = tablesOf(work);
    const bool isChanged = !haveSameEntries(before, tables);
    addDocument(work, tables);
    work.report.document["file"] = toUtf8(file.c_str());
    work.report.document["changed"] = isChanged;
    if (code != FG_OK) {
        work.refuse(shownFile(file) + " was not loaded, " +
                    (isChanged ? "but the applet's tables have changed: " : "and nothing was changed: ") +
                    refusedFile(work, "FG_LUT_CUSTOM_FILE", file, code));
        return work.report;
    }
    work.report.text += shownFile(file) + (isChanged ? " was loaded.\n"
                                                     : " was loaded and changed no entry: it holds the same "
                                                       "tables, or none that the applet can read.\n");
    work.report.text += settingsText(work) + "\n\n" + statisticsText(tables) + blueOnTheBoard;
    return work.report;
}

} // namespace

extern const Command lutLoadCommand;
const Command lutLoadCommand = {
    .group = &lutGroup,
    .name = "load",
    .help = "Load the tables from a .lut file",
    .argument = "FILE",
    .argumentHelp = "File to read, then assignments to carry out before",
    .fewest = 1,
    .most = -1,
    .run = loadLut,
};

namespace {

Report plotLut(Context& context, const Words& words) {
    const std::string& file = fileOf(words);
    if (!file.ends_with(".svg"))
        throw UsageError(shownFile(file) + " does not end in .svg, and an SVG picture is what is written");
    CommandRun work(context, behindFirst(words));
    if (work.isRefused()) return work.report;
    const LutTables tables = tablesOf(work);
    addDocument(work, tables);
    work.report.document["file"] = toUtf8(file.c_str());
    writeFile(file, curvesAsSvg(tables, settingsText(work)));
    work.report.text += shownFile(file) + " written\n";
    return work.report;
}

} // namespace

extern const Command lutPlotCommand;
const Command lutPlotCommand = {
    .group = &lutGroup,
    .name = "plot",
    .help = "Draw the curves of all colours as SVG",
    .argument = "FILE",
    .argumentHelp = "File to write, .svg, then assignments to carry out before",
    .fewest = 1,
    .most = -1,
    .run = plotLut,
};

} // namespace appletctl
