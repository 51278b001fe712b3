#include "station/timing/Buffer.h"

#include <algorithm>
#include <utility>

namespace station {
namespace {

constexpr std::uint64_t pixelsPerTick = 32; // of an image that is not transferred

} // namespace

void Buffer::start(Destination* destination, std::uint64_t pictures) {
    m_destination = destination;
    m_wanted = pictures;
    m_left = m_lostBefore = m_lostOnTheWay = m_delivered = 0;
    clear();
}

void Buffer::stop() {
    m_destination = nullptr;
    clear();
}

void Buffer::clear() {
    m_images.clear();
    m_isOpen = false;
    m_used = 0;
    m_next = never;
}

void Buffer::open(std::shared_ptr<Record> record) {
    m_images.push_back({.record = std::move(record), .lostBefore = std::exchange(m_lostBefore, 0)});
    m_isOpen = true;
}

bool Buffer::store(Tick tick) {
    if (!m_isOpen) return false;
    drain(tick);
    Image& image = m_images.back();
    const std::uint64_t words = image.record->layout.wordsPerLine;
    const bool fits = words <= m_settings.capacity && m_used <= m_settings.capacity - words;
    if (!fits || m_images.size() > mostImages) {
        m_lostBefore += image.lostBefore + 1;
        ++m_lostImages;
        drop();
        return false;
    }
    m_used += words;
    if (image.stored++ == image.left && !image.record->layout.isTurnedOver) {
        image.available = tick;
        if (image.hasBegun && m_free < tick) {
            m_free = tick;
            m_rest = 0;
        }
    }
    return true;
}

void Buffer::drop() {
    if (!m_isOpen) return;
    const Image& image = m_images.back();
    m_used -= (image.stored - image.left) * image.record->layout.wordsPerLine;
    if (image.hasBegun) --m_left; // the selector counts images that leave as a whole
    m_images.pop_back();
    m_isOpen = false;
    findNext();
}

void Buffer::close(Tick tick) {
    if (!m_isOpen) return;
    m_isOpen = false;
    Image& image = m_images.back();
    drain(tick);
    image.isComplete = true;
    if (image.record->layout.isTurnedOver) image.available = tick;
    if (image.left == image.stored && image.hasBegun && m_free < tick) {
        m_free = tick;
        m_rest = 0;
    }
    findNext();
}

bool Buffer::insert(std::shared_ptr<Record> record, Tick tick) {
    if (!canInsert()) return false;
    record->layout.wordsPerLine = 0;
    const std::uint64_t lines = record->lines;
    m_images.push_back({.record = std::move(record), .stored = lines, .isComplete = true, .available = tick});
    findNext();
    return true;
}

/** Starts the transfer of the first image, if possible. */
bool Buffer::begin(Image& image) {
    const Layout& layout = image.record->layout;
    if (image.stored == 0 || (layout.isTurnedOver && !image.isComplete)) return false;
    const std::uint64_t period = std::max(layout.selectPeriod, 1U);
    image.isPassed = !layout.isSilenced && m_left % period == layout.selectPhase;
    if (image.isPassed && m_settings.bytesPerSecond == 0) return false;
    if (image.isPassed && !m_destination->hasRoom()) {
        if (!std::exchange(image.hasWaited, true)) ++m_waits;
        return false;
    }
    const std::uint64_t denominator = image.isPassed ? m_settings.bytesPerSecond : 1;
    image.numerator = image.isPassed ? layout.bytesPerLine * ticksPerSecond
                                     : (layout.pixelsPerLine + pixelsPerTick - 1) / pixelsPerTick;
    image.numerator = std::max(image.numerator, std::uint64_t{1});
    if (denominator != m_denominator) {
        m_free += m_rest > 0 ? 1 : 0;
        m_rest = 0;
        m_denominator = denominator;
    }
    if (m_free < image.available) {
        m_free = image.available;
        m_rest = 0;
    }
    ++m_left;
    image.hasBegun = true;
    return true;
}

/** When all lines that are stored will have left. */
Tick Buffer::end(const Image& image) const {
    const Wide parts = Wide{image.stored - image.left} * image.numerator + m_rest;
    const Wide ticks = (parts + m_denominator - 1) / m_denominator;
    return ticks < Wide{never} ? later(m_free, static_cast<Tick>(ticks)) : never;
}

/** Removes the lines of the first image that have left by now. */
void Buffer::drain(Tick tick) {
    if (m_images.empty()) return;
    Image& image = m_images.front();
    if (!image.hasBegun && !begin(image)) return;
    if (m_free > tick || image.left == image.stored) return;
    const Wide parts = Wide{tick - m_free} * m_denominator;
    const Wide lines = parts < m_rest ? 0 : (parts - m_rest) / image.numerator;
    const auto count = static_cast<std::uint64_t>(std::min(lines, Wide{image.stored - image.left}));
    const Wide sum = Wide{count} * image.numerator + m_rest;
    m_free += static_cast<Tick>(sum / m_denominator);
    m_rest = static_cast<std::uint64_t>(sum % m_denominator);
    image.left += count;
    m_used -= count * image.record->layout.wordsPerLine;
}

void Buffer::findNext() {
    m_next = never;
    if (m_images.empty()) return;
    Image& image = m_images.front();
    if (!image.hasBegun && !begin(image)) return;
    if (image.isComplete) m_next = end(image);
}

void Buffer::run(Tick tick) {
    while (m_next <= tick) {
        drain(tick);
        Image image = std::move(m_images.front());
        m_images.pop_front();
        if (image.isPassed) {
            image.record->lostBefore = std::exchange(m_lostOnTheWay, 0) + image.lostBefore;
            image.record->arrival = tick;
            image.record->picture = static_cast<std::int64_t>(++m_delivered);
            m_destination->deliver(std::move(image.record)); // accepted even if memory runs out
            if (m_delivered == m_wanted) {
                stop();
                return;
            }
        } else {
            m_lostOnTheWay += image.lostBefore;
        }
        findNext();
    }
}

void Buffer::resume(Tick tick) {
    if (m_images.empty() || m_images.front().hasBegun) return;
    m_images.front().available = std::max(m_images.front().available, tick);
    findNext();
}

std::uint32_t Buffer::fillLevel(Tick tick) {
    drain(tick);
    if (m_settings.capacity == 0) return 0;
    return static_cast<std::uint32_t>(std::min(Wide{m_used} * 100 / m_settings.capacity, Wide{100}));
}

} // namespace station
