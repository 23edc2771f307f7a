// Helpers shared by the gmath tests: a fixture that starts from a cleared
// math-error state, float infinity and NaN, and the distance of two doubles
// in ulps.
#ifndef TQL70_TESTS_MATH_MATH_TEST_SUPPORT_H
#define TQL70_TESTS_MATH_MATH_TEST_SUPPORT_H

#include <tql70/gmath.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

class MathTest : public ::testing::Test {
protected:
    void SetUp() override { gmath_set_usererr(nullptr), gmath_clr_ematherr(); }
    void TearDown() override { gmath_set_usererr(nullptr); }
};

inline const float kInf = std::numeric_limits<float>::infinity();
inline const float kNan = std::numeric_limits<float>::quiet_NaN();

// A C library result in double, narrowed as the single functions narrow it.
inline float c_library(double value) { return static_cast<float>(value); }

inline double ulps_apart(double a, double b)
{
    std::int64_t i[2];
    std::memcpy(&i[0], &a, sizeof a);
    std::memcpy(&i[1], &b, sizeof b);
    for (std::int64_t& v : i) v = v < 0 ? INT64_MIN - v : v;  // order the bit patterns like the values
    return a == b ? 0 : std::fabs(static_cast<double>(i[0] - i[1]));
}

#endif
