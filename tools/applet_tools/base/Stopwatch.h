/** Measures elapsed time. */
#ifndef APPLET_TOOLS_BASE_STOPWATCH_H
#define APPLET_TOOLS_BASE_STOPWATCH_H

#include <chrono>
#include <cmath>
#include <string>

namespace applet_tools {

class Stopwatch {
public:
    double milliseconds() const {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - m_start).count();
    }
    /** "3.2 ms". */
    std::string text() const {
        const auto tenths = std::llround(milliseconds() * 10);
        return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " ms";
    }

private:
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

} // namespace applet_tools

#endif
