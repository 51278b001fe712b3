// Conversions of floating-point numbers are defined for every input.

#include "support/conversions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

template <typename Integer> class Truncated : public testing::Test {};
using Widths = testing::Types<std::int32_t, std::uint32_t, std::int64_t, std::uint64_t>;
TYPED_TEST_SUITE(Truncated, Widths);

TYPED_TEST(Truncated, DropsTheFractionAndGivesTheLowestForWhatDoesNotFit) {
    using Limits = std::numeric_limits<TypeParam>;
    EXPECT_EQ(truncated<TypeParam>(6.9999), TypeParam{6});
    EXPECT_EQ(truncated<TypeParam>(-0.999), TypeParam{0});
    const double beyond = std::ldexp(1.0, Limits::digits); // one more than the maximum
    const double nan = std::numeric_limits<double>::quiet_NaN(), infinity = -std::log(0.0);
    for (const double wild : {beyond, -4.0 * beyond, nan, -nan, infinity, -infinity, 1e308, -1e308})
        EXPECT_EQ(truncated<TypeParam>(wild), Limits::lowest()) << wild;
    const double last = std::nextafter(beyond, 0.0); // of 64 bits, not the largest itself
    EXPECT_EQ(static_cast<double>(truncated<TypeParam>(last)), std::trunc(last));
}

TEST(Quotient, IsInfiniteWithTheSignOfBothOrNaN) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(quotient(6, -1.5), -4);
    for (const double dividend : {1.0, -1e-300, infinity, -infinity})
        for (const double divisor : {0.0, -0.0})
            EXPECT_EQ(quotient(dividend, divisor), std::copysign(1, divisor) * dividend * infinity)
                << dividend << " / " << divisor;
    for (const double dividend : {0.0, -0.0, std::nan("")})
        EXPECT_TRUE(std::isnan(quotient(dividend, 0.0))) << dividend;
}

TEST(TruncatedBounds, AreReachedExactly) {
    EXPECT_EQ(truncated<std::int32_t>(2147483647.75), 2147483647);
    EXPECT_EQ(truncated<std::int32_t>(-2147483647.75), -2147483647);
    EXPECT_EQ(truncated<std::int64_t>(-9223372036854774784.0), -9223372036854774784);
    EXPECT_EQ(truncated<std::uint64_t>(9223372036854775808.0), 9223372036854775808u);
}

} // namespace
