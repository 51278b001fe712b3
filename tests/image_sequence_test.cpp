// A long random sequence over the image path: what is refused changes nothing, what is taken changes nothing
// else, and the published limits are the ones that hold.

#include "support/applet_fixture.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <map>
#include <random>

namespace {

using namespace support;

/** A parameter as the listing has it. */
struct Parameter {
    int id;
    std::string subject;
    bool isLimited = false;  // its setter heeds the published maximum
    bool isComputed = false; // it need not read back what was set
    bool writesBeforeRefusal = false;
};

class ImageSequence : public ParameterTest {
protected:
    ImageSequence() {
        // A memory that limits the geometry, and the limits of rates that a size makes for the first time.
        poke("Buffer_0_DRAM_DRAM_A_0_Imp_DRAM_RamAddressWidth", 18);
        // The formula is computed for the custom type only when the type comes back.
        setAll({{FG_PIXELFORMAT, 1025}, {FG_CAMERASIMULATOR_WIDTH, 1024}, {FG_LUT_TYPE, 0}});
        for (const Lines& row : dataRows("sequence_parameters.txt")) {
            const auto has = [&](const char* trait) {
                return std::find(row.begin(), row.end(), trait) != row.end();
            };
            parameters.push_back(
                {std::stoi(row[0]), row[2], has("limited"), has("computed"), has("writesBeforeRefusal")});
            records.push_back(record(parameters.back().id));
        }
    }
    /** Values as 64 bits, doubles by their pattern. */
    using Values = std::vector<std::uint64_t>;
    Values values() {
        board.log_kinds(grabber.device, 0);
        Values all;
        for (const Parameter& parameter : parameters)
            EXPECT_EQ(grabber.get(parameter.id, &all.emplace_back()), 0) << parameter.id;
        board.log_kinds(grabber.device, VBOARD_SET);
        return all;
    }
    bool isNumber(std::size_t i) const { return records[i]->kind == REGISTER_KIND_DOUBLE; }
    bool isWide(std::size_t i) const { return records[i]->kind == REGISTER_KIND_UINT64; }
    /** The largest value that the published limits leave, and the next one. */
    std::pair<std::uint64_t, std::uint64_t> mostAndNext(std::size_t i) const {
        const auto& value = records[i]->value;
        if (isNumber(i))
            return {std::bit_cast<std::uint64_t>(value.f64.maximum),
                    std::bit_cast<std::uint64_t>(
                        std::nextafter(value.f64.maximum, std::numeric_limits<double>::infinity()))};
        if (isWide(i)) return {value.u64.maximum, value.u64.maximum + 1};
        if (records[i]->kind == REGISTER_KIND_ENUM) return {4, 5};
        const std::uint32_t most = value.u32.maximum / value.u32.increment * value.u32.increment;
        return {most, std::uint64_t{most} + value.u32.increment};
    }
    /** Whether the published maximum is sure to be taken, as far as no other rule stands against it. */
    bool isTaken(std::size_t i, std::uint64_t most) {
        const std::uint32_t vantage = get<std::uint32_t>(FG_VANTAGEPOINT);
        const std::uint32_t right = get<std::uint32_t>(FG_XOFFSET) + get<std::uint32_t>(FG_WIDTH);
        const std::uint32_t bottom = get<std::uint32_t>(FG_YOFFSET) + get<std::uint32_t>(FG_HEIGHT);
        switch (parameters[i].id) {
        case FG_SENSORWIDTH:
            return most >= 4 && (vantage % 2 == 0 ? 16384 : most) >= right;
        case FG_SENSORHEIGHT:
            return most >= 1 && (vantage < 2 || most >= bottom);
        case FG_WIDTH:
        case FG_HEIGHT:
            return most >= records[i]->value.u32.increment;
        case FG_CAMERASIMULATOR_WIDTH:
            return most >= 1 && (most + 31) / 32 * 32 <= 294920;
        default:
            return true;
        }
    }
    int setBits(std::size_t i, std::uint64_t bits) {
        if (isWide(i)) return set(parameters[i].id, bits);
        if (isNumber(i)) return set(parameters[i].id, std::bit_cast<double>(bits));
        return set(parameters[i].id, static_cast<std::uint32_t>(bits));
    }

    std::vector<Parameter> parameters;
    std::vector<RegisterInfo*> records;
};

TEST_F(ImageSequence, RefusedChangesNothingTakenChangesNothingElse) {
    std::mt19937 random(20240607);
    const auto below = [&](std::uint64_t limit) {
        return (std::uint64_t{random()} << 32 | random()) % limit;
    };
    Values before = values();
    std::map<int, int> taken, refused;
    for (int step = 0; step < 20000; ++step) {
        const std::size_t i = below(parameters.size());
        const auto& [id, subject, isLimited, isComputed, writesBeforeRefusal] = parameters[i];
        const auto [most, next] = mostAndNext(i);
        std::uint64_t value = most;
        const auto choice = below(8);
        if (choice == 0)
            value = next;
        else if (choice == 1)
            value = random(); // of a number: something near 0
        else if (choice > 3 && isNumber(i))
            value = std::bit_cast<std::uint64_t>(std::bit_cast<double>(most) *
                                                 static_cast<double>(below(1000)) / 1000);
        else if (choice > 3)
            value = below(choice == 4 ? std::max<std::uint64_t>(most, 1) : 2048);
        if (id == FG_PIXELFORMAT) value = 1023 + below(8);
        if (!isNumber(i) && !isWide(i)) value &= 0xffffffff;
        SCOPED_TRACE(testing::Message() << "step " << step << ": " << id << " = " << value);
        // Differences of unsigned words may have wrapped; then the region decides.
        const bool isLimit = isLimited && (isNumber(i) || isWide(i) || most < 0x80000000);
        const bool mustTake = isLimit && value == most && isTaken(i, most);

        clearLog();
        const int code = setBits(i, value);
        ASSERT_EQ(lastError(), code);
        const bool hasWritten = board.log_size(grabber.device) > 0;
        const Values after = values();
        ASSERT_TRUE(code != 0 || !isLimit || value != next) << "beyond the published maximum";
        ASSERT_TRUE(code == 0 || !mustTake) << "the published maximum";
        ++(code == 0 ? taken : refused)[id];
        if (code != 0) {
            ASSERT_EQ(after, before);
            ASSERT_TRUE(!hasWritten || writesBeforeRefusal);
        }
        if (code == 0 && !isComputed) {
            ASSERT_EQ(after[i], value);
        }
        const bool othersFollow = subject == "simulator" || subject == "debug";
        for (std::size_t k = 0; k < parameters.size(); ++k)
            ASSERT_TRUE(after[k] == before[k] || k == i || (othersFollow && parameters[k].subject == subject))
                << parameters[k].id << " has changed";
        before = after;
    }
    for (const auto& [id, subject, isLimited, isComputed, writesBeforeRefusal] : parameters) {
        EXPECT_TRUE(id == FG_CAMERASIMULATOR_PIXEL_FREQUENCY ? taken[id] == 0 : taken[id] > 10) << id;
        EXPECT_GT(refused[id], 10) << id;
    }
}

} // namespace
