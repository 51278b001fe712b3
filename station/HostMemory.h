/** The memory of the host that pictures go to. */
#ifndef STATION_HOST_MEMORY_H
#define STATION_HOST_MEMORY_H

#include "station/picture/Renderer.h"
#include "station/timing/Buffer.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <vector>

namespace station {

/**
 * A number of frames of one size. The bytes of a picture are made when somebody asks for them, so a picture that is
 * overwritten before costs none. The caller sees to it that one thread at a time uses it.
 */
class HostMemory final : public Destination {
public:
    enum class Kind : std::uint8_t {
        ring,    // the oldest picture is overwritten
        blocking // a picture stays until it is released
    };
    enum class Result : std::uint8_t { ok, gone, tooLarge, noMemory };

    /** A memory of at least one frame. */
    HostMemory(std::size_t frames, std::uint64_t frameBytes, Kind kind);

    std::size_t frames() const { return m_frames; }
    /** From now on there are so many; none are possible. Pictures that are there stay. */
    void setFrames(std::size_t frames) { m_frames = frames; }
    std::uint64_t frameBytes() const { return m_frameBytes; }
    Kind kind() const { return m_kind; }

    bool hasRoom() const override { return m_kind == Kind::ring || m_pictures.size() < m_frames; }
    void deliver(std::shared_ptr<const Record> record) override;
    /** Forgets all pictures. */
    void clear();

    /** The record of a picture; null if it is not there. */
    std::shared_ptr<const Record> record(std::int64_t picture) const;
    /** Gives the bytes of a picture. They stay until it is overwritten, released or cleared. A picture that is larger
     *  than a frame has none. */
    Result bytes(std::int64_t picture, std::span<const std::uint8_t>& bytes);
    /** Gives the frame of a picture back. False if it is not there. */
    bool release(std::int64_t picture);

private:
    struct Picture {
        std::shared_ptr<const Record> record;
        std::vector<std::uint8_t> bytes; // empty until they are asked for
    };
    void remove(std::map<std::int64_t, Picture>::iterator picture);

    std::size_t m_frames;
    std::uint64_t m_frameBytes;
    Kind m_kind;
    std::map<std::int64_t, Picture> m_pictures;
    std::vector<std::vector<std::uint8_t>> m_spare; // allocated and unused
    Renderer m_renderer;
};

} // namespace station

#endif
