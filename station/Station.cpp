#include "station/Station.h"

#include "station/Settings.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace station {

void Station::readBoard() {
    const std::uint64_t revision = m_board.revision();
    const std::uint64_t tableRevision = m_board.tableRevision();
    if (m_revision == revision && m_tableRevision == tableRevision) return;
    const bool isFirst = m_picture == nullptr;
    if (m_tableRevision != tableRevision) {
        m_tables = std::make_shared<Tables>(readTables(m_board));
        m_tableRevision = tableRevision;
    }
    const PictureSettings picture = readPictureSettings(m_board);
    if (m_picture == nullptr || *m_picture != picture) m_picture = std::make_shared<PictureSettings>(picture);

    EngineSettings settings = readEngineSettings(m_board, m_dmaRate);
    settings.picture = m_picture;
    settings.tables = m_tables;
    settings.view = m_view;
    m_engine.configure(settings);
    if (isFirst) m_engine.setEncoderCount(countOf(m_board.value(Parameter::encoderCount)));
    m_engine.cutSource(isInputOn(Raster::Point::camera) || isInputOn(Raster::Point::buffer) ||
                       isInputOn(Raster::Point::output));
    const bool isHot = m_board.value(Parameter::fpgaTemperature) > hottest;
    if (isHot && !m_isHot) m_engine.events().add(Event::temperatureAlarm, m_engine.from());
    m_isHot = isHot;
    m_revision = revision;
}

void Station::run(Tick ticks, std::uint64_t pictures, std::uint64_t events) {
    readBoard();
    const Tick from = m_engine.hasRun() ? m_engine.now() : 0;
    m_engine.run(later(from, ticks), pictures, events);
    publish();
}

Tick Station::advance(Tick ticks, std::uint64_t events) {
    run(ticks, never, events);
    return now();
}

void Station::write(Parameter parameter, std::uint64_t value) {
    switch (parameter) {
    case Parameter::softwarePulse:
        if (value != 1) return;
        if (m_engine.hasRun()) readBoard();
        m_engine.pulseSoftware();
        break;
    case Parameter::analyzerClear:
        if (value != 1 || !m_engine.hasRun()) return;
        readBoard();
        m_engine.clearAnalyzers();
        publishAnalyzers();
        break;
    case Parameter::encoderCount:
        if (!m_engine.hasRun()) return;
        readBoard();
        m_engine.setEncoderCount(static_cast<std::uint32_t>(value));
        break;
    case Parameter::cameraDebugMode:
    case Parameter::bufferDebugMode:
    case Parameter::outputDebugMode:
        if (m_engine.hasRun()) readBoard();
        publishReady();
        break;
    case Parameter::cameraDebugPixel:
    case Parameter::cameraDebugFlag:
        writePixels(Raster::Point::camera, parameter == Parameter::cameraDebugFlag, value);
        break;
    case Parameter::bufferDebugPixel:
    case Parameter::bufferDebugFlag:
        writePixels(Raster::Point::buffer, parameter == Parameter::bufferDebugFlag, value);
        break;
    case Parameter::outputDebugPixel:
    case Parameter::outputDebugFlag:
        writePixels(Raster::Point::output, parameter == Parameter::outputDebugFlag, value);
        break;
    default:
        break;
    }
}

std::uint32_t Station::debugMode(Raster::Point point) const {
    constexpr Parameter modes[] = {Parameter::cameraDebugMode, Parameter::bufferDebugMode,
                                   Parameter::outputDebugMode};
    return countOf(m_board.value(modes[static_cast<std::size_t>(point)]));
}

bool Station::isInputOn(Raster::Point point) const { return (debugMode(point) & 1U) != 0; }

void Station::writePixels(Raster::Point point, bool isFlag, std::uint64_t value) {
    Injection& injection = m_injections[static_cast<std::size_t>(point)];
    if (!isInputOn(point))
        injection.clear();
    else if (!isFlag)
        injection.writePixel(value);
    else if (value != 1)
        injection.endLine();
    else
        inject(injection.endFrame());
}

bool Station::insert(const std::shared_ptr<const Raster>& raster, std::uint32_t first, std::uint32_t lines) {
    const std::shared_ptr<Record> record = m_engine.newRecord();
    record->raster = raster;
    record->lines = lines;
    record->runs.push_back({SourceLine{.y = first, .height = raster->height}, lines});
    return m_engine.insert(record);
}

