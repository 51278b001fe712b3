/**
 * A simulated line-scan station around a board: time, signals, lines, images.
 *
 * Time is a count of ticks of 8 ns, starts at 0, and advances only in advance() and waitForPicture(). The parameters of
 * the board are read when it advances: writes take effect from the next tick on, all at once. The same writes at the
 * same ticks give the same pictures, events and states on every machine. A station is not thread-safe and has no thread
 * of its own. If allocation fails, a call throws std::bad_alloc: the rest of that tick is lost, and the station remains
 * usable.
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

/** Counts of everything that was lost or ignored since the station was created. */
struct Losses {
    std::uint64_t images = 0;          // images that did not fit in the buffer
    std::uint64_t triggers = 0;        // image triggers during an image
    std::uint64_t pulses = 0;          // pulses of the line trigger while ExSync was active
    std::uint64_t cameraTriggers = 0;  // camera triggers during the exposure or transfer of a line or frame
    std::uint64_t droppedTriggers = 0; // camera triggers that the camera ignored by its own fault
    std::uint64_t waits = 0;           // waits of the DMA for a free frame in the host memory
    std::uint64_t events = 0;          // events dropped because the queue was full
};

/** The settings of a camera at the port. */
struct CameraSetup {
    Camera::Settings timing;
    std::array<std::uint8_t, 3> order{0, 1, 2}; // colours in the order of the link: 0 red, 1 green, 2 blue
    std::uint32_t fullExposure = 1; // exposure in ticks for which a pixel has the value of the scene
};

/** The state of the camera at the port. */
enum class CameraState : std::uint8_t { none, triggered, freeRunning, linkLost };

/** The settings of a belt, and of the encoder and the light barrier at the belt. */
struct BeltSetup {
    std::vector<SpeedPiece> pieces; // speeds in micrometres per second
    // Numbers of inputs; inputCount: not connected.
    std::size_t encoderA = inputCount;
    std::size_t encoderB = inputCount;
    std::uint32_t step = 1; // quarter step of the encoder, in nanometres
    std::size_t barrier = inputCount;
    std::int64_t ahead = 0; // distance from the barrier to the camera, in nanometres
};

/** What is connected to a board: camera, belt, scene, and the waves of its inputs. */
struct Surroundings {
    struct Connection {
        std::size_t input, second;
        Wave wave;
        Tick from; // when it was connected
    };
    std::optional<CameraSetup> camera;
    std::optional<BeltSetup> belt;
    Scene scene;
    std::vector<Connection> waves{}; // in the order of their connection, without those of the belt
    std::uint64_t dmaRate = 0;
};

class Station {
public:
    /** Maximum number of ticks with events that a call processes, which takes some seconds. */
    static constexpr std::uint64_t mostEvents = std::uint64_t{1} << 26;

    enum class Wait : std::uint8_t { arrived, notYet, notRunning };

    /** The board must outlive the station. */
    explicit Station(Board& board) : m_board(board) {}

    /** Everything up to this tick has happened. */
    Tick now() const { return m_engine.now(); }
    /** The first tick that has not happened: writes take effect there. */
    Tick from() const { return m_engine.from(); }
    /** Advances time by `ticks` and returns the new time. It is earlier than requested at the end of time, and after
     *  `events` ticks with events; in that case call again. */
    Tick advance(Tick ticks, std::uint64_t events = mostEvents);
    /** Notifies the station of a write to a parameter that triggers an action: software pulse, clear of the analyzers,
     *  encoder count, and modes, pixels and flags of the debug points. Other parameters are ignored. */
    void write(Parameter parameter, std::uint64_t value);

    /** Connects a wave to an input (0 to 7 GPI, 8 to 11 front GPI) from the next tick on, and track B of an encoder to
     *  `second`. False if there is no such input. */
    bool connect(std::size_t input, const Wave& wave, std::size_t second = inputCount);
    /** Whether an input has a wave, also one of the belt. */
    bool hasWave(std::size_t input) const { return m_engine.inputs().hasWave(input); }
    /** Attaches a camera to the port from the next tick on. It replaces a camera that is already attached. */
    void attachCamera(const CameraSetup& camera);
    /** Detaches the camera. */
    void detachCamera();
    /** Starts a belt at position 0 at the next tick, and connects its encoder and light barrier. False if there is no
     *  such input, or if a speed exceeds the maximum of quarter steps per second. */
    bool setBelt(const BeltSetup& belt);
    /** Sets the scene. It takes effect for the camera from the first line of the next image on, and for the light
     *  barrier from the next tick on. */
    void setScene(Scene scene);
    /** What is connected now. */
    Surroundings surroundings() const;
    /** Connects surroundings of another station. Camera, belt and waves begin again at the next tick; inputs that have no
     *  wave there keep theirs. */
    void surround(const Surroundings& surroundings);
    /** Inserts an image at a debug point. The input of the point must be on (bit 0 of its OperationMode); lines of the
     *  source do not pass it then. At the camera, YOffset, YLength and ImageHeight cut the image as in free run, without
     *  a trigger. False if the input is off, no acquisition runs, or the buffer has no entry left. */
    bool inject(const std::shared_ptr<const Raster>& raster);
    /** Whether the input of a debug point is on. */
    bool isInputOn(Raster::Point point) const;
    /** Sets the rate of the DMA in bytes per second; 0: the rate of the link. */
    void setDmaRate(std::uint64_t bytesPerSecond);

