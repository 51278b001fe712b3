// Conversions of floating point numbers: defined for every input, so that no value of a caller is a fault.

#include "support/conversions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

template <typename Integer> class Truncated : public testing::Test {};
using Widths = testing::Types<std::int32_t, std::uint32_t, std::int64_t, std::uint64_t>;
TYPED_TEST_SUITE(Truncated, Widths);

TYPED_TEST(Truncated, DropsTheFractionTowardsZero) {
    EXPECT_EQ(truncated<TypeParam>(6.9999), TypeParam{6});
    EXPECT_EQ(truncated<TypeParam>(0.999), TypeParam{0});
    EXPECT_EQ(truncated<TypeParam>(-0.999), TypeParam{0});
    if constexpr (std::numeric_limits<TypeParam>::is_signed) {
        EXPECT_EQ(truncated<TypeParam>(-6.9999), TypeParam{-6});
    }
}

TYPED_TEST(Truncated, GivesTheLowestForWhatDoesNotFit) {
    using Limits = std::numeric_limits<TypeParam>;
    const double beyond = std::ldexp(1.0, Limits::digits); // one more than the largest
    EXPECT_EQ(truncated<TypeParam>(beyond), Limits::lowest());
    EXPECT_EQ(truncated<TypeParam>(-4.0 * beyond), Limits::lowest());
    for (const double wild :
         {std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::quiet_NaN(),
          std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(), 1e308, -1e308})
        EXPECT_EQ(truncated<TypeParam>(wild), Limits::lowest()) << wild;
}

TEST(TruncatedBounds, AreReachedExactly) {
    EXPECT_EQ(truncated<std::int32_t>(2147483647.75), 2147483647);
    EXPECT_EQ(truncated<std::int32_t>(-2147483648.75), -2147483647 - 1);
    EXPECT_EQ(truncated<std::int32_t>(-2147483647.0), -2147483647);
    EXPECT_EQ(truncated<std::uint32_t>(4294967295.75), 4294967295u);
    EXPECT_EQ(truncated<std::uint32_t>(-1.0), 0u);
    EXPECT_EQ(truncated<std::int64_t>(9223372036854774784.0), 9223372036854774784); // the last double below
    EXPECT_EQ(truncated<std::int64_t>(-9223372036854774784.0), -9223372036854774784);
    EXPECT_EQ(truncated<std::uint64_t>(18446744073709549568.0), 18446744073709549568u);
    EXPECT_EQ(truncated<std::uint64_t>(9223372036854775808.0), 9223372036854775808u);
}

} // namespace
