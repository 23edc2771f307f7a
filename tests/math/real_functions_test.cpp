// The real members of two arguments and the double inverse hyperbolics:
// domain edges, the bounds, the axis rules, with the C library as the
// oracle inside the domains.
#include "math_test_support.h"

#include <cfloat>
#include <cmath>

namespace {
const float kPi = static_cast<float>(M_PI);
} // namespace

TEST_F(MathTest, SingleFunctionsOfTwoArgumentsClampAndRejectTheirDomainEdges)
{
    struct Case { const char* name; float (*f)(float, float); float a, b; float expected; bool domain_error; };
    const Case cases[] = {
        {"pwr", gmath_snopwr, -8, 3, -512, false},
        {"pwr", gmath_snopwr, -8, 1.0f / 3, 0, true}, {"pwr", gmath_snopwr, 0, -1, 0, true},
        {"pwr", gmath_snopwr, 0, 0, 1, false}, {"pwr", gmath_snopwr, 10, 40, 1e38f, false},
        {"pwr", gmath_snopwr, 2, kNan, 0, true}, {"pwr", gmath_snopwr, 10, -40, 0, false},
        {"atan2", gmath_snoatan2, 0, -1, kPi, false},
        {"atan2", gmath_snoatan2, -0.0f, -1, kPi, false},  // atan2 itself gives -pi
        {"atan2", gmath_snoatan2, -3, 0, -kPi / 2, false}, {"atan2", gmath_snoatan2, 0, 0, 0, false},
        {"atan2", gmath_snoatan2, 1e-38f, 1, 0, false}, {"atan2", gmath_snoatan2, 1, 1, kPi / 4, false},
        {"atan2", gmath_snoatan2, 1e-38f, 0.01f, c_library(std::atan2(double(1e-38f), double(0.01f))), false},
        {"magxy", gmath_magxy, 0, 0, 0, false}, {"magxy", gmath_magxy, 3e38f, 3e38f, 1e38f, false},
        {"magxy", gmath_magxy, 3, -4, 5, false}, {"magxy", gmath_magxy, 1e-38f, 0, 0, false},
        {"magxy", gmath_magxy, kNan, 0, 0, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.name << "(" << c.a << ", " << c.b << ")");
        gmath_clr_ematherr();
        EXPECT_EQ(c.f(c.a, c.b), c.expected);
        EXPECT_EQ(gmath_ematherr(), c.domain_error ? 1 : 0);
    }
}

TEST_F(MathTest, DoubleHelpersFollowTheCLibraryInsideTheirDomains)
{
    struct Case { const char* name; double (*f)(double, double); double y, x; double expected; bool domain_error; };
    double (*acosh)(double, double) = [](double x, double) { return gmath_dnoacosh(x); };
    double (*atanh)(double, double) = [](double x, double) { return gmath_dnoatanh(x); };
    double (*asinh)(double, double) = [](double x, double) { return gmath_dnoasinh(x); };
    const double pi = 3.141592653589793;
    const Case cases[] = {
        {"atan2", gmath_dnoatan2, 0, -1, pi, false}, {"atan2", gmath_dnoatan2, -0.0, -5, pi, false},
        {"atan2", gmath_dnoatan2, 0, 0, 0, false}, {"atan2", gmath_dnoatan2, 2, 0, pi / 2, false},
        {"atan2", gmath_dnoatan2, -2, -0.0, -pi / 2, false},
        {"atan2", gmath_dnoatan2, -1, -1, std::atan2(-1.0, -1.0), false}, {"acosh", acosh, 1, 0, 0, false},
        {"acosh", acosh, 1e300, 0, std::log(1e300), false},  // x*x - 1 clamped: log(x + 1.34e154)
        {"acosh", acosh, 2e154, 0, std::log(std::sqrt(DBL_MAX) + 2e154), false},
        {"asinh", asinh, DBL_MIN, 0, DBL_MIN, false}, {"asinh", asinh, -DBL_MIN / 2, 0, 0, false},
        {"asinh", asinh, 1e-305, 0, 1e-305, false}, {"atanh", atanh, DBL_MIN / 4, 0, 0, false},
        {"asinh", asinh, NAN, 0, 0, true}, {"atanh", atanh, NAN, 0, 0, true},
        {"acosh", acosh, 0.9999999999999999, 0, 0, true}, {"acosh", acosh, NAN, 0, 0, true},
        {"asinh", asinh, -INFINITY, 0, -DBL_MAX, false},
        {"atanh", atanh, 1, 0, 0, true}, {"atanh", atanh, -1, 0, 0, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.name << "(" << c.y << ", " << c.x << ")");
        gmath_clr_ematherr();
        EXPECT_EQ(c.f(c.y, c.x), c.expected);
        EXPECT_EQ(gmath_ematherr(), c.domain_error ? 1 : 0);
    }
    EXPECT_TRUE(std::signbit(gmath_dnoasinh(-0.0)));
    EXPECT_FALSE(std::signbit(gmath_dnoatanh(-DBL_MIN / 2)));
    for (double x : {1.0000001, 1.5, 2.0, 7.0, 1e100, 1e154}) {
        SCOPED_TRACE(x);
        EXPECT_EQ(gmath_dnoacosh(x), std::acosh(x));
        EXPECT_LE(ulps_apart(gmath_dnoasinh(-x), std::asinh(-x)), 1);
        EXPECT_LE(ulps_apart(gmath_dnoatanh(1 / x - 1e-9), std::atanh(1 / x - 1e-9)), 1);
    }
}
