/** The host memory that receives the pictures. */
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

/** The bytes of a picture, rendered once, by the first thread that asks for them. */
class Pixels {
public:
    explicit Pixels(std::vector<std::uint8_t> room) : m_bytes(std::move(room)) {}
    /** Renders the bytes unless that is done already. Thread-safe: one thread renders, the others wait for it. */
    void draw(const Record& record, Renderer& renderer);
    /** The bytes; valid after draw(). */
    std::span<const std::uint8_t> bytes() const { return m_bytes; }
    /** Takes the allocated memory, for another picture. */
    std::vector<std::uint8_t> takeRoom() { return std::move(m_bytes); }

private:
    std::mutex m_mutex;
    bool m_isDrawn = false;
    std::vector<std::uint8_t> m_bytes;
};

/**
 * A fixed number of frames of equal size. The bytes of a picture are rendered on request, so a picture that is
 * overwritten unread is never rendered. Not thread-safe, except for draw().
 */
class HostMemory final : public Destination {
public:
    enum class Kind : std::uint8_t {
        ring,    // the oldest picture is overwritten
        blocking // a picture stays until it is released
    };
    enum class Result : std::uint8_t { ok, gone, tooLarge, noMemory };

    /** A picture that is being rendered. Destroy it while no other thread uses the memory. */
    struct Drawing {
        std::shared_ptr<const Record> record;
        std::shared_ptr<Pixels> pixels;
        std::unique_ptr<Renderer> renderer;
    };

    /** Creates a memory with at least one frame. */
    HostMemory(std::size_t frames, std::uint64_t frameBytes, Kind kind);

    /** Changes the number of frames, which may be 0. Stored pictures are kept. */
    void setFrames(std::size_t frames) { m_frames = frames; }
    std::uint64_t frameBytes() const { return m_frameBytes; }

    bool hasRoom() const override { return m_kind == Kind::ring || m_pictures.size() < m_frames; }
    /** Stores a picture. It is lost if allocation fails. */
    void deliver(std::shared_ptr<const Record> record) override;
    /** Removes all pictures. */
    void clear();

    /** A spare renderer, or a new one. Return it with giveBack(). */
    std::unique_ptr<Renderer> takeRenderer();
    void giveBack(std::unique_ptr<Renderer> renderer);

    /** The record of a picture, or null if the picture is not in the memory. */
    std::shared_ptr<const Record> record(std::int64_t picture) const;
    /** Renders a picture and returns its bytes: begin, draw and end in one call. */
    Result bytes(std::int64_t picture, std::span<const std::uint8_t>& bytes);
    /** Prepares the rendering of a picture. Returns tooLarge if it is larger than a frame. */
    Result begin(std::int64_t picture, Drawing& drawing);
    /** Renders the picture. Other threads may use the memory and render at the same time. */
    static Result draw(Drawing& drawing);
    /** Returns the bytes, or gone if the picture has been removed since begin(). They are valid until the picture is overwritten,
     *  released or cleared. The bytes that were returned last remain valid when their picture is overwritten. */
    Result end(Drawing& drawing, std::span<const std::uint8_t>& bytes);
    /** Removes a picture and frees its frame. False if the picture is not in the memory. */
    bool release(std::int64_t picture);

private:
    struct Picture {
        std::shared_ptr<const Record> record;
        std::shared_ptr<Pixels> pixels; // null until they are requested
    };
    void remove(std::map<std::int64_t, Picture>::iterator picture);

    static constexpr std::size_t mostSpare = 4;

    std::size_t m_frames;
    std::uint64_t m_frameBytes;
    Kind m_kind;
    std::map<std::int64_t, Picture> m_pictures;
    std::shared_ptr<Pixels> m_last; // returned last
    // For reuse: allocated memory for bytes, and renderers with their tables.
    std::vector<std::vector<std::uint8_t>> m_spare;
    std::vector<std::unique_ptr<Renderer>> m_renderers;
};

} // namespace station

#endif