bool Station::inject(const std::shared_ptr<const Raster>& raster) {
    if (raster == nullptr || !raster->isSound() || !isInputOn(raster->point) || !isRunning()) return false;
    readBoard();
    if (raster->point != Raster::Point::camera) return insert(raster, 0, raster->height);
    if ((debugMode(raster->point) & 2U) != 0) {
        m_board.publish(Parameter::cameraDebugX, raster->width - 1);
        m_board.publish(Parameter::cameraDebugY, raster->height - 1);
        m_board.publish(Parameter::cameraDebugValue,
                        raster->components.end()[-3] >> (16 - m_picture->colours.linkBits));
    }
    const std::uint32_t offset = std::min(countOf(m_board.value(Parameter::yOffset)), raster->height);
    const std::uint32_t length =
        std::min(countOf(m_board.value(Parameter::yLength)), raster->height - offset);
    const std::uint32_t height = std::max(countOf(m_board.value(Parameter::imageHeight)), 1U);
    for (std::uint32_t done = 0; done < length;) {
        const std::uint32_t lines = std::min(height, length - done);
        if (!insert(raster, offset + done, lines)) return false;
        done += lines;
    }
    return length > 0;
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
    if (!areInputs || belt.barrier > inputCount) return false;
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
    if (hasEncoder) connect(belt.encoderA, Wave::beltEncoder(from(), belt.pieces, belt.step), belt.encoderB);
    connectBarrier();
    return true;
}

void Station::connectBarrier() {
    if (m_belt == nullptr || m_beltSetup.barrier >= inputCount) return;
    const std::vector<Edge> edges = m_belt->barrier(m_scene.objects, m_beltSetup.ahead);
    const bool isInItAtFirst = !edges.empty() && edges.front().tick == m_belt->start();
    connect(m_beltSetup.barrier, Wave::edges(isInItAtFirst, edges));
}

void Station::setScene(Scene scene) {
    m_scene = std::move(scene);
    m_scene.objects = mergedObjects(std::move(m_scene.objects));
    m_scene.pixel = std::max(m_scene.pixel, 1U);
    setView();
    connectBarrier();
}

void Station::setDmaRate(std::uint64_t bytesPerSecond) {
    m_dmaRate = bytesPerSecond;
    m_revision.reset();
}

bool Station::start(std::shared_ptr<HostMemory> memory, std::int64_t pictures) {
    if (memory == nullptr || transferLength() > memory->frameBytes()) return false;
    readBoard();
    memory->clear();
    m_memory = std::move(memory);
    m_pictures = std::max(pictures, std::int64_t{0});
    m_engine.acquire(m_memory.get(), static_cast<std::uint64_t>(m_pictures));
    publishReady();
    return true;
}

void Station::stop() {
    m_engine.stop();
    publishReady();
}

void Station::detach(const HostMemory& memory) {
    if (m_memory.get() != &memory) return;
    stop();
    m_memory.reset();
}

Station::Wait Station::waitForPicture(std::int64_t picture, Tick timeout) {
    if (picture <= lastPicture()) return Wait::arrived;
    if (!isRunning() || (m_pictures > 0 && picture > m_pictures)) return Wait::notRunning;
    run(timeout, static_cast<std::uint64_t>(picture), mostEvents);
    return picture <= lastPicture() ? Wait::arrived : Wait::timeout;
}

bool Station::release(std::int64_t picture) {
    if (m_memory == nullptr || !m_memory->release(picture)) return false;
    m_engine.resume();
    return true;
}

std::uint64_t Station::transferLength() const {
    const Layout layout = readLayout(m_board);
    return layout.bytesPerLine * std::max(countOf(m_board.value(Parameter::imageHeight)), 1U);
}

Trace Station::trace(std::uint8_t select, Tick from, Tick to) const {
    return m_engine.signals().trace(Route{select, false}, from, std::min(to, now()));
}

Trace Station::outputTrace(std::size_t output, Tick from, Tick to) const {
    return m_engine.signals().trace(readOutput(m_board, output), from, std::min(to, now()));
}

Losses Station::losses() {
    return {.images = m_engine.buffer().lostImages(),
            .triggers = m_engine.trigger().ignored(),
            .pulses = m_engine.exSync().lostPulses(),
            .cameraTriggers = m_engine.simulator().lostTriggers() + m_engine.camera().lostTriggers(),
            .waits = m_engine.buffer().waits(),
            .events = m_engine.events().dropped()};
}

CameraState Station::cameraState() const {
    const Camera& camera = m_engine.camera();
    if (!camera.isAttached()) return CameraState::none;
    if (!camera.isThere()) return CameraState::linkLost;
    return m_camera.timing.lineRate > 0 ? CameraState::freeRunning : CameraState::triggered;
}

