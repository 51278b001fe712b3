/**
 * The timing engine: processes the edges, lines and images of the station in the order of their ticks.
 *
 * Its cost grows with the number of events, not with time. The order within a tick: ends of one-tick pulses,
 * the end of a line, the inputs, image trigger, line trigger, ExSync, the link of the camera, camera trigger,
 * the start of a line, the DMA. So an image starting in the tick of a line takes it; one that ends does not.
 */
#ifndef STATION_TIMING_ENGINE_H
#define STATION_TIMING_ENGINE_H

#include "station/scene/Camera.h"
#include "station/signals/Signals.h"
#include "station/timing/Analyzer.h"
#include "station/timing/Buffer.h"
#include "station/timing/Encoder.h"
#include "station/timing/Events.h"
#include "station/timing/ExSync.h"
#include "station/timing/Flash.h"
#include "station/timing/ImageTrigger.h"
#include "station/timing/Inputs.h"
#include "station/timing/Simulator.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace station {

/** A wire of the trigger core, with its polarity. */
struct Wire {
    enum class Source : std::uint8_t { inputA, inputB, image, software, none };
    Source source = Source::none;
    bool isInverted = false;
};

/** All settings of the engine. */
struct EngineSettings {
    Simulator::Settings simulator;
    bool isPulseWidth = false; // the camera exposes while its trigger is high
    ExSync::Settings exsync;
    Encoder::Settings encoder;
    std::uint32_t downscale = 1;
    std::uint32_t phase = 1;
    Inputs::Settings inputs;
    std::uint8_t inputA = 0;
    std::uint8_t inputB = 0;
    Wire lineA, lineB, image;
    bool softwareLevel = false;
    ImageTrigger::Settings trigger;
    Flash::Settings flash;
    Buffer::Settings buffer;
    std::array<Route, tapCount> routes;
    bool areAnalyzersHeld = false; // cleared, and not counting
    Layout layout;
    std::shared_ptr<const PictureSettings> picture;
    std::shared_ptr<const View> view; // of the camera
    std::shared_ptr<const Tables> tables;
};

class Engine final : TapHandler, ImageHandler {
public:
    Engine() = default;
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    /** Sets the current settings. They take effect from the next tick on. */
    void configure(const EngineSettings& settings);
    /** Advances time to `target`, to the tick in which the acquisition has delivered `pictures` pictures, or
     *  by `events` ticks with an event, whichever comes first. */
    void run(Tick target, std::uint64_t pictures, std::uint64_t events);
    /** Everything up to this tick has happened. */
    Tick now() const { return m_now; }
    /** The first tick that has not happened: writes take effect there. */
    Tick from() const { return m_from; }
    bool hasRun() const { return m_hasRun; }

    /** Connects a wave to an input, and its second track to another. False if there is no such input. */
    bool connect(std::size_t input, const Wave& wave, std::size_t second = inputCount);
    /** A pulse of one tick on the software wire. */
    void pulseSoftware();
    void clearAnalyzers();
    /** Attaches a camera to the port; it may get another belt at any time. */
    void attach(const Camera::Settings& settings) { m_camera.attach(settings, m_from); }
    void detachCamera();
    void setBelt(std::shared_ptr<const Belt> belt) { m_camera.setBelt(std::move(belt)); }
    void setEncoderCount(std::uint32_t count) { m_encoder.setCount(count); }

    /** Starts an acquisition, which ends after `pictures` pictures; 0: never. A running one ends. */
    void acquire(Destination* destination, std::uint64_t pictures);
    /** Ends the acquisition. Stored parts of images are dropped. */
    void stop();
    bool isAcquiring() const { return !m_buffer.isDone(); }
    /** A slot for a picture has become free. */
    void resume() { m_buffer.resume(m_from); }
    /** Disconnects images of the source from the buffer, or connects them again. */
    void cutSource(bool isCut);
    /** Inserts an image that has only pixels. False if that is not possible now. */
    bool insert(std::shared_ptr<Record> record);
    /** A record with the current settings, and no line. */
    std::shared_ptr<Record> newRecord() const;

    const Signals& signals() const { return m_signals; }
    Events& events() { return m_events; }
    const Inputs& inputs() const { return m_inputs; }
    const Encoder& encoder() const { return m_encoder; }
    const Analyzer& analyzer(std::size_t number) const { return m_analyzers[number]; }
    const ImageTrigger& trigger() const { return m_trigger; }
    const ExSync& exSync() const { return m_exsync; }
    const Simulator& simulator() const { return m_simulator; }
    const Camera& camera() const { return m_camera; }
    Buffer& buffer() { return m_buffer; }
    std::uint64_t lines() const { return m_lines; }
    /** Lines of the source that were transferred completely, and the last of them. */
    std::uint64_t linesEnded() const { return m_lines - (m_lineEnd != never ? 1 : 0); }
    const SourceLine& lastLine() const { return m_lineEnd != never ? m_lineBefore : m_line; }
    /** The same of the camera, if it is one of the camera. */
    const Exposure& lastExposure() const { return m_lineEnd != never ? m_exposureBefore : m_exposure; }

private:
    // TapHandler
    void rises(Tap tap, Tick tick) override;
    // ImageHandler
    void rangeStarts(Tick tick, std::uint64_t lines) override;
    void gateFalls() override;
    void imageStarts(Tick tick) override;
    void imageEnds(Tick tick, bool isShort) override;

    void begin();
    Tick nextTick() const;
    void runTick(Tick tick);
    bool runSoftware(Tick tick);
    void followWires(Tick tick);
    bool level(const Wire& wire) const;
    bool runSource(Tick tick);
    void startLine(const SourceLine& line, const Exposure& exposure, Tick tick);
    void endLine(Tick tick);
    void setFrame(bool isValid, Tick tick);
    void setImage(bool isInProgress, Tick tick);
    void endAcquisition(Tick tick);
    void showFlash(Tick tick) { m_signals.set(flash, m_flash.level(), tick); }

    static constexpr std::uint32_t mostSoftwarePulses = 1U << 20;

    EngineSettings m_settings;
    Signals m_signals{*this};
    Events m_events;
    Inputs m_inputs{m_signals, m_events};
    Encoder m_encoder;
    Downscaler m_downscaler;
    ExSync m_exsync{m_signals};
    Flash m_flash;
    Simulator m_simulator;
    Camera m_camera;
    ImageTrigger m_trigger{*this};
    Buffer m_buffer;
    std::array<Analyzer, 2> m_analyzers;

    bool m_hasRun = false;
    Tick m_now = 0;
    Tick m_from = 0;
    Tick m_wake = 0;                 // the tick after a change of the settings
    std::uint32_t m_cameraEdges = 0; // edges of the camera trigger that the source has not processed yet
    bool m_hasTriggerFallen = false;
    // The software wire: pending pulses, each a tick high and a tick low.
    std::uint32_t m_softwarePulses = 0;
    bool m_isSoftwareHigh = false;
    Tick m_softwareTick = never;
    // The line in transfer.
    SourceLine m_line;
    SourceLine m_lineBefore;
    Exposure m_exposure;
    Exposure m_exposureBefore;
    Tick m_lineEnd = never;
    bool m_isLineStored = false;
    std::uint64_t m_lines = 0;
    // The image in progress, unless it was lost.
    std::shared_ptr<Record> m_record;
    std::uint64_t m_triggers = 0; // starts
    bool m_isSourceCut = false;
    bool m_isFrameOfImage =
        false; // FVAL is that of an image in progress, which a camera has in place of a frame
};

} // namespace station

#endif
