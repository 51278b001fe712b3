// Takes pictures from the virtual board's station, as files or digests.

#include "applet_tools/base/Interruption.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "applet_tools/pictures/formats.h"
#include "applet_tools/pictures/statistics.h"
#include "applet_tools/scratch/defaults_and_roles.h"
#include "applet_tools/station/EventLog.h"
#include "applet_tools/station/Grabber.h"
#include "applet_tools/station/missing_picture.h"
#include "applet_tools/station/picture_record.h"
#include "applet_tools/station/signals.h"
#include "appletctl/base/Progress.h"
#include "appletctl/base/Table.h"
#include "appletctl/base/layout.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/print.h"
#include "appletctl/base/report_text.h"
#include "appletctl/base/terminal.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/shared_options.h"
#include "appletctl/commands/signals/wave_option.h"
#include "appletctl/draw/preview.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <optional>

namespace appletctl {
namespace {

constexpr std::int64_t mostPictures = 100'000'000;
constexpr std::int64_t mostLines = 1'000'000'000'000;

struct GrabOptions {
    std::optional<std::string> file;   /**< -o; "-": the standard output */
    std::string format;                /**< --format; empty: that of the file's name */
    bool wantsHash = false;            /**< --hash */
    bool isStrict = false;             /**< --strict: fail if something was lost */
    std::string timeout = "10s";       /**< --timeout: simulated time to wait for each picture */
    std::size_t frames = 4;            /**< --frames: number of frames in the memory */
    std::int64_t every = 1;            /**< --every: take every n-th picture */
    std::optional<std::int64_t> lines; /**< --lines: take pictures until they have this many lines */
    std::optional<std::string> events; /**< --events: file of events; "-": the standard output */
    bool wantsStatistics = false;      /**< --stats */
    bool wantsPreview = false;         /**< --preview */
    bool wantsLosses = false;          /**< --losses: also show kinds without losses */
};

void addGrabOptions(CLI::App& command, Options& options) {
    auto& own = options.own<GrabOptions>();
    command
        .add_option("-o,--out", own.file,
                    "File to write, .png, .tiff, .ppm or .raw; %d or %06d in its name is the number of the "
                    "picture; - for the standard output, raw if --format does not say otherwise")
        ->type_name("FILE");
    command.add_option("--format", own.format, "Format of the file, regardless of its name")
        ->check(CLI::IsMember({"png", "tiff", "ppm", "raw"}));
    command.add_flag("--hash", own.wantsHash,
                     "Print the SHA-256 of each picture's bytes instead of its record");
    command.add_flag("--strict", own.isStrict, "End with exit code 1 if anything was lost");
    command.add_option("--timeout", own.timeout, "Simulated time to wait for each picture, 10s if not given")
        ->type_name("TIME");
    command.add_option("--frames", own.frames, "Frames of the memory that pictures go to, 4 if not given")
        ->type_name("N")
        ->check(CLI::Range(std::size_t{1}, mostFrames));
    command
        .add_option("--every", own.every,
                    "Take one of every K pictures: those with the numbers K, 2K, 3K, ...")
        ->type_name("K")
        ->check(CLI::Range(std::int64_t{1}, mostPictures));
    command
        .add_option("--lines", own.lines,
                    "Take as many pictures as give N lines together; the last one is taken whole")
        ->type_name("N")
        ->check(CLI::Range(std::int64_t{1}, mostLines));
    command.add_flag(
        "--stats", own.wantsStatistics,
        "Show minimum, mean, maximum and the clipped share of each colour, of each picture and of all");
    command.add_flag(
        "--preview", own.wantsPreview,
        "Draw each picture in the terminal: as half blocks where it has 256 colours or more, else as "
        "characters");
    command
        .add_option(
            "--events", own.events,
            "File to write with the events of the station, a line of JSON each; - for the standard output")
        ->type_name("FILE");
    command.add_flag("--losses", own.wantsLosses,
                     "Show each kind of loss and what would help, also those that did not occur");
    addWaves(command, options);
    addStation(command, options);
}

/** The arguments: a number of pictures, then assignments. */
struct Wanted {
    std::int64_t pictures = 1;
    bool isDefault = true; /**< no number was given */
    Words assignments;
};

Wanted wantedFrom(const Words& words) {
    Wanted wanted{1, true, words};
    if (words.empty() || isAssignment(words.front())) return wanted;
    const auto number = wholeNumber<std::int64_t>(words.front());
    if (!number || *number < 1 || *number > mostPictures)
        throw UsageError(inQuotedWord(words.front()) + " is not a number of pictures: 1 to 100000000");
    wanted.pictures = *number;
    wanted.isDefault = false;
    wanted.assignments = behindFirst(words);
    return wanted;
}

std::string flagsOf(const vboard_record& record) {
    Words flags;
    if (record.is_short) flags.emplace_back("short");
    if (record.is_narrow) flags.emplace_back("narrow");
    if (record.lost_before > 0) flags.push_back(numberText(record.lost_before) + " lost before");
    return flags.empty() ? "-" : join(flags, ", ");
}

/** The running command. */
class Grab {
public:
    Grab(Context& context, const Words& words)
        : m_context(context)
        , m_own(context.options().of<GrabOptions>())
        , m_file(m_own.file.value_or(""))
        , m_wanted(wantedFrom(words))
        , m_timeout(ticksFrom(m_own.timeout))
        , m_station(stationOf(context.options()))
        , m_waves(wavesOf(context.options())) {
        requireFileName(m_own.file);
        if (!m_own.format.empty() && m_file.empty())
            throw UsageError("--format says how -o writes, and there is no -o");
        requireFileName(m_own.events);
        requireOneOutput();
        if (isToOutput())
            m_files.emplace("-", m_own.format.empty() ? "raw" : m_own.format, "");
        else if (!m_file.empty())
            m_files.emplace(m_file, m_own.format, "say the format with --format");
        if (m_own.lines && !m_wanted.isDefault)
            throw UsageError("--lines takes as many pictures as it needs: leave the number of pictures out");
        if (m_files) m_files->expect(m_own.lines ? 0 : m_wanted.pictures);
        requireStation(context.options(), context.host(), "'grab'");
        if (m_station) setUpStation(context.instance(), context.parameters(), *m_station);
    }

