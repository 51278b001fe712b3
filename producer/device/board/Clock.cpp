#include "device/board/Clock.h"

#include "base/Error.h"

#include <cstdlib>
#include <string_view>

namespace producer {
namespace {

using namespace std::chrono_literals;
using Ticks =
    std::chrono::duration<std::uint64_t, std::ratio<DeviceStation::nanosecondsPerTick, 1'000'000'000>>;

constexpr auto longestStep = 50ms; // a longer delay is not made up for
constexpr Ticks step = 10ms;       // of the stepped clock

} // namespace

Clock::Kind Clock::chosen() {
    const char* const text = std::getenv("VBOARD_CLOCK");
    const std::string_view word = text != nullptr ? text : "wall";
    if (word == "wall") return Kind::wall;
    if (word == "stepped") return Kind::stepped;
    throw Error(GC_ERR_INVALID_PARAMETER, "the environment variable VBOARD_CLOCK is \"" + std::string(word) +
                                              "\": wall or stepped is expected");
}

void Clock::move(std::int64_t wanted) {
    const auto& board = m_station.board();
    if (m_kind == Kind::stepped) {
        if (wanted > 0) board.wait(m_station.device(), wanted, Ticks(step).count());
        return;
    }
    const Time::time_point now = Time::now();
    if (now - m_last > longestStep) m_last = now - longestStep;
    const auto ticks = std::chrono::duration_cast<Ticks>(now - m_last);
    m_last += ticks;
    board.advance(m_station.device(), ticks.count());
}

std::chrono::microseconds Clock::pause(bool isAcquiring, bool isWanted) const {
    if (m_kind == Kind::stepped) return isWanted ? 0us : 100ms;
    return isAcquiring ? 500us : 5ms;
}

} // namespace producer
