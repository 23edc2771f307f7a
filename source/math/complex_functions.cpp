// The complex members in both precisions. One set of formulas, written on
// doubles, serves both: a precision supplies its clamp bounds, its modulus,
// logarithm and argument. Every intermediate and final part is clamped, so
// no infinity or NaN can arise from finite arguments; a logarithm of 0 or
// a division by 0 is a domain error that yields 0.
#include "math/math_error_state.h"
#include "math/real_functions.h"
#include "platform/fp_environment.h"

#include <tql70/gmath.h>

#include <cmath>

namespace {

using tql::math::Bounds;
using tql::platform::in_default_fp;

struct Cx {
    double re;
    double im;
};

struct SingleCx {
    float re;
    float im;
};

constexpr Cx kZero{0.0, 0.0};

struct DoublePrecision {
    static constexpr Bounds bounds = tql::math::kDoubleBounds;
    static double modulus(double re, double im) { return std::hypot(re, im); }
    static double log(double m) { return std::log(m); }
    static double arg(double im, double re) { return tql::math::axis_atan2(im, re); }
};

struct SinglePrecision {
    static constexpr Bounds bounds = tql::math::kSingleBounds;
    static double modulus(double re, double im) { return tql::math::clamp(std::hypot(re, im), bounds); }
    static double log(double m) { return tql::math::single_log(m); }
    static double arg(double im, double re) { return tql::math::single_atan2(im, re); }
};

Cx domain_error()
{
    tql::math::raise_math_error();
    return kZero;
}

template <class P>
double cl(double value)
{
    return tql::math::clamp(value, P::bounds);
}

template <class P>
Cx add(Cx a, Cx b)
{
    return {cl<P>(a.re + b.re), cl<P>(a.im + b.im)};
}

template <class P>
Cx sub(Cx a, Cx b)
{
    return {cl<P>(a.re - b.re), cl<P>(a.im - b.im)};
}

// Half of z, and -i times z.
template <class P>
Cx half(Cx z)
{
    return {cl<P>(0.5 * z.re), cl<P>(0.5 * z.im)};
}

Cx times_minus_i(Cx z)
{
    return {z.im, -z.re};
}

// The products are clamped before they meet, so two overflowing products
// never cancel into a NaN.
template <class P>
Cx mlt(Cx a, Cx b)
{
    return {cl<P>(cl<P>(a.re * b.re) - cl<P>(a.im * b.im)), cl<P>(cl<P>(a.im * b.re) + cl<P>(a.re * b.im))};
}

template <class P>
Cx div(Cx a, Cx b)
{
    const double d = cl<P>(cl<P>(b.re * b.re) + cl<P>(b.im * b.im));
    if (!(d > 0)) {
        return domain_error();
    }
    return mlt<P>(a, {b.re / d, -b.im / d});
}

template <class P>
Cx log(Cx z)
{
    const double m = P::modulus(z.re, z.im);
    if (!(m > 0)) {
        return domain_error();
    }
    return {cl<P>(P::log(m)), cl<P>(P::arg(z.im, z.re))};
}

// e^re * cos(im) and e^re * sin(im); an overflowing e^re saturates through
// the clamp, and a factor that is exactly 0 keeps the part 0.
template <class P>
Cx exp(Cx z)
{
    const double e = std::exp(z.re);
    const double c = std::cos(z.im);
    const double s = std::sin(z.im);
    return {cl<P>(c == 0 ? c : e * c), cl<P>(s == 0 ? s : e * s)};
}

template <class P>
Cx pwr(Cx z, Cx p)
{
    if (z.re == 0 && z.im == 0) {
        return kZero;
    }
    return exp<P>(mlt<P>(log<P>(z), p));
}

template <class P>
Cx sqr(Cx z)
{
    return pwr<P>(z, {2.0, 0.0});
}

template <class P>
Cx sqrt(Cx z)
{
    return pwr<P>(z, {0.5, 0.0});
}

template <class P>
Cx ten_to(Cx z)
{
    return pwr<P>({10.0, 0.0}, z);
}

template <class P>
Cx log10(Cx z)
{
    // The logarithm of 10 cut to nine digits; kept for the results it gives.
    return div<P>(log<P>(z), {2.30258509, 0.0});
}

// z*z + c, each part clamped.
template <class P>
Cx square_plus(Cx z, double c)
{
    return {cl<P>(cl<P>(cl<P>(z.re * z.re) - cl<P>(z.im * z.im)) + c), cl<P>(z.re * z.im * 2)};
}

// e^(iz) and e^(-iz).
template <class P>
Cx exp_iz(Cx z)
{
    return exp<P>({-z.im, z.re});
}

template <class P>
Cx exp_minus_iz(Cx z)
{
    return exp<P>({z.im, -z.re});
}

template <class P>
Cx sin(Cx z)
{
    const Cx d = sub<P>(exp_iz<P>(z), exp_minus_iz<P>(z));  // sin z = d / 2i
    return {cl<P>(0.5 * d.im), cl<P>(-0.5 * d.re)};
}

template <class P>
Cx cos(Cx z)
{
    return half<P>(add<P>(exp_iz<P>(z), exp_minus_iz<P>(z)));
}

template <class P>
Cx tan(Cx z)
{
    const Cx a = exp_iz<P>(z);
    const Cx b = exp_minus_iz<P>(z);
    return times_minus_i(div<P>(sub<P>(a, b), add<P>(a, b)));
}

template <class P>
Cx sinh(Cx z)
{
    return half<P>(sub<P>(exp<P>(z), exp<P>({-z.re, -z.im})));
}

template <class P>
Cx cosh(Cx z)
{
    return half<P>(add<P>(exp<P>(z), exp<P>({-z.re, -z.im})));
}

template <class P>
Cx tanh(Cx z)
{
    const Cx a = exp<P>(z);
    const Cx b = exp<P>({-z.re, -z.im});
    return div<P>(sub<P>(a, b), add<P>(a, b));
}

// asin z = -i log(iz + sqrt(1 - z^2)).
template <class P>
Cx asin(Cx z)
{
    const Cx w = square_plus<P>(z, -1.0);
    const Cx s = sqrt<P>({-w.re, -w.im});
    return times_minus_i(log<P>(add<P>({-z.im, z.re}, s)));
}

// acos z = -i log(z + sqrt(z^2 - 1)).
template <class P>
Cx acos(Cx z)
{
    return times_minus_i(log<P>(add<P>(z, sqrt<P>(square_plus<P>(z, -1.0)))));
}

// atan z = (i/2) log((i + z) / (i - z)).
template <class P>
Cx atan(Cx z)
{
    const Cx l = log<P>(div<P>({z.re, 1 + z.im}, {-z.re, 1 - z.im}));
    return {cl<P>(-0.5 * l.im), cl<P>(0.5 * l.re)};
}

// asinh z = log(z + sqrt(z^2 + 1)).
template <class P>
Cx asinh(Cx z)
{
    return log<P>(add<P>(z, sqrt<P>(square_plus<P>(z, 1.0))));
}

// acosh z = log(z + sqrt(z^2 - 1)).
template <class P>
Cx acosh(Cx z)
{
    return log<P>(add<P>(z, sqrt<P>(square_plus<P>(z, -1.0))));
}

// atanh z = log((1 + z) / (1 - z)) / 2.
template <class P>
Cx atanh(Cx z)
{
    return half<P>(log<P>(div<P>({1 + z.re, z.im}, {1 - z.re, -z.im})));
}

bool has_nan(Cx z)
{
    return std::isnan(z.re) || std::isnan(z.im);
}

// A NaN argument, or a NaN that the C library makes of an infinite one (the
// sine of an infinity), is a domain error: no member hands back a NaN.
template <Cx (*F)(Cx)>
Cx unary_double(double re, double im)
{
    const Cx r = F({re, im});
    return has_nan({re, im}) || has_nan(r) ? domain_error() : r;
}

template <Cx (*F)(Cx, Cx)>
Cx binary_double(double re1, double im1, double re2, double im2)
{
    const Cx r = F({re1, im1}, {re2, im2});
    return has_nan({re1, im1}) || has_nan({re2, im2}) || has_nan(r) ? domain_error() : r;
}

// Single precision: the arguments are clamped to the single bounds after
// widening and the result before narrowing.
SingleCx narrow(Cx z)
{
    return {static_cast<float>(cl<SinglePrecision>(z.re)), static_cast<float>(cl<SinglePrecision>(z.im))};
}

template <Cx (*F)(Cx)>
SingleCx unary_single(float re, float im)
{
    return narrow(unary_double<F>(cl<SinglePrecision>(re), cl<SinglePrecision>(im)));
}

template <Cx (*F)(Cx, Cx)>
SingleCx binary_single(float re1, float im1, float re2, float im2)
{
    using S = SinglePrecision;
    return narrow(binary_double<F>(cl<S>(re1), cl<S>(im1), cl<S>(re2), cl<S>(im2)));
}

// add and sub in double: plain part-by-part arithmetic, no clamp.
Cx plain_add(double re1, double im1, double re2, double im2)
{
    return {re1 + re2, im1 + im2};
}

Cx plain_sub(double re1, double im1, double re2, double im2)
{
    return {re1 - re2, im1 - im2};
}

template <typename T, typename R>
void put(const R& result, T* out_re, T* out_im)
{
    if (out_re) {
        *out_re = result.re;
    }
    if (out_im) {
        *out_im = result.im;
    }
}

} // namespace

