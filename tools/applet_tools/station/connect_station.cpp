// Connects the description of a station to the virtual board.

#include "applet_tools/applet/assignments.h"
#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"
#include "applet_tools/base/text.h"
#include "applet_tools/pictures/image_file.h"
#include "applet_tools/station/StationFile.h"

#include <variant>

namespace applet_tools {
namespace {

/** The readers accept only what the board accepts, so a refusal is unexpected and has a short message. */
void requireTaken(int code, const char* what) {
    if (code == VBOARD_NO_MEMORY) throw Failure(std::string("there is no memory left for the ") + what);
    if (code != VBOARD_OK) throw Failure(std::string("the virtual board did not take the ") + what);
}

} // namespace

void connectCamera(const applet_host::BoardFunctions& board, LOOMdevice* device,
                   const StationCamera& camera) {
    requireTaken(board.camera_attach(device, &camera.camera, &camera.faults), "camera");
}

void connectBelt(const applet_host::BoardFunctions& board, LOOMdevice* device, const StationBelt& belt) {
    const vboard_belt_setup setup{.pieces = belt.profile.data(),
                                  .count = belt.profile.size(),
                                  .encoder_a = belt.encoderA.value_or(VBOARD_NO_INPUT),
                                  .encoder_b = belt.encoderB.value_or(VBOARD_NO_INPUT),
                                  .encoder_step = belt.encoderStep,
                                  .barrier = belt.barrier.value_or(VBOARD_NO_INPUT),
                                  .barrier_ahead = belt.barrierAhead};
    requireTaken(board.belt(device, &setup), "belt");
}

void connectScene(const applet_host::BoardFunctions& board, LOOMdevice* device, const StationScene& scene) {
    PixelImage image;
    if (!scene.image.empty()) image = readImageFile(scene.image);
    const vboard_scene_setup setup{.pixel = scene.pixel,
                                   .width = image.width,
                                   .height = image.height,
                                   .components = image.components.empty() ? nullptr : image.components.data(),
                                   .objects = scene.objects.empty() ? nullptr : scene.objects.data(),
                                   .object_count = scene.objects.size(),
                                   .noise = scene.noise,
                                   .seed = scene.seed};
    requireTaken(board.scene(device, &setup), "scene");
}

void connectStation(const applet_host::BoardFunctions& board, LOOMdevice* device,
                    const StationFile& station) {
    try { // first, since its image may be invalid
        if (station.scene) connectScene(board, device, *station.scene);
    } catch (const UsageError& error) {
        if (station.name.empty()) throw;
        throw UsageError(station.name + ": scene.image: " + error.what());
    }
    if (station.camera) connectCamera(board, device, *station.camera);
    if (station.belt) connectBelt(board, device, *station.belt);
    for (const WaveRequest& wave : station.waves)
        connectWave(board, device, wave);
    if (station.clock) board.clock(device, *station.clock);
}

void setUpStation(Instance& instance, const ParameterList& parameters, const StationFile& station) {
    const std::string prefix = station.name + (station.name.empty() ? "" : ": ") + "parameters.";
    for (const std::string& word : station.parameters) // a misspelt one changes nothing
        try {
            parseAssignments(parameters, {word});
        } catch (const UsageError& error) {
            throw UsageError(prefix + printable(word.substr(0, word.find('='))) + ": " + error.what());
        }
    connectStation(instance.board(), instance.device(), station);
    std::string refusal;
    const AssignmentHooks hooks{.after = [&](const AssignmentResult& result) {
        if (result.code != FG_OK) refusal = result.assignment.target.name() + ": " + refusalInWords(result);
    }};
    if (applyAssignments(instance, parameters, station.parameters, hooks).isRefused)
        throw Failure(prefix + refusal);
}

} // namespace applet_tools
