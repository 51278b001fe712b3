// What is connected to a board: camera, belt, scene, and the waves of its inputs.

#include "station/Station.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace station {

bool Station::connect(std::size_t input, const Wave& wave, std::size_t second) {
    if (!m_engine.connect(input, wave, second)) return false;
    std::erase_if(m_waves, [=](const auto& connection) { return connection.input == input; });
    m_waves.push_back({input, second, wave, from()});
    m_waves.back().wave.begin(from());
    return true;
}

/** The wave is part of the belt. */
void Station::connectBelt(std::size_t input, const Wave& wave, std::size_t second) {
    std::erase_if(m_waves, [=](const auto& connection) {
        return connection.input == input || connection.input == second;
    });
    m_engine.connect(input, wave, second);
}

Surroundings Station::surroundings() const {
    Surroundings all{.camera = {}, .belt = {}, .scene = m_scene, .waves = m_waves, .dmaRate = m_dmaRate};
    if (m_engine.camera().isAttached()) all.camera = m_camera;
    if (m_belt != nullptr) all.belt = m_beltSetup;
    return all;
}

void Station::surround(const Surroundings& surroundings) {
    setScene(surroundings.scene);
    if (surroundings.camera)
        attachCamera(*surroundings.camera);
    else
        detachCamera();
    if (surroundings.belt) setBelt(*surroundings.belt);
    for (const auto& [input, second, wave, begin] : surroundings.waves) {
        const Tick now = from();
        connect(input, begin > now ? wave.earlier(begin - now) : wave, second);
    }
    setDmaRate(surroundings.dmaRate);
}

void Station::setView() {
    m_view = std::make_shared<View>(View{m_scene, m_camera.order, std::max(m_camera.fullExposure, 1U)});
    m_revision.reset();
}

void Station::attachCamera(const CameraSetup& camera) {
    m_camera = camera;
    setView();
    m_engine.attach(camera.timing);
}

void Station::detachCamera() { m_engine.detachCamera(); }

bool Station::setBelt(const BeltSetup& belt) {
    const bool hasEncoder = belt.encoderA != inputCount || belt.encoderB != inputCount;
    const bool areInputs = !hasEncoder || (belt.encoderA < inputCount && belt.encoderB < inputCount &&
                                           belt.encoderA != belt.encoderB);
    if (!areInputs || belt.barrier > inputCount || !Wave::areWithin(belt.pieces, Wave::fastestBelt))
        return false;
    const auto isTooFast = [&](std::int32_t speed) {
        constexpr std::uint64_t thousandSteps = std::uint64_t{Wave::fastestEncoder} / 1000;
        return std::uint64_t(std::abs(std::int64_t{speed})) >
               thousandSteps * belt.step; // speed in micrometres, step in nanometres
    };
    for (const SpeedPiece& piece : belt.pieces)
        if (hasEncoder && (isTooFast(piece.from) || isTooFast(piece.to))) return false;
    m_beltSetup = belt;
    m_belt = std::make_shared<Belt>(from(), belt.pieces);
    m_engine.setBelt(m_belt);
    if (hasEncoder)
        connectBelt(belt.encoderA, Wave::beltEncoder(from(), belt.pieces, belt.step), belt.encoderB);
    connectBarrier();
    return true;
}

void Station::connectBarrier() {
    if (m_belt == nullptr || m_beltSetup.barrier >= inputCount) return;
    const std::vector<Edge> edges = m_belt->barrier(m_scene.objects, m_beltSetup.ahead);
    const bool isInItAtFirst = !edges.empty() && edges.front().tick == m_belt->start();
    connectBelt(m_beltSetup.barrier, Wave::edges(isInItAtFirst, edges));
}

void Station::setScene(Scene scene) {
    m_scene = std::move(scene);
    m_scene.objects = mergedObjects(std::move(m_scene.objects));
    m_scene.pixel = std::max(m_scene.pixel, 1U);
    setView();
    connectBarrier();
}

} // namespace station
