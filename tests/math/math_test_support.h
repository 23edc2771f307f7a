// Helpers shared by the gmath tests: a fixture that starts from a cleared
// math-error state, and the distance of two doubles in units in the last
// place.
#ifndef TQL70_TESTS_MATH_MATH_TEST_SUPPORT_H
#define TQL70_TESTS_MATH_MATH_TEST_SUPPORT_H

#include <tql70/gmath.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>

class MathTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        gmath_set_usererr(nullptr);
        gmath_clr_ematherr();
    }
    void TearDown() override { gmath_set_usererr(nullptr); }
};

inline double ulps_apart(double a, double b)
{
    if (a == b) {
        return 0;
    }
    auto ordered = [](double x) {
        std::int64_t i;
        std::memcpy(&i, &x, sizeof i);
        return i < 0 ? INT64_MIN - i : i;
    };
    return std::fabs(static_cast<double>(ordered(a) - ordered(b)));
}

#endif
