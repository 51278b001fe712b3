#include "serve/http/state/LivePictures.h"

#include "applet_tools/base/errors.h"

#include <pthread.h>

#include <algorithm>
#include <csignal>

namespace serve {
namespace {

using namespace std::chrono_literals;

constexpr auto longestUnwatched = 3s;
constexpr auto shortestDistance = 1'000'000us / 30; // between two rendered pictures
constexpr auto longestPiece = 50ms;                 // of a wait for the board
constexpr auto longestLook = 250ms;                 // between two requests of a viewer
constexpr std::size_t frames = 4;                   // of the memory
constexpr std::size_t mostKeptBytes = 32U << 20U;   // one picture is kept, however large it is
constexpr std::size_t mostKept = 32;

} // namespace

LivePictures::LivePictures(CommandThread& commands, applet_tools::Instance& instance, double factor)
    : m_commands(commands)
    , m_instance(instance)
    , m_factor(factor)
    , m_thread([this] { work(); }) {}

LivePictures::~LivePictures() {
    {
        const std::lock_guard guard(m_mutex);
        m_isEnding = true;
    }
    stop();
    m_changed.notify_all();
    m_thread.join();
}

void LivePictures::close() {
    const std::lock_guard guard(m_mutex);
    m_isEnding = true;
    m_changed.notify_all();
}

LivePictures::Picture LivePictures::newerThan(std::int64_t after, Clock::time_point due) {
    std::unique_lock lock(m_mutex);
    m_lastAsked = Clock::now();
    const bool mustStart = !m_state.isRunning && m_ways == 0 && !m_isEnding;
    if (mustStart) {
        lock.unlock();
        m_commands.run(Work::changes, [this] { start(); });
        lock.lock();
    }
    const auto isThere = [&] { return !m_kept.empty() && m_kept.back()->number() > after; };
    if (!isThere()) {
        ++m_waiting;
        m_changed.notify_all();
        m_changed.wait_until(lock, due, [&] { return isThere() || m_isEnding || m_ways > 0; });
        --m_waiting;
    }
    m_lastAsked = Clock::now();
    return isThere() ? m_kept.back() : nullptr;
}

LivePictures::Picture LivePictures::kept(std::int64_t number) const {
    const std::lock_guard guard(m_mutex);
    if (number == 0) return m_kept.empty() ? nullptr : m_kept.back();
    const auto found =
        std::ranges::find(m_kept, number, [](const Picture& picture) { return picture->number(); });
    return found == m_kept.end() ? nullptr : *found;
}

std::vector<LivePictures::Picture> LivePictures::allKept() const {
    const std::lock_guard guard(m_mutex);
    return {m_kept.begin(), m_kept.end()};
}

LivePictures::State LivePictures::state() const {
    const std::lock_guard guard(m_mutex);
    State state = m_state;
    for (const Picture& picture : m_kept)
        state.keptBytes += picture->size();
    return state;
}

void LivePictures::giveWay(const std::string& reason) {
    {
        const std::lock_guard guard(m_mutex);
        ++m_ways;
        m_state.gaveWayTo = reason;
        m_changed.notify_all();
    }
    stop();
}

void LivePictures::comeBack() {
    const std::lock_guard guard(m_mutex);
    if (--m_ways == 0) m_state.gaveWayTo.clear();
}

void LivePictures::setPaused(bool isPaused) {
    {
        const std::lock_guard guard(m_mutex);
        if (m_state.isPaused == isPaused) return;
        m_state.isPaused = isPaused;
        m_ways += isPaused ? 1 : -1;
        m_changed.notify_all();
    }
    if (isPaused) stop();
}

void LivePictures::start() {
    {
        const std::lock_guard guard(m_mutex);
        if (m_state.isRunning || m_ways > 0 || m_isEnding) return;
    }
    m_memory = applet_tools::frameMemory(m_instance, frames, VBOARD_RING);
    const applet_tools::WaitStart start = applet_tools::waitStart(m_instance);
    constexpr std::intptr_t withoutEnd = 0;
    const int code = m_instance.applet().Fg_AcquireEx(m_instance.fg(), 0, withoutEnd, 0, m_memory.get());
    if (code != FG_OK) {
        m_memory.reset();
        throw applet_tools::Failure("the acquisition was not started: " + applet_tools::codeInWords(code));
    }
    const std::lock_guard guard(m_mutex);
    m_state.isRunning = true;
    m_state.start = start;
    m_state.hasPicture = false;
    m_state.lastPicture = m_lastAsked = m_rateSince = Clock::now();
    m_state.rate = 0;
    m_rateFrom = m_state.pictures;
    m_offset = std::max(m_state.pictures, m_kept.empty() ? 0 : m_kept.back()->number());
    m_last = 0;
    m_changed.notify_all();
}

void LivePictures::stop() {
    {
        const std::lock_guard guard(m_mutex);
        if (!m_state.isRunning) return;
        m_state.isRunning = false;
        m_state.rate = 0;
    }
    m_instance.applet().Fg_stopAcquireEx(m_instance.fg(), 0, m_memory.get(), 0); // ends the thread's wait
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_isWatching; });
    m_memory.reset();
}

