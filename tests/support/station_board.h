/** A board that only stores values, and a station on it, for the tests of the station. */
#ifndef TESTS_SUPPORT_STATION_BOARD_H
#define TESTS_SUPPORT_STATION_BOARD_H

#include "station/Station.h"

#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <istream>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace station {

using P = Parameter;
/** Values of parameters, as "YLength=4 ImageHeight=2"; each name is the end of the name in the design. */
class Values {
public:
    Values() = default;
    Values(const char* text) : m_text(text) { read(); }
    Values(std::initializer_list<std::pair<Parameter, double>> values) : m_values(values) {}

    const std::vector<std::pair<Parameter, double>>& all() const { return m_values; }
    friend Values operator+(Values first, const Values& second) {
        first.m_text += " " + second.m_text;
        first.m_values.insert(first.m_values.end(), second.m_values.begin(), second.m_values.end());
        return first;
    }
    friend std::ostream& operator<<(std::ostream& stream, const Values& values) {
        return stream << values.m_text;
    }

private:
    void read();

    std::string m_text;
    std::vector<std::pair<Parameter, double>> m_values;
};

class ValueBoard final : public Board {
public:
    /** The state that the applet's start leaves, but with the simulator on. */
    ValueBoard();

    void set(const Values& values) {
        for (const auto& [parameter, value] : values.all())
            m_values[static_cast<std::size_t>(parameter)] = value;
        ++m_revision;
    }
    void setTable(Colour colour, std::vector<std::uint32_t> entries) {
        m_tables[static_cast<std::size_t>(colour)] = std::move(entries);
        ++m_tableRevision;
    }
    std::uint64_t raised(Event event) const {
        const auto found = m_raised.find(event);
        return found != m_raised.end() ? found->second : 0;
    }

    std::uint64_t revision() const override { return m_revision; }
    std::uint64_t tableRevision() const override { return m_tableRevision; }
    double value(Parameter parameter) const override { return m_values[static_cast<std::size_t>(parameter)]; }
    std::span<const std::uint32_t> table(Colour colour) const override {
        return m_tables[static_cast<std::size_t>(colour)];
    }
    void publish(Parameter parameter, double value) override {
        m_values[static_cast<std::size_t>(parameter)] = value;
    }
    void raise(Event event, std::uint64_t times) override { m_raised[event] += times; }

private:
    std::array<double, parameterCount> m_values{};
    std::array<std::vector<std::uint32_t>, colourCount> m_tables;
    std::map<Event, std::uint64_t> m_raised;
    std::uint64_t m_revision = 1;
    std::uint64_t m_tableRevision = 1;
};

/** A board with a station, and actions for tests. */
class Trial {
public:
    Trial() = default;
    explicit Trial(const Values& values) { board.set(values); }

    double value(Parameter parameter) const { return board.value(parameter); }
    /** "0 +10 -20": low at first, high from tick 10 on, low again from 20 on. */
    std::string trace(std::uint8_t select, Tick from, Tick to) const {
        return text(station.trace(select, from, to));
    }
    static std::string text(const Trace& trace);
    /** Ticks at which a signal rises until `to`. */
    std::string starts(std::uint8_t select, Tick to) const;
    void write(Parameter parameter, double number) {
        board.set({{parameter, number}});
        station.write(parameter, static_cast<std::uint64_t>(number));
    }
    /** Starts an acquisition into a ring of frames that are large enough for everything. */
    void acquire(std::size_t frames = 64, HostMemory::Kind kind = HostMemory::Kind::ring,
                 std::int64_t pictures = 0) {
        memory = std::make_shared<HostMemory>(frames, 1U << 24, kind);
        EXPECT_TRUE(station.start(memory, pictures));
    }
    void advanceTo(Tick tick) { station.advance(tick - station.now()); }
    /** Ticks of the first and the last line of a picture, and its lines: "0-32 2 short". */
    std::string picture(std::int64_t number) const;
    /** All pictures, "0-32 2, 64-96 2". */
    std::string pictures();
    /** The bytes of a picture; empty if there is none. */
    std::vector<int> bytes(std::int64_t number);
    /** What happens, as "150 pulse, 350 high, 600 low, 900 YLength=3, 950": at a tick a software trigger, its level or any
     *  parameters. Also "wave INPUT +TICK -TICK ...", "table red ENTRY=VALUE ...", "inject COMPONENT ...", "acquire". */
    void play(const std::string& actions);
    void act(const std::string& action);
    /** The rest of the actions "camera WIDTH rate=R exposure=E ...", "belt SPEED encoder=A/B/STEP ..." and "scene ...". */
    void attach(std::istream& words);
    void startBelt(std::istream& words);
    void setScene(std::istream& words);
    /** The values of the chart's bars in each line of a picture; - if there are none. */
    std::string numbers(std::int64_t picture);

    ValueBoard board;
    Station station{board};
    std::shared_ptr<HostMemory> memory;
};

class StationTest : public testing::Test, public Trial {
protected:
    using Trial::Trial;
};

} // namespace station

#endif