    Report run() {
        CommandRun run(m_context, m_wanted.assignments);
        if (run.isRefused()) return std::move(run.report);
        if (m_files && !isToOutput()) requireWritable(m_files->name(1));
        m_report = &run.report;
        m_report->document["pictures"] = nlohmann::ordered_json::array();
        m_table.setTitles({"PICTURE", "TICK", "TIME", "WIDTH", "LINES", "FLAGS", "FILE"});
        m_table.setDispensable({"TICK", "TIME"});
        m_statisticsTable.setTitles({"PICTURE", "COLOUR", "MINIMUM", "MEAN", "MAXIMUM", "CLIPPED"});
        if (m_files && m_files->isRaw() && !isToOutput()) m_settings = changedSettings(m_context);
        for (const WaveRequest& wave : m_waves)
            connectWave(run.instance, wave);
        const std::vector<std::int64_t> before = lossesOf(run.instance);
        if (m_own.events) m_events.emplace(run.instance);
        if (m_own.events && *m_own.events != "-") m_eventFile.emplace(*m_own.events);
        grabAll(run);
        writePages();
        finishEvents(run);
        finish(run, before);
        if (m_outputError == EPIPE)
            run.report.exitCode = exitUnread;
        else if (m_outputError != 0)
            fail(run, unwrittenOutput);
        return std::move(run.report);
    }

private:
    bool isToOutput() const { return m_file == "-"; }
    bool areEventsToOutput() const { return m_own.events == "-"; }
    /** Otherwise no row is kept. */
    bool isTableShown() const {
        return !m_context.options().json && !m_context.options().quiet && !isQuietOutput();
    }
    bool isQuietOutput() const { return m_own.wantsHash || isToOutput() || areEventsToOutput(); }

