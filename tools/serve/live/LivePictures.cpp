#include "serve/live/LivePictures.h"

#include "applet_tools/base/block_signals.h"

#include <algorithm>
#include <iterator>
#include <new>

namespace serve {
namespace {

using namespace std::chrono_literals;

constexpr auto longestUnwatched = 3s;
constexpr auto shortestDistance = 1'000'000us / 30; // between two rendered pictures
constexpr auto longestPiece = 50ms;                 // longest wait for the board at a time
constexpr auto longestLook = 250ms;                 // between two requests of a viewer
constexpr std::size_t frames = 16;                  // of the memory
constexpr std::size_t mostKeptBytes = 32U << 20U;   // one picture is always kept
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
    const bool mustStart = !m_state.isRunning && m_suspensions == 0 && !m_isEnding;
    if (mustStart) {
        lock.unlock();
        m_commands.run(Work::changes, [this] { start(); });
        lock.lock();
    }
    const auto isThere = [&] { return m_shown != nullptr && m_shown->number() > after; };
    if (!isThere()) {
        ++m_waiting;
        m_changed.notify_all();
        m_changed.wait_until(lock, due, [&] { return isThere() || m_isEnding || m_suspensions > 0; });
        --m_waiting;
    }
    m_lastAsked = Clock::now();
    return isThere() ? m_shown : nullptr;
}

void LivePictures::setOnPicture(std::function<void(const SharedPicture&)> function) {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_isDelivering; });
    m_onPicture = std::move(function);
}

std::int64_t LivePictures::join(PictureReceiver& receiver) {
    start();
    const std::lock_guard guard(m_mutex);
    if (m_receivers.empty()) m_next = m_last + 1;
    m_receivers.push_back(&receiver);
    retryStart();
    return m_offset + m_next - 1;
}

void LivePictures::leave(PictureReceiver& receiver) {
    std::unique_lock lock(m_mutex);
    std::erase(m_receivers, &receiver);
    m_changed.wait(lock, [this] { return !m_isDelivering; });
}

void LivePictures::wake() {
    const std::lock_guard guard(m_mutex);
    m_changed.notify_all();
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

void LivePictures::suspend(const std::string& reason) {
    {
        const std::lock_guard guard(m_mutex);
        ++m_suspensions;
        m_state.suspendedBy = reason;
        m_changed.notify_all();
    }
    stop();
}

void LivePictures::resume() {
    const std::lock_guard guard(m_mutex);
    if (--m_suspensions == 0) m_state.suspendedBy.clear();
    retryStart();
}

void LivePictures::retryStart() {
    m_isStartPosted = false;
    m_changed.notify_all();
}

void LivePictures::setPaused(bool isPaused) {
    {
        const std::lock_guard guard(m_mutex);
        if (m_state.isPaused == isPaused) return;
        m_state.isPaused = isPaused;
        m_suspensions += isPaused ? 1 : -1;
        retryStart();
    }
    if (isPaused) stop();
}

void LivePictures::start() {
    {
        const std::lock_guard guard(m_mutex);
        if (m_state.isRunning || m_suspensions > 0 || m_isEnding) return;
    }
    applet_tools::FrameMemory memory = applet_tools::frameMemory(m_instance, frames, VBOARD_RING);
    const applet_tools::WaitStart start = applet_tools::waitStart(m_instance);
    applet_tools::startAcquisition(m_instance, memory);
    m_memory = std::move(memory);
    const std::lock_guard guard(m_mutex);
    m_state.isRunning = true;
    m_state.start = start;
    m_state.hasPicture = false;
    m_state.lastPicture = m_lastAsked = m_rateSince = Clock::now();
    m_state.rate = 0;
    m_rateFrom = m_state.pictures;
    m_offset = std::max(m_state.pictures, m_kept.empty() ? 0 : m_kept.back()->number());
    m_last = 0;
    m_next = 1;
    m_changed.notify_all();
}

void LivePictures::stop() {
    {
        const std::lock_guard guard(m_mutex);
        if (!m_state.isRunning) return;
        m_state.isRunning = false;
        m_state.rate = 0;
    }
    applet_tools::stopAcquisition(m_instance, m_memory); // ends the thread's wait
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_isWatching; });
    m_memory.reset();
}

bool LivePictures::isWatched() const {
    return !m_receivers.empty() || m_waiting > 0 || Clock::now() - m_lastAsked < longestUnwatched;
}

bool LivePictures::isReceived() const {
    return std::ranges::any_of(m_receivers, &PictureReceiver::wantsPicture);
}

/** True if a viewer waits or has asked recently: it will request the next picture. */
bool LivePictures::isViewed() const { return m_waiting > 0 || Clock::now() - m_lastAsked < longestLook; }

bool LivePictures::mustStart() const {
    return !m_receivers.empty() && m_suspensions == 0 && !m_isStartPosted;
}

void LivePictures::stopUnwatched() {
    {
        const std::lock_guard guard(m_mutex);
        m_isStopPosted = false;
        if (isWatched()) return;
    }
    stop();
}

void LivePictures::startForReceivers() {
    start();
    const std::lock_guard guard(m_mutex);
    m_isStartPosted = false;
}

