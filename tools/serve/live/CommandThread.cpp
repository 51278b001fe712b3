#include "serve/live/CommandThread.h"

#include <algorithm>

namespace serve {
namespace {

constexpr std::chrono::seconds longestWait(2); // until the work begins

} // namespace

std::shared_ptr<CommandThread::Job> CommandThread::enqueue(Work kind, std::function<void()> function) {
    auto job = std::make_shared<Job>(Job{.kind = kind, .function = std::move(function)});
    {
        const std::lock_guard guard(m_mutex);
        if (m_isClosed) throw Busy("the station ends");
        m_jobs.push_back(job);
    }
    m_wake();
    return job;
}

void CommandThread::post(Work kind, std::function<void()> function) {
    try {
        enqueue(kind, std::move(function));
    } catch (const Busy&) { // the station ends
    }
}

void CommandThread::wait(Work kind, std::function<void()> function) {
    const std::shared_ptr<Job> job = enqueue(kind, std::move(function));
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, longestWait, [&] { return job->state != Job::State::waiting; });
    if (job->state == Job::State::waiting) std::erase(m_jobs, job);
    if (job->state == Job::State::waiting || job->state == Job::State::dropped)
        throw Busy(m_isClosed ? "the station ends"
                   : m_command.empty()
                       ? "the station is busy"
                       : "the station executes '" + m_command + "', and the request waits for its end");
    m_changed.wait(lock, [&] { return job->state == Job::State::done; });
    if (job->problem) std::rethrow_exception(job->problem);
}

std::shared_ptr<CommandThread::Job> CommandThread::takeJob(bool isPause) {
    const std::lock_guard guard(m_mutex);
    const auto found =
        std::ranges::find_if(m_jobs, [&](const auto& job) { return !isPause || job->kind == Work::reads; });
    if (found == m_jobs.end()) return nullptr;
    std::shared_ptr<Job> job = std::move(*found);
    m_jobs.erase(found);
    job->state = Job::State::running;
    m_changed.notify_all();
    return job;
}

void CommandThread::runPending(bool isPause) {
    constexpr int mostInPause = 8; // so that requests do not block the command
    for (int count = 0; !isPause || count < mostInPause; ++count) {
        const std::shared_ptr<Job> job = takeJob(isPause);
        if (job == nullptr) return;
        try {
            job->function();
        } catch (...) {
            job->problem = std::current_exception();
        }
        const std::lock_guard guard(m_mutex);
        job->state = Job::State::done;
        m_changed.notify_all();
    }
}

void CommandThread::setCommand(const std::string& text) {
    const std::lock_guard guard(m_mutex);
    m_command = text;
}

std::string CommandThread::command() const {
    const std::lock_guard guard(m_mutex);
    return m_command;
}

void CommandThread::close() {
    const std::lock_guard guard(m_mutex);
    m_isClosed = true;
    for (const auto& job : m_jobs)
        job->state = Job::State::dropped;
    m_jobs.clear();
    m_changed.notify_all();
}

} // namespace serve
