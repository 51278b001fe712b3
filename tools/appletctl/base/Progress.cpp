#include "appletctl/base/Progress.h"

#include "appletctl/base/layout.h"
#include "appletctl/base/numbers.h"
#include "appletctl/base/output.h"

#include <unistd.h>

#include <iostream>

namespace appletctl {

using namespace std::chrono_literals;

Progress::Progress(std::string title) : m_title(std::move(title)), m_isWanted(isProgressWanted()) {}

Progress::~Progress() {
    if (m_isShown) std::cerr << "\r\033[K" << std::flush;
}

std::chrono::milliseconds Progress::interval() const { return m_isWanted ? 100ms : -1ms; }

void Progress::update() {
    const auto passed = std::chrono::steady_clock::now() - m_start;
    if (!m_isWanted || passed < 500ms) return;
    m_isShown = true;
    std::string line = m_title + (m_detail.empty() ? "" : " " + m_detail) + ", " +
                       numberText(std::chrono::duration_cast<std::chrono::seconds>(passed).count()) + " s";
    // The line must not reach the next row, which would not be erased.
    if (const std::size_t width = lineWidth(STDERR_FILENO); line.size() >= width) line.resize(width - 1);
    std::cerr << '\r' << Style::forStream(STDERR_FILENO).faint(line) << "\033[K" << std::flush;
}

} // namespace appletctl