void LivePictures::work() {
    applet_tools::blockSignals();
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_isEnding || m_state.isRunning || mustStart(); });
        if (m_isEnding) return;
        if (m_state.isRunning) {
            m_isWatching = true;
            watch(lock);
            m_isWatching = false;
            m_changed.notify_all();
        } else {
            m_isStartPosted = true;
            lock.unlock(); // the command thread may be at work with it
            m_commands.post(Work::changes, [this] { startForReceivers(); });
            lock.lock();
        }
    }
}

void LivePictures::watch(std::unique_lock<std::mutex>& lock) {
    while (!isOver()) {
        if (waitForDemand(lock)) askBoard(lock);
        if (isOver()) return;
        renderWanted(lock);
        if (m_isStopPosted || isWatched()) continue;
        m_isStopPosted = true;
        lock.unlock(); // the command thread may be at work with it
        m_commands.post(Work::changes, [this] { stopUnwatched(); });
        lock.lock();
    }
}

bool LivePictures::isOver() const { return !m_state.isRunning || m_isEnding; }

bool LivePictures::isInDemand() const { return isOver() || isReceived(); }

std::int64_t LivePictures::waitOnBoard(std::unique_lock<std::mutex>& lock, std::int64_t picture) {
    const double speed = m_factor == 0 ? 1 : m_factor;
    const double ticks = speed * std::chrono::duration<double>(longestPiece).count() *
                         static_cast<double>(applet_tools::ticksPerSecond);
    lock.unlock();
    const std::int64_t last = m_instance.board().wait(m_instance.device(), picture,
                                                      static_cast<applet_tools::Ticks>(std::max(1.0, ticks)));
    lock.lock();
    return last;
}

/** Waits until a picture is needed: at once for a receiver, otherwise until the next view is due. Waiting on the board
 *  advances stepped time, which is done for receivers only. Returns false if no picture is needed. */
bool LivePictures::waitForDemand(std::unique_lock<std::mutex>& lock) {
    const bool isStepped = m_factor == 0;
    if (isStepped)
        return m_changed.wait_for(lock, longestPiece, [this] { return isInDemand(); }) && !isOver();
    m_changed.wait_until(lock, m_nextView, [this] { return isInDemand(); });
    return !isOver();
}

/** Waits on the board for the next picture, for a short time, and counts the pictures that have arrived. */
void LivePictures::askBoard(std::unique_lock<std::mutex>& lock) {
    const std::int64_t next = m_last + 1;
    const std::int64_t last = waitOnBoard(lock, next);
    if (isOver()) return;
    const bool isEndedByOthers = last < 0 && last != VBOARD_TIMEOUT;
    if (isEndedByOthers) m_changed.wait_for(lock, longestPiece, [this] { return isOver(); });
    if (last < next) return;
    note(last);
    // Without viewers, pictures are only counted.
    if (!isViewed()) m_changed.wait_for(lock, 2ms, [this] { return isInDemand(); });
}

void LivePictures::renderWanted(std::unique_lock<std::mutex>& lock) {
    while (isReceived() && m_next <= m_last && !isOver()) {
        m_next = std::max(m_next, m_last - static_cast<std::int64_t>(frames) + 2); // not overwritten yet
        render(lock, m_next++);
    }
    const bool isNew = m_kept.empty() || m_kept.back()->number() < m_offset + m_last;
    if (m_last == 0 || !isNew || !isViewed() || isOver() || Clock::now() < m_nextView) return;
    m_next = m_last + 1;
    render(lock, m_last);
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
    vboard_record record{};
    Picture made;
    try {
        if (readRecord(m_memory, picture, record) == VBOARD_OK) {
            station_channel::SharedMemory memory(record.size);
            const int code = m_instance.board().frame_into(m_memory.get(), picture, memory.writable().data(),
                                                           record.size, &record);
            memory.seal();
            if (code == VBOARD_OK) made = std::make_shared<SharedPicture>(number, record, std::move(memory));
        }
    } catch (const std::bad_alloc&) { // this picture is lost
    }
    lock.lock();
    if (made == nullptr) return; // overwritten before it was rendered
    ++m_state.rendered;
    deliver(lock, made);
    keep(std::move(made));
    m_changed.notify_all();
}

void LivePictures::deliver(std::unique_lock<std::mutex>& lock, const Picture& picture) {
    std::vector<PictureReceiver*> wanting;
    std::ranges::copy_if(m_receivers, std::back_inserter(wanting), &PictureReceiver::wantsPicture);
    const bool isShown = Clock::now() >= m_nextView;
    if (isShown) {
        m_shown = picture;
        m_nextView = std::max(m_nextView + shortestDistance,
                              Clock::now()); // the distance includes the time of rendering
        m_changed.notify_all();
    }
    m_isDelivering = true;
    lock.unlock();
    for (PictureReceiver* receiver : wanting)
        receiver->take(*picture);
    if (isShown && m_onPicture) m_onPicture(*picture);
    lock.lock();
    m_isDelivering = false;
    m_changed.notify_all();
}

void LivePictures::keep(Picture picture) {
    m_kept.push_back(std::move(picture));
    constexpr std::size_t withForms = 2; // a slow client may still want forms of the previous picture
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