    /** Starts an acquisition into a memory, which is cleared. The acquisition ends after `pictures` pictures; 0 or less:
     *  never. A running one ends. False if `memory` is null, or if its frames are smaller than a picture by the current
     *  parameters. */
    bool start(std::shared_ptr<HostMemory> memory, std::int64_t pictures);
    /** Ends the acquisition and drops the image in progress. Pictures stay in the memory. */
    void stop();
    /** Ends an acquisition into this memory, and releases the memory. */
    void detach(const HostMemory& memory);
    bool isRunning() const { return m_engine.isAcquiring(); }
    /** Number of the last picture of the current or last acquisition, counted from 1; 0 if there is none. */
    std::int64_t lastPicture() { return static_cast<std::int64_t>(m_engine.buffer().delivered()); }
    /** Advances time until a picture arrives, but by at most `timeout` ticks, and by `events` ticks with events. */
    Wait waitForPicture(std::int64_t picture, Tick timeout, std::uint64_t events = mostEvents);
    /** Frees the frame of a picture in the memory of the acquisition. False if the picture is not there. */
    bool release(std::int64_t picture);
    /** Notifies the station that a frame became free by other means than release(). */
    void resume() { m_engine.resume(); }
    /** Bytes of a complete picture by the current parameters. */
    std::uint64_t transferLength() const;

    /** Takes the oldest event from the queue. */
    std::optional<Occurrence> nextEvent() { return m_engine.events().take(); }
    /** The history of a signal between two ticks, both included. Only its last History::capacity edges are kept. */
    Trace trace(std::uint8_t select, Tick from, Tick to) const;
    /** The same for an output by its current routing: 0 camera trigger, 1 to 8 GPO, 9 and 10 front GPO. */
    Trace outputTrace(std::size_t output, Tick from, Tick to) const;
    Losses losses();
    /** Number of lines of the source so far. */
    std::uint64_t lines() const { return m_engine.lines(); }
    CameraState cameraState() const;
    /** Bits: 0 a source exists, 1 LVAL, 2 FVAL, 3 camera trigger, 4 input of the image trigger. */
    std::uint32_t cameraStatus() const;
    /** Fill level of the buffer in percent. */
    std::uint32_t fillLevel() { return m_engine.buffer().fillLevel(now()); }

private:
    void readBoard();
    void setView();
    void connectBelt(std::size_t input, const Wave& wave, std::size_t second = inputCount);
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

    static constexpr double hottest = 85; // degrees Celsius; above it the temperature alarm is raised

    Board& m_board;
    Engine m_engine;
    std::shared_ptr<HostMemory> m_memory;
    std::optional<std::uint64_t> m_revision; // of the values last read
    std::optional<std::uint64_t> m_tableRevision;
    std::shared_ptr<const PictureSettings> m_picture;
    std::shared_ptr<const Tables> m_tables;
    CameraSetup m_camera;
    BeltSetup m_beltSetup;
    std::shared_ptr<const Belt> m_belt; // null: a belt at rest
    Scene m_scene;
    std::shared_ptr<const View> m_view; // null without a camera
    std::vector<Surroundings::Connection> m_waves;
    std::uint64_t m_dmaRate = 0;
    std::int64_t m_pictures = 0; // after which the acquisition ends; 0: never
    bool m_isHot = false;
    std::array<Injection, 3> m_injections{Injection(Raster::Point::camera), Injection(Raster::Point::buffer),
                                          Injection(Raster::Point::output)};
    std::uint64_t m_monitoredLines = 0; // lines of the source that the monitor of the camera has processed
    std::shared_ptr<const Record> m_monitored; // last picture that the monitor of the output has processed
};

} // namespace station

#endif
