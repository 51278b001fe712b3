// The control functions of camera, belt and scene.

#include "virtual_board/virtual_board.h"

#include "virtual_board/libraries/StationCall.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>
#include <vector>

using namespace vboard;

namespace {

constexpr std::int64_t nanometres = 1000;                // in a micrometre
constexpr std::int64_t farthest = std::int64_t{1} << 50; // micrometres, so that sums of positions fit

static_assert(VBOARD_WIDEST == station::ImageSize::widest && VBOARD_HIGHEST == station::ImageSize::highest &&
              VBOARD_MOST_PIXELS == station::ImageSize::mostPixels);

bool isDistance(std::int64_t micrometres) { return micrometres >= -farthest && micrometres <= farthest; }

bool isPermutation(const std::uint8_t* order) {
    std::array<std::uint8_t, 3> sorted{order[0], order[1], order[2]};
    std::ranges::sort(sorted);
    return sorted == std::array<std::uint8_t, 3>{0, 1, 2};
}

/** False if a value is beyond the limits in the header. */
bool read(const vboard_camera& camera, station::CameraSetup& setup) {
    if (camera.width < 1 || camera.width > station::ImageSize::widest) return false;
    setup.timing.width = camera.width;
    setup.timing.lineRate = camera.line_rate;
    setup.timing.exposure = camera.exposure;
    setup.fullExposure = std::max(camera.full_exposure > 0 ? camera.full_exposure : camera.exposure, 1U);
    return true;
}

bool read(const vboard_camera_faults& faults, station::CameraSetup& setup) {
    const bool hasShort = faults.short_every > 0;
    if (!isPermutation(faults.order)) return false;
    if (hasShort && (faults.short_width < 1 || faults.short_width > setup.timing.width)) return false;
    std::copy_n(faults.order, setup.order.size(), setup.order.begin());
    setup.timing.dropEvery = faults.drop_every;
    setup.timing.shortEvery = faults.short_every;
    setup.timing.shortWidth = hasShort ? faults.short_width : 1;
    setup.timing.lostAt = faults.lost_after > 0 ? faults.lost_after : station::never;
    setup.timing.lostFor = faults.lost_for;
    return true;
}

std::shared_ptr<const station::SceneImage> imageOf(const vboard_scene_setup& scene) {
    auto image = std::make_shared<station::SceneImage>();
    image->width = scene.width;
    image->height = scene.height;
    const std::size_t count = std::size_t{3} * scene.width * scene.height;
    image->components.assign(scene.components, scene.components + count);
    return image;
}

bool isSound(const vboard_scene_setup& scene) {
    if (scene.pixel == 0 || scene.noise > 0xffff || scene.object_count > VBOARD_MOST_OBJECTS) return false;
    if (scene.components != nullptr && !station::ImageSize::isSound(scene.width, scene.height)) return false;
    if (scene.objects == nullptr) return scene.object_count == 0;
    return std::all_of(scene.objects, scene.objects + scene.object_count, [](const vboard_object& object) {
        return isDistance(object.place) && isDistance(object.length) && object.length > 0;
    });
}

} // namespace

int vboard_camera_attach(LOOMdevice* board, const vboard_camera* camera, const vboard_camera_faults* faults) {
    station::CameraSetup setup;
    if (camera == nullptr || !read(*camera, setup)) return VBOARD_UNKNOWN;
    if (faults != nullptr && !read(*faults, setup)) return VBOARD_UNKNOWN;
    return perform(board, [&](station::Station& station) {
        station.attachCamera(setup);
        return int{VBOARD_OK};
    });
}

int vboard_camera_detach(LOOMdevice* board) {
    return perform(board, [](station::Station& station) {
        station.detachCamera();
        return int{VBOARD_OK};
    });
}

int vboard_belt(LOOMdevice* board, const vboard_belt_setup* belt) {
    if (belt == nullptr || !isDistance(belt->barrier_ahead) || (belt->pieces == nullptr && belt->count > 0))
        return VBOARD_UNKNOWN;
    const auto isInput = [](unsigned input) {
        return input < station::inputCount || input == VBOARD_NO_INPUT;
    };
    if (!isInput(belt->encoder_a) || !isInput(belt->encoder_b) || !isInput(belt->barrier))
        return VBOARD_UNKNOWN;
    return perform(board, [&](station::Station& station) {
        station::BeltSetup setup;
        for (std::size_t i = 0; i < belt->count; ++i)
            setup.pieces.push_back({belt->pieces[i].ticks, belt->pieces[i].from, belt->pieces[i].to});
        setup.encoderA = std::min<std::size_t>(belt->encoder_a, station::inputCount);
        setup.encoderB = std::min<std::size_t>(belt->encoder_b, station::inputCount);
        setup.step = belt->encoder_step;
        setup.barrier = std::min<std::size_t>(belt->barrier, station::inputCount);
        setup.ahead = belt->barrier_ahead * nanometres;
        return known(station.setBelt(setup));
    });
}

int vboard_surround(LOOMdevice* board, LOOMdevice* like) {
    station::Surroundings surroundings;
    const int code = perform(like, [&](station::Station& station) {
        surroundings = station.surroundings();
        return int{VBOARD_OK};
    });
    if (code != VBOARD_OK) return code;
    return perform(board, [&](station::Station& station) {
        station.surround(surroundings);
        return int{VBOARD_OK};
    });
}

int vboard_scene(LOOMdevice* board, const vboard_scene_setup* scene) {
    if (board == nullptr || scene == nullptr || !isSound(*scene)) return VBOARD_UNKNOWN;
    return guarded(int{VBOARD_NO_MEMORY}, [&] {
        station::Scene made{.pixel = scene->pixel, .noise = scene->noise, .seed = scene->seed};
        if (scene->components != nullptr) made.image = imageOf(*scene);
        for (std::size_t i = 0; i < scene->object_count; ++i)
            made.objects.push_back(
                {scene->objects[i].place * nanometres, scene->objects[i].length * nanometres});
        return perform(board, [&](station::Station& station) {
            station.setScene(std::move(made));
            return int{VBOARD_OK};
        });
    });
}
