// The single-precision elementary functions of one argument. Each computes
// in double: a domain error outside its domain, else the C library's value
// clamped to the single bounds. Most arguments need neither the domain
// test nor the clamp, and skip them on a screened range.
#include "math/math_error_state.h"
#include "platform/fp_environment.h"

#include <tql70/gmath.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>

using tql::math::kSingleBounds;
using tql::math::single_domain_error;
using tql::math::single_result;
using tql::platform::in_default_fp;

namespace {

// The domains.
bool defined_everywhere(float x) { return !std::isnan(x); }
bool finite(float x) { return std::isfinite(x); }
bool positive(float x) { return x > 0; }
bool not_negative(float x) { return x >= 0; }
bool within_one(float x) { return std::fabs(x) <= 1; }
bool inside_one(float x) { return std::fabs(x) < 1; }
bool at_least_one(float x) { return x >= 1; }

double ten_to(double x)
{
    return std::pow(10.0, x);
}

double square(double x)
{
    return x * x;
}

// The whole rule: a domain error outside the domain, else F computed in
// double and clamped.
template <double (*F)(double), bool (*Defined)(float)>
__attribute__((noinline)) float single_rule(float x)
{
    return Defined(x) ? single_result(F(static_cast<double>(x))) : single_domain_error();
}

// For x in [lo, hi] the result needs neither a domain error nor the clamp,
// and the function goes straight to the C library; the rest take Rule, the
// whole rule unless a function has a quicker one.
// Each range below keeps a margin: a NaN, an infinity, a result near the
// bounds or a result to flush always lands outside it.
template <double (*F)(double), bool (*Defined)(float), float (*Rule)(float) = single_rule<F, Defined>>
inline float screened(float x, float lo, float hi)
{
    if (__builtin_expect(x >= lo && x <= hi, 1)) {
        return static_cast<float>(F(static_cast<double>(x)));
    }
    return Rule(x);
}

// The same range taken on |x|, for the even and the odd functions.
template <double (*F)(double), bool (*Defined)(float), float (*Rule)(float) = single_rule<F, Defined>>
inline float screened_magnitude(float x, float lo, float hi)
{
    const float magnitude = std::fabs(x);
    if (__builtin_expect(magnitude >= lo && magnitude <= hi, 1)) {
        return static_cast<float>(F(static_cast<double>(x)));
    }
    return Rule(x);
}

// Past these arguments the results of the exponentials lie beyond the
// single bounds whatever their digits (e^88 is 1.6e38, e^-88 6e-39, sinh and
// cosh of 89 are 2.2e38, 10^39 and 10^-38): saturated or flushed at once.
constexpr float kLargest = 1e38f;

__attribute__((noinline)) float exp_rule(float x)
{
    return x >= 88 ? kLargest : x <= -88 ? 0.0f : single_rule<std::exp, defined_everywhere>(x);
}

__attribute__((noinline)) float ten_to_rule(float x)
{
    return x >= 39 ? kLargest : x <= -38 ? 0.0f : single_rule<ten_to, defined_everywhere>(x);
}

__attribute__((noinline)) float sinh_rule(float x)
{
    return x >= 89 ? kLargest : x <= -89 ? -kLargest : single_rule<std::sinh, defined_everywhere>(x);
}

__attribute__((noinline)) float cosh_rule(float x)
{
    return std::fabs(x) >= 89 ? kLargest : single_rule<std::cosh, defined_everywhere>(x);
}

// The odd functions equal x in double near 0 (sin, tan, asinh, ...), so an
// argument below the flush bound gives a result below it: 0, or the zero
// itself with its sign, as the clamp passes zeros. Such arguments are told
// from their bit patterns, by no floating-point operation, so they need no
// particular floating-point environment either. 1e-37f rounds below the
// bound, so the flushed magnitudes are those up to it.
static_assert(static_cast<double>(1e-37f) < kSingleBounds.smallest, "1e-37f is the last float flushed");

std::uint32_t magnitude_bits(float x)
{
    std::uint32_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    return bits & 0x7fffffffu;
}

const std::uint32_t kLastFlushedBits = magnitude_bits(1e-37f);

template <float (*Work)(float)>
inline float odd_function(float x)
{
    const std::uint32_t bits = magnitude_bits(x);
    if (bits <= kLastFlushedBits) {
        return bits == 0 ? x : 0.0f;
    }
    return in_default_fp(Work, x);
}

// Below this magnitude an odd function's argument takes the whole rule.
constexpr float kTiny = 1e-30f;

// The ranges: log and log10 of a positive float lie within +-104 and are 0
// only at 1; |sin| and |cos| of a float stay above 1e-9 away from 0 and
// |tan| below 7e8; e^87 and cosh 87 are about 6e37, sinh 87 3e37, e^-85
// 1.2e-37.
float sno_log(float x) { return screened<std::log, positive>(x, FLT_TRUE_MIN, FLT_MAX); }
float sno_log10(float x) { return screened<std::log10, positive>(x, FLT_TRUE_MIN, FLT_MAX); }
float sno_sqrt(float x) { return screened<std::sqrt, not_negative>(x, 0, FLT_MAX); }
float sno_acos(float x) { return screened<std::acos, within_one>(x, -1, 1); }
float sno_acosh(float x) { return screened<std::acosh, at_least_one>(x, 1, FLT_MAX); }
float sno_exp(float x) { return screened<std::exp, defined_everywhere, exp_rule>(x, -85, 87); }
float sno_10x(float x) { return screened<ten_to, defined_everywhere, ten_to_rule>(x, -36, 37); }
float sno_cos(float x) { return screened_magnitude<std::cos, finite>(x, 0, FLT_MAX); }
float sno_cosh(float x) { return screened_magnitude<std::cosh, defined_everywhere, cosh_rule>(x, 0, 87); }
float sno_sqr(float x) { return screened_magnitude<square, defined_everywhere>(x, 1e-18f, 1e19f); }
float sno_sinh(float x) { return screened_magnitude<std::sinh, defined_everywhere, sinh_rule>(x, kTiny, 87); }
float sno_asin(float x) { return screened_magnitude<std::asin, within_one>(x, kTiny, 1); }
float sno_atanh(float x) { return screened_magnitude<std::atanh, inside_one>(x, kTiny, 0.99999994f); }
float sno_asinh(float x) { return screened_magnitude<std::asinh, defined_everywhere>(x, kTiny, FLT_MAX); }
float sno_atan(float x) { return screened_magnitude<std::atan, defined_everywhere>(x, kTiny, FLT_MAX); }
float sno_tanh(float x) { return screened_magnitude<std::tanh, defined_everywhere>(x, kTiny, FLT_MAX); }
float sno_sin(float x) { return screened_magnitude<std::sin, finite>(x, kTiny, FLT_MAX); }
float sno_tan(float x) { return screened_magnitude<std::tan, finite>(x, kTiny, FLT_MAX); }

} // namespace

