// The real members: single-precision elementary functions computed in
// double, the double-precision inverse hyperbolics, gmath_dnoatan2 and
// gmath_magxy. Each checks its domain, calls the C library and clamps.
#include "math/real_functions.h"

#include "math/math_error_state.h"
#include "platform/fp_environment.h"

#include <tql70/gmath.h>

#include <cmath>

using tql::math::clamp;
using tql::math::kDoubleBounds;
using tql::math::kSingleBounds;
using tql::platform::in_default_fp;

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kHalfPi = 1.5707963267948966;

float single_result(double value)
{
    return static_cast<float>(clamp(value, kSingleBounds));
}

float single_domain_error()
{
    tql::math::raise_math_error();
    return 0.0f;
}

double double_domain_error()
{
    tql::math::raise_math_error();
    return 0.0;
}

// The single-precision functions whose only undefined argument is a NaN.
template <double (*F)(double)>
float everywhere(float x)
{
    return std::isnan(x) ? single_domain_error() : single_result(F(x));
}

// The circular functions: undefined at the infinities too.
template <double (*F)(double)>
float finite_only(float x)
{
    return std::isfinite(x) ? single_result(F(x)) : single_domain_error();
}

double ten_to(double x)
{
    return std::pow(10.0, x);
}

double square(double x)
{
    return x * x;
}

float sno_acos(float x)
{
    return std::fabs(x) <= 1 ? single_result(std::acos(static_cast<double>(x))) : single_domain_error();
}

float sno_asin(float x)
{
    return std::fabs(x) <= 1 ? single_result(std::asin(static_cast<double>(x))) : single_domain_error();
}

float sno_acosh(float x)
{
    return x >= 1 ? single_result(std::acosh(static_cast<double>(x))) : single_domain_error();
}

float sno_atanh(float x)
{
    return std::fabs(x) < 1 ? single_result(std::atanh(static_cast<double>(x))) : single_domain_error();
}

float sno_log(float x)
{
    return x > 0 ? single_result(std::log(static_cast<double>(x))) : single_domain_error();
}

float sno_log10(float x)
{
    return x > 0 ? single_result(std::log10(static_cast<double>(x))) : single_domain_error();
}

float sno_sqrt(float x)
{
    return x >= 0 ? single_result(std::sqrt(static_cast<double>(x))) : single_domain_error();
}

float sno_atan2(float y, float x)
{
    if (std::isnan(y) || std::isnan(x)) {
        return single_domain_error();
    }
    return static_cast<float>(tql::math::single_atan2(y, x));
}

// Undefined where the result is not real (a negative base to a finite
// non-integral power) or infinite (0 to a negative power).
float sno_pwr(float x, float y)
{
    if (std::isnan(x) || std::isnan(y) || (x == 0 && y < 0) ||
        (x < 0 && std::isfinite(y) && y != std::trunc(y))) {
        return single_domain_error();
    }
    return single_result(std::pow(static_cast<double>(x), static_cast<double>(y)));
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

// log(sqrt(w) + x) with w = x*x - 1 clamped. w is formed as (x-1)(x+1) and,
// below 2, the logarithm as log1p of the sum less 1: the same values,
// without the cancellation near 1. Above about 1.3e154 the clamp of w
// shows: the result is log(x + 1.34e154).
double dno_acosh(double x)
{
    if (!(x >= 1)) {
        return double_domain_error();  // w < 0, or sqrt(w) + x < 0, or a NaN
    }
    const double w = clamp((x - 1) * (x + 1), kDoubleBounds);
    const double root = std::sqrt(w);
    return clamp(x < 2 ? std::log1p(root + (x - 1)) : std::log(root + x), kDoubleBounds);
}

double dno_asinh(double x)
{
    return std::isnan(x) ? double_domain_error() : clamp(std::asinh(x), kDoubleBounds);
}

double dno_atanh(double x)
{
    return std::fabs(x) < 1 ? clamp(std::atanh(x), kDoubleBounds) : double_domain_error();
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

float gmath_sno10x(float x) { return in_default_fp(everywhere<ten_to>, x); }
float gmath_snoacos(float x) { return in_default_fp(sno_acos, x); }
float gmath_snoacosh(float x) { return in_default_fp(sno_acosh, x); }
float gmath_snoasin(float x) { return in_default_fp(sno_asin, x); }
float gmath_snoasinh(float x) { return in_default_fp(everywhere<std::asinh>, x); }
float gmath_snoatan(float x) { return in_default_fp(everywhere<std::atan>, x); }
float gmath_snoatan2(float y, float x) { return in_default_fp(sno_atan2, y, x); }
float gmath_snoatanh(float x) { return in_default_fp(sno_atanh, x); }
float gmath_snocos(float x) { return in_default_fp(finite_only<std::cos>, x); }
float gmath_snocosh(float x) { return in_default_fp(everywhere<std::cosh>, x); }
float gmath_snoexp(float x) { return in_default_fp(everywhere<std::exp>, x); }
float gmath_snolog(float x) { return in_default_fp(sno_log, x); }
float gmath_snolog10(float x) { return in_default_fp(sno_log10, x); }
float gmath_snopwr(float x, float y) { return in_default_fp(sno_pwr, x, y); }
float gmath_snosin(float x) { return in_default_fp(finite_only<std::sin>, x); }
float gmath_snosinh(float x) { return in_default_fp(everywhere<std::sinh>, x); }
float gmath_snosqr(float x) { return in_default_fp(everywhere<square>, x); }
float gmath_snosqrt(float x) { return in_default_fp(sno_sqrt, x); }
float gmath_snotan(float x) { return in_default_fp(finite_only<std::tan>, x); }
float gmath_snotanh(float x) { return in_default_fp(everywhere<std::tanh>, x); }

double gmath_dnoacosh(double x) { return in_default_fp(dno_acosh, x); }
double gmath_dnoasinh(double x) { return in_default_fp(dno_asinh, x); }
double gmath_dnoatanh(double x) { return in_default_fp(dno_atanh, x); }
