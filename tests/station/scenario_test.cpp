// Whole runs: the parts of the station must agree with each other, and the same writes give the same run.

#include "station/Settings.h"
#include "support/station_board.h"

#include <random>

namespace station {
namespace {

/** A run of random writes, waves and waits; returns all visible state as text. */
class RandomRun {
public:
    explicit RandomRun(std::uint32_t seed) : m_random(seed) {}

    std::string play(int steps) {
        for (int i = 0; i < steps; ++i) {
            step();
            note();
        }
        return m_text;
    }

private:
    std::uint64_t below(std::uint64_t end) { return m_random() % end; }
    Wave wave() {
        const Tick now = m_station.now();
        const auto speed = [this] { return static_cast<std::int32_t>(below(4'000'000)) - 2'000'000; };
        switch (below(4)) {
        case 0:
            return Wave::constant(below(2) == 1);
        case 1:
            return Wave::square(now + below(500), 100 + below(2000), below(1000));
        case 2:
            return Wave::edges(false, {{now + below(300), true}, {now + below(3000), false}});
        default:
            return Wave::encoder(now, {{below(20'000), speed(), speed()}, {below(20'000), speed(), speed()}});
        }
    }
    void write() {
        auto parameter = static_cast<Parameter>(below(parameterCount));
        auto value = static_cast<double>(below(4));
        if (below(2) == 0) { // settings with which images pass
            static const Values useful =
                "YLength=20 ImageHeight_ImageHeight=9 XLength=40 ExsyncPeriod=40 XOffset=20 "
                "Enable_SelectSource=2 LineTriggerMode=4 ImgTriggerMode=3 SoftwareTrgInput=2";
            const auto& [which, end] = useful.all()[below(useful.all().size())];
            parameter = which;
            value = static_cast<double>(below(static_cast<std::uint64_t>(end)));
        }
        m_board.set({{parameter, value}});
        m_station.write(parameter, countOf(value));
    }
    void start() {
        m_memory = std::make_shared<HostMemory>(
            1 + below(4), 1U << 20, below(2) == 0 ? HostMemory::Kind::ring : HostMemory::Kind::blocking);
        m_text += m_station.start(m_memory, static_cast<std::int64_t>(below(30))) ? "start " : "refused ";
    }
    void step() {
        switch (below(8)) {
        case 0:
            m_station.connect(below(14), wave(), below(14));
            break;
        case 1:
            if (m_memory == nullptr || below(4) == 0) start();
            break;
        case 2:
            m_station.advance(below(20'000));
            break;
        case 3:
            m_station.waitForPicture(m_station.lastPicture() + 1, 20'000);
            break;
        case 4:
            if (m_memory != nullptr)
                m_station.release(m_station.lastPicture() - static_cast<std::int64_t>(below(4)));
            break;
        default:
            write();
        }
    }
    void note() {
        m_text += std::to_string(m_station.now()) + ' ' + std::to_string(m_station.lines()) + ' ' +
                  std::to_string(m_station.lastPicture()) + ' ' + std::to_string(m_station.cameraStatus());
        for (const P state : {P::analyzer0Pulses, P::analyzer0Current, P::analyzerDifference, P::inputStatus,
                              P::imageIsBusy, P::encoderCount, P::fillLevel0, P::overflowOccurred})
            m_text += ' ' + std::to_string(m_board.value(state));
        while (const auto event = m_station.nextEvent())
            m_text += ' ' + std::to_string(event->tick) + nameOf(event->event);
        std::span<const std::uint8_t> bytes;
        if (m_memory != nullptr && m_memory->bytes(m_station.lastPicture(), bytes) == HostMemory::Result::ok)
            m_text.append(bytes.begin(), bytes.end());
        m_text += textOf(m_station.trace(static_cast<std::uint8_t>(below(40)), 0, m_station.now()));
        m_text += '\n';
    }
    static std::string textOf(const Trace& trace) {
        return std::to_string(trace.edges.size()) +
               (trace.edges.empty() ? "" : std::to_string(trace.edges.back().tick));
    }

    std::mt19937 m_random;
    std::string m_text;
    ValueBoard m_board;
    Station m_station{m_board};
    std::shared_ptr<HostMemory> m_memory;
};

TEST(StationScenario, SameWritesGiveTheSameRun) {
    for (std::uint32_t seed = 1; seed <= 4; ++seed)
        EXPECT_EQ(RandomRun(seed).play(1000), RandomRun(seed).play(1000)) << seed;
}

TEST(StationScenario, LengthOfTimeStepsDoesNotMatter) {
    const auto run = [](const std::vector<Tick>& steps) {
        Trial one("LineTriggerMode=1 EncoderABMode=2 FreeRun_Select=0 TriggerValve_Mode=1 ExsyncExposure=2 "
                  "Exsync2Delay=3 Analyzer1_Select_SelectSignal_Select=34");
        one.station.connect(1, Wave::encoder(0, {{400'000, 0, 600'000}, {400'000, 600'000, -300'000}}), 2);
        one.acquire(2);
        for (const Tick ticks : steps)
            one.station.advance(ticks);
        std::string text =
            std::to_string(one.station.now()) + ' ' + std::to_string(one.station.lastPicture());
        for (const P state : {P::analyzer0Pulses, P::analyzer0Maximum, P::analyzer1Pulses, P::encoderCount})
            text += ' ' + std::to_string(one.value(state));
        while (const auto event = one.station.nextEvent())
            text += ' ' + std::to_string(event->tick) + '/' + std::to_string(static_cast<int>(event->event));
        const std::vector<int> bytes = one.bytes(one.station.lastPicture());
        EXPECT_FALSE(bytes.empty());
        return text.append(bytes.begin(), bytes.end());
    };
    const std::string whole = run({1'000'000});
    EXPECT_EQ(run(std::vector<Tick>(100'000, 10)), whole);
    EXPECT_EQ(run({1, 0, 399'999, 0, 7, 599'993}), whole);
}

TEST(StationScenario, EncoderLinesAndPicturesAgree) {
    // A second at 70,000 lines: encoder steps, ExSync pulses, lines and pictures have the same count.
    Trial run("LineTriggerMode=1 EncoderABMode=3 FreeRun_Select=0 TriggerValve_Mode=1 ExsyncExposure=2 "
              "SelectCustomSignalEvent0_SelectSignal_Select=4 Size_ImageHeight=1000 FrameGap_Number=1000 "
              "ImageHeight_ImageHeight=1000 YOffset=400 YLength=1000");
    run.station.connect(1, Wave::encoder(0, {{1, 70'000, 70'000}}), 2);
    run.acquire(2);
    run.station.advance(ticksPerSecond);
    EXPECT_EQ(run.station.lines(), 70'000U);
    EXPECT_EQ(run.value(P::analyzer0Pulses), 70'000);
    EXPECT_EQ(run.value(P::analyzerDifference), 0);
    EXPECT_EQ(run.board.raised(Event::customSignal0), 70'000U);
    EXPECT_EQ(run.station.lastPicture(), 50);           // 1400 lines each
    EXPECT_EQ(run.memory->record(50)->encoder, 69'001); // at its first line
    EXPECT_EQ(run.memory->record(50)->trigger, 50U);
}

} // namespace
} // namespace station
