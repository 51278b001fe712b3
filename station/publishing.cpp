// What a station shows on its board: states, analyzers, monitors of the debug points, events.

#include "station/Settings.h"
#include "station/Station.h"

#include <algorithm>

namespace station {

void Station::publishAnalyzers() {
    constexpr std::uint64_t pulseMask = 0xffff'ffff;
    constexpr std::uint64_t differenceMask = 0x1'ffff'ffff;
    constexpr Parameter first[] = {Parameter::analyzer0Current, Parameter::analyzer1Current};
    for (std::size_t number = 0; number < 2; ++number) {
        const Analyzer& analyzer = m_engine.analyzer(number);
        const auto index = static_cast<std::size_t>(first[number]);
        const Tick periods[] = {analyzer.current(), analyzer.maximum(), analyzer.minimum()};
        for (std::size_t i = 0; i < 3; ++i)
            m_board.publish(static_cast<Parameter>(index + i),
                            static_cast<double>(periods[i]) / ticksPerMicrosecond);
        m_board.publish(static_cast<Parameter>(index + 3), static_cast<double>(analyzer.edges() & pulseMask));
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
