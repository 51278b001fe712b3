/** Work of other threads on the command thread, the only one that uses the applet. */
#ifndef SERVE_LIVE_COMMANDTHREAD_H
#define SERVE_LIVE_COMMANDTHREAD_H

#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace serve {

/** The command thread did not begin the work in time. The message names the running command. */
struct Busy : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/** Work that only reads is also done during the pauses of a long command. */
enum class Work { reads, changes };

class CommandThread {
public:
    /** `wake` makes the command thread call runPending(), and may be called by any thread. */
    explicit CommandThread(std::function<void()> wake) : m_wake(std::move(wake)) {}

    /** Executes the work on the command thread; returns its result, or throws its exception. Throws Busy if it did
     *  not begin in time. */
    template <typename Function> std::invoke_result_t<Function> run(Work kind, Function function) {
        using Result = std::invoke_result_t<Function>;
        if constexpr (std::is_void_v<Result>) {
            wait(kind, function);
        } else {
            std::optional<Result> result;
            wait(kind, [&] { result.emplace(function()); });
            return *std::move(result);
        }
    }
    /** Queues the work without waiting; its exceptions are ignored. */
    void post(Work kind, std::function<void()> function);

    /** For the command thread: executes queued work. `isPause`: only work that reads. */
    void runPending(bool isPause);
    /** For the command thread: sets the running command, for the messages of Busy; empty: none. */
    void setCommand(const std::string& text);
    /** Returns the running command. */
    std::string command() const;
    /** From now on all work fails with Busy, also queued work. */
    void close();

private:
    struct Job {
        Work kind;
        std::function<void()> function;
        enum class State { waiting, running, done, dropped } state = State::waiting;
        std::exception_ptr problem{};
    };

    void wait(Work kind, std::function<void()> function);
    std::shared_ptr<Job> enqueue(Work kind, std::function<void()> function);
    std::shared_ptr<Job> takeJob(bool isPause);

    std::function<void()> m_wake;
    mutable std::mutex m_mutex; // guards the members below
    std::condition_variable m_changed;
    std::deque<std::shared_ptr<Job>> m_jobs;
    std::string m_command;
    bool m_isClosed = false;
};

} // namespace serve

#endif
