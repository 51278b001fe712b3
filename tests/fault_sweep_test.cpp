// Every access of every setter fails in turn: the code comes through, the value stays, the object works on.

#include "support/applet_fixture.h"

#include <chrono>
#include <future>
#include <variant>

namespace {

using namespace support;

constexpr int injected = -4711;
using Value = std::variant<std::uint32_t, double>;

/** A value set while the object is in a state; `old` is the value before. */
struct Row {
    int id;
    Value old, value;
};

class FaultSweepTest : public ParameterTest {
protected:
    int setValue(int id, const Value& value) {
        return std::visit([&](auto v) { return set(id, v); }, value);
    }
    Value getLike(int id, const Value& like) {
        return std::visit([&](auto v) -> Value { return get<decltype(v)>(id); }, like);
    }
    /** A get from another thread, which needs the lock. */
    bool otherThreadGets(const Row& row) {
        auto answer = std::async(std::launch::async, [&] { return getLike(row.id, row.value); });
        if (answer.wait_for(std::chrono::seconds(20)) != std::future_status::ready) {
            ADD_FAILURE() << "the lock is still held";
            std::abort(); // the future would wait for ever
        }
        return answer.get() == row.old;
    }
    void startFrom(const Row& row) {
        ASSERT_EQ(setValue(row.id, row.old), 0);
        clearLog();
    }
    static std::string failed(std::string line) {
        if (line.starts_with("get ")) line.erase(line.rfind(' ')); // a failed get has no value
        return line + " = " + std::to_string(injected);
    }

