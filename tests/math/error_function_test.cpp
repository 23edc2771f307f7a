// The error function pair against the C library: every piece of the
// approximation, the saturated ends, the sign of zero and NaNs.
#include "math_test_support.h"

#include <algorithm>
#include <limits>
#include <vector>

TEST_F(MathTest, ErrorFunctionAgreesWithTheCLibrary)
{
    // Both sides of every boundary between pieces and the saturated ends
    // (each also negated), then a sweep.
    std::vector<double> xs;
    for (double edge : {0.0, 1e-310, 1e-308, 3.7e-9, 0.0625, 0.84375, 1.25, 2.0, 4.0, 6.0, 28.0, HUGE_VAL}) {
        xs.push_back(edge);
        xs.push_back(std::nextafter(edge, 0.0));
    }
    for (double x = 1e-6; x < 26.5; x *= 1.001) xs.push_back(x);
    double worst_erf = 0;
    double worst_erfc = 0;
    for (double x : xs) {
        for (double v : {x, -x}) {
            worst_erf = std::max(worst_erf, ulps_apart(gmath_dnoerf(v), std::erf(v)));
            worst_erfc = std::max(worst_erfc, ulps_apart(gmath_dnoerfc(v), std::erfc(v)));
        }
    }
    EXPECT_LE(worst_erf, 2);
    EXPECT_LE(worst_erfc, 6);
    EXPECT_TRUE(std::signbit(gmath_dnoerf(-0.0)));
    const double nan = -std::numeric_limits<double>::quiet_NaN();
    for (double (*f)(double) : {gmath_dnoerf, gmath_dnoerfc}) {
        const double out = f(nan);
        EXPECT_EQ(std::memcmp(&out, &nan, sizeof out), 0) << "the same NaN comes back";
    }
    EXPECT_EQ(gmath_ematherr(), 0);
}
