#include "appletctl/base/Progress.h"

#include "applet_tools/base/numbers.h"
#include "appletctl/base/layout.h"
#include "appletctl/base/terminal.h"

#include <unistd.h>

#include <condition_variable>
#include <csignal>
#include <iostream>
#include <mutex>
#include <stop_token>
#include <string_view>
#include <thread>
#include <utility>

namespace appletctl {

using namespace std::chrono_literals;

namespace {

constexpr std::string_view eraseLine = "\r\033[K";

void eraseAndEnd(int signal) {
    // Nothing to do if the terminal does not accept it.
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, eraseLine.data(), eraseLine.size());
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

/** Lets Ctrl-C erase the line if it ends the program at once; false if another handler waits for it. */
bool takeInterruption() {
    struct sigaction before {};
    if (sigaction(SIGINT, nullptr, &before) != 0 || before.sa_handler != SIG_DFL) return false;
    return std::signal(SIGINT, eraseAndEnd) != SIG_ERR;
}

} // namespace

Progress::Progress(std::string title) : m_title(std::move(title)), m_isWanted(isProgressWanted()) {}

Progress::~Progress() {
    if (!m_isShown) return;
    std::cerr << eraseLine << std::flush;
    if (m_endsBySignal) std::signal(SIGINT, SIG_DFL);
}

std::chrono::milliseconds Progress::interval() const { return m_isWanted ? 100ms : -1ms; }

void Progress::update() {
    const auto passed = std::chrono::steady_clock::now() - m_start;
    if (!m_isWanted || passed < 500ms) return;
    if (!std::exchange(m_isShown, true)) m_endsBySignal = takeInterruption();
    std::string line = m_title + (m_detail.empty() ? "" : " " + m_detail) + ", " +
                       numberText(std::chrono::duration_cast<std::chrono::seconds>(passed).count()) + " s";
    // The line must not wrap, as the second row would not be erased.
    if (const std::size_t width = lineWidth(STDERR_FILENO); line.size() >= width) line.resize(width - 1);
    std::cerr << '\r' << Style::forStream(STDERR_FILENO).faint(line) << "\033[K" << std::flush;
}

void withProgress(const std::string& title, const std::function<void()>& work) {
    Progress progress(title);
    const auto interval = progress.interval();
    if (interval < 0ms) return work();
    const std::jthread updates([&](const std::stop_token& end) {
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable_any isOver;
        while (!isOver.wait_for(lock, end, interval, [&] { return end.stop_requested(); }))
            progress.update();
    });
    work();
}

} // namespace appletctl
