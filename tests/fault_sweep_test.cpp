// Every access of every setter fails in turn: the code comes through, the value stays, the object works on.

#include "support/applet_fixture.h"

#include <chrono>
#include <future>
#include <variant>

namespace {

using namespace support;

constexpr int injected = -4711;

/** Elements of a lookup table; one alone goes by the record of its own. */
struct Elements {
    std::uint32_t first;
    std::vector<std::uint32_t> values;
    bool operator==(const Elements&) const = default;
};

using Value = std::variant<std::uint32_t, std::uint64_t, double, std::string, Elements>;

/** A value set while the object is in a state; `old` is the value before. */
struct Row {
    int id;
    Value old, value;
    std::size_t readsBehind = 0; /**< of the setter itself, behind its last write */
};

class FaultSweepTest : public ParameterTest {
protected:
    template <typename T> int setOne(int id, const T& value) { return set(id, value); }
    int setOne(int id, const std::string& value) { return setText(id, value); }
    int setOne(int id, const Elements& run) {
        std::vector<std::uint32_t> values = run.values;
        if (values.size() == 1)
            return grabber.set(id, FieldParameterInt_s{values[0], run.first}, 0, FG_PARAM_FIELD_INT);
        return grabber.set(
            id, FieldParameterAccess{2, run.first, static_cast<std::uint32_t>(values.size()), values.data()},
            0, FG_PARAM_FIELD_ACCESS);
    }
    template <typename T> T getOne(int id, const T&) { return get<T>(id); }
    std::string getOne(int id, const std::string&) { return text(id); }
    Elements getOne(int id, Elements like) {
        FieldParameterAccess run{2, like.first, static_cast<std::uint32_t>(like.values.size()),
                                 like.values.data()};
        EXPECT_EQ(grabber.get(id, &run, 0, FG_PARAM_FIELD_ACCESS), 0);
        return like;
    }
    int setValue(int id, const Value& value) {
        return std::visit([&](const auto& v) { return setOne(id, v); }, value);
    }
    Value getLike(int id, const Value& like) {
        return std::visit([&](const auto& v) -> Value { return getOne(id, v); }, like);
    }
    /** What a caller learns: of debug points and of silenced branches not the design's own code. */
    static int codeOf(const std::string& access) {
        const bool isHidden =
            access.find("_Debug_") != std::string::npos || access.find("_EnableTrash_") != std::string::npos;
        return isHidden ? FG_ERR_UNRESOLVED : injected;
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
        // Behind them only limits are refreshed.
        const std::size_t ownAccesses = logToLastWrite().size() + row.readsBehind;
        ASSERT_GT(ownAccesses, 0u);

        for (const int how : {VBOARD_ONCE, VBOARD_FROM_THEN_ON}) {
            for (std::size_t k = 1; k <= ownAccesses; ++k) {
                SCOPED_TRACE(testing::Message() << "access " << k << " how " << how);
                ASSERT_NO_FATAL_FAILURE(startFrom(row));
                board.fail_access(grabber.device, static_cast<unsigned>(k), injected, how);
                const int code = codeOf(faultFree[k - 1]);
                EXPECT_EQ(setValue(row.id, row.value), code);
                EXPECT_EQ(lastError(), code);
                Lines cut(faultFree.begin(), faultFree.begin() + static_cast<std::ptrdiff_t>(k));
                cut.back() = failed(cut.back());
                EXPECT_EQ(log(), cut);

                board.fail_access(grabber.device, 0, 0, VBOARD_ONCE);
                EXPECT_TRUE(getLike(row.id, row.value) == row.old);
                EXPECT_TRUE(otherThreadGets(row));
                EXPECT_EQ(setValue(row.id, row.value), 0);
                EXPECT_EQ(lastError(), 0);
                EXPECT_TRUE(getLike(row.id, row.value) == row.value);
            }
        }
        // Behind the last write a fault harms nobody: the value is set.
        for (std::size_t k = ownAccesses + 1; k <= faultFree.size(); ++k) {
            ASSERT_NO_FATAL_FAILURE(startFrom(row));
            board.fail_access(grabber.device, static_cast<unsigned>(k), injected, VBOARD_FROM_THEN_ON);
            EXPECT_EQ(setValue(row.id, row.value), 0);
            board.fail_access(grabber.device, 0, 0, VBOARD_ONCE);
            EXPECT_TRUE(getLike(row.id, row.value) == row.value);
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
    sweep({FG_PIXELFORMAT, 1025u, 1029u});
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

class ImagePathFaults : public FaultSweepTest {};

TEST_F(ImagePathFaults, SettersOfTheStages) {
    sweep({FG_LINEORDER, 0u, 3u});
    sweep({FG_IMG_SELECT_PERIOD, 1u, 7u});
    ASSERT_EQ(set(FG_IMG_SELECT_PERIOD, 9u), 0);
    sweep({FG_IMG_SELECT, 0u, 8u});
    for (const int id : {FG_SCALINGFACTOR_RED, FG_SCALINGFACTOR_BLUE, FG_SCALINGFACTOR_GREEN})
        sweep({id, 1.0, 0.5});
    sweep({FG_FORMAT, 2u, 6u});
    sweep({FG_BITALIGNMENT, 1u, 2u});
    sweep({FG_CUSTOM_BIT_SHIFT_RIGHT, 0u, 7u});
}

TEST_F(ImagePathFaults, SettersOfTheSimulator) {
    sweep({FG_CAMERASIMULATOR_ENABLE, 0u, 1u});
    sweep({FG_CAMERASIMULATOR_PATTERN, 3u, 2u});
    sweep({FG_CAMERASIMULATOR_PATTERN_OFFSET, 0u, 255u});
    sweep({FG_CAMERASIMULATOR_ROLL, 1u, 0u});
    sweep({FG_CAMERASIMULATOR_TRIGGER_MODE, 0u, 9u});
    // The rates read back from the counters: the frame rate is kept, a size leans on the rate.
    sweep({FG_CAMERASIMULATOR_HEIGHT, 1024u, 512u});
    sweep({FG_CAMERASIMULATOR_SELECT_MODE, 1u, 2u, 1});
    sweep({FG_CAMERASIMULATOR_SELECT_MODE, 2u, 1u, 1});
    ASSERT_EQ(set(FG_CAMERASIMULATOR_SELECT_MODE, 2u), 0);
    sweep({FG_CAMERASIMULATOR_HEIGHT, 1024u, 512u, 1});
}

TEST_F(ImagePathFaults, SettersOfTheLookupTable) {
    sweep({FG_LUT_ENABLE, 0u, 1u});
    sweep({FG_LUT_TYPE, 0u, 3u});
    ASSERT_EQ(set(FG_LUT_TYPE, 3u), 0);
    sweep({FG_PROCESSING_OFFSET, 0.0, 0.5});
    sweep({FG_PROCESSING_GAIN, 1.0, 2.0});
    sweep({FG_PROCESSING_GAMMA, 1.0, 2.2});
    sweep({FG_PROCESSING_INVERT, 0u, 1u});
    for (const int id : {FG_LUT_VALUE_RED, FG_LUT_VALUE_GREEN, FG_LUT_VALUE_BLUE}) {
        sweep({id, Elements{16383, {1}}, Elements{16383, {2}}});
        sweep({id, Elements{100, {1, 2, 3}}, Elements{100, {4, 5, 6}}});
    }
}

TEST_F(ImagePathFaults, SettersOfTheDebugPoints) {
    for (const std::uint32_t source : {0u, 1u}) {
        ASSERT_EQ(set(FG_DEBUGSOURCE, source), 0);
        sweep({FG_DEBUGINENABLE, 0u, 1u});
        if (source == 0) sweep({FG_DEBUGOUTENABLE, 0u, 1u});
        sweep({FG_DEBUGFILE, std::string("old"), std::string("new")});
        sweep({FG_DEBUGINSERT, 1u, 1u});
        sweep({FG_DEBUGWRITEPIXEL, std::uint64_t{0}, std::uint64_t{1} << 56});
        sweep({FG_DEBUGWRITEFLAG, 0u, 1u});
    }
}

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
