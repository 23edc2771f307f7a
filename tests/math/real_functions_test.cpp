// The real members: domain edges, the single bounds, the axis rules, with
// the C library as the oracle inside the domains.
#include "math_test_support.h"

#include <cfloat>
#include <limits>

namespace {
const float kInf = std::numeric_limits<float>::infinity();
const float kNan = std::numeric_limits<float>::quiet_NaN();
} // namespace

TEST_F(MathTest, SingleFunctionsClampAndRejectTheirDomainEdges)
{
    struct Case {
        const char* name;
        float (*f)(float);
        double (*oracle)(double);  // null: `expected` holds the result
        float x;
        float expected;
        bool domain_error;
    };
    const Case cases[] = {
        {"log", gmath_snolog, std::log, 2.0f, 0, false},
        {"log", gmath_snolog, nullptr, 0.0f, 0, true},
        {"log", gmath_snolog, nullptr, -0.0f, 0, true},
        {"log", gmath_snolog, nullptr, -1.0f, 0, true},
        {"log", gmath_snolog, nullptr, kInf, 1e38f, false},
        {"log10", gmath_snolog10, std::log10, 1e-45f, 0, false},
        {"log10", gmath_snolog10, nullptr, -2.0f, 0, true},
        {"acos", gmath_snoacos, std::acos, -1.0f, 0, false},
        {"acos", gmath_snoacos, nullptr, 1.0000001f, 0, true},
        {"asin", gmath_snoasin, nullptr, 1e-38f, 0, false},  // below 1e-37: flushed
        {"asin", gmath_snoasin, nullptr, -1.0000001f, 0, true},
        {"acosh", gmath_snoacosh, nullptr, 1.0f, 0, false},
        {"acosh", gmath_snoacosh, nullptr, 0.99999994f, 0, true},
        {"atanh", gmath_snoatanh, std::atanh, -0.5f, 0, false},
        {"atanh", gmath_snoatanh, nullptr, 1.0f, 0, true},
        {"atanh", gmath_snoatanh, nullptr, -1.0f, 0, true},
        {"sqrt", gmath_snosqrt, std::sqrt, 2.0f, 0, false},
        {"sqrt", gmath_snosqrt, nullptr, -1e-45f, 0, true},
        {"sqr", gmath_snosqr, nullptr, 2e19f, 1e38f, false},
        {"exp", gmath_snoexp, nullptr, 88.0f, 1e38f, false},  // 1.65e38 fits a float: clamped all the same
        {"exp", gmath_snoexp, nullptr, -86.0f, 0, false},     // 4.4e-38 is a normal float: flushed
        {"exp", gmath_snoexp, std::exp, -85.0f, 0, false},
        {"sinh", gmath_snosinh, nullptr, -kInf, -1e38f, false},
        {"cosh", gmath_snocosh, std::cosh, 3.0f, 0, false},
        {"tanh", gmath_snotanh, std::tanh, 0.5f, 0, false},
        {"10x", gmath_sno10x, nullptr, 39.0f, 1e38f, false},
        {"10x", gmath_sno10x, nullptr, -38.0f, 0, false},
        {"sin", gmath_snosin, std::sin, 1.0f, 0, false},
        {"sin", gmath_snosin, nullptr, kInf, 0, true},
        {"cos", gmath_snocos, nullptr, -kInf, 0, true},
        {"tan", gmath_snotan, std::tan, 1.5f, 0, false},
        {"asinh", gmath_snoasinh, std::asinh, -3.0f, 0, false},
        {"atan", gmath_snoatan, nullptr, kNan, 0, true},
        {"exp", gmath_snoexp, nullptr, kNan, 0, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.name << "(" << c.x << ")");
        gmath_clr_ematherr();
        const float expected = c.oracle ? static_cast<float>(c.oracle(c.x)) : c.expected;
        EXPECT_EQ(c.f(c.x), expected);
        EXPECT_EQ(gmath_ematherr(), c.domain_error ? 1 : 0);
    }
}