    /** Output that uses the whole standard output excludes all other output there. */
    void requireOneOutput() const {
        struct Output {
            bool isWanted;
            const char *option, *content;
            bool isWhole = true; /**< it is for a program */
        };
        const bool isJson = m_context.options().json;
        const Output outputs[] = {{isToOutput(), "-o -", "pictures"},
                                  {areEventsToOutput(), "--events -", "events"},
                                  {isJson, "--json", "a document"},
                                  {m_own.wantsHash && !isJson, "--hash", "digests"},
                                  {m_own.wantsStatistics && !isJson, "--stats", "a table", false},
                                  {m_own.wantsLosses && !isJson, "--losses", "a table", false},
                                  {m_own.wantsPreview, "--preview", "a drawing", false}};
        const Output* first = nullptr;
        for (const Output& output : outputs) {
            if (!output.isWanted) continue;
            if (first != nullptr && first->isWhole)
                throw UsageError(std::string(first->option) + " writes " + first->content +
                                 " to the standard output, and " + output.option + " " + output.content +
                                 ": leave one out");
            first = &output;
        }
    }

    bool isEnough(std::int64_t number) const {
        return m_own.lines ? m_lines >= *m_own.lines : number > m_wanted.pictures * m_own.every;
    }

    std::string progress(std::int64_t number) const {
        return m_own.lines ? numberText(m_lines) + " of " + numberText(*m_own.lines) + " lines"
                           : numberText(number) + " of " + numberText(m_wanted.pictures * m_own.every);
    }

    void grabAll(CommandRun& run) {
        Grabber grabber(run.instance, m_own.frames);
        if (m_events) grabber.setPiece(EventLog::longestPause);
        for (std::int64_t number = 1; !isEnough(number); ++number) {
            m_number = number;
            const WaitStart start = waitStart(run.instance);
            m_progress.setDetail(progress(number));
            const Grabber::Outcome outcome = grabber.next(m_timeout, [this] { return goesOn(); });
            if (!writeEvents()) return;
            if (outcome == Grabber::Outcome::interrupted) {
                if (m_outputError == 0) m_report->exitCode = exitInterrupted;
                return;
            }
            if (outcome == Grabber::Outcome::timeout) {
                fail(run, "picture " + numberText(number) + " did not come within " +
                              durationText(m_timeout) + ": " +
                              whyNoPicture(
                                  run.instance, run.parameters,
                                  {.start = start, .longer = "give a longer --timeout", .wave = "a --wave"})
                                  .reason);
                return;
            }
            if (number % m_own.every == 0 && !take(grabber)) return;
        }
    }

    /** Writes at once, so that nothing accumulates. False if this or an earlier write has failed. */
    bool writeToOutput(const std::string& bytes) {
        if (m_outputError == 0 && !writeAll(STDOUT_FILENO, bytes)) m_outputError = errno;
        return m_outputError == 0;
    }

    /** False if the write to the standard output fails. */
    bool writeEvents() {
        if (!m_events) return true;
        const std::string lines = m_events->take(m_number);
        if (!m_eventFile) return writeToOutput(lines);
        m_eventFile->add(lines);
        return true;
    }

    void finishEvents(CommandRun& run) {
        if (!m_events) return;
        if (m_eventFile) {
            m_eventFile->finish();
            m_report->document["events"] = toUtf8(m_own.events->c_str());
        }
        if (const std::int64_t lost = m_events->lost(); lost > 0)
            fail(run, numberText(lost) + " events are missing: more came at a time than the board keeps");
    }

    bool goesOn() {
        if (!writeEvents()) return false;
        const auto now = Interruption::Clock::now();
        if (m_progress.interval().count() >= 0 && now - m_lastUpdate >= m_progress.interval()) {
            m_progress.update();
            m_lastUpdate = now;
        }
        m_context.pause();
        return !m_interruption.isAsked();
    }

