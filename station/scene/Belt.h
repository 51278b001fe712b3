/** The belt below the camera. Its place drives the encoder, the light barrier and the scene. */
#ifndef STATION_SCENE_BELT_H
#define STATION_SCENE_BELT_H

#include "station/timing/Signals.h"
#include "station/timing/Tick.h"
#include "station/timing/Wave.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace station {

/** Something that lies on the belt. In nanometres; the camera sees its front when the belt has moved to `place`. */
struct BeltObject {
    std::int64_t place = 0;
    std::int64_t length = 0;
};

/** Sorted, without those of no length; what overlaps or touches becomes one. */
std::vector<BeltObject> mergedObjects(std::vector<BeltObject> objects);

class Belt {
public:
    /** Edges of the light barrier; its level stays after the last one. */
    static constexpr std::size_t mostEdges = 65536;

    /** It is at place 0 at `start`. Speeds are micrometres a second; what is beyond the limits of a wave is clamped. */
    Belt(Tick start, const std::vector<SpeedPiece>& pieces);

    Tick start() const { return m_start; }
    /** In nanometres, rounded down. */
    std::int64_t place(Tick tick) const;
    /** Levels of a light barrier, `ahead` nanometres before the camera: high while an object is in it. */
    std::vector<Edge> barrier(const std::vector<BeltObject>& objects, std::int64_t ahead) const;

private:
    /** Micrometres times twice the ticks of a second. */
    __extension__ typedef __int128 Place;
    struct Piece {
        Tick begin;
        Place place; // at its begin
        SpeedPiece speed;
    };
    /** A stretch of time in which it does not turn; both ends included. */
    struct Stretch {
        Tick begin, end;
    };

    std::vector<Stretch> stretches() const;

    Tick m_start;
    std::vector<Piece> m_pieces; // the last has no end
};

} // namespace station

#endif