TEST_F(MathTest, PowerAndTwoArgumentHelpers)
{
    struct Case {
        const char* name;
        float (*f)(float, float);
        float a, b;
        float expected;
        bool domain_error;
    };
    const float pi = static_cast<float>(M_PI);
    const Case cases[] = {
        {"pwr", gmath_snopwr, -8, 3, -512, false},
        {"pwr", gmath_snopwr, -8, 1.0f / 3, 0, true},
        {"pwr", gmath_snopwr, 0, -1, 0, true},
        {"pwr", gmath_snopwr, 0, 0, 1, false},
        {"pwr", gmath_snopwr, 10, 40, 1e38f, false},
        {"pwr", gmath_snopwr, 2, kNan, 0, true},
        {"atan2", gmath_snoatan2, 0, -1, pi, false},
        {"atan2", gmath_snoatan2, -0.0f, -1, pi, false},  // atan2 itself gives -pi
        {"atan2", gmath_snoatan2, -3, 0, -pi / 2, false},
        {"atan2", gmath_snoatan2, 0, 0, 0, false},
        {"atan2", gmath_snoatan2, 1e-38f, 1, 0, false},
        {"atan2", gmath_snoatan2, 1, 1, pi / 4, false},
        {"magxy", gmath_magxy, 0, 0, 0, false},
        {"magxy", gmath_magxy, 3e38f, 3e38f, 1e38f, false},
        {"magxy", gmath_magxy, 3, -4, 5, false},
        {"magxy", gmath_magxy, 1e-38f, 0, 0, false},
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
    struct Case {
        const char* name;
        double (*f)(double, double);
        double y, x;
        double expected;
    };
    auto acosh = [](double x, double) { return gmath_dnoacosh(x); };
    auto asinh = [](double x, double) { return gmath_dnoasinh(x); };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Case exact[] = {
        {"atan2", gmath_dnoatan2, 0, -1, 3.141592653589793},
        {"atan2", gmath_dnoatan2, -0.0, -5, 3.141592653589793},
        {"atan2", gmath_dnoatan2, 0, 0, 0},
        {"atan2", gmath_dnoatan2, 2, 0, 1.5707963267948966},
        {"atan2", gmath_dnoatan2, -2, -0.0, -1.5707963267948966},
        {"atan2", gmath_dnoatan2, 0, 3, 0},
        {"atan2", gmath_dnoatan2, -1, -1, std::atan2(-1.0, -1.0)},
        {"acosh", acosh, 1, 0, 0},
        {"acosh", acosh, 1e300, 0, std::log(1e300)},  // x*x - 1 clamped: log(x + 1.34e154)
        {"asinh", asinh, -INFINITY, 0, -DBL_MAX},
    };
    for (const Case& c : exact) {
        SCOPED_TRACE(testing::Message() << c.name << "(" << c.y << ", " << c.x << ")");
        EXPECT_EQ(c.f(c.y, c.x), c.expected);
    }
    EXPECT_EQ(gmath_ematherr(), 0);
    for (double x : {1.0000001, 1.5, 2.0, 7.0, 1e100}) {
        SCOPED_TRACE(x);
        EXPECT_LE(ulps_apart(gmath_dnoacosh(x), std::acosh(x)), 2);
        EXPECT_LE(ulps_apart(gmath_dnoasinh(-x), std::asinh(-x)), 1);
        EXPECT_LE(ulps_apart(gmath_dnoatanh(1 / x - 1e-9), std::atanh(1 / x - 1e-9)), 1);
    }
    for (double x : {0.9999999999999999, -1.0, -2.0, nan}) {
        SCOPED_TRACE(x);
        gmath_clr_ematherr();
        EXPECT_EQ(gmath_dnoacosh(x), 0);
        EXPECT_EQ(gmath_ematherr(), 1);
    }
    for (double x : {1.0, -1.0, 2.0, nan}) {
        SCOPED_TRACE(x);
        gmath_clr_ematherr();
        EXPECT_EQ(gmath_dnoatanh(x), 0);
        EXPECT_EQ(gmath_ematherr(), 1);
    }
}
