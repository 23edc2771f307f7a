// Saturating rounding and truncation to int, and the small conversions.
#include "math_test_support.h"

#include <climits>
#include <limits>

TEST_F(MathTest, RoundingAndTruncationSaturateSymmetrically)
{
    struct Case { double x; int rounded; int truncated; };
    const double inf = std::numeric_limits<double>::infinity();
    const Case cases[] = {
        {2.5, 3, 2}, {-2.5, -3, -2}, {0.5, 1, 0}, {-0.5, -1, 0},
        {0.49999999999999994, 1, 0},  // x + 0.5 rounds up to 1 before the truncation
        {-0.0, 0, 0}, {-1.9, -2, -1}, {2147483646.5, 2147483647, 2147483646}, {2147483647.4, 2147483647, 2147483647},
        {3e9, 2147483647, 2147483647}, {-2147483647.4, -2147483647, -2147483647},
        {-2147483648.0, -2147483647, -2147483647},  // never INT_MIN
        {-3e9, -2147483647, -2147483647}, {inf, 2147483647, 2147483647}, {-inf, -2147483647, -2147483647},
        {std::numeric_limits<double>::quiet_NaN(), 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.x);
        EXPECT_EQ(gmath_eeround(c.x), c.rounded);
        EXPECT_EQ(gmath_eelround(c.x), c.rounded);
        EXPECT_EQ(gmath_eedround(c.x), static_cast<double>(c.rounded));
        EXPECT_EQ(gmath_eetrunc(c.x), c.truncated);
        EXPECT_EQ(gmath_eedtrunc(c.x), c.truncated);
    }
    EXPECT_EQ(gmath_ematherr(), 0);
}

TEST_F(MathTest, SmallConversions)
{
    EXPECT_EQ(gmath_eeiabs(-5), 5);
    EXPECT_EQ(gmath_eeiabs(INT_MIN), INT_MIN);
    EXPECT_EQ(gmath_eefabs(-1.5f), 1.5f);
    EXPECT_FALSE(std::signbit(gmath_eefabs(-0.0f)));
    EXPECT_EQ(gmath_eefloat(16777217), 16777216.0f);
}
