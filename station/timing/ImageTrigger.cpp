#include "station/timing/ImageTrigger.h"

#include <algorithm>

namespace station {

void ImageTrigger::configure(const Settings& settings, Tick tick) {
    m_settings = settings;
    if (!m_hasRange || m_range.mode == settings.mode) return;
    if (m_imageLines > 0)
        m_take = std::min(m_take,
                          m_range.imageHeight - std::min<std::uint64_t>(m_imageLines, m_range.imageHeight));
    else
        finish();
    if (m_hasRange && m_take == 0) {
        if (m_isLineTaken)
            m_isImageComplete = m_isRangeComplete = true;
        else {
            closeImage(tick);
            finish();
        }
    }
}

void ImageTrigger::setAcquiring(bool isAcquiring) {
    m_isAcquiring = isAcquiring;
    if (isAcquiring) return;
    m_imageLines = 0;
    m_isLineTaken = m_isImageComplete = m_isRangeComplete = false;
    finish();
    m_handler.gateFalls();
}

void ImageTrigger::begin(Tick tick) {
    m_range = m_settings;
    const bool isTriggered = m_range.mode != Mode::freeRun;
    m_skip = (isTriggered ? std::uint64_t{m_range.delay} : 0) + m_range.offset;
    m_take = m_range.length;
    m_hasRange = true;
    m_isTaking = false;
    if (isTriggered) m_handler.rangeStarts(tick, m_skip + m_take);
    if (m_skip + m_take == 0) finish();
}

void ImageTrigger::finish() { m_hasRange = m_isTaking = false; }

void ImageTrigger::closeImage(Tick tick) {
    m_isImageComplete = false;
    if (m_imageLines == 0) return;
    const bool isShort = m_imageLines < m_range.imageHeight;
    m_imageLines = 0;
    m_handler.imageEnds(tick, isShort);
}

void ImageTrigger::cutImage() { m_isImageComplete = true; }

void ImageTrigger::follow(bool level, Tick tick) {
    if (level == m_level) return;
    m_level = level;
    if (!m_isAcquiring) return;
    if (level && m_settings.mode != Mode::freeRun) {
        if (m_hasRange)
            ++m_ignored;
        else
            begin(tick);
    }
    if (level || !m_hasRange || m_range.mode != Mode::gate) return;
    m_handler.gateFalls();
    if (m_isLineTaken) { // a line whose transfer has begun belongs to the image
        m_take = 0;
        m_isImageComplete = m_isRangeComplete = true;
    } else {
        closeImage(tick);
        finish();
    }
}

bool ImageTrigger::lineStarts(Tick tick) {
    m_isLineTaken = false;
    if (!m_isAcquiring) return false;
    if (!m_hasRange && m_settings.mode == Mode::freeRun && m_settings.length > 0) begin(tick);
    if (!m_hasRange) return false;
    if (m_skip > 0) {
        if (--m_skip == 0 && m_take == 0) finish();
        return false;
    }
    if (m_take == 0) return false;
    --m_take;
    m_isLineTaken = m_isTaking = true;
    const bool isFirst = m_imageLines++ == 0;
    const bool isOneImage = m_range.mode == Mode::gate && !m_range.isGateOfMany;
    m_isRangeComplete = m_take == 0;
    m_isImageComplete = m_isRangeComplete || (!isOneImage && m_imageLines >= m_range.imageHeight);
    if (isFirst) m_handler.imageStarts(tick);
    return true;
}

void ImageTrigger::lineEnds(Tick tick) {
    if (!m_isLineTaken) return;
    m_isLineTaken = false;
    if (m_isImageComplete) closeImage(tick);
    if (!m_isRangeComplete) return;
    m_isRangeComplete = false;
    finish();
}

} // namespace station
