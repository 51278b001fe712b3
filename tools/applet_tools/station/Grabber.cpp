#include "applet_tools/station/Grabber.h"

#include "applet_tools/base/errors.h"
#include "applet_tools/base/numbers.h"

#include <algorithm>

namespace applet_tools {

Grabber::Grabber(Instance& instance, std::size_t frames)
    : m_instance(instance)
    , m_memory(frameMemory(instance, frames, VBOARD_BLOCKING)) {
    startAcquisition(instance, m_memory);
}

Grabber::~Grabber() { stopAcquisition(m_instance, m_memory); }

Grabber::Outcome Grabber::next(Ticks timeout, const std::function<bool()>& goesOn) {
    const auto& board = m_instance.board();
    LOOMdevice* device = m_instance.device();
    if (m_picture > 0) board.release(m_memory.get(), m_picture);
    const Ticks end = board.now(device) + timeout;
    std::int64_t last = VBOARD_TIMEOUT;
    while (last == VBOARD_TIMEOUT) {
        if (!goesOn()) return Outcome::interrupted;
        const Ticks now = board.now(device);
        last = board.wait(device, m_picture + 1, std::min(m_piece, end - now));
        if (last == VBOARD_TIMEOUT && board.now(device) >= end) return Outcome::timeout;
    }
    if (last < 0) throw Failure("the acquisition has ended: " + codeInWords(static_cast<int>(last)));
    ++m_picture;
    if (readRecord(m_memory, m_picture, m_record) != VBOARD_OK)
        throw Failure("there is no memory left for picture " + numberText(m_picture));
    return Outcome::arrived;
}

PictureView Grabber::draw() {
    const int code = m_instance.board().frame(m_memory.get(), m_picture, &m_record);
    if (code == VBOARD_TOO_SMALL)
        throw Failure("picture " + numberText(m_picture) +
                      " is larger than those were when the acquisition started");
    if (code != VBOARD_OK)
        throw Failure("there is no memory left to make picture " + numberText(m_picture) +
                      ": lower FG_WIDTH or FG_HEIGHT");
    return viewOf(m_record);
}

PictureView viewOf(const vboard_record& record) {
    return {.bytes = {record.data, record.size},
            .width = record.width,
            .lines = record.lines,
            .bits = record.bits,
            .bytesPerLine = record.bytes_per_line};
}

} // namespace applet_tools
