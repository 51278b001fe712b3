#include "host/Acquisition.h"

#include <algorithm>
#include <cstring>

namespace host {
namespace {

using applet_tools::Ticks;

[[noreturn]] void throwGone(std::int64_t number) {
    throw Error(VEXO_ERR_GONE,
                "picture " + std::to_string(number) +
                    " is not in the memory: it was overwritten or released, or has not arrived yet");
}

vexo_picture pictureOf(const vboard_record& record) {
    return {.number = record.picture,
            .size = record.size,
            .width = record.width,
            .height = record.lines,
            .stride = record.bytes_per_line,
            .bits = record.bits,
            .first_line = record.first_line,
            .last_line = record.last_line,
            .arrival = record.arrival,
            .lost_before = record.lost_before,
            .trigger = record.trigger,
            .encoder = record.encoder,
            .is_short = record.is_short,
            .is_narrow = record.is_narrow};
}

/** The step of a wait, adapted to take 10 to 40 ms of real time. */
class Stride {
public:
    Ticks ticks() const { return m_ticks; }
    void note(std::chrono::steady_clock::duration took) {
        using namespace std::chrono_literals;
        if (took < 10ms) m_ticks = std::min(m_ticks * 2, applet_tools::ticksPerSecond);
        if (took > 40ms) m_ticks = std::max(m_ticks / 2, applet_tools::ticksPerSecond / 100'000);
    }

private:
    Ticks m_ticks = applet_tools::ticksPerSecond / 100;
};

} // namespace

Acquisition::Acquisition(applet_tools::Instance& instance, std::uint32_t frames, vexo_memory kind)
    : m_instance(instance)
    , m_frames(frames)
    , m_kind(kind)
    , m_memory(frameMemory(instance, frames, kind == VEXO_RING ? VBOARD_RING : VBOARD_BLOCKING))
    , m_start(waitStart(instance)) {
    startAcquisition(instance, m_memory);
}

Acquisition::~Acquisition() { stop(); }

void Acquisition::stop() { stopAcquisition(m_instance, m_memory); }

std::optional<vboard_record> Acquisition::recordOf(std::int64_t number) const {
    vboard_record record{};
    const int code = readRecord(m_memory, number, record);
    if (code == VBOARD_NO_MEMORY) throw std::bad_alloc();
    return code == VBOARD_OK ? std::optional(record) : std::nullopt;
}

std::optional<std::int64_t> Acquisition::waitFor(std::int64_t number, const Deadline& deadline) {
    const auto& board = m_instance.board();
    LOOMdevice* const device = m_instance.device();
    std::int64_t last = VBOARD_TIMEOUT;
    Stride stride;
    while (last == VBOARD_TIMEOUT) {
        const Ticks now = board.now(device);
        const bool isOver = deadline.isOver(now); // checks once more, without waiting
        const auto begin = std::chrono::steady_clock::now();
        last = board.wait(device, number, isOver ? 0 : std::min(stride.ticks(), deadline.tick() - now));
        stride.note(std::chrono::steady_clock::now() - begin);
        if (last == VBOARD_TIMEOUT && isOver) return std::nullopt;
    }
    if (last < 0) throw Error(VEXO_ERR_STATE, "the acquisition has ended");
    return last;
}

bool Acquisition::wait(std::int64_t number, const Deadline& deadline, vexo_picture& picture) {
    if (number == 0) return waitForNext(deadline, picture);
    if (!waitFor(number, deadline)) return false;
    const auto record = recordOf(number);
    if (!record) throwGone(number);
    picture = pictureOf(*record);
    for (std::int64_t before = m_last; before < number && !m_last.compare_exchange_weak(before, number);) {
    }
    return true;
}

// One thread takes a number, when its picture has arrived; the others continue with the next number.
bool Acquisition::waitForNext(const Deadline& deadline, vexo_picture& picture) {
    for (;;) {
        std::int64_t before = m_last;
        const auto last = waitFor(before + 1, deadline);
        if (!last) return false;
        if (const auto record = recordOf(before + 1)) {
            if (!m_last.compare_exchange_strong(before, before + 1)) continue;
            picture = pictureOf(*record);
            return true;
        }
        // The picture was released, or overwritten with all others that no longer fit in the ring.
        const std::int64_t gone = m_kind == VEXO_RING ? std::max(before + 1, *last - m_frames) : before + 1;
        m_last.compare_exchange_strong(before, gone);
    }
}

void Acquisition::render(std::int64_t number, void* destination, std::uint64_t size) const {
    vboard_record record{};
    const int code = m_instance.board().frame_into(m_memory.get(), number, destination, size, &record);
    if (code == VBOARD_NO_MEMORY) throw std::bad_alloc();
    if (code == VBOARD_TOO_SMALL)
        throw Error(VEXO_ERR_SPACE, "picture " + std::to_string(number) + " has " +
                                        std::to_string(record.size) + " bytes, and the memory has " +
                                        std::to_string(size));
    if (code != VBOARD_OK) throwGone(number);
}

void Acquisition::release(std::int64_t number) {
    if (m_instance.board().release(m_memory.get(), number) != VBOARD_OK) throwGone(number);
    ++m_released;
}

bool Acquisition::isFull() const {
    if (m_kind == VEXO_RING) return false;
    const std::int64_t last = m_instance.applet().Fg_getLastPicNumberEx(m_instance.fg(), 0, m_memory.get());
    return last - m_released >= m_frames;
}

} // namespace host
