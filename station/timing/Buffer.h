/** The DRAM buffer and the DMA that empties it: when images leave, and which are lost. */
#ifndef STATION_TIMING_BUFFER_H
#define STATION_TIMING_BUFFER_H

#include "station/signals/Tick.h"
#include "station/timing/Record.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>

namespace station {

/** The receiver of pictures. */
class Destination {
public:
    /** Whether there is a free slot for a picture. */
    virtual bool hasRoom() const = 0;
    virtual void deliver(std::shared_ptr<const Record> record) = 0;

protected:
    ~Destination() = default;
};

class Buffer {
public:
    /** Maximum number of images in the buffer, however small they are. */
    static constexpr std::size_t mostImages = 16384;

    struct Settings {
        std::uint64_t capacity = 0;       // words
        std::uint64_t bytesPerSecond = 0; // of the DMA; 0 stops it
    };

    void configure(const Settings& settings) { m_settings = settings; }

    /** Starts the acquisition with an empty buffer; the selector counts images from 0. Ends after `pictures`
     *  pictures; 0: never. */
    void start(Destination* destination, std::uint64_t pictures);
    /** Ends the acquisition and frees everything. */
    void stop();
    /** Begins an image. */
    void open(std::shared_ptr<Record> record);
    /** A line of it has arrived. False if it does not fit: the image is lost and its lines are freed. */
    bool store(Tick tick);
    /** Frees the stored lines of the image. */
    void drop();
    /** The image has all its lines. */
    void close(Tick tick);
    /** Whether an image can be inserted: none is being stored, and there is an entry for it. */
    bool canInsert() const { return m_destination != nullptr && !m_isOpen && m_images.size() < mostImages; }
    /** Inserts a complete image that uses no room. False if that is not possible. */
    bool insert(std::shared_ptr<Record> record, Tick tick);

    /** When the next image has left completely. */
    Tick next() const { return m_next; }
    void run(Tick tick);
    /** A slot for a picture became free. */
    void resume(Tick tick);

    bool isOpen() const { return m_isOpen; }
    /** In percent, rounded down. */
    std::uint32_t fillLevel(Tick tick);
    std::uint64_t lostImages() const { return m_lostImages; }
    /** How often the next image could have left but had to wait because no slot was free. */
    std::uint64_t waits() const { return m_waits; }
    bool isDone() const { return m_destination == nullptr; }
    /** Pictures since the start. */
    std::uint64_t delivered() const { return m_delivered; }

private:
    struct Image {
        std::shared_ptr<Record> record;
        std::uint64_t stored = 0; // lines
        std::uint64_t left = 0;   // of them
        bool isComplete = false;
        Tick available = 0;           // when the first line could leave
        std::uint64_t lostBefore = 0; // images between the previous one and this one
        // Once its transfer has begun:
        bool hasBegun = false;
        bool hasWaited = false;      // for a slot in the memory
        bool isPassed = false;       // by the selector, and its format is not silenced
        std::uint64_t numerator = 1; // ticks per line, over m_denominator
    };

    bool begin(Image& image);
    void drain(Tick tick);
    Tick end(const Image& image) const;
    void findNext();
    void clear();

    Settings m_settings;
    Destination* m_destination = nullptr;
    std::deque<Image> m_images; // the first is being transferred
    bool m_isOpen = false;      // the last is still being stored
    std::uint64_t m_used = 0;   // words
    std::uint64_t m_left = 0;   // images, for the selector
    // When the last line that left had left: m_free + m_rest / m_denominator.
    Tick m_free = 0;
    std::uint64_t m_rest = 0;
    std::uint64_t m_denominator = 1;
    Tick m_next = never;
    std::uint64_t m_lostImages = 0;
    std::uint64_t m_waits = 0;
    std::uint64_t m_lostBefore = 0;   // since the last image
    std::uint64_t m_lostOnTheWay = 0; // before images that were not transferred
    std::uint64_t m_delivered = 0;
    std::uint64_t m_wanted = 0;
};

} // namespace station

#endif
