/** The memory of the host that pictures go to. */
#ifndef STATION_HOST_MEMORY_H
#define STATION_HOST_MEMORY_H

#include "station/picture/Renderer.h"
#include "station/timing/Buffer.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <utility>
#include <vector>

namespace station {

/** The bytes of a picture. They are made by the first thread that asks. */
class Pixels {
public:
    explicit Pixels(std::vector<std::uint8_t> room) : m_bytes(std::move(room)) {}
    /** Any number of threads at a time; one of them draws. */
    void draw(const Record& record, Renderer& renderer);
    /* After that. */
    std::span<const std::uint8_t> bytes() const { return m_bytes; }
    std::vector<std::uint8_t> takeRoom() { return std::move(m_bytes); }

private:
    std::mutex m_mutex;
    bool m_isDrawn = false;
    std::vector<std::uint8_t> m_bytes;
};

/**
 * A number of frames of one size. The bytes of a picture are made when somebody asks for them, so a picture that is
 * overwritten before costs none. The caller sees to it that one thread at a time uses it, but for draw().
 */
class HostMemory final : public Destination {
public:
    enum class Kind : std::uint8_t {
        ring,    // the oldest picture is overwritten
        blocking // a picture stays until it is released
    };
    enum class Result : std::uint8_t { ok, gone, tooLarge, noMemory };

    /** A picture whose bytes are made. It goes where it came from: while no other thread uses the memory. */
    struct Drawing {
        std::shared_ptr<const Record> record;
        std::shared_ptr<Pixels> pixels;
        std::unique_ptr<Renderer> renderer;
    };

    /** A memory of at least one frame. */
    HostMemory(std::size_t frames, std::uint64_t frameBytes, Kind kind);

    /** From now on there are so many; none are possible. Pictures that are there stay. */
    void setFrames(std::size_t frames) { m_frames = frames; }
    std::uint64_t frameBytes() const { return m_frameBytes; }

    bool hasRoom() const override { return m_kind == Kind::ring || m_pictures.size() < m_frames; }
    /** A picture for which there is no memory left is gone. */
    void deliver(std::shared_ptr<const Record> record) override;
    /** Forgets all pictures. */
    void clear();

    /** A renderer of a picture that was drawn before, or a new one; to be given back. */
    std::unique_ptr<Renderer> takeRenderer();
    void giveBack(std::unique_ptr<Renderer> renderer);

    /** The record of a picture; null if it is not there. */
    std::shared_ptr<const Record> record(std::int64_t picture) const;
    /** Makes the bytes of a picture and gives them: begin, draw, end. */
    Result bytes(std::int64_t picture, std::span<const std::uint8_t>& bytes);
    /** A picture that is larger than a frame has no bytes. */
    Result begin(std::int64_t picture, Drawing& drawing);
    /** Other threads may use the memory meanwhile, and draw too. */
    static Result draw(Drawing& drawing);
    /** Gives the bytes, unless the picture has gone meanwhile. They stay until it is overwritten, released or cleared;
     *  those that were given last stay also when it is overwritten. */
    Result end(Drawing& drawing, std::span<const std::uint8_t>& bytes);
    /** Gives the frame of a picture back. False if it is not there. */
    bool release(std::int64_t picture);

private:
    struct Picture {
        std::shared_ptr<const Record> record;
        std::shared_ptr<Pixels> pixels; // null until they are asked for
    };
    void remove(std::map<std::int64_t, Picture>::iterator picture);

    static constexpr std::size_t mostSpare = 4;

    std::size_t m_frames;
    std::uint64_t m_frameBytes;
    Kind m_kind;
    std::map<std::int64_t, Picture> m_pictures;
    std::shared_ptr<Pixels> m_last; // that were given
    // What is not used at the moment: room for bytes, and renderers with their tables.
    std::vector<std::vector<std::uint8_t>> m_spare;
    std::vector<std::unique_ptr<Renderer>> m_renderers;
};

} // namespace station

#endif
