#include "station/timing/Inputs.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace station {
namespace {

/** Calls `visit` with the number of each bit of a mask. */
template <typename Visit> void forEachInput(std::uint32_t mask, Visit visit) {
    for (; mask != 0; mask &= mask - 1)
        visit(static_cast<std::size_t>(std::countr_zero(mask)));
}

} // namespace

void Inputs::configure(const Settings& settings, Tick from) {
    for (Debouncer& debouncer : m_debouncers)
        debouncer.setTime(settings.debouncing, from);
    m_imageDebouncer.setTime(settings.imageDebouncing, from);
    const bool before = m_settings.imageInput < inputCount && m_raw[m_settings.imageInput];
    const bool after = settings.imageInput < inputCount && m_raw[settings.imageInput];
    m_settings = settings;
    if (before != after) m_imageDebouncer.follow(after, from);
    findNext();
}

bool Inputs::connect(std::size_t input, const Wave& wave, Tick from, std::size_t second) {
    if (input >= inputCount) return false;
    Wave begun = wave;
    begun.begin(from);
    const bool isPair = wave.hasTwoTracks() && second < inputCount && second != input;
    for (Driver& driver : m_drivers) // an encoder loses a track if its input is connected to another wave
        if (driver.second == input || (isPair && driver.second == second)) driver.second = inputCount;
    Driver& driver = m_drivers[input];
    driver = {std::move(begun), isPair ? second : inputCount, true};
    m_used |= 1U << input;
    if (isPair) {
        m_drivers[second].isConnected = false;
        m_used |= 1U << second;
    }
    drive(input, (driver.wave.levels() & 1U) != 0, from);
    if (isPair) drive(second, (driver.wave.levels() & 2U) != 0, from);
    findNext();
    return true;
}

bool Inputs::hasWave(std::size_t input) const {
    for (std::size_t first = 0; first < inputCount; ++first)
        if (m_drivers[first].isConnected && (first == input || m_drivers[first].second == input)) return true;
    return false;
}

void Inputs::preset() {
    for (std::size_t input = 0; input < inputCount; ++input) {
        m_debouncers[input] = {};
        m_debouncers[input].preset(m_raw[input]);
        m_signals.preset(static_cast<std::uint8_t>(firstInput + input), m_raw[input]);
    }
    m_imageDebouncer = {};
    m_imageDebouncer.preset(m_settings.imageInput < inputCount && m_raw[m_settings.imageInput]);
    configure(m_settings, 0);
}

void Inputs::drive(std::size_t input, bool level, Tick tick) {
    if (m_raw[input] == level) return;
    m_raw[input] = level;
    if (m_debouncers[input].follow(level, tick)) m_events.add(Event::glitch, tick);
    if (input == m_settings.imageInput) m_imageDebouncer.follow(level, tick);
}

bool Inputs::settle(Tick tick) {
    bool hasChanged = m_imageDebouncer.next() <= tick;
    if (hasChanged) m_imageDebouncer.settle();
    forEachInput(m_used, [&](std::size_t input) {
        Debouncer& debouncer = m_debouncers[input];
        if (debouncer.next() > tick) return;
        debouncer.settle();
        m_signals.set(static_cast<std::uint8_t>(firstInput + input), debouncer.level(), tick);
        m_events.add(pinEvent(input, debouncer.level()), tick);
        hasChanged = true;
    });
    return hasChanged;
}

bool Inputs::run(Tick tick) {
    // A level that was stable for long enough counts, even if it changes now.
    bool hasChanged = m_nextSettled <= tick && settle(tick);
    if (m_nextWave <= tick) {
        forEachInput(m_used, [&](std::size_t input) {
            Driver& driver = m_drivers[input];
            if (!driver.isConnected || driver.wave.next() > tick) return;
            driver.wave.step();
            drive(input, (driver.wave.levels() & 1U) != 0, tick);
            if (driver.second < inputCount) drive(driver.second, (driver.wave.levels() & 2U) != 0, tick);
        });
        if (m_settings.debouncing == 0) hasChanged |= settle(tick);
    }
    findNext();
    return hasChanged;
}

void Inputs::findNext() {
    m_nextSettled = m_imageDebouncer.next();
    m_nextWave = never;
    forEachInput(m_used, [&](std::size_t input) {
        m_nextSettled = std::min(m_nextSettled, m_debouncers[input].next());
        if (m_drivers[input].isConnected) m_nextWave = std::min(m_nextWave, m_drivers[input].wave.next());
    });
    m_next = std::min(m_nextSettled, m_nextWave);
}

std::uint32_t Inputs::status() const {
    std::uint32_t bits = 0;
    for (std::size_t input = 0; input < inputCount; ++input)
        bits |= std::uint32_t{m_debouncers[input].level()} << input;
    return bits;
}

} // namespace station
