#include "appletctl/commands/signals/grab_request.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "applet_tools/station/frame_memory.h"
#include "appletctl/commands/CommandRun.h"
#include "appletctl/commands/shared_options.h"
#include "appletctl/commands/signals/wave_option.h"

#include <CLI/CLI.hpp>

namespace appletctl {
namespace {

constexpr std::int64_t mostPictures = 100'000'000;
constexpr std::int64_t mostLines = 1'000'000'000'000;

/** Output that uses the whole standard output excludes all other output there. */
void requireOneOutput(const GrabOptions& own, bool isJson) {
    struct Output {
        bool isWanted;
        const char *option, *content;
        bool isWhole = true; /**< it is for a program */
    };
    const Output outputs[] = {{own.isToOutput(), "-o -", "pictures"},
                              {own.areEventsToOutput(), "--events -", "events"},
                              {isJson, "--json", "a document"},
                              {own.wantsHash && !isJson, "--hash", "digests"},
                              {own.wantsStatistics && !isJson, "--stats", "a table", false},
                              {own.wantsLosses && !isJson, "--losses", "a table", false},
                              {own.wantsPreview, "--preview", "a drawing", false}};
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

/** Where the pictures go to; nothing if they are not written. */
std::optional<PictureFiles> filesFor(const GrabOptions& own) {
    if (own.isToOutput()) return PictureFiles("-", own.format.empty() ? "raw" : own.format, "");
    if (own.file) return PictureFiles(*own.file, own.format, "say the format with --format");
    return {};
}

} // namespace

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
        .add_option("--lines", own.lines, "Take pictures until N lines are reached; the last one is complete")
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

GrabArguments::GrabArguments(const Words& words) : assignments(words) {
    if (words.empty() || isAssignment(words.front())) return;
    const auto number = wholeNumber<std::int64_t>(words.front());
    if (!number || *number < 1 || *number > mostPictures)
        throw UsageError(inQuotedWord(words.front()) + " is not a number of pictures: 1 to " +
                         numberText(mostPictures));
    pictures = *number;
    isDefault = false;
    assignments = behindFirst(words);
}

GrabRequest::GrabRequest(const Options& options, const Words& words)
    : own(options.of<GrabOptions>())
    , arguments(words)
    , timeout(ticksFrom(own.timeout))
    , station(stationOf(options))
    , waves(wavesOf(options)) {
    requireFileName(own.file);
    if (!own.format.empty() && !own.file) throw UsageError("--format requires -o");
    requireFileName(own.events);
    requireOneOutput(own, options.json);
    files = filesFor(own);
    if (own.lines && !arguments.isDefault)
        throw UsageError("--lines takes as many pictures as it needs: leave the number of pictures out");
    if (files) files->expect(own.lines ? 0 : arguments.pictures);
}

bool GrabRequest::wantsMore(std::int64_t number, std::int64_t lines) const {
    return own.lines ? lines < *own.lines : number <= arguments.pictures * own.every;
}

std::string GrabRequest::progress(std::int64_t number, std::int64_t lines) const {
    return own.lines ? numberText(lines) + " of " + numberText(*own.lines) + " lines"
                     : numberText(number) + " of " + numberText(arguments.pictures * own.every);
}

} // namespace appletctl