    /** False if the write to the standard output fails. */
    bool take(Grabber& grabber) {
        const bool isDrawn = m_files || m_own.wantsHash || m_own.wantsStatistics || m_own.wantsPreview;
        const PictureView picture = isDrawn ? grabber.draw() : PictureView();
        const vboard_record& record = grabber.record();
        m_lines += record.lines;
        if (isToOutput()) return writeToOutput(m_files->encode(picture));
        const std::string file = m_files ? writePicture(*m_files, record, m_settings) : "";
        const std::string digest = m_own.wantsHash ? sha256Of(picture) : "";
        if (m_context.options().json) {
            auto& row = m_report->document["pictures"].emplace_back(asJson(record));
            if (!digest.empty()) row["sha256"] = digest;
            if (!file.empty()) row["file"] = toUtf8(file.c_str());
            if (m_own.wantsStatistics) row["statistics"] = asJson(statistics(record, picture));
            return true;
        }
        if (m_own.wantsStatistics) statistics(record, picture);
        const std::string shown = printable(file);
        m_isTableFilled = true;
        if (!digest.empty() && !m_context.options().quiet)
            m_hashes += digest + "  " + (file.empty() ? numberText(record.picture) : shown) + '\n';
        else if (isTableShown())
            m_table.addRow({numberText(record.picture), numberText(record.arrival),
                            durationText(record.arrival), numberText(record.width), numberText(record.lines),
                            flagsOf(record), file.empty() ? "-" : shown});
        return !m_own.wantsPreview || drawPreview(picture);
    }

    /** Writes immediately, so that nothing accumulates. False if the write to the standard output fails. */
    bool drawPreview(const PictureView& picture) {
        if (m_context.options().quiet || isPlainOutput()) return true;
        constexpr std::size_t usualWidth = 80;
        const std::size_t columns = outputWidth() == unlimitedWidth ? usualWidth : outputWidth();
        return writeOut(previewOf(picture, colourDepth(STDOUT_FILENO), columns));
    }

    PictureStatistics statistics(const vboard_record& record, const PictureView& picture) {
        const PictureStatistics its = statisticsOf(picture);
        m_statistics.add(its);
        if (isTableShown()) addRows(numberText(record.picture), its);
        return its;
    }

    void addRows(const std::string& name, const PictureStatistics& statistics) {
        const auto rounded = [](double number) { return numberText(std::round(number * 100) / 100); };
        for (std::size_t i = 0; i < statistics.colours.size(); ++i) {
            const ColourStatistics& colour = statistics.colours[i];
            m_statisticsTable.addRow({name, PictureStatistics::names[i], numberText(colour.minimum),
                                      rounded(colour.mean()), numberText(colour.maximum),
                                      rounded(100 * colour.clippedShare()) + " %"});
        }
    }

    /** Called also if only some of the pictures arrived. */
    void writePages() {
        if (m_files && isToOutput())
            writeToOutput(m_files->pages());
        else if (m_files)
            m_files->finish();
    }

    void finish(CommandRun& run, const std::vector<std::int64_t>& before) {
        if (isQuietOutput())
            m_report->text = m_hashes; // nothing else, for comparisons of the whole text
        else if (m_isTableFilled)
            m_report->text += m_table.render(Style::forStream(STDOUT_FILENO));
        if (m_own.lines && m_isTableFilled && !isQuietOutput())
            m_report->text += lineOf({"lines", numberText(m_lines)}, numberText(m_lines) + " lines.");
        m_report->isVerbatim = isQuietOutput();
        m_report->document["lines"] = m_lines;
        if (m_own.wantsStatistics) finishStatistics();
        finishLosses(run, before);
        m_report->document["tick"] = run.instance.board().now(run.instance.device());
    }

    void finishStatistics() {
        m_report->document["statistics"] = asJson(m_statistics);
        if (!m_isTableFilled) return;
        addRows("all", m_statistics);
        m_report->text += '\n' + m_statisticsTable.render(Style::forStream(STDOUT_FILENO));
    }

