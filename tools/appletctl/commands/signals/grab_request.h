/** What a user asks of "grab". */
#ifndef APPLETCTL_COMMANDS_SIGNALS_GRAB_REQUEST_H
#define APPLETCTL_COMMANDS_SIGNALS_GRAB_REQUEST_H

#include "applet_tools/applet/timing/ticks.h"
#include "applet_tools/base/words.h"
#include "applet_tools/pictures/formats.h"
#include "applet_tools/station/StationFile.h"
#include "appletctl/base/Options.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace appletctl {

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

    bool isToOutput() const { return file == "-"; }
    bool areEventsToOutput() const { return events == "-"; }
    /** The text output is for a program: pictures, events or digests, and nothing else. */
    bool isForProgram() const { return wantsHash || isToOutput() || areEventsToOutput(); }
    /** Otherwise the records of the pictures are enough. */
    bool needsPixels() const { return file || wantsHash || wantsStatistics || wantsPreview; }
};

void addGrabOptions(CLI::App& command, Options& options);

/** The arguments: a number of pictures, then assignments. */
struct GrabArguments {
    /** Throws UsageError. */
    explicit GrabArguments(const Words& words);

    std::int64_t pictures = 1;
    bool isDefault = true; /**< no number was given */
    Words assignments;
};

/** The options and arguments of a call, checked. */
struct GrabRequest {
    /** Throws UsageError. */
    GrabRequest(const Options& options, const Words& words);

    /** True if picture `number` is still wanted after taken pictures with `lines` lines together. */
    bool wantsMore(std::int64_t number, std::int64_t lines) const;
    /** "3 of 10", while picture `number` is waited for. */
    std::string progress(std::int64_t number, std::int64_t lines) const;
    bool writesFiles() const { return files && !own.isToOutput(); }

    const GrabOptions own;
    const GrabArguments arguments;
    const Ticks timeout;
    const std::optional<StationFile> station;
    const std::vector<WaveRequest> waves;
    std::optional<PictureFiles> files; /**< also for the standard output */
};

} // namespace appletctl

#endif
