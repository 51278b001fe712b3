// A long random sequence over the image path: what is refused changes nothing, what is taken changes nothing
// else, and the published limits are the ones that hold.

#include "support/applet_fixture.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace {

using namespace support;

enum class Kind { word, wide, number };
/** Parameters of one subject depend on each other. */
enum class Subject { geometry, format, simulator, selector, balance, table, debug };

struct Parameter {
    int id;
    Kind kind;
    Subject subject;
    bool readsBack = true; /**< as it was set */
    bool writesBeforeRefusal = false;
    std::uint32_t step = 0; /**< of one whose published maximum is what the setter heeds */
};

const Parameter parameters[] = {
    {FG_PIXELFORMAT, Kind::word, Subject::geometry},
    {FG_LINEORDER, Kind::word, Subject::geometry},
    {FG_VANTAGEPOINT, Kind::word, Subject::geometry},
    {FG_SENSORWIDTH, Kind::word, Subject::geometry, true, false, 4},
    {FG_SENSORHEIGHT, Kind::word, Subject::geometry, true, false, 1},
    {FG_WIDTH, Kind::word, Subject::geometry, true, false, 4},
    {FG_HEIGHT, Kind::word, Subject::geometry, true, false, 1},
    {FG_XOFFSET, Kind::word, Subject::geometry, true, false, 4},
    {FG_YOFFSET, Kind::word, Subject::geometry, true, false, 1},
    {FG_FORMAT, Kind::word, Subject::format, true, true},
    {FG_BITALIGNMENT, Kind::word, Subject::format, true, true},
    {FG_CUSTOM_BIT_SHIFT_RIGHT, Kind::word, Subject::format, true, true, 1},
    {FG_CAMERASIMULATOR_ENABLE, Kind::word, Subject::simulator},
    {FG_CAMERASIMULATOR_WIDTH, Kind::word, Subject::simulator, false, false, 1},
    {FG_CAMERASIMULATOR_LINE_GAP, Kind::word, Subject::simulator, false},
    {FG_CAMERASIMULATOR_HEIGHT, Kind::word, Subject::simulator, true, true},
    {FG_CAMERASIMULATOR_FRAME_GAP, Kind::word, Subject::simulator, false},
    {FG_CAMERASIMULATOR_PATTERN, Kind::word, Subject::simulator},
    {FG_CAMERASIMULATOR_PATTERN_OFFSET, Kind::word, Subject::simulator, true, false, 1},
    {FG_CAMERASIMULATOR_ROLL, Kind::word, Subject::simulator},
    {FG_CAMERASIMULATOR_SELECT_MODE, Kind::word, Subject::simulator, true, true},
    {FG_CAMERASIMULATOR_PIXEL_FREQUENCY, Kind::number, Subject::simulator, false},
    {FG_CAMERASIMULATOR_LINERATE, Kind::number, Subject::simulator, false, false, 1},
    {FG_CAMERASIMULATOR_FRAMERATE, Kind::number, Subject::simulator, false, false, 1},
    {FG_CAMERASIMULATOR_TRIGGER_MODE, Kind::word, Subject::simulator},
    {FG_IMG_SELECT_PERIOD, Kind::word, Subject::selector},
    {FG_IMG_SELECT, Kind::word, Subject::selector},
    {FG_SCALINGFACTOR_RED, Kind::number, Subject::balance, true, false, 1},
    {FG_SCALINGFACTOR_BLUE, Kind::number, Subject::balance, true, false, 1},
    {FG_SCALINGFACTOR_GREEN, Kind::number, Subject::balance, true, false, 1},
    {FG_LUT_ENABLE, Kind::word, Subject::table},
    {FG_PROCESSING_OFFSET, Kind::number, Subject::table, true, false, 1},
    {FG_PROCESSING_GAIN, Kind::number, Subject::table, true, false, 1},
    {FG_PROCESSING_GAMMA, Kind::number, Subject::table, true, false, 1},
    {FG_DEBUGSOURCE, Kind::word, Subject::debug},
    {FG_DEBUGINENABLE, Kind::word, Subject::debug},
    {FG_DEBUGOUTENABLE, Kind::word, Subject::debug, false},
    {FG_DEBUGINSERT, Kind::word, Subject::debug},
    {FG_DEBUGWRITEPIXEL, Kind::wide, Subject::debug, true, false, 1},
    {FG_DEBUGWRITEFLAG, Kind::word, Subject::debug},
};
constexpr std::size_t count = std::size(parameters);

