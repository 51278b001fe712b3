#include "station/Station.h"

#include "station/Settings.h"

#include <algorithm>
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

Station::Wait Station::waitForPicture(std::int64_t picture, Tick timeout, std::uint64_t events) {
    if (picture <= lastPicture()) return Wait::arrived;
    if (!isRunning() || (m_pictures > 0 && picture > m_pictures)) return Wait::notRunning;
    run(timeout, static_cast<std::uint64_t>(picture), events);
    return picture <= lastPicture() ? Wait::arrived : Wait::notYet;
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
            .droppedTriggers = m_engine.camera().droppedTriggers(),
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

} // namespace station