    void sweep(const Row& row) {
        SCOPED_TRACE(testing::Message() << "parameter " << row.id);
        ASSERT_NO_FATAL_FAILURE(startFrom(row));
        ASSERT_EQ(setValue(row.id, row.value), 0);
        const Lines faultFree = log();
        const std::size_t ownAccesses = logToLastWrite().size(); // behind them only limits are refreshed
        ASSERT_GT(ownAccesses, 0u);

        for (const int how : {VBOARD_ONCE, VBOARD_FROM_THEN_ON}) {
            for (std::size_t k = 1; k <= ownAccesses; ++k) {
                SCOPED_TRACE(testing::Message() << "access " << k << " how " << how);
                ASSERT_NO_FATAL_FAILURE(startFrom(row));
                board.fail_access(grabber.device, static_cast<unsigned>(k), injected, how);
                EXPECT_EQ(setValue(row.id, row.value), injected);
                EXPECT_EQ(lastError(), injected);
                Lines cut(faultFree.begin(), faultFree.begin() + static_cast<std::ptrdiff_t>(k));
                cut.back() = failed(cut.back());
                EXPECT_EQ(log(), cut);
                EXPECT_EQ(getLike(row.id, row.value), row.old);
                EXPECT_TRUE(otherThreadGets(row));

                board.fail_access(grabber.device, 0, 0, VBOARD_ONCE);
                EXPECT_EQ(setValue(row.id, row.value), 0);
                EXPECT_EQ(lastError(), 0);
                EXPECT_EQ(getLike(row.id, row.value), row.value);
            }
        }
        // Behind the last write a fault harms nobody: the value is set.
        for (std::size_t k = ownAccesses + 1; k <= faultFree.size(); ++k) {
            ASSERT_NO_FATAL_FAILURE(startFrom(row));
            board.fail_access(grabber.device, static_cast<unsigned>(k), injected, VBOARD_FROM_THEN_ON);
            EXPECT_EQ(setValue(row.id, row.value), 0);
            board.fail_access(grabber.device, 0, 0, VBOARD_ONCE);
            EXPECT_EQ(getLike(row.id, row.value), row.value);
        }
        ASSERT_NO_FATAL_FAILURE(startFrom(row));
    }
};

class GeometryFaults : public FaultSweepTest, public testing::WithParamInterface<std::uint32_t> {};

TEST_P(GeometryFaults, EverySetter) {
    const std::uint32_t vantage = GetParam();
    ASSERT_EQ(set(FG_XOFFSET, 0u), 0);
    ASSERT_EQ(set(FG_WIDTH, 500u), 0);
    ASSERT_EQ(set(FG_HEIGHT, 100u), 0);
    ASSERT_EQ(set(FG_VANTAGEPOINT, vantage), 0);
    for (std::uint32_t other = 0; other < 4; ++other)
        if (other != vantage) sweep({FG_VANTAGEPOINT, vantage, other});
    sweep({FG_SENSORWIDTH, 1024u, 512u});
    sweep({FG_SENSORHEIGHT, 1024u, 600u});
    sweep({FG_WIDTH, 500u, 504u});
    sweep({FG_HEIGHT, 100u, 1u});
    sweep({FG_XOFFSET, 0u, 4u});
    sweep({FG_XOFFSET, 4u, 8u});
    sweep({FG_YOFFSET, 0u, 33u});
    sweep({FG_YOFFSET, 2u, 0u});
}

INSTANTIATE_TEST_SUITE_P(VantagePoints, GeometryFaults, testing::Values(0u, 1u, 2u, 3u));

class LineTriggerFaults : public FaultSweepTest, public testing::WithParamInterface<std::uint32_t> {};

TEST_P(LineTriggerFaults, EverySetter) {
    const std::uint32_t mode = GetParam();
    ASSERT_EQ(set(FG_LINETRIGGERMODE, mode), 0);
    for (const std::uint32_t other : {1u, 2u, 5u, 6u})
        if (other != mode) sweep({FG_LINETRIGGERMODE, mode, other});
    sweep({FG_EXSYNCON, 1u, 0u});
    sweep({FG_LINETRIGGERINSRC, 1u, 17u});
    sweep({FG_LINETRIGGERINPOLARITY, 0u, 1u});
    sweep({FG_LINETRIGGERDEBOUNCING, 0.112, 1.0});
    sweep({FG_LINE_DOWNSCALE, 1u, 255u});
    sweep({FG_LINE_DOWNSCALEINIT, 1u, 2u});
    sweep({FG_LINEPERIODE, 200.0, 100.0});
    sweep({FG_LINEEXPOSURE, 19.0, 20.0});
    sweep({FG_EXSYNCPOLARITY, 1u, 0u});
    sweep({FG_LINETRIGGERDELAY, 0.0, 0.008});
}

INSTANTIATE_TEST_SUITE_P(Modes, LineTriggerFaults, testing::Values(1u, 2u, 6u, 5u));

class TriggerFaults : public FaultSweepTest {};

TEST_F(TriggerFaults, EverySetter) {
    for (const std::uint32_t from : {0u, 2u, 8u, 5u, 6u})
        for (const std::uint32_t to : {0u, 2u, 8u, 5u, 6u})
            if (from != to) sweep({FG_IMGTRIGGERMODE, from, to});
    ASSERT_EQ(set(FG_IMGTRIGGERMODE, 8u), 0);
    sweep({FG_IMGTRIGGER_ASYNC_HEIGHT, 1024u, 16777216u});
    sweep({FG_IMGTRIGGERON, 1u, 0u});
    sweep({FG_FLASHON, 1u, 0u});
    sweep({FG_IMGTRIGGERINSRC, 0u, ~0u});
    sweep({FG_IMGTRIGGERINPOLARITY, 0u, 1u});
    sweep({FG_IMGTRIGGERGATEDELAY, 0u, 65535u});
    sweep({FG_IMGTRIGGERDEBOUNCING, 0.112, 65.0});
    sweep({FG_FLASH_POLARITY, 1u, 0u});
    sweep({FG_STROBEPULSEDELAY, 0u, 7u});
    sweep({FG_SENDSOFTWARETRIGGER, 1u, 1u});
    sweep({FG_SETSOFTWARETRIGGER, 0u, 1u});
    sweep({FG_SHAFTENCODERON, 0u, 1u});
    sweep({FG_SHAFTENCODERON, 1u, 0u});
    ASSERT_EQ(set(FG_SHAFTENCODERON, 1u), 0);
    sweep({FG_SHAFTENCODERMODE, 1u, 3u});
    sweep({FG_SHAFTENCODERINSRC, 2u, 19u});
    sweep({FG_SHAFTENCODERLEADING, 0u, 1u});
    sweep({FG_SHAFTENCODER_COMPENSATION_ENABLE, 1u, 0u});
    sweep({FG_SIGNAL_ANALYZER_CLEAR, 1u, 1u});
    sweep({FG_CLHS_TRIGGER_PULSE_MESSAGE, 1u, 23u});
}

TEST_F(TriggerFaults, EveryRoute) {
    for (const auto& [source, polarity] : {std::pair{200338, 200354},
                                           {200384, 200410},
                                           {200385, 200411},
                                           {200386, 200412},
                                           {200387, 200413},
                                           {200388, 200414},
                                           {200389, 200415},
                                           {200390, 200416},
                                           {200391, 200417},
                                           {200392, 200418},
                                           {200393, 200419},
                                           {200420, 200421},
                                           {200430, 200431},
                                           {200440, 200441},
                                           {200442, 200443}}) {
        sweep({source, 1001u, 2007u});
        sweep({polarity, 1u, 0u});
    }
}

} // namespace