#define TQL70_COMPLEX_UNARY(suffix, fn)                                                               \
    void gmath_cdno##suffix(double re, double im, double* out_re, double* out_im)                     \
    {                                                                                                 \
        put(in_default_fp(unary_double<fn<DoublePrecision>>, re, im), out_re, out_im);                \
    }                                                                                                 \
    void gmath_csno##suffix(float re, float im, float* out_re, float* out_im)                         \
    {                                                                                                 \
        put(in_default_fp(unary_single<fn<SinglePrecision>>, re, im), out_re, out_im);                \
    }

#define TQL70_COMPLEX_BINARY(suffix, fn)                                                              \
    void gmath_cdno##suffix(double re1, double im1, double re2, double im2, double* out_re,           \
                            double* out_im)                                                           \
    {                                                                                                 \
        put(in_default_fp(binary_double<fn<DoublePrecision>>, re1, im1, re2, im2), out_re, out_im);                      \
    }                                                                                                 \
    void gmath_csno##suffix(float re1, float im1, float re2, float im2, float* out_re, float* out_im) \
    {                                                                                                 \
        put(in_default_fp(binary_single<fn<SinglePrecision>>     , re1, im1, re2, im2), out_re,     \
            out_im);                                                                                  \
    }

// Plain sums and differences pass a NaN part through, as the arithmetic does.
void gmath_cdnoadd(double re1, double im1, double re2, double im2, double* out_re, double* out_im)
{
    put(in_default_fp(plain_add, re1, im1, re2, im2), out_re, out_im);
}

