// Pictures of the simulated station.

#include "applet_tools/base/errors.h"
#include "applet_tools/base/files.h"
#include "applet_tools/pictures/formats.h"
#include "applet_tools/station/missing_picture.h"
#include "host/Acquisition.h"
#include "host/Station.h"

#include <algorithm>

using namespace host;

namespace {

static_assert(VEXO_MOST_FRAMES == applet_tools::mostFrames);

/** The running acquisition. Throws Error. */
std::shared_ptr<Acquisition> runningOf(vexo_station& station) {
    const std::lock_guard lock(station.acquiring);
    if (station.acquisition == nullptr) throw Error(VEXO_ERR_STATE, "no acquisition runs: start one before");
    return station.acquisition;
}

/** The most likely reason for a wait without a picture. */
std::string whyNone(vexo_station& station, const Acquisition& acquisition) {
    if (acquisition.isFull())
        return "all " + std::to_string(acquisition.frames()) +
               " frames of the memory hold pictures: release some of them";
    const std::lock_guard lock(station.mutex);
    const applet_tools::PictureWait wait{
        .start = acquisition.start(), .longer = "wait longer", .wave = "a wave"};
    return whyNoPicture(station.instance, station.live.parameters(), wait).reason;
}

/** A view of the caller's bytes. Throws Error if the description is not that of a picture. */
applet_tools::PictureView viewOf(const vexo_picture& picture, const void* data) {
    const std::uint64_t lineBits = std::uint64_t{3} * picture.width * picture.bits;
    const bool isWhole = picture.bits >= 8 && picture.bits <= 16 && picture.width > 0 && picture.height > 0 &&
                         picture.stride >= (lineBits + 7) / 8 &&
                         picture.size == std::uint64_t{picture.stride} * picture.height;
    if (!isWhole)
        throw Error(VEXO_ERR_ARGUMENT,
                    "the description is not of a picture: " + std::to_string(picture.width) + " x " +
                        std::to_string(picture.height) + " pixels, " + std::to_string(picture.bits) +
                        " bits, " + std::to_string(picture.stride) + " bytes a line, " +
                        std::to_string(picture.size) + " bytes");
    return {.bytes = {static_cast<const std::uint8_t*>(data), picture.size},
            .width = picture.width,
            .lines = picture.height,
            .bits = picture.bits,
            .bytesPerLine = picture.stride};
}

} // namespace

int vexo_start(vexo_station* station, uint32_t frames, int memory) {
    return onLocked(station, [&](vexo_station& own) {
        requireVirtual(own);
        requireWritable(own, "an acquisition");
        if (frames == 0 || frames > VEXO_MOST_FRAMES)
            throw Error(VEXO_ERR_ARGUMENT, "the memory has 1 to " + std::to_string(VEXO_MOST_FRAMES) +
                                               " frames; " + std::to_string(frames) + " were requested");
        if (memory != VEXO_KEEP && memory != VEXO_RING)
            throw Error(VEXO_ERR_ARGUMENT, "the kind of the memory is neither VEXO_KEEP nor VEXO_RING");
        const std::lock_guard lock(own.acquiring);
        if (own.acquisition != nullptr)
            throw Error(VEXO_ERR_STATE, "an acquisition runs already: stop it before another one starts");
        own.acquisition =
            std::make_shared<Acquisition>(own.instance, frames, static_cast<vexo_memory>(memory));
    });
}

int vexo_stop(vexo_station* station) {
    return onStation(station, [&](vexo_station& own) {
        std::shared_ptr<Acquisition> ended;
        {
            const std::lock_guard lock(own.acquiring);
            ended = std::exchange(own.acquisition, nullptr);
        }
        if (ended != nullptr) ended->stop();
    });
}

int vexo_wait_picture(vexo_station* station, int64_t number, double seconds, double wall,
                      vexo_picture* picture) {
    if (picture == nullptr) return failNull("the pointer for the picture");
    return onStation(station, [&](vexo_station& own) {
        requireVirtual(own);
        if (number < 0)
            throw Error(VEXO_ERR_ARGUMENT,
                        "there is no picture " + std::to_string(number) + "; they count from 1");
        const std::shared_ptr<Acquisition> running = runningOf(own);
        const Deadline deadline(own.instance.board().now(own.instance.device()), seconds, wall);
        if (!running->wait(number, deadline, *picture))
            throw Error(VEXO_TIMEOUT, "no picture arrived: " + whyNone(own, *running));
    });
}

int vexo_render(vexo_station* station, int64_t number, void* destination, uint64_t size) {
    if (destination == nullptr) return failNull("the pointer for the bytes");
    return onStation(station, [&](vexo_station& own) { runningOf(own)->render(number, destination, size); });
}

int vexo_release(vexo_station* station, int64_t number) {
    return onStation(station, [&](vexo_station& own) { runningOf(own)->release(number); });
}

int vexo_unpack(const vexo_picture* picture, const void* data, uint16_t* pixels) {
    if (picture == nullptr || data == nullptr || pixels == nullptr)
        return failNull("the picture, its bytes or the pointer for the pixels");
    return guarded([&] {
        const applet_tools::PictureView view = viewOf(*picture, data);
        std::vector<std::uint16_t> line;
        for (std::uint32_t y = 0; y < view.lines; ++y) {
            unpackLine(view, y, line);
            pixels = std::ranges::copy(line, pixels).out;
        }
        return VEXO_OK;
    });
}

int vexo_write_picture(const vexo_picture* picture, const void* data, const char* file) {
    if (picture == nullptr || data == nullptr || file == nullptr)
        return failNull("the picture, its bytes or the name of the file");
    return guarded([&] {
        const applet_tools::PictureView view = viewOf(*picture, data);
        const applet_tools::PictureFormat& format = applet_tools::formatOfFile(file, "");
        const std::string content = format.encode(view);
        try {
            applet_tools::writeFile(file, content);
        } catch (const applet_tools::Failure& failure) {
            throw Error(VEXO_ERR_FILE, failure.what());
        }
        return VEXO_OK;
    });
}
