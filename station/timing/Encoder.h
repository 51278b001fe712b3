/** From the two inputs of the line trigger to its line requests. */
#ifndef STATION_TIMING_ENCODER_H
#define STATION_TIMING_ENCODER_H

#include <cstdint>

namespace station {

/** A shaft encoder with its compensation of backward steps. */
class Encoder {
public:
    static constexpr std::uint32_t largestCount = 0xfffff;

    struct Settings {
        std::uint8_t resolution = 0; // 0 off: the rising edges of A; then x1, x2, x4
        bool isBLeading = false;     // forward is B before A
        bool isCompensating = false;
    };

    void configure(const Settings& settings) {
        m_settings = settings;
        if (!settings.isCompensating) m_count = 0;
    }
    /** The levels before time first advances. */
    void preset(bool a, bool b) {
        m_a = a;
        m_b = b;
    }
    /** Call with the levels of both inputs after a change. True if there is a pulse. */
    bool step(bool a, bool b);

    /** Backward steps not compensated yet. */
    std::uint32_t count() const { return m_count; }
    void setCount(std::uint32_t count) { m_count = m_settings.isCompensating ? count & largestCount : 0; }
    /** Quarter steps forward minus quarter steps backwards. */
    std::int64_t position() const { return m_position; }

private:
    Settings m_settings;
    bool m_a = false;
    bool m_b = false;
    std::uint32_t m_count = 0;
    std::int64_t m_position = 0;
};

/** Passes every n-th pulse. */
class Downscaler {
public:
    void configure(std::uint32_t factor, std::uint32_t phase) {
        m_factor = factor;
        m_phase = phase;
    }
    /** The gate opens: the phase selects the next pulse that passes. */
    void open() {
        m_seen = 0;
        m_isFirst = true;
    }
    /** Restarts counting without a gate. */
    void restart() {
        m_seen = 0;
        m_isFirst = false;
    }
    /** Call for each pulse; true if it passes. */
    bool pulse() {
        if (++m_seen < (m_isFirst ? m_phase : m_factor)) return false;
        restart();
        return true;
    }

private:
    std::uint32_t m_factor = 1;
    std::uint32_t m_phase = 1;
    std::uint32_t m_seen = 0;
    bool m_isFirst = false;
};

} // namespace station

#endif
