// Saturating rounding and truncation to int, and the small conversions.
// The limits are +-2147483647: the lower one is kept symmetric with the
// upper, one above the smallest int.
#include "platform/fp_environment.h"

#include <tql70/gmath.h>

#include <climits>
#include <cmath>

using tql::platform::in_default_fp;

namespace {

constexpr double kLimit = 2147483647.0;

int saturate(double value)
{
    if (value > kLimit) {
        return INT_MAX;
    }
    if (value < -kLimit) {
        return -INT_MAX;
    }
    return std::isnan(value) ? 0 : static_cast<int>(value);
}

// Adds or subtracts one half, then truncates: halves round away from zero.
// The addition rounds to nearest first, so 0.49999999999999994 gives 1.
int round_half_away(double x)
{
    return saturate(x >= 0 ? x + 0.5 : x - 0.5);
}

double round_to_double(double x)
{
    return round_half_away(x);
}

float to_float(int x)
{
    return static_cast<float>(x);
}

} // namespace

int gmath_eeround(double x) { return in_default_fp(round_half_away, x); }
int gmath_eelround(double x) { return in_default_fp(round_half_away, x); }
double gmath_eedround(double x) { return in_default_fp(round_to_double, x); }
int gmath_eetrunc(double x) { return in_default_fp(saturate, x); }
int gmath_eedtrunc(double x) { return in_default_fp(saturate, x); }
float gmath_eefabs(float x) { return std::fabs(x); }
float gmath_eefloat(int x) { return in_default_fp(to_float, x); }

int gmath_eeiabs(int x)
{
    // Negated in unsigned arithmetic: INT_MIN comes back as itself.
    return x < 0 ? static_cast<int>(0u - static_cast<unsigned>(x)) : x;
}