float gmath_sno10x(float x) { return in_default_fp(sno_10x, x); }
float gmath_snoacos(float x) { return in_default_fp(sno_acos, x); }
float gmath_snoacosh(float x) { return in_default_fp(sno_acosh, x); }
float gmath_snocos(float x) { return in_default_fp(sno_cos, x); }
float gmath_snocosh(float x) { return in_default_fp(sno_cosh, x); }
float gmath_snoexp(float x) { return in_default_fp(sno_exp, x); }
float gmath_snolog(float x) { return in_default_fp(sno_log, x); }
float gmath_snolog10(float x) { return in_default_fp(sno_log10, x); }
float gmath_snosqr(float x) { return in_default_fp(sno_sqr, x); }
float gmath_snosqrt(float x) { return in_default_fp(sno_sqrt, x); }

float gmath_snoasin(float x) { return odd_function<sno_asin>(x); }
float gmath_snoasinh(float x) { return odd_function<sno_asinh>(x); }
float gmath_snoatan(float x) { return odd_function<sno_atan>(x); }
float gmath_snoatanh(float x) { return odd_function<sno_atanh>(x); }
float gmath_snosin(float x) { return odd_function<sno_sin>(x); }
float gmath_snosinh(float x) { return odd_function<sno_sinh>(x); }
float gmath_snotan(float x) { return odd_function<sno_tan>(x); }
float gmath_snotanh(float x) { return odd_function<sno_tanh>(x); }
