// The single-precision functions of one argument: domain edges, the single
// bounds, the ranges that skip the clamp and the quick answers outside
// them, with the C library as the oracle in between.
#include "math_test_support.h"

#include <cfloat>
#include <cmath>

TEST_F(MathTest, SingleFunctionsClampAndRejectTheirDomainEdges)
{
    struct Case { const char* name; float (*f)(float); float x; float expected; bool domain_error; };
    const float above_flush = std::nextafter(1e-37f, 1.0f);  // the first float kept
    const Case cases[] = {
        {"log", gmath_snolog, 2, c_library(std::log(2.0)), false}, {"log", gmath_snolog, 0, 0, true},
        {"log", gmath_snolog, -0.0f, 0, true}, {"log", gmath_snolog, kInf, 1e38f, false},
        {"log10", gmath_snolog10, 1e-45f, c_library(std::log10(double(1e-45f))), false},
        {"acos", gmath_snoacos, -1, c_library(std::acos(-1.0)), false}, {"acos", gmath_snoacos, 1.0000001f, 0, true},
        {"asin", gmath_snoasin, 1e-38f, 0, false}, {"asin", gmath_snoasin, -1.0000001f, 0, true},
        {"acosh", gmath_snoacosh, 1, 0, false}, {"acosh", gmath_snoacosh, 0.99999994f, 0, true},
        {"acosh", gmath_snoacosh, kInf, 1e38f, false},
        {"atanh", gmath_snoatanh, -0.5f, c_library(std::atanh(-0.5)), false},
        {"atanh", gmath_snoatanh, 1, 0, true}, {"atanh", gmath_snoatanh, -1e-36f, -1e-36f, false},
        {"sqrt", gmath_snosqrt, 2, c_library(std::sqrt(2.0)), false}, {"sqrt", gmath_snosqrt, -1e-45f, 0, true},
        {"sqrt", gmath_snosqrt, kInf, 1e38f, false}, {"sqr", gmath_snosqr, 2e19f, 1e38f, false},
        {"sqr", gmath_snosqr, -1e-19f, 0, false}, {"sqr", gmath_snosqr, -3, 9, false},
        {"exp", gmath_snoexp, 87.5f, 1e38f, false},  // 1.0017e38 fits a float: clamped all the same
        {"exp", gmath_snoexp, kInf, 1e38f, false},
        {"exp", gmath_snoexp, -86, 0, false},  // 4.4e-38 is a normal float: flushed
        {"exp", gmath_snoexp, -85, c_library(std::exp(-85.0)), false}, {"exp", gmath_snoexp, -kInf, 0, false},
        {"exp", gmath_snoexp, kNan, 0, true}, {"sinh", gmath_snosinh, -kInf, -1e38f, false},
        {"sinh", gmath_snosinh, -88.5f, -1e38f, false}, {"sinh", gmath_snosinh, 1e-36f, 1e-36f, false},
        {"cosh", gmath_snocosh, 3, c_library(std::cosh(3.0)), false},
        {"cosh", gmath_snocosh, 88, c_library(std::cosh(88.0)), false}, {"cosh", gmath_snocosh, -88.5f, 1e38f, false},
        {"cosh", gmath_snocosh, kNan, 0, true}, {"tanh", gmath_snotanh, 0.5f, c_library(std::tanh(0.5)), false},
        {"10x", gmath_sno10x, 38.5f, 1e38f, false}, {"10x", gmath_sno10x, -37.5f, 0, false},
        {"10x", gmath_sno10x, -36.5f, c_library(std::pow(10.0, -36.5)), false},
        {"sin", gmath_snosin, 1, c_library(std::sin(1.0)), false}, {"sin", gmath_snosin, 1e-37f, 0, false},
        {"sin", gmath_snosin, above_flush, above_flush, false}, {"sin", gmath_snosin, kInf, 0, true},
        {"sin", gmath_snosin, kNan, 0, true}, {"cos", gmath_snocos, -kInf, 0, true},
        {"tan", gmath_snotan, 1.5f, c_library(std::tan(1.5)), false},
        {"asinh", gmath_snoasinh, -3, c_library(std::asinh(-3.0)), false},
        {"asinh", gmath_snoasinh, -kInf, -1e38f, false}, {"atan", gmath_snoatan, kNan, 0, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.name << "(" << c.x << ")");
        gmath_clr_ematherr();
        EXPECT_EQ(c.f(c.x), c.expected);
        EXPECT_EQ(gmath_ematherr(), c.domain_error ? 1 : 0);
    }
    // A zero keeps its sign; a flushed result is a plain 0.
    for (float (*odd)(float) : {gmath_snosin, gmath_snotan, gmath_snoasinh, gmath_snoatanh}) {
        EXPECT_TRUE(std::signbit(odd(-0.0f)));
        EXPECT_FALSE(std::signbit(odd(-1e-38f)));
    }
    EXPECT_TRUE(std::signbit(gmath_snosqrt(-0.0f)));
}