std::uint32_t Station::cameraStatus() const {
    const Signals& signals = m_engine.signals();
    const bool isSimulated = countOf(m_board.value(Parameter::simulatorSource)) == 1;
    const bool bits[] = {isSimulated || m_engine.camera().isThere(), signals.level(lineValid),
                         signals.level(frameValid), signals.level(readOutput(m_board, 0)),
                         m_engine.trigger().level()};
    std::uint32_t status = 0;
    for (std::size_t bit = 0; bit < std::size(bits); ++bit)
        status |= std::uint32_t{bits[bit]} << bit;
    return status;
}

void Station::publishAnalyzers() {
    constexpr std::uint64_t pulseMask = 0xffff'ffff;
    constexpr std::uint64_t differenceMask = 0x1'ffff'ffff;
    constexpr Parameter first[] = {Parameter::analyzer0Current, Parameter::analyzer1Current};
    for (std::size_t number = 0; number < 2; ++number) {
        const Analyzer& analyzer = m_engine.analyzer(number);
        const auto place = static_cast<std::size_t>(first[number]);
        const Tick periods[] = {analyzer.current(), analyzer.maximum(), analyzer.minimum()};
        for (std::size_t i = 0; i < 3; ++i)
            m_board.publish(static_cast<Parameter>(place + i),
                            static_cast<double>(periods[i]) / ticksPerMicrosecond);
        m_board.publish(static_cast<Parameter>(place + 3), static_cast<double>(analyzer.edges() & pulseMask));
    }
    const std::uint64_t difference = m_engine.analyzer(0).edges() - m_engine.analyzer(1).edges();
    m_board.publish(Parameter::analyzerDifference, static_cast<double>(difference & differenceMask));
}

void Station::publishReady() {
    constexpr Parameter states[] = {Parameter::cameraDebugReady, Parameter::bufferDebugReady,
                                    Parameter::outputDebugReady};
    for (std::size_t i = 0; i < std::size(states); ++i)
        m_board.publish(states[i],
                        isInputOn(static_cast<Raster::Point>(i)) && m_engine.buffer().canInsert() ? 1 : 0);
}

/** Publishes position and value of the last pixel of the source. */
void Station::publishLastLine() {
    const SourceLine& line = m_engine.lastLine();
    std::uint32_t x = std::min(line.cycles, ImageSize::widest / 32) * 32 - 1;
    std::uint32_t y = line.y;
    std::uint32_t value = patternValue(m_picture->pattern, x, line.y, line.frame);
    if (line.isOfCamera) {
        const Exposure& exposure = m_engine.lastExposure();
        std::vector<std::uint16_t> components;
        drawExposure(*m_view, exposure, components);
        x = exposure.width - 1;
        y = static_cast<std::uint32_t>(exposure.number - 1);
        value = std::uint32_t{components.end()[-3]} >> (16 - m_picture->colours.linkBits);
    }
    m_board.publish(Parameter::cameraDebugX, x);
    m_board.publish(Parameter::cameraDebugY, y);
    m_board.publish(Parameter::cameraDebugValue, value);
}

/** Publishes position and value of the last pixel at the debug points that have their output enabled. */
void Station::publishMonitors() {
    const std::uint64_t lines = m_engine.linesEnded();
    const bool isCameraOn = (debugMode(Raster::Point::camera) & 3U) == 2; // output on, input off
    if (isCameraOn && lines != m_monitoredLines) {
        publishLastLine();
    }
    m_monitoredLines = lines;
    if ((debugMode(Raster::Point::output) & 2U) == 0 || m_memory == nullptr) return;
    const std::shared_ptr<const Record> last = m_memory->record(lastPicture());
    if (last == nullptr || last == m_monitored) return;
    m_monitored = last;
    m_board.publish(Parameter::outputDebugX, std::max(last->settings->xLength, 1U) - 1);
    m_board.publish(Parameter::outputDebugY, std::max(last->lines, 1U) - 1);
    m_board.publish(Parameter::outputDebugValue, lastPixelOf(*last));
}

void Station::publish() {
    publishAnalyzers();
    publishMonitors();
    publishReady();
    m_board.publish(Parameter::inputStatus, m_engine.inputs().status());
    m_board.publish(Parameter::imageIsBusy, m_engine.trigger().isBusy() ? 1 : 0);
    m_board.publish(Parameter::encoderCount, m_engine.encoder().count());
    const double level = fillLevel();
    for (const Parameter parameter : {Parameter::fillLevel0, Parameter::fillLevel1, Parameter::fillLevel2})
        m_board.publish(parameter, level);
    for (std::size_t i = 0; i < eventCount; ++i) {
        const auto event = static_cast<Event>(i);
        const std::uint64_t times = m_engine.events().count(event);
        if (times == 0) continue;
        m_board.raise(event, times);
        m_engine.events().clearCount(event);
        if (event == Event::overflow) m_board.publish(Parameter::overflowOccurred, 1);
    }
}

} // namespace station
