/** Shared by the sweeps over failing accesses: the expected log, and a thread that needs the lock. */
#ifndef TESTS_SUPPORT_FAULTS_H
#define TESTS_SUPPORT_FAULTS_H

#include "support/applet_fixture.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <mutex>
#include <string>
#include <thread>

namespace support {

/** The code of an injected failure. */
inline constexpr int injectedCode = -4711;

/** The first difference of two logs; empty if they are equal. A test's own output would be truncated. */
inline std::string difference(const Lines& seen, const Lines& expected) {
    const auto [s, e] = std::ranges::mismatch(seen, expected);
    if (s == seen.end() && e == expected.end()) return "";
    const auto shown = [](const Lines& lines, auto at) { return at != lines.end() ? *at : "the end"; };
    return "line " + std::to_string(s - seen.begin()) + ": " + shown(seen, s) +
           "; expected: " + shown(expected, e);
}

/** The first words of a line of the log. */
inline std::string firstWords(const std::string& line, int count) {
    std::size_t end = line.find(' ');
    for (int i = 1; i < count && end != line.npos; ++i)
        end = line.find(' ', end + 1);
    return line.substr(0, end);
}

/** A line of the log as it is if the access fails. */
inline std::string failedAccess(const std::string& line, int code = injectedCode) {
    const std::string end = " = " + std::to_string(code);
    if (line.starts_with("set ")) return line + end;
    return firstWords(line, line.starts_with("get ") ? 3 : 2) + end; // without the value that was read
}

/** An access of a parameter with the injected code as its id. */
inline std::string strayAccess(const std::string& line, int code) {
    const std::string verb = firstWords(line, 1), subject = firstWords(line, 2);
    return failedAccess(verb + " #" + std::to_string(injectedCode) + line.substr(subject.size()), code);
}

/** A fault-free log if access k fails and the call ends there. A name that is not found does not end it:
 * the access with the invalid id does, which the runtime refuses, unless all accesses fail. */
inline Lines cutAt(const Lines& faultFree, std::size_t k, int how) {
    Lines lines(faultFree.begin(), faultFree.begin() + static_cast<std::ptrdiff_t>(k));
    lines.back() = failedAccess(lines.back());
    if (lines.back().starts_with("resolve ") && k < faultFree.size())
        lines.push_back(strayAccess(
            faultFree[k], how == VBOARD_ONCE ? static_cast<int>(FG_ERR_INVALID_ARGUMENT) : injectedCode));
    return lines;
}

inline bool isWriteOf(const std::string& access, const std::string& name) {
    return access.starts_with("set ") && access.find(name) != std::string::npos;
}

/** The number of a set's own accesses; after them only published limits are refreshed, with one
 * read each and without error messages. */
inline std::size_t ownAccesses(const Lines& faultFree) {
    std::size_t own = faultFree.size();
    while (own > 0 && !faultFree[own - 1].starts_with("set "))
        --own;
    const auto isRate = [](const std::string& access) {
        return isWriteOf(access, "SequenceLength_ImageWidth"); // it is read back
    };
    return own + static_cast<std::size_t>(std::ranges::any_of(faultFree, isRate));
}

/** One thread for the life of the object. */
class OtherThread {
public:
    OtherThread() : m_thread([this] { work(); }) {}
    ~OtherThread() {
        hand({});
        m_thread.join();
    }
    OtherThread(const OtherThread&) = delete;
    OtherThread& operator=(const OtherThread&) = delete;

    /** Runs a function in the thread and waits for it; ends the program if it hangs. */
    void run(const std::function<void()>& task) {
        hand(task);
        std::unique_lock lock(m_mutex);
        if (m_changed.wait_for(lock, std::chrono::minutes(2), [this] { return !m_hasTask; })) return;
        std::cerr << "the lock is still held\n";
        std::abort();
    }

private:
    void hand(std::function<void()> task) {
        const std::lock_guard lock(m_mutex);
        m_task = std::move(task);
        m_hasTask = true;
        m_changed.notify_all();
    }
    void work() {
        for (std::unique_lock lock(m_mutex);;) {
            m_changed.wait(lock, [this] { return m_hasTask; });
            if (!m_task) return;
            lock.unlock();
            m_task();
            lock.lock();
            m_hasTask = false;
            m_changed.notify_all();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::function<void()> m_task;
    bool m_hasTask = false;
    std::thread m_thread;
};

} // namespace support

#endif
