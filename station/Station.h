/**
 * A simulated line-scan station around a board: time, signals, lines, images.
 *
 * Time is a count of ticks of 8 ns from 0 on and moves only in advance() and waitForPicture(). The parameters of the
 * board are read when it moves: a write acts from the next tick on, as if all writes in between had come at once. The
 * same writes at the same ticks give the same pictures, events and states on every machine. One thread at a time uses a
 * station; it has none of its own. If memory is lacking, std::bad_alloc leaves a call: what was to happen in that tick is
 * lost, and the station goes on.
 */
#ifndef STATION_STATION_H
#define STATION_STATION_H

#include "station/Board.h"
#include "station/HostMemory.h"
#include "station/Injection.h"
#include "station/scene/Scene.h"
#include "station/timing/Engine.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace station {

/** What was lost or left out since the station was made. */
struct Losses {
    std::uint64_t images = 0;         // no room in the buffer
    std::uint64_t triggers = 0;       // of images, while one was in progress
    std::uint64_t pulses = 0;         // of the line trigger, while ExSync was active
    std::uint64_t cameraTriggers = 0; // while a line or frame was in transfer
    std::uint64_t waits = 0;          // of the DMA, for a place in the memory of the host
    std::uint64_t events = 0;         // that left the queue of events
};

/** A camera at the port. */
struct CameraSetup {
    Camera::Settings timing;
    std::array<std::uint8_t, 3> order{0, 1, 2}; // of the colours on the link: 0 red, 1 green, 2 blue
    std::uint32_t fullExposure = 1;             // ticks after which a pixel has the value of the scene
};

/** At the port. */
enum class CameraState : std::uint8_t { none, triggered, freeRunning, linkLost };

/** A belt, and what is driven by it. */
struct BeltSetup {
    std::vector<SpeedPiece> pieces; // in micrometres a second
    // Inputs; inputCount: none.
    std::size_t encoderA = inputCount;
    std::size_t encoderB = inputCount;
    std::uint32_t step = 1; // of the encoder, in nanometres
    std::size_t barrier = inputCount;
    std::int64_t ahead = 0; // of the camera, in nanometres
};

class Station {
public:
    /** A call handles no more ticks with something in them than this, some seconds of work. */
    static constexpr std::uint64_t mostEvents = std::uint64_t{1} << 26;

    enum class Wait : std::uint8_t { arrived, timeout, notRunning };

    /** The board must live as long as the station. */
    explicit Station(Board& board) : m_board(board) {}

    Tick now() const { return m_engine.now(); }
    /** The first tick that has not happened: writes act there. */
    Tick from() const { return m_engine.from(); }
    /** Lets time move on by `ticks`, and gives the new time. It is less than asked for at the end of time, or after
     *  `events` ticks with something in them: then ask again. */
    Tick advance(Tick ticks, std::uint64_t events = mostEvents);
    /** The board calls this after a write of a parameter that acts by being written: the software pulse, the clear of
     *  the analyzers, the count of the encoder, modes, pixels and flags of the debug points. Others do nothing. */
    void write(Parameter parameter, std::uint64_t value);

    /** Connects a wave to an input (0 to 7 GPI, 8 to 11 front GPI) from the next tick on. Of an encoder, `second` gets
     *  track B. False if there is no such input. */
    bool connect(std::size_t input, const Wave& wave, std::size_t second = inputCount) {
        return m_engine.connect(input, wave, second);
    }
    /** Attaches a camera to the port, in place of the one that was there, from the next tick on. */
    void attachCamera(const CameraSetup& camera);
    /** Takes the camera off. */
    void detachCamera();
    /** Starts a belt at place 0 at the next tick, and connects what it drives. False if there is no such input, or the
     *  encoder would make more quarter steps a second than an encoder does. */
    bool setBelt(const BeltSetup& belt);
    /** What the camera sees, from the first line of the next image on, and the light barrier at once. */
    void setScene(Scene scene);
    /** Puts an image into the path at a debug point, as one that has just come: the lines of the simulator no longer
     *  pass a point whose input is on (bit 0 of its OperationMode). At the camera YOffset, YLength and ImageHeight cut
     *  it as in free run, and no trigger is asked for. False if the input is off, no acquisition runs, or there is no
     *  room. */
    bool inject(const std::shared_ptr<const Raster>& raster);
    bool isInputOn(Raster::Point point) const;
    /** Bytes that the DMA moves in a second; 0: what the link does. */
    void setDmaRate(std::uint64_t bytesPerSecond);

