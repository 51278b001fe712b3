#include "station/timing/Engine.h"

#include <utility>

namespace station {

void Engine::configure(const EngineSettings& settings) {
    const bool wasExternal = m_exsync.isExternal();
    const bool wasGated = m_exsync.isGated();
    const bool wasOpen = m_exsync.isGateOpen();
    m_settings = settings;
    m_inputs.configure(settings.inputs, m_from);
    m_simulator.configure(settings.simulator, m_from);
    m_camera.configure(!settings.simulator.isSource, settings.isPulseWidth, m_from);
    m_encoder.configure(settings.encoder);
    m_downscaler.configure(settings.downscale, settings.phase);
    m_trigger.configure(settings.trigger, m_from);
    m_flash.configure(settings.flash);
    m_buffer.configure(settings.buffer);
    if (!m_hasRun) return;
    m_exsync.configure(settings.exsync, m_from);
    const bool hasOtherMode = wasExternal != m_exsync.isExternal() || wasGated != m_exsync.isGated();
    if (hasOtherMode) m_downscaler.restart();
    if (m_exsync.isGated() && m_exsync.isGateOpen() && (hasOtherMode || !wasOpen)) m_downscaler.open();
    if (settings.areAnalyzersHeld) clearAnalyzers();
    for (std::size_t tap = 0; tap < tapCount; ++tap)
        m_signals.route(static_cast<Tap>(tap), settings.routes[tap], m_from, false);
    if (!settings.simulator.isSource && m_lineEnd == never && m_signals.level(frameValid) &&
        !m_isFrameOfImage)
        setFrame(false, m_from);
    m_wake = m_from;
}

/** Called when time first advances: the current settings count as if they had always been so. */
void Engine::begin() {
    m_inputs.preset();
    m_signals.preset(exsync, m_settings.exsync.isInverted);
    m_signals.preset(exsync2, m_settings.exsync.isInverted);
    m_signals.preset(flash, m_flash.level());
    for (std::size_t tap = 0; tap < tapCount; ++tap)
        m_signals.route(static_cast<Tap>(tap), m_settings.routes[tap], 0, true);
    m_encoder.preset(level(m_settings.lineA), level(m_settings.lineB));
    m_trigger.preset(level(m_settings.image));
    m_hasRun = true;
    configure(EngineSettings(m_settings));
}

Tick Engine::nextTick() const {
    Tick tick = std::min(m_wake, m_signals.pulseEnd());
    tick = std::min(tick, std::min(m_lineEnd, m_inputs.next()));
    tick = std::min(tick, std::min(m_softwareTick, m_exsync.next()));
    tick = std::min(tick, std::min(m_camera.next(), m_camera.nextLinkChange()));
    return std::min(tick, std::min(m_simulator.next(), m_buffer.next()));
}

void Engine::run(Tick target, std::uint64_t pictures, std::uint64_t events) {
    if (!m_hasRun) begin();
    target = std::min(target, lastTick);
    for (std::uint64_t passed = 0; passed < events; ++passed) {
        const Tick tick = std::max(nextTick(), m_from);
        if (tick > target) {
            m_now = std::max(m_now, target);
            m_from = m_now + 1;
            return;
        }
        m_now = tick; // first, so that a tick in which an exception is thrown is over
        m_from = tick + 1;
        runTick(tick);
        if (m_buffer.delivered() >= pictures) return;
    }
}

void Engine::runTick(Tick tick) {
    if (m_signals.pulseEnd() <= tick) m_signals.endPulses(tick);
    if (m_lineEnd <= tick) endLine(tick);
    const std::uint64_t edges = m_exsync.edges();
    bool hasChanged = std::exchange(m_wake, never) <= tick;
    if (m_inputs.next() <= tick) hasChanged |= m_inputs.run(tick);
    if (m_softwareTick <= tick) hasChanged |= runSoftware(tick);
    if (hasChanged) followWires(tick);
    if (m_exsync.next() <= tick) m_exsync.run(tick);
    if (m_exsync.edges() != edges && m_exsync.isEnabled()) m_flash.edge(tick);
    showFlash(tick);
    if (m_camera.nextLinkChange() <= tick && m_camera.changeLink(tick)) m_events.add(Event::linkLost, tick);
    while (runSource(tick)) {
    } // a line that starts may itself be a camera trigger
    if (m_buffer.next() > tick) return;
    m_buffer.run(tick);
    if (m_buffer.isDone()) endAcquisition(tick);
}

/** Passes its triggers to the source, and takes the line that starts. True if there are new triggers. */
bool Engine::runSource(Tick tick) {
    if (std::exchange(m_hasTriggerFallen, false)) m_camera.release(tick);
    for (; m_cameraEdges > 0; --m_cameraEdges) {
        m_simulator.trigger(tick);
        m_camera.trigger(tick);
    }
    if (m_lineEnd != never) return false; // of another source
    if (m_simulator.next() <= tick) {
        startLine(m_simulator.startLine(), {}, tick);
    } else if (m_camera.next() <= tick) {
        const Exposure exposure = m_camera.startLine(tick);
        startLine({.cycles = Camera::cyclesOf(exposure.width), .isOfCamera = true}, exposure, tick);
    }
    return m_cameraEdges > 0 || m_hasTriggerFallen;
}

bool Engine::runSoftware(Tick tick) {
    m_isSoftwareHigh = !m_isSoftwareHigh && m_softwarePulses > 0;
    if (m_isSoftwareHigh) --m_softwarePulses;
    m_softwareTick = m_isSoftwareHigh || m_softwarePulses > 0 ? tick + 1 : never;
    return true;
}

void Engine::pulseSoftware() {
    if (m_softwarePulses < mostSoftwarePulses) ++m_softwarePulses;
    if (m_softwareTick == never) m_softwareTick = m_from;
}

bool Engine::level(const Wire& wire) const {
    switch (wire.source) {
    case Wire::Source::inputA:
        return m_inputs.level(m_settings.inputA) != wire.isInverted;
    case Wire::Source::inputB:
        return m_inputs.level(m_settings.inputB) != wire.isInverted;
    case Wire::Source::image:
        return m_inputs.imageLevel() != wire.isInverted;
    case Wire::Source::software:
        return (m_isSoftwareHigh || m_settings.softwareLevel) != wire.isInverted;
    case Wire::Source::none:
        break;
    }
    return wire.isInverted;
}

void Engine::followWires(Tick tick) {
    m_trigger.follow(level(m_settings.image), tick);
    if (!m_encoder.step(level(m_settings.lineA), level(m_settings.lineB))) return;
    if (!m_exsync.isExternal() || (m_exsync.isGated() && !m_exsync.isGateOpen())) return;
    if (m_downscaler.pulse()) m_exsync.trigger(tick);
}

void Engine::setFrame(bool isValid, Tick tick) {
    m_signals.set(frameValid, isValid, tick);
    m_signals.pulse(isValid ? frameStart : frameEnd, tick);
    m_events.add(isValid ? Event::frameStart : Event::frameEnd, tick);
}

/** FVAL of a camera, which has no frames: high during an image. */
void Engine::setImage(bool isInProgress, Tick tick) {
    if (isInProgress ? !m_line.isOfCamera : !m_isFrameOfImage) return;
    m_isFrameOfImage = isInProgress;
    if (m_signals.level(frameValid) != isInProgress) setFrame(isInProgress, tick);
}

void Engine::startLine(const SourceLine& line, const Exposure& exposure, Tick tick) {
    m_lineBefore = std::exchange(m_line, line);
    m_exposureBefore = std::exchange(m_exposure, exposure);
    m_lineEnd = later(tick, m_line.cycles);
    ++m_lines;
    if (m_line.isFirst) {
        m_isFrameOfImage = false;
        if (m_signals.level(frameValid)) setFrame(false, tick);
        setFrame(true, tick);
    }
    m_signals.set(lineValid, true, tick);
    m_signals.pulse(lineStart, tick);
    m_events.add(Event::lineStart, tick);
    if (!m_exsync.isEnabled()) m_flash.edge(tick);
    const bool isTaken = m_trigger.lineStarts(tick);
    const bool isOfCamera = m_line.isOfCamera;
    m_isLineStored = isTaken && m_record != nullptr &&
                     (isOfCamera ? m_record->add(m_line, m_exposure) : m_record->add(m_line));
    if (m_isLineStored) {
        m_record->lastLine = tick;
        const std::uint64_t width = isOfCamera ? m_exposure.width : std::uint64_t{m_line.cycles} * 32;
        m_record->isNarrow |= width < m_record->layout.sensorWidth;
    } else if (isTaken && m_record != nullptr) {
        m_trigger.cutImage();
    }
    showFlash(tick);
}

void Engine::endLine(Tick tick) {
    m_lineEnd = never;
    m_signals.set(lineValid, false, tick);
    m_signals.pulse(lineEnd, tick);
    m_events.add(Event::lineEnd, tick);
    if (m_isLineStored && m_record != nullptr && !m_buffer.store(tick)) {
        m_record = nullptr;
        m_events.add(Event::overflow, tick);
    }
    m_isLineStored = false;
    m_trigger.lineEnds(tick);
    const bool isFrameOver = !m_isFrameOfImage && (m_line.isLast || !m_settings.simulator.isSource);
    if (isFrameOver && m_signals.level(frameValid)) setFrame(false, tick);
}

void Engine::rises(Tap tap, Tick tick) {
    switch (tap) {
    case Tap::analyzer0:
    case Tap::analyzer1:
        if (!m_settings.areAnalyzersHeld) m_analyzers[tap == Tap::analyzer1 ? 1 : 0].rises(tick);
        break;
    case Tap::customEvent0:
        m_events.add(Event::customSignal0, tick);
        break;
    case Tap::customEvent1:
        m_events.add(Event::customSignal1, tick);
        break;
    case Tap::cameraTrigger:
        ++m_cameraEdges;
        break;
    case Tap::cameraRelease:
        m_hasTriggerFallen = true;
        break;
    }
}

void Engine::clearAnalyzers() {
    for (Analyzer& analyzer : m_analyzers)
        analyzer.clear();
}

void Engine::rangeStarts(Tick tick, std::uint64_t lines) {
    ++m_triggers;
    m_flash.start(tick);
    m_exsync.openGate(tick, lines);
    if (m_exsync.isGated()) m_downscaler.open();
}

void Engine::gateFalls() { m_exsync.closeGate(); }

std::shared_ptr<Record> Engine::newRecord() const {
    auto record = std::make_shared<Record>();
    record->trigger = m_triggers;
    record->encoder = m_encoder.position();
    record->layout = m_settings.layout;
    record->settings = m_settings.picture;
    record->tables = m_settings.tables;
    record->view = m_settings.view;
    return record;
}

void Engine::imageStarts(Tick tick) {
    if (m_settings.trigger.mode == ImageTrigger::Mode::freeRun) {
        ++m_triggers;
        m_flash.start(tick);
    }
    setImage(true, tick);
    if (m_isSourceCut) return;
    m_record = newRecord();
    m_record->firstLine = tick;
    m_buffer.open(m_record);
}

void Engine::imageEnds(Tick tick, bool isShort) {
    setImage(false, tick);
    if (m_record == nullptr) return;
    m_record->isShort = isShort;
    m_record = nullptr;
    m_buffer.close(tick);
}

void Engine::endAcquisition(Tick tick) {
    m_trigger.setAcquiring(false);
    m_record = nullptr;
    setImage(false, tick);
}

void Engine::acquire(Destination* destination, std::uint64_t pictures) {
    endAcquisition(m_from);
    m_triggers = 0;
    m_buffer.start(destination, pictures);
    m_trigger.setAcquiring(true);
}

void Engine::stop() {
    endAcquisition(m_from);
    m_buffer.stop();
}

void Engine::detachCamera() {
    if (!m_camera.isAttached()) return;
    if (m_camera.isThere()) m_events.add(Event::linkLost, m_from);
    m_camera.detach();
}

void Engine::cutSource(bool isCut) {
    if (isCut && m_record != nullptr) {
        m_record = nullptr;
        m_buffer.drop();
    }
    m_isSourceCut = isCut;
}

bool Engine::insert(std::shared_ptr<Record> record) {
    record->firstLine = record->lastLine = m_from;
    return m_buffer.insert(std::move(record), m_from);
}

bool Engine::connect(std::size_t input, const Wave& wave, std::size_t second) {
    if (!m_inputs.connect(input, wave, m_from, second)) return false;
    m_wake = m_from;
    return true;
}

} // namespace station