    void finishLosses(CommandRun& run, const std::vector<std::int64_t>& before) {
        const std::vector<std::int64_t> after = lossesOf(run.instance);
        auto losses = nlohmann::ordered_json::object();
        Table table;
        table.setTitles({"LOST", "TIMES", "WHAT IT IS", "WHAT HELPS"});
        for (std::size_t i = 0; i < after.size(); ++i) {
            const LossKind& kind = lossKinds()[i];
            const std::int64_t count = after[i] - before[i];
            losses[kind.name] = count;
            table.addRow({kind.name, numberText(count), kind.what, kind.advice});
        }
        m_report->document["losses"] = losses;
        for (std::size_t i = 0; i < after.size(); ++i)
            if (after[i] > before[i]) addLoss(run, lossKinds()[i], after[i] - before[i]);
        if (m_own.wantsLosses && !m_report->isVerbatim)
            m_report->text += '\n' + table.render(Style::forStream(STDOUT_FILENO));
    }

    void addLoss(CommandRun& run, const LossKind& kind, std::int64_t count) {
        const std::string words = std::string(kind.what) + ": " + numberText(count) + "; " + kind.advice;
        if (m_own.isStrict)
            fail(run, words);
        else if (!m_report->isVerbatim && !m_own.wantsLosses)
            m_report->text += lineOf({"lost", kind.name, numberText(count)}, words + ".");
    }

    static void fail(CommandRun& run, const std::string& words) {
        run.refuse(words);
        run.report.document["error"] = {{"kind", "failure"}, {"message", join(run.report.problems, "; ")}};
    }

    Context& m_context;
    const GrabOptions m_own;
    const std::string m_file; /**< empty: none */
    const Wanted m_wanted;
    const Ticks m_timeout;
    const std::optional<StationFile> m_station;
    const std::vector<WaveRequest> m_waves;
    std::optional<PictureFiles> m_files;
    const Interruption m_interruption;
    Progress m_progress{"grabbing"};
    Interruption::Clock::time_point m_lastUpdate{};
    Report* m_report = nullptr;
    Table m_table;
    bool m_isTableFilled = false;
    std::string m_hashes;
    std::int64_t m_number = 0; // number of the picture being waited for
    std::int64_t m_lines = 0;  // total of the pictures that were taken
    nlohmann::ordered_json m_settings;
    int m_outputError = 0; // errno of the write to the standard output that failed; EPIPE: nothing reads it
    std::optional<EventLog> m_events;
    std::optional<OutputFile> m_eventFile;
    PictureStatistics m_statistics; // of all pictures
    Table m_statisticsTable;
};

Report grabPictures(Context& context, const Words& words) {
    requireBoard(context.options(), "grab");
    if (context.options().look)
        throw UsageError("'grab' starts an acquisition, and --look only looks: leave --look out");
    return Grab(context, words).run();
}

std::string grabNotes() {
    constexpr std::size_t width = 70; // in the manual as well
    return "Waves at inputs:\n  " + join(foldedLines(waveForms, width), "\n  ") +
           "\n  Times have a unit: ns, us, ms, s or ticks (8 ns).\n  Speeds are quarter steps a second.\n";
}

} // namespace

extern const Command grabCommand;
const Command grabCommand = {
    .name = "grab",
    .help = "Take pictures from the station that the virtual board simulates",
    .argument = "N|NAME=VALUE",
    .argumentHelp = "Number of pictures, 1 if not given, then assignments to execute first",
    .examples = {{"grab -o chart.png FG_CAMERASIMULATOR_ENABLE=FG_CAMERASIMULATOR",
                  "a picture of the test pattern"},
                 {"grab --hash --from line.mcf", "a line for a test to compare"},
                 {"grab --lines 5000 --stats -o run.tiff --from line.mcf",
                  "until 5000 lines have come, with the settings of a file"},
                 {"grab --preview --station-file belt.json",
                  "drawn in the terminal, from a camera that sees a belt"}},
    .most = -1,
    .run = grabPictures,
    .scratch = Context::Scratch::wanted,
    .addOptions = addGrabOptions,
    .sets = Command::Sets::assignments,
    .showsValues = true,
    .takesLong = true,
    .moreHelp = grabNotes,
    .acquires = true,
    .isForVirtualBoard = true,
};

} // namespace appletctl
