// The real members: domain edges, the single bounds, the axis rules, with
// the C library as the oracle inside the domains.
#include "math_test_support.h"

#include <cfloat>
#include <cmath>
#include <limits>

namespace {
const float kInf = std::numeric_limits<float>::infinity();
const float kNan = std::numeric_limits<float>::quiet_NaN();
const float kPi = static_cast<float>(M_PI);

template <float (*F)(float)>
float one(float x, float) { return F(x); }

float c_library(double value) { return static_cast<float>(value); }
} // namespace

TEST_F(MathTest, SingleFunctionsClampAndRejectTheirDomainEdges)
{
    struct Case { const char* name; float (*f)(float, float); float a, b; float expected; bool domain_error; };
    const Case cases[] = {
        {"log", one<gmath_snolog>, 2, 0, c_library(std::log(2.0)), false}, {"log", one<gmath_snolog>, 0, 0, 0, true},
        {"log", one<gmath_snolog>, -0.0f, 0, 0, true}, {"log", one<gmath_snolog>, kInf, 0, 1e38f, false},
        {"log10", one<gmath_snolog10>, 1e-45f, 0, c_library(std::log10(double(1e-45f))), false},
        {"acos", one<gmath_snoacos>, -1, 0, c_library(std::acos(-1.0)), false},
        {"acos", one<gmath_snoacos>, 1.0000001f, 0, 0, true},
        {"asin", one<gmath_snoasin>, 1e-38f, 0, 0, false},  // below 1e-37: flushed
        {"asin", one<gmath_snoasin>, -1.0000001f, 0, 0, true}, {"acosh", one<gmath_snoacosh>, 1, 0, 0, false},
        {"acosh", one<gmath_snoacosh>, 0.99999994f, 0, 0, true},
        {"atanh", one<gmath_snoatanh>, -0.5f, 0, c_library(std::atanh(-0.5)), false},
        {"atanh", one<gmath_snoatanh>, 1, 0, 0, true},
        {"sqrt", one<gmath_snosqrt>, 2, 0, c_library(std::sqrt(2.0)), false},
        {"sqrt", one<gmath_snosqrt>, -1e-45f, 0, 0, true}, {"sqr", one<gmath_snosqr>, 2e19f, 0, 1e38f, false},
        {"exp", one<gmath_snoexp>, 88, 0, 1e38f, false},  // 1.65e38 fits a float: clamped all the same
        {"exp", one<gmath_snoexp>, -86, 0, 0, false},     // 4.4e-38 is a normal float: flushed
        {"exp", one<gmath_snoexp>, -85, 0, c_library(std::exp(-85.0)), false},
        {"exp", one<gmath_snoexp>, kNan, 0, 0, true}, {"sinh", one<gmath_snosinh>, -kInf, 0, -1e38f, false},
        {"cosh", one<gmath_snocosh>, 3, 0, c_library(std::cosh(3.0)), false},
        {"tanh", one<gmath_snotanh>, 0.5f, 0, c_library(std::tanh(0.5)), false},
        {"10x", one<gmath_sno10x>, 39, 0, 1e38f, false}, {"10x", one<gmath_sno10x>, -38, 0, 0, false},
        {"sin", one<gmath_snosin>, 1, 0, c_library(std::sin(1.0)), false},
        {"sin", one<gmath_snosin>, kInf, 0, 0, true}, {"cos", one<gmath_snocos>, -kInf, 0, 0, true},
        {"tan", one<gmath_snotan>, 1.5f, 0, c_library(std::tan(1.5)), false},
        {"asinh", one<gmath_snoasinh>, -3, 0, c_library(std::asinh(-3.0)), false},
        {"atan", one<gmath_snoatan>, kNan, 0, 0, true}, {"pwr", gmath_snopwr, -8, 3, -512, false},
        {"pwr", gmath_snopwr, -8, 1.0f / 3, 0, true}, {"pwr", gmath_snopwr, 0, -1, 0, true},
        {"pwr", gmath_snopwr, 0, 0, 1, false}, {"pwr", gmath_snopwr, 10, 40, 1e38f, false},
        {"pwr", gmath_snopwr, 2, kNan, 0, true}, {"atan2", gmath_snoatan2, 0, -1, kPi, false},
        {"atan2", gmath_snoatan2, -0.0f, -1, kPi, false},  // atan2 itself gives -pi
        {"atan2", gmath_snoatan2, -3, 0, -kPi / 2, false}, {"atan2", gmath_snoatan2, 0, 0, 0, false},
        {"atan2", gmath_snoatan2, 1e-38f, 1, 0, false}, {"atan2", gmath_snoatan2, 1, 1, kPi / 4, false},
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
        {"acosh", acosh, 0.9999999999999999, 0, 0, true}, {"acosh", acosh, -2, 0, 0, true},
        {"acosh", acosh, NAN, 0, 0, true}, {"asinh", asinh, -INFINITY, 0, -DBL_MAX, false},
        {"atanh", atanh, 1, 0, 0, true}, {"atanh", atanh, -1, 0, 0, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.name << "(" << c.y << ", " << c.x << ")");
        gmath_clr_ematherr();
        EXPECT_EQ(c.f(c.y, c.x), c.expected);
        EXPECT_EQ(gmath_ematherr(), c.domain_error ? 1 : 0);
    }
    for (double x : {1.0000001, 1.5, 2.0, 7.0, 1e100}) {
        SCOPED_TRACE(x);
        EXPECT_LE(ulps_apart(gmath_dnoacosh(x), std::acosh(x)), 2);
        EXPECT_LE(ulps_apart(gmath_dnoasinh(-x), std::asinh(-x)), 1);
        EXPECT_LE(ulps_apart(gmath_dnoatanh(1 / x - 1e-9), std::atanh(1 / x - 1e-9)), 1);
    }
}