void gmath_cdnosub(double re1, double im1, double re2, double im2, double* out_re, double* out_im)
{
    put(in_default_fp(plain_sub, re1, im1, re2, im2), out_re, out_im);
}

void gmath_csnoadd(float re1, float im1, float re2, float im2, float* out_re, float* out_im)
{
    put(in_default_fp(binary_single<add<SinglePrecision>>, re1, im1, re2, im2), out_re, out_im);
}

void gmath_csnosub(float re1, float im1, float re2, float im2, float* out_re, float* out_im)
{
    put(in_default_fp(binary_single<sub<SinglePrecision>>, re1, im1, re2, im2), out_re, out_im);
}

TQL70_COMPLEX_BINARY(mlt, mlt)
TQL70_COMPLEX_BINARY(div, div)
TQL70_COMPLEX_BINARY(pwr, pwr)
TQL70_COMPLEX_UNARY(sqr, sqr)
TQL70_COMPLEX_UNARY(sqrt, sqrt)
TQL70_COMPLEX_UNARY(10x, ten_to)
TQL70_COMPLEX_UNARY(exp, exp)
TQL70_COMPLEX_UNARY(log, log)
TQL70_COMPLEX_UNARY(log10, log10)
TQL70_COMPLEX_UNARY(sin, sin)
TQL70_COMPLEX_UNARY(cos, cos)
TQL70_COMPLEX_UNARY(tan, tan)
TQL70_COMPLEX_UNARY(sinh, sinh)
TQL70_COMPLEX_UNARY(cosh, cosh)
TQL70_COMPLEX_UNARY(tanh, tanh)
TQL70_COMPLEX_UNARY(asin, asin)
TQL70_COMPLEX_UNARY(acos, acos)
TQL70_COMPLEX_UNARY(atan, atan)
TQL70_COMPLEX_UNARY(asinh, asinh)
TQL70_COMPLEX_UNARY(acosh, acosh)
TQL70_COMPLEX_UNARY(atanh, atanh)
