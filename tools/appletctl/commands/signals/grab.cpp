// Pictures of the virtual board's station, as files or digests.

#include "applet_tools/base/Interruption.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/text.h"
#include "applet_tools/pictures/formats.h"
#include "applet_tools/station/Grabber.h"
#include "applet_tools/station/missing_picture.h"
#include "applet_tools/station/picture_record.h"
#include "applet_tools/station/signals.h"
#include "appletctl/base/Progress.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/signals/wave_option.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <optional>

namespace appletctl {
namespace {

constexpr std::int64_t mostPictures = 100'000'000;

struct GrabOptions {
    std::optional<std::string> file; /**< -o; "-": the standard output */
    std::string format;              /**< --format; empty: that of the file's name */
    bool wantsHash = false;          /**< --hash */
    bool isStrict = false;           /**< --strict: a loss is a failure */
    std::string timeout = "10s";     /**< --timeout: simulated time to wait for each picture */
    std::size_t frames = 4;          /**< --frames: of the memory */
    std::int64_t every = 1;          /**< --every: one of so many pictures is taken */
};

void addGrabOptions(CLI::App& command, Options& options) {
    auto& own = options.own<GrabOptions>();
    command
        .add_option("-o,--out", own.file,
                    "File to write, .png, .tiff, .ppm or .raw; %d or %06d in its name is the number of the "
                    "picture; - for the standard output, raw if --format does not say otherwise")
        ->type_name("FILE");
    command.add_option("--format", own.format, "Format of the file, whatever its name is")
        ->check(CLI::IsMember({"png", "tiff", "ppm", "raw"}));
    command.add_flag("--hash", own.wantsHash,
                     "Print the SHA-256 of each picture's bytes instead of its record");
    command.add_flag("--strict", own.isStrict, "End with exit code 1 if anything was lost");
    command.add_option("--timeout", own.timeout, "Simulated time to wait for each picture, 10s if not given")
        ->type_name("TIME");
    constexpr std::size_t mostFrames = 65536;
    command.add_option("--frames", own.frames, "Frames of the memory that pictures go to, 4 if not given")
        ->type_name("N")
        ->check(CLI::Range(std::size_t{1}, mostFrames));
    command
        .add_option("--every", own.every,
                    "Take one of every K pictures: those with the numbers K, 2K, 3K, ...")
        ->type_name("K")
        ->check(CLI::Range(std::int64_t{1}, mostPictures));
    addWaves(command, options);
    addStation(command, options);
}

/** The words: a number of pictures, then assignments. */
struct Wanted {
    std::int64_t pictures = 1;
    Words assignments;
};

Wanted wantedFrom(const Words& words) {
    Wanted wanted{1, words};
    if (words.empty() || words.front().find('=') != std::string::npos) return wanted;
    const auto number = wholeNumber<std::int64_t>(words.front());
    if (!number || *number < 1 || *number > mostPictures)
        throw UsageError(inQuotedWord(words.front()) + " is no number of pictures: 1 to 100000000");
    wanted.pictures = *number;
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

/** The command at work. */
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
        if (m_own.file && m_file.empty()) throw UsageError("the name of the file is empty");
        if (!m_own.format.empty() && m_file.empty())
            throw UsageError("--format says how -o writes, and there is no -o");
        if (isToOutput() && context.options().json)
            throw UsageError(
                "-o - writes pictures to the standard output, and --json a document: leave one out");
        if (isToOutput() && m_own.wantsHash)
            throw UsageError("-o - writes pictures to the standard output, and --hash digests: leave one "
                             "out, or write files");
        if (isToOutput())
            m_files.emplace("-", m_own.format.empty() ? "raw" : m_own.format, "");
        else if (!m_file.empty())
            m_files.emplace(m_file, m_own.format, "say the format with --format");
        if (m_files) m_files->expect(m_wanted.pictures);
        requireStation(context.instance(), "'grab'");
        if (m_station) setUpStation(context.instance(), context.parameters(), *m_station);
    }

    Report run() {
        CommandRun work(m_context, m_wanted.assignments);
        if (work.isRefused()) return std::move(work.report);
        if (m_files && !isToOutput()) requireWritable(m_files->name(1));
        m_report = &work.report;
        m_report->document["pictures"] = nlohmann::ordered_json::array();
        m_table.setTitles({"PICTURE", "TICK", "TIME", "WIDTH", "LINES", "FLAGS", "FILE"});
        m_table.setDispensable({"TICK", "TIME"});
        for (const WaveRequest& wave : m_waves)
            connectWave(work.instance, wave);
        const std::vector<std::int64_t> before = lossesOf(work.instance);
        grabAll(work);
        writePages();
        finish(work, before);
        return std::move(work.report);
    }

private:
    bool isToOutput() const { return m_file == "-"; }

