// Takes pictures from the virtual board's station, as files or digests.

#include "applet_tools/base/Interruption.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "applet_tools/scratch/defaults_and_roles.h"
#include "applet_tools/station/Grabber.h"
#include "applet_tools/station/missing_picture.h"
#include "applet_tools/station/picture_record.h"
#include "applet_tools/station/signals.h"
#include "appletctl/base/Progress.h"
#include "appletctl/base/layout.h"
#include "appletctl/base/output_mode.h"
#include "appletctl/base/print.h"
#include "appletctl/base/terminal.h"
#include "appletctl/commands/Command.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/signals/DirectOutput.h"
#include "appletctl/commands/signals/EventWriter.h"
#include "appletctl/commands/signals/PictureReport.h"
#include "appletctl/commands/signals/grab_losses.h"
#include "appletctl/commands/signals/grab_request.h"
#include "appletctl/commands/signals/wave_option.h"
#include "appletctl/draw/preview.h"

#include <unistd.h>

#include <cerrno>
#include <optional>

namespace appletctl {
namespace {

/** What happens while a picture is waited for: the progress is shown, other commands read the board, and Ctrl-C
 *  ends the command. */
class Waiting {
public:
    explicit Waiting(Context& context) : m_context(context) {}

    void setDetail(std::string detail) { m_progress.setDetail(std::move(detail)); }

    /** False when the command should end. */
    bool goesOn() {
        const auto now = Interruption::Clock::now();
        if (m_progress.interval().count() >= 0 && now - m_lastUpdate >= m_progress.interval()) {
            m_progress.update();
            m_lastUpdate = now;
        }
        m_context.pause();
        return !m_interruption.isAsked();
    }

private:
    Context& m_context;
    const Interruption m_interruption;
    Progress m_progress{"grabbing"};
    Interruption::Clock::time_point m_lastUpdate{};
};

/** Draws in the terminal at once, so that nothing accumulates. False if the write to the standard output fails. */
bool drawPreview(const PictureView& picture) {
    constexpr std::size_t usualWidth = 80;
    const std::size_t columns = outputWidth() == unlimitedWidth ? usualWidth : outputWidth();
    return writeOut(previewOf(picture, colourDepth(STDOUT_FILENO), columns));
}

/** The acquisition of one call. */
class Grab {
public:
    Grab(Context& context, GrabRequest& request, CommandRun& run, Waiting& waiting)
        : m_context(context)
        , m_request(request)
        , m_run(run)
        , m_waiting(waiting)
        , m_pictures(context.options(), request.own, run.report) {}

    void execute() {
        prepareFiles();
        for (const WaveRequest& wave : m_request.waves)
            connectWave(m_run.instance, wave);
        const std::vector<std::int64_t> lossesBefore = lossesOf(m_run.instance);
        if (own().events) m_events.emplace(m_run.instance, *own().events, m_output);
        takePictures();
        writePages();
        if (m_events) m_events->finish(m_run);
        m_pictures.finish(m_lines);
        addLosses(m_run, own(), lossesBefore);
        m_run.report.document["tick"] = m_run.instance.board().now(m_run.instance.device());
        reportOutputError();
    }

private:
    const GrabOptions& own() const { return m_request.own; }

    void prepareFiles() {
        if (!m_request.writesFiles()) return;
        requireWritable(m_request.files->name(1));
        if (m_request.files->isRaw()) m_settings = changedSettings(m_context);
    }

    void takePictures() {
        Grabber grabber(m_run.instance, own().frames);
        if (m_events) grabber.setPiece(EventLog::longestPause);
        for (m_number = 1; m_request.wantsMore(m_number, m_lines); ++m_number) {
            if (!waitForPicture(grabber)) return;
            if (m_number % own().every == 0 && !take(grabber)) return;
        }
    }

    /** False if it does not come; the report then says why. */
    bool waitForPicture(Grabber& grabber) {
        const WaitStart start = waitStart(m_run.instance);
        m_waiting.setDetail(m_request.progress(m_number, m_lines));
        const Grabber::Outcome outcome =
            grabber.next(m_request.timeout, [this] { return writeEvents() && m_waiting.goesOn(); });
        if (!writeEvents()) return false;
        if (outcome == Grabber::Outcome::interrupted && m_output.error() == 0)
            m_run.report.exitCode = exitInterrupted;
        if (outcome == Grabber::Outcome::timeout) reportTimeout(start);
        return outcome == Grabber::Outcome::arrived;
    }

    void reportTimeout(const WaitStart& start) {
        const auto& station = m_request.station;
        const auto why = whyNoPicture(m_run.instance, m_run.parameters,
                                      {.start = start,
                                       .longer = "give a longer --timeout",
                                       .wave = "a --wave",
                                       .camera = station && station->camera ? &*station->camera : nullptr});
        m_run.fail("picture " + numberText(m_number) + " did not come within " +
                   durationText(m_request.timeout) + ": " + why.reason);
    }

    /** False if the write to the standard output fails. */
    bool writeEvents() { return !m_events || m_events->write(m_number); }

    /** False if the write to the standard output fails. */
    bool take(Grabber& grabber) {
        const PictureView picture = own().needsPixels() ? grabber.draw() : PictureView();
        const vboard_record& record = grabber.record();
        m_lines += record.lines;
        if (own().isToOutput()) return m_output.write(m_request.files->encode(picture));
        m_pictures.add(
            {.record = record,
             .file = m_request.files ? writePicture(*m_request.files, record, m_settings) : "",
             .digest = own().wantsHash ? sha256Of(picture) : "",
             .statistics = own().wantsStatistics ? std::optional(statisticsOf(picture)) : std::nullopt});
        return !isPreviewShown() || drawPreview(picture);
    }

    bool isPreviewShown() const {
        return own().wantsPreview && !m_context.options().quiet && !isPlainOutput();
    }

    /** Called also if only some of the pictures arrived. */
    void writePages() {
        if (own().isToOutput())
            m_output.write(m_request.files->pages());
        else if (m_request.files)
            m_request.files->finish();
    }

    void reportOutputError() {
        if (m_output.error() == EPIPE)
            m_run.report.exitCode = exitUnread;
        else if (m_output.error() != 0)
            m_run.fail(unwrittenOutput);
    }

    Context& m_context;
    GrabRequest& m_request;
    CommandRun& m_run;
    Waiting& m_waiting;
    PictureReport m_pictures;
    DirectOutput m_output;
    std::optional<EventWriter> m_events;
    nlohmann::ordered_json m_settings; // that raw files come with
    std::int64_t m_number = 1;         // number of the picture being waited for
    std::int64_t m_lines = 0;          // total of the pictures that were taken
};

Report grabPictures(Context& context, const Words& words) {
    const Options& options = context.options();
    requireBoard(options, "grab");
    if (options.look)
        throw UsageError("'grab' starts an acquisition, which --look prevents: leave --look out");
    GrabRequest request(options, words);
    Waiting waiting(context);
    requireStation(options, context.host(), "'grab'");
    if (request.station) setUpStation(context.instance(), context.parameters(), *request.station);
    CommandRun run(context, request.arguments.assignments);
    if (!run.isRefused()) Grab(context, request, run, waiting).execute();
    return std::move(run.report);
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
