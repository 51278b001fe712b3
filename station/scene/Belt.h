/** The belt below the camera. Its position drives the encoder, the light barrier and the scene. */
#ifndef STATION_SCENE_BELT_H
#define STATION_SCENE_BELT_H

#include "station/signals/Signals.h"
#include "station/signals/Tick.h"
#include "station/signals/Wave.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace station {

/** An object on the belt, in nanometres. The camera sees its front when the belt is at `position`. */
struct BeltObject {
    std::int64_t position = 0;
    std::int64_t length = 0;
};

/** Sorts the objects, removes those without length, and merges those that overlap or touch. */
std::vector<BeltObject> mergedObjects(std::vector<BeltObject> objects);

class Belt {
public:
    /** Maximum number of edges of the light barrier. Its level does not change after the last one. */
    static constexpr std::size_t mostEdges = 65536;

    /** A belt at position 0 at the tick `start`. Speeds are micrometres per second, clamped to the limits of a wave. */
    Belt(Tick start, const std::vector<SpeedPiece>& pieces);

    Tick start() const { return m_start; }
    /** The position in nanometres, rounded down. */
    std::int64_t position(Tick tick) const;
    /** The edges of a light barrier `ahead` nanometres before the camera: high while an object is in the barrier. */
    std::vector<Edge> barrier(const std::vector<BeltObject>& objects, std::int64_t ahead) const;

private:
    /** For positions in micrometres times twice the ticks of a second. */
    __extension__ typedef __int128 SignedWide;
    struct Piece {
        Tick begin;
        SignedWide position; // at `begin`
        SpeedPiece speed;
    };
    /** A span of time, both ends included, in which the belt does not reverse. */
    struct Stretch {
        Tick begin, end;
    };

    std::vector<Stretch> stretches() const;

    Tick m_start;
    std::vector<Piece> m_pieces; // not empty; the last one has no end
};

} // namespace station

#endif