    void grabAll(CommandRun& work) {
        Grabber grabber(work.instance, m_own.frames);
        for (std::int64_t number = 1; number <= m_wanted.pictures * m_own.every; ++number) {
            const std::int64_t lines = sourceLines(work.instance);
            const Ticks from = work.instance.board().now(work.instance.device());
            m_progress.setDetail(numberText(number) + " of " + numberText(m_wanted.pictures * m_own.every));
            const Grabber::Outcome outcome = grabber.next(m_timeout, [this] { return goesOn(); });
            if (outcome == Grabber::Outcome::interrupted) {
                m_report->exitCode = exitInterrupted;
                return;
            }
            if (outcome == Grabber::Outcome::timeout) {
                work.refuse("picture " + numberText(number) + " did not come within " +
                            durationText(m_timeout) + ": " +
                            whyNoPicture(work.instance, work.parameters,
                                         {.lines = sourceLines(work.instance) - lines,
                                          .from = from,
                                          .longer = "give a longer --timeout",
                                          .wave = "a --wave"}));
                return;
            }
            if (number % m_own.every == 0 && !take(grabber)) return;
        }
    }

    bool goesOn() {
        const auto now = Interruption::Clock::now();
        if (m_progress.interval().count() >= 0 && now - m_lastUpdate >= m_progress.interval()) {
            m_progress.update();
            m_lastUpdate = now;
        }
        return !m_interruption.isAsked();
    }

    /** False when the standard output takes no more. */
    bool take(Grabber& grabber) {
        const PictureView picture = m_files || m_own.wantsHash ? grabber.draw() : PictureView();
        const vboard_record& record = grabber.record();
        if (isToOutput()) return writeAll(STDOUT_FILENO, m_files->encode(picture));
        const std::string file = m_files ? writePicture(*m_files, record) : "";
        const std::string digest = m_own.wantsHash ? sha256Of(picture) : "";
        if (m_context.options().json) {
            auto& row = m_report->document["pictures"].emplace_back(asJson(record));
            if (!digest.empty()) row["sha256"] = digest;
            if (!file.empty()) row["file"] = toUtf8(file.c_str());
            return true;
        }
        const std::string shown = printable(toUtf8(file.c_str()));
        m_isTableFilled = true;
        if (!digest.empty())
            m_hashes += digest + "  " + (file.empty() ? numberText(record.picture) : shown) + '\n';
        else
            m_table.addRow({numberText(record.picture), numberText(record.arrival),
                            durationText(record.arrival), numberText(record.width), numberText(record.lines),
                            flagsOf(record), file.empty() ? "-" : shown});
        return true;
    }

    /** Also when only some of them came. */
    void writePages() {
        if (m_files && isToOutput())
            writeAll(STDOUT_FILENO, m_files->pages());
        else if (m_files)
            m_files->finish();
    }

    void finish(CommandRun& work, const std::vector<std::int64_t>& before) {
        const std::vector<std::int64_t> after = lossesOf(work.instance);
        if (m_own.wantsHash || isToOutput())
            m_report->text = m_hashes; // nothing else: it is compared as a whole
        else if (m_isTableFilled)
            m_report->text += m_table.render(Style::forStream(STDOUT_FILENO));
        m_report->isVerbatim = m_own.wantsHash || isToOutput();
        auto& losses = m_report->document["losses"] = nlohmann::ordered_json::object();
        for (std::size_t i = 0; i < after.size(); ++i) {
            const LossKind& kind = lossKinds()[i];
            const std::int64_t count = after[i] - before[i];
            losses[kind.name] = count;
            if (count > 0) addLoss(work, kind, count);
        }
        m_report->document["tick"] = work.instance.board().now(work.instance.device());
    }

    void addLoss(CommandRun& work, const LossKind& kind, std::int64_t count) {
        const std::string words = std::string(kind.what) + ": " + numberText(count) + "; " + kind.cure;
        if (m_own.isStrict)
            work.refuse(words);
        else if (!m_report->isVerbatim)
            m_report->text += lineOf({"lost", kind.name, numberText(count)}, words + ".");
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
};

Report grabPictures(Context& context, const Words& words) {
    requireBoard(context.options(), "grab");
    return Grab(context, words).run();
}

std::string grabNotes() {
    return std::string("Waves at inputs:\n  ") + waveForms +
           "\n  Times have a unit: ns, us, ms, s or ticks (8 ns). Speeds are quarter steps a second.\n";
}

} // namespace

extern const Command grabCommand;
const Command grabCommand = {
    .name = "grab",
    .help = "Take pictures from the station that the virtual board simulates",
    .argument = "N|NAME=VALUE",
    .argumentHelp = "Number of pictures, 1 if not given, then assignments to carry out before",
    .examples = {{"grab -o chart.png FG_CAMERASIMULATOR_ENABLE=FG_CAMERASIMULATOR",
                  "a picture of the test pattern"},
                 {"grab 3 -o 'img-%d.tiff' --from line.mcf", "three, with the settings of a file"},
                 {"grab --hash --from line.mcf", "a line for a test to compare"},
                 {"grab --wave GPI_1=square:100us --from line.mcf", "with pulses at an input"}},
    .most = -1,
    .run = grabPictures,
    .scratch = Context::Scratch::wanted,
    .addOptions = addGrabOptions,
    .sets = Command::Sets::assignments,
    .showsValues = true,
    .moreHelp = grabNotes,
};

} // namespace appletctl