class ImageSequence : public ParameterTest {
protected:
    ImageSequence() {
        // A memory that limits the geometry, and the limits of rates that a size makes for the first time.
        board.poke_int(grabber.device, "Device1_Process0_Buffer_0_DRAM_DRAM_A_0_Imp_DRAM_RamAddressWidth",
                       18);
        EXPECT_EQ(set(FG_PIXELFORMAT, 1025u), 0);
        EXPECT_EQ(set(FG_CAMERASIMULATOR_WIDTH, 1024u), 0);
        // The formula is computed for the custom type only when the type comes back.
        EXPECT_EQ(set(FG_LUT_TYPE, 0u), 0);
        for (std::size_t i = 0; i < count; ++i)
            records[i] = record(parameters[i].id);
    }
    /** Values as 64 bits, doubles by their pattern. */
    using Values = std::array<std::uint64_t, count>;
    Values values() {
        board.log_kinds(grabber.device, 0);
        Values all{};
        for (std::size_t i = 0; i < count; ++i)
            EXPECT_EQ(grabber.get(parameters[i].id, &all[i]), 0) << parameters[i].id;
        board.log_kinds(grabber.device, VBOARD_SET);
        return all;
    }
    std::uint64_t maximumOf(std::size_t i) const {
        const auto& value = records[i]->value;
        switch (parameters[i].kind) {
        case Kind::wide:
            return value.u64.maximum;
        case Kind::number:
            return std::bit_cast<std::uint64_t>(value.f64.maximum);
        default:
            return records[i]->kind == REGISTER_KIND_ENUM ? 4 : value.u32.maximum;
        }
    }
    std::uint64_t above(std::size_t i, std::uint64_t maximum) const {
        if (parameters[i].kind != Kind::number) return maximum + std::max(1u, parameters[i].step);
        const double next =
            std::nextafter(std::bit_cast<double>(maximum), std::numeric_limits<double>::infinity());
        return std::bit_cast<std::uint64_t>(next);
    }
    /** Whether the published maximum is sure to be taken, as far as no other rule stands against it. */
    bool isTaken(std::size_t i, std::uint64_t maximum, const Values& now) const {
        const auto of = [&](int id) {
            return now[static_cast<std::size_t>(
                std::find_if(parameters, parameters + count, [id](const auto& p) { return p.id == id; }) -
                parameters)];
        };
        const std::uint64_t vantage = of(FG_VANTAGEPOINT);
        switch (parameters[i].id) {
        case FG_SENSORWIDTH:
            return maximum >= 4 && (vantage % 2 == 0 ? of(FG_XOFFSET) + of(FG_WIDTH) <= 16384
                                                     : maximum >= of(FG_XOFFSET) + of(FG_WIDTH));
        case FG_SENSORHEIGHT:
            return maximum >= 1 && (vantage < 2 || maximum >= of(FG_YOFFSET) + of(FG_HEIGHT));
        case FG_WIDTH:
            return maximum >= 4;
        case FG_HEIGHT:
            return maximum >= 1;
        case FG_CAMERASIMULATOR_WIDTH:
            return maximum >= 1 && (maximum + 31) / 32 * 32 <= 294920;
        default:
            return true;
        }
    }
    int setBits(std::size_t i, std::uint64_t bits) {
        switch (parameters[i].kind) {
        case Kind::wide:
            return set(parameters[i].id, bits);
        case Kind::number:
            return set(parameters[i].id, std::bit_cast<double>(bits));
        default:
            return set(parameters[i].id, static_cast<std::uint32_t>(bits));
        }
    }

    std::array<RegisterInfo*, count> records{};
};

TEST_F(ImageSequence, RefusedChangesNothingTakenChangesNothingElse) {
    std::mt19937 random(20240607);
    const auto below = [&](std::uint64_t limit) {
        return (std::uint64_t{random()} << 32 | random()) % limit;
    };
    Values before = values();
    std::array<int, count> taken{}, refused{};
    for (int step = 0; step < 20000; ++step) {
        const std::size_t i = below(count);
        const Parameter& parameter = parameters[i];
        const std::uint64_t maximum = maximumOf(i);
        const std::uint64_t own = parameter.step > 1 ? maximum / parameter.step * parameter.step : maximum;
        std::uint64_t value = own;
        const auto choice = below(8);
        if (choice == 0)
            value = above(i, own);
        else if (choice == 1)
            value = random(); // of a number: something near 0
        else if (choice > 3 && parameter.kind == Kind::number)
            value = std::bit_cast<std::uint64_t>(std::bit_cast<double>(maximum) *
                                                 static_cast<double>(below(1000)) / 1000);
        else if (choice > 3)
            value = below(choice == 4 ? std::max<std::uint64_t>(own, 1) : 2048);
        if (parameter.id == FG_PIXELFORMAT) value = 1023 + below(8);
        if (parameter.kind == Kind::word) value &= 0xffffffff;
        SCOPED_TRACE(testing::Message() << "step " << step << ": " << parameter.id << " = " << value);

        clearLog();
        const int code = setBits(i, value);
        ASSERT_EQ(lastError(), code);
        const bool hasWritten = board.log_size(grabber.device) > 0;
        const Values after = values();
        // Differences of unsigned words may have wrapped; then the region decides.
        const bool isLimit = parameter.step != 0 && (parameter.kind != Kind::word || maximum < 0x80000000);
        if (isLimit && value == above(i, own)) {
            ASSERT_NE(code, 0) << "beyond the published maximum";
        }
        if (isLimit && value == own && isTaken(i, own, before)) {
            ASSERT_EQ(code, 0) << "the published maximum";
        }
        if (code != 0) {
            ++refused[i];
            ASSERT_EQ(after, before);
            ASSERT_TRUE(!hasWritten || parameter.writesBeforeRefusal);
        } else {
            ++taken[i];
            if (parameter.readsBack) {
                ASSERT_EQ(after[i], value);
            }
            for (std::size_t k = 0; k < count; ++k) {
                const bool follows =
                    parameter.subject == parameters[k].subject &&
                    (parameter.subject == Subject::simulator || parameter.subject == Subject::debug);
                if (k != i && !follows) {
                    ASSERT_EQ(after[k], before[k]) << parameters[k].id << " has changed";
                }
            }
        }
        before = after;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const bool never = parameters[i].id == FG_CAMERASIMULATOR_PIXEL_FREQUENCY;
        EXPECT_TRUE(never ? taken[i] == 0 : taken[i] > 10) << parameters[i].id << ": " << taken[i];
        EXPECT_GT(refused[i], 10) << parameters[i].id;
    }
}

} // namespace
