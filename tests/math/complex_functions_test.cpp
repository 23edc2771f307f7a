// The complex members of both precisions: std::complex as the oracle for
// the elementary functions, then the clamps, domain errors and NaNs.
#include "math_test_support.h"

#include <cfloat>
#include <complex>
#include <functional>
#include <limits>

namespace {

using Z = std::complex<double>;
using DoubleMember = void (*)(double, double, double*, double*);
using SingleMember = void (*)(float, float, float*, float*);

// `oracle` gives the expected value; for the inverse functions, whose
// logarithmic formulas may pick another branch than std::complex (acos of
// -0.5+0.3i), it is the forward function, which must map the result back.
struct Member { const char* name; DoubleMember d; SingleMember s; Z (*oracle)(const Z&); bool inverse = false; };

Z sqr(const Z& z) { return z * z; }
Z ten_to(const Z& z) { return std::pow(Z(10), z); }
Z short_log10(const Z& z) { return std::log(z) / 2.30258509; }  // the member's nine-digit divisor

const Member kMembers[] = {
    {"sqr", gmath_cdnosqr, gmath_csnosqr, sqr}, {"sqrt", gmath_cdnosqrt, gmath_csnosqrt, std::sqrt},
    {"10x", gmath_cdno10x, gmath_csno10x, ten_to}, {"exp", gmath_cdnoexp, gmath_csnoexp, std::exp},
    {"log", gmath_cdnolog, gmath_csnolog, std::log}, {"log10", gmath_cdnolog10, gmath_csnolog10, short_log10},
    {"sin", gmath_cdnosin, gmath_csnosin, std::sin}, {"cos", gmath_cdnocos, gmath_csnocos, std::cos},
    {"tan", gmath_cdnotan, gmath_csnotan, std::tan}, {"sinh", gmath_cdnosinh, gmath_csnosinh, std::sinh},
    {"cosh", gmath_cdnocosh, gmath_csnocosh, std::cosh}, {"tanh", gmath_cdnotanh, gmath_csnotanh, std::tanh},
    {"asin", gmath_cdnoasin, gmath_csnoasin, std::sin, true},
    {"acos", gmath_cdnoacos, gmath_csnoacos, std::cos, true},
    {"atan", gmath_cdnoatan, gmath_csnoatan, std::tan, true},
    {"asinh", gmath_cdnoasinh, gmath_csnoasinh, std::sinh, true},
    {"acosh", gmath_cdnoacosh, gmath_csnoacosh, std::cosh, true},
    {"atanh", gmath_cdnoatanh, gmath_csnoatanh, std::tanh, true},
};

} // namespace

TEST_F(MathTest, ComplexMembersAgreeWithStdComplexOffTheBranchCuts)
{
    for (const Member& m : kMembers) {
        for (Z z : {Z(1, 2), Z(-0.5, 0.3), Z(0.2, -1.5), Z(-2, -0.7)}) {
            SCOPED_TRACE(testing::Message() << m.name << z);
            double re, im;
            m.d(z.real(), z.imag(), &re, &im);
            float sre, sim;
            m.s(static_cast<float>(z.real()), static_cast<float>(z.imag()), &sre, &sim);
            const Z got(re, im);
            const Z single(sre, sim);
            if (m.inverse) {
                EXPECT_LE(std::abs(m.oracle(got) - z), 1e-12 * std::abs(z));
                EXPECT_LE(std::abs(m.oracle(single) - z), 1e-5 * std::abs(z));
            } else {
                const Z want = m.oracle(z);
                EXPECT_LE(std::abs(got - want), 1e-12 * std::abs(want));
                EXPECT_LE(std::abs(single - want), 1e-5 * std::abs(want));
            }
        }
    }
    EXPECT_EQ(gmath_ematherr(), 0);
}

TEST_F(MathTest, ComplexClampsDomainErrorsAndNaNs)
{
    using Binary = void (*)(double, double, double, double, double*, double*);
    auto unary = [](DoubleMember f) {
        return [f](double a, double b, double, double, double* re, double* im) { f(a, b, re, im); };
    };
    // Single members, results widened; the real part alone (a null pointer
    // is skipped) is written as the imaginary one too.
    auto single = [](SingleMember f) {
        return [f](double a, double b, double, double, double* re, double* im) {
            float part = -1;
            f(float(a), float(b), &part, nullptr);
            *re = *im = part;
        };
    };
    auto single_add = [](double a, double b, double c, double d, double* re, double* im) {
        float r, i;
        gmath_csnoadd(float(a), float(b), float(c), float(d), &r, &i);
        *re = r;
        *im = i;
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    struct Case {
        const char* what;
        std::function<void(double, double, double, double, double*, double*)> f;
        double a, b, c, d;
        double re, im;
        bool domain_error;
    };
    const Case cases[] = {
        {"log at zero", unary(gmath_cdnolog), 0, 0, 0, 0, 0, 0, true},
        {"zero to the zero", Binary(gmath_cdnopwr), 0, 0, 0, 0, 0, 0, false},
        {"divide by zero", Binary(gmath_cdnodiv), 1, 1, 0, 0, 0, 0, true},
        {"divisor's square underflows", Binary(gmath_cdnodiv), 1, 1, 1e-160, 1e-160, 0, 0, true},
        {"divisor just kept", Binary(gmath_cdnodiv), 1e-300, 0, 1.5e-154, 0, 1e-300 * (1.5e-154 / (1.5e-154 * 1.5e-154)), 0, false},
        {"exp overflows, negative part", unary(gmath_cdnoexp), 1000, 3, 0, 0, -DBL_MAX, DBL_MAX, false},
        {"products cancel without a NaN", Binary(gmath_cdnomlt), 1e308, 1e308, 1e308, 1e308, 0, DBL_MAX, false},
        {"subnormal product flushed", Binary(gmath_cdnomlt), 1e-200, 0, 1e-120, 0, 0, 0, false},
        {"add is not clamped", Binary(gmath_cdnoadd), DBL_MAX, 1, DBL_MAX, 2, inf, 3, false},
        {"atan at i", unary(gmath_cdnoatan), 0, 1, 0, 0, 0, 0, true},
        {"NaN argument", unary(gmath_cdnoexp), nan, 0, 0, 0, 0, 0, true},
        {"sine of an infinity", unary(gmath_cdnosin), inf, 0, 0, 0, 0, 0, true},
        {"NaN exponent", Binary(gmath_cdnopwr), 2, 0, nan, 0, 0, 0, true},
        {"single modulus below 1e-37", single(gmath_csnolog), 1e-38, 0, 0, 0, 0, 0, true},
        {"single log of -2", single(gmath_csnolog), -2, 0, 0, 0, float(std::log(2.0)), float(std::log(2.0)), false},
        {"single exp clamps at 1e38", single(gmath_csnoexp), 100, 0, 0, 0, 1e38f, 1e38f, false},
        {"single add clamps", single_add, 3e38, 1e-38, 3e38, 0, 1e38f, 0, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        gmath_clr_ematherr();
        double re = -1, im = -1;
        c.f(c.a, c.b, c.c, c.d, &re, &im);
        EXPECT_EQ(re, c.re);
        EXPECT_EQ(im, c.im);
        EXPECT_EQ(gmath_ematherr(), c.domain_error ? 1 : 0);
    }
}
