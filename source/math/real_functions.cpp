// The real members of two arguments (gmath_snoatan2, gmath_snopwr,
// gmath_magxy, gmath_dnoatan2) and the double-precision inverse
// hyperbolics. Each checks its domain, calls the C library and clamps.
#include "math/real_functions.h"

#include "math/math_error_state.h"
#include "platform/fp_environment.h"

#include <tql70/gmath.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>

using tql::math::clamp;
using tql::math::double_domain_error;
using tql::math::kDoubleBounds;
using tql::math::kSingleBounds;
using tql::math::single_domain_error;
using tql::math::single_result;
using tql::platform::in_default_fp;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kHalfPi = 1.5707963267948966;

// A y below the flush bound over a finite x of 1 or more makes an angle
// below it: 0 without the C library. (Over an infinite x the angle is an
// exact zero, which keeps the sign of y.)
float sno_atan2(float y, float x)
{
    if (std::isnan(y) || std::isnan(x)) {
        return single_domain_error();
    }
    if (x >= 1 && x <= FLT_MAX && std::fabs(y) < kSingleBounds.smallest) {
        return 0.0f;
    }
    return static_cast<float>(tql::math::single_atan2(y, x));
}

// Undefined where the result is not real (a negative base to a finite
// non-integral power) or infinite (0 to a negative power).
__attribute__((noinline)) float sno_pwr_rule(float x, float y)
{
    if (std::isnan(x) || std::isnan(y) || (x == 0 && y < 0) ||
        (x < 0 && std::isfinite(y) && y != std::trunc(y))) {
        return single_domain_error();
    }
    return single_result(std::pow(static_cast<double>(x), static_cast<double>(y)));
}

// A positive finite base to a finite power is always defined, and its
// power is positive and never a NaN: the clamp reduces to a minimum and a
// flush, done without branches since powers far outside the bounds are
// common.
float sno_pwr(float x, float y)
{
    if (__builtin_expect(x > 0 && x <= FLT_MAX && std::fabs(y) <= FLT_MAX, 1)) {
        const double power = std::min(std::pow(static_cast<double>(x), static_cast<double>(y)), kSingleBounds.largest);
        return static_cast<float>(power >= kSingleBounds.smallest ? power : 0.0);
    }
    return sno_pwr_rule(x, y);
}

float magxy(float x, float y)
{
    if (std::isnan(x) || std::isnan(y)) {
        return single_domain_error();
    }
    if (x == 0 && y == 0) {
        return 0.0f;
    }
    return single_result(std::hypot(static_cast<double>(x), static_cast<double>(y)));
}

// log(sqrt(w) + x) with w = x*x - 1 clamped. Up to 1e154 the clamp of w
// does not act and the value is acosh(x), which the C library computes
// without rounding each step: a tail call. Above about 1.34e154 the clamp shows and the
// formula is taken as written, w formed as (x-1)(x+1): the result is
// log(x + 1.34e154).
__attribute__((noinline)) double dno_acosh_rule(double x)
{
    if (!(x >= 1)) {
        return double_domain_error();  // w < 0, or sqrt(w) + x < 0, or a NaN
    }
    const double w = clamp((x - 1) * (x + 1), kDoubleBounds);
    return clamp(std::log(std::sqrt(w) + x), kDoubleBounds);
}

// The odd inverse hyperbolics equal x in double below 2^-28, so an
// argument under DBL_MIN (a zero or a subnormal: no exponent bits) gives a
// result under it, flushed to 0 at once with no floating-point operation,
// whatever the caller's floating-point environment. From 1e-300 up the C
// library's result needs no clamp (|asinh| stays below 711, |atanh| below
// 19): a tail call. The rest take the whole rule.
template <double (*Work)(double)>
inline double odd_double(double x)
{
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    const std::uint64_t magnitude = bits & 0x7fffffffffffffffu;
    if (magnitude < 0x0010000000000000u) {
        return magnitude == 0 ? x : 0.0;
    }
    return in_default_fp(Work, x);
}

constexpr double kDoubleTiny = 1e-300;

__attribute__((noinline)) double dno_asinh_rule(double x)
{
    return std::isnan(x) ? double_domain_error() : clamp(std::asinh(x), kDoubleBounds);
}

__attribute__((noinline)) double dno_atanh_rule(double x)
{
    return std::fabs(x) < 1 ? clamp(std::atanh(x), kDoubleBounds) : double_domain_error();
}

double dno_acosh(double x)
{
    return x >= 1 && x <= 1e154 ? std::acosh(x) : dno_acosh_rule(x);
}

double dno_asinh(double x)
{
    const double magnitude = std::fabs(x);
    return magnitude >= kDoubleTiny && magnitude <= DBL_MAX ? std::asinh(x) : dno_asinh_rule(x);
}

double dno_atanh(double x)
{
    const double magnitude = std::fabs(x);
    return magnitude >= kDoubleTiny && magnitude < 1 ? std::atanh(x) : dno_atanh_rule(x);
}

} // namespace

namespace tql::math {

double axis_atan2(double y, double x)
{
    if (x == 0) {
        return y > 0 ? kHalfPi : y < 0 ? -kHalfPi : 0.0;
    }
    if (y == 0) {
        if (x > 0) {
            return 0.0;
        }
        if (x < 0) {
            return kPi;
        }
    }
    return std::atan2(y, x);
}

double single_log(double x)
{
    return x > 0 ? static_cast<float>(clamp(std::log(x), kSingleBounds)) : single_domain_error();
}

double single_atan2(double y, double x)
{
    const double angle = axis_atan2(y, x);
    return static_cast<float>(x == 0 || y == 0 ? angle : clamp(angle, kSingleBounds));
}

} // namespace tql::math

float gmath_magxy(float x, float y) { return in_default_fp(magxy, x, y); }
double gmath_dnoatan2(double y, double x) { return in_default_fp(tql::math::axis_atan2, y, x); }

float gmath_snoatan2(float y, float x) { return in_default_fp(sno_atan2, y, x); }
float gmath_snopwr(float x, float y) { return in_default_fp(sno_pwr, x, y); }

double gmath_dnoacosh(double x) { return in_default_fp(dno_acosh, x); }
double gmath_dnoasinh(double x) { return odd_double<dno_asinh>(x); }
double gmath_dnoatanh(double x) { return odd_double<dno_atanh>(x); }