    /** Starts an acquisition into a memory, which is cleared. It ends after so many pictures; 0 or less: never. What is
     *  running ends. False without a memory, or if a picture by the present parameters is larger than its frames. */
    bool start(std::shared_ptr<HostMemory> memory, std::int64_t pictures);
    /** Ends the acquisition and drops the image in progress. Pictures stay in the memory. */
    void stop();
    /** Forgets a memory that is about to go, and ends an acquisition into it. */
    void detach(const HostMemory& memory);
    bool isRunning() const { return m_engine.isAcquiring(); }
    /** Number of the last picture of the present or last acquisition; they count from 1. */
    std::int64_t lastPicture() { return static_cast<std::int64_t>(m_engine.buffer().delivered()); }
    /** Lets time move to the arrival of a picture, but by no more than `timeout` ticks. */
    Wait waitForPicture(std::int64_t picture, Tick timeout);
    /** Gives the frame of a picture back to the memory of the acquisition. False if it is not there. */
    bool release(std::int64_t picture);
    /** A frame of the memory was given back elsewhere. */
    void resume() { m_engine.resume(); }
    /** Bytes of a full picture by the present parameters. */
    std::uint64_t transferLength() const;

    /** The oldest event that was not asked for yet. */
    std::optional<Occurrence> nextEvent() { return m_engine.events().take(); }
    /** What a signal did, from one tick to another, both included. Only the last 16384 edges of it are kept. */
    Trace trace(std::uint8_t select, Tick from, Tick to) const;
    /** The same for an output: 0 the camera trigger, 1 to 8 GPO, 9 and 10 front GPO, as they are routed now. */
    Trace outputTrace(std::size_t output, Tick from, Tick to) const;
    Losses losses();
    /** Lines of the source so far. */
    std::uint64_t lines() const { return m_engine.lines(); }
    CameraState cameraState() const;
    /** Bits: 0 a source is there, 1 LVAL, 2 FVAL, 3 camera trigger, 4 input of the image trigger. */
    std::uint32_t cameraStatus() const;
    std::uint32_t fillLevel() { return m_engine.buffer().fillLevel(now()); }

private:
    void readBoard();
    void setView();
    void connectBarrier();
    void publish();
    void publishAnalyzers();
    void publishReady();
    void publishMonitors();
    void publishLastLine();
    void writePixels(Raster::Point point, bool isFlag, std::uint64_t value);
    std::uint32_t debugMode(Raster::Point point) const;
    bool insert(const std::shared_ptr<const Raster>& raster, std::uint32_t first, std::uint32_t lines);
    void run(Tick ticks, std::uint64_t pictures, std::uint64_t events);

    static constexpr double hottest = 85;

    Board& m_board;
    Engine m_engine;
    std::shared_ptr<HostMemory> m_memory;
    std::optional<std::uint64_t> m_revision; // of what was read
    std::optional<std::uint64_t> m_tableRevision;
    std::shared_ptr<const PictureSettings> m_picture;
    std::shared_ptr<const Tables> m_tables;
    CameraSetup m_camera;
    BeltSetup m_beltSetup;
    std::shared_ptr<const Belt> m_belt; // null: it rests
    Scene m_scene;
    std::shared_ptr<const View> m_view; // null without a camera
    std::uint64_t m_dmaRate = 0;
    std::int64_t m_pictures = 0; // that the acquisition was asked for
    bool m_isHot = false;
    std::array<Injection, 3> m_injections{Injection(Raster::Point::camera), Injection(Raster::Point::buffer),
                                          Injection(Raster::Point::output)};
    std::uint64_t m_monitoredLines = 0;        // of the source, at the camera
    std::shared_ptr<const Record> m_monitored; // at the output
};

} // namespace station

#endif