bool LivePictures::isWatched() const {
    return m_waiting > 0 || Clock::now() - m_lastAsked < longestUnwatched;
}

void LivePictures::stopUnwatched() {
    {
        const std::lock_guard guard(m_mutex);
        m_isStopPosted = false;
        if (isWatched()) return;
    }
    stop();
}

void LivePictures::work() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr); // signals are for the command thread
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_isEnding || m_state.isRunning; });
        if (m_isEnding) return;
        m_isWatching = true;
        watch(lock);
        m_isWatching = false;
        m_changed.notify_all();
    }
}

void LivePictures::watch(std::unique_lock<std::mutex>& lock) {
    const auto& board = m_instance.board();
    const auto piece = static_cast<applet_tools::Ticks>(
        std::max(1.0, m_factor * std::chrono::duration<double>(longestPiece).count() *
                          static_cast<double>(applet_tools::ticksPerSecond)));
    Clock::time_point next{};
    while (m_state.isRunning && !m_isEnding) {
        // A picture that came meanwhile is rendered at once when a viewer asks for it.
        m_changed.wait_until(lock, next, [this] { return !m_state.isRunning || m_isEnding; });
        const std::int64_t wanted = m_last + 1;
        lock.unlock();
        const std::int64_t last = board.wait(m_instance.device(), wanted, piece);
        lock.lock();
        if (!m_state.isRunning || m_isEnding) return;
        if (last >= wanted) note(last);
        const bool isNew = m_kept.empty() || m_kept.back()->number() < m_offset + m_last;
        // A viewer that shows a picture now will ask for the next one.
        const bool isWanted = m_waiting > 0 || Clock::now() - m_lastAsked < longestLook;
        if (isWanted && m_last > 0 && isNew) {
            next = Clock::now() + shortestDistance;
            render(lock, m_last);
        } else if (last < 0 && last != VBOARD_TIMEOUT) {
            next = Clock::now() + longestPiece; // ended by somebody else
        } else if (last >= wanted) {
            next = Clock::now() + 2ms; // pictures that nobody waits for are only counted
        }
        if (m_isStopPosted || isWatched()) continue;
        m_isStopPosted = true;
        lock.unlock(); // the command thread may be at work with it
        m_commands.post(Work::changes, [this] { stopUnwatched(); });
        lock.lock();
    }
}

void LivePictures::note(std::int64_t picture) {
    m_state.pictures += picture - m_last;
    m_last = picture;
    m_state.hasPicture = true;
    const Clock::time_point now = Clock::now();
    m_state.lastPicture = now;
    const double seconds = std::chrono::duration<double>(now - m_rateSince).count();
    if (seconds < 1) return;
    m_state.rate = static_cast<double>(m_state.pictures - m_rateFrom) / seconds;
    m_rateSince = now;
    m_rateFrom = m_state.pictures;
}

void LivePictures::render(std::unique_lock<std::mutex>& lock, std::int64_t picture) {
    const std::int64_t number = m_offset + picture;
    lock.unlock();
    const auto& board = m_instance.board();
    vboard_record record{};
    std::vector<std::uint8_t> bytes;
    std::uint8_t noRoom = 0; // fills in the record without rendering
    int code = board.frame_into(m_memory.get(), picture, &noRoom, 0, &record);
    if (code == VBOARD_TOO_SMALL) {
        bytes.resize(record.size);
        code = board.frame_into(m_memory.get(), picture, bytes.data(), bytes.size(), &record);
    }
    Picture made;
    if (code == VBOARD_OK) made = std::make_shared<SharedPicture>(number, record, std::move(bytes));
    if (made != nullptr && m_onPicture) m_onPicture(*made);
    lock.lock();
    if (made == nullptr) return; // overwritten meanwhile
    ++m_state.rendered;
    keep(std::move(made));
    m_changed.notify_all();
}

void LivePictures::keep(Picture picture) {
    m_kept.push_back(std::move(picture));
    constexpr std::size_t withForms = 2; // a slow client may still want those of the one before
    if (m_kept.size() > withForms) m_kept[m_kept.size() - withForms - 1]->forgetForms();
    std::size_t bytes = 0;
    for (const Picture& one : m_kept)
        bytes += one->size();
    while (m_kept.size() > 1 && (bytes > mostKeptBytes || m_kept.size() > mostKept)) {
        bytes -= m_kept.front()->size();
        m_kept.pop_front();
    }
}

} // namespace serve
